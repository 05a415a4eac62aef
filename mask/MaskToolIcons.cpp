#include "mask/MaskToolIcons.h"

#include "mask/MaskTypes.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

#include <functional>

namespace nxr::MaskToolIcons {

namespace {

constexpr int kSide = 32;
const QColor kInk(40, 40, 40);
const QColor kMask(220, 30, 30);

QIcon drawn(const std::function<void(QPainter&)>& draw)
{
    QPixmap pixmap(kSide, kSide);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    draw(p);
    p.end();
    return QIcon(pixmap);
}

} // namespace

QIcon tool(int tool)
{
    switch (tool) {
    case KSEMaskTool_Freehand:
        return drawn([](QPainter& p) {
            QPainterPath path(QPointF(5, 24));
            path.cubicTo(10, 4, 16, 30, 27, 8);
            p.setPen(QPen(kMask, 4, Qt::SolidLine, Qt::RoundCap));
            p.drawPath(path);
        });
    case KSEMaskTool_JoinedLine:
        return drawn([](QPainter& p) {
            const QPointF pts[] = {{4, 26}, {12, 8}, {20, 22}, {28, 6}};
            p.setPen(QPen(kMask, 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
            p.drawPolyline(pts, 4);
            p.setPen(Qt::NoPen);
            p.setBrush(kInk);
            for (const QPointF& pt : pts)
                p.drawEllipse(pt, 2.5, 2.5);
        });
    case KSEMaskTool_Ellipse:
        return drawn([](QPainter& p) {
            p.setPen(QPen(kInk, 1.5));
            p.setBrush(kMask);
            p.drawEllipse(QRectF(3, 8, 26, 16));
        });
    case KSEMaskTool_Rectangle:
        return drawn([](QPainter& p) {
            p.setPen(QPen(kInk, 1.5));
            p.setBrush(kMask);
            p.drawRect(QRectF(5, 7, 22, 18));
        });
    case KSEMaskTool_Fill:
        return drawn([](QPainter& p) {
            p.setPen(QPen(kInk, 2));
            p.setBrush(Qt::NoBrush);
            p.drawRect(QRectF(4, 4, 24, 24));
            p.setPen(Qt::NoPen);
            p.setBrush(kMask);
            QPainterPath drop(QPointF(16, 8));
            drop.cubicTo(24, 18, 22, 24, 16, 24);
            drop.cubicTo(10, 24, 8, 18, 16, 8);
            p.drawPath(drop);
        });
    default:
        return {};
    }
}

QIcon size(int size)
{
    if (size < KSEMaskToolSize_Small || size > KSEMaskToolSize_Large)
        return {};
    const double radius = size == KSEMaskToolSize_Small ? 2 : size == KSEMaskToolSize_Medium ? 6 : 12;
    return drawn([radius](QPainter& p) {
        p.setPen(Qt::NoPen);
        p.setBrush(kInk);
        p.drawEllipse(QPointF(16, 16), radius, radius);
    });
}

} // namespace nxr::MaskToolIcons
