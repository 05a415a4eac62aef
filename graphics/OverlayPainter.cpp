#include "graphics/OverlayPainter.h"

#include "imagedisplay/ViewMaths.h"

#include <QFontMetricsF>
#include <QPaintDevice>
#include <QPainter>
#include <QPen>

#include <algorithm>
#include <cmath>

namespace nxr {

QColor colorFromLong(qint32 color)
{
    return QColor(color & 0xFF, (color >> 8) & 0xFF, (color >> 16) & 0xFF);
}

ScreenMapping ScreenMapping::ofView(const ViewMaths& view, double devicePixelRatio)
{
    const QSize visible = view.visibleSize();
    return ScreenMapping{view.scale(), QPointF(view.origin()), devicePixelRatio,
                         QRectF(0.0, 0.0, visible.width(), visible.height())};
}

namespace {

Qt::PenStyle penStyleOf(int style)
{
    switch (style & 3) {
    case 1:
        return Qt::DashLine;
    case 2:
        return Qt::DotLine;
    case 3:
        return Qt::DashDotLine;
    default:
        return Qt::SolidLine;
    }
}

constexpr int kArrowAtFirst = 4;
constexpr int kArrowAtSecond = 8;

} // namespace

OverlayPainter::OverlayPainter(QPainter& painter, const ScreenMapping& mapping, const QRect& dirty)
    : m_p(painter), m_map(mapping), m_dirty(dirty)
{
    m_px = m_map.devicePixelRatio > 0.0 ? m_map.devicePixelRatio : 1.0;
    m_penPad = m_px + 1.0;
    m_p.save();
    m_p.setRenderHint(QPainter::Antialiasing, false);
    m_p.setBrush(Qt::NoBrush);
}

OverlayPainter::~OverlayPainter()
{
    m_p.restore();
}

void OverlayPainter::usePen(qint32 color, int penStyle)
{
    if (color == m_penColor && penStyle == m_penStyle)
        return;
    QPen pen(colorFromLong(color), m_px, penStyleOf(penStyle), Qt::FlatCap, Qt::MiterJoin);
    m_p.setPen(pen);
    m_penColor = color;
    m_penStyle = penStyle;
}

bool OverlayPainter::visible(double left, double top, double right, double bottom, double margin)
{
    if (right + margin < m_dirty.left() || left - margin > m_dirty.right() + 1.0 ||
        bottom + margin < m_dirty.top() || top - margin > m_dirty.bottom() + 1.0) {
        ++m_culled;
        return false;
    }
    ++m_drawn;
    return true;
}

void OverlayPainter::paint(const clsOverlayCollection& items, const QString& skipKey)
{
    for (const auto& entry : items) {
        if (!skipKey.isEmpty() && entry.key == skipKey)
            continue;
        const OverlayItem& item = entry.item;
        switch (item.index()) {
        case 0: {
            const auto& b = std::get<clsBoxItem>(item);
            drawRectangle(b.Color, false, b.Left, b.Top, b.Width, b.Height, b.Angle);
            break;
        }
        case 1: {
            const auto& c = std::get<clsCrossItem>(item);
            drawCross(c.Color, false, c.X, c.Y, c.Angle, kCollectionCrossSize);
            break;
        }
        case 2: {
            const auto& l = std::get<clsLineItem>(item);
            if (l.IsPair)
                drawLinePair(l);
            else
                drawLine(l.Color, l.X1, l.Y1, l.X2, l.Y2, l.Arrowed);
            break;
        }
        case 3: {
            const auto& t = std::get<clsTextItem>(item);
            drawText(t.Color, t.X, t.Y, t.Text);
            break;
        }
        case 4: {
            const auto& c = std::get<clsCircleItem>(item);
            drawCircle(c.Color, c.X, c.Y, c.Radius);
            break;
        }
        }
    }
}

void OverlayPainter::drawRectangle(qint32 color, bool marker, double left, double top, double width,
                                   double height, double angle, const RectangleHandles& handles)
{
    const double s = m_map.scale;
    const QPointF centre = m_map.toScreen(left + width / 2.0, top + height / 2.0);
    // Half the diagonal bounds the rotated box; the handles reach 4 screen pixels further.
    const double reach = 0.5 * (std::abs(width) + std::abs(height)) * s + (marker ? 8.0 * m_px : 0.0);
    if (!visible(centre.x() - reach, centre.y() - reach, centre.x() + reach, centre.y() + reach, m_penPad))
        return;

    const double theta = std::atan(1.0) * angle / 45.0;
    const double ux = std::cos(theta), uy = -std::sin(theta);
    const double vx = std::sin(theta), vy = std::cos(theta);
    const double wx = width * s * ux, wy = width * s * uy;
    const double hx = height * s * vx, hy = height * s * vy;
    const QPointF c0(centre.x() - wx / 2.0 - hx / 2.0, centre.y() - wy / 2.0 - hy / 2.0);
    const QPointF corners[4] = {c0, QPointF(c0.x() + wx, c0.y() + wy),
                                QPointF(c0.x() + wx + hx, c0.y() + wy + hy),
                                QPointF(c0.x() + hx, c0.y() + hy)};
    usePen(color, 0);
    m_p.drawPolygon(corners, 4);
    if (!marker)
        return;

    const double side = 7.0 * m_px, half = 3.5 * m_px;
    auto handle = [&](const QPointF& at, qint32 handleColor) {
        const QRectF square(at.x() - half, at.y() - half, side, side);
        usePen(handleColor, 0);
        if (handles.filled)
            m_p.fillRect(square, colorFromLong(handleColor));
        else
            m_p.drawRect(square);
    };
    for (int i = 0; i < 4; ++i)
        handle(corners[i], handles.colors[std::size_t(i)]);
    if (handles.rotatable)
        handle((corners[1] + corners[2]) / 2.0, handles.colors[4]);
}

void OverlayPainter::drawCross(qint32 color, bool marker, double x, double y, double angle, double size)
{
    QPointF c = m_map.toScreen(x, y);
    double h;
    if (marker) {
        c = QPointF(std::round(c.x()), std::round(c.y()));
        h = size * m_px;
    } else {
        h = 2.0 * size * m_map.scale;
    }
    const double reach = std::max(h, marker ? 6.0 * m_px : 0.0);
    if (!visible(c.x() - reach, c.y() - reach, c.x() + reach, c.y() + reach, m_penPad))
        return;

    const double theta = std::atan(1.0) * angle / 45.0;
    const double ux = std::cos(theta) * h, uy = -std::sin(theta) * h;
    usePen(color, 0);
    const QLineF strokes[2] = {QLineF(c.x() - ux, c.y() - uy, c.x() + ux, c.y() + uy),
                               QLineF(c.x() + uy, c.y() - ux, c.x() - uy, c.y() + ux)};
    m_p.drawLines(strokes, 2);
    if (marker) {
        const QColor fill = colorFromLong(color);
        m_p.setBrush(fill);
        m_p.drawEllipse(QRectF(c.x() - 5.0 * m_px, c.y() - 5.0 * m_px, kMarkerDotDiameter * m_px,
                               kMarkerDotDiameter * m_px));
        m_p.setBrush(Qt::NoBrush);
    }
}

void OverlayPainter::arrowHead(const QPointF& tip, const QPointF& back)
{
    const QPointF p(back.y(), -back.x());
    const QLineF barbs[2] = {QLineF(tip, tip + back + p / 2.0), QLineF(tip, tip + back - p / 2.0)};
    m_p.drawLines(barbs, 2);
}

void OverlayPainter::drawLine(qint32 color, double x1, double y1, double x2, double y2, int style)
{
    const QPointF a = m_map.toScreen(x1, y1), b = m_map.toScreen(x2, y2);
    const bool arrows = (style & (kArrowAtFirst | kArrowAtSecond)) != 0;
    const double margin = m_penPad + (arrows ? kArrowLength * 1.2 * m_px : 0.0);
    if (!visible(std::min(a.x(), b.x()), std::min(a.y(), b.y()), std::max(a.x(), b.x()),
                 std::max(a.y(), b.y()), margin))
        return;
    usePen(color, style);
    m_p.drawLine(QLineF(a, b));
    if (!arrows)
        return;
    const double dx = a.x() - b.x(), dy = a.y() - b.y();
    const double length = std::sqrt(dx * dx + dy * dy);
    if (length == 0.0)
        return;
    // back points from the second end toward the first, 15 screen pixels long.
    const QPointF back(dx / length * kArrowLength * m_px, dy / length * kArrowLength * m_px);
    usePen(color, 0);
    if (style & kArrowAtSecond)
        arrowHead(b, back);
    if (style & kArrowAtFirst)
        arrowHead(a, -back);
}

void OverlayPainter::drawLinePair(const clsLineItem& line)
{
    const auto c = line.PairCorners();
    double left = c[0].X(), right = left, top = c[0].Y(), bottom = top;
    for (const auto& v : c) {
        left = std::min(left, v.X());
        right = std::max(right, v.X());
        top = std::min(top, v.Y());
        bottom = std::max(bottom, v.Y());
    }
    const QPointF tl = m_map.toScreen(left, top), br = m_map.toScreen(right, bottom);
    const bool arrows = (line.Arrowed & (kArrowAtFirst | kArrowAtSecond)) != 0;
    if (!visible(tl.x(), tl.y(), br.x(), br.y(), m_penPad + (arrows ? kArrowLength * 1.2 * m_px : 0.0)))
        return;
    --m_drawn; // counted once more by the centre line below
    usePen(line.Color, 0);
    const QLineF sides[2] = {QLineF(m_map.toScreen(c[0].X(), c[0].Y()), m_map.toScreen(c[1].X(), c[1].Y())),
                             QLineF(m_map.toScreen(c[3].X(), c[3].Y()), m_map.toScreen(c[2].X(), c[2].Y()))};
    m_p.drawLines(sides, 2);
    drawLine(line.Color, line.X1, line.Y1, line.X2, line.Y2, line.Arrowed);
}

void OverlayPainter::drawCircle(qint32 color, double x, double y, double radius)
{
    const QPointF c = m_map.toScreen(x, y);
    const double r = std::abs(radius) * m_map.scale;
    if (!visible(c.x() - r, c.y() - r, c.x() + r, c.y() + r, m_penPad))
        return;
    usePen(color, 0);
    m_p.drawEllipse(c, r, r);
}

const QFont& OverlayPainter::textFont()
{
    if (!m_fontReady) {
        m_font = m_p.font();
        // 9 points on the device's own resolution, in device pixels of this painter.
        const double dpi = m_p.device() ? m_p.device()->logicalDpiY() : 96.0;
        m_font.setPixelSize(std::max(1, int(std::lround(kTextPointSize * dpi / 72.0 * m_px))));
        m_font.setWeight(QFont::Weight(kTextWeight));
        m_font.setStyleStrategy(QFont::NoAntialias);
        const QFontMetricsF metrics(m_font);
        m_ascent = metrics.ascent();
        m_lineHeight = metrics.height();
        m_maxCharWidth = metrics.maxWidth();
        m_fontReady = true;
    }
    return m_font;
}

QRectF OverlayPainter::textRect(double x, double y, const QString& text)
{
    textFont();
    const QPointF at = m_map.toScreen(x, y);
    double left = at.x() + kTextOffset * m_px;
    double width = (6.0 * double(text.size()) + 2.0) * m_px;
    const QRectF& area = m_map.visibleArea;
    if (!area.isEmpty() && at.x() < area.right() && left + width > area.right()) {
        // Near the right edge: end inside the visible area, halo included, by the text's real width.
        width = std::max(width, QFontMetricsF(m_font).horizontalAdvance(text));
        left = std::max(area.left() + m_px, area.right() - width - m_px);
    }
    return QRectF(left, at.y(), width, m_lineHeight);
}

void OverlayPainter::drawText(qint32 color, double x, double y, const QString& text)
{
    if (text.isEmpty())
        return;
    textFont();
    const QPointF at = m_map.toScreen(x, y);
    const double left = at.x() + kTextOffset * m_px;
    const double estimate = (6.0 * double(text.size()) + 2.0) * m_px;
    const QRectF& area = m_map.visibleArea;
    const double halo = 2.0 * m_px;
    QRectF r;
    // Only text whose point is in view is moved; text further right stays out of view.
    if (!area.isEmpty() && at.x() < area.right() && left + estimate > area.right()) {
        r = textRect(x, y, text); // measures the text: only for text near the right edge
        if (!visible(r.left(), r.top(), r.right(), r.bottom(), halo))
            return;
    } else {
        // Unmoved: no glyph is wider than the widest one.
        const double right = left + std::max(estimate, m_maxCharWidth * double(text.size()));
        if (!visible(left, at.y(), right, at.y() + m_lineHeight, halo))
            return;
        r = QRectF(left, at.y(), estimate, m_lineHeight);
    }

    m_p.setFont(m_font);
    const QPointF base(r.left(), r.top() + m_ascent);
    usePen(GetContrastColor(color), 0);
    m_p.drawText(base + QPointF(-m_px, 0.0), text);
    m_p.drawText(base + QPointF(m_px, 0.0), text);
    m_p.drawText(base + QPointF(0.0, -m_px), text);
    m_p.drawText(base + QPointF(0.0, m_px), text);
    usePen(color, 0);
    m_p.drawText(base, text);
}

} // namespace nxr
