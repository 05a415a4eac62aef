#pragma once
// The image display's result graphics: the graphics collection (the page's text and shapes and
// the movable shapes' items), the crosshair collection, and the raster overlay image. The
// display's DrawText, DrawTextArray, ClearGraphics, EraseOverlay, ShowOverlay, LoadOverlay,
// LoadCombinedImageAndOverlay and the further adders forward here; the display paints them with
// paint() after the image. Screen-free: the display is reached through GraphicsHost, the page
// through the display's ScriptableCore (errors and traces).

#include "frame/Export.h"
#include "graphics/OverlayItems.h"
#include "graphics/OverlayPainter.h"

#include <QImage>
#include <QString>
#include <QVariant>

class QPainter;

namespace nxr {

class GraphicsHost;
class ScriptableCore;

class NXR_EXPORT OverlayGraphics
{
public:
    // Items a page may add through the adders here; more are refused, so a page cannot grow the
    // list without bound.
    static constexpr int kMaxPageItems = 200000;
    static constexpr const char* kCopyFailed = "Error in LoadOverlay: mfbln_CopyFileFromController failed";

    OverlayGraphics(GraphicsHost& host, ScriptableCore& core);
    ~OverlayGraphics();

    clsOverlayCollection& graphics() { return m_graphics; }
    const clsOverlayCollection& graphics() const { return m_graphics; }
    clsOverlayCollection& crosshair() { return m_crosshair; }
    const clsOverlayCollection& crosshair() const { return m_crosshair; }

    // The graphics collection, then the crosshair when it is on, over the painted image. The item
    // under `editedKey` is left to the editor of that movable shape.
    void paint(QPainter& painter, const ScreenMapping& mapping, const QRect& dirty,
               const QString& editedKey = {}) const;

    // The tool bar's crosshair button: on rebuilds the crosshair for the current image.
    bool crosshairOn() const { return m_crosshairOn; }
    void setCrosshairOn(bool on);

    void DrawText(const QString& text, qint32 x, qint32 y, qint32 color);
    // Arrays as script arrays (QJSValue), QVariantList or QStringList. One text item per text;
    // a text without an X, Y or colour at its index (a shorter array) is skipped, and one error
    // says how many were. Elements that are not numbers are skipped the same way.
    void DrawTextArray(const QVariant& texts, const QVariant& xs, const QVariant& ys, const QVariant& colors);
    // Empties the graphics collection without repainting.
    void ClearGraphics();
    // Empties the graphics collection and repaints, unless a movable shape is being edited.
    void EraseOverlay();

    bool ShowOverlay() const { return m_showOverlay; }
    // False shows the plain camera image again; True lays the loaded overlay over it (when there
    // is one).
    void setShowOverlay(bool show);
    void LoadOverlay(const QString& server, const QString& path, const QString& userName,
                     const QString& password);
    void LoadCombinedImageAndOverlay(const QString& server, const QString& imagePath,
                                     const QString& overlayPath, const QString& userName,
                                     const QString& password);
    // The display calls this after a new camera image is shown: a shown overlay is laid over it.
    void imageChanged();
    // The overlay as read from its file (before any scaling); null when none is loaded.
    const QImage& overlayImage() const { return m_overlay; }
    // The local copy of an overlay at `controllerPath`: storage folder + "/overlay" + its image
    // extension, ".PNG" when it has none.
    static QString localOverlayPath(const QString& controllerPath);

    // Adders for pages beyond text. An empty key adds without a key; a key already present is
    // replaced (the new item goes to the end). The movable shapes' keys are refused. Each repaints.
    void DrawLine(double x1, double y1, double x2, double y2, qint32 color, const QString& key = {});
    void DrawArrow(double x1, double y1, double x2, double y2, qint32 color, qint16 style,
                   const QString& key = {});
    void DrawBox(double left, double top, double width, double height, double angle, qint32 color,
                 const QString& key = {});
    void DrawCircle(double x, double y, double radius, qint32 color, const QString& key = {});
    void DrawCross(double x, double y, double angle, qint32 color, const QString& key = {});
    // Removes the item under key; a missing key is not an error.
    void RemoveGraphic(const QString& key);

private:
    template <typename Add> void addForPage(const QString& routine, const QString& key, Add&& add);
    void showComposite();

    GraphicsHost& m_host;
    ScriptableCore& m_core;
    clsOverlayCollection m_graphics;
    clsOverlayCollection m_crosshair;
    bool m_crosshairOn = false;
    bool m_showOverlay = false;
    QImage m_overlay;
};

} // namespace nxr
