#include "imagedisplay/edit/EditSession.h"

#include "frame/Globals.h"
#include "frame/ScriptableCore.h"
#include "frame/Trace.h"
#include "imagedisplay/DisplayState.h"
#include "imagedisplay/MouseDispatcher.h"
#include "imagedisplay/NXEViewButtons.h"
#include "imagedisplay/ToolbarClickHandler.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

namespace nxr {
namespace {
const QString kClass = QStringLiteral("NXRImageDisplay");
constexpr int kFlashes = 6;
} // namespace

EditSession::EditSession(QWidget* barParent, Links links) : QObject(barParent), m_links(std::move(links))
{
    m_bar = new QFrame(barParent);
    m_bar->setObjectName(QStringLiteral("fra_OKCancel"));
    m_bar->setAutoFillBackground(true);
    auto* row = new QHBoxLayout(m_bar);
    row->setContentsMargins(4, 2, 4, 2);
    m_label = new QLabel(m_bar);
    m_label->setObjectName(QStringLiteral("lbl_OKCancel"));
    m_ok = new QPushButton(m_bar);
    m_ok->setObjectName(QStringLiteral("cmd_OK"));
    m_cancel = new QPushButton(m_bar);
    m_cancel->setObjectName(QStringLiteral("cmd_Cancel"));
    row->addWidget(m_label, 1);
    row->addWidget(m_ok);
    row->addWidget(m_cancel);
    m_bar->hide();
    m_label->setText(Globals::Caption{QT_TRANSLATE_NOOP("Caption", "Finish editing:")}.pick());
    m_ok->setText(Globals::Caption{QT_TRANSLATE_NOOP("Caption", "OK")}.pick());
    m_cancel->setText(Globals::Caption{QT_TRANSLATE_NOOP("Caption", "Cancel")}.pick());

    m_flashTimer = new QTimer(this);
    m_flashTimer->setObjectName(QStringLiteral("tmr_FlashOKCancel"));
    m_flashTimer->setInterval(150);
    connect(m_flashTimer, &QTimer::timeout, this, [this] {
        const bool highlight = (--m_flashesLeft % 2) == 1;
        m_bar->setBackgroundRole(highlight ? QPalette::Highlight : QPalette::Window);
        if (m_flashesLeft <= 0)
            m_flashTimer->stop();
    });

    m_links.clicks.setAction(vvb_Accept, [this] { finishActive(true); });
    m_links.clicks.setAction(vvb_Cancel, [this] { finishActive(false); });
    connect(m_ok, &QPushButton::clicked, this, &EditSession::accept);
    connect(m_cancel, &QPushButton::clicked, this, &EditSession::cancel);
    connect(&m_links.mouse, &MouseDispatcher::keyNotTaken, this,
            [this](int key, Qt::KeyboardModifiers, bool* taken) {
                if (!editing())
                    return;
                if (key == Qt::Key_Return || key == Qt::Key_Enter) {
                    *taken = true;
                    accept();
                } else if (key == Qt::Key_Escape) {
                    *taken = true;
                    cancel();
                }
            });
}

EditKind EditSession::kind() const
{
    return m_links.state.edit;
}

bool EditSession::editing() const
{
    return m_links.state.editing();
}

int EditSession::maskMode() const
{
    return m_links.state.editMaskMode;
}

void EditSession::setPointerMode(int mode)
{
    m_links.mouse.setMouseMode(mode);
    if (m_links.viewButtonProperty)
        m_links.viewButtonProperty(QStringLiteral("ActiveMouseCursor"), QString::number(mode));
}

void EditSession::begin(EditKind kind, Editor& editor, int maskMode)
{
    if (kind == EditKind::None) {
        leave(editor);
        return;
    }
    if (m_editor && m_editor != &editor)
        m_links.core.guard(QStringLiteral("msub_HandleNXRViewButtonClick"),
                           [&] { m_links.clicks.handle(vvb_Cancel); });
    const bool opening = m_editor == nullptr;
    m_editor = &editor;
    m_links.state.edit = kind;
    m_links.state.editMaskMode = kind == EditKind::Mask ? maskMode : -1;
    m_links.mouse.setInteraction(editor.interaction());
    if (opening) {
        m_modeBefore = m_links.mouse.mouseMode();
        setPointerMode(MouseDispatcher::Pointer);
    }
    m_bar->setBackgroundRole(QPalette::Window);
    Q_EMIT changed();
    if (opening)
        flash();
}

void EditSession::leave(Editor& editor)
{
    if (m_editor == &editor)
        clear();
}

void EditSession::clear()
{
    m_editor = nullptr;
    m_links.state.edit = EditKind::None;
    m_links.state.editMaskMode = -1;
    m_links.mouse.setInteraction(nullptr);
    m_flashTimer->stop();
    m_bar->setBackgroundRole(QPalette::Window);
    setPointerMode(m_modeBefore);
    Q_EMIT changed();
}

void EditSession::finishActive(bool accepted)
{
    Editor* editor = m_editor;
    if (!editor)
        return;
    NXR_TRACE(kClass, accepted ? QStringLiteral("cmd_OK_Click") : QStringLiteral("cmd_Cancel_Click"),
              accepted ? QStringLiteral("Accept") : QStringLiteral("Cancel"));
    // Out of the edit first: the editor's exit event may open the next one.
    clear();
    editor->finish(accepted);
}

void EditSession::accept()
{
    if (!editing())
        return;
    m_links.core.guard(QStringLiteral("cmd_OK_Click"), [&] { m_links.clicks.handle(vvb_Accept); });
    m_links.clicks.passLater(QStringLiteral("Accept"));
}

void EditSession::cancel()
{
    if (!editing())
        return;
    m_links.core.guard(QStringLiteral("cmd_Cancel_Click"), [&] { m_links.clicks.handle(vvb_Cancel); });
    m_links.clicks.passLater(QStringLiteral("Cancel"));
}

bool EditSession::cancelBeforeClose(const std::function<void(const QString&)>& raiseNow)
{
    if (!editing())
        return false;
    m_links.core.guard(QStringLiteral("UserControl_Terminate"), [&] { m_links.clicks.handle(vvb_Cancel); });
    raiseNow(QStringLiteral("Cancel"));
    return true;
}

void EditSession::flash()
{
    if (!editing())
        return;
    m_flashesLeft = kFlashes;
    m_flashTimer->start();
}

} // namespace nxr
