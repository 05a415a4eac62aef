#include "PageRunner.h"

#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTimer>

QString PageRunner::write(const QString& name, const QByteArray& content) const
{
    const QString file = m_dir.filePath(name);
    QDir().mkpath(QFileInfo(file).absolutePath());
    QFile f(file);
    if (f.open(QIODevice::WriteOnly | QIODevice::Truncate))
        f.write(content);
    return file;
}

QByteArray PageRunner::item(const QByteArray& className, const QByteArray& name, const QByteArray& properties)
{
    return "<item><widget class=\"" + className + "\" name=\"" + name + "\">" + properties +
           "</widget></item>\n";
}

QByteArray PageRunner::form(int width, int height, const QByteArray& items)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ui version=\"4.0\">\n<class>Page</class>\n"
           "<widget class=\"QWidget\" name=\"Page\">\n"
           "<property name=\"geometry\"><rect><x>0</x><y>0</y><width>" +
           QByteArray::number(width) + "</width><height>" + QByteArray::number(height) +
           "</height></rect></property>\n"
           "<layout class=\"QVBoxLayout\" name=\"layout\">\n" +
           items + "</layout>\n</widget>\n</ui>\n";
}

void PageRunner::prepare(QProcess& process) const
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    // The URL cache and cookie jar of these runs stay inside the test's folder.
    env.insert(QStringLiteral("XDG_CACHE_HOME"), m_dir.filePath(QStringLiteral("cache")));
    env.insert(QStringLiteral("XDG_DATA_HOME"), m_dir.filePath(QStringLiteral("data")));
    for (auto it = m_env.cbegin(); it != m_env.cend(); ++it)
        env.insert(it.key(), it.value());
    process.setProcessEnvironment(env);
    process.setWorkingDirectory(m_dir.path());
}

PageRun PageRunner::run(const QStringList& arguments, int timeoutMs, const QString& program) const
{
    PageRun result;
    QProcess process;
    prepare(process);
    QEventLoop loop;
    QObject::connect(&process, &QProcess::finished, &loop, &QEventLoop::quit);
    QObject::connect(&process, &QProcess::errorOccurred, &loop, [&loop](QProcess::ProcessError e) {
        if (e == QProcess::FailedToStart)
            loop.quit();
    });
    QTimer::singleShot(timeoutMs, &loop, [&] {
        result.timedOut = true;
        loop.quit();
    });
    process.start(program.isEmpty() ? QStringLiteral(HOST_TEST_PAGE) : program, arguments);
    loop.exec();
    if (process.state() != QProcess::NotRunning) {
        process.kill();
        process.waitForFinished(5000);
    }
    result.crashed = process.exitStatus() == QProcess::CrashExit;
    result.exitCode = process.exitCode();
    result.out = QString::fromLocal8Bit(process.readAllStandardOutput());
    result.err = QString::fromLocal8Bit(process.readAllStandardError());
    return result;
}

PageRun PageRunner::runPage(const QString& name, const QByteArray& ui, const QByteArray& js,
                            const QStringList& extra) const
{
    write(name + QStringLiteral("/page.ui"), ui);
    write(name + QStringLiteral("/page.js"), js);
    return run(
        QStringList{QStringLiteral("--headless"), QStringLiteral("--timeout"), QStringLiteral("20000")} +
        extra + QStringList{path(name)});
}
