#include "mask/MaskSession.h"

#include "frame/Conversions.h"
#include "frame/Globals.h"
#include "frame/Trace.h"
#include "imagedisplay/loading/ControllerFiles.h"
#include "imagedisplay/loading/ImageFile.h"
#include "imagedisplay/loading/ImageList.h"
#include "imagedisplay/loading/LocalImagePath.h"
#include "mask/MaskCompositor.h"
#include "mask/MaskHost.h"

#include <QDir>
#include <QFileInfo>

namespace nxr {

namespace {

const QString kClass = QStringLiteral("NXRImageDisplay");

// A mask file's format: by its image extension, PNG when it has none.
ImageFileFormat maskFormat(const QString& path)
{
    const QString ext = Globals::imageExtension(path);
    if (ext == QLatin1String(".JPG"))
        return ImageFileFormat::Jpeg;
    if (ext == QLatin1String(".GIF"))
        return ImageFileFormat::Gif;
    if (ext == QLatin1String(".BMP"))
        return ImageFileFormat::Bmp;
    return ImageFileFormat::Png;
}

// Runs `body`; a failure is reported as "Error in <routine>: " + its description.
template <typename Body> bool guarded(MaskHost& host, const QString& routine, Body&& body)
{
    try {
        body();
        return true;
    } catch (const Failure& f) {
        host.reportError(routine,
                         QStringLiteral("Error in ") + routine + QStringLiteral(": ") + f.description());
    } catch (const std::exception& e) {
        host.reportError(routine, QStringLiteral("Error in ") + routine + QStringLiteral(": ") +
                                      QString::fromLocal8Bit(e.what()));
    }
    return false;
}

class RepaintOff
{
public:
    explicit RepaintOff(MaskHost& host) : m_host(host), m_was(host.autoRepaint())
    {
        host.setAutoRepaint(false);
    }
    ~RepaintOff() { m_host.setAutoRepaint(m_was); }

private:
    MaskHost& m_host;
    bool m_was;
};

} // namespace

MaskSession::MaskSession(MaskHost& host) : m_host(host)
{
    m_editor.onPenColorError = [this](const QString& text) { m_host.showCriticalMessage(text); };
}

int MaskSession::slotOf(int mode)
{
    return mode == KSEEditMask_ExtraCare ? 1 : 0;
}

QString MaskSession::keyOf(int mode)
{
    return mode == KSEEditMask_ExtraCare ? ImageList::kEmphasisMask : ImageList::kDontCareMask;
}

void MaskSession::LoadMask(const QString& server, const QString& path, const QString& userName,
                           const QString& password, int maskType)
{
    NXR_TRACE(kClass, QStringLiteral("LoadMask"), QStringLiteral("Entered, vstr_FilePath = ") + path);
    const QString routine = QStringLiteral("LoadMask");
    RepaintOff repaintOff(m_host);
    int mode;
    if (maskType == 0 || maskType == 1)
        mode = KSEEditMask_DontCare;
    else if (maskType == 2)
        mode = KSEEditMask_ExtraCare;
    else
        return;
    Slot& slot = m_slots[size_t(slotOf(mode))];
    const QString key = keyOf(mode);
    guarded(m_host, routine, [&] {
        QString ext = Globals::imageExtension(path);
        if (ext.isEmpty())
            ext = QStringLiteral(".PNG");
        const QString folder =
            QFileInfo(LocalImagePath::forControllerPath(Globals::storageFolder(), path)).absolutePath();
        slot = Slot{server, path, userName, password, folder + QLatin1Char('/') + key + ext};
        m_host.imageList().remove(key);
        QDir().mkpath(folder);
        QString error;
        if (!m_host.controllerFiles().copyFromController(server, path, userName, password, slot.localPath,
                                                         &error))
            throw Failure(error);
        QImage mask;
        try {
            mask = ImageFile::read(slot.localPath);
        } catch (const Failure&) {
            m_host.reportError(routine, QStringLiteral("Error in LoadMask: file ") + path +
                                            QStringLiteral(" does not contain mask image"));
            return;
        }
        // The mask takes the camera image's size.
        const QImage camera = m_host.imageList().image(ImageList::kCurrent);
        if (!camera.isNull() && camera.size() != mask.size())
            mask = mask.scaled(camera.size(), Qt::IgnoreAspectRatio, Qt::FastTransformation);
        m_host.imageList().insert(key, mask);
    });
}

void MaskSession::startEdit(int mode, const QString& routine)
{
    NXR_TRACE(kClass, routine, QStringLiteral("Entered"));
    const QImage mask = m_host.imageList().image(keyOf(mode));
    if (mask.isNull()) {
        m_host.reportError(routine,
                           QStringLiteral("Error in ") + routine + QStringLiteral(": no mask image loaded."));
        return;
    }
    if (m_editor.isEditing())
        m_editor.finishPending();
    setEditMaskMode(mode);
    m_editor.begin(mask, mode);
    m_host.showMaskEditControls(true);
    m_host.setMaskToolProperty(QStringLiteral("ToolsAndSizesEnabled"), QStringLiteral("True"));
    refresh(mask.rect());
    refreshUndoCommand();
}

void MaskSession::setEditMaskMode(int mode)
{
    const int before = m_editor.mode();
    m_editor.setMode(mode);
    m_editor.setTool(toLong(m_host.maskToolProperty(QStringLiteral("SelectedTool"))));
    m_editor.setToolSize(toLong(m_host.maskToolProperty(QStringLiteral("SelectedToolSize"))));
    if (before == KSEEditMask_None && mode != KSEEditMask_None) {
        m_savedMouseCursor = m_host.viewButtonProperty(QStringLiteral("ActiveMouseCursor"));
        m_host.setViewButtonProperty(QStringLiteral("ActiveMouseCursor"), QStringLiteral("1"));
    } else if (mode == KSEEditMask_None && !m_savedMouseCursor.isEmpty()) {
        m_host.setViewButtonProperty(QStringLiteral("ActiveMouseCursor"), m_savedMouseCursor);
        m_savedMouseCursor.clear();
    }
}

void MaskSession::setShowMask(int which)
{
    m_showMask = which;
    if (!m_host.inBatchUpdate())
        m_host.resetAndRedraw();
}

QString MaskSession::MaskImageFilename(int mask) const
{
    if (mask == 0 || mask == 1)
        return m_slots[0].localPath;
    if (mask == 2)
        return m_slots[1].localPath;
    return {};
}

QImage MaskSession::shownMasksView() const
{
    std::vector<QImage> masks;
    if (m_showMask == 1 || m_showMask == 3)
        masks.push_back(m_host.imageList().image(ImageList::kDontCareMask));
    if (m_showMask == 2 || m_showMask == 3)
        masks.push_back(m_host.imageList().image(ImageList::kEmphasisMask));
    std::erase_if(masks, [](const QImage& m) { return m.isNull(); });
    const QImage camera = m_host.imageList().image(ImageList::kCurrent);
    if (masks.empty() || camera.isNull())
        return {};
    QImage view;
    MaskCompositor::compose(camera, masks, camera.rect(), &view);
    return view;
}

void MaskSession::refresh(const QRect& changed)
{
    if (!m_editor.isEditing() || changed.isEmpty())
        return;
    if (!m_host.imageList().contains(keyOf(m_editor.mode()))) {
        m_host.reportError(
            QStringLiteral("msub_ShowCombinedMaskAndImageBitmap"),
            QStringLiteral("Error in msub_ShowCombinedMaskAndImageBitmap: no mask image in ImageList"));
        return;
    }
    const QRect area = changed.intersected(m_editor.working().rect());
    if (!area.isEmpty())
        m_host.editMaskChanged(area);
}

void MaskSession::refreshUndoCommand()
{
    m_host.setMaskToolProperty(QStringLiteral("CommandEnabled"), m_editor.undoEnabledValue());
}

void MaskSession::onToolSelected(int tool)
{
    m_editor.setTool(tool);
    m_host.setViewButtonProperty(QStringLiteral("ActiveMouseCursor"), QStringLiteral("1"));
}

void MaskSession::onToolSizeSelected(int size)
{
    m_editor.setToolSize(size);
    m_host.setViewButtonProperty(QStringLiteral("ActiveMouseCursor"), QStringLiteral("1"));
}

void MaskSession::onCommandClicked(int command)
{
    if (!m_editor.isEditing() || m_busy)
        return;
    QRect changed;
    if (command == KSEMaskCommand_Undo) {
        m_busy = true;
        m_host.setBusyPointer(true);
        changed = m_editor.undo();
        m_host.setBusyPointer(false);
        m_busy = false;
    } else if (command == KSEMaskCommand_MaskAll || command == KSEMaskCommand_MaskNone) {
        changed = m_editor.command(command);
    } else {
        return;
    }
    refresh(changed);
    refreshUndoCommand();
}

void MaskSession::redo()
{
    if (!m_editor.isEditing() || m_busy)
        return;
    refresh(m_editor.redo());
    refreshUndoCommand();
}

void MaskSession::repaintBand(const std::optional<MaskEditor::RubberBand>& before)
{
    const auto after = m_editor.rubberBand();
    if (!before && !after)
        return;
    if (before && after && before->tool == after->tool && before->outline == after->outline)
        return;
    // The outline is the display's to draw; repaint where it was and where it is.
    QRectF band = before ? before->outline : after->outline;
    if (before && after)
        band = band.united(after->outline);
    m_host.repaintEditArea(band);
}

void MaskSession::mousePress(const QPointF& at, int button, int shift)
{
    if (m_busy) // saving and uploading: the mask is being written
        return;
    const auto band = m_editor.rubberBand();
    refresh(m_editor.press(at, button, shift));
    repaintBand(band);
}

void MaskSession::mouseMove(const QPointF& at)
{
    if (m_busy) // saving and uploading: the mask is being written
        return;
    const auto band = m_editor.rubberBand();
    refresh(m_editor.move(at));
    repaintBand(band);
}

void MaskSession::mouseRelease(const QPointF& at, int button, int shift)
{
    if (m_busy) // saving and uploading: the mask is being written
        return;
    const auto band = m_editor.rubberBand();
    const int before = m_editor.model().Operations().Count();
    refresh(m_editor.release(at, button, shift));
    repaintBand(band);
    if (m_editor.model().Operations().Count() != before)
        refreshUndoCommand();
}

void MaskSession::mouseDoubleClick(const QPointF& at, int button)
{
    if (m_busy) // saving and uploading: the mask is being written
        return;
    const auto band = m_editor.rubberBand();
    refresh(m_editor.doubleClick(at, button));
    repaintBand(band);
    refreshUndoCommand();
}

void MaskSession::msub_FinishMask()
{
    const int mode = m_editor.mode();
    const Slot& slot = m_slots[size_t(slotOf(mode))];
    const QImage mask = m_editor.working();
    QString localPath = slot.localPath;
    if (localPath.isEmpty()) // a mask filed by the display itself, never loaded from a file
        throw Failure(QStringLiteral("the mask has no file"));
    ImageFile::write(mask, localPath, maskFormat(slot.path));
    QString error;
    if (!m_host.controllerFiles().copyToController(localPath, slot.server, slot.path, slot.userName,
                                                   slot.password, &error))
        throw Failure(error);
    m_host.imageList().insert(keyOf(mode), mask);
}

void MaskSession::accept()
{
    if (!m_editor.isEditing() || m_busy)
        return;
    const auto band = m_editor.rubberBand();
    refresh(m_editor.finishPending());
    repaintBand(band);
    m_busy = true;
    const bool saved = guarded(m_host, QStringLiteral("msub_FinishMask"), [&] { msub_FinishMask(); });
    m_busy = false;
    if (saved)
        finishEdit(true);
}

void MaskSession::cancel()
{
    if (!m_editor.isEditing() || m_busy)
        return;
    finishEdit(false);
}

void MaskSession::finishEdit(bool accepted)
{
    const auto band = m_editor.rubberBand();
    m_editor.end();
    repaintBand(band);
    setEditMaskMode(KSEEditMask_None);
    m_host.showMaskEditControls(false);
    m_host.raiseExitMaskEditMode(accepted);
}

void MaskSession::reinitialize()
{
    m_host.imageList().remove(ImageList::kDontCareMask);
    m_host.imageList().remove(ImageList::kEmphasisMask);
}

} // namespace nxr
