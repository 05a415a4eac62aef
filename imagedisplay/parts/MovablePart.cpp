#include "imagedisplay/parts/MovablePart.h"

#include "frame/Conversions.h"
#include "frame/PropertyTable.h"
#include "frame/ScriptableCore.h"
#include "imagedisplay/MouseDispatcher.h"
#include "imagedisplay/NXEViewButtons.h"
#include "imagedisplay/NXRImageDisplay.h"
#include "imagedisplay/RasterView.h"
#include "imagedisplay/ToolbarClickHandler.h"
#include "imagedisplay/ViewMaths.h"
#include "imagedisplay/edit/EditHost.h"
#include "imagedisplay/edit/EditSession.h"

#include <QKeyEvent>
#include <QScreen>

#include <functional>

namespace nxr {

namespace {
EditKind kindOf(MovableShape shape)
{
    switch (shape) {
    case MovableShape::Window:
        return EditKind::Window;
    case MovableShape::Cursor:
        return EditKind::Cursor;
    case MovableShape::Line:
        return EditKind::Line;
    case MovableShape::LinePair:
        return EditKind::LinePair;
    case MovableShape::None:
        break;
    }
    return EditKind::None;
}

EditorPointer pointerOf(const PointerEvent& e)
{
    EditorPointer p;
    p.image = e.image;
    p.button = e.changed != Qt::NoButton ? e.changed : Qt::LeftButton;
    p.modifiers = e.modifiers;
    p.touch = e.touch;
    return p;
}

// Calls `onKey` for each key pressed on the watched widget; a true answer takes the key.
class KeyFilter : public QObject
{
public:
    explicit KeyFilter(std::function<bool(int)> onKey) : m_onKey(std::move(onKey)) {}
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::KeyPress && m_onKey(static_cast<QKeyEvent*>(event)->key()))
            return true;
        return QObject::eventFilter(watched, event);
    }

private:
    std::function<bool(int)> m_onKey;
};

bool pointerMode(const PointerEvent& e)
{
    return e.mouseMode == MouseDispatcher::Pointer;
}
} // namespace

MovablePart::MovablePart(EditHost& host, NXRImageDisplay& display, clsOverlayCollection& graphics)
    : m_host(host), m_display(display), m_shapes(*this, graphics)
{
    m_host.keys().replace(QStringLiteral("MinPairWidth"),
                          [this](const QString& v) { m_shapes.setMinPairWidth(toDouble(v)); }, {});
    m_host.keys().replace(QStringLiteral("MaxPairWidth"),
                          [this](const QString& v) { m_shapes.setMaxPairWidth(toDouble(v)); }, {});
    m_display.toolbarClicks().setAction(vvb_WindowReset, [this] { m_shapes.resetEdited(); });
    m_left = QObject::connect(m_display.leadView(), &RasterView::mouseLeft, m_display.leadView(), [this] {
        if (m_shapes.isEditing())
            m_shapes.editor().leave();
    });
    m_keys = std::make_unique<KeyFilter>([this](int key) {
        if (!m_shapes.isEditing() || m_host.session().editor() != this)
            return false;
        if (key == Qt::Key_Return || key == Qt::Key_Enter)
            m_host.session().accept();
        else if (key == Qt::Key_Escape)
            m_host.session().cancel();
        else
            return false;
        return true;
    });
    m_display.installEventFilter(m_keys.get());
}

MovablePart::~MovablePart()
{
    QObject::disconnect(m_left);
    m_display.removeEventFilter(m_keys.get());
    if (m_shapes.isEditing())
        m_shapes.finishEdit(false);
    m_host.session().leave(*this);
}

void MovablePart::imageShown(const QSize& size)
{
    m_shapes.editor().setImageBounds(size.isEmpty() ? QRectF() : QRectF(QPointF(0, 0), QSizeF(size)));
}

// ---- MovableHost ----

void MovablePart::requestRepaint(const QRectF& imageArea)
{
    RasterView* view = m_display.leadView();
    if (imageArea.isNull()) {
        if (view->autoRepaint())
            view->repaintView();
        return;
    }
    m_host.repaintImage(imageArea);
}

void MovablePart::setViewButtonsProperty(const QString& key, const QString& value)
{
    m_host.setViewButtonProperty(key, value);
}

int MovablePart::mouseMode() const
{
    return m_display.mouse().mouseMode();
}

void MovablePart::setMouseMode(int mode)
{
    m_mode = mode;
    m_display.mouse().setMouseMode(mode);
}

bool MovablePart::otherEditActive() const
{
    EditSession& session = m_host.session();
    return session.editing() && session.editor() != this;
}

void MovablePart::enterEditMode(MovableShape shape, MovableShapeEditor&)
{
    m_host.session().begin(kindOf(shape), *this);
}

void MovablePart::leaveEditMode(MovableShape shape, bool accepted)
{
    EditSession& session = m_host.session();
    if (session.editor() == this) {
        // Ended here rather than by OK or Cancel: the session gives its mouse mode back, the
        // shapes' own choice wins.
        session.leave(*this);
        m_display.mouse().setMouseMode(m_mode);
        m_host.setViewButtonProperty(QStringLiteral("ActiveMouseCursor"), QString::number(m_mode));
    }
    if (shape == MovableShape::Window)
        m_host.raiseEvent("OnExitMovableWindowEditMode", accepted ? -1 : 0);
    else if (shape == MovableShape::Cursor)
        m_host.raiseEvent("OnExitMovableCursorEditMode", accepted ? -1 : 0);
}

void MovablePart::fail(const QString& routine, const QString& description)
{
    m_display.core().reportError(routine,
                                 QStringLiteral("Error in ") + routine + QStringLiteral(": ") + description);
}

void MovablePart::trace(const QString& routine, const QString& message)
{
    m_display.core().trace(routine, message);
}

// ---- Editor ----

void MovablePart::finish(bool accepted)
{
    m_shapes.finishEdit(accepted);
}

// ---- Interaction ----

void MovablePart::useView(const PointerEvent& e)
{
    EditorView view;
    view.scale = m_host.maths().scale();
    view.devicePixelRatio = e.view ? e.view->deviceRatio() : m_host.screenPixel();
    if (e.view && e.view->screen())
        // Qt's physical density counts device-independent pixels; the editor works in device pixels.
        view.dotsPerInch = e.view->screen()->physicalDotsPerInch() * view.devicePixelRatio;
    m_shapes.editor().setView(view);
}

bool MovablePart::press(const PointerEvent& e)
{
    if (!pointerMode(e))
        return false;
    useView(e);
    return m_shapes.editor().press(pointerOf(e));
}

bool MovablePart::move(const PointerEvent& e)
{
    MovableShapeEditor& editor = m_shapes.editor();
    if (!editor.dragging())
        return false;
    editor.move(pointerOf(e));
    return true;
}

bool MovablePart::release(const PointerEvent& e)
{
    MovableShapeEditor& editor = m_shapes.editor();
    if (!editor.dragging())
        return false;
    editor.release(pointerOf(e));
    return true;
}

bool MovablePart::doubleClick(const PointerEvent& e)
{
    return pointerMode(e) && m_shapes.editor().doubleClick(pointerOf(e));
}

bool MovablePart::hover(const PointerEvent& e)
{
    if (!pointerMode(e))
        return false;
    useView(e);
    m_shapes.editor().hover(e.image);
    return true;
}

bool MovablePart::key(int key, Qt::KeyboardModifiers modifiers)
{
    return m_shapes.editor().key(key, modifiers);
}

std::optional<QCursor> MovablePart::pointerAt(const PointerEvent& e)
{
    if (!pointerMode(e))
        return std::nullopt;
    useView(e);
    return m_shapes.editor().cursorAt(e.image);
}

void MovablePart::cancel()
{
    MovableShapeEditor& editor = m_shapes.editor();
    if (editor.dragging())
        editor.cancel();
    editor.leave();
}

} // namespace nxr
