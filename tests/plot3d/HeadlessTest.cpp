// The plot where there is no display at all (offscreen platform, no DISPLAY): it must neither
// crash nor end the process, whether or not an OpenGL context can be had there.
#include "plot3d/NXR3DPlot.h"
#include "plot3d/PlotGLView.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

#include <cstdlib>

namespace {
bool g_exitCalled = false;
void onExit()
{
    if (!g_exitCalled)
        std::fputs("plot3d headless test: the process was ended from inside the plot\n", stderr);
}
} // namespace

TEST(Plot3DHeadless, RunsWithoutADisplayAndSaysWhyItIsBlank)
{
    NXR3DPlot plot;
    plot.resize(320, 240);
    plot.show();
    QCoreApplication::processEvents();
    if (plot.glView()) {
        EXPECT_EQ(plot.GetProperty("OpenGL"), "True");
        EXPECT_FALSE(nxr::plot3d::PlotGLView::glutAvailable());
    } else {
        EXPECT_EQ(plot.GetProperty("OpenGL"), "False");
        EXPECT_TRUE(plot.LastErrorString() == "EnableOpenGL: ChoosePixelFormat failed." ||
                    plot.LastErrorString() == "EnableOpenGL: wglCreateContext failed.")
            << plot.LastErrorString().toStdString();
    }
    // The whole feeding order and a few view changes work either way.
    QSignalSpy errors(&plot, &NXR3DPlot::OnError);
    plot.InitializeDrawing();
    plot.AddCamera("CAM1", 10, 2, 500, 0, 0, 500, 180, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                   0, 0, "G", "U");
    plot.AddFOVCorner(0, 0, 500, 0.1, 0.1, -1);
    plot.AddFOVCorner(0, 0, 500, -0.1, 0.1, -1);
    plot.AddFOVCorner(0, 0, 500, -0.1, -0.1, -1);
    plot.AddCalibrationPoint(0, 0, 0);
    plot.AddCalibrationPoint(10, 0, 0);
    plot.FinishCamera();
    plot.AddFoundPoint(0, 5, 5, 0, 6, 5, 0, 0, 0, 500, 6, 5, -500);
    plot.FinishDrawing();
    EXPECT_EQ(errors.count(), 0) << plot.LastErrorString().toStdString();
    plot.SetProperty("Azimuth", "60");
    QTest::qWait(50);
    plot.SaveImage("headless/plot.png");
    EXPECT_EQ(errors.count(), plot.glView() ? 0 : 1) << plot.LastErrorString().toStdString();
    EXPECT_EQ(plot.GetProperty("CameraCount"), "1");
}

int main(int argc, char** argv)
{
    // PLOT3D_TEST_KEEP_DISPLAY: the offscreen platform beside a display, where a GL context can be
    // had but no GL widget can be shown.
    if (!qEnvironmentVariableIsSet("PLOT3D_TEST_KEEP_DISPLAY")) {
        qunsetenv("DISPLAY");
        qunsetenv("WAYLAND_DISPLAY");
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    std::atexit(onExit);
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();
    g_exitCalled = true;
    return result;
}
