// The transfer demo page (pages/transfer-demo) run against the simulator in a small stand-in for
// the page host: its form, its script, createObject, console and host.args.

#include "ControllerSimulator.h"
#include "TransferTestSupport.h"
#include "frame/ClassRegistry.h"
#include "transfer/ConnectionPool.h"

#include <QJSEngine>
#include <QLabel>
#include <QPlainTextEdit>
#include <QUiLoader>

#include <gtest/gtest.h>

using namespace nxr::test;

namespace {

class PageHostStub : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QVariantMap args MEMBER m_args)
    Q_PROPERTY(bool headless MEMBER m_headless)

public:
    QVariantMap m_args;
    bool m_headless = true;
    int exitCode = -1;

    Q_INVOKABLE QObject* createObject(const QString& name)
    {
        QObject* object = nxr::ClassRegistry::instance().create(name);
        if (object)
            QJSEngine::setObjectOwnership(object, QJSEngine::CppOwnership);
        created.emplace_back(object);
        return object;
    }
    Q_INVOKABLE void exit(int code) { exitCode = code; }

    std::vector<std::unique_ptr<QObject>> created;
};

TEST(TransferDemoPage, CopiesListsAndUploadsOnTheSimulator)
{
    QTemporaryDir temp;
    qputenv("TMPDIR", temp.path().toUtf8());
    ControllerSimulator sim;
    ASSERT_TRUE(sim.start()) << sim.errorText().toStdString();

    const QString folder = QStringLiteral(NXR_PAGES_DIR "/transfer-demo");
    QFile form(folder + "/transfer-demo.ui");
    ASSERT_TRUE(form.open(QIODevice::ReadOnly));
    QUiLoader loader;
    std::unique_ptr<QWidget> page(loader.load(&form));
    ASSERT_NE(page, nullptr);

    QJSEngine engine;
    engine.installExtensions(QJSEngine::ConsoleExtension);
    PageHostStub host;
    host.m_args = {{"ftpPort", QString::number(sim.ftpPort())},
                   {"httpPort", QString::number(sim.httpPort())},
                   {"server", sim.host()},
                   {"user", sim.user()},
                   {"password", sim.password()}};
    engine.globalObject().setProperty("host", engine.newQObject(&host));
    QJSEngine::setObjectOwnership(&host, QJSEngine::CppOwnership);
    for (QWidget* w : page->findChildren<QWidget*>()) {
        if (!w->objectName().isEmpty()) {
            QJSEngine::setObjectOwnership(w, QJSEngine::CppOwnership);
            engine.globalObject().setProperty(w->objectName(), engine.newQObject(w));
        }
    }
    engine.evaluate("function createObject(name) { return host.createObject(name); }");

    QFile script(folder + "/transfer-demo.js");
    ASSERT_TRUE(script.open(QIODevice::ReadOnly));
    const QJSValue result = engine.evaluate(QString::fromUtf8(script.readAll()), script.fileName());
    ASSERT_FALSE(result.isError()) << result.toString().toStdString() << " line "
                                   << result.property("lineNumber").toInt();

    auto* status = page->findChild<QLabel*>("status");
    ASSERT_NE(status, nullptr);
    EXPECT_EQ(status->text(), "Copy, list, drives and upload done.");
    EXPECT_EQ(host.exitCode, -1);
    EXPECT_TRUE(page->findChild<QPlainTextEdit*>("txt_Names")->toPlainText().contains("GREY640.PNG"));
    EXPECT_EQ(sim.readFile("UD1:\\IMAGES\\COPY_OF_TOOLS.TXT"), sim.readFile("MC:\\VISION\\TOOLS.TXT"));
    EXPECT_EQ(nxr::ConnectionPool::instance().usedSlots(), 0);
    host.created.clear();
    nxr::ConnectionPool::instance().clear();
}

} // namespace

#include "TransferDemoPageTest.moc"
