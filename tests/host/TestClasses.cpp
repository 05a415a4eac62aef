#include "TestClasses.h"

#include "frame/ClassRegistry.h"

#include <QDialog>
#include <QGestureEvent>
#include <QGuiApplication>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

NXR_REGISTER_CLASS(TestClickPad)
NXR_REGISTER_CLASS(TestCounter)
NXR_REGISTER_CLASS(TestUnsafeWidget)
NXR_REGISTER_CLASS(TestNoInitPad)
NXR_REGISTER_CLASS(TestTouchPad)
NXR_REGISTER_CLASS(TestDialogOpener)

TestClickPad::TestClickPad(QWidget* parent) : nxr::ScriptableWidget(parent)
{
    setMinimumSize(120, 90);
    setFocusPolicy(Qt::StrongFocus);
    properties().add(
        QStringLiteral("Caption"), [this](const QString& v) { m_caption = v; }, [this] { return m_caption; });
}

void TestClickPad::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.fillRect(rect(), QColor::fromRgb(kColor));
    p.setPen(Qt::white);
    p.drawLine(0, 0, width() - 1, height() - 1);
}

QString TestClickPad::modifierText(Qt::KeyboardModifiers modifiers)
{
    QString text;
    if (modifiers & Qt::ShiftModifier)
        text += QStringLiteral(" shift");
    if (modifiers & Qt::ControlModifier)
        text += QStringLiteral(" ctrl");
    if (modifiers & Qt::AltModifier)
        text += QStringLiteral(" alt");
    if (modifiers & Qt::MetaModifier)
        text += QStringLiteral(" meta");
    return text;
}

QString TestClickPad::HeldModifiers() const
{
    const QString text = modifierText(QGuiApplication::keyboardModifiers()).trimmed();
    return text.isEmpty() ? QStringLiteral("none") : text;
}

void TestClickPad::record(const QString& what, Qt::MouseButton button, const QPointF& pos,
                          Qt::KeyboardModifiers modifiers)
{
    const char* name = button == Qt::LeftButton     ? " left"
                       : button == Qt::RightButton  ? " right"
                       : button == Qt::MiddleButton ? " middle"
                                                    : "";
    m_log << QStringLiteral("%1%2 %3,%4%5")
                 .arg(what, QLatin1String(name))
                 .arg(qRound(pos.x()))
                 .arg(qRound(pos.y()))
                 .arg(modifierText(modifiers));
}

void TestClickPad::mouseReleaseEvent(QMouseEvent* e)
{
    record(QStringLiteral("release"), e->button(), e->position(), e->modifiers());
    Q_EMIT OnButtonClicked(QStringLiteral("pad"));
}

void TestClickPad::keyPressEvent(QKeyEvent* e)
{
    // The modifier keys themselves show in the modifiers of what follows.
    if (e->key() == Qt::Key_Shift || e->key() == Qt::Key_Control || e->key() == Qt::Key_Alt ||
        e->key() == Qt::Key_Meta)
        return;
    m_log << QStringLiteral("key %1 '%2'%3")
                 .arg(QKeySequence(e->key()).toString(), e->text(), modifierText(e->modifiers()));
}

TestTouchPad::TestTouchPad(QWidget* parent) : TestClickPad(parent)
{
    setAttribute(Qt::WA_AcceptTouchEvents);
    grabGesture(Qt::PinchGesture);
}

bool TestTouchPad::event(QEvent* e)
{
    switch (e->type()) {
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd: {
        auto* touch = static_cast<QTouchEvent*>(e);
        QStringList points;
        for (const QEventPoint& p : touch->points())
            points << QStringLiteral("%1,%2").arg(qRound(p.position().x())).arg(qRound(p.position().y()));
        const char* kind = e->type() == QEvent::TouchBegin    ? "begin"
                           : e->type() == QEvent::TouchUpdate ? "update"
                                                              : "end";
        m_log << QStringLiteral("touch %1 %2").arg(QLatin1String(kind), points.join(QLatin1Char('|')));
        e->accept();
        return true;
    }
    case QEvent::Gesture: {
        auto* gesture = static_cast<QGestureEvent*>(e);
        if (auto* pinch = static_cast<QPinchGesture*>(gesture->gesture(Qt::PinchGesture))) {
            if (pinch->state() == Qt::GestureFinished)
                m_log << QStringLiteral("pinch %1").arg(pinch->totalScaleFactor(), 0, 'f', 1);
            gesture->accept(pinch);
        }
        return true;
    }
    default:
        return TestClickPad::event(e);
    }
}

TestDialogOpener::TestDialogOpener(QWidget* parent) : nxr::ScriptableWidget(parent)
{
    setMinimumSize(80, 30);
}

void TestDialogOpener::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.fillRect(rect(), Qt::darkGreen);
}

void TestDialogOpener::mouseReleaseEvent(QMouseEvent*)
{
    auto* dialog = new QDialog(this);
    dialog->setObjectName(QStringLiteral("dlg_Test"));
    dialog->setWindowTitle(QStringLiteral("Test dialog"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(dialog);
    auto* text = new QLineEdit(dialog);
    text->setObjectName(QStringLiteral("txt_Answer"));
    auto* ok = new QPushButton(QStringLiteral("OK"), dialog);
    ok->setObjectName(QStringLiteral("cmd_OK"));
    auto* cancel = new QPushButton(QStringLiteral("Cancel"), dialog);
    cancel->setObjectName(QStringLiteral("cmd_Cancel"));
    layout->addWidget(text);
    layout->addWidget(ok);
    layout->addWidget(cancel);
    connect(ok, &QPushButton::clicked, dialog, &QDialog::accept);
    connect(cancel, &QPushButton::clicked, dialog, &QDialog::reject);
    connect(dialog, &QDialog::finished, this,
            [this, text](int result) { Q_EMIT OnClosed(result == QDialog::Accepted, text->text()); });
    if (m_modal) {
        dialog->exec();
    } else {
        dialog->show();
    }
}

nxr::HResult TestUnsafeWidget::GetInterfaceSafetyOptions(const QString& iid, std::uint32_t* supported,
                                                         std::uint32_t* enabled)
{
    *supported = nxr::kSafeForUntrustedCaller | nxr::kSafeForUntrustedData;
    *enabled = 0;
    return iid == nxr::kIID_IDispatch ? nxr::S_Ok : nxr::E_NoInterface;
}

nxr::HResult TestNoInitPad::GetInterfaceSafetyOptions(const QString& iid, std::uint32_t* supported,
                                                      std::uint32_t* enabled)
{
    const nxr::HResult result = TestClickPad::GetInterfaceSafetyOptions(iid, supported, enabled);
    if (iid == nxr::kIID_IPersistPropertyBag)
        *enabled = 0;
    return result;
}
