#pragma once
// Reads and writes environment variables of the running process, for example TORVIK_LANG
// before the controls read it. Changes are seen by every control in the process.

#include "frame/ScriptableObject.h"

class NXR_EXPORT NXRClientSetupObject : public nxr::ScriptableObject
{
    Q_OBJECT
    Q_CLASSINFO("Description", "Reads and writes environment variables of the running process")

public:
    explicit NXRClientSetupObject(QObject* parent = nullptr);
    ~NXRClientSetupObject() override;

    // Environment(name) reads a variable ("" when unset); Environment(name, value) sets it to the
    // trimmed value. A page from a controller reaches only the library's own variables (TORVIK_*,
    // NXR_*); other names read as "" and are not set. GetEnvironment/SetEnvironment are the same two calls by
    // other names.
    Q_INVOKABLE QString Environment(const QString& vName) const;
    Q_INVOKABLE void Environment(const QString& vName, const QString& value);
    Q_INVOKABLE QString GetEnvironment(const QString& vName) const { return Environment(vName); }
    Q_INVOKABLE void SetEnvironment(const QString& vName, const QString& value) { Environment(vName, value); }
};
