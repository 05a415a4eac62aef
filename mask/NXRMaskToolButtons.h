#pragma once
// The mask tool palette: drawing tools, tool sizes and the commands mask all, mask none, undo and
// help, as three rows of buttons one below the other. It holds no mask state; the operator's
// choices are reported as events (clicks only, never changes made from code), and pages or the
// image display drive it through SetProperty/GetProperty.

#include "frame/Export.h"
#include "frame/ScriptableWidget.h"
#include "mask/MaskTypes.h"

#include <array>

class QAbstractButton;
class QButtonGroup;
class QFrame;
class QLabel;
class QPushButton;

class NXR_EXPORT NXRMaskToolButtons : public nxr::ScriptableWidget
{
    Q_OBJECT

public:
    explicit NXRMaskToolButtons(QWidget* parent = nullptr);
    ~NXRMaskToolButtons() override;

    // The button of a tool, size or command number (null outside the enumeration).
    QAbstractButton* toolButton(int tool) const;
    QAbstractButton* sizeButton(int size) const;
    QAbstractButton* commandButton(int command) const;
    QPushButton* focusButton() const { return m_focus; }

    // Checks a tool or size (-1: none) without raising an event.
    void setSelectedTool(int tool);
    void setSelectedToolSize(int size);
    int selectedTool() const;
    int selectedToolSize() const;

    QSize sizeHint() const override;

Q_SIGNALS:
    void OnToolSelected(int NewTool);
    void OnToolSizeSelected(int NewSize);
    void OnCommandClicked(int Command);
    // Kept for pages; the palette itself never raises it (the right mouse button erases).
    void OnEraseModeChanged(bool vbln_Erase);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void msub_Initialize();
    void msub_Localize();
    void addKeys();
    void layoutButtons();
    void applyBackColor(qint32 color);
    void setCommandEnabled(const QString& value);
    static void check(QButtonGroup* group, int id);
    template <typename Body> void applying(const QString& key, Body&& body);

    QFrame* m_toolFrame = nullptr;
    QFrame* m_sizeFrame = nullptr;
    QFrame* m_commandFrame = nullptr;
    QLabel* m_background = nullptr;
    QPushButton* m_focus = nullptr;
    QButtonGroup* m_tools = nullptr;
    QButtonGroup* m_sizes = nullptr;
    std::array<QAbstractButton*, 5> m_toolButtons{};
    std::array<QAbstractButton*, 3> m_sizeButtons{};
    std::array<QAbstractButton*, 4> m_commandButtons{};
    bool m_suppressEvents = false;
};
