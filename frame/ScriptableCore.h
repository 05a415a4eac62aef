#pragma once
// The string property protocol and the error convention, shared by every public class.
//
// A public class owns one ScriptableCore, fills its PropertyTable once in its constructor, and
// runs each public routine's body through guard():
//
//     void NXRFoo::ZoomTo(double v) {
//         m_core.guard("ZoomTo", [&] { ... throw nxr::Failure("Invalid procedure call"); ... });
//     }
//
// A failure becomes LastErrorString = "Error in ZoomTo: Invalid procedure call", one error-trace
// line "[NXRFoo.ZoomTo] Error in ZoomTo: ...", and exactly one OnError signal; the routine then
// returns normally and the object stays usable.

#include "frame/Conversions.h"
#include "frame/Export.h"
#include "frame/PropertyTable.h"

#include <QObject>
#include <QString>

#include <exception>
#include <functional>
#include <optional>

namespace nxr {

class NXR_EXPORT ScriptableCore
{
public:
    using ErrorSignal = std::function<void()>;

    // The owner's class name ("NXRImageDisplay") names it in traces; it is read from the owner's
    // meta-object when first needed, so it is right from the derived constructor's body on.
    ScriptableCore(const QObject* owner, ErrorSignal raiseOnError);

    QString className() const;
    PropertyTable& properties() { return m_table; }
    const PropertyTable& properties() const { return m_table; }

    void setProperty(const QString& key, const QString& value);
    QString getProperty(const QString& key);

    // The texts an unknown key is reported with: prefix + key + ")". By default both are
    // "Error: unknown property (".
    void setUnknownKeyTexts(const QString& setPrefix, const QString& getPrefix)
    {
        m_unknownSetPrefix = setPrefix;
        m_unknownGetPrefix = getPrefix;
    }

    const QString& lastError() const { return m_lastError; }
    void setLastError(const QString& text) { m_lastError = text; }

    // Records an error with a complete text: sets LastErrorString, writes the error trace under
    // `routine`, raises OnError once.
    void reportError(const QString& routine, const QString& text);
    // The common case: "Error in " + routine + ": " + description.
    void fail(const QString& routine, const QString& description);

    // Runs body; a thrown nxr::Failure or std::exception is reported as fail(routine, what).
    // Returns true when the body completed.
    template <typename Body> bool guard(const QString& routine, Body&& body)
    {
        try {
            std::forward<Body>(body)();
            return true;
        } catch (const Failure& f) {
            fail(routine, f.description());
        } catch (const std::exception& e) {
            fail(routine, QString::fromLocal8Bit(e.what()));
        }
        return false;
    }

    // As guard(), for a routine with a result; on failure returns `fallback`.
    template <typename T, typename Body> T guardValue(const QString& routine, T fallback, Body&& body)
    {
        std::optional<T> result;
        guard(routine, [&] { result.emplace(std::forward<Body>(body)()); });
        return result ? std::move(*result) : std::move(fallback);
    }

    void trace(const QString& routine, const QString& message) const;

private:
    const QObject* m_owner;
    ErrorSignal m_raiseOnError;
    PropertyTable m_table;
    QString m_lastError;
    QString m_unknownSetPrefix = QStringLiteral("Error: unknown property (");
    QString m_unknownGetPrefix = QStringLiteral("Error: unknown property (");
};

} // namespace nxr
