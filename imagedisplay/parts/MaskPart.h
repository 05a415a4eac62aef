#pragma once
// Mask editing plugged into the image display: the adapter between the display and the mask
// session (mask/MaskSession).
//   - MaskHost over the display: its image list and controller files, the mask view
//     ctl_MaskLEAD (the camera image as its bitmap, the working mask tinted over it by
//     MaskEditLayer for the repainted pixels only, so a brush stroke costs what it touches),
//     the palette ctl_NXRMaskToolButtons (beside the image while an edit is open), errors and
//     OnExitMaskEditMode;
//   - the Editor the edit session runs: OK/Cancel, Enter/Escape and the display's end finish the
//     mask edit through it;
//   - MaskInteraction, the mouse and keys over the mask view and the outlines drawn there, and
//     MaskTintLayer, the masks ShowMask tints over the image outside an edit.
// The display's LoadMask, EditDontCareMask, EditEmphasisMask, ShowMask, EditMaskMode and
// MaskImageFilename forward here in one line each.

#include "frame/Export.h"
#include "imagedisplay/edit/DisplayParts.h"
#include "imagedisplay/edit/Editor.h"
#include "mask/MaskHost.h"
#include "mask/MaskSession.h"

#include <memory>

class NXRImageDisplay;
class NXRMaskToolButtons;
class QObject;

namespace nxr {

class EditHost;
class MaskEditLayer;
class MaskInteraction;
class MaskTintLayer;

class NXR_EXPORT MaskPart : public DisplayPart, public MaskHost, public Editor
{
public:
    explicit MaskPart(EditHost& host);
    ~MaskPart() override;

    MaskSession& session() { return m_session; }
    NXRMaskToolButtons* palette() const;
    MaskInteraction& pointer() { return *m_interaction; }
    MaskTintLayer& tint() { return *m_tint; }

    // EditMaskMode set by the page: an open edit takes the new mode.
    void setEditMaskMode(int mode);
    // The display's "HourglassCursor" and "ProgressCursor" go to the palette as well.
    void setPaletteFlag(const QString& key, bool on);

    // MaskHost
    ImageList& imageList() override;
    ControllerFiles& controllerFiles() override;
    bool autoRepaint() const override;
    void setAutoRepaint(bool on) override;
    bool inBatchUpdate() const override { return false; }
    void resetAndRedraw() override;
    void editMaskChanged(const QRect& changed) override;
    void repaintEditArea(const QRectF& area) override;
    void showMaskEditControls(bool show) override;
    void setBusyPointer(bool busy) override;
    QString maskToolProperty(const QString& key) override;
    void setMaskToolProperty(const QString& key, const QString& value) override;
    QString viewButtonProperty(const QString& key) override;
    void setViewButtonProperty(const QString& key, const QString& value) override;
    void reportError(const QString& routine, const QString& text) override;
    void showCriticalMessage(const QString& text) override;
    void raiseExitMaskEditMode(bool accepted) override;

    // Editor
    Interaction* interaction() override;
    void finish(bool accepted) override;

private:
    void placePalette();
    void setPaletteShown(bool show);

    EditHost& m_host;
    NXRImageDisplay& m_display;
    NXRMaskToolButtons* m_palette = nullptr; // a child of the image frame, deleted with the part
    QObject* m_frameWatch = nullptr;
    MaskSession m_session;
    std::unique_ptr<MaskInteraction> m_interaction;
    std::unique_ptr<MaskTintLayer> m_tint;
    std::unique_ptr<MaskEditLayer> m_editTint;
};

} // namespace nxr
