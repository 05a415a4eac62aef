#include "frame/NXRClientSetupObject.h"

#include "frame/ClassRegistry.h"
#include "frame/PageTrust.h"
#include "frame/Trace.h"

#include <cstdlib>

NXR_REGISTER_CLASS(NXRClientSetupObject)

NXRClientSetupObject::NXRClientSetupObject(QObject* parent) : ScriptableObject(parent)
{
    nxr::debugOutput(QStringLiteral("[NXRClientSetupObject.Initialize]\r\n"));
}

NXRClientSetupObject::~NXRClientSetupObject()
{
    nxr::debugOutput(QStringLiteral("[NXRClientSetupObject.Terminate]\r\n"));
}

QString NXRClientSetupObject::Environment(const QString& vName) const
{
    if (vName.isEmpty() || vName.contains(QLatin1Char('=')) ||
        !nxr::PageTrust::mayUseEnvironmentVariable(vName))
        return QString();
    const char* value = std::getenv(vName.toLocal8Bit().constData());
    return value ? QString::fromLocal8Bit(value) : QString();
}

void NXRClientSetupObject::Environment(const QString& vName, const QString& value)
{
    // A name with "=" or an empty name cannot be set; like every member here it fails quietly.
    if (vName.isEmpty() || vName.contains(QLatin1Char('=')) ||
        !nxr::PageTrust::mayUseEnvironmentVariable(vName))
        return;
    ::setenv(vName.toLocal8Bit().constData(), value.trimmed().toLocal8Bit().constData(), 1);
}
