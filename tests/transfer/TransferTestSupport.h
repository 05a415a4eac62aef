#pragma once
// Helpers shared by the transfer tests.

#include "ControllerSimulator.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <ostream>

// Readable test failure messages.
inline void PrintTo(const QString& text, std::ostream* os)
{
    *os << '"' << text.toStdString() << '"';
}

namespace nxr::test {

inline QByteArray readAll(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

inline bool writeLocal(const QString& path, const QByteArray& content)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(content) == content.size();
}

// Files in a folder, hidden ones (partial downloads) included.
inline QStringList filesIn(const QString& folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot);
}

// The web path of a controller path: "MC:\\A\\B.PNG" -> "/MC/A/B.PNG".
inline QString urlOf(const QString& controllerPath)
{
    return "/" + QString(controllerPath).remove(':').replace('\\', '/');
}

inline int countOf(const QStringList& lines, const QString& text)
{
    int n = 0;
    for (const QString& line : lines)
        n += line == text ? 1 : 0;
    return n;
}

inline int countStarting(const QStringList& lines, const QString& prefix)
{
    int n = 0;
    for (const QString& line : lines)
        n += line.startsWith(prefix) ? 1 : 0;
    return n;
}

// One simulator for a whole suite; every test starts without faults and with an empty log.
class SimulatorTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        sim = new ControllerSimulator();
        ASSERT_TRUE(sim->start()) << sim->errorText().toStdString();
    }
    static void TearDownTestSuite()
    {
        delete sim;
        sim = nullptr;
    }
    void SetUp() override
    {
        ASSERT_TRUE(sim->isRunning());
        ASSERT_TRUE(sim->resetFaults());
        ASSERT_TRUE(sim->clearLog());
    }
    static QStringList ftpCommands() { return sim->logLines("FTP> "); }

    static inline ControllerSimulator* sim = nullptr;
};

// A loopback port nobody listens on (for a moment).
inline quint16 freePort()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost, 0);
    return server.serverPort();
}

// Whether something accepts connections on the loopback port within about five seconds.
inline bool listensSoon(quint16 port)
{
    for (int i = 0; i < 100; ++i) {
        QTcpSocket probe;
        probe.connectToHost("127.0.0.1", port);
        if (probe.waitForConnected(100))
            return true;
        QThread::msleep(50);
    }
    return false;
}

// Ends a server the test started: politely first.
inline void stopDaemon(QProcess& daemon)
{
    if (daemon.state() == QProcess::NotRunning)
        return;
    daemon.terminate();
    if (!daemon.waitForFinished(3000)) {
        daemon.kill();
        daemon.waitForFinished(3000);
    }
}

} // namespace nxr::test
