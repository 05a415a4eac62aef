#include "TestClasses.h"

#include "frame/ClassRegistry.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

NXR_REGISTER_CLASS(TestClickPad)
NXR_REGISTER_CLASS(TestCounter)
NXR_REGISTER_CLASS(TestNoInitPad)
NXR_REGISTER_CLASS(TestUnsafeWidget)

namespace {

QString buttonName(Qt::MouseButton b)
{
    switch (b) {
    case Qt::LeftButton:
        return QStringLiteral("left");
    case Qt::RightButton:
        return QStringLiteral("right");
    case Qt::MiddleButton:
        return QStringLiteral("middle");
    default:
        return QStringLiteral("none");
    }
}

} // namespace

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

void TestClickPad::record(const QString& what, const QPointF& pos)
{
    m_log << QStringLiteral("%1 %2,%3").arg(what).arg(qRound(pos.x())).arg(qRound(pos.y()));
}

void TestClickPad::mousePressEvent(QMouseEvent* e)
{
    record(QStringLiteral("press ") + buttonName(e->button()), e->position());
}

void TestClickPad::mouseReleaseEvent(QMouseEvent* e)
{
    record(QStringLiteral("release ") + buttonName(e->button()), e->position());
    Q_EMIT OnButtonClicked(QStringLiteral("pad"));
}

void TestClickPad::mouseMoveEvent(QMouseEvent* e)
{
    // Moves are many during a drag; only those with a button held are of interest.
    if (e->buttons() != Qt::NoButton)
        record(QStringLiteral("drag"), e->position());
}

void TestClickPad::mouseDoubleClickEvent(QMouseEvent* e)
{
    record(QStringLiteral("double ") + buttonName(e->button()), e->position());
}

void TestClickPad::wheelEvent(QWheelEvent* e)
{
    record(QStringLiteral("wheel %1").arg(e->angleDelta().y()), e->position());
}

void TestClickPad::keyPressEvent(QKeyEvent* e)
{
    m_log << QStringLiteral("key %1 '%2'%3")
                 .arg(QKeySequence(e->key()).toString(), e->text(),
                      (e->modifiers() & Qt::ControlModifier) ? QStringLiteral(" ctrl") : QString());
}

TestCounter::TestCounter(QObject* parent) : nxr::ScriptableObject(parent)
{
    properties().add(
        QStringLiteral("Count"), [this](const QString& v) { m_count = nxr::toInteger(v); },
        [this] { return QString::number(m_count); });
}

void TestCounter::Add(int amount)
{
    m_count += amount;
    Q_EMIT OnChanged(m_count);
}

TestUnsafeWidget::TestUnsafeWidget(QWidget* parent) : nxr::ScriptableWidget(parent) {}

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
