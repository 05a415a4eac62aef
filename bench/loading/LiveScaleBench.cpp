// Live mode at scale: four image displays streaming at once, each from its own controller
// simulator (at its own loopback address), against one display alone in the same run.
//
//   LiveScale/<w>/<h>   counters:
//     single_fps            frames a second of display 0 streaming alone (the baseline)
//     fps_<i>, ratio_<i>    frames a second of display i while all four stream, and fps_i / single_fps
//     min_ratio             the smallest ratio_<i> (goal >= 0.9)
//     single_block_ms       the longest the event loop went without running, display 0 alone
//     block_ms              the same while all four stream (goal <= 50)
//
// The page's side is what a page does: every "Snap" is answered with LoadImage of that display's
// camera file. The event loop's stalls are found by a 5 ms timer that records its largest gap.

#include "CameraImage.h"
#include "ControllerSimulator.h"

#include "imagedisplay/NXRImageDisplay.h"
#include "imagedisplay/loading/ImageFile.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QGridLayout>
#include <QTimer>
#include <QWidget>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <string>

namespace {

constexpr int kDisplays = 4;
constexpr int kWindowMs = 4000; // streaming time of each measurement

struct Stream
{
    nxr::test::ControllerSimulator* sim = nullptr;
    NXRImageDisplay* display = nullptr;
    QString path;
    int frames = 0;
};

std::array<Stream, kDisplays> g_streams;

// Each display reads its own controller path, so their local copies are separate files.
QString imagePath(int index, int w, int h)
{
    return QStringLiteral("MC:\\BENCH\\D%1\\CAM%2X%3.JPG").arg(index).arg(w).arg(h);
}

void load(Stream& s)
{
    s.display->LoadImage(s.sim->host(), s.path, s.sim->user(), s.sim->password());
}

// The largest gap between ticks of a 5 ms timer: the longest the event loop was kept from running
// (nested loops inside a load count as running).
class StallProbe
{
public:
    StallProbe()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.setInterval(5);
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            m_largest = std::max(m_largest, m_since.nsecsElapsed() / 1e6);
            m_since.restart();
        });
    }
    void start()
    {
        m_largest = 0;
        m_since.start();
        m_timer.start();
    }
    double stop()
    {
        m_timer.stop();
        return m_largest;
    }

private:
    QTimer m_timer;
    QElapsedTimer m_since;
    double m_largest = 0;
};

struct Run
{
    std::array<double, kDisplays> fps{};
    double blockMs = 0;
};

// Streams the first `count` displays at once for kWindowMs.
Run stream(int count)
{
    for (int i = 0; i < count; ++i) {
        g_streams[i].display->SetProperty(QStringLiteral("LiveMode"), QStringLiteral("True"));
        load(g_streams[i]);
    }
    for (Stream& s : g_streams)
        s.frames = 0;
    StallProbe probe;
    QElapsedTimer clock;
    clock.start();
    probe.start();
    QEventLoop loop;
    QTimer::singleShot(kWindowMs, &loop, &QEventLoop::quit);
    loop.exec();
    Run run;
    run.blockMs = probe.stop();
    const double seconds = clock.nsecsElapsed() / 1e9;
    for (int i = 0; i < count; ++i) {
        run.fps[i] = g_streams[i].frames / seconds;
        g_streams[i].display->AbortLiveMode();
    }
    // Let the last loads finish before the next measurement.
    QEventLoop drain;
    QTimer::singleShot(500, &drain, &QEventLoop::quit);
    drain.exec();
    return run;
}

void BM_LiveScale(benchmark::State& state)
{
    const int w = int(state.range(0)), h = int(state.range(1));
    const QByteArray jpeg =
        nxr::ImageFile::encode(nxr::bench::cameraImage(w, h, true), nxr::ImageFileFormat::Jpeg);
    std::array<QMetaObject::Connection, kDisplays> answers;
    for (int i = 0; i < kDisplays; ++i) {
        Stream& s = g_streams[i];
        s.path = imagePath(i, w, h);
        s.sim->writeFile(s.path, jpeg);
        answers[i] =
            QObject::connect(s.display, &NXRImageDisplay::OnButtonClicked, [&s](const QString& name) {
                if (name == QLatin1String("Snap")) {
                    ++s.frames;
                    load(s);
                }
            });
        load(s); // connection made, first fit done
        if (!s.display->LastErrorString().isEmpty()) {
            state.SkipWithError(s.display->LastErrorString().toStdString().c_str());
            for (const auto& c : answers)
                QObject::disconnect(c);
            return;
        }
    }
    Run single, four;
    for (auto _ : state) {
        single = stream(1);
        four = stream(kDisplays);
    }
    for (const auto& c : answers)
        QObject::disconnect(c);

    state.counters["single_fps"] = single.fps[0];
    state.counters["single_block_ms"] = single.blockMs;
    state.counters["block_ms"] = four.blockMs;
    double minRatio = 1e9;
    for (int i = 0; i < kDisplays; ++i) {
        const double ratio = single.fps[0] > 0 ? four.fps[i] / single.fps[0] : 0;
        minRatio = std::min(minRatio, ratio);
        state.counters["fps_" + std::to_string(i)] = four.fps[i];
        state.counters["ratio_" + std::to_string(i)] = ratio;
    }
    state.counters["min_ratio"] = minRatio;
}

BENCHMARK(BM_LiveScale)
    ->Args({640, 480})
    ->Args({1280, 1024})
    ->Args({2592, 1944})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    std::array<std::unique_ptr<nxr::test::ControllerSimulator>, kDisplays> sims;
    QWidget window;
    auto* grid = new QGridLayout(&window);
    for (int i = 0; i < kDisplays; ++i) {
        // Four controllers at four addresses: the display keeps one connection per controller address.
        nxr::test::ControllerSimulator::Options options;
        options.host = QStringLiteral("127.0.0.%1").arg(i + 1);
        sims[i] = std::make_unique<nxr::test::ControllerSimulator>(options);
        if (!sims[i]->start()) {
            std::fprintf(stderr, "simulator %d: %s\n", i, qPrintable(sims[i]->errorText()));
            return 1;
        }
        auto* display = new NXRImageDisplay;
        display->setMinimumSize(640, 480);
        display->SetProperty(QStringLiteral("FTPPortNo"), QString::number(sims[i]->ftpPort()));
        display->SetProperty(QStringLiteral("HTTPPortNo"), QString::number(sims[i]->httpPort()));
        grid->addWidget(display, i / 2, i % 2);
        g_streams[i].sim = sims[i].get();
        g_streams[i].display = display;
    }
    window.resize(1300, 1000);
    window.show();

    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    for (Stream& s : g_streams)
        s.display = nullptr;
    return 0;
}
