#include "imagedisplay/NXRViewButtons.h"

#include "frame/ClassRegistry.h"
#include "frame/Globals.h"
#include "frame/SettingKeys.h"
#include "frame/Trace.h"
#include "imagedisplay/ViewButtonIcons.h"

#include <QButtonGroup>
#include <QEvent>
#include <QToolButton>

#include <algorithm>

using nxr::Failure;
using nxr::fromBool;

NXR_REGISTER_CLASS(NXRViewButtons)

namespace {

const QString kClass = QStringLiteral("NXRViewButtons");
const QString kSetProperty = QStringLiteral("SetProperty");

struct ButtonEntry
{
    int button;
    const char* name;
    bool checkable;
    nxr::Globals::Caption tip; // Japanese: translations/nexarocontrols_jp.ts
};

// The row, left to right. Buttons 11/12 and 18/19 share one check button each.
const ButtonEntry kButtons[] = {
    {vvb_ContinuousAcquire, "cmd_Live", true, {QT_TRANSLATE_NOOP("Caption", "Live mode")}},
    {vvb_Acquire, "cmd_Acquire", false, {QT_TRANSLATE_NOOP("Caption", "Snap an image")}},
    {vvb_MouseModePointer, "opt_Cursor", true, {QT_TRANSLATE_NOOP("Caption", "Pointer")}},
    {vvb_MouseModePan, "opt_Cursor", true, {QT_TRANSLATE_NOOP("Caption", "Pan")}},
    {vvb_MouseModeZoomIn,
     "opt_Cursor",
     true,
     {QT_TRANSLATE_NOOP("Caption", "Zoom in (right button: zoom out)")}},
    {vvb_MouseModeZoomOut,
     "opt_Cursor",
     true,
     {QT_TRANSLATE_NOOP("Caption", "Zoom out (right button: zoom in)")}},
    {vvb_FitImage, "cmd_FitImage", false, {QT_TRANSLATE_NOOP("Caption", "Fit the image")}},
    {vvb_DefaultZoom, "cmd_Zoom100", false, {QT_TRANSLATE_NOOP("Caption", "Default zoom")}},
    {vvb_ChangeSize, "cmd_ChangeSize", false, {QT_TRANSLATE_NOOP("Caption", "Change size")}},
    {vvb_CrosshairOn, "chk_Crosshair", true, {QT_TRANSLATE_NOOP("Caption", "Crosshair")}},
    {vvb_WindowReset, "cmd_WindowReset", false, {QT_TRANSLATE_NOOP("Caption", "Reset the window")}},
    {vvb_Open, "cmd_Open", false, {QT_TRANSLATE_NOOP("Caption", "Open an image")}},
    {vvb_Save, "cmd_Save", false, {QT_TRANSLATE_NOOP("Caption", "Save the image")}},
    {vvb_LaserOn, "chk_LaserOnOff", true, {QT_TRANSLATE_NOOP("Caption", "Laser on/off")}},
};

int controlIndex(int button)
{
    if (button == vvb_CrosshairOff)
        return vvb_CrosshairOn;
    if (button == vvb_LaserOff)
        return vvb_LaserOn;
    return button;
}

} // namespace

NXRViewButtons::NXRViewButtons(QWidget* parent) : ScriptableWidget(parent)
{
    createButtons();
    msub_Localize();
    addKeys();
    setMinimumHeight(16);
}

NXRViewButtons::~NXRViewButtons() = default;

void NXRViewButtons::createButtons()
{
    m_cursorGroup = new QButtonGroup(this);
    m_cursorGroup->setExclusive(true);
    int option = 0;
    for (const ButtonEntry& entry : kButtons) {
        auto* b = new QToolButton(this);
        b->setObjectName(QString::fromLatin1(entry.name) +
                         (entry.button >= vvb_MouseModePointer && entry.button <= vvb_MouseModeZoomOut
                              ? QString::number(option)
                              : QString()));
        b->setCheckable(entry.checkable);
        b->setAutoRaise(true);
        b->setIcon(nxr::ViewButtonIcons::icon(entry.button));
        b->setFocusPolicy(Qt::NoFocus);
        m_controls[size_t(entry.button)] = b;
        const int number = entry.button;
        if (number >= vvb_MouseModePointer && number <= vvb_MouseModeZoomOut) {
            m_cursorOptions[size_t(option++)] = b;
            m_cursorGroup->addButton(b, number);
            connect(b, &QToolButton::clicked, this, [this, number] { Q_EMIT OnButtonClicked(number); });
        } else if (number == vvb_ContinuousAcquire) {
            // Pressed or released is the page's to say (key "Live"), not the click's.
            connect(b, &QToolButton::clicked, this, [this, b, number] {
                b->setChecked(m_liveShown);
                Q_EMIT OnButtonClicked(number);
            });
        } else if (number == vvb_CrosshairOn || number == vvb_LaserOn) {
            connect(b, &QToolButton::clicked, this,
                    [this, number](bool checked) { Q_EMIT OnButtonClicked(checked ? number : number + 1); });
        } else {
            connect(b, &QToolButton::clicked, this, [this, number] { Q_EMIT OnButtonClicked(number); });
        }
    }
    m_cursorOptions[0]->setChecked(true);
}

void NXRViewButtons::msub_Localize()
{
    for (const ButtonEntry& entry : kButtons)
        m_controls[size_t(entry.button)]->setToolTip(entry.tip.pick());
}

QAbstractButton* NXRViewButtons::buttonControl(int button) const
{
    if (button < 0 || button >= int(m_controls.size()))
        return nullptr;
    return m_controls[size_t(controlIndex(button))];
}

template <typename Body> void NXRViewButtons::applying(const QString& key, Body&& body)
{
    nxr::applySettingKey(core(), key, std::forward<Body>(body));
}

bool NXRViewButtons::parseButtonValue(const QString& key, const QString& value, int* button, bool* flag)
{
    const qsizetype comma = value.indexOf(QLatin1Char(','));
    if (comma < 0) {
        core().reportError(kSetProperty, QStringLiteral("Error setting ") + key +
                                             QStringLiteral(" property: invalid PropertyValue argument (") +
                                             value + QLatin1Char(')'));
        return false;
    }
    try {
        *button = nxr::toInteger(value.left(comma).trimmed());
        *flag = nxr::toBool(value.mid(comma + 1).trimmed());
    } catch (const Failure&) {
        core().reportError(kSetProperty, QStringLiteral("Error setting ") + key +
                                             QStringLiteral(" property: could not parse Button or Value (") +
                                             value + QLatin1Char(')'));
        return false;
    }
    return true;
}

void NXRViewButtons::setButtonEnabled(int button, bool enabled)
{
    if (button < 0 || button > vvb_LaserOff)
        throw Failure(QStringLiteral("no such button (") + QString::number(button) + QLatin1Char(')'));
    if (QAbstractButton* b = buttonControl(button))
        b->setEnabled(enabled);
}

void NXRViewButtons::setButtonVisible(int button, bool visible)
{
    if (button < 0 || button > vvb_LaserOff)
        throw Failure(QStringLiteral("no such button (") + QString::number(button) + QLatin1Char(')'));
    QAbstractButton* b = buttonControl(button);
    if (!b || b->isHidden() == !visible)
        return;
    b->setHidden(!visible);
    layoutButtons();
}

bool NXRViewButtons::visibleFlag(int button) const
{
    const QAbstractButton* b = buttonControl(button);
    return b && !b->isHidden();
}

void NXRViewButtons::addKeys()
{
    auto boolKey = [this](const QString& key, std::function<void(bool)> apply) {
        return nxr::boolSettingKey(core(), key, std::move(apply));
    };
    auto buttonKey = [this](const QString& key, void (NXRViewButtons::*apply)(int, bool)) {
        return [this, key, apply](const QString& v) {
            int button = 0;
            bool flag = false;
            if (parseButtonValue(key, v, &button, &flag))
                applying(key, [&] { (this->*apply)(button, flag); });
        };
    };
    auto enabled = [this](int button) { return fromBool(buttonControl(button)->isEnabled()); };

    properties()
        .add(
            QStringLiteral("AcquireEnabled"),
            boolKey(QStringLiteral("AcquireEnabled"), [this](bool on) { setButtonEnabled(vvb_Acquire, on); }),
            [enabled] { return enabled(vvb_Acquire); })
        .add(QStringLiteral("Live"),
             boolKey(QStringLiteral("Live"),
                     [this](bool on) {
                         m_liveShown = on;
                         buttonControl(vvb_ContinuousAcquire)->setChecked(on);
                     }),
             [this] { return fromBool(buttonControl(vvb_ContinuousAcquire)->isChecked()); })
        .add(QStringLiteral("LiveEnabled"),
             boolKey(QStringLiteral("LiveEnabled"),
                     [this](bool on) { setButtonEnabled(vvb_ContinuousAcquire, on); }),
             [enabled] { return enabled(vvb_ContinuousAcquire); })
        .addWriteOnly(QStringLiteral("ButtonEnabled"),
                      buttonKey(QStringLiteral("ButtonEnabled"), &NXRViewButtons::setButtonEnabled))
        .addWriteOnly(QStringLiteral("ButtonVisible"),
                      buttonKey(QStringLiteral("ButtonVisible"), &NXRViewButtons::setButtonVisible))
        .add(
            QStringLiteral("LaserOn"),
            [this](const QString& v) { buttonControl(vvb_LaserOn)->setChecked(v == QLatin1String("True")); },
            [this] { return fromBool(buttonControl(vvb_LaserOn)->isChecked()); })
        .addWriteOnly(QStringLiteral("HourglassCursor"),
                      nxr::cursorSettingKey(core(), *this, QStringLiteral("HourglassCursor"), Qt::WaitCursor))
        .addWriteOnly(QStringLiteral("ProgressCursor"),
                      nxr::cursorSettingKey(core(), *this, QStringLiteral("ProgressCursor"), Qt::BusyCursor))
        .add(
            QStringLiteral("ActiveMouseCursor"),
            [this](const QString& v) {
                const int mode = nxr::toInteger(v);
                if (mode < 1 || mode > 4)
                    throw Failure(QStringLiteral("Invalid property value"));
                m_cursorOptions[size_t(mode - 1)]->setChecked(true);
            },
            [this] { return QString::number(m_cursorGroup->checkedId() - vvb_MouseModePointer + 1); })
        .addReadOnly(QStringLiteral("LastErrorString"), [this] { return core().lastError(); })
        .addReadOnly(
            QStringLiteral("ImageCaptureButtonsVisible"),
            [this] { return fromBool(visibleFlag(vvb_ContinuousAcquire) && visibleFlag(vvb_Acquire)); })
        .addReadOnly(QStringLiteral("WindowResetButtonVisible"),
                     [this] { return fromBool(visibleFlag(vvb_WindowReset)); })
        .addReadOnly(QStringLiteral("OpenSaveButtonsVisible"),
                     [this] { return fromBool(visibleFlag(vvb_Open) && visibleFlag(vvb_Save)); })
        .addReadOnly(QStringLiteral("LaserOnOffButtonEnabled"), [enabled] { return enabled(vvb_LaserOn); });
}

int NXRViewButtons::preferredWidth(int height) const
{
    int count = 0;
    for (const ButtonEntry& entry : kButtons)
        count += m_controls[size_t(entry.button)]->isHidden() ? 0 : 1;
    return count * height;
}

void NXRViewButtons::layoutButtons()
{
    NXR_TRACE(kClass, QStringLiteral("UserControl_Resize"),
              QStringLiteral("entered, h=") + QString::number(height()) + QStringLiteral(", w=") +
                  QString::number(width()));
    int count = 0;
    for (const ButtonEntry& entry : kButtons)
        count += m_controls[size_t(entry.button)]->isHidden() ? 0 : 1;
    if (count == 0)
        return;
    // Square buttons as tall as the bar, narrower when the row would not fit.
    const int side = std::max(1, std::min(height(), width() / count));
    NXR_TRACE(kClass, QStringLiteral("UserControl_Resize"),
              QStringLiteral("new button h=") + QString::number(side) + QStringLiteral(", w=") +
                  QString::number(side));
    int x = 0;
    const int iconSide = std::max(8, side - 8);
    for (const ButtonEntry& entry : kButtons) {
        QAbstractButton* b = m_controls[size_t(entry.button)];
        if (b->isHidden())
            continue;
        b->setGeometry(x, 0, side, side);
        b->setIconSize(QSize(iconSide, iconSide));
        x += side;
    }
}

void NXRViewButtons::resizeEvent(QResizeEvent* event)
{
    ScriptableWidget::resizeEvent(event);
    layoutButtons();
}

void NXRViewButtons::changeEvent(QEvent* event)
{
    ScriptableWidget::changeEvent(event);
    if (event->type() == QEvent::LanguageChange)
        msub_Localize();
}
