// The image display's open/save dialog and image log against the controller simulator: opening
// from each device and from this computer, saving locally and to the controller, the memory
// devices, a folder of 10,000 files, a controller that is down or refuses the login, and the
// log's request/answer cycle with the page.

#include "ControllerSimulator.h"

#include "imagedisplay/NXRImageDisplay.h"
#include "imagedisplay/RasterView.h"
#include "imagedisplay/dialog/DisplayDialogs.h"
#include "imagedisplay/dialog/OpenSaveDialog.h"
#include "imagedisplay/loading/ImageFile.h"
#include "transfer/ControllerClient.h"
#include "views/NXRListView.h"
#include "views/NXRTreeView.h"

#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QPointer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeWidget>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

using namespace nxr;
using Source = OpenSaveDialog::Source;

namespace {

bool waitFor(const std::function<bool()>& done, int ms = 10000)
{
    QElapsedTimer clock;
    clock.start();
    while (!done() && clock.elapsed() < ms)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    return done();
}

QImage pattern(int w, int h, int seed)
{
    QImage img(w, h, QImage::Format_RGB32);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            img.setPixel(x, y, qRgb((x * 7 + seed) & 255, (y * 3 + seed) & 255, (x ^ y ^ seed) & 255));
    return img;
}

bool samePixels(const QImage& a, const QImage& b)
{
    return !a.isNull() && a.convertToFormat(QImage::Format_RGB32) == b.convertToFormat(QImage::Format_RGB32);
}

// A folder on the simulated controller with `count` empty image files.
QString fillFolder(const QString& folder, int count)
{
    QDir().mkpath(folder);
    for (int i = 0; i < count; ++i)
        QFile(folder + QStringLiteral("/IMG%1.PNG").arg(i, 5, 10, QLatin1Char('0')))
            .open(QIODevice::WriteOnly);
    return folder;
}

class OpenSaveDialogTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        static QTemporaryDir temp;
        qputenv("TMPDIR", QFile::encodeName(temp.path()));
        ControllerClient::setDefaultTimeouts({3000, 5000, 1000});
        sim = std::make_unique<nxr::test::ControllerSimulator>();
        ASSERT_TRUE(sim->start()) << sim->errorText().toStdString();
    }
    static void TearDownTestSuite() { sim.reset(); }

    void SetUp() override
    {
        ASSERT_TRUE(sim->resetFaults());
        display = std::make_unique<NXRImageDisplay>();
        display->resize(800, 600);
        display->show();
        display->SetProperty("FTPPortNo", QString::number(sim->ftpPort()));
        display->SetProperty("HTTPPortNo", QString::number(sim->httpPort()));
        display->SetProperty("ColorMode", "True");
    }
    void TearDown() override { display.reset(); }

    OpenSaveDialog& dialog() { return display->dialogs().dialog(); }

    // Opens the dialog for opening (or saving) and connects it to the simulator.
    void showConnected(bool save = false, const QString& password = {})
    {
        if (save)
            display->dialogs().msub_SaveImageByDialog();
        else
            display->dialogs().msub_LoadImageByDialog();
        ASSERT_TRUE(dialog().isVisible());
        dialog().selectSource(Source::Remote);
        dialog().setServer(sim->host(), sim->user(), password.isEmpty() ? sim->password() : password);
        dialog().cmd_Connect_Click();
        ASSERT_TRUE(listed());
    }
    // Waits until the dialog's listing is done, after choosing `folder` when one is given.
    bool listed(const QString& folder = {}, int ms = 10000)
    {
        if (!folder.isEmpty())
            dialog().selectRemoteFolder(folder);
        return waitFor([&] { return !dialog().isListing(); }, ms);
    }

    // Picks a file (a plain name in the shown folder or a whole path) and presses Open/Save;
    // returns once the display has done the work.
    bool finish(const QString& name)
    {
        QSignalSpy done(&display->dialogs(), &DisplayDialogs::dialogDone);
        dialog().setFileName(name);
        dialog().cmd_OK_Click();
        return waitFor([&] { return done.count() == 1; }, 15000);
    }

    QByteArray png(const QImage& image) { return ImageFile::encode(image, ImageFileFormat::Png); }

    static std::unique_ptr<nxr::test::ControllerSimulator> sim;
    std::unique_ptr<NXRImageDisplay> display;
};
std::unique_ptr<nxr::test::ControllerSimulator> OpenSaveDialogTest::sim;

TEST_F(OpenSaveDialogTest, OpensFromEachDeviceAndRaisesOnUserLoadedImage)
{
    const struct
    {
        const char* folder;
        int seed;
    } cases[] = {{"MC:\\OPENTEST", 1}, {"UD1:\\OPENTEST", 2}, {"MCV:\\OPENTEST", 3}, {"UT1:\\OPENTEST", 4}};
    QSignalSpy loaded(display.get(), &NXRImageDisplay::OnUserLoadedImage);
    QSignalSpy errors(display.get(), &NXRImageDisplay::OnError);
    for (const auto& c : cases) {
        const QImage image = pattern(64 + c.seed, 48, c.seed);
        ASSERT_TRUE(sim->writeFile(QString(c.folder) + "\\PART.PNG", png(image)));
        ASSERT_TRUE(sim->writeFile(QString(c.folder) + "\\NOTES.TXT", "not an image"));
    }
    showConnected();
    // The default folder's device; the device list itself is RemotePaths::rootFolders' (RemoteFoldersTest).
    EXPECT_EQ(dialog().remoteFolder(), "MC:\\");
    dialog().reject();

    for (const auto& c : cases) {
        SCOPED_TRACE(c.folder);
        display->dialogs().msub_LoadImageByDialog();
        // As the user does: the device first, then its folder.
        ASSERT_TRUE(listed(RemotePaths::deviceOf(c.folder) + "\\"));
        ASSERT_TRUE(listed(c.folder));
        // Only image files of the chosen type, each with the file icon, size and date.
        ASSERT_EQ(dialog().fileList()->itemTexts(), QStringList{"PART.PNG"});
        const auto item = dialog().fileList()->item("PART.PNG");
        EXPECT_EQ(item->SmallIcon(), "default.png");
        EXPECT_TRUE(item->SubItem(1).endsWith("B"));
        EXPECT_FALSE(item->SubItem(2).isEmpty());
        // A folder found by listing its parent became a node of the tree.
        EXPECT_NE(dialog().folderTree()->findNode(c.folder), nullptr);
        dialog().selectRemoteFile("PART.PNG");
        ASSERT_TRUE(finish("PART.PNG"));
        ASSERT_EQ(loaded.count(), 1);
        const QList<QVariant> args = loaded.takeFirst();
        EXPECT_EQ(args[0].toString(), QString(c.folder) + "\\PART.PNG");
        EXPECT_EQ(args[1].toInt(), 64 + c.seed);
        EXPECT_EQ(args[2].toInt(), 48);
        EXPECT_TRUE(samePixels(display->leadView()->bitmap(), pattern(64 + c.seed, 48, c.seed)));
    }
    EXPECT_EQ(errors.count(), 0) << display->LastErrorString().toStdString();
}

TEST_F(OpenSaveDialogTest, TheFileListSortsBySizeAndDate)
{
    ASSERT_TRUE(sim->writeFile("UT1:\\SORT\\B.PNG", QByteArray(3000, 'x')));
    ASSERT_TRUE(sim->writeFile("UT1:\\SORT\\C.PNG", QByteArray(200, 'x')));
    ASSERT_TRUE(sim->writeFile("UT1:\\SORT\\A.PNG", QByteArray(1500000, 'x')));
    // Modification times a day apart, oldest C, then A, then B.
    const QDateTime now = QDateTime::currentDateTime();
    for (const auto& [name, daysAgo] : {std::pair{"C.PNG", 3}, {"A.PNG", 2}, {"B.PNG", 1}}) {
        QFile f(sim->localPathOf(QString("UT1:\\SORT\\") + name));
        ASSERT_TRUE(f.open(QIODevice::ReadWrite));
        ASSERT_TRUE(f.setFileTime(now.addDays(-daysAgo), QFileDevice::FileModificationTime));
    }
    showConnected();
    ASSERT_TRUE(listed("UT1:\\SORT"));
    NXRListView* list = dialog().fileList();
    EXPECT_EQ(list->itemTexts(), (QStringList{"A.PNG", "B.PNG", "C.PNG"}));
    list->sortByColumn(1);
    EXPECT_EQ(list->itemTexts(), (QStringList{"C.PNG", "B.PNG", "A.PNG"}));
    list->sortByColumn(2);
    EXPECT_EQ(list->itemTexts(), (QStringList{"C.PNG", "A.PNG", "B.PNG"}));
    dialog().cmd_Cancel_Click();
}

TEST_F(OpenSaveDialogTest, APickedFileIsPreviewedOnceFetchedAndThenFromTheCache)
{
    ASSERT_TRUE(sim->writeFile("UT1:\\PREVIEW\\P.PNG", png(pattern(320, 240, 11))));
    ASSERT_TRUE(sim->writeFile("UT1:\\PREVIEW\\Q.PNG", png(pattern(100, 200, 12))));
    showConnected();
    ASSERT_TRUE(listed("UT1:\\PREVIEW"));
    ASSERT_TRUE(sim->clearLog());
    dialog().selectRemoteFile("P.PNG");
    EXPECT_TRUE(dialog().preview().isNull()); // not at once: rows passed over are not fetched
    ASSERT_TRUE(waitFor([&] { return !dialog().preview().isNull(); }));
    EXPECT_EQ(dialog().preview().size(), QSize(200, 150));
    dialog().selectRemoteFile("Q.PNG");
    ASSERT_TRUE(waitFor([&] { return !dialog().preview().isNull(); }));
    EXPECT_EQ(dialog().preview().size(), QSize(75, 150));
    const auto fetches = [&] {
        int n = 0;
        for (const QString& line : sim->logLines())
            n += line.contains("P.PNG") && (line.contains("RETR") || line.contains("GET")) ? 1 : 0;
        return n;
    };
    const int afterFirst = fetches();
    EXPECT_GE(afterFirst, 1);
    dialog().selectRemoteFile("P.PNG");
    ASSERT_TRUE(waitFor([&] { return !dialog().preview().isNull(); }));
    EXPECT_EQ(fetches(), afterFirst); // from the cache
    dialog().cmd_Cancel_Click();
}

TEST_F(OpenSaveDialogTest, OpensALocalFileThroughTheTemporaryImageFolder)
{
    QTemporaryDir folder;
    const QImage image = pattern(40, 30, 9);
    ASSERT_TRUE(image.save(folder.filePath("local part.bmp"), "BMP"));
    QSignalSpy loaded(display.get(), &NXRImageDisplay::OnUserLoadedImage);
    display->dialogs().msub_LoadImageByDialog();
    dialog().selectSource(Source::Local);
    dialog().setLocalFolder(folder.path());
    ASSERT_TRUE(finish("local part.bmp"));
    ASSERT_EQ(loaded.count(), 1);
    EXPECT_EQ(loaded[0][0].toString(), folder.filePath("local part.bmp"));
    EXPECT_TRUE(samePixels(display->leadView()->bitmap(), image));
    EXPECT_TRUE(display->CurrentImageFilename().endsWith("/TD/image.BMP"))
        << display->CurrentImageFilename().toStdString();

    // A missing file keeps the dialog open with the reason; nothing is loaded.
    display->dialogs().msub_LoadImageByDialog();
    dialog().selectSource(Source::Local);
    dialog().setFileName("missing.png");
    dialog().cmd_OK_Click();
    EXPECT_TRUE(dialog().isVisible());
    EXPECT_TRUE(dialog().statusText().contains("missing.png"));
    dialog().cmd_Cancel_Click();
    EXPECT_EQ(loaded.count(), 1);
}

TEST_F(OpenSaveDialogTest, SavesLocallyAndToTheControllerWithEqualPixelsAndNothingWithoutAnImage)
{
    // Nothing shown yet: nothing to save, and no dialog.
    QSignalSpy errors(display.get(), &NXRImageDisplay::OnError);
    display->dialogs().msub_SaveImageByDialog();
    EXPECT_EQ(display->LastErrorString(), "Error in msub_SaveImageByDialog: No image to save");
    EXPECT_FALSE(display->dialogs().hasDialog() && dialog().isVisible());
    ASSERT_EQ(errors.count(), 1);
    errors.clear();

    const QImage shown = pattern(50, 40, 5);
    display->showImage(shown);

    // Locally, as PNG and as BMP; a name without extension gets the type's.
    QTemporaryDir folder;
    for (const char* type : {"PNG", "BMP"}) {
        SCOPED_TRACE(type);
        display->dialogs().msub_SaveImageByDialog();
        dialog().selectSource(Source::Local);
        dialog().setLocalFolder(folder.path());
        dialog().findChild<QComboBox*>("cmb_FileType")->setCurrentText(type);
        ASSERT_TRUE(finish(QString("saved_") + type));
        const QString file = folder.filePath(QString("saved_") + type + "." + QString(type).toLower());
        EXPECT_TRUE(samePixels(QImage(file), shown)) << file.toStdString();
    }

    // To the controller: the file arrives with the same pixels, through the temporary local file.
    showConnected(true);
    ASSERT_TRUE(finish("MC:\\SAVEDBYDIALOG.PNG"));
    EXPECT_TRUE(samePixels(QImage::fromData(sim->readFile("MC:\\SAVEDBYDIALOG.PNG")), shown));
    EXPECT_TRUE(QFileInfo::exists(QDir::temp().filePath("TORVIK/TD/LEAD_image.PNG")));

    // Grey, chosen in cmb_SaveWhat.
    display->dialogs().msub_SaveImageByDialog();
    auto* what = dialog().findChild<QComboBox*>("cmb_SaveWhat");
    ASSERT_EQ(what->count(), 2);
    what->setCurrentIndex(1);
    ASSERT_TRUE(finish("UD1:\\GREY.PNG"));
    const QImage grey = QImage::fromData(sim->readFile("UD1:\\GREY.PNG"));
    EXPECT_TRUE(grey.isGrayscale());
    EXPECT_TRUE(samePixels(grey, shown.convertToFormat(QImage::Format_Grayscale8)));
    EXPECT_EQ(errors.count(), 0) << display->LastErrorString().toStdString();

    // A display in grey offers grey only.
    display->SetProperty("ColorMode", "False");
    display->dialogs().msub_SaveImageByDialog();
    EXPECT_EQ(what->count(), 1);
    dialog().cmd_Cancel_Click();
}

TEST_F(OpenSaveDialogTest, MemoryDevicesAreReadButNeverWritten)
{
    const QImage image = pattern(20, 10, 7);
    ASSERT_TRUE(sim->writeFile("MD:\\SHOT.PNG", png(image)));
    QSignalSpy loaded(display.get(), &NXRImageDisplay::OnUserLoadedImage);
    showConnected();
    for (const QString& node : dialog().folderTree()->nodeTexts())
        EXPECT_FALSE(node.startsWith("MD")) << node.toStdString();
    ASSERT_TRUE(finish("md:\\SHOT.PNG"));
    EXPECT_EQ(loaded.count(), 1);
    EXPECT_TRUE(samePixels(display->leadView()->bitmap(), image));

    QSignalSpy errors(display.get(), &NXRImageDisplay::OnError);
    display->dialogs().msub_SaveImageByDialog();
    for (const char* target : {"MD:\\SAVED.PNG", "MDB:\\SAVED.PNG"}) {
        dialog().setFileName(target);
        dialog().cmd_OK_Click();
        EXPECT_TRUE(dialog().isVisible()) << target;
        EXPECT_TRUE(dialog().statusText().contains("memory device")) << dialog().statusText().toStdString();
    }
    EXPECT_EQ(errors.count(), 2);
    EXPECT_TRUE(display->LastErrorString().startsWith("Error: MDB: is a memory device"));
    EXPECT_TRUE(sim->readFile("MD:\\SAVED.PNG").isNull());
    EXPECT_TRUE(sim->readFile("MDB:\\SAVED.PNG").isNull());
    dialog().cmd_Cancel_Click();
}

TEST_F(OpenSaveDialogTest, ControllerDownAndRefusedLoginShowInTheDialogAndNeverHang)
{
    QSignalSpy errors(display.get(), &NXRImageDisplay::OnError);
    // Refused login.
    ASSERT_TRUE(sim->setFault("refuse_login", 1));
    showConnected(false, "wrong-secret");
    EXPECT_TRUE(dialog().isVisible());
    EXPECT_TRUE(dialog().statusText().contains("Could not log in")) << dialog().statusText().toStdString();
    EXPECT_FALSE(dialog().statusText().contains("wrong-secret"));
    EXPECT_EQ(errors.count(), 1);
    EXPECT_EQ(dialog().folderTree()->NodeCount(), 0);
    ASSERT_TRUE(sim->resetFaults());

    // Down: nothing listens on the ports.
    display->SetProperty("FTPPortNo", "1");
    display->SetProperty("HTTPPortNo", "1");
    QElapsedTimer clock;
    clock.start();
    dialog().cmd_Connect_Click();
    EXPECT_LT(clock.elapsed(), 8000);
    EXPECT_EQ(errors.count(), 2);
    EXPECT_TRUE(display->LastErrorString().startsWith("Error: Could not"))
        << display->LastErrorString().toStdString();
    EXPECT_TRUE(dialog().isVisible());

    // Back up, with the right password: the same dialog connects and lists.
    display->SetProperty("FTPPortNo", QString::number(sim->ftpPort()));
    display->SetProperty("HTTPPortNo", QString::number(sim->httpPort()));
    dialog().setServer(sim->host(), sim->user(), sim->password());
    dialog().cmd_Connect_Click();
    ASSERT_TRUE(listed());
    EXPECT_GE(dialog().folderTree()->NodeCount(), 4);
    dialog().cmd_Cancel_Click();
}

TEST_F(OpenSaveDialogTest, ATenThousandFileFolderKeepsTheDialogResponsiveAndCancellable)
{
    const QString folder = fillFolder(sim->localPathOf("UD1:\\HUGE"), 10000);
    showConnected();

    // A 10 ms timer stands for painting: the longest gap between its ticks is how long the event
    // loop was held at a time.
    QElapsedTimer clock;
    qint64 last = 0;
    qint64 longest = 0;
    QTimer ticker;
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        longest = std::max(longest, clock.elapsed() - last);
        last = clock.elapsed();
    });
    clock.start();
    ticker.start(10);
    ASSERT_TRUE(listed("UD1:\\HUGE", 60000));
    ticker.stop();
    const qint64 total = clock.elapsed();
    EXPECT_EQ(dialog().fileList()->itemCount(), 10000);
    EXPECT_LT(longest, 400) << "event loop held " << longest << " ms";
    std::printf("10000 files listed and shown in %lld ms; event loop held at most %lld ms\n", total, longest);

    // Cancelled while the files go into the list: the dialog closes at once, the filling stops.
    ASSERT_TRUE(listed("UD1:\\"));
    dialog().selectRemoteFolder("UD1:\\HUGE");
    ASSERT_TRUE(
        waitFor([&] { return dialog().fileList()->itemCount() > 0 || !dialog().isListing(); }, 60000));
    QSignalSpy loaded(display.get(), &NXRImageDisplay::OnUserLoadedImage);
    dialog().cmd_Cancel_Click();
    EXPECT_FALSE(dialog().isVisible());
    const int shownAtCancel = dialog().fileList()->itemCount();
    QCoreApplication::processEvents();
    waitFor([] { return false; }, 300);
    EXPECT_LT(shownAtCancel, 10000);
    EXPECT_EQ(dialog().fileList()->itemCount(), shownAtCancel);
    EXPECT_FALSE(dialog().isListing());

    // Cancelled while the controller is still answering (the click arrives while the listing
    // waits): the dialog closes at once and the late answer is dropped.
    display->dialogs().msub_LoadImageByDialog();
    bool listingWhenCancelled = false;
    bool closedAtOnce = false;
    QTimer::singleShot(5, [&] {
        listingWhenCancelled = dialog().isListing();
        dialog().cmd_Cancel_Click();
        closedAtOnce = !dialog().isVisible();
    });
    dialog().selectRemoteFolder("UD1:\\HUGE");
    EXPECT_TRUE(listingWhenCancelled);
    EXPECT_TRUE(closedAtOnce);
    ASSERT_TRUE(waitFor([&] { return !dialog().isListing(); }, 60000));
    EXPECT_EQ(dialog().fileList()->itemCount(), 0);
    EXPECT_EQ(loaded.count(), 0);
    QDir(folder).removeRecursively();
}

TEST_F(OpenSaveDialogTest, TheDisplayMayGoWhileTheDialogWaitsForTheController)
{
    const QString folder = fillFolder(sim->localPathOf("UD1:\\GOING"), 3000);
    showConnected();
    QPointer<OpenSaveDialog> d(&dialog());
    bool wasListing = false;
    QTimer::singleShot(5, [&] {
        wasListing = d && d->isListing();
        display.reset();
    });
    d->selectRemoteFolder("UD1:\\GOING"); // returns once the answer came, into a dialog disposed of
    EXPECT_TRUE(wasListing);
    EXPECT_TRUE(d);
    // The main loop deletes what was left for later deletion; the test has none running.
    EXPECT_TRUE(waitFor(
        [&] {
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            return d.isNull();
        },
        5000));
    QDir(folder).removeRecursively();
}

TEST_F(OpenSaveDialogTest, TheLogIsAskedOfThePageShownNewestFirstAndItsPickRaisedAsASelector)
{
    display->SetProperty("EnableLogImageLoad", "True");
    int requests = 0;
    bool answerLater = false;
    QObject::connect(display.get(), &NXRImageDisplay::OnLogListRequested, [&] {
        ++requests;
        auto answer = [&] {
            display->ClearLogDataList();
            display->AddLogImage("2026-11-20", "WELD", "08:00:00", "MCV:\\LOG\\A.PNG");
            display->AddLogImage("2026-11-21", "WELD", "08:00:00", "MCV:\\LOG\\B.PNG");
            display->AddLogImage("2026-11-21", "WELD", "09:30:00", "MCV:\\LOG\\C.PNG");
            display->AddLogImage("2026-11-21", "GLUE|BEAD", "07:00:00", "MCV:\\LOG\\D.PNG");
            if (answerLater)
                display->AddLogImage("2026-11-22", "WELD", "06:00:00", "MCV:\\LOG\\E.PNG");
            display->UpdateLogImageLoad();
        };
        if (answerLater)
            QTimer::singleShot(50, display.get(), answer);
        else
            answer();
    });
    QSignalSpy selected(display.get(), &NXRImageDisplay::OnLogImageSelected);
    display->dialogs().msub_LoadImageByDialog();
    dialog().selectSource(Source::Log);
    EXPECT_EQ(requests, 1);
    QTreeWidget* tree = dialog().logTree();
    ASSERT_EQ(tree->topLevelItemCount(), 2);
    EXPECT_EQ(tree->topLevelItem(0)->text(0), "2026-11-21");
    QTreeWidgetItem* weld = tree->topLevelItem(0)->child(1);
    ASSERT_EQ(weld->text(0), "WELD");
    ASSERT_EQ(weld->childCount(), 2);
    EXPECT_EQ(weld->child(0)->text(0), "09:30:00");
    EXPECT_EQ(display->dialogs().log().imageCount(), 4);

    // A date or process is no pick; a time stamp is.
    tree->setCurrentItem(weld);
    dialog().cmd_OK_Click();
    EXPECT_TRUE(dialog().isVisible());
    tree->setCurrentItem(tree->topLevelItem(0)->child(0)->child(0));
    dialog().cmd_OK_Click();
    ASSERT_TRUE(waitFor([&] { return selected.count() == 1; }));
    EXPECT_FALSE(dialog().isVisible());
    const auto picked = LogSelector::decode(selected[0][0].toString());
    ASSERT_TRUE(picked);
    EXPECT_EQ(*picked, (LogEntry{"2026-11-21", "GLUE|BEAD", "07:00:00", "MCV:\\LOG\\D.PNG"}));

    // Opened again on the log, the dialog asks again; a page that answers later has its log
    // shown when the answer comes.
    answerLater = true;
    display->dialogs().msub_LoadImageByDialog();
    EXPECT_EQ(requests, 2);
    EXPECT_EQ(tree->topLevelItemCount(), 2);
    ASSERT_TRUE(waitFor([&] { return tree->topLevelItemCount() == 3; }));
    EXPECT_EQ(tree->topLevelItem(0)->text(0), "2026-11-22");
    dialog().cmd_Cancel_Click();
    EXPECT_EQ(selected.count(), 1);

    // Without EnableLogImageLoad the log is not offered.
    display->SetProperty("EnableLogImageLoad", "False");
    display->dialogs().msub_LoadImageByDialog();
    EXPECT_FALSE(dialog().findChild<QWidget*>("opt_Log")->isVisible());
    dialog().cmd_Cancel_Click();
}

} // namespace
