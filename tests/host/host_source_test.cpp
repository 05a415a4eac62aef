// How a page's files are found and fetched, and the host's count of requests under way.

#include "PageRunner.h"
#include "TestHttpServer.h"
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
