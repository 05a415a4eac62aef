#include "mask/NXRMaskToolButtons.h"

#include "frame/ClassRegistry.h"
#include "frame/Globals.h"
#include "frame/SettingKeys.h"
#include "frame/Trace.h"
#include "mask/MaskToolIcons.h"

#include <QButtonGroup>
#include <QEvent>
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>

#include <algorithm>

using nxr::Failure;

NXR_REGISTER_CLASS(NXRMaskToolButtons)

namespace {

const QString kClass = QStringLiteral("NXRMaskToolButtons");
const QString kSetProperty = QStringLiteral("SetProperty");
constexpr int kRowHeight = 30;

using Caption = nxr::Globals::Caption;

const Caption kToolTips[] = {
    {QT_TRANSLATE_NOOP("Caption", "Freehand pen (right button erases)")},
    {QT_TRANSLATE_NOOP("Caption", "Joined lines (double click ends the line)")},
    {QT_TRANSLATE_NOOP("Caption", "Ellipse from its centre")},
    {QT_TRANSLATE_NOOP("Caption", "Rectangle")},
    {QT_TRANSLATE_NOOP("Caption", "Fill an area")},
};
const Caption kSizeTips[] = {
    {QT_TRANSLATE_NOOP("Caption", "Small pen (Shift: double width)")},
    {QT_TRANSLATE_NOOP("Caption", "Medium pen (Shift: double width)")},
    {QT_TRANSLATE_NOOP("Caption", "Large pen (Shift: double width)")},
};
const Caption kCommandCaptions[] = {
    {QT_TRANSLATE_NOOP("Caption", "All")},
    {QT_TRANSLATE_NOOP("Caption", "None")},
    {QT_TRANSLATE_NOOP("Caption", "Undo")},
    {QT_TRANSLATE_NOOP("Caption", "Help")},
};
const Caption kCommandTips[] = {
    {QT_TRANSLATE_NOOP("Caption", "Mask the whole image")},
    {QT_TRANSLATE_NOOP("Caption", "Clear the whole mask")},
    {QT_TRANSLATE_NOOP("Caption", "Undo the last drawing")},
    {QT_TRANSLATE_NOOP("Caption", "Help on mask editing")},
};

QToolButton* makeButton(QWidget* parent, const QString& name, bool checkable)
{
    auto* b = new QToolButton(parent);
    b->setObjectName(name);
    b->setCheckable(checkable);
    b->setAutoRaise(true);
    b->setFocusPolicy(Qt::NoFocus);
    return b;
}

QFrame* makeFrame(QWidget* parent, const char* name)
{
    auto* f = new QFrame(parent);
    f->setObjectName(QString::fromLatin1(name));
    f->setFrameShape(QFrame::StyledPanel);
    f->setAutoFillBackground(true);
    return f;
}

} // namespace

NXRMaskToolButtons::NXRMaskToolButtons(QWidget* parent) : ScriptableWidget(parent)
{
    m_background = new QLabel(this);
    m_background->setObjectName(QStringLiteral("img_Background"));
    m_toolFrame = makeFrame(this, "fra_ToolSelection");
    m_sizeFrame = makeFrame(this, "fra_SizeSelection");
    m_commandFrame = makeFrame(this, "fra_Commands");

    m_tools = new QButtonGroup(this);
    m_sizes = new QButtonGroup(this);
    for (int i = 0; i < int(m_toolButtons.size()); ++i) {
        QToolButton* b = makeButton(m_toolFrame, QStringLiteral("opt_Tool%1").arg(i), true);
        b->setIcon(nxr::MaskToolIcons::tool(i));
        m_tools->addButton(b, i);
        m_toolButtons[size_t(i)] = b;
        connect(b, &QToolButton::clicked, this, [this, i] {
            if (m_suppressEvents)
                return;
            m_focus->setFocus();
            Q_EMIT OnToolSelected(i);
        });
    }
    for (int i = 0; i < int(m_sizeButtons.size()); ++i) {
        QToolButton* b = makeButton(m_sizeFrame, QStringLiteral("opt_Size%1").arg(i), true);
        b->setIcon(nxr::MaskToolIcons::size(i));
        m_sizes->addButton(b, i);
        m_sizeButtons[size_t(i)] = b;
        connect(b, &QToolButton::clicked, this, [this, i] {
            if (m_suppressEvents)
                return;
            m_focus->setFocus();
            Q_EMIT OnToolSizeSelected(i);
        });
    }
    for (int i = 0; i < int(m_commandButtons.size()); ++i) {
        QToolButton* b = makeButton(m_commandFrame, QStringLiteral("cmd_MaskCommand%1").arg(i), false);
        b->setToolButtonStyle(Qt::ToolButtonTextOnly);
        m_commandButtons[size_t(i)] = b;
        connect(b, &QToolButton::clicked, this, [this, i] {
            m_focus->setFocus();
            Q_EMIT OnCommandClicked(i);
        });
    }
    // Takes the focus after every click so no button keeps a focus rectangle; not to be seen.
    m_focus = new QPushButton(this);
    m_focus->setObjectName(QStringLiteral("cmd_Focus"));
    m_focus->setFlat(true);
    m_focus->setFocusPolicy(Qt::StrongFocus);
    m_focus->setGeometry(0, 0, 0, 0);

    msub_Initialize();
    addKeys();
}

NXRMaskToolButtons::~NXRMaskToolButtons() = default;

void NXRMaskToolButtons::msub_Initialize()
{
    NXR_TRACE(kClass, QStringLiteral("msub_Initialize"), QStringLiteral("Entered"));
    m_suppressEvents = true;
    setSelectedTool(KSEMaskTool_Freehand);
    setSelectedToolSize(KSEMaskToolSize_Medium);
    const QColor ambient = parentWidget() ? parentWidget()->palette().color(QPalette::Window)
                                          : palette().color(QPalette::Window);
    applyBackColor(qint32(ambient.red() | (ambient.green() << 8) | (ambient.blue() << 16)));
    for (QAbstractButton* b : m_toolButtons)
        b->setEnabled(true);
    for (QAbstractButton* b : m_sizeButtons)
        b->setEnabled(true);
    m_suppressEvents = false;
    msub_Localize();
    NXR_TRACE(kClass, QStringLiteral("msub_Initialize"), QStringLiteral("Done"));
}

void NXRMaskToolButtons::msub_Localize()
{
    for (size_t i = 0; i < m_toolButtons.size(); ++i)
        m_toolButtons[i]->setToolTip(kToolTips[i].pick());
    for (size_t i = 0; i < m_sizeButtons.size(); ++i)
        m_sizeButtons[i]->setToolTip(kSizeTips[i].pick());
    for (size_t i = 0; i < m_commandButtons.size(); ++i) {
        m_commandButtons[i]->setText(kCommandCaptions[i].pick());
        m_commandButtons[i]->setToolTip(kCommandTips[i].pick());
    }
}

QAbstractButton* NXRMaskToolButtons::toolButton(int tool) const
{
    return tool >= 0 && tool < int(m_toolButtons.size()) ? m_toolButtons[size_t(tool)] : nullptr;
}

QAbstractButton* NXRMaskToolButtons::sizeButton(int size) const
{
    return size >= 0 && size < int(m_sizeButtons.size()) ? m_sizeButtons[size_t(size)] : nullptr;
}

QAbstractButton* NXRMaskToolButtons::commandButton(int command) const
{
    return command >= 0 && command < int(m_commandButtons.size()) ? m_commandButtons[size_t(command)]
                                                                  : nullptr;
}

void NXRMaskToolButtons::check(QButtonGroup* group, int id)
{
    if (QAbstractButton* b = group->button(id)) {
        b->setChecked(true);
        return;
    }
    // None: an exclusive group keeps one button checked, so let go of it for the moment.
    group->setExclusive(false);
    for (QAbstractButton* b : group->buttons())
        b->setChecked(false);
    group->setExclusive(true);
}

void NXRMaskToolButtons::setSelectedTool(int tool)
{
    const bool suppressed = std::exchange(m_suppressEvents, true);
    check(m_tools, tool);
    m_suppressEvents = suppressed;
}

void NXRMaskToolButtons::setSelectedToolSize(int size)
{
    const bool suppressed = std::exchange(m_suppressEvents, true);
    check(m_sizes, size);
    m_suppressEvents = suppressed;
}

int NXRMaskToolButtons::selectedTool() const
{
    return m_tools->checkedId();
}

int NXRMaskToolButtons::selectedToolSize() const
{
    return m_sizes->checkedId();
}

void NXRMaskToolButtons::applyBackColor(qint32 color)
{
    const QColor c(color & 0xFF, (color >> 8) & 0xFF, (color >> 16) & 0xFF);
    for (QWidget* w :
         {static_cast<QWidget*>(this), static_cast<QWidget*>(m_toolFrame), static_cast<QWidget*>(m_sizeFrame),
          static_cast<QWidget*>(m_commandFrame), static_cast<QWidget*>(m_background)}) {
        QPalette p = w->palette();
        p.setColor(QPalette::Window, c);
        w->setPalette(p);
        w->setAutoFillBackground(true);
    }
}

template <typename Body> void NXRMaskToolButtons::applying(const QString& key, Body&& body)
{
    nxr::applySettingKey(core(), key, std::forward<Body>(body));
}

void NXRMaskToolButtons::setCommandEnabled(const QString& value)
{
    const QString prefix = QStringLiteral("Error setting CommandEnabled property: ");
    const qsizetype comma = value.indexOf(QLatin1Char(','));
    if (comma < 0) {
        core().reportError(kSetProperty, prefix + QStringLiteral("invalid PropertyValue argument (") + value +
                                             QLatin1Char(')'));
        return;
    }
    const QString command = value.left(comma).trimmed();
    const QString flag = value.mid(comma + 1).trimmed();
    if (command.isEmpty() || flag.isEmpty()) {
        core().reportError(kSetProperty, prefix + QStringLiteral("could not parse Command or Value (") +
                                             value + QLatin1Char(')'));
        return;
    }
    applying(QStringLiteral("CommandEnabled"), [&] {
        const int number = nxr::toLong(command);
        const bool enabled = nxr::toBool(flag);
        if (number >= KSEMaskCommand_MaskAll && number <= KSEMaskCommand_Undo)
            m_commandButtons[size_t(number)]->setEnabled(enabled);
    });
}

void NXRMaskToolButtons::addKeys()
{
    auto boolKey = [this](const QString& key, std::function<void(bool)> apply) {
        return nxr::boolSettingKey(core(), key, std::move(apply));
    };
    properties()
        .addWriteOnly(QStringLiteral("BackColor"),
                      [this](const QString& v) {
                          applying(QStringLiteral("BackColor"), [&] { applyBackColor(nxr::toLong(v)); });
                      })
        .addWriteOnly(QStringLiteral("CommandEnabled"), [this](const QString& v) { setCommandEnabled(v); })
        .addWriteOnly(QStringLiteral("ToolsAndSizesEnabled"),
                      boolKey(QStringLiteral("ToolsAndSizesEnabled"),
                              [this](bool on) {
                                  for (QAbstractButton* b : m_toolButtons)
                                      b->setEnabled(on);
                                  for (QAbstractButton* b : m_sizeButtons)
                                      b->setEnabled(on);
                              }))
        .addWriteOnly(QStringLiteral("HourglassCursor"),
                      nxr::cursorSettingKey(core(), *this, QStringLiteral("HourglassCursor"), Qt::WaitCursor))
        .addWriteOnly(QStringLiteral("ProgressCursor"),
                      nxr::cursorSettingKey(core(), *this, QStringLiteral("ProgressCursor"), Qt::BusyCursor))
        .addReadOnly(QStringLiteral("SelectedTool"), [this] { return QString::number(selectedTool()); })
        .addReadOnly(QStringLiteral("SelectedToolSize"),
                     [this] { return QString::number(selectedToolSize()); })
        .addReadOnly(QStringLiteral("LastErrorString"), [this] { return core().lastError(); });
}

QSize NXRMaskToolButtons::sizeHint() const
{
    return QSize(5 * kRowHeight + 8, 3 * (kRowHeight + 6));
}

void NXRMaskToolButtons::layoutButtons()
{
    NXR_TRACE(kClass, QStringLiteral("UserControl_Resize"),
              QStringLiteral("entered, h=") + QString::number(height()) + QStringLiteral(", w=") +
                  QString::number(width()));
    m_background->setGeometry(rect());
    m_background->lower();
    const int frameHeight = std::max(1, height() / 3);
    const int inset = 2;
    auto place = [&](QFrame* frame, auto& buttons, int row) {
        frame->setGeometry(0, row * frameHeight, width(), frameHeight);
        const int count = int(buttons.size());
        const int w = std::max(1, (width() - 2 * inset) / count);
        const int h = std::max(1, frameHeight - 2 * inset);
        const int iconSide = std::max(8, std::min(w, h) - 8);
        for (int i = 0; i < count; ++i) {
            buttons[size_t(i)]->setGeometry(inset + i * w, inset, w, h);
            buttons[size_t(i)]->setIconSize(QSize(iconSide, iconSide));
        }
    };
    place(m_toolFrame, m_toolButtons, 0);
    place(m_sizeFrame, m_sizeButtons, 1);
    place(m_commandFrame, m_commandButtons, 2);
}

void NXRMaskToolButtons::resizeEvent(QResizeEvent* event)
{
    ScriptableWidget::resizeEvent(event);
    layoutButtons();
}

void NXRMaskToolButtons::changeEvent(QEvent* event)
{
    ScriptableWidget::changeEvent(event);
    if (event->type() == QEvent::LanguageChange)
        msub_Localize();
}
