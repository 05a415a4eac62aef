// Path helpers and the listing parser (no network).

#include "transfer/ControllerPaths.h"
#include "transfer/ListingParser.h"

#include <gtest/gtest.h>

using namespace nxr;

TEST(ControllerPaths, FileNamesHostsAndUrls)
{
    const std::pair<QString, QString> names[] = {{"MC:\\A\\B.PNG", "B.PNG"},
                                                 {"MC:B.PNG", "B.PNG"},
                                                 {"B.PNG", "B.PNG"},
                                                 {"A\\B.PNG", "B.PNG"},
                                                 {"", ""},
                                                 {"MC:\\A\\", ""}};
    for (const auto& [path, name] : names)
        EXPECT_EQ(FileNameOfPath(path), name) << path.toStdString();
    const std::pair<QString, QString> urls[] = {{"MC:\\A\\B\\F.TXT", "/MC/A/B/F.TXT"},
                                                {"MC:\\F.TXT", "/MC/F.TXT"},
                                                {"MC:\\A\\\\B\\F.TXT", "/MC/A/B/F.TXT"},
                                                {"F.TXT", "/F.TXT"},
                                                {"A\\F.TXT", "/A/F.TXT"}};
    for (const auto& [path, url] : urls)
        EXPECT_EQ(RemoteUrlPath(path), url) << path.toStdString();
    EXPECT_EQ(HostFromServer("127.0.0.5:8080"), "127.0.0.5");
    EXPECT_EQ(HostFromServer("robot1"), "robot1");
    EXPECT_EQ(VersionFolderName(" x1.23/b "), "X123B");
    EXPECT_EQ(VersionFolderName("V9.40P/01"), "V940P01");
}

TEST(ControllerPaths, LocalNamesMustStayInTheFolder)
{
    EXPECT_EQ(checkLocalName("GREY640.PNG"), "");
    EXPECT_EQ(checkLocalName("..hidden.png"), "");
    for (const char* bad : {"", ".", "..", "../x", "/etc/passwd", "a/b", "a\\b", "a\tb"})
        EXPECT_NE(checkLocalName(QString::fromLatin1(bad)), "") << bad;
    EXPECT_NE(checkLocalName(QString("a") + QChar(0) + "b"), "");
}

TEST(ListingParser, NineFieldLinesInCapitals)
{
    const QString response = "drwxrwxrwx   1 root root 0 Nov 21 05:00 sub\r\n"
                             "-rw-rw-rw-   1 root root 25 Nov 21 05:00 tools.txt\r\n"
                             "\r\n"
                             "total 2\r\n"
                             "-rw-rw-rw-   1 root root 25 Nov 21 05:00 two words.txt\r\n"
                             "-rw-rw-rw-   1 root root 25 Nov 21 05:00 *.BAK\r\n"
                             "-rw-rw-rw-   1 root root 99 Nov 21 05:00 last.png";
    const DirectoryListing l = parseLongListing(response);
    EXPECT_EQ(l.files, QStringList({"TOOLS.TXT", "LAST.PNG"}));
    EXPECT_EQ(l.folders, QStringList({"SUB"}));
}

TEST(ListingParser, EmptyAndDotsOnly)
{
    const DirectoryListing empty = parseLongListing("");
    EXPECT_EQ(empty.files, QStringList{QString()});
    EXPECT_EQ(empty.folders, QStringList{QString()});

    const DirectoryListing dots = parseLongListing("drwxrwxrwx 1 a b 0 Nov 21 05:00 .\r\n"
                                                   "drwxrwxrwx 1 a b 0 Nov 21 05:00 ..\r\n");
    // Two lines and the end marker: three empty names in each.
    EXPECT_EQ(dots.files, QStringList(3, QString()));
    EXPECT_EQ(dots.folders, QStringList(3, QString()));
}
