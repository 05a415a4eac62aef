#pragma once
// The painting side of a mask edit, without a screen: the working and the original mask, the
// tool and size chosen on the palette, the mouse in mask pixel coordinates, the undo list with
// replay from the original, and redo.
//
// A view feeds it the mouse (press, move, release, double click, each with the button and the
// Shift state: 1 Shift, 2 Ctrl, 4 Alt) and the palette's commands; every call returns the
// rectangle of the working mask it changed, so the view recomposes and repaints only that.
// While a rectangle or ellipse is dragged, rubberBand() gives its outline for the view to draw.

#include "frame/Export.h"
#include "mask/MaskModel.h"
#include "mask/MaskTypes.h"

#include <QImage>
#include <QPointF>
#include <QRect>
#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace nxr {

class NXR_EXPORT MaskEditor
{
public:
    enum Button { LeftButton = 1, RightButton = 2, MiddleButton = 4 };

    struct RubberBand
    {
        int tool = KSEMaskTool_None; // KSEMaskTool_Rectangle or KSEMaskTool_Ellipse
        QRectF outline;              // the rectangle, or the ellipse's bounding box
    };

    // Called with "mflng_GetMaskPenColor error: No edit mask mode!" when something is painted
    // while no edit mode is set (black is painted then).
    std::function<void(const QString&)> onPenColorError;

    // Starts an edit of `mask` in `mode`: both masks become `mask` (widened to RGB32 unless it is
    // a 32-bit format), the undo and redo lists empty, nothing is being drawn.
    void begin(const QImage& mask, int mode);
    // Ends the edit: drops both masks and the lists; the mode becomes KSEEditMask_None.
    void end();
    bool isEditing() const { return !m_working.isNull(); }

    int mode() const { return m_model.EditMode; }
    void setMode(int mode) { m_model.EditMode = mode; }
    int tool() const { return m_tool; }
    void setTool(int tool) { m_tool = tool; }
    int toolSize() const { return m_size; }
    void setToolSize(int size) { m_size = size; }

    QRect press(const QPointF& at, int button, int shift);
    // Extends an open freehand stroke; moves a dragged shape's outline (no pixel changes).
    QRect move(const QPointF& at);
    QRect release(const QPointF& at, int button, int shift);
    // Finishes an open joined line; the release that follows the double click is ignored.
    QRect doubleClick(const QPointF& at, int button);
    // Completes what is still being drawn, as accepting the edit does: an open stroke or joined
    // line is recorded, a dragged shape is released at the last mouse position.
    QRect finishPending();

    // Mask all, mask none or undo (the palette's numbers); other numbers do nothing.
    QRect command(int command);
    QRect undo();
    QRect redo();
    bool canUndo() const { return m_model.Operations().Count() > 0; }
    bool canRedo() const { return !m_redo.empty(); }
    // The palette's "CommandEnabled" value for the undo command: "2, True" or "2, False".
    QString undoEnabledValue() const;

    const QImage& working() const { return m_working; }
    // The mask as the edit began, in the working mask's format.
    QImage original() const;
    const clsMask& model() const { return m_model; }
    std::optional<RubberBand> rubberBand() const;
    // The current pen width and erase flag (set at each press).
    int penWidth() const { return m_penWidth; }
    bool erasing() const { return m_erase; }

private:
    QRgb penColor(bool erase);
    QRect recordLast(const QRect& painted);
    QRect finishStroke();
    QRect finishJoinedLine();
    QRect releaseShape(const QPointF& at);
    QRect replay();

    QImage m_working;
    QImage m_original; // packed to 8-bit indices when it has few colours
    QImage::Format m_format = QImage::Format_RGB32;
    clsMask m_model;
    // The rectangle each recorded operation changed, in the order of the undo list.
    std::vector<QRect> m_changed;
    std::vector<std::pair<MaskOperationPtr, QRect>> m_redo; // newest last

    int m_tool = KSEMaskTool_None;
    int m_size = KSEMaskToolSize_None;
    int m_penWidth = 0;
    bool m_erase = false;
    QPointF m_last;

    std::shared_ptr<clsMaskPixelBlocks> m_stroke;
    std::shared_ptr<clsMaskJoinedLine> m_line;
    bool m_lineErase = false;
    bool m_ignoreNextRelease = false;
    // The shape being dragged: its tool, start and end and erase flag.
    int m_shapeTool = KSEMaskTool_None;
    QPointF m_shapeStart, m_shapeEnd;
    bool m_shapeErase = false;
};

} // namespace nxr
