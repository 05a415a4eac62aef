#pragma once
// The image display's tool bar: live, snap, four mouse-mode option buttons, fit, default zoom,
// change size, crosshair, window reset, open, save and the laser check button, in one row.
// Configured through SetProperty/GetProperty only; every click is reported as
// OnButtonClicked(NXEViewButtons value).

#include "frame/Export.h"
#include "frame/ScriptableWidget.h"
#include "imagedisplay/NXEViewButtons.h"

#include <array>

class QAbstractButton;
class QButtonGroup;

class NXR_EXPORT NXRViewButtons : public nxr::ScriptableWidget
{
    Q_OBJECT
    Q_CLASSINFO("Description", "Tool bar of the image display: live, snap, mouse modes, zoom, open, save")

public:
    explicit NXRViewButtons(QWidget* parent = nullptr);
    ~NXRViewButtons() override;

    // The control that stands for a button number (null for 8, 9, 14, 15 and unknown numbers).
    QAbstractButton* buttonControl(int button) const;
    // The width a row of the visible buttons takes at a given height.
    int preferredWidth(int height) const;

Q_SIGNALS:
    void OnButtonClicked(int Int_Button);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void addKeys();
    void createButtons();
    void msub_Localize();
    void layoutButtons();
    // Parses "<button>, <True|False>" for the ButtonEnabled and ButtonVisible keys; reports
    // the key's error texts itself and returns false on failure.
    bool parseButtonValue(const QString& key, const QString& value, int* button, bool* flag);
    void setButtonEnabled(int button, bool enabled);
    void setButtonVisible(int button, bool visible);
    // Runs a key's body; a failure is reported as "Error setting <key> property: " + details.
    template <typename Body> void applying(const QString& key, Body&& body);
    bool visibleFlag(int button) const;

    std::array<QAbstractButton*, 20> m_controls{};
    std::array<QAbstractButton*, 4> m_cursorOptions{};
    QButtonGroup* m_cursorGroup = nullptr;
    bool m_liveShown = false;
};
