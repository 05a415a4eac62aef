#pragma once
// Base of every public control (widget): the string property protocol, LastErrorString,
// the OnError event and the object-safety answer. Derived classes fill properties() in their
// constructor and run their public routines through core().guard().

#include "frame/Export.h"
#include "frame/ObjectSafety.h"
#include "frame/ScriptableCore.h"

#include <QWidget>

namespace nxr {

class NXR_EXPORT ScriptableWidget : public QWidget, public IObjectSafety
{
    Q_OBJECT
    Q_INTERFACES(nxr::IObjectSafety)
    Q_PROPERTY(QString LastErrorString READ LastErrorString)

public:
    explicit ScriptableWidget(QWidget* parent = nullptr);

    Q_INVOKABLE void SetProperty(const QString& vstrPropertyName, const QString& vstrPropertyValue);
    Q_INVOKABLE QString GetProperty(const QString& vstrPropertyName);
    QString LastErrorString() const { return m_core.lastError(); }

    HResult GetInterfaceSafetyOptions(const QString& iid, std::uint32_t* supportedOptions,
                                      std::uint32_t* enabledOptions) override;
    HResult SetInterfaceSafetyOptions(const QString& iid, std::uint32_t optionSetMask,
                                      std::uint32_t enabledOptions) override;

    ScriptableCore& core() { return m_core; }

Q_SIGNALS:
    void OnError();

protected:
    PropertyTable& properties() { return m_core.properties(); }

private:
    ScriptableCore m_core;
};

} // namespace nxr
