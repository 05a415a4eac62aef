#include "graphics/OverlayGraphics.h"

#include "frame/Conversions.h"
#include "frame/Globals.h"
#include "frame/ScriptableCore.h"
#include "graphics/Crosshair.h"
#include "graphics/GraphicsHost.h"
#include "graphics/RasterOverlay.h"
#include "imagedisplay/loading/ImageFile.h"

#include <QJSValue>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <optional>

namespace nxr {

namespace {

const QStringList& movableKeys()
{
    static const QStringList keys{QStringLiteral("MovableWindow"), QStringLiteral("MovableCursor"),
                                  QStringLiteral("MovableLine"), QStringLiteral("MovableLinePair")};
    return keys;
}

// A script array, a list or a string list as a list of values, at most `limit` of them; *length
// receives the full length.
QVariantList toList(const QVariant& value, qsizetype limit, qsizetype* length = nullptr)
{
    if (value.metaType() == QMetaType::fromType<QJSValue>()) {
        const QJSValue array = value.value<QJSValue>();
        if (!array.isArray())
            throw Failure(QStringLiteral("Type mismatch"));
        const qsizetype full = qsizetype(array.property(QStringLiteral("length")).toUInt());
        if (length)
            *length = full;
        QVariantList list;
        list.reserve(std::min(full, limit));
        for (qsizetype i = 0; i < std::min(full, limit); ++i)
            list.append(array.property(quint32(i)).toVariant());
        return list;
    }
    if (value.metaType() == QMetaType::fromType<QVariantList>() ||
        value.metaType() == QMetaType::fromType<QStringList>()) {
        const QVariantList list = value.toList();
        if (length)
            *length = list.size();
        return list.mid(0, limit);
    }
    throw Failure(QStringLiteral("Type mismatch"));
}

std::optional<double> toNumber(const QVariant& value)
{
    bool ok = false;
    const double d = value.toDouble(&ok);
    if (!ok || !std::isfinite(d))
        return std::nullopt;
    return d;
}

std::optional<qint32> toColor(const QVariant& value)
{
    const auto d = toNumber(value);
    if (!d || *d < -2147483648.0 || *d > 2147483647.0)
        return std::nullopt;
    return qint32(std::nearbyint(*d));
}

} // namespace

OverlayGraphics::OverlayGraphics(GraphicsHost& host, ScriptableCore& core) : m_host(host), m_core(core) {}

OverlayGraphics::~OverlayGraphics()
{
    m_graphics.Clear();
}

void OverlayGraphics::paint(QPainter& painter, const ScreenMapping& mapping, const QRect& dirty,
                            const QString& editedKey) const
{
    if (m_graphics.Count() == 0 && !(m_crosshairOn && m_crosshair.Count() > 0))
        return;
    OverlayPainter overlay(painter, mapping, dirty);
    overlay.paint(m_graphics, editedKey);
    if (m_crosshairOn)
        overlay.paint(m_crosshair);
}

void OverlayGraphics::setCrosshairOn(bool on)
{
    m_crosshairOn = on;
    if (on)
        DefineCrosshairOverlays(m_crosshair, m_host.currentImage().size());
    m_host.requestRepaint();
}

void OverlayGraphics::DrawText(const QString& text, qint32 x, qint32 y, qint32 color)
{
    m_core.trace(QStringLiteral("DrawText"),
                 QStringLiteral("Entered, text=%1, x=%2, y=%3, color=%4").arg(text).arg(x).arg(y).arg(color));
    m_core.guard(QStringLiteral("DrawText"), [&] {
        if (m_graphics.Count() >= kMaxPageItems)
            throw Failure(QStringLiteral("too many graphics (at most %1)").arg(kMaxPageItems));
        m_graphics.AddText(x, y, text, color);
        m_host.requestRepaint();
    });
    m_core.trace(QStringLiteral("DrawText"), QStringLiteral("Done"));
}

void OverlayGraphics::DrawTextArray(const QVariant& texts, const QVariant& xs, const QVariant& ys,
                                    const QVariant& colors)
{
    m_core.trace(QStringLiteral("DrawTextArray"), QStringLiteral("Entered"));
    m_core.guard(QStringLiteral("DrawTextArray"), [&] {
        // A page cannot make the display copy more than it may keep.
        qsizetype total = 0;
        const QVariantList t = toList(texts, kMaxPageItems - m_graphics.Count(), &total);
        const QVariantList x = toList(xs, t.size()), y = toList(ys, t.size()), c = toList(colors, t.size());
        qsizetype skipped = total - t.size();
        int added = 0;
        for (qsizetype i = 0; i < t.size(); ++i) {
            const auto px = i < x.size() ? toNumber(x[i]) : std::nullopt;
            const auto py = i < y.size() ? toNumber(y[i]) : std::nullopt;
            const auto pc = i < c.size() ? toColor(c[i]) : std::nullopt;
            if (!px || !py || !pc) {
                ++skipped;
                continue;
            }
            m_graphics.AddText(*px, *py, t[i].toString(), *pc);
            ++added;
        }
        if (added > 0)
            m_host.requestRepaint();
        if (skipped > 0)
            throw Failure(QStringLiteral("%1 of %2 texts skipped: no X, Y or colour of that index, or more "
                                         "than %3 graphics")
                              .arg(skipped)
                              .arg(total)
                              .arg(kMaxPageItems));
    });
    m_core.trace(QStringLiteral("DrawTextArray"), QStringLiteral("Done"));
}

void OverlayGraphics::ClearGraphics()
{
    m_core.trace(QStringLiteral("ClearGraphics"), QStringLiteral("Entered"));
    m_graphics.Clear();
}

void OverlayGraphics::EraseOverlay()
{
    m_core.trace(QStringLiteral("EraseOverlay"), QStringLiteral("Entered"));
    if (m_host.isEditingShape())
        return;
    m_graphics.Clear();
    m_host.requestRepaint();
}

void OverlayGraphics::showComposite()
{
    if (!m_showOverlay || m_overlay.isNull()) {
        m_host.showComposite(QImage());
        return;
    }
    const QImage image = m_host.currentImage();
    m_host.showComposite(image.isNull() ? QImage() : composeOverlay(image, m_overlay));
}

void OverlayGraphics::setShowOverlay(bool show)
{
    m_core.trace(QStringLiteral("ShowOverlay.Let"), QStringLiteral("Entered, show=") + fromBool(show));
    m_showOverlay = show;
    showComposite();
    m_host.requestRepaint();
}

void OverlayGraphics::imageChanged()
{
    if (m_showOverlay && !m_overlay.isNull())
        showComposite();
}

QString OverlayGraphics::localOverlayPath(const QString& controllerPath)
{
    QString extension = Globals::imageExtension(controllerPath);
    if (extension.isEmpty())
        extension = QStringLiteral(".PNG");
    return Globals::storageFolder() + QStringLiteral("/overlay") + extension;
}

void OverlayGraphics::LoadOverlay(const QString& server, const QString& path, const QString& userName,
                                  const QString& password)
{
    const QString routine = QStringLiteral("LoadOverlay");
    m_core.trace(routine, QStringLiteral("Entered"));
    const QString local = localOverlayPath(path);
    QString reason;
    if (!m_host.copyFromController(server, path, userName, password, local, &reason)) {
        m_core.reportError(routine, QString::fromLatin1(kCopyFailed));
        return;
    }
    m_core.guard(routine, [&] {
        m_overlay = ImageFile::read(local);
        m_showOverlay = true;
        showComposite();
        m_host.requestRepaint();
    });
    m_core.trace(routine, QStringLiteral("Done"));
}

void OverlayGraphics::LoadCombinedImageAndOverlay(const QString& server, const QString& imagePath,
                                                  const QString& overlayPath, const QString& userName,
                                                  const QString& password)
{
    m_core.trace(QStringLiteral("LoadCombinedImageAndOverlay"), QStringLiteral("Entered"));
    // An overlay over no image shows nothing; the failed image load has reported itself.
    if (m_host.loadImage(server, imagePath, userName, password))
        LoadOverlay(server, overlayPath, userName, password);
    m_core.trace(QStringLiteral("LoadCombinedImageAndOverlay"), QStringLiteral("Done"));
}

template <typename Add>
void OverlayGraphics::addForPage(const QString& routine, const QString& key, Add&& add)
{
    m_core.guard(routine, [&] {
        if (movableKeys().contains(key))
            throw Failure(QStringLiteral("the key %1 belongs to the movable graphics").arg(key));
        m_graphics.RemoveKey(key);
        if (m_graphics.Count() >= kMaxPageItems)
            throw Failure(QStringLiteral("too many graphics (at most %1)").arg(kMaxPageItems));
        add();
        m_host.requestRepaint();
    });
}

void OverlayGraphics::DrawLine(double x1, double y1, double x2, double y2, qint32 color, const QString& key)
{
    addForPage(QStringLiteral("DrawLine"), key, [&] { m_graphics.AddLine(x1, y1, x2, y2, color, key); });
}

void OverlayGraphics::DrawArrow(double x1, double y1, double x2, double y2, qint32 color, qint16 style,
                                const QString& key)
{
    addForPage(QStringLiteral("DrawArrow"), key,
               [&] { m_graphics.AddArrowLine(x1, y1, x2, y2, color, style, key); });
}

void OverlayGraphics::DrawBox(double left, double top, double width, double height, double angle,
                              qint32 color, const QString& key)
{
    addForPage(QStringLiteral("DrawBox"), key,
               [&] { m_graphics.AddBox(left, top, width, height, angle, color, key); });
}

void OverlayGraphics::DrawCircle(double x, double y, double radius, qint32 color, const QString& key)
{
    addForPage(QStringLiteral("DrawCircle"), key, [&] { m_graphics.AddCircle(x, y, radius, color, key); });
}

void OverlayGraphics::DrawCross(double x, double y, double angle, qint32 color, const QString& key)
{
    addForPage(QStringLiteral("DrawCross"), key, [&] { m_graphics.AddCross(x, y, angle, color, key); });
}

void OverlayGraphics::RemoveGraphic(const QString& key)
{
    m_core.trace(QStringLiteral("RemoveGraphic"), QStringLiteral("Entered, key=") + key);
    if (movableKeys().contains(key))
        return;
    m_graphics.RemoveKey(key);
    m_host.requestRepaint();
}

} // namespace nxr
