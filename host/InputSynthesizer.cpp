#include "host/InputSynthesizer.h"

#include <QApplication>
#include <QKeySequence>
#include <QPointingDevice>
#include <QWheelEvent>
#include <QWindow>
#include <QtTest/qtestkeyboard.h>
#include <QtTest/qtestmouse.h>
#include <QtTest/qtestspontaneevent.h>
#include <QtTest/qtesttouch.h>

namespace nxr {
namespace {

// The simulated clock of synthesized mouse events; a release moves it on by more than the
// double-click interval so that separate clicks never pair up into a double click.
int g_mouseTimestamp = 1000;
constexpr int kDoubleClickGap = 1000;

struct ModifierKey
{
    Qt::KeyboardModifier modifier;
    Qt::Key key;
};
// In the order a hand presses them; released the other way round.
constexpr ModifierKey kModifierKeys[] = {{Qt::ShiftModifier, Qt::Key_Shift},
                                         {Qt::ControlModifier, Qt::Key_Control},
                                         {Qt::AltModifier, Qt::Key_Alt},
                                         {Qt::MetaModifier, Qt::Key_Meta}};

// One key event to `widget` as the window system would deliver it: spontaneous (so the
// application's idea of the held modifiers follows it), shortcuts first.
void sendKey(QWidget* widget, QEvent::Type type, int key, Qt::KeyboardModifiers modifiers,
             const QString& text = {})
{
    QKeyEvent event(type, key, modifiers, text);
    QSpontaneKeyEvent::setSpontaneous(&event);
    if (type == QEvent::KeyPress &&
        qt_sendShortcutOverrideEvent(widget, event.timestamp(), key, modifiers, text))
        return;
    QApplication::instance()->notify(widget, &event);
}

QPointingDevice* touchScreen()
{
    static QPointingDevice* device = QTest::createTouchDevice(QInputDevice::DeviceType::TouchScreen);
    return device;
}

} // namespace

InputSynthesizer::InputSynthesizer() = default;
InputSynthesizer::~InputSynthesizer() = default;

bool InputSynthesizer::parseModifiers(const QString& text, Qt::KeyboardModifiers* out)
{
    Qt::KeyboardModifiers result;
    const QString all = text.trimmed().toLower();
    if (!all.isEmpty() && all != QLatin1String("none")) {
        for (const QString& part : all.split(QLatin1Char('+'))) {
            const QString name = part.trimmed();
            if (name == QLatin1String("shift"))
                result |= Qt::ShiftModifier;
            else if (name == QLatin1String("ctrl") || name == QLatin1String("control"))
                result |= Qt::ControlModifier;
            else if (name == QLatin1String("alt"))
                result |= Qt::AltModifier;
            else if (name == QLatin1String("meta"))
                result |= Qt::MetaModifier;
            else
                return false;
        }
    }
    *out = result;
    return true;
}

bool InputSynthesizer::parseButton(const QString& text, Qt::MouseButton* out)
{
    const QString n = text.trimmed().toLower();
    if (n == QLatin1String("left") || n.isEmpty())
        *out = Qt::LeftButton;
    else if (n == QLatin1String("right"))
        *out = Qt::RightButton;
    else if (n == QLatin1String("middle"))
        *out = Qt::MiddleButton;
    else
        return false;
    return true;
}

QWidget* InputSynthesizer::keyTarget(QWidget* widget)
{
    QWidget* top = widget->window();
    return top->focusWidget() ? top->focusWidget() : top;
}

void InputSynthesizer::holdModifiers(QWidget* widget, Qt::KeyboardModifiers wanted)
{
    if (wanted == m_modifiers)
        return;
    QPointer<QWidget> target(keyTarget(widget));
    for (int i = int(std::size(kModifierKeys)) - 1; i >= 0 && target; --i) {
        const ModifierKey& m = kModifierKeys[i];
        if ((m_modifiers & m.modifier) && !(wanted & m.modifier)) {
            m_modifiers &= ~Qt::KeyboardModifiers(m.modifier);
            sendKey(target, QEvent::KeyRelease, m.key, m_modifiers);
        }
    }
    for (const ModifierKey& m : kModifierKeys) {
        if (!target)
            break;
        if (!(m_modifiers & m.modifier) && (wanted & m.modifier)) {
            sendKey(target, QEvent::KeyPress, m.key, m_modifiers);
            m_modifiers |= m.modifier;
        }
    }
    if (!target)
        m_modifiers = wanted;
}

void InputSynthesizer::mouse(QWidget* widget, QPoint pos, MouseAction action, Qt::MouseButton button,
                             Qt::KeyboardModifiers modifiers)
{
    QPointer<QWidget> guard(widget);
    holdModifiers(widget, modifiers);
    if (!guard)
        return;
    QWidget* top = widget->window();
    // The events enter where the window system's would, so the widget under the point gets them,
    // a press grabs the mouse for the moves that follow, and a second quick press is a double click.
    QPointer<QWindow> window(top->windowHandle());
    const QPointF local(widget->mapTo(top, pos));
    const QPointF global = window ? window->mapToGlobal(local) : local;
    auto send = [&](QEvent::Type type, Qt::MouseButton which) {
        if (!window)
            return;
        if (type == QEvent::MouseButtonPress)
            m_buttons |= which;
        else if (type == QEvent::MouseButtonRelease)
            m_buttons &= ~Qt::MouseButtons(which);
        qt_handleMouseEvent(window, local, global, m_buttons, which, type, m_modifiers, ++g_mouseTimestamp);
    };
    switch (action) {
    case MouseAction::Press:
        send(QEvent::MouseButtonPress, button);
        break;
    case MouseAction::Release:
        send(QEvent::MouseButtonRelease, button);
        g_mouseTimestamp += kDoubleClickGap;
        break;
    case MouseAction::Click:
        send(QEvent::MouseButtonPress, button);
        send(QEvent::MouseButtonRelease, button);
        g_mouseTimestamp += kDoubleClickGap;
        break;
    case MouseAction::DoubleClick:
        send(QEvent::MouseButtonPress, button);
        send(QEvent::MouseButtonRelease, button);
        send(QEvent::MouseButtonPress, button);
        send(QEvent::MouseButtonRelease, button);
        g_mouseTimestamp += kDoubleClickGap;
        break;
    case MouseAction::Move:
        send(QEvent::MouseMove, Qt::NoButton);
        break;
    }
    QCoreApplication::processEvents();
    // Modifier keys are let go with the last button.
    if (m_buttons == Qt::NoButton && guard)
        holdModifiers(guard, Qt::NoModifier);
}

void InputSynthesizer::wheel(QWidget* widget, QPoint pos, int steps, Qt::KeyboardModifiers modifiers)
{
    QPointer<QWidget> guard(widget);
    holdModifiers(widget, modifiers);
    if (!guard)
        return;
    // One event per notch, to the widget under the point; unhandled ones travel to its parents.
    QWidget* top = widget->window();
    const QPoint windowPos = widget->mapTo(top, pos);
    QWidget* receiver = top->childAt(windowPos);
    if (!receiver)
        receiver = top;
    const QPointF at = receiver->mapFrom(top, windowPos);
    const QPointF global = receiver->mapToGlobal(at);
    const int notch = steps < 0 ? -QWheelEvent::DefaultDeltasPerStep : QWheelEvent::DefaultDeltasPerStep;
    QPointer<QWidget> alive(receiver);
    for (int i = 0; i < std::abs(steps) && alive; ++i) {
        QWheelEvent event(at, global, QPoint(), QPoint(0, notch), m_buttons, m_modifiers, Qt::NoScrollPhase,
                          false);
        QApplication::sendEvent(receiver, &event);
    }
    QCoreApplication::processEvents();
    if (m_buttons == Qt::NoButton && guard)
        holdModifiers(guard, Qt::NoModifier);
}

void InputSynthesizer::keys(QWidget* widget, const QKeySequence& sequence, const QString& written)
{
    while (widget->focusProxy())
        widget = widget->focusProxy();
    widget->setFocus(Qt::OtherFocusReason);
    QPointer<QWidget> target(widget);
    holdModifiers(widget, Qt::NoModifier);
    for (int i = 0; i < sequence.count() && target; ++i) {
        const QKeyCombination combination = sequence[i];
        const Qt::KeyboardModifiers modifiers = combination.keyboardModifiers();
        QString text;
        // A single printable key without Ctrl/Alt types itself, in the case it was written in.
        if (sequence.count() == 1 && written.size() == 1 && written.at(0).isPrint())
            text = written;
        else if (!(modifiers & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)))
            text = QString(QChar(QLatin1Char(QTest::keyToAscii(combination.key()))));
        if (text == QString(QChar(0)))
            text.clear();
        holdModifiers(target, modifiers);
        if (target)
            sendKey(target, QEvent::KeyPress, combination.key(), m_modifiers, text);
        if (target)
            sendKey(target, QEvent::KeyRelease, combination.key(), m_modifiers, text);
        if (target)
            holdModifiers(target, Qt::NoModifier);
    }
    // Whatever happened to the widget, the keyboard is left with no modifier held.
    m_modifiers = Qt::NoModifier;
    QCoreApplication::processEvents();
}

void InputSynthesizer::text(QWidget* widget, const QString& text)
{
    while (widget->focusProxy())
        widget = widget->focusProxy();
    widget->setFocus(Qt::OtherFocusReason);
    holdModifiers(widget, Qt::NoModifier);
    QTest::keyClicks(widget, text);
    QCoreApplication::processEvents();
}

bool InputSynthesizer::touch(QWidget* widget, TouchAction action, const QMap<int, QPoint>& points,
                             QString* error)
{
    QWidget* top = widget->window();
    if (!m_fingers.isEmpty() && m_touchWindow && m_touchWindow != top) {
        *error = QStringLiteral("fingers are still down on another window; lift them first");
        return false;
    }
    for (auto it = points.cbegin(); it != points.cend(); ++it) {
        const bool down = m_fingers.contains(it.key());
        if (action == TouchAction::Press && down) {
            *error = QStringLiteral("finger %1 is already down").arg(it.key() + 1);
            return false;
        }
        if (action != TouchAction::Press && !down) {
            *error = QStringLiteral("finger %1 is not down").arg(it.key() + 1);
            return false;
        }
    }
    if (!m_touch || m_fingers.isEmpty() || !m_touchWindow) {
        m_touch =
            std::make_unique<QTest::QTouchEventWidgetSequence>(QTest::touchEvent(top, touchScreen(), false));
        m_touchWindow = top;
        m_fingers.clear();
    }
    for (auto it = points.cbegin(); it != points.cend(); ++it) {
        switch (action) {
        case TouchAction::Press:
            m_touch->press(it.key(), it.value(), widget);
            break;
        case TouchAction::Move:
            m_touch->move(it.key(), it.value(), widget);
            break;
        case TouchAction::Release:
            m_touch->release(it.key(), it.value(), widget);
            break;
        }
    }
    for (int id : std::as_const(m_fingers))
        if (!points.contains(id))
            m_touch->stationary(id);
    for (auto it = points.cbegin(); it != points.cend(); ++it) {
        if (action == TouchAction::Press)
            m_fingers << it.key();
        else if (action == TouchAction::Release)
            m_fingers.removeAll(it.key());
    }
    m_touch->commit();
    if (m_fingers.isEmpty())
        m_touch.reset();
    return true;
}

} // namespace nxr
