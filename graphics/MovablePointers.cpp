#include "graphics/MovablePointers.h"

#include "graphics/MoveableGraphics.h"

#include <QImage>
#include <QPainter>
#include <QPainterPath>

namespace nxr {

Qt::CursorShape cursorShapeForPointer(int pointer)
{
    switch (pointer) {
    case kPointerSizeAll:
        return Qt::SizeAllCursor;
    case kPointerSizeNESW:
        return Qt::SizeBDiagCursor;
    case kPointerSizeNS:
        return Qt::SizeVerCursor;
    case kPointerSizeNWSE:
        return Qt::SizeFDiagCursor;
    case kPointerSizeWE:
        return Qt::SizeHorCursor;
    case kPointerRotate:
        return Qt::BitmapCursor;
    default:
        return Qt::ArrowCursor;
    }
}

QPixmap rotatePointerPicture()
{
    QImage img(32, 32, QImage::Format_ARGB32_Premultiplied);
    img.fill(Qt::transparent);
    QPainter p(&img);
    p.setRenderHint(QPainter::Antialiasing);
    // An open circle from 60 degrees round to 330, with a head at its open end.
    QPainterPath arc;
    const QRectF ring(7, 7, 18, 18);
    arc.arcMoveTo(ring, 60);
    arc.arcTo(ring, 60, 270);
    QPainterPath head;
    head.moveTo(27.5, 12.0);
    head.lineTo(20.5, 14.5);
    head.lineTo(27.0, 20.5);
    head.closeSubpath();
    for (const auto& [color, width] :
         {std::pair{QColor(Qt::white), 5.0}, std::pair{QColor(Qt::black), 2.0}}) {
        p.setPen(QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.setBrush(Qt::NoBrush);
        p.drawPath(arc);
        p.setBrush(color);
        p.drawPath(head);
    }
    // The hot spot.
    p.setPen(Qt::NoPen);
    p.setBrush(Qt::white);
    p.drawEllipse(QPointF(16, 16), 3.5, 3.5);
    p.setBrush(Qt::black);
    p.drawEllipse(QPointF(16, 16), 2.0, 2.0);
    p.end();
    return QPixmap::fromImage(img);
}

QCursor cursorForPointer(int pointer)
{
    if (pointer == kPointerRotate)
        return QCursor(rotatePointerPicture(), 16, 16);
    return QCursor(cursorShapeForPointer(pointer));
}

} // namespace nxr
