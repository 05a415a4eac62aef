#include "imagedisplay/ToolbarClickHandler.h"

#include "frame/Trace.h"
#include "imagedisplay/DisplayState.h"
#include "imagedisplay/NXEViewButtons.h"

#include <QTimer>
#include <QVariant>

namespace nxr {
namespace {
const QString kClass = QStringLiteral("NXRImageDisplay");
const char kTag[] = "Tag";
} // namespace

ToolbarClickHandler::ToolbarClickHandler(const DisplayState& state, QObject* parent)
    : QObject(parent), m_state(state)
{
    m_timer = new QTimer(this);
    m_timer->setObjectName(QStringLiteral("tmr_ButtonClickEvent"));
    m_timer->setSingleShot(true);
    m_timer->setInterval(0);
    connect(m_timer, &QTimer::timeout, this, [this] {
        m_timer->stop();
        const QString name = m_timer->property(kTag).toString();
        m_timer->setProperty(kTag, QString());
        if (!name.isEmpty())
            Q_EMIT passToPage(name);
    });
}

bool ToolbarClickHandler::setAction(int button, std::function<void()> action)
{
    if (button < 0 || button >= int(m_actions.size()) || m_actions[size_t(button)]) {
        errorTrace(kClass, QStringLiteral("setAction"),
                   QStringLiteral("button ") + QString::number(button) +
                       QStringLiteral(" has an action already"));
        return false;
    }
    m_actions[size_t(button)] = std::move(action);
    return true;
}

void ToolbarClickHandler::handle(int button)
{
    NXR_TRACE(kClass, QStringLiteral("msub_HandleNXRViewButtonClick"),
              QStringLiteral("Entered(") + QString::number(button) + QLatin1Char(')'));
    if (button >= 0 && button < int(m_actions.size()) && m_actions[size_t(button)])
        m_actions[size_t(button)]();
    if (m_after)
        m_after();
}

QString ToolbarClickHandler::nameToPass(int button, bool wasLive, bool liveNow, bool editing)
{
    QString name = viewButtonName(button);
    if (name.isEmpty())
        name = QStringLiteral("Unknown");
    if (button == vvb_ContinuousAcquire && liveNow)
        name = QStringLiteral("Snap");
    if (name == QLatin1String("Open"))
        return QString();
    if (name == QLatin1String("Snap") && wasLive && !liveNow)
        return QString();
    if (name.contains(QLatin1String("Mouse")))
        return QString();
    if (editing || liveNow) {
        const bool allowed = name == QLatin1String("LaserOn") || name == QLatin1String("LaserOff") ||
                             name == QLatin1String("Snap");
        return allowed ? name : QString();
    }
    return name;
}

QString ToolbarClickHandler::click(int button, const std::function<void(int)>& handleAction)
{
    NXR_TRACE(kClass, QStringLiteral("ctl_NXRViewButtons_OnButtonClicked"), QStringLiteral("Entered"));
    const bool wasLive = m_state.liveModeOn;
    handleAction(button);
    const QString name = nameToPass(button, wasLive, m_state.liveModeOn, m_state.editing());
    NXR_TRACE(kClass, QStringLiteral("ctl_NXRViewButtons_OnButtonClicked"), QStringLiteral("Done"));
    return name;
}

void ToolbarClickHandler::passLater(const QString& name)
{
    m_timer->setProperty(kTag, name);
    m_timer->start();
}

} // namespace nxr
