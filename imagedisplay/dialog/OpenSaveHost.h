#pragma once
// What the open/save dialog and the image log need of the image display that owns them: the
// shown image, its settings, loading an image as LoadImage does, its events and errors.

#include "frame/Export.h"

#include <QFont>
#include <QImage>
#include <QString>

#include <functional>

class QWidget;

namespace nxr {

class PropertyTable;

class NXR_EXPORT OpenSaveHost
{
public:
    virtual ~OpenSaveHost() = default;

    // The widget the modal dialog belongs to.
    virtual QWidget* dialogParent() = 0;
    // The bitmap of the main raster view ("LEAD_image"); null when none is shown.
    virtual QImage shownImage() const = 0;
    // The display's "ColorMode" setting: False means the display works in grey only.
    virtual bool colorMode() const = 0;
    // The display's SetProperty/GetProperty table (the dialog takes "EnableLogImageLoad" over).
    virtual PropertyTable& keys() = 0;
    // Gives the Open or Save button of the tool bar its action.
    virtual void setButtonAction(int button, std::function<void()> action) = 0;
    // The server of the last LoadImage ("" before the first).
    virtual QString hostName() const = 0;
    virtual int ftpPort() const = 0;
    virtual int httpPort() const = 0;
    // The display's font ("FontName", "FontSize").
    virtual QFont displayFont() const = 0;

    // Loads a controller image as LoadImage does (an empty server reads the file already in the
    // local storage folder); true when it is shown.
    virtual bool loadImage(const QString& server, const QString& path, const QString& user,
                           const QString& password) = 0;
    // The size of the image now shown.
    virtual QSize shownImageSize() const = 0;

    // The display's events.
    virtual void raiseUserLoadedImage(const QString& path, int width, int height) = 0;
    virtual void raiseLogListRequested() = 0;
    virtual void raiseLogImageSelected(const QString& selector) = 0;
    // LastErrorString, the error trace and OnError, with a complete text.
    virtual void reportError(const QString& routine, const QString& text) = 0;
};

} // namespace nxr
