#include "imagedisplay/ImageViewport.h"

#include "frame/Conversions.h"
#include "frame/Trace.h"
#include "imagedisplay/RasterView.h"

#include <QScrollBar>
#include <QSignalBlocker>
#include <QTimer>

#include <cmath>

namespace nxr {
namespace {
const QString kClass = QStringLiteral("NXRImageDisplay");
}

ImageViewport::ImageViewport(QWidget* parent) : QFrame(parent)
{
    setObjectName(QStringLiteral("fra_ImageBackground"));
    setFrameShape(QFrame::NoFrame);
    m_hbar = new QScrollBar(Qt::Horizontal, this);
    m_hbar->setObjectName(QStringLiteral("hsb_Image"));
    m_vbar = new QScrollBar(Qt::Vertical, this);
    m_vbar->setObjectName(QStringLiteral("vsb_Image"));
    m_hbar->hide();
    m_vbar->hide();
    connect(m_hbar, &QScrollBar::valueChanged, this, &ImageViewport::setScrollH);
    connect(m_vbar, &QScrollBar::valueChanged, this, &ImageViewport::setScrollV);
    m_scrollRefresh = new QTimer(this);
    m_scrollRefresh->setObjectName(QStringLiteral("tmr_ScrollRefresh"));
    m_scrollRefresh->setSingleShot(true);
    m_scrollRefresh->setInterval(0);
    connect(m_scrollRefresh, &QTimer::timeout, this, &ImageViewport::repaintViews);
}

void ImageViewport::setPrimaryView(RasterView* view)
{
    m_primary = view;
    view->setParent(this);
    view->setMaths(&m_maths);
    imageSizeChanged();
}

void ImageViewport::addFollowerView(RasterView* view)
{
    view->setParent(this);
    view->setMaths(&m_maths);
    m_followers.push_back(view);
    apply();
}

void ImageViewport::setFrameMargin(int pixels)
{
    m_margin = std::max(0, pixels);
    relayout();
}

qreal ImageViewport::ratio() const
{
    return devicePixelRatioF();
}

void ImageViewport::imageSizeChanged()
{
    m_maths.setImageSize(m_primary && m_primary->hasBitmap() ? m_primary->bitmap().size() : QSize());
    apply();
}

void ImageViewport::relayout()
{
    // The usable area: the inner size less the frame margin on both sides and 2 pixels in height.
    const qreal r = ratio();
    const QSize logical(std::max(0, width() - 2 * m_margin), std::max(0, height() - 2));
    m_maths.setScrollBarExtent(int(std::lround(ViewMaths::kDefaultScrollBarExtent * r)));
    m_maths.setUsableArea(
        QSize(int(std::lround(logical.width() * r)), int(std::lround(logical.height() * r))));
    apply();
}

void ImageViewport::apply()
{
    if (m_applying)
        return;
    m_applying = true;
    const qreal r = ratio();
    const QSize visible = m_maths.visibleSize();
    const QRect viewRect(m_margin, 1, int(std::lround(visible.width() / r)),
                         int(std::lround(visible.height() / r)));
    const int bar = ViewMaths::kDefaultScrollBarExtent;
    const QPoint max = m_maths.scrollMaximum();
    const QPoint pos = m_maths.scrollPosition();
    {
        const QSignalBlocker bh(m_hbar);
        const QSignalBlocker bv(m_vbar);
        m_hbar->setVisible(m_maths.horizontalBarNeeded());
        m_vbar->setVisible(m_maths.verticalBarNeeded());
        m_hbar->setGeometry(viewRect.left(), viewRect.bottom() + 1, viewRect.width(), bar);
        m_vbar->setGeometry(viewRect.right() + 1, viewRect.top(), bar, viewRect.height());
        m_hbar->setRange(0, max.x());
        m_vbar->setRange(0, max.y());
        m_hbar->setPageStep(std::max(1, visible.width()));
        m_vbar->setPageStep(std::max(1, visible.height()));
        m_hbar->setSingleStep(std::max(1, int(std::ceil(m_maths.scale()))) * 8);
        m_vbar->setSingleStep(std::max(1, int(std::ceil(m_maths.scale()))) * 8);
        m_hbar->setValue(pos.x());
        m_vbar->setValue(pos.y());
    }
    if (m_primary) {
        m_primary->setGeometry(viewRect);
        m_primary->setView(m_maths.zoom(), m_maths.origin());
    }
    for (RasterView* v : m_followers) {
        v->setGeometry(viewRect);
        v->setView(m_maths.zoom(), m_maths.origin());
    }
    m_applying = false;
    Q_EMIT viewChanged();
}

QStringList ImageViewport::dimensionLines() const
{
    auto rect = [](const QRectF& r) {
        return fromDouble(r.left()) + QStringLiteral(", ") + fromDouble(r.top()) + QStringLiteral(") (") +
               fromDouble(r.width()) + QStringLiteral(", ") + fromDouble(r.height()) + QLatin1Char(')');
    };
    const QRectF dest = m_maths.destinationRect();
    return {QStringLiteral("Scale (L, T) (W, H)    = (") + rect(dest),
            QStringLiteral("Source (L, T) (W, H)   = (") +
                rect(QRectF(QPointF(0, 0), QSizeF(m_maths.imageSize()))),
            QStringLiteral("Dest. l(L, T) (W, H)    = (") + rect(dest),
            QStringLiteral("SrcClip l(L, T) (W, H)  = (") + rect(m_maths.visibleSourceRect())};
}

void ImageViewport::setZoomDirect(float zoom)
{
    m_maths.setZoom(zoom);
    apply();
}

float ImageViewport::setSafeZoom(double zoom)
{
    NXR_TRACE(kClass, QStringLiteral("SetSafeZoom"), QStringLiteral("Entered, zoom=") + fromDouble(zoom));
    const bool repaint = m_primary ? m_primary->autoRepaint() : true;
    if (m_primary)
        m_primary->setAutoRepaint(false);
    m_maths.setSafeZoom(zoom);
    apply();
    if (m_primary) {
        m_primary->setAutoRepaint(repaint);
        m_primary->repaintView();
    }
    return m_maths.zoom();
}

float ImageViewport::focusedZoom(double zoom, double x, double y)
{
    setSafeZoom(zoom);
    m_maths.centreOn(x, y);
    apply();
    NXR_TRACE(kClass, QStringLiteral("FocusedZoom"),
              QStringLiteral("Done(") + fromSingle(m_maths.zoom()) + ')');
    return m_maths.zoom();
}

float ImageViewport::anchoredZoom(double zoom, const QPointF& devicePoint, const QPointF& imagePoint)
{
    const float z = m_maths.anchoredZoom(zoom, devicePoint, imagePoint);
    apply();
    return z;
}

float ImageViewport::optimalZoom(double h, double w, bool fitFrame, bool nearest) const
{
    float zoom = 100.0f;
    if (h > 0 && w > 0) {
        if (fitFrame) {
            // The viewport's usable area, less the scroll bars that the zoom found needs.
            const QSize area = m_maths.usableArea();
            zoom = ViewMaths::fitZoom(area.height(), area.width(), h, w, nearest);
            ViewMaths probe = m_maths;
            probe.setZoom(zoom);
            const QSize visible = probe.visibleSize();
            if (visible != area)
                zoom = ViewMaths::fitZoom(visible.height(), visible.width(), h, w, nearest);
        } else {
            const QSize image = m_maths.effectiveImageSize();
            zoom = ViewMaths::fitZoom(h, w, image.height(), image.width(), nearest);
        }
    }
    NXR_TRACE(kClass, QStringLiteral("OptimalZoom"), QStringLiteral("Done, return zoom=") + fromSingle(zoom));
    return zoom;
}

float ImageViewport::fitImage()
{
    const QSize image = m_maths.effectiveImageSize();
    // The usable area, not the raw frame, so that a fitted image never needs scroll bars.
    const QSize area = m_maths.usableArea();
    const float zoom = ViewMaths::fitZoom(area.height(), area.width(), image.height(), image.width(), false);
    return focusedZoom(zoom, image.width() / 2.0, image.height() / 2.0);
}

void ImageViewport::panBy(const QPoint& deviceDelta)
{
    m_maths.panBy(deviceDelta);
    apply();
}

void ImageViewport::setScrollPosition(const QPoint& position)
{
    m_maths.setScrollPosition(position);
    apply();
}

void ImageViewport::setScrollV(int value)
{
    NXR_TRACE(kClass, QStringLiteral("ScrollV.Let"), QString::number(value));
    const bool repaint = m_primary ? m_primary->autoRepaint() : true;
    if (m_primary)
        m_primary->setAutoRepaint(false);
    m_maths.setScrollY(value);
    apply();
    if (m_primary)
        m_primary->setAutoRepaint(repaint);
    scrollRefreshLater();
}

void ImageViewport::setScrollH(int value)
{
    NXR_TRACE(kClass, QStringLiteral("ScrollH.Let"), QString::number(value));
    const bool repaint = m_primary ? m_primary->autoRepaint() : true;
    if (m_primary)
        m_primary->setAutoRepaint(false);
    m_maths.setScrollX(value);
    apply();
    if (m_primary)
        m_primary->setAutoRepaint(repaint);
    scrollRefreshLater();
}

void ImageViewport::scrollRefreshLater()
{
    m_scrollRefresh->start();
}

void ImageViewport::repaintViews()
{
    if (m_primary)
        m_primary->repaintView();
    for (RasterView* v : m_followers)
        v->repaintView();
}

void ImageViewport::resizeEvent(QResizeEvent* event)
{
    QFrame::resizeEvent(event);
    relayout();
}

} // namespace nxr
