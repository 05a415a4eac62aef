#pragma once
// Splits the controller's long FTP listing (LIST) into file and folder names.

#include "frame/Export.h"

#include <QString>
#include <QStringList>

namespace nxr {

struct DirectoryListing
{
    QStringList files;
    QStringList folders;
};

// Lines with exactly nine fields (attributes first, name last) give a name, in capitals;
// "D" as the first character makes it a folder. ".", "..", names with "*" and empty names are
// skipped. An array that received no name has one empty string per line of the response (the
// end marker included); an empty response gives one empty string in each.
NXR_EXPORT DirectoryListing parseLongListing(const QString& response);

} // namespace nxr
