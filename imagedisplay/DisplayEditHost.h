#pragma once
// EditHost over the image display: its viewport maths, image and mask views, edit session,
// property table, view buttons and events.

#include "frame/Export.h"
#include "imagedisplay/edit/EditHost.h"

class NXRImageDisplay;

namespace nxr {

class NXR_EXPORT DisplayEditHost : public EditHost
{
public:
    explicit DisplayEditHost(NXRImageDisplay& display) : m_display(display) {}
    // The display itself, for the display's own adapters (imagedisplay/parts) that need more of it.
    NXRImageDisplay& display() const { return m_display; }

    const ViewMaths& maths() const override;
    double screenPixel() const override;
    void addLayer(PaintLayer& layer, int order, View view) override;
    void removeLayer(PaintLayer& layer) override;
    void repaintImage(const QRectF& imageRect) override;
    void repaintDevice(const QRectF& deviceRect) override;
    EditSession& session() override;
    PropertyTable& keys() override;
    void setViewButtonProperty(const QString& key, const QString& value) override;
    QString viewButtonProperty(const QString& key) override;
    void raiseEvent(const char* eventName, int value) override;
    void reportError(const QString& routine, const QString& text) override;

private:
    NXRImageDisplay& m_display;
};

} // namespace nxr
