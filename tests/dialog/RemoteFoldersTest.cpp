// The dialog's controller side without a controller: devices, paths and the long listing. Listing,
// uploading, a refused login and a 10,000-file folder through the file transfer are checked end to
// end in OpenSaveDialogTest.

#include "imagedisplay/dialog/RemoteFolders.h"

#include <gtest/gtest.h>

using namespace nxr;

namespace {

TEST(RemotePaths, DevicesRootsAndMemoryDevices)
{
    EXPECT_EQ(RemotePaths::rootFolders(), (QStringList{"MC:\\", "UD1:\\", "MCV:\\", "UT1:\\"}));
    // Empty entries, repeats and memory devices never become roots; case does not matter.
    EXPECT_EQ(RemotePaths::rootFolders(";ud1:;;MD:;UD1:;mdb:;FR:;MC:"),
              (QStringList{"MC:\\", "UD1:\\", "FR:\\"}));
    EXPECT_EQ(RemotePaths::rootFolders(""), QStringList{"MC:\\"});

    const struct
    {
        const char* path;
        const char* device;
        bool memory;
        bool file;
    } cases[] = {
        {"MD:\\ERRALL.LS", "MD:", true, true},   {"mdb:\\X.PNG", "MDB:", true, true},
        {"MDX:\\X.PNG", "MDX:", false, true},    {"MC:\\VISION\\A.PNG", "MC:", false, true},
        {"MC:\\VISION\\", "MC:", false, false},  {"A.PNG", "", false, false},
        {"MC:\\A*.PNG", "MC:", false, false},    {"MC:\\A/B.PNG", "MC:", false, false},
        {"MC:\\A\r\nQUIT", "MC:", false, false}, {"C:\\X:Y.PNG", "C:", false, false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(RemotePaths::deviceOf(c.path), c.device) << c.path;
        EXPECT_EQ(RemotePaths::isMemoryDevice(c.path), c.memory) << c.path;
        EXPECT_EQ(RemotePaths::isFilePath(c.path), c.file) << c.path;
    }
    EXPECT_EQ(RemotePaths::join("MC:\\", "A"), "MC:\\A");
    EXPECT_EQ(RemotePaths::join("MC:\\A", "B.PNG"), "MC:\\A\\B.PNG");
    EXPECT_EQ(RemotePaths::join("UD1:", "B.PNG"), "UD1:\\B.PNG");
}

TEST(RemoteListing, FilesFoldersSizesDatesAndOddLines)
{
    const QString listing = "drwxrwxrwx   1 root     root              0 Nov 20 08:15 VISION\r\n"
                            "-rw-rw-rw-   1 root     root         123456 Nov 21 10:05 REF 1.PNG\r\n"
                            "-rw-rw-rw-   1 root     root             12 Dec 30  2025 OLD.BMP\r\n"
                            "-rw-rw-rw-   1 root     root             12 Dec 30 23:59 FUTURE.PNG\r\n"
                            "drwxrwxrwx   1 root     root              0 Nov 20 08:15 .\r\n"
                            "drwxrwxrwx   1 root     root              0 Nov 20 08:15 ..\r\n"
                            "total 3\r\n"
                            "\r\n"
                            "garbage line\n";
    const auto entries = parseRemoteListing(listing, QDate(2026, 11, 22));
    ASSERT_EQ(entries.size(), 4u);
    EXPECT_TRUE(entries[0].folder);
    EXPECT_EQ(entries[0].name, "VISION");
    EXPECT_FALSE(entries[1].folder);
    EXPECT_EQ(entries[1].name, "REF 1.PNG"); // a blank inside the name stays
    EXPECT_EQ(entries[1].size, 123456);
    EXPECT_EQ(entries[1].modified, QDateTime(QDate(2026, 11, 21), QTime(10, 5), Qt::UTC));
    EXPECT_EQ(entries[2].modified, QDateTime(QDate(2025, 12, 30), QTime(0, 0), Qt::UTC));
    // A date without a year that would lie ahead is last year's.
    EXPECT_EQ(entries[3].modified, QDateTime(QDate(2025, 12, 30), QTime(23, 59), Qt::UTC));
    EXPECT_TRUE(parseRemoteListing("").empty());
}

} // namespace
