#pragma once
// OpenSaveHost over the image display itself.

#include "frame/Export.h"
#include "imagedisplay/dialog/OpenSaveHost.h"

class NXRImageDisplay;

namespace nxr {

class NXR_EXPORT DisplayOpenSaveHost : public OpenSaveHost
{
public:
    explicit DisplayOpenSaveHost(NXRImageDisplay& display) : m_display(display) {}

    QWidget* dialogParent() override;
    QImage shownImage() const override;
    bool colorMode() const override;
    PropertyTable& keys() override;
    void setButtonAction(int button, std::function<void()> action) override;
    QString hostName() const override;
    int ftpPort() const override;
    int httpPort() const override;
    QFont displayFont() const override;
    bool loadImage(const QString& server, const QString& path, const QString& user,
                   const QString& password) override;
    QSize shownImageSize() const override;
    void raiseUserLoadedImage(const QString& path, int width, int height) override;
    void raiseLogListRequested() override;
    void raiseLogImageSelected(const QString& selector) override;
    void reportError(const QString& routine, const QString& text) override;

private:
    NXRImageDisplay& m_display;
};

} // namespace nxr
