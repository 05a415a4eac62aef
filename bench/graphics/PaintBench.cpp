// Painting the result graphics over the image view against the same QPainter calls issued bare,
// measured in the same run.
//
// 1,000 and 10,000 items (lines, rotated boxes, crosses, circles, texts in equal shares, six
// colours, spread over a 2592 x 1944 image) over a 1024 x 768 view: fitted (every item visible)
// and at 100 % scrolled to the middle (about a sixth visible). Counters, each the median of the
// repetitions:
//   overlay_us  OverlayPainter::paint over the whole collection (culling included)
//   bare_us     the QPainter calls of the drawn items alone, with screen coordinates worked out
//               beforehand and the pen set only when the colour changes
//   ratio       overlay_us / bare_us
//   drawn       items drawn (the rest are outside the view)
// Outside: the same items all outside the view: the cost of skipping them.

#include "bench/support/BenchSupport.h"
#include "graphics/OverlayPainter.h"
#include "imagedisplay/ViewMaths.h"

#include <QFontMetricsF>
#include <QImage>
#include <QPaintDevice>
#include <QPainter>
#include <QPen>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <random>
#include <variant>
#include <vector>

namespace {

using nxr::bench::median;
using nxr::bench::timeOnce;
const QSize kImage(2592, 1944);
const QSize kView(1024, 768);
const qint32 kColors[] = {0x0000FF, 0x00FF00, 0xFF0000, 0x00FFFF, 0xFF00FF, 0x404040};

nxr::clsOverlayCollection makeItems(int count, QPointF shift)
{
    std::mt19937 rng(42);
    std::uniform_real_distribution<double> ux(0, kImage.width()), uy(0, kImage.height()), small(5, 60),
        angle(-180, 180);
    nxr::clsOverlayCollection items;
    for (int i = 0; i < count; ++i) {
        const double x = ux(rng) + shift.x(), y = uy(rng) + shift.y();
        const qint32 c = kColors[i % 6];
        switch (i % 5) {
        case 0:
            items.AddLine(x, y, x + small(rng), y + small(rng), c);
            break;
        case 1:
            items.AddBox(x, y, small(rng), small(rng), angle(rng), c);
            break;
        case 2:
            items.AddCross(x, y, angle(rng), c);
            break;
        case 3:
            items.AddCircle(x, y, small(rng), c);
            break;
        default:
            items.AddText(x, y, QStringLiteral("P%1: %2").arg(i).arg(x, 0, 'f', 1), c);
        }
    }
    return items;
}

// One bare call, screen coordinates worked out.
struct Bare
{
    enum Kind { Line, Poly, Cross, Ellipse, Text } kind;
    qint32 color;
    QPointF p[4];
    double r = 0;
    QString text;
};

QColor rgb(qint32 c)
{
    return QColor(c & 0xFF, (c >> 8) & 0xFF, (c >> 16) & 0xFF);
}

std::vector<Bare> bareCalls(const nxr::clsOverlayCollection& items, const nxr::ScreenMapping& m, QRectF view)
{
    std::vector<Bare> out;
    const auto in = [&](QRectF r) { return r.adjusted(-3, -3, 3, 3).intersects(view); };
    const auto sc = [&](double x, double y) { return m.toScreen(x, y); };
    for (const auto& e : items) {
        if (const auto* l = std::get_if<nxr::clsLineItem>(&e.item)) {
            Bare b{Bare::Line, l->Color, {sc(l->X1, l->Y1), sc(l->X2, l->Y2)}};
            if (in(QRectF(b.p[0], b.p[1]).normalized()))
                out.push_back(b);
        } else if (const auto* x = std::get_if<nxr::clsBoxItem>(&e.item)) {
            nxr::clsRectangle r;
            r.SetFromBox(x->Left, x->Top, x->Width, x->Height, x->Angle);
            Bare b{Bare::Poly, x->Color, {}};
            QRectF bound;
            for (int i = 0; i < 4; ++i) {
                b.p[i] = sc(r.Corner(i).X(), r.Corner(i).Y());
                bound |= QRectF(b.p[i], QSizeF(1, 1));
            }
            if (in(bound))
                out.push_back(b);
        } else if (const auto* c = std::get_if<nxr::clsCrossItem>(&e.item)) {
            const QPointF at = sc(c->X, c->Y);
            const double h = 2 * 11 * m.scale, t = c->Angle * M_PI / 180;
            const QPointF u(std::cos(t) * h, -std::sin(t) * h), v(-u.y(), u.x());
            Bare b{Bare::Cross, c->Color, {at - u, at + u, at - v, at + v}};
            if (in(QRectF(at - QPointF(h, h), at + QPointF(h, h))))
                out.push_back(b);
        } else if (const auto* o = std::get_if<nxr::clsCircleItem>(&e.item)) {
            Bare b{Bare::Ellipse, o->Color, {sc(o->X, o->Y)}, o->Radius * m.scale};
            if (in(QRectF(b.p[0] - QPointF(b.r, b.r), b.p[0] + QPointF(b.r, b.r))))
                out.push_back(b);
        } else if (const auto* t = std::get_if<nxr::clsTextItem>(&e.item)) {
            Bare b{Bare::Text, t->Color, {sc(t->X, t->Y) + QPointF(3, 0)}, 0, t->Text};
            if (in(QRectF(b.p[0], QSizeF(8.0 * t->Text.size(), 16))))
                out.push_back(b);
        }
    }
    return out;
}

void replay(QPainter& p, const std::vector<Bare>& calls, const QFont& font, double ascent)
{
    p.save();
    p.setRenderHint(QPainter::Antialiasing, false);
    p.setBrush(Qt::NoBrush);
    p.setFont(font);
    qint32 current = -1;
    const auto pen = [&](qint32 c) {
        if (c != current) {
            p.setPen(QPen(rgb(c), 1.0, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
            current = c;
        }
    };
    for (const Bare& b : calls) {
        switch (b.kind) {
        case Bare::Line:
            pen(b.color);
            p.drawLine(QLineF(b.p[0], b.p[1]));
            break;
        case Bare::Poly:
            pen(b.color);
            p.drawPolygon(b.p, 4);
            break;
        case Bare::Cross: {
            pen(b.color);
            const QLineF l[2] = {QLineF(b.p[0], b.p[1]), QLineF(b.p[2], b.p[3])};
            p.drawLines(l, 2);
            break;
        }
        case Bare::Ellipse:
            pen(b.color);
            p.drawEllipse(b.p[0], b.r, b.r);
            break;
        case Bare::Text: {
            const QPointF base = b.p[0] + QPointF(0, ascent);
            pen(nxr::GetContrastColor(b.color));
            p.drawText(base + QPointF(-1, 0), b.text);
            p.drawText(base + QPointF(1, 0), b.text);
            p.drawText(base + QPointF(0, -1), b.text);
            p.drawText(base + QPointF(0, 1), b.text);
            pen(b.color);
            p.drawText(base, b.text);
            break;
        }
        }
    }
    p.restore();
}

nxr::ScreenMapping mappingFor(double zoom)
{
    nxr::ViewMaths maths;
    nxr::bench::viewTheMiddle(maths, kImage, float(zoom));
    const QSize visible = maths.visibleSize();
    return nxr::ScreenMapping{maths.scale(), QPointF(maths.origin()), 1.0,
                              QRectF(0, 0, visible.width(), visible.height())};
}

void Paint(benchmark::State& state)
{
    const int count = int(state.range(0));
    const double zoom =
        state.range(1) == 0 ? 100.0 * kView.height() / kImage.height() : double(state.range(1));
    const nxr::ScreenMapping m = mappingFor(zoom);
    const nxr::clsOverlayCollection items = makeItems(count, QPointF());
    QImage target(kView, QImage::Format_RGB32);
    target.fill(Qt::gray);
    const QRect dirty(QPoint(0, 0), kView);

    QPainter painter(&target);
    QFont font;
    double ascent = 0;
    int drawn = 0;
    {
        nxr::OverlayPainter probe(painter, m, dirty);
        font = probe.textFont();
        ascent = QFontMetricsF(font).ascent();
    }
    const std::vector<Bare> calls = bareCalls(items, m, QRectF(dirty));

    std::vector<double> overlay, bare;
    for (auto _ : state) {
        overlay.push_back(timeOnce<std::micro>([&] {
            nxr::OverlayPainter op(painter, m, dirty);
            op.paint(items);
            drawn = op.drawnCount();
        }));
        bare.push_back(timeOnce<std::micro>([&] { replay(painter, calls, font, ascent); }));
    }
    state.counters["overlay_us"] = median(overlay);
    state.counters["bare_us"] = median(bare);
    state.counters["ratio"] = median(overlay) / median(bare);
    state.counters["drawn"] = drawn;
    state.counters["bare_calls"] = double(calls.size());
}

// Every item lies right of the image, out of view: what skipping costs per item.
void Outside(benchmark::State& state)
{
    const int count = int(state.range(0));
    const nxr::ScreenMapping m = mappingFor(100);
    const nxr::clsOverlayCollection items = makeItems(count, QPointF(3 * kImage.width(), 0));
    QImage target(kView, QImage::Format_RGB32);
    QPainter painter(&target);
    std::vector<double> times;
    int drawn = -1;
    for (auto _ : state) {
        times.push_back(timeOnce<std::micro>([&] {
            nxr::OverlayPainter op(painter, m, QRect(QPoint(0, 0), kView));
            op.paint(items);
            drawn = op.drawnCount();
        }));
    }
    state.counters["overlay_us"] = median(times);
    state.counters["ns_per_item"] = median(times) * 1000.0 / count;
    state.counters["drawn"] = drawn;
}

} // namespace

BENCHMARK(Paint)->ArgsProduct({{1000, 10000}, {0, 100}})->Iterations(25)->Unit(benchmark::kMillisecond);
BENCHMARK(Outside)->Arg(1000)->Arg(10000)->Iterations(50)->Unit(benchmark::kMillisecond);
