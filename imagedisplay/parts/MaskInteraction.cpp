#include "imagedisplay/parts/MaskInteraction.h"

#include "imagedisplay/ViewMaths.h"
#include "imagedisplay/edit/EditHost.h"
#include "mask/MaskPainter.h"
#include "mask/MaskSession.h"

#include <QPainter>

#include <cmath>

namespace nxr {

namespace {

// Device pixels kept around an outline when it is repainted: its pen and antialiasing.
constexpr double kOutlineMargin = 3.0;

} // namespace

MaskInteraction::MaskInteraction(MaskSession& session, EditHost& host) : m_session(session), m_host(host) {}

bool MaskInteraction::press(const PointerEvent& e)
{
    if (!m_session.isEditing())
        return false;
    m_session.mousePress(e.image, e.button, e.shift);
    return true;
}

bool MaskInteraction::move(const PointerEvent& e)
{
    if (!m_session.isEditing())
        return false;
    setPointer(e.image, e.shift);
    m_session.mouseMove(e.image);
    return true;
}

bool MaskInteraction::release(const PointerEvent& e)
{
    if (!m_session.isEditing())
        return false;
    m_session.mouseRelease(e.image, e.button, e.shift);
    return true;
}

bool MaskInteraction::doubleClick(const PointerEvent& e)
{
    if (!m_session.isEditing())
        return false;
    m_session.mouseDoubleClick(e.image, e.button);
    return true;
}

bool MaskInteraction::hover(const PointerEvent& e)
{
    if (!m_session.isEditing())
        return false;
    const QSize size = m_host.maths().imageSize();
    const bool inside =
        e.image.x() >= 0 && e.image.y() >= 0 && e.image.x() < size.width() && e.image.y() < size.height();
    setPointer(inside ? std::optional<QPointF>(e.image) : std::nullopt, e.shift);
    return true;
}

bool MaskInteraction::key(int key, Qt::KeyboardModifiers modifiers)
{
    if (!m_session.isEditing() || !(modifiers & Qt::ControlModifier))
        return false;
    const bool shift = modifiers & Qt::ShiftModifier;
    if (key == Qt::Key_Z && !shift) {
        m_session.onCommandClicked(KSEMaskCommand_Undo);
        return true;
    }
    if ((key == Qt::Key_Z && shift) || key == Qt::Key_Y) {
        m_session.redo();
        return true;
    }
    return false;
}

std::optional<Qt::CursorShape> MaskInteraction::cursorAt(const PointerEvent&)
{
    if (!m_session.isEditing())
        return std::nullopt;
    return Qt::CrossCursor;
}

void MaskInteraction::cancel()
{
    // The stroke or shape in progress stays with the editor: accepting completes it. Only the
    // pointer's outline goes until the pointer moves again.
    setPointer(std::nullopt, 0);
}

std::optional<QRectF> MaskInteraction::penOutline() const
{
    if (!m_pointer || !m_session.isEditing())
        return std::nullopt;
    const MaskEditor& editor = m_session.editor();
    if (editor.tool() != KSEMaskTool_Freehand && editor.tool() != KSEMaskTool_JoinedLine)
        return std::nullopt;
    const int width = MaskPainter::penWidth(editor.toolSize(), m_shift);
    if (width <= 0)
        return std::nullopt;
    // The stroke's dots are centred on the middle of the pixel under the pointer.
    const QPointF pixel(std::floor(m_pointer->x()), std::floor(m_pointer->y()));
    if (width < 2)
        return QRectF(pixel, QSizeF(1, 1));
    const QPointF centre = pixel + QPointF(0.5, 0.5);
    return QRectF(centre - QPointF(width / 2.0, width / 2.0), QSizeF(width, width));
}

void MaskInteraction::setPointer(const std::optional<QPointF>& image, int shift)
{
    const std::optional<QRectF> before = penOutline();
    m_pointer = image;
    m_shift = shift;
    repaintOutline(before);
}

void MaskInteraction::toolChanged()
{
    repaintOutline(std::nullopt);
}

QRectF MaskInteraction::deviceRect(const QRectF& image) const
{
    const double margin = kOutlineMargin * m_host.screenPixel();
    return m_host.maths().toScreen(image).adjusted(-margin, -margin, margin, margin);
}

void MaskInteraction::repaintOutline(const std::optional<QRectF>& before)
{
    const std::optional<QRectF> after = penOutline();
    if (before == after)
        return;
    if (before)
        m_host.repaintDevice(deviceRect(*before));
    if (after)
        m_host.repaintDevice(deviceRect(*after));
}

void MaskInteraction::paint(QPainter& painter, const ViewMaths& maths, const QRect& dirty)
{
    if (!m_session.isEditing())
        return;
    const qreal px = screenPixel(painter);
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setBrush(Qt::NoBrush);
    auto outlined = [&](auto draw) {
        // A dark line under a light dashed one: visible on any image and any mask colour.
        painter.setPen(QPen(QColor(0, 0, 0), 1.5 * px));
        draw();
        QPen light(QColor(255, 255, 255), 1.0 * px, Qt::DashLine);
        painter.setPen(light);
        draw();
    };
    if (const auto band = m_session.editor().rubberBand()) {
        QRectF box = band->outline;
        if (band->tool == KSEMaskTool_Rectangle) // both corner pixels are painted
            box = QRectF(QPointF(std::floor(box.left()), std::floor(box.top())),
                         QPointF(std::floor(box.right()) + 1, std::floor(box.bottom()) + 1));
        else
            box.translate(0.5, 0.5);
        const QRectF screen = maths.toScreen(box);
        if (screen.adjusted(-4 * px, -4 * px, 4 * px, 4 * px).intersects(dirty)) {
            if (band->tool == KSEMaskTool_Rectangle)
                outlined([&] { painter.drawRect(screen); });
            else
                outlined([&] { painter.drawEllipse(screen); });
        }
    }
    if (const auto pen = penOutline()) {
        const QRectF screen = maths.toScreen(*pen);
        if (screen.width() >= 3 * px) { // smaller than that the cross pointer says it all
            if (pen->width() < 2)       // the one pixel of the small pen
                outlined([&] { painter.drawRect(screen); });
            else
                outlined([&] { painter.drawEllipse(screen); });
        }
    }
}

} // namespace nxr
