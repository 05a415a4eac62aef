#include "frame/ObjectSafety.h"

#include "frame/PageTrust.h"
#include "frame/Trace.h"

#include <QMutex>
#include <QSet>

#include <atomic>

namespace nxr {
namespace {

std::atomic<bool> g_safeForScripting{false};
std::atomic<bool> g_safeForInitializing{false};

// The library's start-up: both flags on before any object can be asked.
struct LibraryStartup
{
    LibraryStartup()
    {
        g_safeForScripting = true;
        g_safeForInitializing = true;
    }
} g_startup;

QMutex g_remoteMutex;
QSet<QString>& unsafeForRemote()
{
    static QSet<QString> classes{QStringLiteral("NXRCacheControl")};
    return classes;
}

// Safe for scripting by the page now served.
bool scriptableNow(const QString& className)
{
    return safeForScripting() && !(PageTrust::pageIsRemote() && isUnsafeForRemotePages(className));
}

enum class Kind { Dispatch, Persist, Other };

Kind kindOf(const QString& iid)
{
    const QString id = iid.trimmed().toUpper();
    if (id == kIID_IDispatch)
        return Kind::Dispatch;
    if (id == kIID_IPersistStorage || id == kIID_IPersistStream || id == kIID_IPersistPropertyBag)
        return Kind::Persist;
    return Kind::Other;
}

} // namespace

bool safeForScripting()
{
    return g_safeForScripting;
}
bool safeForInitializing()
{
    return g_safeForInitializing;
}
void setSafeForScripting(bool on)
{
    g_safeForScripting = on;
}
void setSafeForInitializing(bool on)
{
    g_safeForInitializing = on;
}

void setUnsafeForRemotePages(const QString& className, bool unsafe)
{
    QMutexLocker lock(&g_remoteMutex);
    if (unsafe)
        unsafeForRemote().insert(className);
    else
        unsafeForRemote().remove(className);
}

bool isUnsafeForRemotePages(const QString& className)
{
    QMutexLocker lock(&g_remoteMutex);
    return unsafeForRemote().contains(className);
}

HResult getInterfaceSafetyOptions(const QString& className, const QString& iid,
                                  std::uint32_t* supportedOptions, std::uint32_t* enabledOptions)
{
    if (!supportedOptions || !enabledOptions)
        return E_Fail;
    *supportedOptions = kSafeForUntrustedCaller | kSafeForUntrustedData;
    switch (kindOf(iid)) {
    case Kind::Dispatch:
        *enabledOptions = scriptableNow(className) ? kSafeForUntrustedCaller : 0;
        return S_Ok;
    case Kind::Persist:
        *enabledOptions = safeForInitializing() ? kSafeForUntrustedData : 0;
        return S_Ok;
    case Kind::Other:
        break;
    }
    *enabledOptions = 0;
    errorTrace(className, QStringLiteral("IObjectSafety_GetInterfaceSafetyOptions"),
               QStringLiteral("E_NOINTERFACE"));
    return E_NoInterface;
}

HResult setInterfaceSafetyOptions(const QString& className, const QString& iid, std::uint32_t optionSetMask,
                                  std::uint32_t enabledOptions)
{
    const std::uint32_t requested = optionSetMask & enabledOptions;
    switch (kindOf(iid)) {
    case Kind::Dispatch:
        // Only "safe for untrusted callers" can be asked for, and only while the object is.
        if (scriptableNow(className) && (requested & ~kSafeForUntrustedCaller) == 0)
            return S_Ok;
        break;
    case Kind::Persist:
        if (safeForInitializing() && (requested & ~kSafeForUntrustedData) == 0)
            return S_Ok;
        break;
    case Kind::Other:
        errorTrace(className, QStringLiteral("IObjectSafety_SetInterfaceSafetyOptions"),
                   QStringLiteral("E_NOINTERFACE"));
        return E_NoInterface;
    }
    errorTrace(className, QStringLiteral("IObjectSafety_SetInterfaceSafetyOptions"),
               QStringLiteral("E_FAIL"));
    return E_Fail;
}

namespace {

// Asks for one option on one interface, then enables it; false on any refusal.
bool isSafeFor(QObject* object, const QString& iid, std::uint32_t option)
{
    auto* safety = qobject_cast<IObjectSafety*>(object);
    if (!safety)
        return false;
    std::uint32_t supported = 0;
    std::uint32_t enabled = 0;
    if (safety->GetInterfaceSafetyOptions(iid, &supported, &enabled) != S_Ok)
        return false;
    if ((enabled & option) == 0)
        return false;
    return safety->SetInterfaceSafetyOptions(iid, option, option) == S_Ok;
}

} // namespace

bool isSafeForScripting(QObject* object)
{
    return isSafeFor(object, kIID_IDispatch, kSafeForUntrustedCaller);
}

bool isSafeForInitializing(QObject* object)
{
    return isSafeFor(object, kIID_IPersistPropertyBag, kSafeForUntrustedData);
}

} // namespace nxr
