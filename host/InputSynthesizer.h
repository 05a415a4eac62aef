#pragma once
// Synthesized user input for the host's automation: mouse, wheel, keys and touch at widget
// coordinates, entering where the window system's input would. It keeps the state a real user's
// hands have: mouse buttons held, modifier keys held (pressed and released as key events around
// the mouse input that asks for them, none held once no button is) and fingers on the screen.

#include <QList>
#include <QMap>
#include <QPoint>
#include <QPointer>
#include <QString>
#include <QWidget>

#include <memory>

class QKeySequence;
class QPointingDevice;

namespace QTest {
class QTouchEventWidgetSequence;
}

namespace nxr {

class InputSynthesizer
{
public:
    enum class MouseAction { Press, Release, Click, DoubleClick, Move };
    enum class TouchAction { Press, Move, Release };

    InputSynthesizer();
    ~InputSynthesizer();
    InputSynthesizer(const InputSynthesizer&) = delete;
    InputSynthesizer& operator=(const InputSynthesizer&) = delete;

    // "Shift", "Ctrl" (or "Control"), "Alt", "Meta", joined by "+"; "" or "none" for none. False for
    // an unknown name.
    static bool parseModifiers(const QString& text, Qt::KeyboardModifiers* out);
    // "left", "right", "middle" ("" is left).
    static bool parseButton(const QString& text, Qt::MouseButton* out);

    // `pos` in the widget's own pixels; the widget must be shown.
    void mouse(QWidget* widget, QPoint pos, MouseAction action, Qt::MouseButton button,
               Qt::KeyboardModifiers modifiers);
    // One event per notch to the widget under the point; negative steps turn towards the user.
    void wheel(QWidget* widget, QPoint pos, int steps, Qt::KeyboardModifiers modifiers);
    // Each key of the sequence pressed and released with its modifiers, to `widget` (focused
    // first). `written` is the text the sequence was given as (a single character types itself).
    // No modifier stays held afterwards.
    void keys(QWidget* widget, const QKeySequence& sequence, const QString& written);
    void text(QWidget* widget, const QString& text);

    // `points` by finger number (widget pixels). Press puts those fingers down, move moves them,
    // release lifts them; fingers down and not named stay where they are. False with *error set on
    // a finger already down (press) or not down (move, release), or fingers on another window.
    bool touch(QWidget* widget, TouchAction action, const QMap<int, QPoint>& points, QString* error);
    int fingersDown() const { return int(m_fingers.size()); }

    Qt::KeyboardModifiers heldModifiers() const { return m_modifiers; }

private:
    // Presses and releases modifier keys (to the focus widget of `widget`'s window) until exactly
    // `wanted` are held.
    void holdModifiers(QWidget* widget, Qt::KeyboardModifiers wanted);
    static QWidget* keyTarget(QWidget* widget);

    Qt::MouseButtons m_buttons;
    Qt::KeyboardModifiers m_modifiers;
    // The fingers down, and the sequence that put them down.
    QList<int> m_fingers;
    QPointer<QWidget> m_touchWindow;
    std::unique_ptr<QTest::QTouchEventWidgetSequence> m_touch;
};

} // namespace nxr
