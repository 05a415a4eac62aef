#include "frame/NXRInfo.h"

#include "frame/ClassRegistry.h"
#include "frame/Globals.h"
#include "frame/Trace.h"

#ifndef NXR_BUILD_ID
#error "NXR_BUILD_ID must be defined by the build"
#endif

NXR_REGISTER_CLASS(NXRInfo)

NXRInfo::NXRInfo(QObject* parent) : ScriptableObject(parent) {}

bool NXRInfo::CheckVNUM(int vlng_VNUMtoCheck)
{
    NXR_TRACE(QStringLiteral("NXRInfo"), QStringLiteral("CheckVNUM"),
              QStringLiteral("Entered, vlng_VNUMtoCheck = ") + QString::number(vlng_VNUMtoCheck));
    return vlng_VNUMtoCheck <= kHighestServedVersion;
}

QString NXRInfo::StorageFolder()
{
    NXR_TRACE(QStringLiteral("NXRInfo"), QStringLiteral("StorageFolder.Get"), QStringLiteral("Entered"));
    return nxr::Globals::storageFolder() + QLatin1Char('/');
}

QString NXRInfo::NXRBuildID()
{
    return QStringLiteral(NXR_BUILD_ID);
}
