// Repaint of the image view against a bare QPainter::drawImage of exactly the visible source
// rectangle, measured in the same run.
//
// A 2592 x 1944 image (grey and RGB) is shown in a 1024 x 768 view, scrolled to the middle, at
// 6.25, 25, 100, 400 and 1600 %. Counters, each the median of many repaints:
//   bare_us       QPainter::drawImage(visible destination, image, visible source rectangle)
//   image_us      the view painting the same pixels (the image part, scaled afresh)
//   ratio         image_us / bare_us
//   view_us       the whole view: the image part and the background around it
//   view_warm_us  the whole view again while nothing changed (the scaled part is reused)
//   reduce_ms     the one-off cost of the halved images used below 100 %, once per new bitmap
//   first_ms      the first paint of a new bitmap, with whatever it makes once (the reductions,
//                 a grey bitmap's paint-ready colour copy)

#include "bench/support/BenchSupport.h"
#include "imagedisplay/RasterRenderer.h"
#include "imagedisplay/ViewMaths.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <benchmark/benchmark.h>

#include <vector>

namespace {

using nxr::bench::median;
using nxr::bench::timeOnce;

void Repaint(benchmark::State& state)
{
    const bool grey = state.range(0) == 0;
    const float zoom = float(state.range(1)) / 100.0f;
    const QImage& image = nxr::bench::cameraPattern(grey);

    nxr::ViewMaths maths;
    nxr::bench::viewTheMiddle(maths, image.size(), zoom);
    const QRect area(QPoint(0, 0), maths.visibleSize());
    const QRectF source = maths.visibleSourceRect();
    const QRectF dest = maths.toScreen(source);

    QImage target(area.size(), QImage::Format_RGB32);
    QPainter painter(&target);

    nxr::RasterRenderer renderer;
    const double reduceMs = timeOnce<std::micro>([&] {
                                renderer.setImage(image);
                                renderer.level(nxr::RasterRenderer::levelForZoom(zoom));
                            }) /
                            1000.0;

    nxr::RasterRenderer fresh;
    fresh.setImage(image);
    const double firstMs =
        timeOnce<std::micro>([&] { fresh.paint(painter, area, zoom, maths.origin()); }) / 1000.0;
    const QRect imagePart = dest.toAlignedRect().intersected(area);
    std::vector<double> view, warm, bare, part;
    for (auto _ : state) {
        for (int i = 0; i < 15; ++i) {
            bare.push_back(timeOnce<std::micro>([&] { painter.drawImage(dest, image, source); }));
            view.push_back(timeOnce<std::micro>([&] {
                renderer.discardBuffer();
                renderer.paint(painter, area, zoom, maths.origin());
            }));
            part.push_back(timeOnce<std::micro>([&] {
                renderer.discardBuffer();
                renderer.paint(painter, imagePart, zoom, maths.origin());
            }));
            warm.push_back(
                timeOnce<std::micro>([&] { renderer.paint(painter, area, zoom, maths.origin()); }));
        }
    }
    painter.end();
    const double v = median(view), w = median(warm), b = median(bare), p = median(part);
    state.counters["bare_us"] = b;
    state.counters["image_us"] = p;
    state.counters["ratio"] = p / b;
    state.counters["view_us"] = v;
    state.counters["view_warm_us"] = w;
    state.counters["reduce_ms"] = reduceMs;
    state.counters["first_ms"] = firstMs;
    state.SetLabel(std::string(grey ? "grey " : "rgb ") + std::to_string(zoom).substr(0, 7) + "%");
}

BENCHMARK(Repaint)
    ->ArgsProduct({{0, 1}, {625, 2500, 10000, 40000, 160000}})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(20);

} // namespace
