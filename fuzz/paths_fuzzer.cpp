// Controller path helpers over arbitrary text: the file name is a tail of the path, the URL path
// is absolute and ends in that name, cache folder and host names keep their promises, and an
// accepted local name can never leave its folder.

#include "FuzzCheck.h"
#include "transfer/ControllerPaths.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString path = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));

    const QString name = nxr::FileNameOfPath(path);
    FUZZ_CHECK(path.endsWith(name), path);
    const qsizetype colon = path.indexOf(QLatin1Char(':'));
    if (colon >= 0)
        FUZZ_CHECK(!name.contains(QLatin1Char('\\')) && name.size() < path.size(), path);

    const QString url = nxr::RemoteUrlPath(path);
    FUZZ_CHECK(url.startsWith(QLatin1Char('/')), path);
    FUZZ_CHECK(url.endsWith(name), path);
    // Only the device part (before the first ":") can bring a "\" into the URL path.
    FUZZ_CHECK(!url.mid(1 + qMax<qsizetype>(colon, 0)).contains(QLatin1Char('\\')), path);

    const QString folder = nxr::VersionFolderName(path);
    FUZZ_CHECK(!folder.contains(QLatin1Char('.')) && !folder.contains(QLatin1Char('/')), path);
    FUZZ_CHECK(folder == folder.toUpper(), path);

    const QString host = nxr::HostFromServer(path);
    FUZZ_CHECK(path.startsWith(host) && !host.contains(QLatin1Char(':')), path);

    if (nxr::checkLocalName(path).isEmpty()) {
        FUZZ_CHECK(!path.isEmpty() && path != QLatin1String(".") && path != QLatin1String(".."), path);
        FUZZ_CHECK(!path.contains(QLatin1Char('/')) && !path.contains(QLatin1Char('\\')), path);
        for (const QChar c : path)
            FUZZ_CHECK(c.unicode() >= 0x20 && c.unicode() != 0x7f, path);
    }
    return 0;
}
