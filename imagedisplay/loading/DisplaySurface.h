#pragma once
// ImageSurface over the image display's own parts: ctl_LEAD and ctl_TempLEAD, the viewport,
// the tool bar and the mouse dispatcher.

#include "frame/Export.h"
#include "imagedisplay/loading/ImageSurface.h"

class NXRImageDisplay;

namespace nxr {

class NXR_EXPORT DisplaySurface : public ImageSurface
{
public:
    explicit DisplaySurface(NXRImageDisplay& display) : m_display(display) {}

    QImage shownImage() const override;
    void showImage(const QImage& image, std::vector<QImage> reductions) override;
    int reductionLevel() const override;
    bool showsGrey() const override;
    void clearImage() override;
    void setLandingImage(const QImage& image) override;
    float zoom() const override;
    QPointF scrollPosition() const override;
    void restoreView(float zoom, const QPointF& scroll) override;
    float fitImage() override;
    bool autoRepaint() const override;
    void setAutoRepaint(bool on) override;
    bool repaintActiveView() override;
    void reinitialize() override;
    void setViewButtonProperty(const QString& key, const QString& value) override;
    void setBusyPointer(bool busy) override;
    void replayMouseDown(int button, int shift, double x, double y) override;
    QString caption() const override;

private:
    NXRImageDisplay& m_display;
};

} // namespace nxr
