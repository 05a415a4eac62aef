#pragma once
// The one edit of the image display: what is being edited (a mask, a movable window, cursor,
// line or line pair), which editor does it, and the parts every edit shares:
//   - the OK/Cancel bar (fra_OKCancel, lbl_OKCancel, cmd_OK, cmd_Cancel) and its flashing
//     (tmr_FlashOKCancel), shown exactly while an edit is open;
//   - the tool-bar actions vvb_Accept and vvb_Cancel: cmd_OK / cmd_Cancel (and Enter / Escape
//     on the image) run them and pass "Accept" / "Cancel" to the page afterwards through the
//     deferred button event (tmr_ButtonClickEvent);
//   - the mouse: the editor's interaction sees the image's events while the edit is open, and
//     the mouse mode (with the view buttons' "ActiveMouseCursor") is pointer during the edit and
//     back to what it was afterwards.
// Accept and cancel call the editor's finish() exactly once; the editor raises its exit event.

#include "frame/Export.h"
#include "imagedisplay/edit/Editor.h"

#include <QObject>
#include <QString>

#include <functional>

class QFrame;
class QLabel;
class QPushButton;
class QTimer;
class QWidget;

namespace nxr {

class MouseDispatcher;
class ScriptableCore;
class ToolbarClickHandler;
struct DisplayState;

class NXR_EXPORT EditSession : public QObject
{
    Q_OBJECT

public:
    struct Links
    {
        ScriptableCore& core;
        DisplayState& state;
        ToolbarClickHandler& clicks;
        MouseDispatcher& mouse;
        // A key of the view buttons' string property protocol.
        std::function<void(const QString& key, const QString& value)> viewButtonProperty;
    };

    // The bar's widgets are made children of `barParent` (the display lays the bar out).
    EditSession(QWidget* barParent, Links links);

    // Opens an edit. An edit that is open with another editor is cancelled first (its editor
    // finishes as refused and raises its exit event). With the editor already active only the
    // kind and mask mode change. maskMode is the mask's edit mode (kind Mask only).
    void begin(EditKind kind, Editor& editor, int maskMode = -1);
    // The editor ended its edit by itself: the session leaves the edit without calling finish.
    void leave(Editor& editor);

    EditKind kind() const;
    bool editing() const;
    Editor* editor() const { return m_editor; }
    int maskMode() const;

    // cmd_OK / cmd_Cancel: the vvb_Accept / vvb_Cancel action, then "Accept" / "Cancel" to the
    // page from the event loop. Nothing while no edit is open.
    void accept();
    void cancel();
    // Ending the display: an open edit is cancelled and "Cancel" raised to the page at once
    // (the event loop may not run again). Returns whether there was an edit.
    bool cancelBeforeClose(const std::function<void(const QString&)>& raiseNow);

    // Flashes the OK/Cancel bar to remind the user to finish the edit.
    void flash();
    QFrame* bar() const { return m_bar; }
    QTimer* flashTimer() const { return m_flashTimer; }

Q_SIGNALS:
    // An edit began or ended, or its kind changed (the display lays out and shows the mask view).
    void changed();

private:
    void finishActive(bool accepted);
    void clear();
    void setPointerMode(int mode);

    Links m_links;
    Editor* m_editor = nullptr;
    int m_modeBefore = 1;
    QFrame* m_bar = nullptr;
    QLabel* m_label = nullptr;
    QPushButton* m_ok = nullptr;
    QPushButton* m_cancel = nullptr;
    QTimer* m_flashTimer = nullptr;
    int m_flashesLeft = 0;
};

} // namespace nxr
