// How a page's files and a form's pictures are found, and the host's count of requests under way.
// (How modifier and button names are read is checked end to end in host_tools_test.)

#include "PageRunner.h"
#include "TestHttpServer.h"
#include "host/FormResources.h"
#include "host/NetworkAccess.h"
#include "host/PageSource.h"

#include <QDir>
#include <QNetworkReply>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <memory>

namespace {

class LocalPages : public ::testing::Test
{
protected:
    // The error text, empty when the page was read.
    QString read(const QString& page)
    {
        QString error;
        files = {};
        if (!nxr::PageSource::readLocal(runner.path(page), &files, &error))
            return error.isEmpty() ? QStringLiteral("failed without a message") : error;
        return QString();
    }
    QStringList scriptTexts() const
    {
        QStringList texts;
        for (const nxr::PageScript& s : files.scripts)
            texts << s.text;
        return texts;
    }
    PageRunner runner;
    nxr::PageFiles files;
};

} // namespace

TEST_F(LocalPages, FormAndScriptsAreFoundByTheRulesOrRefusedWithAReason)
{
    runner.write("p/view.ui", "<ui/>");
    runner.write("p/view.js", "var a = 1;");
    runner.write("q/only.ui");
    runner.write("d/a.ui");
    runner.write("d/b.ui", "<ui/>");
    runner.write("d/js/one.js", "1");
    runner.write("d/two.js", "2");
    runner.write("d/page.json", R"({"form": "b.ui", "script": ["js/one.js", "two.js"], "title": "Setup"})");
    // A folder with one form and one script, the form file itself, a form alone, a description.
    const struct
    {
        const char* page;
        QString form;
        QStringList scripts;
        QString title;
    } cases[] = {
        {"p", "p/view.ui", {"var a = 1;"}, ""},
        {"p/view.ui", "p/view.ui", {"var a = 1;"}, ""},
        {"q", "q/only.ui", {}, ""},
        {"d", "d/b.ui", {"1", "2"}, "Setup"},
        {"d/page.json", "d/b.ui", {"1", "2"}, "Setup"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.page);
        ASSERT_EQ(read(c.page), QString());
        EXPECT_EQ(files.formUrl, QUrl::fromLocalFile(runner.path(c.form)));
        EXPECT_EQ(scriptTexts(), c.scripts);
        EXPECT_EQ(files.title, c.title);
        EXPECT_EQ(files.workingDirectory, QFileInfo(runner.path(c.form)).absolutePath());
    }
    EXPECT_EQ(files.pageUrl, QUrl::fromLocalFile(runner.path("d/page.json")));
    ASSERT_EQ(read("p"), QString());
    EXPECT_EQ(files.form, "<ui/>");
    EXPECT_EQ(files.scripts.value(0).url, QUrl::fromLocalFile(runner.path("p/view.js")));

    // Ambiguous or broken pages are refused with a reason.
    for (const char* file :
         {"two/a.ui", "two/b.ui", "scripts/a.ui", "scripts/x.js", "scripts/y.js", "notes.txt"})
        runner.write(file);
    QDir().mkpath(runner.path("empty"));
    runner.write("bad/page.json", "{\"form\": ");
    runner.write("noform/page.json", R"({"script": "a.js"})");
    runner.write("lost/page.json", R"({"form": "gone.ui"})");
    const QList<std::pair<const char*, const char*>> refusals{
        {"two", "several forms (a.ui, b.ui)"},
        {"scripts", "several scripts (x.js, y.js)"},
        {"empty", "no .ui form"},
        {"nothing", "no page at"},
        {"notes.txt", "is not a page"},
        {"bad", "not valid JSON"},
        {"noform", "names no form"},
        {"lost", "cannot read"},
    };
    for (const auto& [page, reason] : refusals)
        EXPECT_TRUE(read(page).contains(reason)) << page << ": " << qPrintable(read(page));
}

TEST(NetworkAccess, CountsRequestsUntilTheyFinishOrAreDropped)
{
    TestHttpServer server;
    server.set("/x", "text/plain", "x");
    nxr::NetworkAccess network;
    std::unique_ptr<QNetworkAccessManager> manager(network.create(nullptr));
    std::unique_ptr<QNetworkReply> first(manager->get(QNetworkRequest(QUrl(server.url("/x")))));
    std::unique_ptr<QNetworkReply> second(manager->get(QNetworkRequest(QUrl(server.url("/y")))));
    EXPECT_EQ(network.requestsInFlight(), 2);
    for (QNetworkReply* reply : {first.get(), second.get()}) {
        if (!reply->isFinished()) {
            ASSERT_TRUE(QSignalSpy(reply, &QNetworkReply::finished).wait(20000));
        }
    }
    EXPECT_EQ(network.requestsInFlight(), 0);
    delete manager->get(QNetworkRequest(QUrl(server.url("/x"))));
    EXPECT_EQ(network.requestsInFlight(), 0);
}

TEST(FormPictures, NamesAreFoundOnceAndReplacedOrDropped)
{
    const QByteArray form = R"(<ui version="4.0"><widget class="QWidget" name="w">
<widget class="QPushButton" name="a"><property name="icon"><iconset>
 <normaloff>icons/ok.png</normaloff><normalon>icons/on.png</normalon>icons/ok.png</iconset></property></widget>
<widget class="QLabel" name="b"><property name="pixmap"><pixmap>/etc/secret.png</pixmap></property>
 <property name="text"><string>icons/ok.png</string></property></widget>
<widget class="QLabel" name="c"><property name="pixmap"><pixmap>:/builtin/logo.png</pixmap></property></widget>
<widget class="QToolButton" name="d"><property name="icon"><iconset theme="edit-copy"/></property></widget>
</widget></ui>)";
    EXPECT_EQ(nxr::FormResources::references(form),
              (QStringList{"icons/ok.png", "icons/on.png", "/etc/secret.png"}));
    const QString out =
        QString::fromUtf8(nxr::FormResources::rewritten(form, {{"icons/ok.png", "/private/picture1.png"}}));
    // Named pictures point into the private folder, the others at nothing; texts, Qt's own
    // resources and theme icons are left as they are.
    EXPECT_EQ(out.count("/private/picture1.png"), 2) << qPrintable(out);
    EXPECT_TRUE(out.contains("<normalon></normalon>")) << qPrintable(out);
    EXPECT_TRUE(out.contains("<pixmap></pixmap>")) << qPrintable(out);
    EXPECT_FALSE(out.contains("secret")) << qPrintable(out);
    EXPECT_TRUE(out.contains("<string>icons/ok.png</string>")) << qPrintable(out);
    EXPECT_TRUE(out.contains("<pixmap>:/builtin/logo.png</pixmap>")) << qPrintable(out);
    EXPECT_TRUE(out.contains("theme=\"edit-copy\"")) << qPrintable(out);
}
