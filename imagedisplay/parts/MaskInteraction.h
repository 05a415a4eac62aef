#pragma once
// The mouse and keys over the image while a mask is edited, and what the pointer draws there.
//
// Every button event goes to the mask session in image pixels (the editor floors them), so the
// mouse paints instead of panning or zooming; the wheel still zooms. Keys: Ctrl+Z undoes,
// Ctrl+Y and Ctrl+Shift+Z redo; Enter and Escape are left to the edit session (accept, cancel).
//
// As a layer over the mask view it draws the outline of a rectangle or ellipse being dragged and,
// for the freehand pen and the joined line, the pen's outline around the pointer at its true size
// at the current zoom (doubled while Shift alone is held, as the stroke would be). Only the parts
// of the view the outline leaves or enters are repainted.

#include "frame/Export.h"
#include "imagedisplay/edit/Interaction.h"
#include "imagedisplay/edit/PaintLayer.h"

#include <QRectF>

#include <optional>

namespace nxr {

class EditHost;
class MaskSession;

class NXR_EXPORT MaskInteraction : public Interaction, public PaintLayer
{
public:
    MaskInteraction(MaskSession& session, EditHost& host);

    bool press(const PointerEvent& e) override;
    bool move(const PointerEvent& e) override;
    bool release(const PointerEvent& e) override;
    bool doubleClick(const PointerEvent& e) override;
    bool hover(const PointerEvent& e) override;
    bool key(int key, Qt::KeyboardModifiers modifiers) override;
    std::optional<Qt::CursorShape> cursorAt(const PointerEvent& e) override;
    void cancel() override;

    void paint(QPainter& painter, const ViewMaths& maths, const QRect& dirty) override;

    // The pen's outline around the pointer, in image pixels (a circle's bounding box, or the one
    // pixel of the small pen); nothing when the tool has no pen or the pointer is not over the
    // image.
    std::optional<QRectF> penOutline() const;
    // The tool or size changed on the palette: the outline follows.
    void toolChanged();
    // Where the pointer is (image pixels) and the Shift state; nothing when it left the view.
    void setPointer(const std::optional<QPointF>& image, int shift);

private:
    void repaintOutline(const std::optional<QRectF>& before);
    QRectF deviceRect(const QRectF& image) const;

    MaskSession& m_session;
    EditHost& m_host;
    std::optional<QPointF> m_pointer;
    int m_shift = 0;
};

} // namespace nxr
