#include "frame/ScriptableCore.h"

#include "frame/Trace.h"

namespace nxr {
namespace {
const QString kSetProperty = QStringLiteral("SetProperty");
const QString kGetProperty = QStringLiteral("GetProperty");
const QString kLastErrorString = QStringLiteral("LastErrorString");
} // namespace

ScriptableCore::ScriptableCore(const QObject* owner, ErrorSignal raiseOnError)
    : m_owner(owner), m_raiseOnError(std::move(raiseOnError))
{}

QString ScriptableCore::className() const
{
    QString name = QString::fromLatin1(m_owner->metaObject()->className());
    const qsizetype scope = name.lastIndexOf(QLatin1String("::"));
    return scope < 0 ? name : name.mid(scope + 2);
}

void ScriptableCore::setProperty(const QString& key, const QString& value)
{
    NXR_TRACE(className(), kSetProperty,
              QStringLiteral("enter, property=") + key + QStringLiteral(", value=") + value);
    const PropertyTable::Setter* setter = m_table.findSetter(key);
    if (!setter) {
        reportError(kSetProperty, m_unknownSetPrefix + key + QLatin1Char(')'));
        return;
    }
    try {
        (*setter)(value);
    } catch (const Failure& f) {
        reportError(kSetProperty,
                    QStringLiteral("Error in SetProperty(") + key + QStringLiteral("): ") + f.description());
    } catch (const std::exception& e) {
        reportError(kSetProperty, QStringLiteral("Error in SetProperty(") + key + QStringLiteral("): ") +
                                      QString::fromLocal8Bit(e.what()));
    }
    NXR_TRACE(className(), kSetProperty, QStringLiteral("done"));
}

QString ScriptableCore::getProperty(const QString& key)
{
    NXR_TRACE(className(), kGetProperty, QStringLiteral("enter, property=") + key);
    const PropertyTable::Getter* getter = m_table.findGetter(key);
    if (!getter) {
        if (key == kLastErrorString)
            return m_lastError;
        reportError(kGetProperty, m_unknownGetPrefix + key + QLatin1Char(')'));
        return QString();
    }
    try {
        return (*getter)();
    } catch (const Failure& f) {
        reportError(kGetProperty,
                    QStringLiteral("Error in GetProperty(") + key + QStringLiteral("): ") + f.description());
    } catch (const std::exception& e) {
        reportError(kGetProperty, QStringLiteral("Error in GetProperty(") + key + QStringLiteral("): ") +
                                      QString::fromLocal8Bit(e.what()));
    }
    return QString();
}

void ScriptableCore::reportError(const QString& routine, const QString& text)
{
    m_lastError = text;
    errorTrace(className(), routine, text);
    if (m_raiseOnError)
        m_raiseOnError();
}

void ScriptableCore::fail(const QString& routine, const QString& description)
{
    reportError(routine, QStringLiteral("Error in ") + routine + QStringLiteral(": ") + description);
}

void ScriptableCore::trace(const QString& routine, const QString& message) const
{
    NXR_TRACE(className(), routine, message);
    Q_UNUSED(routine);
    Q_UNUSED(message);
}

} // namespace nxr
