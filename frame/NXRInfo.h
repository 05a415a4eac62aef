#pragma once
// Tells a page which controller software version the library belongs to, where the local file
// cache lives, and whether a version number is one the library can serve.

#include "frame/ScriptableObject.h"

class NXR_EXPORT NXRInfo : public nxr::ScriptableObject
{
    Q_OBJECT
    Q_CLASSINFO("Description", "The library's controller software version, storage folder and version check")
    Q_PROPERTY(QString StorageFolder READ StorageFolder)
    Q_PROPERTY(QString NXRBuildID READ NXRBuildID)

public:
    explicit NXRInfo(QObject* parent = nullptr);

    // True for every version number up to and including 64 (negative numbers included).
    Q_INVOKABLE bool CheckVNUM(int vlng_VNUMtoCheck);
    // The cache root with a trailing "/".
    QString StorageFolder();
    // The controller software version of this build, "V9.99X/99".
    QString NXRBuildID();

    static constexpr int kHighestServedVersion = 64;
};
