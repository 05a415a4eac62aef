#include "TestClasses.h"

#include "frame/ClassRegistry.h"

#include <QPainter>

NXR_REGISTER_CLASS(TestClickPad)
NXR_REGISTER_CLASS(TestCounter)
NXR_REGISTER_CLASS(TestUnsafeWidget)
NXR_REGISTER_CLASS(TestNoInitPad)

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

void TestClickPad::record(const QString& what, Qt::MouseButton button, const QPointF& pos)
{
    const char* name = button == Qt::LeftButton     ? " left"
                       : button == Qt::RightButton  ? " right"
                       : button == Qt::MiddleButton ? " middle"
                                                    : "";
    m_log << QStringLiteral("%1%2 %3,%4")
                 .arg(what, QLatin1String(name))
                 .arg(qRound(pos.x()))
                 .arg(qRound(pos.y()));
}

void TestClickPad::mouseReleaseEvent(QMouseEvent* e)
{
    record(QStringLiteral("release"), e->button(), e->position());
    Q_EMIT OnButtonClicked(QStringLiteral("pad"));
}

void TestClickPad::keyPressEvent(QKeyEvent* e)
{
    m_log << QStringLiteral("key %1 '%2'%3")
                 .arg(QKeySequence(e->key()).toString(), e->text(),
                      (e->modifiers() & Qt::ControlModifier) ? QStringLiteral(" ctrl") : QString());
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
