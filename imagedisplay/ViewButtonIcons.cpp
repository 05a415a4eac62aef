#include "imagedisplay/ViewButtonIcons.h"

#include "imagedisplay/NXEViewButtons.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace nxr {
namespace {

const QColor kInk(40, 40, 40);

void magnifier(QPainter& p, bool plus)
{
    p.setPen(QPen(kInk, 2.2));
    p.drawEllipse(QRectF(3, 3, 15, 15));
    p.drawLine(QPointF(16, 16), QPointF(28, 28));
    p.setPen(QPen(kInk, 2));
    p.drawLine(QPointF(6.5, 10.5), QPointF(14.5, 10.5));
    if (plus)
        p.drawLine(QPointF(10.5, 6.5), QPointF(10.5, 14.5));
}

void arrowHead(QPainter& p, QPointF tip, QPointF direction)
{
    const QPointF side(-direction.y(), direction.x());
    QPolygonF head;
    head << tip << tip - direction * 5 + side * 3.5 << tip - direction * 5 - side * 3.5;
    p.setBrush(kInk);
    p.drawPolygon(head);
    p.setBrush(Qt::NoBrush);
}

void drawButton(QPainter& p, int button)
{
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(kInk, 2));
    switch (button) {
    case vvb_ContinuousAcquire: // video camera with a red record dot
        p.drawRoundedRect(QRectF(3, 9, 18, 14), 2, 2);
        p.drawPolygon(QPolygonF({QPointF(21, 14), QPointF(29, 10), QPointF(29, 22), QPointF(21, 18)}));
        p.setBrush(QColor(210, 30, 30));
        p.setPen(Qt::NoPen);
        p.drawEllipse(QRectF(8, 12, 8, 8));
        break;
    case vvb_Acquire: // still camera
        p.drawRoundedRect(QRectF(3, 9, 26, 17), 3, 3);
        p.drawRect(QRectF(10, 5, 10, 4));
        p.drawEllipse(QRectF(10, 11, 12, 12));
        break;
    case vvb_MouseModePointer: {
        QPolygonF arrow({QPointF(8, 3), QPointF(8, 25), QPointF(13, 20), QPointF(17, 29), QPointF(20, 27),
                         QPointF(16, 19), QPointF(23, 19)});
        p.setBrush(Qt::white);
        p.drawPolygon(arrow);
        break;
    }
    case vvb_MouseModePan: // four-way arrow
        p.drawLine(QPointF(16, 4), QPointF(16, 28));
        p.drawLine(QPointF(4, 16), QPointF(28, 16));
        p.setPen(QPen(kInk, 1));
        arrowHead(p, QPointF(16, 2), QPointF(0, -1));
        arrowHead(p, QPointF(16, 30), QPointF(0, 1));
        arrowHead(p, QPointF(2, 16), QPointF(-1, 0));
        arrowHead(p, QPointF(30, 16), QPointF(1, 0));
        break;
    case vvb_MouseModeZoomIn:
        magnifier(p, true);
        break;
    case vvb_MouseModeZoomOut:
        magnifier(p, false);
        break;
    case vvb_FitImage: // corners of a frame around a picture
        p.drawRect(QRectF(9, 10, 14, 12));
        for (const QPointF& c : {QPointF(3, 3), QPointF(29, 3), QPointF(3, 29), QPointF(29, 29)}) {
            const double sx = c.x() < 16 ? 1 : -1;
            const double sy = c.y() < 16 ? 1 : -1;
            p.drawLine(c, c + QPointF(6 * sx, 0));
            p.drawLine(c, c + QPointF(0, 6 * sy));
        }
        break;
    case vvb_DefaultZoom: {
        QFont f = p.font();
        f.setPixelSize(13);
        f.setBold(true);
        p.setFont(f);
        p.drawText(QRectF(0, 0, 32, 32), Qt::AlignCenter, QStringLiteral("1:1"));
        break;
    }
    case vvb_ChangeSize: // diagonal double arrow
        p.drawRect(QRectF(3, 3, 26, 26));
        p.drawLine(QPointF(9, 23), QPointF(23, 9));
        p.setPen(QPen(kInk, 1));
        arrowHead(p, QPointF(24, 8), QPointF(0.7071, -0.7071));
        arrowHead(p, QPointF(8, 24), QPointF(-0.7071, 0.7071));
        break;
    case vvb_CrosshairOn:
        p.drawEllipse(QRectF(7, 7, 18, 18));
        p.drawLine(QPointF(16, 2), QPointF(16, 30));
        p.drawLine(QPointF(2, 16), QPointF(30, 16));
        break;
    case vvb_WindowReset: { // dashed window with a turning arrow
        p.setPen(QPen(kInk, 1.6, Qt::DashLine));
        p.drawRect(QRectF(3, 3, 18, 14));
        p.setPen(QPen(kInk, 2));
        QPainterPath arc;
        arc.arcMoveTo(QRectF(12, 12, 16, 16), 120);
        arc.arcTo(QRectF(12, 12, 16, 16), 120, 270);
        p.drawPath(arc);
        p.setPen(QPen(kInk, 1));
        arrowHead(p, QPointF(14, 15), QPointF(-0.5, 0.866));
        break;
    }
    case vvb_Open: { // folder
        p.setBrush(QColor(240, 200, 90));
        p.drawPolygon(QPolygonF({QPointF(3, 8), QPointF(12, 8), QPointF(15, 11), QPointF(29, 11),
                                 QPointF(29, 26), QPointF(3, 26)}));
        break;
    }
    case vvb_Save: // disk
        p.drawRoundedRect(QRectF(4, 4, 24, 24), 2, 2);
        p.drawRect(QRectF(10, 4, 12, 8));
        p.drawRect(QRectF(8, 17, 16, 11));
        break;
    case vvb_LaserOn: // a red spot with rays
        p.setPen(QPen(QColor(210, 30, 30), 2));
        for (int i = 0; i < 8; ++i) {
            p.save();
            p.translate(16, 16);
            p.rotate(45.0 * i);
            p.drawLine(QPointF(8, 0), QPointF(13, 0));
            p.restore();
        }
        p.setBrush(QColor(210, 30, 30));
        p.drawEllipse(QRectF(11, 11, 10, 10));
        break;
    default:
        break;
    }
}

} // namespace

QIcon ViewButtonIcons::icon(int button)
{
    if (button == vvb_PixelGrid || button == vvb_SubpixelGrid || button == vvb_Accept ||
        button == vvb_Cancel || button < 0 || button > vvb_LaserOff)
        return QIcon();
    if (button == vvb_CrosshairOff)
        button = vvb_CrosshairOn;
    if (button == vvb_LaserOff)
        button = vvb_LaserOn;
    QIcon icon;
    for (int side : {16, 24, 32, 48, 64}) {
        QPixmap pixmap(side, side);
        pixmap.fill(Qt::transparent);
        QPainter p(&pixmap);
        p.scale(side / 32.0, side / 32.0);
        drawButton(p, button);
        p.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace nxr
