// The display's result graphics against a stand-in display: text and its arrays, clearing and
// erasing, the raster overlay, keyed adders and the crosshair.

#include "FakeHosts.h"

#include "frame/Globals.h"
#include "frame/ScriptableCore.h"
#include "graphics/OverlayGraphics.h"
#include "imagedisplay/loading/ImageFile.h"

#include <QJSEngine>
#include <QPainter>

#include <gtest/gtest.h>

using namespace nxr;
using namespace nxr::testing;

namespace {

class OverlayGraphicsTest : public ::testing::Test
{
protected:
    QObject owner;
    int errors = 0;
    ScriptableCore core{&owner, [this] { ++errors; }};
    FakeGraphicsHost host;
    OverlayGraphics graphics{host, core};

    // A camera picture: a grey ramp.
    static QImage camera(int w, int h)
    {
        QImage img(w, h, QImage::Format_Grayscale8);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                img.scanLine(y)[x] = uchar(40 + (x + y) % 100);
        return img;
    }
    const clsTextItem& text(int index) { return std::get<clsTextItem>(graphics.graphics().Item(index)); }
    // An overlay drawn on black: a green square in its top left quarter.
    static QImage overlayOnBlack(int w, int h)
    {
        QImage img(w, h, QImage::Format_RGB32);
        img.fill(Qt::black);
        QPainter(&img).fillRect(0, 0, w / 2, h / 2, QColor(0, 255, 0));
        return img;
    }
};

TEST_F(OverlayGraphicsTest, TextAndTextArrays)
{
    graphics.DrawText("one", 10, 20, 0xFF);
    EXPECT_EQ(host.repaints, 1);
    ASSERT_EQ(graphics.graphics().Count(), 1);
    EXPECT_EQ(QPointF(text(1).X, text(1).Y), QPointF(10, 20));
    EXPECT_EQ(text(1).Color, 0xFF);

    // Lists from the host's scripts, numbers as text allowed.
    graphics.DrawTextArray(QVariantList{"a", "b"}, QVariantList{1, "2.5"}, QVariantList{3, 4},
                           QVariantList{0x10, 0x20});
    EXPECT_EQ(errors, 0);
    EXPECT_EQ(host.repaints, 2);
    ASSERT_EQ(graphics.graphics().Count(), 3);
    EXPECT_EQ(text(3).X, 2.5);
    EXPECT_EQ(text(3).Color, 0x20);

    // Script arrays; a shorter colour array skips the texts past its end and says so once.
    QJSEngine engine;
    const auto js = [&](const char* source) { return QVariant::fromValue(engine.evaluate(source)); };
    graphics.DrawTextArray(js("['p', 'q', 'r']"), js("[1, 2, 3]"), js("[4, 5, 6]"), js("[7, 8]"));
    EXPECT_EQ(errors, 1);
    EXPECT_EQ(core.lastError(),
              "Error in DrawTextArray: 1 of 3 texts skipped: no X, Y or colour of that index, or more than "
              "200000 graphics");
    ASSERT_EQ(graphics.graphics().Count(), 5);
    EXPECT_EQ(text(5).Text, "q");
    EXPECT_EQ(text(5).Y, 5);

    // Something that is no array adds nothing.
    graphics.DrawTextArray(QVariant("text"), js("[1]"), js("[1]"), js("[1]"));
    EXPECT_EQ(errors, 2);
    EXPECT_EQ(core.lastError(), "Error in DrawTextArray: Type mismatch");
    graphics.DrawTextArray(js("['x']"), js("['not a number']"), js("[1]"), js("[1]"));
    EXPECT_EQ(errors, 3);
    EXPECT_EQ(graphics.graphics().Count(), 5);
}

TEST_F(OverlayGraphicsTest, APageCannotAddWithoutBound)
{
    const int n = OverlayGraphics::kMaxPageItems + 5;
    const QVariantList texts(n, "t"), numbers(n, 1);
    graphics.DrawTextArray(texts, numbers, numbers, numbers);
    EXPECT_EQ(graphics.graphics().Count(), OverlayGraphics::kMaxPageItems);
    EXPECT_TRUE(core.lastError().startsWith("Error in DrawTextArray: 5 of 200005 texts skipped"));
    graphics.DrawLine(0, 0, 1, 1, 0);
    graphics.DrawText("more", 1, 1, 0);
    EXPECT_EQ(errors, 3);
    EXPECT_EQ(graphics.graphics().Count(), OverlayGraphics::kMaxPageItems);
}

TEST_F(OverlayGraphicsTest, ClearDoesNotRepaintAndEraseWaitsForEditing)
{
    graphics.DrawText("a", 1, 1, 0);
    graphics.ClearGraphics();
    EXPECT_EQ(graphics.graphics().Count(), 0);
    EXPECT_EQ(host.repaints, 1);

    graphics.DrawText("b", 1, 1, 0);
    host.editing = true;
    graphics.EraseOverlay();
    EXPECT_EQ(graphics.graphics().Count(), 1);
    EXPECT_EQ(host.repaints, 2);
    host.editing = false;
    graphics.EraseOverlay();
    EXPECT_EQ(graphics.graphics().Count(), 0);
    EXPECT_EQ(host.repaints, 3);
    EXPECT_EQ(errors, 0);
}

TEST_F(OverlayGraphicsTest, OverlayOfTheSameSizeAndOfAnother)
{
    host.image = camera(64, 48);
    struct Case
    {
        const char* path;
        QSize size;
        ImageFileFormat format;
        const char* local;
    };
    const Case cases[] = {{"MC:\\VISION\\result.png", {64, 48}, ImageFileFormat::Png, "/overlay.PNG"},
                          {"MC:\\VISION\\result.bmp", {32, 24}, ImageFileFormat::Bmp, "/overlay.BMP"},
                          {"MC:\\VISION\\result", {128, 96}, ImageFileFormat::Png, "/overlay.PNG"}};
    for (const auto& k : cases) {
        SCOPED_TRACE(k.path);
        host.controllerFiles[k.path] =
            ImageFile::encode(overlayOnBlack(k.size.width(), k.size.height()), k.format);
        const int repaints = host.repaints;
        graphics.LoadOverlay("robot", k.path, "user", "pw");
        EXPECT_EQ(errors, 0) << core.lastError().toStdString();
        EXPECT_EQ(host.copiedTo.last(), Globals::storageFolder() + k.local);
        EXPECT_TRUE(graphics.ShowOverlay());
        EXPECT_EQ(host.repaints, repaints + 1);
        ASSERT_EQ(host.composite.size(), QSize(64, 48));
        // Over the image at its pixel size: green in the top left quarter, the camera elsewhere.
        EXPECT_EQ(host.composite.pixel(5, 5), qRgb(0, 255, 0));
        EXPECT_EQ(host.composite.pixel(30, 22), qRgb(0, 255, 0));
        EXPECT_EQ(host.composite.pixel(33, 25), host.image.pixel(33, 25));
        EXPECT_EQ(host.composite.pixel(60, 5), host.image.pixel(60, 5));
        EXPECT_EQ(host.image, camera(64, 48)); // the camera image itself is untouched
    }

    graphics.setShowOverlay(false);
    EXPECT_TRUE(host.composite.isNull()); // the plain image again
    graphics.setShowOverlay(true);
    EXPECT_EQ(host.composite.pixel(5, 5), qRgb(0, 255, 0));

    // A new camera image of another size gets the overlay laid over it again.
    host.image = camera(100, 80);
    graphics.imageChanged();
    EXPECT_EQ(host.composite.size(), QSize(100, 80));
    EXPECT_EQ(host.composite.pixel(60, 60), host.image.pixel(60, 60));
}

TEST_F(OverlayGraphicsTest, OverlayWithAlphaIsLaidOverByItsAlpha)
{
    host.image = camera(20, 10);
    QImage top(20, 10, QImage::Format_ARGB32);
    top.fill(Qt::transparent);
    top.setPixel(3, 3, qRgba(0, 0, 0, 255)); // opaque black stays black
    top.setPixel(4, 4, qRgba(255, 0, 0, 255));
    host.controllerFiles["MC:\\o.png"] = ImageFile::encode(top, ImageFileFormat::Png);
    graphics.LoadOverlay("robot", "MC:\\o.png", "", "");
    EXPECT_EQ(host.composite.pixel(3, 3), qRgb(0, 0, 0));
    EXPECT_EQ(host.composite.pixel(4, 4), qRgb(255, 0, 0));
    EXPECT_EQ(host.composite.pixel(10, 5), host.image.pixel(10, 5));
}

TEST_F(OverlayGraphicsTest, FailedOverlayCopyOrUnreadableFile)
{
    host.image = camera(20, 10);
    host.controllerFiles["MC:\\good.png"] = ImageFile::encode(overlayOnBlack(20, 10), ImageFileFormat::Png);
    graphics.LoadOverlay("robot", "MC:\\good.png", "", "");
    const QImage shown = host.composite;
    const int repaints = host.repaints;

    graphics.LoadOverlay("robot", "MC:\\missing.png", "operator", "s3cret");
    EXPECT_EQ(errors, 1);
    EXPECT_EQ(core.lastError(), "Error in LoadOverlay: mfbln_CopyFileFromController failed");
    EXPECT_EQ(host.composite, shown);
    EXPECT_EQ(host.repaints, repaints);
    EXPECT_TRUE(graphics.ShowOverlay());

    host.controllerFiles["MC:\\bad.png"] = QByteArray("not an image");
    graphics.LoadOverlay("robot", "MC:\\bad.png", "", "");
    EXPECT_EQ(errors, 2);
    EXPECT_TRUE(core.lastError().startsWith("Error in LoadOverlay: ")) << core.lastError().toStdString();
    EXPECT_EQ(host.composite, shown);
}

TEST_F(OverlayGraphicsTest, CombinedLoadFetchesTheOverlayOnlyAfterTheImage)
{
    host.imageFiles["MC:\\img.png"] = camera(40, 30);
    host.controllerFiles["MC:\\ovl.png"] = ImageFile::encode(overlayOnBlack(40, 30), ImageFileFormat::Png);
    graphics.LoadCombinedImageAndOverlay("robot", "MC:\\img.png", "MC:\\ovl.png", "", "");
    EXPECT_EQ(host.loadedImages, QStringList{"MC:\\img.png"});
    EXPECT_EQ(host.composite.size(), QSize(40, 30));
    EXPECT_EQ(host.composite.pixel(2, 2), qRgb(0, 255, 0));

    host.copiedTo.clear();
    graphics.LoadCombinedImageAndOverlay("robot", "MC:\\none.png", "MC:\\ovl.png", "", "");
    EXPECT_TRUE(host.copiedTo.isEmpty());
}

TEST_F(OverlayGraphicsTest, KeyedAddersReplaceAndLeaveTheMovableKeysAlone)
{
    graphics.DrawLine(0, 0, 10, 10, 1, "edge");
    graphics.DrawBox(1, 2, 3, 4, 5, 2);
    graphics.DrawLine(5, 5, 6, 6, 3, "edge");
    ASSERT_EQ(graphics.graphics().Count(), 2);
    EXPECT_EQ(std::get<clsLineItem>(graphics.graphics().Item("edge")).X1, 5);
    EXPECT_EQ(graphics.graphics().KeyAt(2), "edge");
    graphics.DrawArrow(0, 0, 1, 1, 4, 8, "arrow");
    EXPECT_EQ(std::get<clsLineItem>(graphics.graphics().Item("arrow")).Arrowed, 8);
    graphics.DrawCircle(1, 1, 9, 5, "ring");
    graphics.DrawCross(3, 3, 45, 6);
    EXPECT_EQ(graphics.graphics().Count(), 5);
    EXPECT_EQ(host.repaints, 6);

    graphics.graphics().AddBox(0, 0, 5, 5, 0, 0, "MovableWindow");
    graphics.DrawBox(9, 9, 9, 9, 0, 0, "MovableWindow");
    EXPECT_EQ(errors, 1);
    EXPECT_EQ(std::get<clsBoxItem>(graphics.graphics().Item("MovableWindow")).Left, 0);
    graphics.RemoveGraphic("MovableWindow");
    graphics.RemoveGraphic("ring");
    graphics.RemoveGraphic("nothing");
    EXPECT_TRUE(graphics.graphics().Contains("MovableWindow"));
    EXPECT_FALSE(graphics.graphics().Contains("ring"));
    EXPECT_EQ(errors, 1);
}

TEST_F(OverlayGraphicsTest, CrosshairFollowsTheImageAndPaintsAfterTheGraphics)
{
    graphics.setCrosshairOn(true);
    EXPECT_EQ(std::get<clsCircleItem>(graphics.crosshair().Item(1)).X, 319.5);
    host.image = camera(200, 100);
    graphics.setCrosshairOn(true); // rebuilt for the image: its lines cross at (100, 50) below

    graphics.DrawLine(0, 50, 200, 50, 0x00FF00);
    QImage img(200, 100, QImage::Format_RGB32);
    const auto paint = [&](const QString& edited = QString()) {
        img.fill(Qt::white);
        QPainter p(&img);
        graphics.paint(p, ScreenMapping{1.0, {0, 0}, 1.0, QRectF(0, 0, 200, 100)}, img.rect(), edited);
    };
    paint();
    EXPECT_EQ(img.pixel(20, 50), qRgb(0, 0, 255)); // the crosshair is drawn last, over the line
    EXPECT_EQ(img.pixel(100, 10), qRgb(0, 0, 255));

    // The shape being edited is left to its editor.
    graphics.graphics().AddBox(10, 10, 30, 30, 0, 0x00FF00, "MovableWindow");
    paint("MovableWindow");
    EXPECT_EQ(img.pixel(25, 10), qRgb(255, 255, 255));
    graphics.graphics().RemoveKey("MovableWindow");

    graphics.setCrosshairOn(false);
    paint();
    EXPECT_EQ(img.pixel(20, 50), qRgb(0, 255, 0));
    EXPECT_EQ(img.pixel(100, 10), qRgb(255, 255, 255));
}

} // namespace
