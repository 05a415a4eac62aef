#include "host/HostAutomation.h"

#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QImage>
#include <QJSEngine>
#include <QKeySequence>
#include <QTimer>
#include <QWheelEvent>
#include <QWindow>
#include <QtTest/qtestkeyboard.h>
#include <QtTest/qtestmouse.h>

#include <cmath>
#include <cstdio>

namespace nxr {
namespace {

// The simulated clock of synthesized mouse events; a release moves it on by more than the
// double-click interval so that separate clicks never pair up into a double click.
int g_mouseTimestamp = 1000;
constexpr int kDoubleClickGap = 1000;
constexpr int kDragSteps = 8;

QPoint rounded(double x, double y)
{
    return QPoint(int(std::lround(x)), int(std::lround(y)));
}

} // namespace

HostAutomation::HostAutomation(QJSEngine* engine, Callbacks callbacks, QObject* parent)
    : QObject(parent), m_engine(engine), m_callbacks(std::move(callbacks))
{}

void HostAutomation::fail(const QString& message)
{
    m_engine->throwError(message);
}

bool HostAutomation::resolve(const char* routine, QObject* target, double x, double y, Target* out)
{
    auto* widget = qobject_cast<QWidget*>(target);
    if (!widget) {
        fail(QStringLiteral("host.%1: the first argument must be a control of the page")
                 .arg(QLatin1String(routine)));
        return false;
    }
    if (!std::isfinite(x) || !std::isfinite(y)) {
        fail(QStringLiteral("host.%1: x and y must be numbers").arg(QLatin1String(routine)));
        return false;
    }
    QWidget* top = widget->window();
    if (!widget->isVisible() || !top->windowHandle()) {
        fail(QStringLiteral("host.%1: %2 is not shown").arg(QLatin1String(routine), widget->objectName()));
        return false;
    }
    out->widget = widget;
    out->window = top->windowHandle();
    out->windowPos = widget->mapTo(top, rounded(x, y));
    return true;
}

bool HostAutomation::parseButton(const char* routine, const QString& name, Qt::MouseButton* out)
{
    const QString n = name.trimmed().toLower();
    if (n == QLatin1String("left") || n.isEmpty())
        *out = Qt::LeftButton;
    else if (n == QLatin1String("right"))
        *out = Qt::RightButton;
    else if (n == QLatin1String("middle"))
        *out = Qt::MiddleButton;
    else {
        fail(QStringLiteral("host.%1: unknown mouse button \"%2\" (left, right or middle)")
                 .arg(QLatin1String(routine), name));
        return false;
    }
    return true;
}

void HostAutomation::mouse(const char* routine, Action action, QObject* target, double x, double y,
                           const QString& buttonName)
{
    Target t;
    Qt::MouseButton button = Qt::NoButton;
    if (!resolve(routine, target, x, y, &t))
        return;
    if (action != Action::Move && !parseButton(routine, buttonName, &button))
        return;
    // The events enter where the window system's would, so the widget under the point gets them,
    // a press grabs the mouse for the moves that follow, and a second quick press is a double click.
    const QPointF local(t.windowPos);
    const QPointF global = t.window->mapToGlobal(t.windowPos);
    QPointer<QWindow> window(t.window);
    auto send = [&](QEvent::Type type, Qt::MouseButton which) {
        if (!window)
            return;
        if (type == QEvent::MouseButtonPress)
            m_held |= which;
        else if (type == QEvent::MouseButtonRelease)
            m_held &= ~Qt::MouseButtons(which);
        qt_handleMouseEvent(window, local, global, m_held, which, type, QGuiApplication::keyboardModifiers(),
                            ++g_mouseTimestamp);
    };
    switch (action) {
    case Action::Press:
        send(QEvent::MouseButtonPress, button);
        break;
    case Action::Release:
        send(QEvent::MouseButtonRelease, button);
        g_mouseTimestamp += kDoubleClickGap;
        break;
    case Action::Click:
        send(QEvent::MouseButtonPress, button);
        send(QEvent::MouseButtonRelease, button);
        g_mouseTimestamp += kDoubleClickGap;
        break;
    case Action::DoubleClick:
        send(QEvent::MouseButtonPress, button);
        send(QEvent::MouseButtonRelease, button);
        send(QEvent::MouseButtonPress, button);
        send(QEvent::MouseButtonRelease, button);
        g_mouseTimestamp += kDoubleClickGap;
        break;
    case Action::Move:
        send(QEvent::MouseMove, Qt::NoButton);
        break;
    }
    QCoreApplication::processEvents();
}

void HostAutomation::click(QObject* target, double x, double y, const QString& button)
{
    mouse("click", Action::Click, target, x, y, button);
}

void HostAutomation::doubleClick(QObject* target, double x, double y, const QString& button)
{
    mouse("doubleClick", Action::DoubleClick, target, x, y, button);
}

void HostAutomation::press(QObject* target, double x, double y, const QString& button)
{
    mouse("press", Action::Press, target, x, y, button);
}

void HostAutomation::release(QObject* target, double x, double y, const QString& button)
{
    mouse("release", Action::Release, target, x, y, button);
}

void HostAutomation::move(QObject* target, double x, double y)
{
    mouse("move", Action::Move, target, x, y, {});
}

void HostAutomation::drag(QObject* target, double x1, double y1, double x2, double y2, const QString& button)
{
    Target t;
    Qt::MouseButton b = Qt::NoButton;
    if (!resolve("drag", target, x1, y1, &t) || !resolve("drag", target, x2, y2, &t) ||
        !parseButton("drag", button, &b))
        return;
    QPointer<QObject> guard(target);
    mouse("drag", Action::Press, target, x1, y1, button);
    for (int i = 1; i <= kDragSteps && guard; ++i) {
        const double f = double(i) / kDragSteps;
        mouse("drag", Action::Move, target, x1 + (x2 - x1) * f, y1 + (y2 - y1) * f, {});
    }
    if (guard)
        mouse("drag", Action::Release, target, x2, y2, button);
}

void HostAutomation::wheel(QObject* target, double x, double y, int steps)
{
    Target t;
    if (!resolve("wheel", target, x, y, &t))
        return;
    // One event per notch, to the widget under the point; unhandled ones travel to its parents.
    QWidget* top = t.widget->window();
    QWidget* receiver = top->childAt(t.windowPos);
    if (!receiver)
        receiver = top;
    const QPointF pos = receiver->mapFrom(top, t.windowPos);
    const QPointF global = receiver->mapToGlobal(pos);
    const int notch = steps < 0 ? -QWheelEvent::DefaultDeltasPerStep : QWheelEvent::DefaultDeltasPerStep;
    QPointer<QWidget> guard(receiver);
    for (int i = 0; i < std::abs(steps) && guard; ++i) {
        QWheelEvent event(pos, global, QPoint(), QPoint(0, notch), Qt::NoButton,
                          QGuiApplication::keyboardModifiers(), Qt::NoScrollPhase, false);
        QApplication::sendEvent(receiver, &event);
    }
    QCoreApplication::processEvents();
}

void HostAutomation::key(QObject* target, const QString& keys)
{
    auto* widget = qobject_cast<QWidget*>(target);
    if (!widget) {
        fail(QStringLiteral("host.key: the first argument must be a control of the page"));
        return;
    }
    const QKeySequence sequence = QKeySequence::fromString(keys, QKeySequence::PortableText);
    if (keys.isEmpty() || sequence.isEmpty() || sequence[0].key() == Qt::Key_unknown) {
        fail(QStringLiteral("host.key: \"%1\" is not a key (try \"A\", \"Return\", \"Ctrl+S\")").arg(keys));
        return;
    }
    while (widget->focusProxy())
        widget = widget->focusProxy();
    widget->setFocus(Qt::OtherFocusReason);
    for (int i = 0; i < sequence.count(); ++i) {
        const QKeyCombination combination = sequence[i];
        const Qt::KeyboardModifiers modifiers = combination.keyboardModifiers();
        QString text;
        // A single printable key without Ctrl/Alt types itself, in the case it was written in.
        if (sequence.count() == 1 && keys.size() == 1 && keys.at(0).isPrint())
            text = keys;
        else if (!(modifiers & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)))
            text = QString(QChar(QLatin1Char(QTest::keyToAscii(combination.key()))));
        if (text == QString(QChar(0)))
            text.clear();
        QTest::sendKeyEvent(QTest::Click, widget, combination.key(), text, modifiers);
    }
    QCoreApplication::processEvents();
}

void HostAutomation::type(QObject* target, const QString& text)
{
    auto* widget = qobject_cast<QWidget*>(target);
    if (!widget) {
        fail(QStringLiteral("host.type: the first argument must be a control of the page"));
        return;
    }
    while (widget->focusProxy())
        widget = widget->focusProxy();
    widget->setFocus(Qt::OtherFocusReason);
    QTest::keyClicks(widget, text);
    QCoreApplication::processEvents();
}

void HostAutomation::wait(int ms)
{
    if (m_callbacks.exiting && m_callbacks.exiting())
        return;
    QEventLoop loop;
    QTimer::singleShot(std::max(0, ms), &loop, &QEventLoop::quit);
    ++m_waitDepth;
    loop.exec();
    --m_waitDepth;
}

void HostAutomation::screenshot(const QString& path, QObject* target)
{
    if (!target) {
        QString error;
        if (!m_callbacks.screenshot(path, &error))
            fail(QStringLiteral("host.screenshot: %1").arg(error));
        return;
    }
    auto* widget = qobject_cast<QWidget*>(target);
    if (!widget || !widget->window()->isVisible()) {
        fail(QStringLiteral("host.screenshot: the second argument must be a shown control or window"));
        return;
    }
    const QFileInfo info(path);
    const QImage image = widget->window()->grab().toImage();
    if (!QDir().mkpath(info.absolutePath()) || image.isNull() ||
        !image.save(info.absoluteFilePath(), "PNG")) {
        fail(QStringLiteral("host.screenshot: cannot write %1")
                 .arg(QDir::toNativeSeparators(info.absoluteFilePath())));
        return;
    }
    std::printf("screenshot written to %s (%dx%d)\n",
                QDir::toNativeSeparators(info.absoluteFilePath()).toLocal8Bit().constData(), image.width(),
                image.height());
    std::fflush(stdout);
}

QObject* HostAutomation::find(const QString& objectName)
{
    if (!m_headless) {
        // On screen a page could otherwise reach into dialogs the user types into (passwords).
        fail(QStringLiteral("host.find: only in headless runs"));
        return nullptr;
    }
    if (objectName.isEmpty())
        return nullptr;
    // Windows on top of the page (its controls' dialogs) first, then the page window; shown
    // widgets only, so a hidden part of a control does not hide a dialog's part of the same name.
    QList<QWidget*> windows;
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w->isVisible() && (!m_window || w != m_window->window()))
            windows << w;
    if (m_window)
        windows << m_window->window();
    QObject* found = nullptr;
    for (QWidget* w : windows) {
        if (w->objectName() == objectName && w->isVisible()) {
            found = w;
            break;
        }
        for (QWidget* child : w->findChildren<QWidget*>(objectName)) {
            if (child->isVisible()) {
                found = child;
                break;
            }
        }
        if (found)
            break;
    }
    if (found)
        QJSEngine::setObjectOwnership(found, QJSEngine::CppOwnership);
    return found;
}

void HostAutomation::exit(int code)
{
    m_callbacks.exit(code);
}

} // namespace nxr
