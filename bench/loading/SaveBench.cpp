// Writing a 2592 x 1944 camera image: PNG at the library's level against Qt's default and a middle
// level (time per save, file size as a counter), and the other formats for comparison.

#include "imagedisplay/loading/ImageFile.h"

#include <QBuffer>
#include <QGuiApplication>
#include <QImageWriter>
#include <QPainter>
#include <QRandomGenerator>

#include <benchmark/benchmark.h>

#include <array>

namespace {

// A camera-like picture: smooth shading, a few hard-edged parts and sensor noise.
const QImage& cameraImage(bool colour)
{
    static const std::array<QImage, 2> images = [] {
        QImage img(2592, 1944, QImage::Format_RGB32);
        QPainter p(&img);
        QLinearGradient g(0, 0, 2592, 1944);
        g.setColorAt(0, QColor(40, 50, 70));
        g.setColorAt(1, QColor(210, 190, 160));
        p.fillRect(img.rect(), g);
        p.setBrush(QColor(230, 80, 40));
        p.drawEllipse(QPoint(900, 800), 300, 300);
        p.setBrush(QColor(30, 140, 60));
        p.drawRect(1600, 300, 600, 900);
        p.end();
        QRandomGenerator rng(7);
        for (int y = 0; y < img.height(); ++y) {
            auto* line = reinterpret_cast<QRgb*>(img.scanLine(y));
            for (int x = 0; x < img.width(); ++x) {
                const int n = int(rng.bounded(9)) - 4;
                const QRgb c = line[x];
                line[x] = qRgb(qBound(0, qRed(c) + n, 255), qBound(0, qGreen(c) + n, 255),
                               qBound(0, qBlue(c) + n, 255));
            }
        }
        return std::array<QImage, 2>{img.convertToFormat(QImage::Format_Grayscale8), img};
    }();
    return images[colour ? 1 : 0];
}

void PngAtQuality(benchmark::State& state)
{
    const QImage& img = cameraImage(true);
    const int quality = int(state.range(0));
    qint64 size = 0;
    for (auto _ : state) {
        QByteArray out;
        QBuffer buffer(&out);
        buffer.open(QIODevice::WriteOnly);
        QImageWriter writer(&buffer, "png");
        writer.setQuality(quality);
        writer.write(img);
        size = out.size();
    }
    state.counters["MB"] = double(size) / 1e6;
}
// -1 is Qt's default (zlib level 6); 50 is level 4; 80 (the library's) is level 1.
BENCHMARK(PngAtQuality)->Arg(-1)->Arg(50)->Arg(nxr::ImageFile::kPngQuality)->Unit(benchmark::kMillisecond);

void EncodeAs(benchmark::State& state)
{
    const auto format = nxr::ImageFileFormat(state.range(0));
    const QImage& img = cameraImage(state.range(1) != 0);
    qint64 size = 0;
    for (auto _ : state)
        size = nxr::ImageFile::encode(img, format).size();
    state.SetLabel(
        (nxr::ImageFile::extensionOf(format) + (state.range(1) ? " colour" : " grey")).toStdString());
    state.counters["MB"] = double(size) / 1e6;
}
BENCHMARK(EncodeAs)
    ->ArgsProduct({{int(nxr::ImageFileFormat::Jpeg), int(nxr::ImageFileFormat::Png),
                    int(nxr::ImageFileFormat::Gif), int(nxr::ImageFileFormat::Bmp)},
                   {0, 1}})
    ->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
