#include "ControllerSimulator.h"

#include <csignal>
#include <sys/prctl.h>

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTcpSocket>
#include <QUrl>

namespace nxr::test {

QString simulatorScript()
{
    return QStringLiteral(NXR_SIM_SCRIPT);
}
QString simulatorPython()
{
    return QStringLiteral(NXR_SIM_PYTHON);
}

ControllerSimulator::ControllerSimulator() : ControllerSimulator(Options{}) {}

ControllerSimulator::ControllerSimulator(Options options) : m_options(std::move(options)) {}

ControllerSimulator::~ControllerSimulator()
{
    stop();
}

bool ControllerSimulator::start()
{
    stop();
    m_error.clear();
    if (m_options.root.isEmpty()) {
        m_tempDir = std::make_unique<QTemporaryDir>(QDir::tempPath() + QStringLiteral("/nxrsim-XXXXXX"));
        if (!m_tempDir->isValid()) {
            m_error = QStringLiteral("cannot create a temporary folder");
            return false;
        }
        m_root = m_tempDir->filePath(QStringLiteral("root"));
        m_logPath = m_tempDir->filePath(QStringLiteral("protocol.log"));
    } else {
        m_root = m_options.root;
        m_logPath = m_root + QStringLiteral("-protocol.log");
    }
    QStringList args{simulatorScript(),
                     "--ftp-port",
                     QString::number(m_options.ftpPort),
                     "--http-port",
                     QString::number(m_options.httpPort),
                     "--user",
                     m_options.user,
                     "--password",
                     m_options.password,
                     "--root",
                     m_root,
                     "--log",
                     m_logPath,
                     "--keep-root"};
    if (m_options.host != QLatin1String("127.0.0.1"))
        args << "--host" << m_options.host;
    if (m_options.anonymous)
        args << "--anonymous";
    if (m_options.bigFileMb > 0)
        args << "--big-file-mb" << QString::number(m_options.bigFileMb);

    m_process = std::make_unique<QProcess>();
    m_process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    // A test that crashes must not leave its simulator behind (holding the test runner's output pipe).
    m_process->setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); });
    m_process->start(simulatorPython(), args);
    if (!m_process->waitForStarted(10000)) {
        m_error = QStringLiteral("cannot start ") + simulatorPython() + QStringLiteral(": ") +
                  m_process->errorString();
        m_process.reset();
        return false;
    }
    const int timeout = m_options.bigFileMb > 0 ? 120000 : 30000;
    if (!readReadyLine(timeout)) {
        stop();
        return false;
    }
    return true;
}

bool ControllerSimulator::readReadyLine(int timeoutMs)
{
    static const QRegularExpression ready(QStringLiteral("^NXRSIM READY ftp=(\\d+) http=(\\d+) "));
    QDeadlineTimer deadline(timeoutMs);
    while (!deadline.hasExpired()) {
        while (m_process->canReadLine()) {
            const QString line = QString::fromUtf8(m_process->readLine()).trimmed();
            const QRegularExpressionMatch m = ready.match(line);
            if (m.hasMatch()) {
                m_ftpPort = quint16(m.captured(1).toUInt());
                m_httpPort = quint16(m.captured(2).toUInt());
                return true;
            }
        }
        if (m_process->state() != QProcess::Running) {
            m_error = QStringLiteral("the simulator ended before it was ready");
            return false;
        }
        m_process->waitForReadyRead(int(qMax<qint64>(10, deadline.remainingTime())));
    }
    m_error = QStringLiteral("the simulator did not get ready in time");
    return false;
}

void ControllerSimulator::stop()
{
    if (!m_process)
        return;
    if (m_process->state() != QProcess::NotRunning) {
        m_process->terminate();
        if (!m_process->waitForFinished(5000)) {
            m_process->kill();
            m_process->waitForFinished(5000);
        }
    }
    m_process.reset();
}

bool ControllerSimulator::isRunning() const
{
    return m_process && m_process->state() == QProcess::Running;
}

bool ControllerSimulator::restart(double downSeconds)
{
    if (!isRunning())
        return false;
    if (control(QStringLiteral("restart?down=") + QString::number(downSeconds)).isNull())
        return false;
    return readReadyLine(int(downSeconds * 1000) + 30000);
}

QString ControllerSimulator::localPathOf(const QString& controllerPath) const
{
    QString path = controllerPath;
    const qsizetype colon = path.indexOf(QLatin1Char(':'));
    QString device = colon < 0 ? QString() : path.left(colon).toUpper();
    QString rest = colon < 0 ? path : path.mid(colon + 1);
    rest.replace(QLatin1Char('\\'), QLatin1Char('/'));
    while (rest.startsWith(QLatin1Char('/')))
        rest.remove(0, 1);
    return m_root + QLatin1Char('/') + (device.isEmpty() ? QString() : device + QLatin1Char('/')) + rest;
}

bool ControllerSimulator::writeFile(const QString& controllerPath, const QByteArray& content) const
{
    const QString local = localPathOf(controllerPath);
    QDir().mkpath(QFileInfo(local).absolutePath());
    QFile file(local);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    return file.write(content) == content.size();
}

QByteArray ControllerSimulator::readFile(const QString& controllerPath) const
{
    QFile file(localPathOf(controllerPath));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

QByteArray ControllerSimulator::control(const QString& what) const
{
    QTcpSocket socket;
    socket.connectToHost(host(), m_httpPort);
    if (!socket.waitForConnected(5000))
        return {};
    const QByteArray request = "GET /__sim/" + what.toUtf8() + " HTTP/1.1\r\nHost: " + host().toUtf8() +
                               "\r\nConnection: close\r\n\r\n";
    socket.write(request);
    socket.waitForBytesWritten(5000);
    QByteArray answer;
    QDeadlineTimer deadline(15000);
    while (!deadline.hasExpired()) {
        if (!socket.waitForReadyRead(int(qMax<qint64>(10, deadline.remainingTime())))) {
            if (socket.state() != QAbstractSocket::ConnectedState)
                break;
            continue;
        }
        answer += socket.readAll();
    }
    answer += socket.readAll();
    const qsizetype body = answer.indexOf("\r\n\r\n");
    if (!answer.startsWith("HTTP/1.") || body < 0)
        return {};
    if (answer.mid(9, 3) != "200")
        return {};
    QByteArray result = answer.mid(body + 4);
    if (result.isNull())
        result = QByteArray("");
    return result;
}

bool ControllerSimulator::setFault(const QString& name, int value) const
{
    return !control(QStringLiteral("fault?") + name + QLatin1Char('=') + QString::number(value)).isNull();
}

bool ControllerSimulator::resetFaults() const
{
    return !control(QStringLiteral("reset")).isNull();
}

QString ControllerSimulator::snap(int width, int height, bool color, const QString& controllerPath) const
{
    QString query = QStringLiteral("snap?w=%1&h=%2&color=%3").arg(width).arg(height).arg(color ? 1 : 0);
    if (!controllerPath.isEmpty())
        query += QStringLiteral("&path=") + QString::fromLatin1(QUrl::toPercentEncoding(controllerPath));
    return QString::fromUtf8(control(query)).trimmed();
}

QStringList ControllerSimulator::logLines(const QString& prefix) const
{
    QFile file(m_logPath);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList result;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& line : lines) {
        if (prefix.isEmpty())
            result << line;
        else if (line.startsWith(prefix))
            result << line.mid(prefix.size());
    }
    return result;
}

bool ControllerSimulator::clearLog() const
{
    return !control(QStringLiteral("log/clear")).isNull();
}

} // namespace nxr::test
