// The display's editing frame through the real display: layers over the image, the active
// interaction and its fallback to pan and zoom, single and double clicks, keys, the one edit
// session with its OK/Cancel bar, pointer shapes and parts that plug in with their own keys.
// Runs at scale 1 and, as imagedisplay_display_hidpi_test, at 1.5.

#include "frame/PropertyTable.h"
#include "imagedisplay/ImageViewport.h"
#include "imagedisplay/MouseDispatcher.h"
#include "imagedisplay/NXRImageDisplay.h"
#include "imagedisplay/NXRViewButtons.h"
#include "imagedisplay/RasterView.h"
#include "imagedisplay/ViewMaths.h"
#include "imagedisplay/edit/DisplayParts.h"
#include "imagedisplay/edit/EditHost.h"
#include "imagedisplay/edit/EditSession.h"
#include "imagedisplay/edit/Interaction.h"
#include "imagedisplay/edit/PaintLayer.h"

#include <QApplication>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

QImage flatImage(int w, int h, QRgb colour)
{
    QImage img(w, h, QImage::Format_RGB32);
    img.fill(colour);
    return img;
}

// Fills a square of `side` screen pixels with its top left corner on an image point, and notes
// each paint.
class SquareLayer : public nxr::PaintLayer
{
public:
    SquareLayer(std::vector<int>& log, int id, QColor colour, QPointF at, double side)
        : m_log(log), m_id(id), m_colour(colour), m_at(at), m_side(side)
    {}
    void paint(QPainter& painter, const nxr::ViewMaths& maths, const QRect& dirty) override
    {
        m_log.push_back(m_id);
        dirtyRects.push_back(dirty);
        const double side = m_side * screenPixel(painter);
        painter.fillRect(QRectF(maths.toScreen(m_at), QSizeF(side, side)), m_colour);
    }
    std::vector<QRect> dirtyRects;

private:
    std::vector<int>& m_log;
    int m_id;
    QColor m_colour;
    QPointF m_at;
    double m_side;
};

// Takes the mouse in pointer mode only (as movable shapes do) or always (as mask painting does),
// and notes what it saw.
class RecordingInteraction : public nxr::Interaction
{
public:
    bool takeAll = false;
    std::vector<QString> seen;
    std::vector<QPointF> images;
    std::vector<int> keys;
    double tolerance = 0;
    int cancels = 0;
    std::optional<Qt::CursorShape> shape;

    bool wanted(const nxr::PointerEvent& e) const { return takeAll || e.mouseMode == 1; }
    bool note(const QString& what, const nxr::PointerEvent& e)
    {
        if (!wanted(e))
            return false;
        seen.push_back(what);
        images.push_back(e.image);
        return true;
    }
    bool press(const nxr::PointerEvent& e) override { return note("press", e); }
    bool move(const nxr::PointerEvent& e) override { return note("move", e); }
    bool release(const nxr::PointerEvent& e) override { return note("release", e); }
    void click(const nxr::PointerEvent& e) override { note("click", e); }
    bool doubleClick(const nxr::PointerEvent& e) override { return note("double", e); }
    bool key(int k, Qt::KeyboardModifiers) override
    {
        keys.push_back(k);
        return k == Qt::Key_Delete;
    }
    std::optional<Qt::CursorShape> cursorAt(const nxr::PointerEvent&) override { return shape; }
    void setHitTolerance(double imagePixels) override { tolerance = imagePixels; }
    void cancel() override { ++cancels; }
    int count(const QString& what) const { return int(std::count(seen.begin(), seen.end(), what)); }
};

class TestEditor : public nxr::Editor
{
public:
    explicit TestEditor(nxr::EditHost* host = nullptr) : m_host(host) {}
    nxr::Interaction* interaction() override { return &mouse; }
    void finish(bool accepted) override
    {
        finished.push_back(accepted);
        if (m_host)
            m_host->raiseEvent("OnExitMovableWindowEditMode", accepted ? -1 : 0);
    }
    RecordingInteraction mouse;
    std::vector<bool> finished;

private:
    nxr::EditHost* m_host;
};

// A part plugged in the way result graphics and movable shapes plug in: its own key, and a key
// the display accepted for it until it existed.
class KeyPart : public nxr::DisplayPart
{
public:
    explicit KeyPart(nxr::EditHost& host)
    {
        host.keys().add(
            "TestPartLevel", [this](const QString& v) { level = v.toInt(); },
            [this] { return QString::number(level); });
        host.keys().replace("MinPairWidth", [this](const QString& v) { minPairWidth = v.toDouble(); }, {});
    }
    int level = 0;
    double minPairWidth = 0;
};
NXR_REGISTER_DISPLAY_PART(KeyPart)

class EditFrame : public ::testing::Test
{
protected:
    void SetUp() override
    {
        display = std::make_unique<NXRImageDisplay>();
        display->resize(800, 600);
        display->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(display.get()));
        display->showImage(flatImage(2000, 1500, qRgb(0, 0, 255)));
        display->setZoom(100);
        display->viewport().setScrollPosition(QPoint(0, 0));
        pageClicks = std::make_unique<QSignalSpy>(display.get(), &NXRImageDisplay::OnButtonClicked);
    }
    void TearDown() override { display.reset(); }

    nxr::RasterView* lead() { return display->leadView(); }
    double ratio() { return lead()->deviceRatio(); }
    const nxr::ViewMaths& maths() { return display->viewport().maths(); }
    // The widget point showing an image point.
    QPoint at(QPointF image) { return (maths().toScreen(image) / ratio()).toPoint(); }
    QPointF imageAt(QPoint widget) { return maths().toImage(QPointF(widget) * ratio()); }
    void send(QEvent::Type type, QPoint p, Qt::MouseButton b = Qt::LeftButton)
    {
        const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MouseButtons(b);
        QMouseEvent e(type, p, lead()->mapToGlobal(p), type == QEvent::MouseMove ? Qt::NoButton : b, held,
                      Qt::NoModifier);
        QApplication::sendEvent(lead(), &e);
    }
    QImage shot() { return lead()->grab().toImage(); }
    void begin(TestEditor& editor, nxr::EditKind kind = nxr::EditKind::Window)
    {
        display->editSession().begin(kind, editor);
    }

    // Editors outlive the display, as the display's parts do.
    TestEditor editor;
    std::unique_ptr<NXRImageDisplay> display;
    std::unique_ptr<QSignalSpy> pageClicks;
};

// ---- layers ----

TEST_F(EditFrame, LayersPaintInOrderOverTheImageWithSizesInScreenPixels)
{
    std::vector<int> log;
    SquareLayer top(log, 2, Qt::red, QPointF(20, 20), 10);
    SquareLayer bottom(log, 1, Qt::green, QPointF(25, 25), 10);
    lead()->addLayer(&top, 5);
    lead()->addLayer(&bottom, 1);
    QApplication::processEvents();
    log.clear();
    const QImage image = shot();
    ASSERT_GE(log.size(), 2u);
    EXPECT_EQ(std::vector<int>(log.end() - 2, log.end()), std::vector<int>({1, 2}));

    // The red square lies over the green one; 10 screen pixels are 10 x ratio device pixels.
    const QPointF corner = maths().toScreen(QPointF(20, 20));
    const int side = int(std::lround(10 * ratio()));
    auto px = [&](double x, double y) { return image.pixel(int(corner.x() + x), int(corner.y() + y)); };
    EXPECT_EQ(px(side - 1, side - 1), QColor(Qt::red).rgb());
    EXPECT_EQ(px(side + 1, side + 1), QColor(Qt::green).rgb()); // below red: the green square
    EXPECT_EQ(px(-2, -2), qRgb(0, 0, 255));                     // the image
    EXPECT_EQ(px(1.5 * side + 5 * ratio() + 2, 1.5 * side), qRgb(0, 0, 255));

    lead()->removeLayer(&top);
    // The display's own parts (result graphics) keep their layers.
    const std::vector<nxr::PaintLayer*> left = lead()->layers();
    EXPECT_EQ(std::count(left.begin(), left.end(), &top), 0);
    EXPECT_EQ(std::count(left.begin(), left.end(), &bottom), 1);
    EXPECT_EQ(shot().pixel(int(corner.x() + 1), int(corner.y() + 1)), qRgb(0, 0, 255));
}

TEST_F(EditFrame, ChangingPartOfTheBitmapKeepsItsFormatAndRepaintsThatPartOnly)
{
    display->showImage([] {
        QImage grey(2000, 1500, QImage::Format_Grayscale8);
        grey.fill(40);
        return grey;
    }());
    std::vector<int> log;
    SquareLayer layer(log, 1, Qt::red, QPointF(-10, -10), 1); // outside the image: draws nothing seen
    lead()->addLayer(&layer);
    QTest::qWait(50);
    layer.dirtyRects.clear();

    const QRect changed(300, 200, 20, 10);
    QImage& bitmap = lead()->editableBitmap();
    for (int y = changed.top(); y <= changed.bottom(); ++y)
        std::fill_n(bitmap.scanLine(y) + changed.left(), changed.width(), uchar(220));
    lead()->bitmapChanged(changed);
    QTest::qWait(50);
    EXPECT_EQ(lead()->bitmap().format(), QImage::Format_Grayscale8);
    ASSERT_FALSE(layer.dirtyRects.empty());
    const QRectF device = maths().toScreen(QRectF(changed));
    EXPECT_TRUE(QRectF(layer.dirtyRects.back()).contains(device));
    EXPECT_LE(layer.dirtyRects.back().width(), device.width() + 4 * ratio() + 1);
    const QImage image = shot();
    EXPECT_EQ(image.pixel(device.center().toPoint()), qRgb(220, 220, 220));
    EXPECT_EQ(image.pixel((device.topLeft() - QPointF(3, 3)).toPoint()), qRgb(40, 40, 40));
    lead()->removeLayer(&layer);
}

// ---- interactions ----

TEST_F(EditFrame, TheInteractionGetsTheMouseAndPanAndZoomTakeWhatItLeaves)
{
    begin(editor);
    const QPoint p = at(QPointF(100.25, 60.5));
    QTest::mousePress(lead(), Qt::LeftButton, {}, p);
    send(QEvent::MouseMove, p + QPoint(10, 0));
    QTest::mouseRelease(lead(), Qt::LeftButton, {}, p + QPoint(10, 0));
    ASSERT_EQ(editor.mouse.seen, std::vector<QString>({"press", "move", "release"}));
    EXPECT_NEAR(editor.mouse.images[0].x(), imageAt(p).x(), 1e-9);
    EXPECT_NEAR(editor.mouse.images[0].y(), imageAt(p).y(), 1e-9);
    EXPECT_EQ(maths().scrollPosition(), QPoint(0, 0)); // pointer mode: nothing panned

    // Pan mode: the interaction does not take the drag; the image follows the mouse and the
    // interaction is told to drop its hit state.
    display->mouse().setMouseMode(nxr::MouseDispatcher::Pan);
    const int cancels = editor.mouse.cancels;
    send(QEvent::MouseButtonPress, QPoint(300, 200));
    send(QEvent::MouseMove, QPoint(250, 170));
    send(QEvent::MouseButtonRelease, QPoint(250, 170));
    EXPECT_GT(editor.mouse.cancels, cancels);
    EXPECT_NEAR(maths().scrollPosition().x(), 50 * ratio(), 1.0);
    EXPECT_EQ(editor.mouse.count("press"), 1);

    // Zoom mode: a click not taken zooms; one taken does not.
    display->mouse().setMouseMode(nxr::MouseDispatcher::ZoomIn);
    QTest::mouseClick(lead(), Qt::LeftButton, {}, QPoint(200, 150));
    EXPECT_EQ(display->Zoom(), 200.0f);
    editor.mouse.takeAll = true;
    QTest::mouseClick(lead(), Qt::LeftButton, {}, QPoint(200, 150));
    EXPECT_EQ(display->Zoom(), 200.0f);
    EXPECT_EQ(editor.mouse.count("press"), 2);

    // Without an edit no interaction: the click zooms.
    display->editSession().accept();
    display->mouse().setMouseMode(nxr::MouseDispatcher::ZoomIn);
    QTest::mouseClick(lead(), Qt::LeftButton, {}, QPoint(200, 150));
    EXPECT_EQ(display->Zoom(), 400.0f);
    EXPECT_EQ(editor.mouse.count("press"), 2);
}

TEST_F(EditFrame, HitToleranceIsFiveScreenPixelsInImagePixels)
{
    begin(editor);
    for (float zoom : {100.0f, 200.0f, 50.0f}) {
        display->setZoom(zoom);
        QTest::mouseClick(lead(), Qt::LeftButton, {}, QPoint(50, 50));
        EXPECT_NEAR(editor.mouse.tolerance, 5.0 * ratio() * 100.0 / zoom, 1e-9) << zoom;
    }
}

TEST_F(EditFrame, ADoubleClickIsNotTwoClicksAndTwoClicksAreNotADoubleClick)
{
    begin(editor);
    const QPoint p(120, 90);
    const int waitMs = display->leadDoubleClickTimer()->interval() + 150;

    send(QEvent::MouseButtonPress, p);
    send(QEvent::MouseButtonRelease, p);
    send(QEvent::MouseButtonDblClick, p);
    send(QEvent::MouseButtonRelease, p);
    QTest::qWait(waitMs);
    EXPECT_EQ(editor.mouse.count("double"), 1);
    EXPECT_EQ(editor.mouse.count("click"), 0);
    EXPECT_EQ(editor.mouse.count("release"), 2); // drags still see both releases

    editor.mouse.seen.clear();
    for (int i = 0; i < 2; ++i) {
        send(QEvent::MouseButtonPress, p);
        send(QEvent::MouseButtonRelease, p);
        QTest::qWait(waitMs);
    }
    EXPECT_EQ(editor.mouse.count("click"), 2);
    EXPECT_EQ(editor.mouse.count("double"), 0);
}

TEST_F(EditFrame, KeysGoToTheInteractionAndEnterOrEscapeFinishTheEdit)
{
    const struct
    {
        int key;
        bool accepted;
        const char* page;
    } cases[] = {
        {Qt::Key_Return, true, "Accept"}, {Qt::Key_Enter, true, "Accept"}, {Qt::Key_Escape, false, "Cancel"}};
    for (const auto& c : cases) {
        TestEditor editor;
        begin(editor);
        pageClicks->clear();
        QTest::keyClick(lead(), Qt::Key_Delete); // taken by the interaction: the edit stays
        EXPECT_TRUE(display->editSession().editing());
        QTest::keyClick(lead(), Qt::Key(c.key));
        EXPECT_EQ(editor.mouse.keys, std::vector<int>({Qt::Key_Delete, c.key}));
        EXPECT_EQ(editor.finished, std::vector<bool>({c.accepted}));
        ASSERT_TRUE(pageClicks->wait(1000));
        EXPECT_EQ(pageClicks->at(0).at(0).toString(), c.page);
        QTest::keyClick(lead(), Qt::Key(c.key)); // no edit any more: nothing
        QTest::qWait(20);
        EXPECT_EQ(editor.finished.size(), 1u);
        EXPECT_EQ(pageClicks->count(), 1);
    }
}

// ---- the edit session ----

TEST_F(EditFrame, AcceptAndCancelReachTheActiveEditorExactlyOnce)
{
    TestEditor first(&display->editHost());
    QSignalSpy exits(display.get(), &NXRImageDisplay::OnExitMovableWindowEditMode);
    auto* ok = display->findChild<QPushButton*>("cmd_OK");
    auto* cancel = display->findChild<QPushButton*>("cmd_Cancel");
    begin(first);
    ASSERT_TRUE(ok->isVisible());
    EXPECT_EQ(display->GetProperty("EditingWindow"), "True");
    QTest::mouseClick(ok, Qt::LeftButton);
    EXPECT_EQ(pageClicks->count(), 0); // the page hears of it after the click, not inside it
    display->editSession().accept();   // a second accept finds no edit
    EXPECT_EQ(first.finished, std::vector<bool>({true}));
    ASSERT_EQ(exits.count(), 1);
    EXPECT_EQ(exits.at(0).at(0).toInt(), -1);
    EXPECT_FALSE(ok->isVisible());
    EXPECT_EQ(display->GetProperty("EditingWindow"), "False");
    ASSERT_TRUE(pageClicks->wait(1000));

    // A second editor beginning while one is open cancels the first.
    TestEditor second(&display->editHost());
    begin(first, nxr::EditKind::Line);
    begin(second, nxr::EditKind::Mask);
    EXPECT_EQ(first.finished, std::vector<bool>({true, false}));
    EXPECT_EQ(display->GetProperty("EditingMask"), "True");
    EXPECT_EQ(display->GetProperty("EditingLine"), "False");
    EXPECT_TRUE(display->maskLeadView()->isVisible());
    EXPECT_EQ(display->activeView(), display->maskLeadView());
    QTest::mouseClick(cancel, Qt::LeftButton);
    EXPECT_EQ(second.finished, std::vector<bool>({false}));
    EXPECT_FALSE(display->maskLeadView()->isVisible());
    EXPECT_FALSE(ok->isVisible());
    EXPECT_EQ(exits.count(), 3);
    ASSERT_TRUE(pageClicks->wait(1000));
    EXPECT_EQ(pageClicks->first().at(0).toString(), "Accept");
    EXPECT_EQ(pageClicks->last().at(0).toString(), "Cancel");
}

TEST_F(EditFrame, AnEditSetsPointerModeAndTheViewButtonsAndPutsThemBackAfterwards)
{
    display->mouse().setMouseMode(nxr::MouseDispatcher::Pan);
    display->viewButtons()->SetProperty("ActiveMouseCursor", "2");
    TestEditor editor;
    begin(editor);
    EXPECT_EQ(display->mouseMode(), nxr::MouseDispatcher::Pointer);
    EXPECT_EQ(display->viewButtons()->GetProperty("ActiveMouseCursor"), "1");
    auto* timer = display->findChild<QTimer*>("tmr_FlashOKCancel");
    ASSERT_TRUE(timer);
    EXPECT_TRUE(timer->isActive()); // the bar flashes when the edit opens
    display->editSession().cancel();
    EXPECT_EQ(display->mouseMode(), nxr::MouseDispatcher::Pan);
    EXPECT_EQ(display->viewButtons()->GetProperty("ActiveMouseCursor"), "2");
    EXPECT_FALSE(timer->isActive());
}

TEST_F(EditFrame, ClosingTheDisplayCancelsTheEditOnce)
{
    TestEditor editor;
    begin(editor, nxr::EditKind::Cursor);
    QSignalSpy spy(display.get(), &NXRImageDisplay::OnButtonClicked);
    display.reset();
    EXPECT_EQ(editor.finished, std::vector<bool>({false}));
    ASSERT_EQ(spy.count(), 1);
    EXPECT_EQ(spy.at(0).at(0).toString(), "Cancel");
}

// ---- pointer shapes ----

TEST_F(EditFrame, PointerShapesOverTheImageAndTheScrollBars)
{
    begin(editor);
    editor.mouse.shape = Qt::SizeAllCursor;
    send(QEvent::MouseMove, QPoint(100, 100), Qt::NoButton);
    EXPECT_EQ(lead()->cursor().shape(), Qt::SizeAllCursor);
    editor.mouse.shape.reset(); // nothing to say: the mouse mode's shape
    send(QEvent::MouseMove, QPoint(101, 100), Qt::NoButton);
    EXPECT_EQ(lead()->cursor().shape(), Qt::ArrowCursor);
    display->mouse().setMouseMode(nxr::MouseDispatcher::Pan);
    EXPECT_EQ(lead()->cursor().shape(), Qt::OpenHandCursor);
    display->mouse().setMouseMode(nxr::MouseDispatcher::ZoomIn);
    EXPECT_EQ(lead()->cursor().shape(), Qt::CrossCursor);
    for (QScrollBar* bar : {display->viewport().horizontalBar(), display->viewport().verticalBar()}) {
        ASSERT_TRUE(bar->isVisible());
        EXPECT_EQ(bar->cursor().shape(), Qt::ArrowCursor);
    }
}

// ---- parts ----

TEST_F(EditFrame, APartAddsItsKeysAndTakesOverTheKeysKeptForIt)
{
    KeyPart& part = display->part<KeyPart>();
    display->SetProperty("TestPartLevel", "7");
    EXPECT_EQ(part.level, 7);
    EXPECT_EQ(display->GetProperty("TestPartLevel"), "7");
    display->SetProperty("MinPairWidth", "2.5");
    EXPECT_EQ(part.minPairWidth, 2.5);
}

} // namespace
