// The plot's maths without a screen: poses, the scene model's limits, the view rules, picking
// and where images may be saved.
#include "frame/Conversions.h"
#include "plot3d/CalibrationScene.h"
#include "plot3d/PointPicker.h"
#include "plot3d/Pose.h"
#include "plot3d/SavePath.h"
#include "plot3d/ViewState.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cmath>

using namespace nxr::plot3d;

namespace {

void expectMatrix(const Mat4& m, const double (&rows)[4][4], double tol = 1e-12)
{
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            EXPECT_NEAR(m.at(r, c), rows[r][c], tol) << "row " << r << " col " << c;
}

void expectPoint(const Vec3& a, const Vec3& b, double tol = 1e-9)
{
    EXPECT_NEAR(a.x, b.x, tol);
    EXPECT_NEAR(a.y, b.y, tol);
    EXPECT_NEAR(a.z, b.z, tol);
}

Camera camera(const QString& name, int points, Pose pose = {})
{
    Camera c;
    c.viewName = name;
    c.gridSpacing = 10;
    c.numCalibrationPoints = points;
    c.calibPlaneDistance = 500;
    c.cameraPose = pose;
    return c;
}

QString failureOf(const std::function<void()>& f)
{
    try {
        f();
    } catch (const nxr::Failure& e) {
        return e.description();
    }
    return QString();
}

} // namespace

TEST(Pose, TransformsAgainstHandComputedMatrices)
{
    struct Case
    {
        Pose pose;
        double rows[4][4];
    };
    const Case cases[] = {
        // Translation only.
        {{10, 20, 30, 0, 0, 0}, {{1, 0, 0, 10}, {0, 1, 0, 20}, {0, 0, 1, 30}, {0, 0, 0, 1}}},
        // W turns about X.
        {{0, 0, 0, 90, 0, 0}, {{1, 0, 0, 0}, {0, 0, -1, 0}, {0, 1, 0, 0}, {0, 0, 0, 1}}},
        // P turns about Y.
        {{0, 0, 0, 0, 90, 0}, {{0, 0, 1, 0}, {0, 1, 0, 0}, {-1, 0, 0, 0}, {0, 0, 0, 1}}},
        // R turns about Z.
        {{0, 0, 0, 0, 0, 90}, {{0, -1, 0, 0}, {1, 0, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}},
        // W then R about the fixed axes: Rz(90) * Rx(90), not Rx * Rz.
        {{1, 2, 3, 90, 0, 90}, {{0, 0, 1, 1}, {1, 0, 0, 2}, {0, 1, 0, 3}, {0, 0, 0, 1}}},
        // W, P, R all at once: Rz(90) * Ry(90) * Rx(90).
        {{0, 0, 0, 90, 90, 90}, {{0, 0, 1, 0}, {0, 1, 0, 0}, {-1, 0, 0, 0}, {0, 0, 0, 1}}},
        // 30 degrees about Z.
        {{0, 0, 0, 0, 0, 30},
         {{std::sqrt(3) / 2, -0.5, 0, 0}, {0.5, std::sqrt(3) / 2, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "W " << c.pose.w << " P " << c.pose.p << " R " << c.pose.r);
        expectMatrix(c.pose.transform(), c.rows);
    }
}

TEST(Pose, PointsMoveIntoTheOuterFrameAndBack)
{
    const Pose pose{100, -50, 20, 15, -40, 170};
    const Mat4 t = pose.transform();
    const Vec3 p{3, -7, 11};
    expectPoint(t.rigidInverse().transformPoint(t.transformPoint(p)), p);
    // The pose's origin is its position; lengths are kept.
    expectPoint(t.transformPoint({}), pose.position());
    EXPECT_NEAR(length(t.transformPoint(p) - pose.position()), length(p), 1e-9);
    // Stored column by column (as OpenGL takes it): the translation sits in elements 12, 13, 14.
    expectPoint({t.m[12], t.m[13], t.m[14]}, pose.position(), 0);
}

TEST(Pose, PerspectiveAndLookAtMatchTheGluMatrices)
{
    const double persp[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, -2, -3}, {0, 0, -1, 0}};
    expectMatrix(Mat4::perspective(90, 1, 1, 3), persp);
    // Looking from +Z at the origin with Y up changes nothing but the distance.
    const double look[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, -5}, {0, 0, 0, 1}};
    expectMatrix(Mat4::lookAt({0, 0, 5}, {0, 0, 0}, {0, 1, 0}), look);
    // The centre of the view projects to the middle of the viewport.
    Vec3 w;
    ASSERT_TRUE(project({0, 0, 0}, Mat4::lookAt({0, 0, 5}, {}, {0, 1, 0}), Mat4::perspective(40, 2, 1, 10),
                        200, 100, &w));
    EXPECT_NEAR(w.x, 100, 1e-9);
    EXPECT_NEAR(w.y, 50, 1e-9);
    EXPECT_FALSE(project({0, 0, 9}, Mat4::lookAt({0, 0, 5}, {}, {0, 1, 0}), Mat4::perspective(40, 2, 1, 10),
                         200, 100, &w));
}

// The camera and found-point limits and their messages are checked through the control
// (RenderTest); here what only the scene shows.
TEST(Scene, NothingIsAddedWithoutAnOpenCameraAndInitializeEmptiesIt)
{
    CalibrationScene scene;
    for (int i = 0; i < 5; ++i) {
        scene.addCamera(camera(QStringLiteral("C%1").arg(i), 2));
        scene.finishCamera();
    }
    // Nothing to add to once every camera is finished (the control's limits: RenderTest).
    EXPECT_EQ(failureOf([&] { scene.addFovCorner({}); }), "Subscript out of range");
    scene.addFoundPoint({});
    scene.initialize();
    EXPECT_TRUE(scene.cameras().empty());
    EXPECT_TRUE(scene.foundPoints().empty());
}

TEST(Scene, BoxCoversEverythingAddedAndInitializeResetsIt)
{
    CalibrationScene scene;
    Camera c = camera("CAM", 2, {0, 0, 1000, 180, 0, 0});
    scene.addCamera(c);
    scene.addCalibrationPoint({-100, 50, 0});
    scene.addCalibrationPoint({200, -80, 10});
    // Corner line from the camera straight down: it ends 500 mm along its unit direction.
    scene.addFovCorner({{0, 0, 1000}, {0, 0, -2}});
    expectPoint(CalibrationScene::fovCornerEnd(scene.cameras()[0], {{0, 0, 1000}, {0, 0, -2}}), {0, 0, 500});
    scene.finishCamera();
    FoundPoint f;
    f.nominal = {300, 0, 0};
    f.offset = {301, 0, -20};
    scene.addFoundPoint(f);
    expectPoint(scene.box().min, {-100, -80, -20});
    expectPoint(scene.box().max, {301, 50, 1000});
    expectPoint(scene.box().centre(), {100.5, -15, 490});
    EXPECT_NEAR(scene.radius(), std::sqrt(401.0 * 401 + 130 * 130 + 1020 * 1020), 1e-9);
    expectPoint(f.deviation(), {1, 0, -20});

    scene.setCentre({1, 2, 3});
    scene.initialize();
    // Empty again: no box, a unit radius to frame, the user frame as the only rotation centre.
    EXPECT_TRUE(scene.box().isEmpty());
    EXPECT_EQ(scene.radius(), 1.0);
    EXPECT_EQ(scene.rotationCentreNames(), QStringList{"User Frame"});
    expectPoint(scene.centre(), {});
}

TEST(Scene, RotationCentresAreTheUserFrameAndTheCameras)
{
    CalibrationScene scene;
    scene.addCamera(camera("LEFT", 0, {10, 20, 30, 0, 0, 0}));
    scene.finishCamera();
    scene.addCamera(camera("RIGHT", 0, {-10, 5, 7, 0, 0, 0}));
    EXPECT_EQ(scene.rotationCentreNames(), (QStringList{"User Frame", "LEFT", "RIGHT"}));
    expectPoint(scene.rotationCentreFor(0), {});
    expectPoint(scene.rotationCentreFor(2), {-10, 5, 7});
    expectPoint(scene.rotationCentreFor(3), {});
}

TEST(View, MouseModesFollowTheButtons)
{
    struct Case
    {
        Qt::MouseButtons buttons;
        Qt::KeyboardModifiers mods;
        int mode;
    };
    const Case cases[] = {
        {Qt::LeftButton | Qt::RightButton, Qt::NoModifier, 3},
        {Qt::LeftButton | Qt::RightButton, Qt::ControlModifier, 3},
        {Qt::MiddleButton, Qt::NoModifier, 2},
        {Qt::RightButton, Qt::ControlModifier, 2},
        {Qt::RightButton, Qt::NoModifier, 1},
        {Qt::RightButton, Qt::ShiftModifier, 1},
        {Qt::LeftButton, Qt::NoModifier, 0},
        {Qt::LeftButton, Qt::ControlModifier, 0},
        {Qt::NoButton, Qt::NoModifier, 0},
    };
    for (const Case& c : cases)
        EXPECT_EQ(ViewState::mouseMode(c.buttons, c.mods), c.mode) << int(c.buttons) << " " << int(c.mods);
}

TEST(View, TurningIs180DegreesPerPictureHeightAndElevationIsClamped)
{
    ViewState v;
    v.setAngles(0, 0);
    v.turn(100, 0, 400);
    EXPECT_DOUBLE_EQ(v.azimuth(), 45);
    v.turn(0, -200, 400); // upward
    EXPECT_DOUBLE_EQ(v.elevation(), 90);
    v.turn(0, -400, 400); // further up stops at 90
    EXPECT_DOUBLE_EQ(v.elevation(), 90);
    v.turn(0, 1000, 400);
    EXPECT_DOUBLE_EQ(v.elevation(), -90);
    v.turn(0, -40, 400);
    EXPECT_DOUBLE_EQ(v.elevation(), -72);
}

TEST(View, ZoomStepsScaleTheEyeDistanceBy098)
{
    const double r = 250;
    ViewState v;
    const double d0 = v.projection(r, 100, 100).eyeDistance;
    EXPECT_DOUBLE_EQ(d0, 6 * r);
    v.zoom(1, r);
    EXPECT_NEAR(v.projection(r, 100, 100).eyeDistance, d0 * 0.98, 1e-9);
    v.zoom(3, r);
    EXPECT_NEAR(v.projection(r, 100, 100).eyeDistance, d0 * std::pow(0.98, 4), 1e-9);
    v.zoom(-4, r);
    EXPECT_NEAR(v.projection(r, 100, 100).eyeDistance, d0, 1e-9);
    EXPECT_NEAR(v.zoomDistance(), 0, 1e-9);
    v.zoom(-1, r);
    EXPECT_NEAR(v.projection(r, 100, 100).eyeDistance, d0 / 0.98, 1e-9);
    EXPECT_LT(v.zoomDistance(), 0);
}

TEST(View, ProjectionFollowsTheSceneSizeAndKeepsTheNearPlaneAtR20)
{
    const double r = 100;
    ViewState v;
    Projection p = v.projection(r, 400, 200);
    EXPECT_NEAR(p.fovy, 2 * std::atan(0.5 / 6) * 180 / M_PI, 1e-12);
    EXPECT_DOUBLE_EQ(p.aspect, 2);
    EXPECT_DOUBLE_EQ(p.zNear, 5 * r);
    EXPECT_DOUBLE_EQ(p.zFar, 7 * r);
    // Zoomed in until the eye is inside the scene: the near plane stops at R / 20.
    v.zoom(200, r);
    p = v.projection(r, 400, 200);
    EXPECT_LT(p.eyeDistance, r);
    EXPECT_DOUBLE_EQ(p.zNear, r / 20);
    EXPECT_NEAR(p.zFar, p.eyeDistance + r, 1e-9);
}

TEST(View, ModelViewTurnsAboutTheCentre)
{
    const double r = 100;
    ViewState v;
    v.setAngles(0, 90); // looking straight down on the XY plane
    const Vec3 centre{10, 20, 30};
    const Mat4 mv = v.modelView(r, centre);
    // The centre lies on the view axis at the eye distance.
    expectPoint(mv.transformPoint(centre), {0, 0, -6 * r});
    // Seen from above, +X is to the right and +Y is up on the screen.
    expectPoint(mv.transformPoint(centre + Vec3{1, 0, 0}), {1, 0, -6 * r});
    expectPoint(mv.transformPoint(centre + Vec3{0, 1, 0}), {0, 1, -6 * r});
    // From the side (elevation 0), +Z is up.
    v.setAngles(0, 0);
    expectPoint(v.modelView(r, {}).transformPoint({0, 0, 1}), {0, 1, -6 * r});
    // Pan moves the picture in eye units.
    v.setPan(5, -3);
    expectPoint(v.modelView(r, {}).transformPoint({}), {5, -3, -6 * r});
}

TEST(Picker, FindsThePointUnderTheMouseAndDescribesIt)
{
    CalibrationScene scene;
    scene.addCamera(camera("CAM1", 2, {0, 0, 800, 180, 0, 0}));
    scene.addCalibrationPoint({0, 0, 0});
    scene.addCalibrationPoint({50, 0, 0});
    scene.finishCamera();
    FoundPoint f;
    f.cameraIndex = 0;
    f.nominal = {-50, 0, 0};
    f.offset = {-49.5, 0.25, 0};
    scene.addFoundPoint(f);

    ViewState v;
    v.setAngles(0, 90);
    const int w = 400, h = 300;
    const Projection p = v.projection(scene.radius(), w, h);
    const Mat4 proj = Mat4::perspective(p.fovy, p.aspect, p.zNear, p.zFar);
    const Mat4 mv = v.modelView(scene.radius(), scene.centre());
    Vec3 win;
    ASSERT_TRUE(project({50, 0, 0}, mv, proj, w, h, &win));
    PickedPoint picked = pickPoint(scene, mv, proj, w, h, win.x + 2, h - win.y - 1, 6);
    EXPECT_EQ(picked.kind, PickedPoint::Kind::Calibration);
    EXPECT_EQ(picked.index, 1);
    EXPECT_EQ(tooltipText(scene, picked), "Calibration point 2 of CAM1\nX 50.00  Y 0.00  Z 0.00 mm");
    EXPECT_EQ(pickPoint(scene, mv, proj, w, h, win.x + 20, h - win.y, 6).kind, PickedPoint::Kind::None);

    ASSERT_TRUE(project(f.offset, mv, proj, w, h, &win));
    picked = pickPoint(scene, mv, proj, w, h, win.x, h - win.y, 6);
    EXPECT_EQ(picked.kind, PickedPoint::Kind::Found);
    const QString tip = tooltipText(scene, picked);
    EXPECT_TRUE(tip.startsWith("Found point P1 (CAM1)")) << tip.toStdString();
    EXPECT_TRUE(tip.contains("offset dX 0.50  dY 0.25  dZ 0.00 (0.56) mm")) << tip.toStdString();
}

TEST(SavePath, OnlyPngFilesInsideTheStorageFolder)
{
    QTemporaryDir tmp;
    ASSERT_TRUE(tmp.isValid());
    const QString root = QDir(tmp.path()).canonicalPath() + "/TORVIK";
    ASSERT_TRUE(QDir().mkpath(root));
    const QString outside = QDir(tmp.path()).canonicalPath() + "/outside";
    ASSERT_TRUE(QDir().mkpath(outside));
    ASSERT_TRUE(QFile::link(outside, root + "/escape"));

    struct Case
    {
        QString requested;
        QString expected; // empty: refused
    };
    const Case cases[] = {
        {"shot.png", root + "/shot.png"},
        {"reports/a/b.PNG", root + "/reports/a/b.PNG"},
        {root + "/x.png", root + "/x.png"},
        {"sub/../y.png", root + "/y.png"},
        {"../evil.png", ""},
        {"sub/../../evil.png", ""},
        {outside + "/evil.png", ""},
        {"/etc/evil.png", ""},
        {"escape/evil.png", ""},
        {"escape/deeper/evil.png", ""},
        {"notes.txt", ""},
        {"", ""},
        {"reports", ""},
    };
    for (const Case& c : cases) {
        QString got;
        try {
            got = resolveImagePath(root, c.requested);
        } catch (const nxr::Failure&) {
            got.clear();
        }
        EXPECT_EQ(got, c.expected) << c.requested.toStdString();
    }
    // Nothing was created outside the storage folder.
    EXPECT_FALSE(QFileInfo::exists(outside + "/deeper"));
}
