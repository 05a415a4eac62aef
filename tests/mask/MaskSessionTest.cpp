// Mask files and the edit session against a display stand-in: loading into the slots, starting,
// accepting and cancelling an edit, the files written and uploaded, what the display is told.

#include "mask/MaskSession.h"
#include "FakeMaskHost.h"

#include "imagedisplay/loading/ImageFile.h"

#include <QFileInfo>

#include <gtest/gtest.h>

using namespace nxr;
using namespace nxr::testing;

namespace {

const QRgb kRed = qRgb(255, 0, 0);
const QRgb kBlack = qRgb(0, 0, 0);

QByteArray png(const QImage& img)
{
    return ImageFile::encode(img, ImageFileFormat::Png);
}

QImage maskImage(int w, int h, QRgb color = kBlack)
{
    QImage m(w, h, QImage::Format_RGB32);
    m.fill(color);
    return m;
}

class MaskSessionTest : public ::testing::Test
{
protected:
    MaskSessionTest() : root(usePrivateTempFolder() + "/controller"), host(root), session(host)
    {
        QImage camera(64, 48, QImage::Format_Grayscale8);
        camera.fill(100);
        host.list.insert(ImageList::kCurrent, camera);
        host.files.put("MC:\\VISION\\DC.PNG", png(maskImage(64, 48)));
        host.files.put("MC:\\VISION\\EMPH", png(maskImage(32, 24))); // no extension, half size
        host.files.put("MC:\\VISION\\EM.JPG", ImageFile::encode(maskImage(64, 48), ImageFileFormat::Jpeg));
        host.files.put("MC:\\VISION\\TEXT.PNG", "not an image");
    }
    QImage onController(const QString& path) { return QImage(host.files.fileFor(path)); }

    QString root;
    FakeMaskHost host;
    MaskSession session;
};

TEST_F(MaskSessionTest, LoadFilesEachKindUnderItsKey)
{
    session.LoadMask("srv", "MC:\\VISION\\DC.PNG", "u", "p", 1);
    session.LoadMask("srv", "MC:\\VISION\\EMPH", "u", "p", 2);
    EXPECT_TRUE(host.errors.isEmpty()) << host.errors.join("\n").toStdString();
    EXPECT_TRUE(host.list.contains(ImageList::kDontCareMask));
    // The emphasis mask takes the camera image's size.
    EXPECT_EQ(host.list.image(ImageList::kEmphasisMask).size(), QSize(64, 48));
    EXPECT_TRUE(session.MaskImageFilename(0).endsWith("/MC/VISION/dontcare_mask.PNG"));
    EXPECT_EQ(session.MaskImageFilename(1), session.MaskImageFilename(0));
    EXPECT_TRUE(session.MaskImageFilename(2).endsWith("/MC/VISION/emphasis_mask.PNG")); // PNG assumed
    EXPECT_TRUE(QFileInfo::exists(session.MaskImageFilename(2)));
    EXPECT_EQ(session.MaskImageFilename(3), "");
    // Repainting is off while loading and back on afterwards.
    ASSERT_FALSE(host.repaintDuringLoad.empty());
    EXPECT_FALSE(host.repaintDuringLoad.front());
    EXPECT_TRUE(host.repaint);

    const int downloads = host.files.downloads;
    session.LoadMask("srv", "MC:\\VISION\\DC.PNG", "u", "p", 3);
    session.LoadMask("srv", "MC:\\VISION\\DC.PNG", "u", "p", -1);
    EXPECT_EQ(host.files.downloads, downloads);
    EXPECT_TRUE(host.errors.isEmpty());
}

TEST_F(MaskSessionTest, LoadAndEditFailuresSayWhy)
{
    session.LoadMask("srv", "MC:\\VISION\\TEXT.PNG", "u", "p", 0);
    session.LoadMask("srv", "MC:\\VISION\\MISSING.PNG", "u", "secret", 2);
    ASSERT_EQ(host.errors.size(), 2);
    EXPECT_EQ(host.errors[0], "Error in LoadMask: file MC:\\VISION\\TEXT.PNG does not contain mask image");
    EXPECT_TRUE(host.errors[1].startsWith("Error in LoadMask: no such file")) << host.errors[1].toStdString();
    EXPECT_FALSE(host.list.contains(ImageList::kDontCareMask));

    session.EditDontCareMask();
    session.EditEmphasisMask();
    ASSERT_EQ(host.errors.size(), 4);
    EXPECT_EQ(host.errors[2], "Error in EditDontCareMask: no mask image loaded.");
    EXPECT_EQ(host.errors[3], "Error in EditEmphasisMask: no mask image loaded.");
    EXPECT_FALSE(session.isEditing());
    EXPECT_EQ(session.EditMaskMode(), KSEEditMask_None);
    EXPECT_FALSE(host.controlsShown);
}

TEST_F(MaskSessionTest, AcceptSavesUploadsAndFilesTheEditedMask)
{
    session.LoadMask("srv", "MC:\\VISION\\DC.PNG", "u", "p", 0);
    host.paletteKeys["SelectedTool"] = QString::number(KSEMaskTool_Rectangle);
    session.EditDontCareMask();
    ASSERT_TRUE(session.isEditing());
    EXPECT_EQ(session.EditMaskMode(), KSEEditMask_DontCare);
    EXPECT_EQ(session.editor().tool(), KSEMaskTool_Rectangle); // read from the palette
    EXPECT_EQ(session.editor().toolSize(), KSEMaskToolSize_Medium);
    EXPECT_TRUE(host.controlsShown);
    EXPECT_EQ(host.viewKeys["ActiveMouseCursor"], "1");
    EXPECT_EQ(host.paletteKeys["CommandEnabled"], "2, False");
    ASSERT_FALSE(host.viewChanges.empty());
    EXPECT_EQ(host.viewChanges.back(), QRect(0, 0, 64, 48)); // the whole view at the start

    session.mousePress({10, 10}, 1, 0);
    session.mouseMove({20, 15});
    session.mouseRelease({20, 15}, 1, 0);
    EXPECT_EQ(host.paletteKeys["CommandEnabled"], "2, True");
    EXPECT_TRUE(host.viewChanges.back().contains(QRect(QPoint(10, 10), QPoint(20, 15))));
    EXPECT_FALSE(host.viewChanges.back().contains(QPoint(30, 30))); // only what the stroke changed

    session.accept();
    EXPECT_TRUE(host.errors.isEmpty()) << host.errors.join("\n").toStdString();
    EXPECT_EQ(host.exits, std::vector<bool>{true});
    EXPECT_FALSE(session.isEditing());
    EXPECT_FALSE(host.controlsShown);
    EXPECT_EQ(host.viewKeys["ActiveMouseCursor"], "3"); // restored
    const QImage uploaded = onController("MC:\\VISION\\DC.PNG");
    ASSERT_FALSE(uploaded.isNull());
    EXPECT_EQ(uploaded.pixel(15, 12), kRed);
    EXPECT_EQ(uploaded.pixel(30, 30), kBlack);
    EXPECT_EQ(host.list.image(ImageList::kDontCareMask).pixel(15, 12), kRed);
}

TEST_F(MaskSessionTest, MaskFilesAreWrittenInTheirFilesFormats)
{
    const struct
    {
        const char* path;
        int type;
        QByteArray magic;
    } cases[] = {{"MC:\\VISION\\EMPH", 2, QByteArray("\x89PNG", 4)}, // no extension: PNG
                 {"MC:\\VISION\\EM.JPG", 2, QByteArray("\xFF\xD8", 2)},
                 {"MC:\\VISION\\DC.PNG", 0, QByteArray("\x89PNG", 4)}};
    for (const auto& c : cases) {
        session.LoadMask("srv", c.path, "u", "p", c.type);
        c.type == 2 ? session.EditEmphasisMask() : session.EditDontCareMask();
        session.onCommandClicked(KSEMaskCommand_MaskAll);
        session.accept();
        QFile file(host.files.fileFor(c.path));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << c.path;
        EXPECT_TRUE(file.readAll().startsWith(c.magic)) << c.path;
        const QImage uploaded = onController(c.path);
        const QRgb painted = uploaded.pixel(5, 5);
        EXPECT_GT(c.type == 2 ? qBlue(painted) : qRed(painted), 200) << c.path;
    }
    EXPECT_TRUE(host.errors.isEmpty()) << host.errors.join("\n").toStdString();
}

TEST_F(MaskSessionTest, CancelKeepsTheMaskAndAFailedUploadKeepsTheEditOpen)
{
    session.LoadMask("srv", "MC:\\VISION\\DC.PNG", "u", "p", 0);
    session.EditDontCareMask();
    session.onCommandClicked(KSEMaskCommand_MaskAll);
    session.cancel();
    EXPECT_EQ(host.exits, std::vector<bool>{false});
    EXPECT_EQ(host.list.image(ImageList::kDontCareMask).pixel(5, 5), kBlack);
    EXPECT_EQ(host.files.uploads, 0);

    session.EditDontCareMask();
    EXPECT_EQ(host.paletteKeys["CommandEnabled"], "2, False"); // a new edit: nothing to undo
    session.onCommandClicked(KSEMaskCommand_MaskAll);
    host.files.failUploads = "connection refused";
    session.accept();
    ASSERT_EQ(host.errors.size(), 1);
    EXPECT_EQ(host.errors[0], "Error in msub_FinishMask: connection refused");
    EXPECT_TRUE(session.isEditing());
    EXPECT_EQ(host.exits.size(), 1u);
    session.onCommandClicked(KSEMaskCommand_Undo);
    EXPECT_EQ(host.paletteKeys["CommandEnabled"], "2, False");
    EXPECT_EQ(session.editor().working().pixel(5, 5), kBlack);
}

TEST_F(MaskSessionTest, ShowMaskSelectsTheTintedMasks)
{
    host.files.put("MC:\\VISION\\RED.PNG", png(maskImage(64, 48, kRed)));
    host.files.put("MC:\\VISION\\BLUE.PNG", png(maskImage(64, 48, qRgb(0, 0, 255))));
    session.LoadMask("srv", "MC:\\VISION\\RED.PNG", "u", "p", 0);
    session.LoadMask("srv", "MC:\\VISION\\BLUE.PNG", "u", "p", 2);
    const struct
    {
        int show;
        QRgb pixel;
    } cases[] = {{0, 0}, {1, qRgb(177, 50, 50)}, {2, qRgb(50, 50, 177)}, {3, qRgb(88, 25, 152)}, {4, 0},
                 {-1, 0}};
    for (const auto& c : cases) {
        const int redraws = host.redraws;
        session.setShowMask(c.show);
        EXPECT_EQ(session.ShowMask(), c.show);
        EXPECT_EQ(host.redraws, redraws + 1);
        const QImage view = session.shownMasksView();
        if (c.pixel == 0)
            EXPECT_TRUE(view.isNull()) << c.show;
        else
            EXPECT_EQ(view.pixel(3, 3), c.pixel) << c.show;
    }
    host.batch = true;
    session.setShowMask(1);
    EXPECT_EQ(host.redraws, 6);
    session.reinitialize();
    EXPECT_TRUE(session.shownMasksView().isNull());
}

} // namespace
