#pragma once
// The trust model of the process: which page the controls serve and which controllers that page
// may reach. A page read from disk (a folder the user opened) is trusted with everything. A page
// from a web address is trusted only when its origin is one of the controllers the user named
// (on the host's command line or in the user settings), and even then its controls reach only
// trusted controllers, read local files only in the storage folder and set only the library's
// own environment variables. With no page set (the library used from C++), nothing is limited.
//
// The host sets the page once before any script runs; the controls ask the questions below
// before they touch a controller, a local file or the environment.

#include "frame/Export.h"

#include <QString>
#include <QStringList>
#include <QUrl>

namespace nxr::PageTrust {

// The user-settings section and key that list trusted controllers, separated by spaces, commas
// or semicolons: "http://10.0.0.5 10.0.0.6:8080".
inline const QString kSettingsSection = QStringLiteral("Security");
inline const QString kSettingsKey = QStringLiteral("TrustedControllers");

// Names a trusted controller: "HOST", "HOST:PORT" or "http(s)://HOST[:PORT][/...]". Without a
// port, every port of the host is trusted. False (nothing added) for an entry that names no host.
NXR_EXPORT bool addTrustedController(const QString& entry);
// The controllers listed in the user settings, added with addTrustedController().
NXR_EXPORT void addTrustedControllersFromSettings();
NXR_EXPORT QStringList trustedControllers();

// The page now served: a local file URL, or an http(s) URL. An empty URL ends the page (no limits).
NXR_EXPORT void setPage(const QUrl& pageUrl);
NXR_EXPORT QUrl page();
// True while the page is remote (http/https): its controls are bound to the trusted controllers.
NXR_EXPORT bool pageIsRemote();

// Whether pages of this URL's origin are trusted with the controls: local files always; http(s)
// when the origin is a trusted controller.
NXR_EXPORT bool isTrustedOrigin(const QUrl& url);
// "scheme://host:port" with the scheme's default port written out.
NXR_EXPORT QString originOf(const QUrl& url);
NXR_EXPORT bool sameOrigin(const QUrl& a, const QUrl& b);

// Whether the page's controls may connect to a controller named as the transfer routines name it
// ("host" or "host:port"). A remote page reaches its own host and the trusted controllers' hosts
// (a controller's FTP and HTTP services are on ports of their own).
NXR_EXPORT bool mayReachServer(const QString& server);
// The same rule for the transfer routines: throws nxr::Failure("<server> is not a trusted
// controller of this page") when the server may not be reached.
NXR_EXPORT void requireServer(const QString& server);
// Whether the page's controls may read a local file: a remote page only below the storage folder
// (the path is resolved, links included, before it is compared).
NXR_EXPORT bool mayReadLocalFile(const QString& path);
// Whether the page may read or write an environment variable: a remote page only the library's
// own (TORVIK_*, NXR_*), never the ones that steer programs, loaders or connections.
NXR_EXPORT bool mayUseEnvironmentVariable(const QString& name);

// Back to no page and no trusted controllers (tests).
NXR_EXPORT void reset();

} // namespace nxr::PageTrust
