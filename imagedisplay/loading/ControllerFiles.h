#pragma once
// What image loading and saving need of the controller's files: a copy down to a local file and a
// copy back up. The library's implementation goes through the file transfer object; both calls
// keep the event loop running while they wait, so the display repaints and takes clicks.

#include "frame/Export.h"

#include <QString>

namespace nxr {

class NXR_EXPORT ControllerFiles
{
public:
    virtual ~ControllerFiles() = default;

    // Copies `controllerPath` on `server` into `localPath`. On failure returns false and puts the
    // reason into *error.
    virtual bool copyFromController(const QString& server, const QString& controllerPath,
                                    const QString& userName, const QString& password,
                                    const QString& localPath, QString* error) = 0;

    // Copies `localPath` to `controllerPath` on `server`. On failure returns false with the reason.
    virtual bool copyToController(const QString& localPath, const QString& server,
                                  const QString& controllerPath, const QString& userName,
                                  const QString& password, QString* error) = 0;
};

} // namespace nxr
