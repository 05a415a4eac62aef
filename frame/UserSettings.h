#pragma once
// Persistent per-user settings shared by the whole library (QSettings, organisation
// "NexaroControls"). Keys are grouped in sections; a feature that keeps settings names its keys.

#include "frame/Export.h"

#include <QString>
#include <QStringList>

namespace nxr::UserSettings {

NXR_EXPORT QString get(const QString& section, const QString& key, const QString& defaultValue = QString());
NXR_EXPORT void set(const QString& section, const QString& key, const QString& value);
// The keys of a section in stored order, for walking them one by one.
NXR_EXPORT QStringList keys(const QString& section);

} // namespace nxr::UserSettings
