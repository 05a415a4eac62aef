#pragma once
// The script's `host` object: synthesized input on the page's controls (at widget coordinates),
// waiting with the event loop running, screenshots and the end of the run. Used by tests and by
// integrators who check their own pages in CI.

#include "host/InputSynthesizer.h"

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QVariantMap>
#include <QWidget>

#include <functional>

class QJSEngine;
class QWindow;

namespace nxr {

class HostAutomation : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool headless READ headless CONSTANT)
    Q_PROPERTY(QVariantMap args READ args CONSTANT)
    Q_PROPERTY(QString pageUrl READ pageUrl CONSTANT)
    Q_PROPERTY(QObject* window READ window CONSTANT)

public:
    // What the automation asks of its host.
    struct Callbacks
    {
        std::function<bool(const QString& path, QWidget* widget, QString* error)> screenshot;
        std::function<void(int code)> exit;
        std::function<bool()> exiting;
    };

    HostAutomation(QJSEngine* engine, Callbacks callbacks, QObject* parent = nullptr);

    void setHeadless(bool on) { m_headless = on; }
    void setArgs(const QVariantMap& args) { m_args = args; }
    void setPageUrl(const QString& url) { m_pageUrl = url; }
    void setPageWindow(QWidget* window) { m_window = window; }

    bool headless() const { return m_headless; }
    QVariantMap args() const { return m_args; }
    QString pageUrl() const { return m_pageUrl; }
    QObject* window() const { return m_window; }
    // Nested host.wait() calls now running.
    int waitDepth() const { return m_waitDepth; }

    // Mouse input; `modifiers` are the keys held meanwhile ("Shift", "Ctrl+Alt"...).
    Q_INVOKABLE void click(QObject* target, double x, double y,
                           const QString& button = QStringLiteral("left"),
                           const QString& modifiers = QString());
    Q_INVOKABLE void doubleClick(QObject* target, double x, double y,
                                 const QString& button = QStringLiteral("left"),
                                 const QString& modifiers = QString());
    Q_INVOKABLE void press(QObject* target, double x, double y,
                           const QString& button = QStringLiteral("left"),
                           const QString& modifiers = QString());
    Q_INVOKABLE void release(QObject* target, double x, double y,
                             const QString& button = QStringLiteral("left"),
                             const QString& modifiers = QString());
    Q_INVOKABLE void move(QObject* target, double x, double y, const QString& modifiers = QString());
    Q_INVOKABLE void drag(QObject* target, double x1, double y1, double x2, double y2,
                          const QString& button = QStringLiteral("left"),
                          const QString& modifiers = QString());
    Q_INVOKABLE void wheel(QObject* target, double x, double y, int steps,
                           const QString& modifiers = QString());
    Q_INVOKABLE void key(QObject* target, const QString& keys);
    Q_INVOKABLE void type(QObject* target, const QString& text);
    // Touch: a one-finger tap; fingers put down, moved or lifted ("press", "move", "release") at
    // points [[x, y], ...] numbered by their place (null: that finger is left as it is); a gesture
    // of fingers moving together from points to points.
    Q_INVOKABLE void tap(QObject* target, double x, double y);
    Q_INVOKABLE void touch(QObject* target, const QString& action, const QVariantList& points);
    Q_INVOKABLE void touchDrag(QObject* target, const QVariantList& from, const QVariantList& to);
    // A named descendant ("cmd_OK", "fra_OKCancel/cmd_OK": each name searched below the last).
    Q_INVOKABLE QObject* child(QObject* target, const QString& path);
    // The shown top-level windows (the page window first); one of them by object name or title.
    Q_INVOKABLE QVariantList windows();
    Q_INVOKABLE QObject* findWindow(const QString& name);
    Q_INVOKABLE void wait(int ms);
    // The page window's picture; with a control, the picture of the window that holds it (a dialog
    // the page's controls opened, for example).
    Q_INVOKABLE void screenshot(const QString& path, QObject* target = nullptr);
    // Headless runs only: the shown window with this object name, or the first shown control of
    // that name inside a shown window (windows on top of the page, such as dialogs its controls
    // opened, before the page window); null when there is none. Lets a test reach what the form does not
    // name, such as a control's modal dialog.
    Q_INVOKABLE QObject* find(const QString& objectName);
    Q_INVOKABLE void exit(int code = 0);

private:
    bool resolve(const char* routine, QObject* target, double x, double y, QWidget** widget, QPoint* pos);
    bool readModifiers(const char* routine, const QString& text, Qt::KeyboardModifiers* out);
    bool readButton(const char* routine, const QString& text, Qt::MouseButton* out);
    bool readPoints(const char* routine, const QVariantList& list, QMap<int, QPoint>* out);
    void mouse(const char* routine, InputSynthesizer::MouseAction action, QObject* target, double x, double y,
               const QString& button, const QString& modifiers);
    void fail(const QString& message);

    QJSEngine* m_engine;
    Callbacks m_callbacks;
    bool m_headless = false;
    QVariantMap m_args;
    QString m_pageUrl;
    QPointer<QWidget> m_window;
    int m_waitDepth = 0;
    InputSynthesizer m_input;
};

} // namespace nxr
