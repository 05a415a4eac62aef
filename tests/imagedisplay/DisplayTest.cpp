// The image display as a page sees it: keys, tool-bar clicks, mouse zoom, wheel and pan, layout.

#include "frame/Globals.h"
#include "imagedisplay/ImageViewport.h"
#include "imagedisplay/MouseDispatcher.h"
#include "imagedisplay/NXRImageDisplay.h"
#include "imagedisplay/NXRStatusBar.h"
#include "imagedisplay/NXRViewButtons.h"
#include "imagedisplay/RasterView.h"
#include "imagedisplay/ViewMaths.h"
#include "imagedisplay/edit/EditSession.h"
#include "imagedisplay/edit/Interaction.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace {

QImage testImage(int w, int h, QImage::Format format = QImage::Format_RGB32)
{
    QImage img(w, h, format);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            if (format == QImage::Format_Grayscale8)
                img.scanLine(y)[x] = uchar((x + 3 * y) % 256);
            else
                img.setPixel(x, y, qRgb(x % 256, y % 256, (x + y) % 256));
        }
    return img;
}

// An editor that only counts how its edits end.
struct CountingEditor : nxr::Editor
{
    void finish(bool accepted) override { (accepted ? accepts : cancels)++; }
    int accepts = 0;
    int cancels = 0;
};

class Display : public ::testing::Test
{
protected:
    void SetUp() override
    {
        display = std::make_unique<NXRImageDisplay>();
        display->resize(800, 600);
        display->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(display.get()));
        errors = std::make_unique<QSignalSpy>(display.get(), &NXRImageDisplay::OnError);
        pageClicks = std::make_unique<QSignalSpy>(display.get(), &NXRImageDisplay::OnButtonClicked);
        zooms = std::make_unique<QSignalSpy>(display.get(), &NXRImageDisplay::OnZoomChanged);
    }

    nxr::RasterView* lead() { return display->leadView(); }
    const nxr::ViewMaths& maths() { return display->viewport().maths(); }
    QAbstractButton* toolButton(int b) { return display->viewButtons()->buttonControl(b); }
    void click(int button) { QTest::mouseClick(toolButton(button), Qt::LeftButton); }
    // The names the page heard in OnButtonClicked, in order.
    QStringList pageNames()
    {
        QStringList names;
        for (const QList<QVariant>& args : *pageClicks)
            names << args.at(0).toString();
        return names;
    }
    // A 2592 x 1944 image at the given zoom and scroll position.
    void showBig(float zoom, QPoint scroll = QPoint())
    {
        display->showImage(testImage(2592, 1944));
        display->setZoom(zoom);
        display->viewport().setScrollPosition(scroll);
    }
    // A point of the image view in widget (logical) coordinates, from device pixels.
    QPoint logical(QPointF device) { return (device / lead()->deviceRatio()).toPoint(); }

    void wheel(QPoint at, int notches)
    {
        QWheelEvent e(at, lead()->mapToGlobal(at), QPoint(), QPoint(0, 120 * notches), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(lead(), &e);
    }
    void mouse(QEvent::Type type, QPoint at, Qt::MouseButton button, Qt::MouseButtons held)
    {
        QMouseEvent e(type, at, lead()->mapToGlobal(at), button, held, Qt::NoModifier);
        QApplication::sendEvent(lead(), &e);
    }

    CountingEditor editor; // outlives the display, as the display's parts do
    std::unique_ptr<NXRImageDisplay> display;
    std::unique_ptr<QSignalSpy> errors;
    std::unique_ptr<QSignalSpy> pageClicks;
    std::unique_ptr<QSignalSpy> zooms;
};

// ---- keys ----

TEST_F(Display, KeysOfLaterFeaturesAreAcceptedAndBadKeysOrValuesRaiseOneErrorEach)
{
    display->showImage(testImage(640, 480));
    for (auto [key, value] : {std::pair{"FTPPortNo", "2121"},
                              {"HTTPPortNo", "8080"},
                              {"EnableLogImageLoad", "True"},
                              {"MinPairWidth", "2.5"},
                              {"MaxPairWidth", "40"},
                              {"AutoZoom", "whatever"},
                              {"RefreshDisplay", ""},
                              {"FontName", "DejaVu Sans"},
                              {"FontSize", "11"},
                              {"Zoom", "150"},
                              {"LiveMode", "True"},
                              {"LiveMode", "False"}})
        display->SetProperty(key, value);
    EXPECT_EQ(errors->count(), 0) << display->LastErrorString().toStdString();
    // Each bad key or value: its own text, one OnError, and the state stays. No value: GetProperty.
    // Unknown keys in general are the protocol's, checked in the frame tests.
    const std::tuple<const char*, const char*, const char*> bad[] = {
        {"FTPPortNo", "ftp", "Error in SetProperty(FTPPortNo): Type mismatch"},
        {"LiveMode", "perhaps", "Error in SetProperty(LiveMode): Type mismatch"},
        {"Zoom", "-4", "Error in SetProperty(Zoom): Invalid property value"},
        {"FTPPortNo", nullptr, "Error: unknown property (FTPPortNo)"}, // write-only
    };
    int expected = 0;
    for (const auto& [key, value, text] : bad) {
        if (value)
            display->SetProperty(key, value);
        else
            EXPECT_EQ(display->GetProperty(key), "");
        EXPECT_EQ(display->LastErrorString(), text);
        EXPECT_EQ(errors->count(), ++expected) << key;
    }
    EXPECT_EQ(display->GetProperty("Zoom"), "150");
    EXPECT_EQ(display->GetProperty("LiveMode"), "False");
}

TEST_F(Display, ZoomKeyBypassesTheClampButTheZoomPropertyDoesNot)
{
    display->showImage(testImage(640, 480));
    display->SetProperty("Zoom", "0.5");
    EXPECT_EQ(display->GetProperty("Zoom"), "0.5");
    EXPECT_EQ(display->Zoom(), 0.5f);
    display->setZoom(0.5f);
    EXPECT_EQ(display->Zoom(), 1.0f);
    display->setZoom(250.0f);
    EXPECT_EQ(display->GetProperty("Zoom"), "250");
    EXPECT_EQ(display->statusBar()->zoomLabelText(), "250%");
    EXPECT_EQ(zooms->count(), 1); // only the image's fit was a user-visible zoom event
}

TEST_F(Display, ToolbarKeysReachTheToolBar)
{
    display->SetProperty("LaserButtonEnabled", "False");
    EXPECT_FALSE(toolButton(vvb_LaserOn)->isEnabled());
    display->SetProperty("OpenButtonEnabled", "False");
    EXPECT_FALSE(toolButton(vvb_Open)->isEnabled());
    display->setOpenSaveButtonsVisible(false);
    EXPECT_TRUE(toolButton(vvb_Save)->isHidden());
    display->setImageCaptureButtonsVisible(false);
    EXPECT_TRUE(toolButton(vvb_Acquire)->isHidden());
    display->setHourglassCursor(true);
    EXPECT_EQ(display->viewButtons()->cursor().shape(), Qt::WaitCursor);
    EXPECT_EQ(errors->count(), 0);
}

TEST_F(Display, ColorModeOffTurnsTheImageGrey)
{
    display->showImage(testImage(64, 48));
    display->SetProperty("ColorMode", "False");
    EXPECT_EQ(display->GetProperty("ColorMode"), "False");
    EXPECT_EQ(lead()->bitmap().format(), QImage::Format_Grayscale8);
    display->showImage(testImage(64, 48)); // later images too
    EXPECT_EQ(lead()->bitmap().format(), QImage::Format_Grayscale8);
}

TEST_F(Display, CaptionAndOverrideLabel)
{
    QSignalSpy changed(display.get(), &NXRImageDisplay::CaptionChanged);
    display->setCaption("Camera 1");
    display->setOverrideImageLabelCaption("Override");
    auto* label = display->findChild<QLabel*>("lbl_OverrideImage");
    EXPECT_EQ(label->text(), "Camera 1 - Override");
    display->setCaption("");
    EXPECT_EQ(label->text(), "Override");
    EXPECT_EQ(changed.count(), 2);
}

// ---- showing images ----

TEST_F(Display, LoadLocalImageShowsAFileAndReportsBadOnes)
{
    display->LoadLocalImage(QStringLiteral(NXR_TEST_DATA_DIR "/sample-part.png"));
    EXPECT_EQ(errors->count(), 0) << display->LastErrorString().toStdString();
    EXPECT_EQ(display->ImageWidth(), 1280);
    EXPECT_EQ(display->GetProperty("OriginalFilename"), "sample-part.png");
    EXPECT_EQ(display->tempLeadView()->bitmapWidth(), 1280);

    QTemporaryDir dir;
    const QString notAnImage = dir.filePath("notes.png");
    QFile f(notAnImage);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("not an image");
    f.close();
    display->LoadLocalImage(notAnImage);
    EXPECT_EQ(display->LastErrorString(),
              "Error in LoadLocalImage: file " + notAnImage + " does not contain image");
    display->LoadLocalImage(dir.filePath("missing.png"));
    EXPECT_EQ(display->LastErrorString(),
              "Error in LoadLocalImage: file " + dir.filePath("missing.png") + " does not exist");
    EXPECT_EQ(errors->count(), 2);
    EXPECT_EQ(display->ImageWidth(), 1280); // the shown image stays
}

// ---- tool bar clicks ----

TEST_F(Display, MouseModeAndOpenClicksRaiseNoPageEvent)
{
    display->showImage(testImage(640, 480));
    zooms->clear();
    for (auto [button, mode] :
         {std::pair{vvb_MouseModePan, 2}, {vvb_MouseModeZoomOut, 4}, {vvb_MouseModePointer, 1}}) {
        click(button);
        EXPECT_EQ(display->mouseMode(), mode);
    }
    click(vvb_Open);
    EXPECT_EQ(pageClicks->count(), 0);
    EXPECT_EQ(zooms->count(), 4); // every action ends with OnZoomChanged
    click(vvb_Save);
    click(vvb_CrosshairOn);
    click(vvb_CrosshairOn);
    EXPECT_EQ(pageNames(), QStringList({"Save", "CrosshairOn", "CrosshairOff"}));
}

TEST_F(Display, DefaultZoomAndFitPassOutsideEditingWhileAMaskIsEditedFitIsSilent)
{
    showBig(400);
    click(vvb_DefaultZoom);
    EXPECT_EQ(display->Zoom(), 100.0f);
    // centred on the image centre
    const QPointF centre =
        maths().toImage(QPointF(maths().visibleSize().width() / 2.0, maths().visibleSize().height() / 2.0));
    EXPECT_NEAR(centre.x(), 1296, 1.0);
    EXPECT_NEAR(centre.y(), 972, 1.0);
    click(vvb_FitImage);
    // The whole image shows without scroll bars and fills at least half the view one way.
    EXPECT_EQ(maths().visibleSourceRect(), QRectF(0, 0, 2592, 1944));
    EXPECT_FALSE(display->viewport().horizontalBar()->isVisible() ||
                 display->viewport().verticalBar()->isVisible());
    EXPECT_GT(std::max(maths().scaledSize().width() / maths().visibleSize().width(),
                       maths().scaledSize().height() / maths().visibleSize().height()),
              0.5);
    EXPECT_EQ(pageNames(), QStringList({"ZoomDefault", "ZoomFitImage"}));

    pageClicks->clear();
    display->setZoom(400);
    display->editSession().begin(nxr::EditKind::Mask, editor, 1);
    EXPECT_EQ(display->GetProperty("EditingMask"), "True");
    EXPECT_TRUE(display->findChild<QFrame*>("fra_OKCancel")->isVisible());
    zooms->clear();
    click(vvb_FitImage);
    EXPECT_LT(display->Zoom(), 100.0f);
    EXPECT_EQ(zooms->count(), 1);
    EXPECT_EQ(zooms->at(0).at(0).toFloat(), display->Zoom());
    EXPECT_EQ(display->statusBar()->zoomLabelText(), NXRStatusBar::zoomText(display->Zoom()));
    click(vvb_Save);
    click(vvb_LaserOn); // the laser still passes
    EXPECT_EQ(pageNames(), QStringList({"LaserOn"}));
}

// ---- mouse ----

TEST_F(Display, ZoomModeClicksDoubleAndHalveAtTheClickedPoint)
{
    showBig(100, QPoint(900, 700));
    click(vvb_MouseModeZoomIn);
    zooms->clear();
    const QPointF device(300, 200);
    const QPointF target = maths().toImage(device);
    QTest::mouseClick(lead(), Qt::LeftButton, {}, logical(device));
    EXPECT_EQ(display->Zoom(), 200.0f);
    const QSize vis = maths().visibleSize();
    const QPointF centre = maths().toScreen(target);
    EXPECT_NEAR(centre.x(), vis.width() / 2.0, 1.0);
    EXPECT_NEAR(centre.y(), vis.height() / 2.0, 1.0);
    QTest::mouseClick(lead(), Qt::RightButton, {}, logical(device));
    EXPECT_EQ(display->Zoom(), 100.0f);
    click(vvb_MouseModeZoomOut);
    zooms->clear();
    QTest::mouseClick(lead(), Qt::LeftButton, {}, logical(device));
    EXPECT_EQ(display->Zoom(), 50.0f);
    EXPECT_EQ(zooms->count(), 1);
    EXPECT_EQ(zooms->at(0).at(0).toFloat(), 50.0f);
    EXPECT_EQ(display->statusBar()->zoomLabelText(), "50%");
    EXPECT_FALSE(display->busy());
    EXPECT_EQ(pageClicks->count(), 0);
}

TEST_F(Display, WheelZoomKeepsThePointUnderTheCursor)
{
    // The anchoring itself is the view maths' (checked there over image shapes); here the wheel's
    // widget point reaches it in device pixels.
    showBig(100);
    display->viewport().setScrollPosition(maths().scrollMaximum() / 2);
    const QPoint at(331, 217);
    const QPointF device = QPointF(at) * lead()->deviceRatio();
    const QPointF before = maths().toImage(device);
    zooms->clear();
    for (auto [notches, zoom] : {std::pair{1, 200.0f}, {2, 400.0f}, {-2, 200.0f}}) {
        wheel(at, notches);
        EXPECT_EQ(display->Zoom(), zoom);
        const QPointF now = maths().toScreen(before);
        EXPECT_NEAR(now.x(), device.x(), 0.5) << notches;
        EXPECT_NEAR(now.y(), device.y(), 0.5) << notches;
    }
    EXPECT_EQ(zooms->count(), 3);
    // At the zoom limits the wheel changes nothing and raises nothing.
    zooms->clear();
    for (auto [zoom, notches] : {std::pair{1e9f, 1}, {1.0f, -1}}) {
        display->setZoom(zoom);
        display->viewport().setScrollPosition(maths().scrollMaximum() / 3);
        const QPoint origin = maths().origin();
        const float limit = display->Zoom();
        wheel(QPoint(100, 100), notches);
        EXPECT_EQ(maths().origin(), origin) << notches;
        EXPECT_EQ(display->Zoom(), limit);
    }
    EXPECT_EQ(zooms->count(), 0);
}

TEST_F(Display, PanDragAndScrollBarsMoveTheView)
{
    showBig(100, QPoint(500, 400));
    click(vvb_MouseModePan);
    mouse(QEvent::MouseButtonPress, QPoint(200, 200), Qt::LeftButton, Qt::LeftButton);
    mouse(QEvent::MouseMove, QPoint(180, 190), Qt::NoButton, Qt::LeftButton);
    mouse(QEvent::MouseMove, QPoint(150, 170), Qt::NoButton, Qt::LeftButton);
    mouse(QEvent::MouseButtonRelease, QPoint(150, 170), Qt::LeftButton, Qt::NoButton);
    const QPoint moved = (QPointF(50, 30) * lead()->deviceRatio()).toPoint();
    EXPECT_EQ(maths().scrollPosition(), QPoint(500, 400) + moved);
    EXPECT_EQ(display->viewport().horizontalBar()->value(), 500 + moved.x());
    // Moving without the button does not pan.
    mouse(QEvent::MouseMove, QPoint(10, 10), Qt::NoButton, Qt::NoButton);
    EXPECT_EQ(maths().scrollPosition(), QPoint(500, 400) + moved);
    // The bars move the view too.
    QScrollBar* v = display->viewport().verticalBar();
    ASSERT_TRUE(v->isVisible());
    EXPECT_EQ(v->maximum(), maths().scrollMaximum().y());
    v->setValue(321);
    EXPECT_EQ(maths().scrollPosition().y(), 321);
    EXPECT_EQ(lead()->origin().y(), -321);
}

TEST_F(Display, PixelUnderTheCursorInTheStatusBar)
{
    QImage img(200, 100, QImage::Format_RGB32);
    img.fill(qRgb(1, 2, 3));
    img.setPixel(37, 21, qRgb(200, 100, 50));
    display->showImage(img, false);
    display->setZoom(400);
    display->viewport().setScrollPosition(QPoint(0, 0));
    const QPointF device = maths().toScreen(QPointF(37.5, 21.5));
    mouse(QEvent::MouseMove, logical(device), Qt::NoButton, Qt::NoButton);
    EXPECT_EQ(display->statusBar()->pixelLabelText(), "x=37, y=21: R 200 G 100 B 50");
    QImage grey(200, 100, QImage::Format_Grayscale8);
    grey.fill(77);
    display->showImage(grey);
    mouse(QEvent::MouseMove, logical(device), Qt::NoButton, Qt::NoButton);
    EXPECT_EQ(display->statusBar()->pixelLabelText(), "x=37, y=21: 77");
}

TEST_F(Display, AtHundredPercentOneImagePixelCoversOneDevicePixel)
{
    QImage checker(64, 48, QImage::Format_Grayscale8);
    for (int y = 0; y < 48; ++y)
        for (int x = 0; x < 64; ++x)
            checker.scanLine(y)[x] = ((x + y) % 2) ? 255 : 0;
    display->showImage(checker, false);
    display->setZoom(100);
    lead()->repaint();
    const QImage shot = lead()->grab().toImage();
    EXPECT_EQ(shot.size(), maths().visibleSize()); // the view's device pixels
    const QPoint o = maths().origin();
    for (int y = 0; y < 48; y += 7)
        for (int x = 0; x < 64; x += 5)
            ASSERT_EQ(qGray(shot.pixel(o.x() + x, o.y() + y)), ((x + y) % 2) ? 255 : 0) << x << "," << y;
    EXPECT_NE(qGray(shot.pixel(o.x() - 1, o.y())), 255); // background beside the image
}

// ---- layout and methods ----

TEST_F(Display, ResizeKeepsTheMinimumSize)
{
    display->Resize(100, 20);
    EXPECT_EQ(errors->count(), 0);
    const int minWidth = 2 * std::max(1, nxr::Globals::twipsToPixels(15)) + nxr::Globals::twipsToPixels(4400);
    EXPECT_EQ(display->width(), minWidth);
    EXPECT_GE(display->height(), display->viewButtons()->height());
    EXPECT_EQ(display->GetProperty("Width"), QString::number(minWidth));
    display->Resize(640, 400);
    EXPECT_EQ(display->statusBar()->geometry().bottom(), 400 - 2); // the parts follow the size
    display->Resize(-1, 10);
    EXPECT_EQ(display->LastErrorString(), "Error in Resize(-1, 10): Invalid procedure call or argument");
    EXPECT_EQ(display->width(), 640);
}

TEST_F(Display, ZoomToFillsTheViewportWithTheRectangle)
{
    display->showImage(testImage(2592, 1944));
    zooms->clear();
    display->ZoomTo(1000, 1200, 100, 100);
    const float zoom = display->Zoom();
    EXPECT_GE(zoom, 300.0f);
    const QRectF shown = maths().visibleSourceRect();
    EXPECT_TRUE(shown.contains(QRectF(1200, 1000, 100, 100))) << shown.x() << "," << shown.y();
    EXPECT_EQ(zooms->count(), 1);
}

// ---- the raster view on its own ----

class PaintCounter : public QObject
{
public:
    int paints = 0;
    bool eventFilter(QObject*, QEvent* e) override
    {
        if (e->type() == QEvent::Paint)
            ++paints;
        return false;
    }
};

TEST(RasterViewTest, AutoRepaintOffHoldsRepaintsUntilSwitchedOn)
{
    nxr::RasterView view;
    view.resize(200, 150);
    view.setBitmap(testImage(100, 80));
    view.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
    PaintCounter counter;
    view.installEventFilter(&counter);
    QTest::qWait(20);
    counter.paints = 0;
    view.setAutoRepaint(false);
    view.setView(300.0f, QPoint(-10, -10));
    view.setBitmap(testImage(120, 90));
    QTest::qWait(50);
    EXPECT_EQ(counter.paints, 0);
    view.setAutoRepaint(true);
    QTest::qWait(50);
    EXPECT_GE(counter.paints, 1);
    const int before = counter.paints;
    view.setOrigin(QPoint(-20, -20));
    QTest::qWait(50);
    EXPECT_GT(counter.paints, before);
}

} // namespace
