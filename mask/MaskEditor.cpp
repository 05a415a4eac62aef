#include "mask/MaskEditor.h"

#include "mask/MaskPainter.h"

#include <cmath>
#include <cstring>

namespace nxr {

namespace {

bool paintable(QImage::Format format)
{
    return format == QImage::Format_RGB32 || format == QImage::Format_ARGB32 ||
           format == QImage::Format_ARGB32_Premultiplied;
}

// The mask as 8-bit indices into its colours when it has at most 256 of them (masks usually
// have two or three): a quarter of the memory, expanded again on every replay.
QImage packed(const QImage& mask)
{
    if (mask.isNull() || mask.depth() != 32)
        return mask;
    QImage out(mask.size(), QImage::Format_Indexed8);
    QList<QRgb> colors;
    for (int y = 0; y < mask.height(); ++y) {
        const auto* in = reinterpret_cast<const QRgb*>(mask.constScanLine(y));
        uchar* idx = out.scanLine(y);
        int last = -1;
        for (int x = 0; x < mask.width(); ++x) {
            if (last < 0 || colors[last] != in[x]) {
                last = int(colors.indexOf(in[x]));
                if (last < 0) {
                    if (colors.size() == 256)
                        return mask;
                    colors.push_back(in[x]);
                    last = int(colors.size()) - 1;
                }
            }
            idx[x] = uchar(last);
        }
    }
    out.setColorTable(colors);
    return out;
}

// Writes the original into the working mask's buffer (same size, 32-bit).
void restore(const QImage& original, QImage& working)
{
    if (original.format() != QImage::Format_Indexed8) {
        const qsizetype bytes = qsizetype(original.bytesPerLine()) * original.height();
        std::memcpy(working.bits(), original.constBits(), size_t(bytes));
        return;
    }
    const QList<QRgb> colors = original.colorTable();
    for (int y = 0; y < original.height(); ++y) {
        const uchar* in = original.constScanLine(y);
        auto* out = reinterpret_cast<QRgb*>(working.scanLine(y));
        for (int x = 0; x < original.width(); ++x)
            out[x] = colors[in[x]];
    }
}

} // namespace

void MaskEditor::begin(const QImage& mask, int mode)
{
    m_working = paintable(mask.format()) ? mask.copy() : mask.convertToFormat(QImage::Format_RGB32);
    m_format = m_working.format();
    m_original = packed(m_working);
    m_model.ClearOperations();
    m_model.EditMode = mode;
    m_changed.clear();
    m_redo.clear();
    m_stroke.reset();
    m_line.reset();
    m_shapeTool = KSEMaskTool_None;
    m_ignoreNextRelease = false;
}

void MaskEditor::end()
{
    begin(QImage(), KSEEditMask_None);
    m_original = QImage();
    m_working = QImage();
}

QImage MaskEditor::original() const
{
    return m_original.format() == QImage::Format_Indexed8 ? m_original.convertToFormat(m_format) : m_original;
}

QRgb MaskEditor::penColor(bool erase)
{
    if (erase)
        return MaskPainter::eraseColor();
    if (m_model.EditMode != KSEEditMask_DontCare && m_model.EditMode != KSEEditMask_ExtraCare) {
        if (onPenColorError)
            onPenColorError(QStringLiteral("mflng_GetMaskPenColor error: No edit mask mode!"));
        return MaskPainter::eraseColor();
    }
    return MaskPainter::modeColor(m_model.EditMode);
}

QRect MaskEditor::recordLast(const QRect& painted)
{
    m_changed.push_back(painted);
    m_redo.clear();
    return painted;
}

QRect MaskEditor::press(const QPointF& at, int button, int shift)
{
    if (!isEditing())
        return {};
    m_last = at;
    m_penWidth = MaskPainter::penWidth(m_size, shift);
    m_erase = button == RightButton;
    m_ignoreNextRelease = false;
    switch (m_tool) {
    case KSEMaskTool_Freehand: {
        QRect changed = finishStroke();
        m_stroke = std::make_shared<clsMaskPixelBlocks>();
        m_stroke->BlockWidth = m_penWidth;
        m_stroke->EraseFunction = m_erase;
        m_stroke->AddPoint(at.x(), at.y());
        return changed.united(MaskPainter::drawStroke(m_working, *m_stroke, m_penWidth, penColor(m_erase)));
    }
    case KSEMaskTool_Ellipse:
    case KSEMaskTool_Rectangle:
        if (m_shapeTool == KSEMaskTool_None) {
            m_shapeTool = m_tool;
            m_shapeStart = m_shapeEnd = at;
            m_shapeErase = m_erase;
        }
        return {};
    default: // joined line and fill act on release
        return {};
    }
}

QRect MaskEditor::move(const QPointF& at)
{
    if (!isEditing())
        return {};
    m_last = at;
    if (m_stroke) {
        const int before = m_stroke->Count();
        m_stroke->AddPoint(at.x(), at.y());
        if (m_stroke->Count() == before)
            return {};
        return MaskPainter::drawStroke(m_working, *m_stroke, m_stroke->BlockWidth,
                                       penColor(m_stroke->EraseFunction), m_stroke->Count(),
                                       m_stroke->Count());
    }
    if (m_shapeTool != KSEMaskTool_None)
        m_shapeEnd = at;
    return {};
}

QRect MaskEditor::finishStroke()
{
    if (!m_stroke)
        return {};
    // The stroke's pixels are on the mask already; record what it changed.
    QRect painted = MaskPainter::drawStroke(m_working, *m_stroke, m_stroke->BlockWidth,
                                            penColor(m_stroke->EraseFunction));
    m_model.RecordFreehand(m_stroke, m_stroke->EraseFunction);
    m_stroke.reset();
    recordLast(painted);
    return {};
}

QRect MaskEditor::finishJoinedLine()
{
    if (!m_line)
        return {};
    QRect painted =
        MaskPainter::drawStroke(m_working, m_line->Points(), m_line->LineWidth, penColor(m_lineErase));
    m_model.RecordJoinedLine(m_line, m_lineErase);
    m_line.reset();
    recordLast(painted);
    return {};
}

QRect MaskEditor::releaseShape(const QPointF& at)
{
    const QPointF a = m_shapeStart;
    const int tool = m_shapeTool;
    const bool erase = m_shapeErase;
    m_shapeTool = KSEMaskTool_None;
    QRect painted;
    if (tool == KSEMaskTool_Rectangle) {
        m_model.RecordRectangle(a.x(), a.y(), at.x(), at.y(), erase);
        painted = MaskPainter::drawRectangle(m_working, a.x(), a.y(), at.x(), at.y(), penColor(erase));
    } else {
        const double rx = std::abs(at.x() - a.x()), ry = std::abs(at.y() - a.y());
        m_model.RecordEllipse(a.x(), a.y(), rx, ry, erase);
        painted = MaskPainter::drawEllipse(m_working, a.x(), a.y(), rx, ry, penColor(erase));
    }
    return recordLast(painted);
}

QRect MaskEditor::release(const QPointF& at, int button, int shift)
{
    if (!isEditing())
        return {};
    m_last = at;
    if (m_ignoreNextRelease) {
        m_ignoreNextRelease = false;
        return {};
    }
    switch (m_tool) {
    case KSEMaskTool_Freehand:
        if (!m_stroke)
            return {};
        {
            const QRect changed = move(at);
            finishStroke();
            return changed;
        }
    case KSEMaskTool_JoinedLine: {
        if (!m_line) {
            m_line = std::make_shared<clsMaskJoinedLine>();
            m_line->LineWidth = m_penWidth;
            m_lineErase = m_erase;
        } else if (m_erase != m_lineErase) {
            return {};
        }
        m_line->AddPoint(at.x(), at.y());
        const int n = m_line->Points().Count();
        return MaskPainter::drawStroke(m_working, m_line->Points(), m_line->LineWidth, penColor(m_lineErase),
                                       n, n);
    }
    case KSEMaskTool_Ellipse:
    case KSEMaskTool_Rectangle:
        return m_shapeTool == KSEMaskTool_None ? QRect() : releaseShape(at);
    case KSEMaskTool_Fill: {
        m_erase = button == RightButton;
        const QRect painted = MaskPainter::fill(m_working, at.x(), at.y(), penColor(m_erase));
        m_model.RecordFill(at.x(), at.y(), m_erase);
        return recordLast(painted);
    }
    default:
        return {};
    }
}

QRect MaskEditor::doubleClick(const QPointF& at, int button)
{
    if (!isEditing())
        return {};
    m_last = at;
    if (m_tool != KSEMaskTool_JoinedLine || !m_line)
        return {};
    m_ignoreNextRelease = true;
    return finishJoinedLine();
}

QRect MaskEditor::finishPending()
{
    if (!isEditing())
        return {};
    QRect changed;
    if (m_shapeTool != KSEMaskTool_None)
        changed = releaseShape(m_last);
    finishStroke();
    finishJoinedLine();
    return changed;
}

QRect MaskEditor::command(int command)
{
    if (!isEditing())
        return {};
    switch (command) {
    case KSEMaskCommand_MaskAll:
        m_model.RecordMaskAll();
        return recordLast(MaskPainter::fillAll(m_working, penColor(false)));
    case KSEMaskCommand_MaskNone:
        m_model.RecordMaskNone();
        return recordLast(MaskPainter::fillAll(m_working, MaskPainter::eraseColor()));
    case KSEMaskCommand_Undo:
        return undo();
    default:
        return {};
    }
}

QRect MaskEditor::undo()
{
    if (!isEditing() || !canUndo())
        return {};
    const int last = m_model.Operations().Count();
    m_redo.emplace_back(m_model.Operations().Item(last), m_changed.back());
    const QRect undone = m_changed.back();
    m_model.Undo();
    m_changed.pop_back();
    return replay().united(undone);
}

QRect MaskEditor::redo()
{
    if (!isEditing() || m_redo.empty())
        return {};
    const MaskOperationPtr op = m_redo.back().first;
    m_redo.pop_back();
    m_model.Operations().Add(op);
    // The mask is as it was before the operation was first painted, so it paints the same pixels.
    const QRect painted = MaskPainter::apply(m_working, *op, m_model.EditMode);
    m_changed.push_back(painted);
    return painted;
}

QRect MaskEditor::replay()
{
    // Back to the original in place: the working mask keeps its buffer.
    restore(m_original, m_working);
    QRect changed;
    const auto& ops = m_model.Operations().items();
    for (size_t i = 0; i < ops.size(); ++i) {
        const bool erase = ops[i]->OperationType == MaskOp_MaskNone || ops[i]->EraseMode;
        if (!erase)
            penColor(false); // reports a missing edit mode as drawing does
        m_changed[i] = MaskPainter::apply(m_working, *ops[i], m_model.EditMode);
        changed = changed.united(m_changed[i]);
    }
    return changed;
}

QString MaskEditor::undoEnabledValue() const
{
    return QStringLiteral("2, ") + (canUndo() ? QStringLiteral("True") : QStringLiteral("False"));
}

std::optional<MaskEditor::RubberBand> MaskEditor::rubberBand() const
{
    if (m_shapeTool == KSEMaskTool_None)
        return std::nullopt;
    RubberBand band;
    band.tool = m_shapeTool;
    if (m_shapeTool == KSEMaskTool_Rectangle) {
        band.outline = QRectF(m_shapeStart, m_shapeEnd).normalized();
    } else {
        const double rx = std::abs(m_shapeEnd.x() - m_shapeStart.x());
        const double ry = std::abs(m_shapeEnd.y() - m_shapeStart.y());
        band.outline = QRectF(m_shapeStart.x() - rx, m_shapeStart.y() - ry, 2 * rx, 2 * ry);
    }
    return band;
}

} // namespace nxr
