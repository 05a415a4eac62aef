// Writing a 2592 x 1944 camera image: PNG at the library's level against Qt's default and a middle
// level (time per save, file size as a counter), and the other formats for comparison. Reading it
// back with the library's checks against a bare QImage load of the same file.

#include "CameraImage.h"

#include "imagedisplay/loading/ImageFile.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QImageWriter>

#include <benchmark/benchmark.h>

#include <array>

namespace {

const QImage& cameraImage(bool colour)
{
    static const std::array<QImage, 2> images = {nxr::bench::cameraImage(2592, 1944, false),
                                                 nxr::bench::cameraImage(2592, 1944, true)};
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

void ReadJpeg(benchmark::State& state)
{
    const bool checked = state.range(0) != 0;
    const bool colour = state.range(1) != 0;
    const QString file = QDir::temp().filePath(QStringLiteral("nxr-read-bench-%1.jpg").arg(colour));
    nxr::ImageFile::write(cameraImage(colour), file, nxr::ImageFileFormat::Jpeg);
    for (auto _ : state) {
        const QImage img = checked ? nxr::ImageFile::read(file) : QImage(file);
        benchmark::DoNotOptimize(img.constBits());
    }
    QFile::remove(file);
    state.SetLabel(std::string(checked ? "ImageFile::read" : "QImage") + (colour ? " colour" : " grey"));
}
BENCHMARK(ReadJpeg)->ArgsProduct({{0, 1}, {0, 1}})->Unit(benchmark::kMillisecond);

} // namespace
