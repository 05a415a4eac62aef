// The whole image display repainting with result graphics, and one mouse move of a movable
// window drag, against the bare image repaint and a bare QPainter::drawImage in the same run.
//
// A 2592 x 1944 RGB image in a display whose image view is 1024 x 768, at 100 % scrolled to the
// middle and fitted. Counters, each the median of the repetitions:
//   Repaint/<items>/<fit>
//     floor_us    QPainter::drawImage of exactly the visible source rectangle, plus items_us: the
//                 visible items drawn with plain QPainter calls at precomputed screen positions
//                 (a text five times, as its halo needs), no widget
//     image_us    a display without graphics: its image view repainted (QWidget::repaint)
//     display_us  the same with <items> graphics (boxes, lines, crosses, circles, texts spread over
//                 the image) drawn by the display's graphics layer
//     over_image  display_us / image_us;  over_floor  display_us / floor_us
//   DragMove/<angle>
//     image_us    as above (the floor the drag is held to)
//     move_us     one mouse move with the button held, sent to the image view during a window
//                 drag, plus the repaint of the view it leads to (QWidget::repaint)
//     dirty_us    the same move, repainting only what it asked to repaint (the event loop's
//                 partial update, as on screen)
//     over_image  move_us / image_us
//     ev_us       the mouse move alone (hit state, drag, the item replaced, the repaint asked for)
//     rp_us       a full repaint of the view during the drag alone (image, graphics, handles)

#include "imagedisplay/ImageViewport.h"
#include "imagedisplay/NXRImageDisplay.h"
#include "imagedisplay/RasterView.h"
#include "imagedisplay/ViewMaths.h"

#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <QPolygonF>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <random>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
const QSize kImage(2592, 1944);
const QSize kView(1024, 768);

QImage sourceImage()
{
    QImage img(kImage, QImage::Format_RGB32);
    for (int y = 0; y < img.height(); ++y) {
        QRgb* line = reinterpret_cast<QRgb*>(img.scanLine(y));
        for (int x = 0; x < img.width(); ++x)
            line[x] = qRgb((x * 7) & 255, (y * 5) & 255, (x ^ y) & 255);
    }
    return img;
}

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

template <typename F> double timeOnce(F&& f)
{
    const auto t0 = Clock::now();
    f();
    return std::chrono::duration<double, std::micro>(Clock::now() - t0).count();
}

// A shown display whose image view is kView, with the image at the given zoom, scrolled to the
// middle (or fitted).
std::unique_ptr<NXRImageDisplay> makeDisplay(const QImage& image, bool fit)
{
    auto display = std::make_unique<NXRImageDisplay>();
    display->resize(kView + QSize(40, 120));
    display->show();
    for (int i = 0; i < 3; ++i) {
        QApplication::processEvents();
        const QSize lead = display->leadView()->size();
        display->resize(display->size() + (kView - lead));
    }
    display->showImage(image, false);
    if (!fit) {
        display->setZoom(100);
        display->viewport().setScrollPosition(display->viewport().maths().scrollMaximum() / 2);
    }
    QApplication::processEvents();
    return display;
}

// What an item is, for drawing it again with bare QPainter calls.
struct Item
{
    int kind;
    int color;
    double x, y, s, angle;
    QString text;
};

std::vector<Item> addItems(NXRImageDisplay& display, int count)
{
    std::vector<Item> out;
    std::mt19937 random(7);
    std::uniform_real_distribution<double> x(0, kImage.width()), y(0, kImage.height()), size(5, 120);
    const int colors[] = {0x0000FF, 0x00FF00, 0xFF0000, 0x00FFFF, 0xFF00FF, 0x404040};
    for (int i = 0; i < count; ++i) {
        const int c = colors[i % 6];
        const double px = x(random), py = y(random), s = size(random);
        out.push_back(Item{i % 5, c, px, py, s, double(i % 90), QStringLiteral("P%1").arg(i)});
        switch (i % 5) {
        case 0:
            display.DrawBox(px, py, s, s / 2, double(i % 90), c);
            break;
        case 1:
            display.DrawLine(px, py, px + s, py + s / 3, c);
            break;
        case 2:
            display.DrawCross(px, py, double(i % 45), c);
            break;
        case 3:
            display.DrawCircle(px, py, s / 2, c);
            break;
        default:
            display.DrawText(QStringLiteral("P%1").arg(i), int(px), int(py), c);
            break;
        }
    }
    return out;
}

// The items' shapes drawn with plain QPainter calls at screen positions worked out beforehand,
// skipping those outside the view by their centre: the least any drawing of them costs.
double bareItems(const std::vector<Item>& items, const nxr::ViewMaths& maths, QImage& target)
{
    struct Shape
    {
        int kind;
        QColor color;
        QPolygonF points;
        QRectF rect;
        QString text;
    };
    std::vector<Shape> shapes;
    const double k = maths.scale();
    const QRectF view(QPointF(0, 0), QSizeF(kView));
    for (const Item& it : items) {
        const QPointF p = maths.toScreen(QPointF(it.x, it.y));
        if (!view.adjusted(-it.s * k, -it.s * k, it.s * k, it.s * k).contains(p))
            continue;
        Shape sh{it.kind,
                 QColor(it.color & 0xFF, (it.color >> 8) & 0xFF, (it.color >> 16) & 0xFF),
                 {},
                 {},
                 it.text};
        switch (it.kind) {
        case 0:
            sh.points << p << p + QPointF(it.s * k, 0) << p + QPointF(it.s * k, it.s * k / 2)
                      << p + QPointF(0, it.s * k / 2);
            break;
        case 1:
            sh.points << p << p + QPointF(it.s * k, it.s * k / 3);
            break;
        case 2:
            sh.points << p - QPointF(22 * k, 0) << p + QPointF(22 * k, 0) << p - QPointF(0, 22 * k)
                      << p + QPointF(0, 22 * k);
            break;
        case 3:
            sh.rect = QRectF(p - QPointF(it.s * k / 2, it.s * k / 2), QSizeF(it.s * k, it.s * k));
            break;
        default:
            sh.rect = QRectF(p + QPointF(3, 0), QSizeF(60, 14));
            break;
        }
        shapes.push_back(std::move(sh));
    }
    QPainter painter(&target);
    QFont font = painter.font();
    font.setPointSizeF(9);
    font.setWeight(QFont::Weight(600));
    painter.setFont(font);
    return timeOnce([&] {
        for (const Shape& sh : shapes) {
            painter.setPen(QPen(sh.color, 1));
            switch (sh.kind) {
            case 0:
                painter.drawPolygon(sh.points);
                break;
            case 1:
                painter.drawLine(sh.points[0], sh.points[1]);
                break;
            case 2:
                painter.drawLine(sh.points[0], sh.points[1]);
                painter.drawLine(sh.points[2], sh.points[3]);
                break;
            case 3:
                painter.drawEllipse(sh.rect);
                break;
            default:
                for (const QPointF d :
                     {QPointF(-1, 0), QPointF(1, 0), QPointF(0, -1), QPointF(0, 1), QPointF(0, 0)})
                    painter.drawText(sh.rect.translated(d), sh.text);
                break;
            }
        }
    });
}

double floorOf(const NXRImageDisplay& display, const QImage& image, QImage& target)
{
    const nxr::ViewMaths& maths = display.viewport().maths();
    const QRectF source = maths.visibleSourceRect();
    const QRectF dest = maths.toScreen(source);
    QPainter painter(&target);
    std::vector<double> t;
    for (int i = 0; i < 15; ++i)
        t.push_back(timeOnce([&] { painter.drawImage(dest, image, source); }));
    return median(t);
}

void Repaint(benchmark::State& state)
{
    static const QImage image = sourceImage();
    const int items = int(state.range(0));
    const bool fit = state.range(1) == 1;
    auto bare = makeDisplay(image, fit);
    auto withItems = makeDisplay(image, fit);
    const std::vector<Item> list = addItems(*withItems, items);
    QApplication::processEvents();
    QImage target(kView, QImage::Format_RGB32);
    std::vector<double> floor, plain, full, drawn;
    for (auto _ : state) {
        floor.push_back(floorOf(*bare, image, target));
        drawn.push_back(bareItems(list, withItems->viewport().maths(), target));
        for (int i = 0; i < 5; ++i) {
            plain.push_back(timeOnce([&] { bare->leadView()->repaint(); }));
            full.push_back(timeOnce([&] { withItems->leadView()->repaint(); }));
        }
    }
    const double f = median(floor) + median(drawn), p = median(plain), d = median(full);
    state.counters["items_us"] = median(drawn);
    state.counters["floor_us"] = f;
    state.counters["image_us"] = p;
    state.counters["display_us"] = d;
    state.counters["over_image"] = d / p;
    state.counters["over_floor"] = d / f;
    state.SetLabel(std::to_string(items) + " items, " + (fit ? "fitted" : "100%"));
}

BENCHMARK(Repaint)->ArgsProduct({{0, 1000, 10000}, {0, 1}})->Unit(benchmark::kMillisecond)->Iterations(10);

void DragMove(benchmark::State& state)
{
    static const QImage image = sourceImage();
    const double angle = double(state.range(0));
    auto bare = makeDisplay(image, false);
    auto display = makeDisplay(image, false);
    nxr::RasterView* lead = display->leadView();
    const nxr::ViewMaths& maths = display->viewport().maths();
    const QPointF centre = maths.toImage(QPointF(kView.width() / 2.0, kView.height() / 2.0));
    display->SetMovableWindow(centre.y() - 120, centre.x() - 200, 240, 400, angle, true);
    display->EditMovableWindow();
    const double ratio = lead->deviceRatio();
    const QPoint press = (maths.toScreen(centre) / ratio).toPoint();
    auto send = [&](QEvent::Type type, QPoint p) {
        QMouseEvent e(type, p, lead->mapToGlobal(p),
                      type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(lead, &e);
    };
    send(QEvent::MouseButtonPress, press);
    QApplication::processEvents();
    std::vector<double> plain, move, dirty, ev, rp;
    int step = 0;
    for (auto _ : state) {
        for (int i = 0; i < 10; ++i) {
            plain.push_back(timeOnce([&] { bare->leadView()->repaint(); }));
            const QPoint to = press + QPoint((++step % 2) ? 3 : -3, (step % 4) < 2 ? 2 : -2);
            move.push_back(timeOnce([&] {
                send(QEvent::MouseMove, to);
                lead->repaint();
            }));
            ev.push_back(timeOnce([&] { send(QEvent::MouseMove, press + QPoint(step % 3, 1)); }));
            rp.push_back(timeOnce([&] { lead->repaint(); }));
            const QPoint back = press + QPoint((++step % 2) ? 3 : -3, (step % 4) < 2 ? 2 : -2);
            dirty.push_back(timeOnce([&] {
                send(QEvent::MouseMove, back);
                QApplication::processEvents();
            }));
        }
    }
    send(QEvent::MouseButtonRelease, press);
    const double p = median(plain), m = median(move);
    state.counters["image_us"] = p;
    state.counters["move_us"] = m;
    state.counters["dirty_us"] = median(dirty);
    state.counters["ev_us"] = median(ev);
    state.counters["rp_us"] = median(rp);
    state.counters["over_image"] = m / p;
    state.SetLabel(angle == 0 ? "straight window" : "turned window");
}

BENCHMARK(DragMove)->Arg(0)->Arg(30)->Unit(benchmark::kMillisecond)->Iterations(10);

} // namespace
