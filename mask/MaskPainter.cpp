#include "mask/MaskPainter.h"

#include "mask/MaskFill.h"
#include "mask/MaskTypes.h"

#include <QPainter>

#include <cmath>

namespace nxr::MaskPainter {

namespace {

QPointF centre(const clsMaskPoint& p)
{
    return QPointF(p.X + 0.5, p.Y + 0.5);
}

// The pixel a coordinate falls in, kept within a range where whole numbers cannot overflow.
int pixelOf(double v)
{
    if (!(v > -1e8)) // NaN too
        return -100000000;
    return v < 1e8 ? int(std::floor(v)) : 100000000;
}

QRect clipped(const QImage& mask, const QRect& r)
{
    return r.intersected(mask.rect());
}

QRect boundsOf(const QRectF& r, int margin)
{
    return QRect(QPoint(pixelOf(r.left()) - margin, pixelOf(r.top()) - margin),
                 QPoint(pixelOf(std::ceil(r.right())) + margin, pixelOf(std::ceil(r.bottom())) + margin));
}

} // namespace

QRgb modeColor(int editMaskMode)
{
    switch (editMaskMode) {
    case KSEEditMask_DontCare:
        return qRgb(255, 0, 0);
    case KSEEditMask_ExtraCare:
        return qRgb(0, 0, 255);
    default:
        return eraseColor();
    }
}

QRgb eraseColor()
{
    return qRgb(0, 0, 0);
}

int penWidth(int toolSize, int shift)
{
    int width = 0;
    switch (toolSize) {
    case KSEMaskToolSize_Small:
        width = 1;
        break;
    case KSEMaskToolSize_Medium:
        width = 10;
        break;
    case KSEMaskToolSize_Large:
        width = 26;
        break;
    default:
        break;
    }
    return shift == 1 ? width * 2 : width;
}

QRect drawStroke(QImage& mask, const MaskList<clsMaskPoint>& points, int width, QRgb color, int first,
                 int last)
{
    const int count = points.Count();
    if (first < 1)
        first = 1;
    if (last < 0 || last > count)
        last = count;
    if (first > last)
        return {};
    QPainter painter(&mask);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.setBrush(QColor::fromRgba(color));
    double minX = 1e300, minY = 1e300, maxX = -1e300, maxY = -1e300;
    auto touch = [&](const clsMaskPoint& p) {
        minX = std::min(minX, p.X), maxX = std::max(maxX, p.X);
        minY = std::min(minY, p.Y), maxY = std::max(maxY, p.Y);
    };
    const QPen linePen(QColor::fromRgba(color), width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    for (int i = first; i <= last; ++i) {
        const clsMaskPoint& p = *points.Item(i);
        touch(p);
        if (i > 1) {
            const clsMaskPoint& q = *points.Item(i - 1);
            if (std::hypot(p.X - q.X, p.Y - q.Y) >= 1.0) {
                painter.setPen(linePen);
                painter.drawLine(centre(q), centre(p));
                touch(q);
            }
        }
        if (width >= 2) {
            painter.setPen(Qt::NoPen);
            painter.drawEllipse(centre(p), width / 2.0, width / 2.0);
        } else {
            painter.fillRect(QRect(int(std::floor(p.X)), int(std::floor(p.Y)), 1, 1),
                             QColor::fromRgba(color));
        }
    }
    const QRectF touched(QPointF(minX, minY), QPointF(maxX + 1, maxY + 1));
    return clipped(mask, boundsOf(touched, width / 2 + 2));
}

QRect drawRectangle(QImage& mask, double x1, double y1, double x2, double y2, QRgb color)
{
    const QRect r(QPoint(pixelOf(std::min(x1, x2)), pixelOf(std::min(y1, y2))),
                  QPoint(pixelOf(std::max(x1, x2)), pixelOf(std::max(y1, y2))));
    const QRect inside = clipped(mask, r);
    if (inside.isEmpty())
        return {};
    QPainter painter(&mask);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(inside, QColor::fromRgba(color));
    return inside;
}

QRect drawEllipse(QImage& mask, double cx, double cy, double rx, double ry, QRgb color)
{
    const QRectF box(cx + 0.5 - rx, cy + 0.5 - ry, 2 * rx, 2 * ry);
    QPainter painter(&mask);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromRgba(color));
    painter.drawEllipse(box);
    return clipped(mask, boundsOf(box, 2));
}

QRect fillAll(QImage& mask, QRgb color)
{
    mask.fill(color);
    return mask.rect();
}

QRect fill(QImage& mask, double x, double y, QRgb color)
{
    return floodFillMask(mask, QPoint(pixelOf(x), pixelOf(y)), color);
}

QRect apply(QImage& mask, const clsMaskOperation& op, int editMaskMode)
{
    const QRgb color = op.EraseMode ? eraseColor() : modeColor(editMaskMode);
    switch (op.OperationType) {
    case MaskOp_Freehand:
        return op.PixelBlocks
                   ? drawStroke(mask, *op.PixelBlocks, op.PixelBlocks->BlockWidth,
                                op.PixelBlocks->EraseFunction ? eraseColor() : modeColor(editMaskMode))
                   : QRect();
    case MaskOp_JoinedLine:
        return op.JoinedLine ? drawStroke(mask, op.JoinedLine->Points(), op.JoinedLine->LineWidth, color)
                             : QRect();
    case MaskOp_Rectangle:
        return drawRectangle(mask, op.X1, op.Y1, op.X2, op.Y2, color);
    case MaskOp_Ellipse:
        return drawEllipse(mask, op.X1, op.Y1, op.X2, op.Y2, color);
    case MaskOp_Fill:
        return fill(mask, op.X1, op.Y1, color);
    case MaskOp_MaskAll:
        return fillAll(mask, modeColor(editMaskMode));
    case MaskOp_MaskNone:
        return fillAll(mask, eraseColor());
    default:
        return {};
    }
}

} // namespace nxr::MaskPainter
