#include "imagedisplay/parts/GraphicsPart.h"

#include "frame/ScriptableCore.h"
#include "graphics/MovableShapes.h"
#include "imagedisplay/DisplayEditHost.h"
#include "imagedisplay/NXEViewButtons.h"
#include "imagedisplay/NXRImageDisplay.h"
#include "imagedisplay/RasterView.h"
#include "imagedisplay/ToolbarClickHandler.h"
#include "imagedisplay/loading/DisplayLoading.h"
#include "imagedisplay/parts/MovablePart.h"

#include <QDir>
#include <QFileInfo>

#include <stdexcept>

namespace nxr {

namespace {
NXRImageDisplay& displayOf(EditHost& host)
{
    auto* display = dynamic_cast<DisplayEditHost*>(&host);
    if (!display)
        throw std::logic_error("the result graphics plug into the image display only");
    return display->display();
}
} // namespace

GraphicsPart::GraphicsPart(EditHost& host)
    : m_host(host), m_display(displayOf(host)), m_graphics(*this, m_display.core())
{
    m_movable = std::make_unique<MovablePart>(host, m_display, m_graphics.graphics());
    m_host.addLayer(*this, kLayerOrder);
    m_display.toolbarClicks().setAction(vvb_CrosshairOn, [this] {
        m_crosshairFor = currentImage().size();
        m_graphics.setCrosshairOn(true);
    });
    m_display.toolbarClicks().setAction(vvb_CrosshairOff, [this] { m_graphics.setCrosshairOn(false); });
    m_imageShown = QObject::connect(&m_display.loading().loader(), &ImageLoader::imageShown,
                                    &m_display.loading().loader(), [this] { imageShown(); });
}

GraphicsPart::~GraphicsPart()
{
    QObject::disconnect(m_imageShown);
    m_host.removeLayer(*this);
    m_movable.reset();
}

MovableShapes& GraphicsPart::shapes()
{
    return m_movable->shapes();
}

void GraphicsPart::imageShown()
{
    m_graphics.imageChanged();
    const QSize size = currentImage().size();
    // The crosshair marks the centre of the image shown.
    if (m_graphics.crosshairOn() && size != m_crosshairFor) {
        m_crosshairFor = size;
        m_graphics.setCrosshairOn(true);
    }
    m_movable->imageShown(size);
}

void GraphicsPart::requestRepaint()
{
    RasterView* view = m_display.leadView();
    if (view->autoRepaint())
        view->repaintView();
}

QImage GraphicsPart::currentImage() const
{
    return m_display.loading().loader().images().image(ImageList::kCurrent);
}

void GraphicsPart::showComposite(const QImage& composite)
{
    const QImage image = composite.isNull() ? currentImage() : composite;
    if (!image.isNull())
        m_display.leadView()->setBitmap(image);
}

bool GraphicsPart::copyFromController(const QString& server, const QString& controllerPath,
                                      const QString& userName, const QString& password,
                                      const QString& localPath, QString* error)
{
    ControllerFiles* files = m_display.loading().files();
    if (!files) {
        *error = QStringLiteral("no file transfer object");
        return false;
    }
    if (!QDir().mkpath(QFileInfo(localPath).absolutePath())) {
        *error = QStringLiteral("cannot create folder ") + QFileInfo(localPath).absolutePath();
        return false;
    }
    return files->copyFromController(server, controllerPath, userName, password, localPath, error);
}

bool GraphicsPart::loadImage(const QString& server, const QString& path, const QString& userName,
                             const QString& password)
{
    const qint64 before = currentImage().cacheKey();
    m_display.LoadImage(server, path, userName, password);
    const QImage after = currentImage();
    return !after.isNull() && after.cacheKey() != before;
}

bool GraphicsPart::isEditingShape() const
{
    return m_movable->shapes().isEditing();
}

void GraphicsPart::paint(QPainter& painter, const ViewMaths& maths, const QRect& dirty)
{
    const ScreenMapping mapping = ScreenMapping::ofView(maths, screenPixel(painter));
    const MovableShapes& shapes = m_movable->shapes();
    m_graphics.paint(painter, mapping, dirty, shapes.editedKey());
    if (shapes.isEditing())
        shapes.paintEdited(painter, mapping, dirty);
}

} // namespace nxr

NXR_REGISTER_DISPLAY_PART(nxr::GraphicsPart)
