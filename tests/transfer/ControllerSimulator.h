#pragma once
// Test fixture: runs the controller simulator (sim/controller_sim.py) as a child process on free
// loopback ports, waits until it listens, and stops it again. Tests of every subsystem that talks
// to a controller can link the static library nxr_sim_fixture and use it:
//
//     nxr::test::ControllerSimulator sim;
//     ASSERT_TRUE(sim.start()) << sim.errorText();
//     obj.SetProperty(...); obj.FTPPortNo(sim.ftpPort()); obj.HTTPPortNo(sim.httpPort());
//     obj.CopyFile(sim.host(), "MC:\\VISION\\GREY640.PNG", sim.user(), sim.password(), "");
//     EXPECT_TRUE(sim.logLines("FTP> ").contains("RETR MC:\\VISION\\GREY640.PNG"));

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

namespace nxr::test {

class ControllerSimulator
{
public:
    struct Options
    {
        QString user = QStringLiteral("robot");
        QString password = QStringLiteral("robot");
        bool anonymous = false;
        int bigFileMb = 0;   // > 0: the simulator also holds MD:\BIG.BIN of that many MiB
        quint16 ftpPort = 0; // 0: a free port
        quint16 httpPort = 0;
        QString host = QStringLiteral("127.0.0.1"); // another loopback address stands for another controller
        QString root; // empty: a fresh temporary device tree, removed with the fixture
    };

    ControllerSimulator();
    explicit ControllerSimulator(Options options);
    ~ControllerSimulator();
    ControllerSimulator(const ControllerSimulator&) = delete;
    ControllerSimulator& operator=(const ControllerSimulator&) = delete;

    // Starts the simulator and waits (up to 30 s) until it listens. False with errorText() set
    // when it could not be started.
    bool start();
    void stop();
    bool isRunning() const;
    QString errorText() const { return m_error; }

    // The controller goes down (all connections dropped, nothing listening) for downSeconds and
    // comes back on the same ports. Returns when it listens again.
    bool restart(double downSeconds);

    QString host() const { return m_options.host; }
    quint16 ftpPort() const { return m_ftpPort; }
    quint16 httpPort() const { return m_httpPort; }
    QString user() const { return m_options.user; }
    QString password() const { return m_options.password; }
    QString root() const { return m_root; }

    // The file in the device tree that holds a controller path ("MC:\A\B.PNG").
    QString localPathOf(const QString& controllerPath) const;
    // Writes a file on the "controller" directly (folders are created).
    bool writeFile(const QString& controllerPath, const QByteArray& content) const;
    QByteArray readFile(const QString& controllerPath) const;

    // The simulator's control endpoints (GET /__sim/<what>); the body of the answer, or a null
    // array when the request failed.
    QByteArray control(const QString& what) const;
    bool setFault(const QString& name, int value) const;
    bool resetFaults() const;
    // Takes a new camera image into `controllerPath` (default MC:\CAMERA\SNAP.JPG).
    QString snap(int width = 640, int height = 480, bool color = true,
                 const QString& controllerPath = {}) const;

    // The protocol log: every line, or the lines starting with `prefix` with the prefix removed
    // (prefix "FTP> " gives the commands the client sent).
    QStringList logLines(const QString& prefix = {}) const;
    bool clearLog() const;

private:
    bool readReadyLine(int timeoutMs);

    Options m_options;
    std::unique_ptr<QTemporaryDir> m_tempDir;
    std::unique_ptr<QProcess> m_process;
    QString m_root;
    QString m_logPath;
    QString m_error;
    quint16 m_ftpPort = 0;
    quint16 m_httpPort = 0;
};

// The simulator script and the interpreter that runs it.
QString simulatorScript();
QString simulatorPython();

} // namespace nxr::test
