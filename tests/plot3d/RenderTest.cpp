// The plot on a real (software) OpenGL context: start-up state, display lists, what lands on
// the screen, the mouse, saving, and the error convention of its methods.
#include "frame/Globals.h"
#include "plot3d/NXR3DPlot.h"
#include "plot3d/PlotGLView.h"

#include <GL/gl.h>
#include <GL/glu.h>

#include <QCheckBox>
#include <QComboBox>
#include <QFileInfo>
#include <QImage>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

#include <functional>
#include <memory>

using namespace nxr::plot3d;

namespace {

// Two cameras above a grid around the user frame's origin, and two found points.
void buildScene(NXR3DPlot& plot, int foundPoints = 2)
{
    plot.InitializeDrawing();
    const double cams[2][2] = {{-150, 0}, {150, 0}};
    for (int c = 0; c < 2; ++c) {
        const double cx = cams[c][0];
        plot.AddCamera(QStringLiteral("CAM%1").arg(c + 1), 20, 9, 600, cx, 0, 600, 180, 0, 0, cx, 0, 0, 0, 0,
                       0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, "GF1", "UF1");
        for (int i = 0; i < 9; ++i)
            plot.AddCalibrationPoint(cx + 20 * (i % 3 - 1), 20 * (i / 3 - 1), 0);
        for (int k = 0; k < 4; ++k) {
            const double dx = (k == 0 || k == 3) ? -1 : 1, dy = k < 2 ? -1 : 1;
            plot.AddFOVCorner(cx, 0, 600, 0.15 * dx, 0.12 * dy, -1);
        }
        plot.FinishCamera();
    }
    for (int f = 0; f < foundPoints; ++f) {
        const double nx = f == 0 ? -100 : 100;
        plot.AddFoundPoint(f, nx, 80, 0, nx + 30, 80, 0, f == 0 ? -150 : 150, 0, 600,
                           nx + 30 - (f == 0 ? -150 : 150), 80, -600);
    }
    plot.FinishDrawing();
}

struct Shown
{
    std::unique_ptr<NXR3DPlot> plot = std::make_unique<NXR3DPlot>();
    Shown()
    {
        plot->resize(500, 400);
        plot->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(plot.get()));
        QCoreApplication::processEvents();
    }
    PlotGLView* gl() const { return plot->glView(); }
    QImage grab() const { return gl()->grabFramebuffer().convertToFormat(QImage::Format_RGB32); }
    // Window coordinates (GL: y upward) of a scene point in the last drawn frame, through gluProject.
    QPoint pixelOf(double x, double y, double z) const
    {
        gl()->makeCurrent();
        GLdouble mv[16], pr[16];
        glGetDoublev(GL_MODELVIEW_MATRIX, mv);
        glGetDoublev(GL_PROJECTION_MATRIX, pr);
        GLint vp[4];
        glGetIntegerv(GL_VIEWPORT, vp);
        GLdouble wx = 0, wy = 0, wz = 0;
        EXPECT_EQ(gluProject(x, y, z, mv, pr, vp, &wx, &wy, &wz), GL_TRUE);
        gl()->doneCurrent();
        const qreal dpr = gl()->devicePixelRatioF();
        return QPoint(int(wx), int(vp[3] - 1 - int(wy))) / dpr * dpr;
    }
    // How many of the display lists first..last exist in the plot's context.
    int liveLists(GLuint first, GLuint last) const
    {
        gl()->makeCurrent();
        int n = 0;
        for (GLuint l = first; l <= last; ++l)
            n += glIsList(l) == GL_TRUE ? 1 : 0;
        gl()->doneCurrent();
        return n;
    }
};

// A mouse event the test helpers do not make: moves with buttons held, a second button pressed.
void sendMouse(QWidget* w, QEvent::Type type, QPointF at, Qt::MouseButton button, Qt::MouseButtons held,
               Qt::KeyboardModifiers mods = {})
{
    QMouseEvent e(type, at, w->mapToGlobal(at), button, held, mods);
    QCoreApplication::sendEvent(w, &e);
}

int countPixels(const QImage& img, QPoint centre, int half, const std::function<bool(QRgb)>& match)
{
    int n = 0;
    for (int y = centre.y() - half; y <= centre.y() + half; ++y)
        for (int x = centre.x() - half; x <= centre.x() + half; ++x)
            if (img.rect().contains(x, y) && match(img.pixel(x, y)))
                ++n;
    return n;
}

bool isRed(QRgb p)
{
    return qRed(p) > 150 && qGreen(p) < 60 && qBlue(p) < 60;
}
bool isOrange(QRgb p)
{
    return qRed(p) > 180 && qGreen(p) > 70 && qGreen(p) < 170 && qBlue(p) < 100;
}
bool isBlack(QRgb p)
{
    return qRed(p) < 70 && qGreen(p) < 70 && qBlue(p) < 70;
}

// With PLOT3D_TEST_NO_GLUT set, the same tests run with hand-drawn cubes and QPainter labels.
class NoGlutEnvironment : public testing::Environment
{
public:
    void SetUp() override
    {
        if (qEnvironmentVariableIsSet("PLOT3D_TEST_NO_GLUT"))
            PlotGLView::disableGlut();
    }
};
const auto* const g_environment = testing::AddGlobalTestEnvironment(new NoGlutEnvironment);

} // namespace

TEST(Plot3DRender, ListsAreNumberedFrom101And501AndDroppedWithTheFoundPoints)
{
    Shown s;
    ASSERT_NE(s.gl(), nullptr) << s.plot->LastErrorString().toStdString();
    EXPECT_EQ(s.plot->GetProperty("OpenGL"), "True");
    EXPECT_EQ(s.gl()->renderer()->labelsDrawnByOwner(), qEnvironmentVariableIsSet("PLOT3D_TEST_NO_GLUT"));
    // At start the two ring lists and the font lists 1000..1126 exist; nothing of the scene yet.
    EXPECT_EQ(s.liveLists(1, 2), 2);
    EXPECT_EQ(s.liveLists(1000, 1126), 127);
    EXPECT_EQ(s.liveLists(101, 600), 0);
    buildScene(*s.plot);
    const SceneRenderer* r = s.gl()->renderer();
    // Per camera five lists; then the user frame, the two reference lists and one per found point.
    EXPECT_EQ(r->sceneListCount(), 2 * 5 + 3 + 2);
    EXPECT_EQ(r->referenceList(), 112u);
    EXPECT_EQ(r->offsetReferenceList(), 113u);
    EXPECT_EQ(r->labelListCount(), 2);
    EXPECT_EQ(s.liveLists(101, 115), 15);
    EXPECT_EQ(s.liveLists(116, 500), 0);
    EXPECT_EQ(s.liveLists(501, 502), 2);
    EXPECT_EQ(s.liveLists(503, 600), 0);

    s.plot->ClearFoundPoints();
    EXPECT_EQ(s.plot->GetProperty("FoundPointCount"), "0");
    EXPECT_EQ(r->sceneListCount(), 10);
    EXPECT_EQ(s.liveLists(101, 110), 10);
    EXPECT_EQ(s.liveLists(111, 600), 0);

    // New found points compile after the cameras again.
    s.plot->AddFoundPoint(0, 0, 0, 0, 1, 1, 1, 0, 0, 600, 1, 1, -599);
    s.plot->FinishDrawing();
    EXPECT_EQ(r->sceneListCount(), 14);
    EXPECT_EQ(r->labelListCount(), 1);

    s.plot->InitializeDrawing();
    EXPECT_EQ(r->sceneListCount(), 0);
    EXPECT_EQ(s.liveLists(101, 600), 0);
    EXPECT_EQ(s.liveLists(1, 2), 2);
}

TEST(Plot3DRender, EndingThePlotDeletesEveryList)
{
    Shown s;
    ASSERT_NE(s.gl(), nullptr);
    buildScene(*s.plot);
    // A context sharing the plot's lists sees them come and go.
    QOffscreenSurface surface;
    surface.setFormat(PlotGLView::plotFormat());
    surface.create();
    QOpenGLContext shared;
    shared.setFormat(PlotGLView::plotFormat());
    shared.setShareContext(s.gl()->context());
    ASSERT_TRUE(shared.create());
    auto listsAlive = [&] {
        EXPECT_TRUE(shared.makeCurrent(&surface));
        std::vector<bool> alive;
        for (GLuint l : {1u, 2u, 101u, 115u, 501u, 1000u, 1126u})
            alive.push_back(glIsList(l) == GL_TRUE);
        shared.doneCurrent();
        return alive;
    };
    EXPECT_EQ(listsAlive(), std::vector<bool>(7, true));
    s.plot.reset();
    EXPECT_EQ(listsAlive(), std::vector<bool>(7, false));
}

TEST(Plot3DRender, PicturesShowBackgroundFoundPointsLabelsAndReferences)
{
    Shown s;
    ASSERT_NE(s.gl(), nullptr);
    buildScene(*s.plot);
    // The frame is opaque everywhere, or the window would show through where it is composed.
    const QImage window = s.plot->grab().toImage().convertToFormat(QImage::Format_RGB32);
    const QPoint inside = s.gl()->geometry().topLeft() * window.devicePixelRatio() + QPoint(2, 2);
    EXPECT_EQ(window.pixel(inside), qRgb(153, 191, 255));
    QImage img = s.grab();
    ASSERT_FALSE(img.isNull());
    const QRgb background = qRgb(153, 191, 255);
    for (QPoint corner : {QPoint(0, 0), QPoint(img.width() - 1, 0), QPoint(0, img.height() - 1),
                          QPoint(img.width() - 1, img.height() - 1)}) {
        const QRgb p = img.pixel(corner);
        EXPECT_NEAR(qRed(p), qRed(background), 1) << corner.x() << "," << corner.y();
        EXPECT_NEAR(qGreen(p), qGreen(background), 1);
        EXPECT_NEAR(qBlue(p), qBlue(background), 1);
    }

    // The first found point lies at (-70, 80, 0): dark green where gluProject puts it.
    const QPoint found = s.pixelOf(-70, 80, 0);
    ASSERT_TRUE(img.rect().contains(found));
    const QRgb p = img.pixel(found);
    EXPECT_LE(qRed(p), 2);
    EXPECT_NEAR(qGreen(p), 128, 2);
    EXPECT_LE(qBlue(p), 2);
    // Its label sits beside it, up and to the right.
    EXPECT_GT(countPixels(img, found + QPoint(12, -12), 8, isBlack), 3);

    // The reference (nominal) cube at (-100, 80, 0) and the offset reference cube around the
    // found point go away with their check boxes.
    const QPoint nominal = s.pixelOf(-100, 80, 0);
    EXPECT_GT(countPixels(img, nominal, 5, isRed), 4);
    EXPECT_GT(countPixels(img, found, 8, isOrange), 2);
    s.plot->findChild<QCheckBox*>("chk_ReferencelPosition")->setChecked(false);
    img = s.grab();
    EXPECT_EQ(countPixels(img, nominal, 5, isRed), 0);
    EXPECT_GT(countPixels(img, found, 8, isOrange), 2);
    s.plot->findChild<QCheckBox*>("chk_OffsetReferencelPosition")->setChecked(false);
    img = s.grab();
    EXPECT_EQ(countPixels(img, found, 8, isOrange), 0);
    EXPECT_EQ(s.plot->GetProperty("OffsetReferencePosition"), "False");
    s.plot->SetProperty("ReferencePosition", "True");
    img = s.grab();
    EXPECT_GT(countPixels(img, nominal, 5, isRed), 4);
}

TEST(Plot3DRender, FirstDrawingFramesTheScene)
{
    Shown s;
    ASSERT_NE(s.gl(), nullptr);
    buildScene(*s.plot);
    const CalibrationScene& scene = s.plot->scene();
    EXPECT_NEAR(scene.centre().x, scene.box().centre().x, 1e-9);
    EXPECT_NEAR(scene.centre().z, scene.box().centre().z, 1e-9);
    // Every corner of the box is inside the picture.
    s.grab();
    for (int k = 0; k < 8; ++k) {
        const Vec3 c{k & 1 ? scene.box().max.x : scene.box().min.x,
                     k & 2 ? scene.box().max.y : scene.box().min.y,
                     k & 4 ? scene.box().max.z : scene.box().min.z};
        EXPECT_TRUE(s.gl()->rect().contains(s.pixelOf(c.x, c.y, c.z))) << k;
    }
}

TEST(Plot3DRender, MouseTurnsMovesZoomsAndRecentres)
{
    Shown s;
    ASSERT_NE(s.gl(), nullptr);
    buildScene(*s.plot);
    PlotGLView* gl = s.gl();
    // Right-button turning and middle-button panning are the calibration page's check
    // (plot3d_page_test); here the other buttons.
    // Pan with Ctrl and the right button.
    QTest::mousePress(gl, Qt::RightButton, Qt::ControlModifier, QPoint(100, 100));
    EXPECT_EQ(s.plot->GetProperty("MouseMode"), "2");
    sendMouse(gl, QEvent::MouseMove, QPointF(110, 100), Qt::NoButton, Qt::RightButton, Qt::ControlModifier);
    QTest::mouseRelease(gl, Qt::RightButton, Qt::ControlModifier, QPoint(110, 100));
    EXPECT_GT(s.plot->GetProperty("PanX").toDouble(), 0);

    // Left and right together zoom: dragging up 10 pixels is 10 steps in.
    const double r = s.plot->scene().radius();
    const double eye0 = s.plot->view().projection(r, 1, 1).eyeDistance;
    QTest::mousePress(gl, Qt::LeftButton, {}, QPoint(100, 100));
    sendMouse(gl, QEvent::MouseButtonPress, QPointF(100, 100), Qt::RightButton,
              Qt::LeftButton | Qt::RightButton);
    EXPECT_EQ(s.plot->GetProperty("MouseMode"), "3");
    sendMouse(gl, QEvent::MouseMove, QPointF(100, 90), Qt::NoButton, Qt::LeftButton | Qt::RightButton);
    EXPECT_NEAR(s.plot->view().projection(r, 1, 1).eyeDistance, eye0 * std::pow(0.98, 10), 1e-6);
    QTest::mouseRelease(gl, Qt::RightButton, {}, QPoint(100, 90));
    QTest::mouseRelease(gl, Qt::LeftButton, {}, QPoint(100, 90));
    EXPECT_EQ(s.plot->GetProperty("MouseMode"), "0");

    // The wheel zooms in.
    const double before = s.plot->view().projection(r, 1, 1).eyeDistance;
    QWheelEvent wheel(QPointF(50, 50), gl->mapToGlobal(QPointF(50, 50)), QPoint(), QPoint(0, 120),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(gl, &wheel);
    EXPECT_NEAR(s.plot->view().projection(r, 1, 1).eyeDistance, before * std::pow(0.98, 5), 1e-6);

    // A double click on a calibration point turns the view about it.
    s.grab();
    const QPoint at = s.pixelOf(130, 20, 0);
    QTest::mouseDClick(gl, Qt::LeftButton, {}, at / gl->devicePixelRatioF());
    EXPECT_EQ(s.plot->GetProperty("Center"), "130, 20, 0");
    EXPECT_EQ(s.plot->GetProperty("PanX"), "0");

    // The rotation-centre list and the Center button.
    QComboBox* list = s.plot->rotationCenterList();
    ASSERT_EQ(list->count(), 3);
    list->setCurrentIndex(2);
    s.plot->findChild<QPushButton*>("cmd_Center")->click();
    EXPECT_EQ(s.plot->GetProperty("Center"), "150, 0, 600");
}

TEST(Plot3DRender, SaveImageWritesPngsOnlyInsideTheStorageFolder)
{
    Shown s;
    ASSERT_NE(s.gl(), nullptr);
    buildScene(*s.plot);
    QSignalSpy errors(s.plot.get(), &NXR3DPlot::OnError);
    s.plot->SaveImage("plot3d-test/view.png");
    EXPECT_EQ(errors.count(), 0) << s.plot->LastErrorString().toStdString();
    const QString file = nxr::Globals::storageFolder() + "/plot3d-test/view.png";
    QImage saved(file);
    ASSERT_FALSE(saved.isNull());
    EXPECT_EQ(saved.size(), s.gl()->size() * s.gl()->devicePixelRatioF());

    s.plot->SaveImage("../escape.png");
    EXPECT_EQ(errors.count(), 1);
    EXPECT_TRUE(
        s.plot->LastErrorString().startsWith("Error in SaveImage: the path lies outside the storage folder"));
    EXPECT_FALSE(QFileInfo::exists(nxr::Globals::storageFolder() + "/../escape.png"));
}

TEST(Plot3DRender, MethodsReportSubscriptErrorsAndCarryOn)
{
    NXR3DPlot plot; // not shown: the scene and its errors need no picture
    QSignalSpy errors(&plot, &NXR3DPlot::OnError);
    plot.InitializeDrawing();
    QComboBox* list = plot.rotationCenterList();
    EXPECT_EQ(list->objectName(), "cmb_RotationCenter");
    EXPECT_EQ(list->parentWidget()->objectName(), "fra_RotationCenter");
    for (int c = 0; c < 5; ++c) {
        plot.AddCamera(QStringLiteral("V%1").arg(c), 10, 1, 100, 0, 0, 100, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                       0, 0, 0, 0, 0, 0, 0, 0, 0, 0, "", "");
        plot.AddCalibrationPoint(c, 0, 0);
        if (c == 4) {
            plot.AddCalibrationPoint(1, 1, 1);
            EXPECT_EQ(plot.LastErrorString(), "Error in AddCalibrationPoint: Subscript out of range");
        }
        plot.FinishCamera();
    }
    EXPECT_EQ(errors.count(), 1);
    plot.AddCamera("V5", 10, 1, 100, 0, 0, 100, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                   "", "");
    EXPECT_EQ(plot.LastErrorString(), "Error in AddCamera: Subscript out of range");
    plot.FinishCamera();
    EXPECT_EQ(plot.LastErrorString(), "Error in FinishCamera: Subscript out of range in FinishCamera");
    EXPECT_EQ(errors.count(), 3);
    EXPECT_EQ(list->count(), 6);
    EXPECT_EQ(list->itemText(0), "User Frame");
    EXPECT_EQ(list->itemText(5), "V4");

    for (int f = 0; f < 7; ++f)
        plot.AddFoundPoint(0, f, 0, 0, f, 1, 0, 0, 0, 100, f, 1, -100);
    EXPECT_EQ(errors.count(), 3);
    plot.AddFoundPoint(0, 8, 0, 0, 8, 1, 0, 0, 0, 100, 8, 1, -100);
    EXPECT_EQ(plot.LastErrorString(), "Error in AddFoundPoint: Subscript out of range");
    EXPECT_EQ(errors.count(), 4);
    plot.ClearFoundPoints();
    plot.AddFoundPoint(0, 8, 0, 0, 8, 1, 0, 0, 0, 100, 8, 1, -100);
    EXPECT_EQ(errors.count(), 4);
    EXPECT_EQ(plot.GetProperty("FoundPointCount"), "1");

    plot.Reset();
    EXPECT_EQ(list->count(), 1);
    EXPECT_EQ(list->currentText(), "User Frame");
    plot.InitializeDrawing();
    EXPECT_EQ(plot.GetProperty("CameraCount"), "0");
    EXPECT_EQ(plot.GetProperty("NoSuchKey"), "");
    EXPECT_EQ(plot.LastErrorString(), "Error: unknown property (NoSuchKey)");
    EXPECT_EQ(errors.count(), 5);
}
