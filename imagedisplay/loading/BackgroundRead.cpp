#include "imagedisplay/loading/BackgroundRead.h"

#include "frame/SyncCall.h"
#include "imagedisplay/RasterRenderer.h"
#include "imagedisplay/loading/ImageFile.h"

#include <QEventLoop>
#include <QFutureWatcher>
#include <QtConcurrent/QtConcurrentRun>

#include <exception>

namespace nxr {
namespace {

// Everything the worker hands back lives in the future's shared state, never on the waiting
// side's stack: an abandoned wait unwinds while the worker may still be writing.
struct Outcome
{
    BackgroundRead::Result result;
    std::exception_ptr error;
};

Outcome readFile(const QString& localPath, int reductions, bool grey)
{
    Outcome outcome;
    try {
        BackgroundRead::Result& r = outcome.result;
        r.image = ImageFile::read(localPath);
        r.shown = grey && r.image.format() != QImage::Format_Grayscale8
                      ? r.image.convertToFormat(QImage::Format_Grayscale8)
                      : r.image;
        r.reductions = RasterRenderer::reductions(r.shown, reductions);
    } catch (...) {
        outcome.error = std::current_exception();
    }
    return outcome;
}

} // namespace

BackgroundRead::Result BackgroundRead::read(const QString& localPath, int reductions, bool grey)
{
    QFuture<Outcome> future = QtConcurrent::run(&readFile, localPath, reductions, grey);
    if (!future.isFinished()) {
        QEventLoop loop;
        QFutureWatcher<Outcome> watcher;
        QObject::connect(&watcher, &QFutureWatcherBase::finished, &loop, &QEventLoop::quit);
        // The objects whose routines wait for this image: when one of them is destroyed, the
        // wait ends at once and the call unwinds without touching it.
        QList<QMetaObject::Connection> watches;
        for (const QPointer<QObject>& owner : CallEntry::chain()) {
            if (owner)
                watches.append(QObject::connect(owner, &QObject::destroyed, &loop, &QEventLoop::quit));
        }
        watcher.setFuture(future);
        if (!CallEntry::chainBroken()) {
            NestedWait wait;
            if (!future.isFinished())
                loop.exec();
        }
        for (const QMetaObject::Connection& c : watches)
            QObject::disconnect(c);
    }
    if (CallEntry::chainBroken())
        throw CallAbandoned{};
    // The loop was ended from outside (the application is quitting): the image is read to its end.
    future.waitForFinished();
    Outcome outcome = future.takeResult();
    if (outcome.error)
        std::rethrow_exception(outcome.error);
    return std::move(outcome.result);
}

} // namespace nxr
