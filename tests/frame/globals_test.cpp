// The shared helpers: extensions, keys, paths, language, and the private storage folder.

#include "frame/Globals.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

using namespace nxr;

TEST(Globals, ImageExtensionFollowsSearchOrderNotPosition)
{
    EXPECT_EQ(Globals::imageExtension("c:\\a.png.jpg"), ".JPG");
    EXPECT_EQ(Globals::imageExtension("c:\\a.jpg.png"), ".JPG");
    EXPECT_EQ(Globals::imageExtension("MC:\\x.gif"), ".GIF");
    EXPECT_EQ(Globals::imageExtension("UD1:\\LOG\\IMG.Bmp"), ".BMP");
    EXPECT_EQ(Globals::imageExtension("MC:\\a.tif"), "");
    EXPECT_EQ(Globals::imageExtension(""), "");
}

TEST(Globals, KeysNamesAndNormalisedPaths)
{
    EXPECT_EQ(Globals::collectionKey("12"), "Key_12");
    EXPECT_EQ(Globals::collectionKey("-1.5"), "Key_-1.5");
    EXPECT_EQ(Globals::collectionKey("abc"), "abc");
    EXPECT_EQ(Globals::collectionKey(""), "");
    EXPECT_EQ(Globals::fileNameOfPath("MC:\\VISION\\CAM1.PNG"), "CAM1.PNG");
    EXPECT_EQ(Globals::fileNameOfPath("CAM1.PNG"), "CAM1.PNG");
    EXPECT_EQ(Globals::fileNameOfPath("MC:\\VISION\\"), "");
    EXPECT_EQ(Globals::normalizePath("  mc:/vision/cam1.png "), "MC:VISIONCAM1PNG");
}

TEST(Globals, TwipsAndPixelsInvertEachOther)
{
    const double tpp = Globals::twipsPerPixel(true);
    ASSERT_GT(tpp, 0.0);
    EXPECT_EQ(Globals::twipsToPixels(Globals::pixelsToTwips(123)), 123);
}

TEST(Globals, LanguageComesFromTheEnvironment)
{
    const struct
    {
        const char* value;
        const char* code;
    } cases[] = {
        {" KN ", "jp"}, {"jp", "jp"}, {"Default", "eg"}, {"eg", "eg"}, {"fr", ""}, {"", ""},
    };
    for (const auto& c : cases) {
        ::setenv("TORVIK_LANG", c.value, 1);
        EXPECT_EQ(Globals::languageCode(), c.code) << c.value;
    }
    const Globals::Caption caption{"Cancel", "キャンセル"};
    ::setenv("TORVIK_LANG", "kn", 1);
    EXPECT_EQ(caption.pick(), "キャンセル");
    ::unsetenv("TORVIK_LANG");
    EXPECT_EQ(Globals::languageCode(), "");
    EXPECT_EQ(caption.pick(), "Cancel"); // unset: the built-in caption
}

namespace {
mode_t modeOf(const QString& path)
{
    struct stat st
    {
    };
    EXPECT_EQ(::lstat(QFile::encodeName(path).constData(), &st), 0) << path.toStdString();
    return st.st_mode;
}
} // namespace

TEST(StorageFolder, IsMadePrivateAndKeptForTheProcess)
{
    QTemporaryDir tmp;
    const QString folder = Globals::resolveStorageFolder(tmp.path());
    EXPECT_EQ(folder, tmp.path() + "/TORVIK");
    EXPECT_EQ(modeOf(folder) & 0777, 0700u);

    // An existing folder of ours that others can read is closed.
    QTemporaryDir tmp2;
    ASSERT_TRUE(QDir(tmp2.path()).mkdir("TORVIK"));
    ::chmod(QFile::encodeName(tmp2.path() + "/TORVIK").constData(), 0777);
    EXPECT_EQ(Globals::resolveStorageFolder(tmp2.path()), tmp2.path() + "/TORVIK");
    EXPECT_EQ(modeOf(tmp2.path() + "/TORVIK") & 0777, 0700u);

    EXPECT_EQ(Globals::storageFolder(), Globals::storageFolder());
    EXPECT_TRUE(Globals::storageFolder().endsWith("/TORVIK") ||
                Globals::storageFolder().contains("/TORVIK-"));
}

TEST(StorageFolder, NeverFollowsALinkPlantedByAnotherUser)
{
    QTemporaryDir tmp, elsewhere;
    ::chmod(QFile::encodeName(elsewhere.path()).constData(), 0755);
    ASSERT_EQ(::symlink(QFile::encodeName(elsewhere.path()).constData(),
                        QFile::encodeName(tmp.path() + "/TORVIK").constData()),
              0);
    const QString folder = Globals::resolveStorageFolder(tmp.path());
    EXPECT_NE(folder, tmp.path() + "/TORVIK");
    EXPECT_TRUE(folder.startsWith(tmp.path() + "/TORVIK-")) << folder.toStdString();
    EXPECT_FALSE(S_ISLNK(modeOf(folder)));
    EXPECT_EQ(modeOf(folder) & 0777, 0700u);
    EXPECT_EQ(modeOf(elsewhere.path()) & 0777, 0755u); // the link's target was left alone
}

TEST(StorageFolder, SkipsAFolderOwnedBySomeoneElse)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "needs root to hand a folder to another user";
    QTemporaryDir tmp;
    const QString taken = tmp.path() + "/TORVIK";
    ASSERT_TRUE(QDir(tmp.path()).mkdir("TORVIK"));
    ASSERT_EQ(::chown(QFile::encodeName(taken).constData(), 65534, 65534), 0);
    // The per-user name is taken as well, so a fresh folder is made.
    ASSERT_TRUE(QDir(tmp.path()).mkdir("TORVIK-" + QString::number(::geteuid())));
    ASSERT_EQ(
        ::chown(QFile::encodeName(taken + "-" + QString::number(::geteuid())).constData(), 65534, 65534), 0);
    const QString folder = Globals::resolveStorageFolder(tmp.path());
    EXPECT_TRUE(folder.startsWith(taken + "-")) << folder.toStdString();
    struct stat st
    {
    };
    ASSERT_EQ(::lstat(QFile::encodeName(folder).constData(), &st), 0);
    EXPECT_EQ(st.st_uid, ::geteuid());
}
