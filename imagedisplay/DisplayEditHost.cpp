#include "imagedisplay/DisplayEditHost.h"

#include "imagedisplay/ImageViewport.h"
#include "imagedisplay/NXRImageDisplay.h"
#include "imagedisplay/NXRViewButtons.h"
#include "imagedisplay/RasterView.h"

#include <QMetaObject>

namespace nxr {

const ViewMaths& DisplayEditHost::maths() const
{
    return m_display.viewport().maths();
}

double DisplayEditHost::screenPixel() const
{
    return m_display.leadView()->deviceRatio();
}

void DisplayEditHost::addLayer(PaintLayer& layer, int order, View view)
{
    (view == View::Mask ? m_display.maskLeadView() : m_display.leadView())->addLayer(&layer, order);
}

void DisplayEditHost::removeLayer(PaintLayer& layer)
{
    m_display.leadView()->removeLayer(&layer);
    m_display.maskLeadView()->removeLayer(&layer);
}

void DisplayEditHost::repaintImage(const QRectF& imageRect)
{
    m_display.leadView()->repaintImage(imageRect);
    if (m_display.maskLeadView()->isVisible())
        m_display.maskLeadView()->repaintImage(imageRect);
}

void DisplayEditHost::repaintDevice(const QRectF& deviceRect)
{
    m_display.activeView()->repaintDevice(deviceRect.toAlignedRect());
}

EditSession& DisplayEditHost::session()
{
    return m_display.editSession();
}

PropertyTable& DisplayEditHost::keys()
{
    return m_display.properties();
}

void DisplayEditHost::setViewButtonProperty(const QString& key, const QString& value)
{
    m_display.viewButtons()->SetProperty(key, value);
}

QString DisplayEditHost::viewButtonProperty(const QString& key)
{
    return m_display.viewButtons()->GetProperty(key);
}

void DisplayEditHost::raiseEvent(const char* eventName, int value)
{
    QMetaObject::invokeMethod(&m_display, eventName, Qt::DirectConnection, Q_ARG(int, value));
}

void DisplayEditHost::reportError(const QString& routine, const QString& text)
{
    m_display.core().reportError(routine, text);
}

} // namespace nxr
