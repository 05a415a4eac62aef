// LoadImage and live mode of the image display against the controller simulator over HTTP, each
// beside its floor measured in the same run: libcurl fetching the same file plus a QImage decode.
//
//   LoadImage/<w>/<h>/<colour>   one LoadImage of a camera JPEG (page's view: until it returns)
//   Floor/<w>/<h>/<colour>       curl GET of the same file + QImage decode
//   LiveMode/<w>/<h>             frames per second of live mode (the page answers every "Snap"
//                                with LoadImage), counters fps, floor_fps (floor rate, at most the
//                                25 fps of the 40 ms timer) and ratio = fps / floor_fps

#include "CameraImage.h"
#include "ControllerSimulator.h"

#include "imagedisplay/NXRImageDisplay.h"
#include "imagedisplay/loading/ImageFile.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QImage>
#include <QTimer>

#include <benchmark/benchmark.h>
#include <curl/curl.h>

#include <algorithm>
#include <cstdio>
#include <memory>

namespace {

nxr::test::ControllerSimulator* g_sim = nullptr;
NXRImageDisplay* g_display = nullptr;

QString imagePath(int w, int h, bool colour)
{
    return QStringLiteral("MC:\\BENCH\\CAM%1X%2%3.JPG").arg(w).arg(h).arg(colour ? "C" : "G");
}

// The camera image of that size on the controller (written once).
QString ensureImage(int w, int h, bool colour)
{
    const QString path = imagePath(w, h, colour);
    if (g_sim->readFile(path).isEmpty())
        g_sim->writeFile(
            path, nxr::ImageFile::encode(nxr::bench::cameraImage(w, h, colour), nxr::ImageFileFormat::Jpeg));
    return path;
}

size_t collect(char* data, size_t size, size_t count, void* out)
{
    static_cast<QByteArray*>(out)->append(data, qsizetype(size * count));
    return size * count;
}

// The floor: one HTTP GET of the file with libcurl and a decode of what came.
class Floor
{
public:
    Floor() : m_curl(curl_easy_init()) {}
    ~Floor() { curl_easy_cleanup(m_curl); }
    QImage fetch(const QString& path)
    {
        QString url = QStringLiteral("http://%1:%2/").arg(g_sim->host()).arg(g_sim->httpPort());
        QString rest = path;
        url += rest.remove(QLatin1Char(':')).replace(QLatin1Char('\\'), QLatin1Char('/'));
        const QByteArray u = url.toUtf8();
        QByteArray body;
        curl_easy_setopt(m_curl, CURLOPT_URL, u.constData());
        curl_easy_setopt(m_curl, CURLOPT_WRITEFUNCTION, collect);
        curl_easy_setopt(m_curl, CURLOPT_WRITEDATA, &body);
        curl_easy_setopt(m_curl, CURLOPT_USERPWD,
                         (g_sim->user() + QLatin1Char(':') + g_sim->password()).toUtf8().constData());
        curl_easy_perform(m_curl);
        QImage img;
        img.loadFromData(body);
        return img;
    }
    double secondsPerFrame(const QString& path, int frames)
    {
        QElapsedTimer clock;
        clock.start();
        for (int i = 0; i < frames; ++i)
            benchmark::DoNotOptimize(fetch(path));
        return clock.nsecsElapsed() / 1e9 / frames;
    }

private:
    CURL* m_curl;
};

void load(const QString& path)
{
    g_display->LoadImage(g_sim->host(), path, g_sim->user(), g_sim->password());
}

void BM_LoadImage(benchmark::State& state)
{
    const QString path = ensureImage(int(state.range(0)), int(state.range(1)), state.range(2) != 0);
    load(path); // connection made, first fit done
    for (auto _ : state)
        load(path);
    if (g_display->LastErrorString().size())
        state.SkipWithError(g_display->LastErrorString().toStdString().c_str());
}

void BM_Floor(benchmark::State& state)
{
    const QString path = ensureImage(int(state.range(0)), int(state.range(1)), state.range(2) != 0);
    Floor floor;
    for (auto _ : state) {
        const QImage img = floor.fetch(path);
        if (img.isNull())
            state.SkipWithError("floor fetch failed");
    }
}

void BM_LiveMode(benchmark::State& state)
{
    const int w = int(state.range(0)), h = int(state.range(1));
    const QString path = ensureImage(w, h, true);
    Floor floor;
    const double floorFps = std::min(25.0, 1.0 / floor.secondsPerFrame(path, 10));
    int frames = 0;
    const auto answer =
        QObject::connect(g_display, &NXRImageDisplay::OnButtonClicked, [&](const QString& name) {
            if (name == QLatin1String("Snap")) {
                ++frames;
                load(path);
            }
        });
    double fps = 0;
    for (auto _ : state) {
        g_display->SetProperty(QStringLiteral("LiveMode"), QStringLiteral("True"));
        load(path);
        frames = 0;
        QElapsedTimer clock;
        clock.start();
        QEventLoop loop;
        QTimer::singleShot(3000, &loop, &QEventLoop::quit);
        loop.exec();
        fps = frames / (clock.nsecsElapsed() / 1e9);
        g_display->AbortLiveMode();
    }
    QObject::disconnect(answer);
    state.counters["fps"] = fps;
    state.counters["floor_fps"] = floorFps;
    state.counters["ratio"] = fps / floorFps;
}

BENCHMARK(BM_Floor)->Args({2592, 1944, 0})->Args({2592, 1944, 1})->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadImage)->Args({2592, 1944, 0})->Args({2592, 1944, 1})->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LiveMode)
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
    curl_global_init(CURL_GLOBAL_DEFAULT);
    nxr::test::ControllerSimulator sim;
    if (!sim.start()) {
        std::fprintf(stderr, "simulator: %s\n", qPrintable(sim.errorText()));
        return 1;
    }
    g_sim = &sim;
    NXRImageDisplay display;
    display.resize(1024, 800);
    display.show();
    display.SetProperty(QStringLiteral("FTPPortNo"), QString::number(sim.ftpPort()));
    display.SetProperty(QStringLiteral("HTTPPortNo"), QString::number(sim.httpPort()));
    g_display = &display;

    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    g_display = nullptr;
    curl_global_cleanup();
    return 0;
}
