#pragma once
// The image display's masks: loading them from the controller, showing them tinted over the
// camera image, one edit at a time with the palette's tools and commands, and accepting (saving
// and uploading) or cancelling it. The display's LoadMask, EditDontCareMask, EditEmphasisMask,
// ShowMask, EditMaskMode and MaskImageFilename forward here, as do the palette's events and the
// mouse on the image while an edit is open.

#include "frame/Export.h"
#include "mask/MaskEditor.h"
#include "mask/MaskTypes.h"

#include <QImage>
#include <QString>

#include <array>

namespace nxr {

class MaskHost;

class NXR_EXPORT MaskSession
{
public:
    explicit MaskSession(MaskHost& host);

    // Mask type 0 or 1: the don't-care mask, 2: the emphasis mask; other types change nothing.
    void LoadMask(const QString& server, const QString& path, const QString& userName,
                  const QString& password, int maskType);
    void EditDontCareMask() { startEdit(KSEEditMask_DontCare, QStringLiteral("EditDontCareMask")); }
    void EditEmphasisMask() { startEdit(KSEEditMask_ExtraCare, QStringLiteral("EditEmphasisMask")); }

    int ShowMask() const { return m_showMask; }
    void setShowMask(int which);
    int EditMaskMode() const { return m_editor.mode(); }
    void setEditMaskMode(int mode);
    // The local file of mask 0/1 (don't-care) or 2 (emphasis); "" for other numbers.
    QString MaskImageFilename(int mask) const;

    // Outside an edit: the camera image with the masks ShowMask selects over it (don't-care
    // first); a null image when it selects none or none of them is loaded.
    QImage shownMasksView() const;

    // The palette's events.
    void onToolSelected(int tool);
    void onToolSizeSelected(int size);
    void onCommandClicked(int command);
    // Redoes the last operation undone (the palette has no button for it; keys do it).
    void redo();

    // The mouse on the image while an edit is open, in mask pixels; Shift: 1 Shift, 2 Ctrl, 4 Alt.
    void mousePress(const QPointF& at, int button, int shift);
    void mouseMove(const QPointF& at);
    void mouseRelease(const QPointF& at, int button, int shift);
    void mouseDoubleClick(const QPointF& at, int button);

    // Ends the edit: accept saves the mask to its local file in the file's format, uploads it and
    // files it under its key; cancel keeps the mask as it was. Both raise OnExitMaskEditMode.
    // A failed save or upload is reported and leaves the edit open.
    void accept();
    void cancel();
    bool isEditing() const { return m_editor.isEditing(); }

    // Re-initialising the display discards both masks.
    void reinitialize();

    const MaskEditor& editor() const { return m_editor; }

private:
    struct Slot
    {
        QString server, path, userName, password, localPath;
    };
    static int slotOf(int mode);
    static QString keyOf(int mode);
    void startEdit(int mode, const QString& routine);
    void finishEdit(bool accepted);
    void msub_FinishMask();
    void refresh(const QRect& changed);
    void refreshUndoCommand();
    // Repaints where the dragged shape's outline was and is, when it changed.
    void repaintBand(const std::optional<MaskEditor::RubberBand>& before);

    MaskHost& m_host;
    MaskEditor m_editor;
    std::array<Slot, 2> m_slots;
    int m_showMask = 0;
    QString m_savedMouseCursor;
    bool m_busy = false;
};

} // namespace nxr
