#pragma once
// The local cache of controller files: one folder per controller software version under the
// storage folder, and the process-wide version id that selects it.

#include "frame/Export.h"

#include <QString>
#include <QtGlobal>

namespace nxr::TransferCache {

// The version id shared by every transfer object ("" until a page sets one).
NXR_EXPORT QString versionId();
// Stores Trim(UCase(value)).
NXR_EXPORT void setVersionId(const QString& value);

// The cache folder for a version id, with a trailing "/": the storage folder, plus the version's
// folder name when the id is not empty. Not created.
NXR_EXPORT QString folderFor(const QString& version);

// The cache folder of the current version id, created when missing. Throws nxr::Failure when
// it cannot be created.
NXR_EXPORT QString currentFolder();

// Whether files for the current version must be fetched again: true without a version id, and
// for a version whose folder is missing (it is created) or empty; false when it holds files.
NXR_EXPORT bool overwriteForCurrentVersion();

// The most the cache folder of the current version may hold before another file is fetched into
// it: 1 GiB unless set (the page host sets it with --cache-quota). A page cannot fill the disk.
NXR_EXPORT qint64 quotaBytes();
NXR_EXPORT void setQuotaBytes(qint64 bytes);
// Throws nxr::Failure("The local cache is full (<quota> MiB)") when the files of the current
// version's folder take the quota or more.
NXR_EXPORT void requireRoom();

} // namespace nxr::TransferCache
