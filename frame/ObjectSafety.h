#pragma once
// The safety answer every creatable object gives its host before the host scripts it or
// initialises it from page data. The host asks through qobject_cast<nxr::IObjectSafety*>.

#include "frame/Export.h"

#include <QObject>
#include <QString>

#include <cstdint>

namespace nxr {

using HResult = std::int32_t;
constexpr HResult S_Ok = 0;
constexpr HResult E_NoInterface = HResult(0x80004002u);
constexpr HResult E_Fail = HResult(0x80004005u);

constexpr std::uint32_t kSafeForUntrustedCaller = 1; // INTERFACESAFE_FOR_UNTRUSTED_CALLER
constexpr std::uint32_t kSafeForUntrustedData = 2;   // INTERFACESAFE_FOR_UNTRUSTED_DATA

// Interface ids, upper case with braces.
inline const QString kIID_IDispatch = QStringLiteral("{00020400-0000-0000-C000-000000000046}");
inline const QString kIID_IPersistStorage = QStringLiteral("{0000010A-0000-0000-C000-000000000046}");
inline const QString kIID_IPersistStream = QStringLiteral("{00000109-0000-0000-C000-000000000046}");
inline const QString kIID_IPersistPropertyBag = QStringLiteral("{37D84F60-42CB-11CE-8135-00AA004BB851}");

class NXR_EXPORT IObjectSafety
{
public:
    virtual ~IObjectSafety() = default;
    virtual HResult GetInterfaceSafetyOptions(const QString& iid, std::uint32_t* supportedOptions,
                                              std::uint32_t* enabledOptions) = 0;
    virtual HResult SetInterfaceSafetyOptions(const QString& iid, std::uint32_t optionSetMask,
                                              std::uint32_t enabledOptions) = 0;
};

// The library-wide flags, both set by the library's start-up before any object is asked.
NXR_EXPORT bool safeForScripting();
NXR_EXPORT bool safeForInitializing();
NXR_EXPORT void setSafeForScripting(bool on);
NXR_EXPORT void setSafeForInitializing(bool on);

// Classes whose objects are not safe for scripting by a page from the network (see PageTrust),
// though they are for a page the user opened from disk. NXRCacheControl is one: emptying the
// URL cache reaches what every other site cached.
NXR_EXPORT void setUnsafeForRemotePages(const QString& className, bool unsafe);
NXR_EXPORT bool isUnsafeForRemotePages(const QString& className);

// The shared answers; className names the asking object in the refusal trace lines
// "[<class>.IObjectSafety_GetInterfaceSafetyOptions] E_NOINTERFACE" and
// "[<class>.IObjectSafety_SetInterfaceSafetyOptions] E_NOINTERFACE".
NXR_EXPORT HResult getInterfaceSafetyOptions(const QString& className, const QString& iid,
                                             std::uint32_t* supportedOptions, std::uint32_t* enabledOptions);
NXR_EXPORT HResult setInterfaceSafetyOptions(const QString& className, const QString& iid,
                                             std::uint32_t optionSetMask, std::uint32_t enabledOptions);

// True when the object answers that it is safe for untrusted callers through IDispatch.
NXR_EXPORT bool isSafeForScripting(QObject* object);
// True when the object answers that it may be initialised from untrusted data through
// IPersistPropertyBag (the saved properties of a form).
NXR_EXPORT bool isSafeForInitializing(QObject* object);

} // namespace nxr

#define NXR_IObjectSafety_iid "com.nexarocontrols.IObjectSafety"
Q_DECLARE_INTERFACE(nxr::IObjectSafety, NXR_IObjectSafety_iid)
