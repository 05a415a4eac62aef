// Movable shapes through the real display's mouse: the pointer over a window's parts with the
// grab distance in screen pixels at any zoom and pixel ratio (the turning arrow as its own
// picture), the view buttons and keys the shapes drive, the window reset button, and the end of
// the display during an edit. Runs at scale 1 and 1.5 (graphics_display_hidpi_test).

#include "imagedisplay/ImageViewport.h"
#include "imagedisplay/MouseDispatcher.h"
#include "imagedisplay/NXRImageDisplay.h"
#include "imagedisplay/NXRViewButtons.h"
#include "imagedisplay/RasterView.h"
#include "imagedisplay/ViewMaths.h"

#include <QAbstractButton>
#include <QApplication>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

namespace {

class DisplayMovable : public ::testing::Test
{
protected:
    void SetUp() override
    {
        display = std::make_unique<NXRImageDisplay>();
        display->resize(900, 700);
        display->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(display.get()));
        QImage image(2000, 1600, QImage::Format_RGB32);
        image.fill(Qt::darkGray);
        display->showImage(image);
        windowExits =
            std::make_unique<QSignalSpy>(display.get(), &NXRImageDisplay::OnExitMovableWindowEditMode);
    }
    void TearDown() override { display.reset(); }

    nxr::RasterView* lead() { return display->leadView(); }
    double ratio() { return lead()->deviceRatio(); }
    // The widget point of an image point (rounded to the nearest logical pixel).
    QPoint at(double x, double y)
    {
        const QPointF device = display->viewport().maths().toScreen(QPointF(x, y));
        return QPoint(int(std::lround(device.x() / ratio())), int(std::lround(device.y() / ratio())));
    }
    void mouse(QEvent::Type type, QPoint p, Qt::MouseButtons held = Qt::NoButton)
    {
        const Qt::MouseButton b = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent e(type, p, lead()->mapToGlobal(p), b, held, Qt::NoModifier);
        QApplication::sendEvent(lead(), &e);
    }
    void drag(QPoint from, QPoint to)
    {
        mouse(QEvent::MouseButtonPress, from, Qt::LeftButton);
        mouse(QEvent::MouseMove, (from + to) / 2, Qt::LeftButton);
        mouse(QEvent::MouseMove, to, Qt::LeftButton);
        mouse(QEvent::MouseButtonRelease, to);
    }
    Qt::CursorShape pointerAt(QPoint p)
    {
        mouse(QEvent::MouseMove, p);
        return lead()->cursor().shape();
    }
    QAbstractButton* toolButton(const char* name)
    {
        return display->viewButtons()->findChild<QAbstractButton*>(QLatin1String(name));
    }

    std::unique_ptr<NXRImageDisplay> display;
    std::unique_ptr<QSignalSpy> windowExits;
};

TEST_F(DisplayMovable, PointerShowsWhatAPressWouldGrabFiveScreenPixelsOutAtEveryZoom)
{
    for (const float zoom : {50.0f, 100.0f, 200.0f, 137.0f}) {
        SCOPED_TRACE(testing::Message() << "zoom " << zoom);
        display->setZoom(zoom);
        display->viewport().setScrollPosition(QPoint(0, 0));
        // A rotatable window at angle 0: right edge at x = 300, its middle at y = 250.
        display->SetMovableWindow(200, 100, 100, 200, 0, true);
        display->EditMovableWindow();
        const double screen = 1.0 / (zoom / 100.0) * ratio(); // image pixels per screen pixel
        EXPECT_EQ(pointerAt(at(200, 250)), Qt::SizeAllCursor);
        // The turning handle: the control's own picture.
        EXPECT_EQ(pointerAt(at(300, 250)), Qt::BitmapCursor);
        EXPECT_FALSE(lead()->cursor().pixmap().isNull());
        // The left edge, 3 screen pixels outside: a sizing arrow; 8 outside: nothing.
        EXPECT_EQ(pointerAt(at(100 - 3 * screen, 225)), Qt::SizeHorCursor);
        EXPECT_EQ(pointerAt(at(100 - 8 * screen, 225)), Qt::ArrowCursor);
        // A drag from 3 screen pixels outside the left edge takes the edge.
        drag(at(100 - 3 * screen, 225), at(60, 225));
        EXPECT_NEAR(display->MovableWindowLeft(), 60, 1.0 * screen);
        EXPECT_NEAR(display->MovableWindowLeft() + display->MovableWindowWidth(), 300, 1e-9);
        display->SetProperty("RefreshDisplay", "True");
        QTest::keyClick(display.get(), Qt::Key_Escape);
    }
    EXPECT_EQ(windowExits->count(), 4);
}

TEST_F(DisplayMovable, ViewButtonsWindowResetAndKeysFollowTheShapes)
{
    QAbstractButton* reset = toolButton("cmd_WindowReset");
    ASSERT_NE(reset, nullptr);
    display->setMoveWindowEnabled(true);
    EXPECT_TRUE(reset->isEnabled());
    display->setMoveWindowEnabled(false);
    EXPECT_FALSE(reset->isEnabled());
    display->setMoveLinePairEnabled(true);
    EXPECT_TRUE(reset->isEnabled());

    // Pan mode before the edit: pointer during it, pan again after it.
    display->viewButtons()->SetProperty("ActiveMouseCursor", "2");
    display->mouse().setMouseMode(2);
    display->setZoom(100);
    display->viewport().setScrollPosition(QPoint(0, 0));
    display->SetMovableWindow(200, 100, 100, 200, 0, false);
    display->EditMovableWindow();
    EXPECT_EQ(display->viewButtons()->GetProperty("ActiveMouseCursor"), "1");
    EXPECT_EQ(display->GetProperty("EditingWindow"), "True");
    drag(at(200, 250), at(260, 290));
    EXPECT_NEAR(display->MovableWindowLeft(), 160, 1.0);
    // The reset button: back to where the edit began, still editing.
    reset->setEnabled(true);
    reset->click();
    EXPECT_EQ(display->MovableWindowLeft(), 100);
    EXPECT_EQ(display->MovableWindowTop(), 200);
    EXPECT_EQ(display->GetProperty("EditingWindow"), "True");
    QTest::keyClick(display.get(), Qt::Key_Return);
    EXPECT_EQ(display->GetProperty("EditingWindow"), "False");
    EXPECT_EQ(display->viewButtons()->GetProperty("ActiveMouseCursor"), "2");
    EXPECT_EQ(display->mouseMode(), 2);
    ASSERT_EQ(windowExits->count(), 1);
    EXPECT_EQ(windowExits->at(0).at(0).toInt(), -1); // True (-1) when accepted

    // The pair's limits through the display's keys.
    display->SetMovableLinePair(100, 100, 300, 100, 0.5);
    EXPECT_EQ(display->MovableLinePairWidth(), 1.0);
    display->SetProperty("MinPairWidth", "5");
    EXPECT_EQ(display->MovableLinePairWidth(), 5.0);
    display->SetProperty("MaxPairWidth", "3"); // below the minimum: ignored
    display->SetMovableLinePair(100, 100, 300, 100, 50);
    EXPECT_EQ(display->MovableLinePairWidth(), 50.0);
    display->SetProperty("MaxPairWidth", "20");
    EXPECT_EQ(display->MovableLinePairWidth(), 20.0);
    EXPECT_EQ(display->LastErrorString(), "");
}

TEST_F(DisplayMovable, EndingTheDisplayDuringAnEditCancelsItOnce)
{
    QSignalSpy clicks(display.get(), &NXRImageDisplay::OnButtonClicked);
    QSignalSpy cursorExits(display.get(), &NXRImageDisplay::OnExitMovableCursorEditMode);
    display->setZoom(100);
    display->viewport().setScrollPosition(QPoint(0, 0));
    display->SetMovableCursor(300, 300);
    display->EditMovableCursor();
    drag(at(300, 300), at(340, 320));
    EXPECT_NEAR(display->MovableCursorX(), 340, 1.0);
    // A second edit while one is open is refused.
    display->EditMovableWindow();
    EXPECT_TRUE(display->LastErrorString().startsWith("Error in EditMovableWindow:"));
    display.reset();
    ASSERT_EQ(cursorExits.count(), 1);
    EXPECT_EQ(cursorExits.at(0).at(0).toInt(), 0);
    EXPECT_EQ(windowExits->count(), 0);
    ASSERT_EQ(clicks.count(), 1);
    EXPECT_EQ(clicks.at(0).at(0).toString(), "Cancel");
}

TEST_F(DisplayMovable, AFingerGrabsAnEdgeFartherOutThanTheMouse)
{
    display->setZoom(100);
    display->viewport().setScrollPosition(QPoint(0, 0));
    display->SetMovableWindow(200, 300, 200, 300, 0, false);
    display->EditMovableWindow();
    // Eight screen pixels left of the left edge: past the mouse's five, inside a finger's width.
    const QPoint outside = at(300, 300) - QPoint(8, 0);
    const QPoint target = outside - QPoint(40, 0);
    drag(outside, target);
    EXPECT_EQ(display->MovableWindowLeft(), 300.0) << "the mouse grabbed from 8 pixels out";

    // The same drag from a touch screen, as Qt hands an unhandled touch on as mouse events.
    static QPointingDevice* finger = QTest::createTouchDevice();
    const auto touch = [&](QEvent::Type type, QPoint p, Qt::MouseButtons held) {
        const Qt::MouseButton b = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent e(type, p, lead()->mapToGlobal(p), b, held, Qt::NoModifier, finger);
        QApplication::sendEvent(lead(), &e);
    };
    touch(QEvent::MouseButtonPress, outside, Qt::LeftButton);
    touch(QEvent::MouseMove, target, Qt::LeftButton);
    touch(QEvent::MouseButtonRelease, target, Qt::NoButton);
    EXPECT_LT(display->MovableWindowLeft(), 290.0) << "the finger did not grab the left edge";
    EXPECT_NEAR(display->MovableWindowLeft() + display->MovableWindowWidth(), 600.0, 1.0);
}

} // namespace
