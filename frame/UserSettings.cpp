#include "frame/UserSettings.h"

#include <QSettings>

namespace nxr::UserSettings {
namespace {
QSettings open()
{
    return QSettings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("NexaroControls"),
                     QStringLiteral("NexaroControls"));
}
} // namespace

QString get(const QString& section, const QString& key, const QString& defaultValue)
{
    return open().value(section + QLatin1Char('/') + key, defaultValue).toString();
}

void set(const QString& section, const QString& key, const QString& value)
{
    QSettings settings = open();
    settings.setValue(section + QLatin1Char('/') + key, value);
    settings.sync();
}

QStringList keys(const QString& section)
{
    QSettings settings = open();
    settings.beginGroup(section);
    return settings.childKeys();
}

} // namespace nxr::UserSettings
