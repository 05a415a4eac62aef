#include "imagedisplay/dialog/DisplayOpenSaveHost.h"

#include "imagedisplay/DisplayState.h"
#include "imagedisplay/NXRImageDisplay.h"
#include "imagedisplay/NXRViewButtons.h"
#include "imagedisplay/RasterView.h"
#include "imagedisplay/ToolbarClickHandler.h"
#include "imagedisplay/loading/DisplayLoading.h"

namespace nxr {

QWidget* DisplayOpenSaveHost::dialogParent()
{
    return &m_display;
}

QImage DisplayOpenSaveHost::shownImage() const
{
    return m_display.leadView()->bitmap();
}

bool DisplayOpenSaveHost::colorMode() const
{
    return m_display.state().colorMode;
}

PropertyTable& DisplayOpenSaveHost::keys()
{
    return m_display.core().properties();
}

void DisplayOpenSaveHost::setButtonAction(int button, std::function<void()> action)
{
    m_display.toolbarClicks().setAction(button, std::move(action));
}

QString DisplayOpenSaveHost::hostName() const
{
    return m_display.HostName();
}

int DisplayOpenSaveHost::ftpPort() const
{
    return m_display.loading().ftpPort();
}

int DisplayOpenSaveHost::httpPort() const
{
    return m_display.loading().httpPort();
}

QFont DisplayOpenSaveHost::displayFont() const
{
    return m_display.viewButtons() ? m_display.viewButtons()->font() : m_display.font();
}

bool DisplayOpenSaveHost::loadImage(const QString& server, const QString& path, const QString& user,
                                    const QString& password)
{
    int errors = 0;
    const auto counter = QObject::connect(&m_display, &NXRImageDisplay::OnError, [&errors] { ++errors; });
    m_display.LoadImage(server, path, user, password);
    QObject::disconnect(counter);
    return errors == 0 && m_display.leadView()->hasBitmap();
}

QSize DisplayOpenSaveHost::shownImageSize() const
{
    return QSize(m_display.ImageWidth(), m_display.ImageHeight());
}

void DisplayOpenSaveHost::raiseUserLoadedImage(const QString& path, int width, int height)
{
    Q_EMIT m_display.OnUserLoadedImage(path, width, height);
}

void DisplayOpenSaveHost::raiseLogListRequested()
{
    Q_EMIT m_display.OnLogListRequested();
}

void DisplayOpenSaveHost::raiseLogImageSelected(const QString& selector)
{
    Q_EMIT m_display.OnLogImageSelected(selector);
}

void DisplayOpenSaveHost::reportError(const QString& routine, const QString& text)
{
    m_display.core().reportError(routine, text);
}

} // namespace nxr
