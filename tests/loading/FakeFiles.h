#pragma once
// Test helpers: a private storage folder per test process, and a controller stand-in whose files
// live in a local folder and whose transfers wait in the event loop like the real ones.

#include "imagedisplay/loading/ControllerFiles.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QTimer>

#include <cstdlib>
#include <functional>

namespace nxr::testing {

// Points the temporary folder (and so the library's storage folder) at a fresh folder of this
// process, before the storage folder is first used; the folder goes when the process ends.
inline QString usePrivateTempFolder()
{
    static QString folder;
    if (folder.isEmpty()) {
        QByteArray templ = QDir::tempPath().toLocal8Bit() + "/nxr-loading-XXXXXX";
        folder = QString::fromLocal8Bit(mkdtemp(templ.data()));
        qputenv("TMPDIR", QFile::encodeName(folder));
        std::atexit([] { QDir(folder).removeRecursively(); });
    }
    return folder;
}

// A test picture, different for every seed; grey or colour.
inline QImage pattern(int w, int h, int seed, bool grey = false)
{
    QImage img(w, h, grey ? QImage::Format_Grayscale8 : QImage::Format_RGB32);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            if (grey)
                img.scanLine(y)[x] = uchar(x * 3 + y * 5 + seed);
            else
                img.setPixel(x, y, qRgb((x + seed) & 255, (y * 2 + seed) & 255, (x ^ y) & 255));
        }
    return img;
}

// Colour noise: its JPEG compresses badly and takes long to decode.
inline QImage noise(int w, int h)
{
    QImage img(w, h, QImage::Format_RGB32);
    quint32 state = 12345;
    for (int y = 0; y < h; ++y) {
        auto* line = reinterpret_cast<QRgb*>(img.scanLine(y));
        for (int x = 0; x < w; ++x) {
            state = state * 1664525u + 1013904223u;
            line[x] = 0xff000000u | (state >> 8);
        }
    }
    return img;
}

// Waits in the event loop, as a transfer does.
inline void spin(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

// Processes events until `done` holds or `ms` pass; returns done().
inline bool waitFor(const std::function<bool()>& done, int ms = 5000)
{
    QElapsedTimer clock;
    clock.start();
    while (!done() && clock.elapsed() < ms)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    return done();
}

class FakeFiles : public ControllerFiles
{
public:
    explicit FakeFiles(QString root) : m_root(std::move(root)) {}

    int transferMs = 0;               // how long each download waits in the event loop
    std::function<void()> duringCopy; // runs inside that wait
    int downloads = 0;
    QString lastPassword;

    // Where a controller path lives: "MC:\A\B.PNG" is <root>/MC/A/B.PNG.
    QString fileFor(const QString& controllerPath) const
    {
        QString relative = controllerPath;
        relative.replace(QLatin1Char('\\'), QLatin1Char('/')).remove(QLatin1Char(':'));
        return m_root + QLatin1Char('/') + relative;
    }
    void put(const QString& controllerPath, const QByteArray& data) const
    {
        QDir().mkpath(QFileInfo(fileFor(controllerPath)).path());
        QFile f(fileFor(controllerPath));
        f.open(QIODevice::WriteOnly);
        f.write(data);
    }

    bool copyFromController(const QString&, const QString& controllerPath, const QString&,
                            const QString& password, const QString& localPath, QString* error) override
    {
        ++downloads;
        lastPassword = password;
        if (duringCopy)
            QTimer::singleShot(transferMs / 2, duringCopy);
        if (transferMs > 0)
            spin(transferMs);
        const QString source = fileFor(controllerPath);
        if (!QFileInfo::exists(source)) {
            *error =
                QStringLiteral("no such file on the controller (password ") + password + QLatin1Char(')');
            return false;
        }
        QFile::remove(localPath);
        return QFile::copy(source, localPath);
    }

    // The loader tests save nothing; saving is tested against the simulator.
    bool copyToController(const QString&, const QString&, const QString&, const QString&, const QString&,
                          QString* error) override
    {
        *error = QStringLiteral("saving is not part of this stand-in");
        return false;
    }

private:
    QString m_root;
};

} // namespace nxr::testing
