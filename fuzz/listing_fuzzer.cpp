// The controller's long FTP listing: any server answer, however malformed, must split into names
// that are upper case, free of blanks and "*", never "." or "..", or into the all-empty form.

#include "FuzzCheck.h"
#include "transfer/ListingParser.h"

#include <cstddef>
#include <cstdint>

namespace {

void checkNames(const QStringList& names, const QString& response)
{
    FUZZ_CHECK(!names.isEmpty(), response);
    if (names.first().isEmpty()) {
        // Nothing found: one empty string per line, so every entry is empty.
        for (const QString& name : names)
            FUZZ_CHECK(name.isEmpty(), response);
        return;
    }
    for (const QString& name : names) {
        FUZZ_CHECK(!name.isEmpty(), response);
        FUZZ_CHECK(name != QLatin1String(".") && name != QLatin1String(".."), name);
        FUZZ_CHECK(!name.contains(QLatin1Char('*')) && !name.contains(QLatin1Char(' ')), name);
        FUZZ_CHECK(name == name.toUpper(), name);
        FUZZ_CHECK(!name.contains(QLatin1String("\r\n")), name);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString response = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    const nxr::DirectoryListing listing = nxr::parseLongListing(response);
    checkNames(listing.files, response);
    checkNames(listing.folders, response);
    return 0;
}
