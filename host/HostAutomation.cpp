#include "host/HostAutomation.h"

#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QImage>
#include <QJSEngine>
#include <QKeySequence>
#include <QTimer>
#include <QWindow>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace nxr {
namespace {

constexpr int kDragSteps = 8;

QPoint rounded(double x, double y)
{
    return QPoint(int(std::lround(x)), int(std::lround(y)));
}

// The script never owns what the host hands it: a window without a parent would otherwise be
// deleted by the script engine's garbage collector.
QObject* keptByHost(QObject* object)
{
    if (object)
        QJSEngine::setObjectOwnership(object, QJSEngine::CppOwnership);
    return object;
}

} // namespace

HostAutomation::HostAutomation(QJSEngine* engine, Callbacks callbacks, QObject* parent)
    : QObject(parent), m_engine(engine), m_callbacks(std::move(callbacks))
{}

void HostAutomation::fail(const QString& message)
{
    m_engine->throwError(message);
}

bool HostAutomation::resolve(const char* routine, QObject* target, double x, double y, QWidget** widget,
                             QPoint* pos)
{
    auto* w = qobject_cast<QWidget*>(target);
    if (!w) {
        fail(QStringLiteral("host.%1: the first argument must be a control or window of the page")
                 .arg(QLatin1String(routine)));
        return false;
    }
    if (!std::isfinite(x) || !std::isfinite(y)) {
        fail(QStringLiteral("host.%1: x and y must be numbers").arg(QLatin1String(routine)));
        return false;
    }
    if (!w->isVisible() || !w->window()->windowHandle()) {
        fail(QStringLiteral("host.%1: %2 is not shown").arg(QLatin1String(routine), w->objectName()));
        return false;
    }
    *widget = w;
    *pos = rounded(x, y);
    return true;
}

bool HostAutomation::readModifiers(const char* routine, const QString& text, Qt::KeyboardModifiers* out)
{
    if (InputSynthesizer::parseModifiers(text, out))
        return true;
    fail(QStringLiteral("host.%1: unknown modifier in \"%2\" (Shift, Ctrl, Alt or Meta, joined by +)")
             .arg(QLatin1String(routine), text));
    return false;
}

bool HostAutomation::readButton(const char* routine, const QString& text, Qt::MouseButton* out)
{
    if (InputSynthesizer::parseButton(text, out))
        return true;
    fail(QStringLiteral("host.%1: unknown mouse button \"%2\" (left, right or middle)")
             .arg(QLatin1String(routine), text));
    return false;
}

void HostAutomation::mouse(const char* routine, InputSynthesizer::MouseAction action, QObject* target,
                           double x, double y, const QString& buttonName, const QString& modifierNames)
{
    QWidget* widget = nullptr;
    QPoint pos;
    Qt::MouseButton button = Qt::NoButton;
    Qt::KeyboardModifiers modifiers;
    if (!resolve(routine, target, x, y, &widget, &pos) || !readModifiers(routine, modifierNames, &modifiers))
        return;
    if (action != InputSynthesizer::MouseAction::Move && !readButton(routine, buttonName, &button))
        return;
    m_input.mouse(widget, pos, action, button, modifiers);
}

void HostAutomation::click(QObject* target, double x, double y, const QString& button,
                           const QString& modifiers)
{
    mouse("click", InputSynthesizer::MouseAction::Click, target, x, y, button, modifiers);
}

void HostAutomation::doubleClick(QObject* target, double x, double y, const QString& button,
                                 const QString& modifiers)
{
    mouse("doubleClick", InputSynthesizer::MouseAction::DoubleClick, target, x, y, button, modifiers);
}

void HostAutomation::press(QObject* target, double x, double y, const QString& button,
                           const QString& modifiers)
{
    mouse("press", InputSynthesizer::MouseAction::Press, target, x, y, button, modifiers);
}

void HostAutomation::release(QObject* target, double x, double y, const QString& button,
                             const QString& modifiers)
{
    mouse("release", InputSynthesizer::MouseAction::Release, target, x, y, button, modifiers);
}

void HostAutomation::move(QObject* target, double x, double y, const QString& modifiers)
{
    mouse("move", InputSynthesizer::MouseAction::Move, target, x, y, {}, modifiers);
}

void HostAutomation::drag(QObject* target, double x1, double y1, double x2, double y2, const QString& button,
                          const QString& modifiers)
{
    QWidget* widget = nullptr;
    QPoint pos;
    Qt::MouseButton b = Qt::NoButton;
    Qt::KeyboardModifiers m;
    if (!resolve("drag", target, x1, y1, &widget, &pos) || !resolve("drag", target, x2, y2, &widget, &pos) ||
        !readButton("drag", button, &b) || !readModifiers("drag", modifiers, &m))
        return;
    QPointer<QWidget> guard(widget);
    m_input.mouse(widget, rounded(x1, y1), InputSynthesizer::MouseAction::Press, b, m);
    for (int i = 1; i <= kDragSteps && guard; ++i) {
        const double f = double(i) / kDragSteps;
        m_input.mouse(widget, rounded(x1 + (x2 - x1) * f, y1 + (y2 - y1) * f),
                      InputSynthesizer::MouseAction::Move, Qt::NoButton, m);
    }
    if (guard)
        m_input.mouse(widget, rounded(x2, y2), InputSynthesizer::MouseAction::Release, b, m);
}

void HostAutomation::wheel(QObject* target, double x, double y, int steps, const QString& modifiers)
{
    QWidget* widget = nullptr;
    QPoint pos;
    Qt::KeyboardModifiers m;
    if (!resolve("wheel", target, x, y, &widget, &pos) || !readModifiers("wheel", modifiers, &m))
        return;
    m_input.wheel(widget, pos, steps, m);
}

void HostAutomation::key(QObject* target, const QString& keys)
{
    auto* widget = qobject_cast<QWidget*>(target);
    if (!widget) {
        fail(QStringLiteral("host.key: the first argument must be a control or window of the page"));
        return;
    }
    const QKeySequence sequence = QKeySequence::fromString(keys, QKeySequence::PortableText);
    if (keys.isEmpty() || sequence.isEmpty() || sequence[0].key() == Qt::Key_unknown) {
        fail(QStringLiteral("host.key: \"%1\" is not a key (try \"A\", \"Return\", \"Ctrl+S\")").arg(keys));
        return;
    }
    m_input.keys(widget, sequence, keys);
}

void HostAutomation::type(QObject* target, const QString& text)
{
    auto* widget = qobject_cast<QWidget*>(target);
    if (!widget) {
        fail(QStringLiteral("host.type: the first argument must be a control or window of the page"));
        return;
    }
    m_input.text(widget, text);
}

bool HostAutomation::readPoints(const char* routine, const QVariantList& list, QMap<int, QPoint>* out)
{
    QMap<int, QPoint> points;
    for (int finger = 0; finger < list.size(); ++finger) {
        const QVariant& item = list.at(finger);
        if (item.isNull())
            continue;
        const QVariantList xy = item.toList();
        const QVariantMap map = item.toMap();
        bool okX = false;
        bool okY = false;
        double x = 0;
        double y = 0;
        if (xy.size() == 2) {
            x = xy.at(0).toDouble(&okX);
            y = xy.at(1).toDouble(&okY);
        } else if (map.contains(QStringLiteral("x")) && map.contains(QStringLiteral("y"))) {
            x = map.value(QStringLiteral("x")).toDouble(&okX);
            y = map.value(QStringLiteral("y")).toDouble(&okY);
        }
        if (!okX || !okY || !std::isfinite(x) || !std::isfinite(y)) {
            fail(QStringLiteral("host.%1: points are [x, y] pairs of numbers (or null), one per finger")
                     .arg(QLatin1String(routine)));
            return false;
        }
        points.insert(finger, rounded(x, y));
    }
    if (points.isEmpty() || list.size() > 10) {
        fail(QStringLiteral("host.%1: give 1 to 10 fingers' points").arg(QLatin1String(routine)));
        return false;
    }
    *out = points;
    return true;
}

void HostAutomation::tap(QObject* target, double x, double y)
{
    QWidget* widget = nullptr;
    QPoint pos;
    if (!resolve("tap", target, x, y, &widget, &pos))
        return;
    QString error;
    QPointer<QWidget> guard(widget);
    const QMap<int, QPoint> finger{{0, pos}};
    if (!m_input.touch(widget, InputSynthesizer::TouchAction::Press, finger, &error) ||
        (guard && !m_input.touch(widget, InputSynthesizer::TouchAction::Release, finger, &error)))
        fail(QStringLiteral("host.tap: %1").arg(error));
}

void HostAutomation::touch(QObject* target, const QString& action, const QVariantList& points)
{
    QWidget* widget = nullptr;
    QPoint pos;
    QMap<int, QPoint> list;
    if (!resolve("touch", target, 0, 0, &widget, &pos) || !readPoints("touch", points, &list))
        return;
    InputSynthesizer::TouchAction a;
    const QString name = action.trimmed().toLower();
    if (name == QLatin1String("press"))
        a = InputSynthesizer::TouchAction::Press;
    else if (name == QLatin1String("move"))
        a = InputSynthesizer::TouchAction::Move;
    else if (name == QLatin1String("release"))
        a = InputSynthesizer::TouchAction::Release;
    else {
        fail(QStringLiteral("host.touch: unknown action \"%1\" (press, move or release)").arg(action));
        return;
    }
    QString error;
    if (!m_input.touch(widget, a, list, &error))
        fail(QStringLiteral("host.touch: %1").arg(error));
}

void HostAutomation::touchDrag(QObject* target, const QVariantList& from, const QVariantList& to)
{
    QWidget* widget = nullptr;
    QPoint pos;
    QMap<int, QPoint> start;
    QMap<int, QPoint> end;
    if (!resolve("touchDrag", target, 0, 0, &widget, &pos) || !readPoints("touchDrag", from, &start) ||
        !readPoints("touchDrag", to, &end))
        return;
    if (start.keys() != end.keys()) {
        fail(QStringLiteral("host.touchDrag: as many end points as start points, one per finger"));
        return;
    }
    QString error;
    QPointer<QWidget> guard(widget);
    bool ok = m_input.touch(widget, InputSynthesizer::TouchAction::Press, start, &error);
    for (int step = 1; ok && guard && step <= kDragSteps; ++step) {
        const double f = double(step) / kDragSteps;
        QMap<int, QPoint> points;
        for (auto it = start.cbegin(); it != start.cend(); ++it) {
            const QPoint a = it.value();
            const QPoint b = end.value(it.key());
            points.insert(it.key(), rounded(a.x() + (b.x() - a.x()) * f, a.y() + (b.y() - a.y()) * f));
        }
        ok = m_input.touch(widget, InputSynthesizer::TouchAction::Move, points, &error);
    }
    if (ok && guard)
        ok = m_input.touch(widget, InputSynthesizer::TouchAction::Release, end, &error);
    if (!ok)
        fail(QStringLiteral("host.touchDrag: %1").arg(error));
}

QObject* HostAutomation::child(QObject* target, const QString& path)
{
    auto* widget = qobject_cast<QWidget*>(target);
    if (!widget) {
        fail(QStringLiteral("host.child: the first argument must be a control or window of the page"));
        return nullptr;
    }
    const QStringList names = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    if (names.isEmpty()) {
        fail(QStringLiteral("host.child: name a child (\"cmd_OK\" or \"fra_OKCancel/cmd_OK\")"));
        return nullptr;
    }
    for (const QString& name : names) {
        widget = widget->findChild<QWidget*>(name.trimmed());
        if (!widget)
            return nullptr;
    }
    return keptByHost(widget);
}

QVariantList HostAutomation::windows()
{
    QList<QWidget*> shown;
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w->isVisible() && w->windowType() != Qt::ToolTip && w != m_window)
            shown << w;
    std::sort(shown.begin(), shown.end(), [](const QWidget* a, const QWidget* b) {
        return std::pair(a->objectName(), a->windowTitle()) < std::pair(b->objectName(), b->windowTitle());
    });
    if (m_window && m_window->isVisible())
        shown.prepend(m_window);
    QVariantList result;
    for (QWidget* w : std::as_const(shown))
        result << QVariant::fromValue(keptByHost(w));
    return result;
}

QObject* HostAutomation::findWindow(const QString& name)
{
    const QVariantList all = windows();
    for (const QVariant& v : all)
        if (v.value<QObject*>()->objectName() == name)
            return v.value<QObject*>();
    for (const QVariant& v : all)
        if (qobject_cast<QWidget*>(v.value<QObject*>())->windowTitle() == name)
            return v.value<QObject*>();
    return nullptr;
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
    QWidget* widget = nullptr;
    if (target) {
        widget = qobject_cast<QWidget*>(target);
        if (!widget || !widget->isVisible()) {
            fail(QStringLiteral("host.screenshot: the second argument must be a shown control or window"));
            return;
        }
    }
    QString error;
    if (!m_callbacks.screenshot(path, widget, &error))
        fail(QStringLiteral("host.screenshot: %1").arg(error));
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
