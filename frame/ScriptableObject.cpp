#include "frame/ScriptableObject.h"

namespace nxr {

ScriptableObject::ScriptableObject(QObject* parent)
    : QObject(parent), m_core(this, [this] { Q_EMIT OnError(); })
{}

void ScriptableObject::SetProperty(const QString& vstrPropertyName, const QString& vstrPropertyValue)
{
    m_core.setProperty(vstrPropertyName, vstrPropertyValue);
}

QString ScriptableObject::GetProperty(const QString& vstrPropertyName)
{
    return m_core.getProperty(vstrPropertyName);
}

HResult ScriptableObject::GetInterfaceSafetyOptions(const QString& iid, std::uint32_t* supportedOptions,
                                                    std::uint32_t* enabledOptions)
{
    return getInterfaceSafetyOptions(m_core.className(), iid, supportedOptions, enabledOptions);
}

HResult ScriptableObject::SetInterfaceSafetyOptions(const QString& iid, std::uint32_t optionSetMask,
                                                    std::uint32_t enabledOptions)
{
    return setInterfaceSafetyOptions(m_core.className(), iid, optionSetMask, enabledOptions);
}

} // namespace nxr
