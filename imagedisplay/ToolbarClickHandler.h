#pragma once
// Turns a click on the display's tool bar into its action and decides which name the page
// hears. Each button's action is a hook: the display fills the mouse-mode and zoom actions,
// the live, crosshair, editing and dialog subsystems fill theirs.

#include "frame/Export.h"

#include <QObject>
#include <QString>

#include <array>
#include <functional>

class QTimer;

namespace nxr {

struct DisplayState;

class NXR_EXPORT ToolbarClickHandler : public QObject
{
    Q_OBJECT

public:
    ToolbarClickHandler(const DisplayState& state, QObject* parent = nullptr);

    // Gives a button its action. A button has one owner: a second action for a button that has
    // one is refused (false, and a trace), so that two subsystems never silently take the same
    // button. Accept and Cancel belong to the edit session.
    bool setAction(int button, std::function<void()> action);
    // Runs after every action (status bar, OnZoomChanged).
    void setAfterAction(std::function<void()> after) { m_after = std::move(after); }

    // The action of a button, then the after-action step. Throws what the action throws.
    void handle(int button);

    // The name the page hears for a click, or "" when the click is not passed on.
    // wasLive/liveNow: live mode before and after the click's action.
    static QString nameToPass(int button, bool wasLive, bool liveNow, bool editing);

    // Handles the click and returns the name to raise at once ("" for none). `handleAction`
    // runs handle() under the caller's error convention.
    QString click(int button, const std::function<void(int)>& handleAction);

    // Passes a name to the page from the event loop (tmr_ButtonClickEvent), so that the page's
    // handler never runs inside the click that caused it.
    void passLater(const QString& name);
    QTimer* deferralTimer() const { return m_timer; }

Q_SIGNALS:
    void passToPage(const QString& name);

private:
    const DisplayState& m_state;
    std::array<std::function<void()>, 20> m_actions;
    std::function<void()> m_after;
    QTimer* m_timer = nullptr;
};

} // namespace nxr
