// Repaint of the raster view widget with its layers, against the bare renderer in the same run.
//
// A 2592 x 1944 image (grey and RGB) in a 1024 x 768 view at 100 %, scrolled to the middle.
// Counters, each the median of many repaints:
//   renderer_us   the renderer alone painting the whole view (the baseline)
//   view0_us      the widget repainting the whole view with no layer
//   view1_us      the same with one layer (a turned rectangle, eight handles and a label, as a
//                 movable shape draws itself)
//   dirty64_us    the widget repainting a 64 x 64 device-pixel rectangle, with that layer
//   full_over_dirty  view1_us / dirty64_us

#include "bench/support/BenchSupport.h"
#include "imagedisplay/RasterRenderer.h"
#include "imagedisplay/RasterView.h"
#include "imagedisplay/ViewMaths.h"
#include "imagedisplay/edit/PaintLayer.h"

#include <QImage>
#include <QPainter>
#include <QPolygonF>

#include <benchmark/benchmark.h>

#include <vector>

namespace {

using nxr::bench::median;
using nxr::bench::timeOnce;

class ShapeLayer : public nxr::PaintLayer
{
public:
    void paint(QPainter& painter, const nxr::ViewMaths& maths, const QRect&) override
    {
        const qreal px = screenPixel(painter);
        const QPointF c = maths.toScreen(QPointF(1296, 972));
        QPolygonF box;
        for (QPointF p : {QPointF(-200, -120), QPointF(220, -90), QPointF(190, 150), QPointF(-230, 120)})
            box << c + p;
        painter.setPen(QPen(Qt::yellow, px));
        painter.drawPolygon(box);
        for (int i = 0; i < box.size(); ++i) {
            const QPointF mid = (box[i] + box[(i + 1) % box.size()]) / 2;
            for (QPointF h : {box[i], mid})
                painter.fillRect(QRectF(h - QPointF(3 * px, 3 * px), QSizeF(6 * px, 6 * px)), Qt::yellow);
        }
        painter.drawText(c + QPointF(-200, -130), QStringLiteral("Window 1"));
    }
};

void ViewRepaint(benchmark::State& state)
{
    const bool grey = state.range(0) == 0;
    const QImage& image = nxr::bench::cameraPattern(grey);

    nxr::ViewMaths maths;
    nxr::bench::viewTheMiddle(maths, image.size(), 100.0f);
    const QSize size = maths.visibleSize();

    nxr::RasterView view;
    view.resize(size);
    view.setBitmap(image);
    view.setMaths(&maths);
    view.setView(maths.zoom(), maths.origin());
    nxr::RasterRenderer renderer;
    renderer.setImage(image);

    QImage target(size, QImage::Format_RGB32);
    const QRect area(QPoint(0, 0), size);
    const QRect dirty(size.width() / 2 - 32, size.height() / 2 - 32, 64, 64);
    ShapeLayer layer;
    std::vector<double> bare, none, one, part;
    {
        QPainter p(&target);
        renderer.paint(p, area, maths.zoom(), maths.origin()); // first paint: paint-ready copies
    }
    view.render(&target);
    for (auto _ : state) {
        for (int i = 0; i < 15; ++i) {
            bare.push_back(timeOnce<std::micro>([&] {
                QPainter p(&target);
                renderer.paint(p, area, maths.zoom(), maths.origin());
            }));
            view.removeLayer(&layer);
            none.push_back(timeOnce<std::micro>([&] { view.render(&target); }));
            view.addLayer(&layer);
            one.push_back(timeOnce<std::micro>([&] { view.render(&target); }));
            part.push_back(
                timeOnce<std::micro>([&] { view.render(&target, dirty.topLeft(), QRegion(dirty)); }));
        }
    }
    state.counters["renderer_us"] = median(bare);
    state.counters["view0_us"] = median(none);
    state.counters["view1_us"] = median(one);
    state.counters["dirty64_us"] = median(part);
    state.counters["full_over_dirty"] = median(one) / median(part);
    state.SetLabel(grey ? "grey 100%" : "rgb 100%");
}

BENCHMARK(ViewRepaint)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(20);

} // namespace
