#include "frame/ScriptableWidget.h"

namespace nxr {

ScriptableWidget::ScriptableWidget(QWidget* parent)
    : QWidget(parent), m_core(this, [this] { Q_EMIT OnError(); })
{}

void ScriptableWidget::SetProperty(const QString& vstrPropertyName, const QString& vstrPropertyValue)
{
    m_core.setProperty(vstrPropertyName, vstrPropertyValue);
}

QString ScriptableWidget::GetProperty(const QString& vstrPropertyName)
{
    return m_core.getProperty(vstrPropertyName);
}

HResult ScriptableWidget::GetInterfaceSafetyOptions(const QString& iid, std::uint32_t* supportedOptions,
                                                    std::uint32_t* enabledOptions)
{
    return getInterfaceSafetyOptions(m_core.className(), iid, supportedOptions, enabledOptions);
}

HResult ScriptableWidget::SetInterfaceSafetyOptions(const QString& iid, std::uint32_t optionSetMask,
                                                    std::uint32_t enabledOptions)
{
    return setInterfaceSafetyOptions(m_core.className(), iid, optionSetMask, enabledOptions);
}

} // namespace nxr
