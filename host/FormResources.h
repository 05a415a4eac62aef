#pragma once
// The pictures a form names (icons and pixmaps of its widgets), so that a form read from a
// controller can have them fetched from beside it and read from a private folder instead of
// from wherever its file names would lead on this machine.

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

namespace nxr::FormResources {

// The file names in <iconset> (its text and its normaloff, normalon... entries) and <pixmap>
// elements, each once, in the order they appear; Qt resource names (":/...") are not listed.
QStringList references(const QByteArray& form);

// The form with every file name of references() replaced by localFiles' entry for it, or by an
// empty name when there is none (nothing is then read for it). Qt resource names stay.
QByteArray rewritten(const QByteArray& form, const QMap<QString, QString>& localFiles);

} // namespace nxr::FormResources
