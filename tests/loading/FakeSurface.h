#pragma once
// A display stand-in that records what loading and live mode ask of it.

#include "imagedisplay/loading/ImageSurface.h"

#include <QString>

#include <algorithm>
#include <functional>
#include <vector>

namespace nxr::testing {

struct MouseDown
{
    int button, shift;
    double x, y;
    bool operator==(const MouseDown&) const = default;
};

class FakeSurface : public ImageSurface
{
public:
    QImage image, landing;
    float zoomValue = 100.0f;
    QPointF scroll;
    bool repaintOn = true;
    bool activeIsMain = true;
    bool busyPointer = false;
    int repaints = 0;
    int level = 0;                  // what reductionLevel() answers
    bool grey = false;              // what showsGrey() answers
    std::vector<QImage> reductions; // those handed with the shown image
    int reinitializations = 0;
    std::vector<MouseDown> replayed;
    std::function<void(const MouseDown&)> onReplay;

    QImage shownImage() const override { return image; }
    void showImage(const QImage& i, std::vector<QImage> r) override
    {
        image = i;
        reductions = std::move(r);
    }
    int reductionLevel() const override { return level; }
    bool showsGrey() const override { return grey; }
    void clearImage() override { image = QImage(); }
    void setLandingImage(const QImage& i) override { landing = i; }
    float zoom() const override { return zoomValue; }
    QPointF scrollPosition() const override { return scroll; }
    void restoreView(float z, const QPointF& s) override
    {
        zoomValue = z;
        scroll = s;
    }
    float fitImage() override
    {
        zoomValue = image.isNull() ? 100.0f : std::min(64000.0f / image.width(), 48000.0f / image.height());
        scroll = QPointF();
        return zoomValue;
    }
    bool autoRepaint() const override { return repaintOn; }
    void setAutoRepaint(bool on) override { repaintOn = on; }
    bool repaintActiveView() override
    {
        ++repaints;
        return activeIsMain;
    }
    void reinitialize() override
    {
        ++reinitializations;
        zoomValue = 100.0f;
        scroll = QPointF();
    }
    void setViewButtonProperty(const QString&, const QString&) override {}
    void setBusyPointer(bool busy) override { busyPointer = busy; }
    void replayMouseDown(int button, int shift, double x, double y) override
    {
        replayed.push_back({button, shift, x, y});
        if (onReplay)
            onReplay(replayed.back());
    }
    QString caption() const override { return QStringLiteral("Camera 1"); }
};

} // namespace nxr::testing
