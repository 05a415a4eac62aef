// The process's trust model without a host: which origins are trusted, which controllers, local
// files and environment variables a page's controls may reach, and the per-class safety answer.

#include "frame/Globals.h"
#include "frame/NXRCacheControl.h"
#include "frame/NXRClientSetupObject.h"
#include "frame/ObjectSafety.h"
#include "frame/PageTrust.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace PageTrust = nxr::PageTrust;

namespace {

struct TrustTest : ::testing::Test
{
    void SetUp() override { PageTrust::reset(); }
    void TearDown() override { PageTrust::reset(); }
};

} // namespace

TEST_F(TrustTest, OriginsAreTrustedByHostPortAndScheme)
{
    for (const char* entry :
         {"http://10.0.0.5:8080/pages/", "10.0.0.6", "robot.local:81", "https://10.0.0.7"})
        EXPECT_TRUE(PageTrust::addTrustedController(entry)) << entry;
    for (const char* entry : {"", "ftp://10.0.0.8", "http://", "10.0.0.9/path"})
        EXPECT_FALSE(PageTrust::addTrustedController(entry)) << entry;

    const struct
    {
        const char* url;
        bool trusted;
    } cases[] = {
        {"http://10.0.0.5:8080/other/page.json", true},
        {"http://10.0.0.5/page.json", false}, // another port
        {"https://10.0.0.5:8080/", false},    // another scheme
        {"http://10.0.0.6:1234/", true},      // every port of a bare host
        {"https://10.0.0.6/", true},
        {"http://ROBOT.LOCAL:81/x", true},
        {"http://robot.local/x", false},
        {"https://10.0.0.7/x", true},
        {"http://10.0.0.7:443/x", false},
        {"http://10.0.0.50:8080/", false},
        {"http://10.0.0.5.evil.example:8080/", false},
        {"ftp://10.0.0.6/", false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(PageTrust::isTrustedOrigin(QUrl(QString::fromLatin1(c.url))), c.trusted) << c.url;
    EXPECT_TRUE(PageTrust::isTrustedOrigin(QUrl::fromLocalFile("/any/page.json")));
    EXPECT_TRUE(PageTrust::sameOrigin(QUrl("http://a:80/x"), QUrl("http://A/y")));
    EXPECT_FALSE(PageTrust::sameOrigin(QUrl("http://a/x"), QUrl("https://a/x")));
}

TEST_F(TrustTest, ARemotePageReachesOnlyItsControllersItsStorageAndTheLibrarysVariables)
{
    // No page (the library used from C++) and a local page: nothing is limited.
    for (const QUrl& page : {QUrl(), QUrl::fromLocalFile("/pages/p/page.json")}) {
        PageTrust::setPage(page);
        EXPECT_TRUE(PageTrust::mayReachServer("192.0.2.1"));
        EXPECT_TRUE(PageTrust::mayUseEnvironmentVariable("LD_PRELOAD"));
        EXPECT_TRUE(PageTrust::mayReadLocalFile("/etc/hostname"));
    }

    PageTrust::addTrustedController("http://10.0.0.6:8080");
    PageTrust::setPage(QUrl("http://10.0.0.5/pages/page.json"));
    for (const auto& [server, allowed] : {std::pair{"10.0.0.5", true},
                                          {"10.0.0.5:2121", true},
                                          {"10.0.0.6", true},
                                          {"10.0.0.7", false},
                                          {"user@10.0.0.7", false},
                                          {"10.0.0.5/x", false},
                                          {"", false}})
        EXPECT_EQ(PageTrust::mayReachServer(server), allowed) << server;
    for (const auto& [name, allowed] : {std::pair{"TORVIK_LANG", true},
                                        {"NXR_TRACE", true},
                                        {"PATH", false},
                                        {"LD_PRELOAD", false},
                                        {"BASH_ENV", false},
                                        {"BROWSER", false},
                                        {"TORVIK_BROWSER", false},
                                        {"NXR_PROXY", false},
                                        {"TMPDIR", false},
                                        {"QT_PLUGIN_PATH", false},
                                        {"SSL_CERT_FILE", false},
                                        {"http_proxy", false},
                                        {"torvik_lang", false}})
        EXPECT_EQ(PageTrust::mayUseEnvironmentVariable(name), allowed) << name;

    // Local files: below the storage folder only, wherever a link points.
    const QString storage = nxr::Globals::storageFolder();
    QTemporaryDir outside;
    QFile(outside.filePath("secret.txt")).open(QIODevice::WriteOnly);
    QDir(storage).mkpath("trust-test");
    QFile(storage + "/trust-test/in.txt").open(QIODevice::WriteOnly);
    QFile::remove(storage + "/trust-test/link.txt");
    QFile::link(outside.filePath("secret.txt"), storage + "/trust-test/link.txt");
    EXPECT_TRUE(PageTrust::mayReadLocalFile(storage + "/trust-test/in.txt"));
    EXPECT_FALSE(
        PageTrust::mayReadLocalFile(storage + "/trust-test/../../" + QDir(outside.path()).dirName()));
    EXPECT_FALSE(PageTrust::mayReadLocalFile(storage + "/trust-test/link.txt"));
    EXPECT_FALSE(PageTrust::mayReadLocalFile(outside.filePath("secret.txt")));
    EXPECT_FALSE(PageTrust::mayReadLocalFile(storage));

    // The environment object follows the rule.
    NXRClientSetupObject env;
    env.Environment("NXR_TRUST_TEST_VALUE", " set ");
    env.Environment("NXR_TRUST_TEST_PATH", "refused");
    EXPECT_EQ(env.Environment("NXR_TRUST_TEST_VALUE"), "set");
    EXPECT_EQ(qgetenv("NXR_TRUST_TEST_PATH"), QByteArray());
    EXPECT_EQ(env.Environment("HOME"), "");
    QDir(storage + "/trust-test").removeRecursively();
}

TEST_F(TrustTest, ObjectSafetyAnswersPerClassForRemotePages)
{
    NXRCacheControl cache;
    NXRClientSetupObject env;
    EXPECT_TRUE(nxr::isSafeForScripting(&cache));
    PageTrust::setPage(QUrl("http://10.0.0.5/page.json"));
    EXPECT_FALSE(nxr::isSafeForScripting(&cache));
    EXPECT_TRUE(nxr::isSafeForScripting(&env));
    EXPECT_TRUE(nxr::isSafeForInitializing(&cache));
    nxr::setUnsafeForRemotePages("NXRClientSetupObject", true);
    EXPECT_FALSE(nxr::isSafeForScripting(&env));
    nxr::setUnsafeForRemotePages("NXRClientSetupObject", false);
    EXPECT_TRUE(nxr::isSafeForScripting(&env));
}
