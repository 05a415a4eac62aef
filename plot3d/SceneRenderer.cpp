#include "plot3d/SceneRenderer.h"

#include <GL/freeglut.h>
#include <GL/gl.h>
#include <GL/glu.h>

#include <algorithm>
#include <cmath>

namespace nxr::plot3d {
namespace {

void vertex(const Vec3& v)
{
    glVertex3d(v.x, v.y, v.z);
}

// Points and lines are drawn in their own colours, unlit.
struct Unlit
{
    Unlit()
    {
        glPushAttrib(GL_ENABLE_BIT);
        glDisable(GL_LIGHTING);
    }
    ~Unlit() { glPopAttrib(); }
};

void disk(double inner, double outer, int slices)
{
    GLUquadric* q = gluNewQuadric();
    gluDisk(q, inner, outer, slices, 1);
    gluDeleteQuadric(q);
}

void cylinder(double radius, double height, int slices)
{
    GLUquadric* q = gluNewQuadric();
    gluCylinder(q, radius, radius, height, slices, 1);
    gluDeleteQuadric(q);
}

// The square of grid cells covering the calibration points, in the grid frame.
struct GridExtent
{
    double x0, y0, step;
    int nx, ny;
};

GridExtent gridExtent(const Camera& camera)
{
    double step = camera.gridSpacing > 0 ? camera.gridSpacing : 10.0;
    double x0 = -5 * step, x1 = 5 * step, y0 = -5 * step, y1 = 5 * step;
    if (!camera.calibrationPoints.empty()) {
        const Mat4 toGrid = camera.gridPose.transform().rigidInverse();
        x0 = y0 = 1e300;
        x1 = y1 = -1e300;
        for (const Vec3& p : camera.calibrationPoints) {
            const Vec3 g = toGrid.transformPoint(p);
            x0 = std::min(x0, g.x);
            x1 = std::max(x1, g.x);
            y0 = std::min(y0, g.y);
            y1 = std::max(y1, g.y);
        }
    }
    // At most 60 cells a side: wider cells for a fine grid over a large area.
    while ((x1 - x0) / step > 60 || (y1 - y0) / step > 60)
        step *= 2;
    const double sx0 = std::floor(x0 / step) * step, sy0 = std::floor(y0 / step) * step;
    const int nx = std::max(1, int(std::ceil((x1 - sx0) / step - 1e-9)));
    const int ny = std::max(1, int(std::ceil((y1 - sy0) / step - 1e-9)));
    return {sx0, sy0, step, nx, ny};
}

double bodySize(const Camera& camera)
{
    if (camera.calibPlaneDistance > 0)
        return camera.calibPlaneDistance * 0.08;
    if (camera.gridSpacing > 0)
        return camera.gridSpacing * 3;
    return 10.0;
}

} // namespace

void SceneRenderer::applyState()
{
    glPointSize(5.0f);
    glLineWidth(1.0f);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LESS);
    glDepthMask(GL_TRUE);
    glEnable(GL_BLEND);
    glEnable(GL_POINT_SMOOTH);
    glEnable(GL_LINE_SMOOTH);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glClearColor(0.6f, 0.75f, 1.0f, 0.0f);
    // The picture is opaque: drawing never touches the alpha channel, which draw() keeps at 1
    // (the window system composes the widget's frame by its alpha).
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_FALSE);

    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
    glEnable(GL_COLOR_MATERIAL);
    const GLfloat specular[] = {0.3f, 0.3f, 0.3f, 1.0f};
    glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, specular);
    glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, 16.0f);

    glEnable(GL_LIGHTING);
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, GL_TRUE);
    const GLfloat globalAmbient[] = {0.5f, 0.5f, 0.5f, 1.0f};
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, globalAmbient);
    const GLfloat ambient[] = {0, 0, 0, 1}, diffuse[] = {1, 1, 1, 1}, lightSpecular[] = {0, 0, 0, 1};
    glLightfv(GL_LIGHT0, GL_AMBIENT, ambient);
    glLightfv(GL_LIGHT0, GL_DIFFUSE, diffuse);
    glLightfv(GL_LIGHT0, GL_SPECULAR, lightSpecular);
    glEnable(GL_LIGHT0);
    glDisable(GL_TEXTURE_2D);
    glDisable(GL_CULL_FACE);
    glDisable(GL_SCISSOR_TEST);
    glDisable(GL_STENCIL_TEST);
    glFlush();
}

void SceneRenderer::clearAlphaToOpaque()
{
    GLfloat clear[4];
    glGetFloatv(GL_COLOR_CLEAR_VALUE, clear);
    glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_TRUE);
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glClearColor(clear[0], clear[1], clear[2], clear[3]);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_FALSE);
}

void SceneRenderer::initialize()
{
    // Font bitmaps of characters 0..126, one list each.
    for (int c = 0; c < kFontChars; ++c) {
        glNewList(kFontBase + unsigned(c), GL_COMPILE);
        if (m_glut && c >= 32)
            glutBitmapCharacter(GLUT_BITMAP_HELVETICA_12, c);
        glEndList();
    }
    applyState();
    // Two ring markers: the back and the front of a camera body.
    for (unsigned list : {1u, 2u}) {
        glNewList(list, GL_COMPILE);
        glColor4d(0, 0, 0, 0.25);
        disk(0.5, list == 1 ? 0.6 : 0.7, 31);
        glEndList();
    }
}

unsigned SceneRenderer::nextList()
{
    return kFirstSceneList + unsigned(m_sceneLists++);
}

void SceneRenderer::cube(double size, bool solid)
{
    if (m_glut) {
        if (solid)
            glutSolidCube(size);
        else
            glutWireCube(size);
        return;
    }
    const double h = size / 2;
    const Vec3 c[8] = {{-h, -h, -h}, {h, -h, -h}, {h, h, -h}, {-h, h, -h},
                       {-h, -h, h},  {h, -h, h},  {h, h, h},  {-h, h, h}};
    const int faces[6][4] = {{0, 3, 2, 1}, {4, 5, 6, 7}, {0, 1, 5, 4},
                             {2, 3, 7, 6}, {1, 2, 6, 5}, {0, 4, 7, 3}};
    const Vec3 normals[6] = {{0, 0, -1}, {0, 0, 1}, {0, -1, 0}, {0, 1, 0}, {1, 0, 0}, {-1, 0, 0}};
    for (int f = 0; f < 6; ++f) {
        glBegin(solid ? GL_QUADS : GL_LINE_LOOP);
        glNormal3d(normals[f].x, normals[f].y, normals[f].z);
        for (int v : faces[f])
            vertex(c[v]);
        glEnd();
    }
}

void SceneRenderer::compileCamera(const Camera& camera)
{
    // The calibration grid: a checkerboard of cells in its own frame.
    glNewList(nextList(), GL_COMPILE);
    {
        glPushMatrix();
        glMultMatrixd(camera.gridPose.transform().data());
        const GridExtent g = gridExtent(camera);
        glNormal3d(0, 0, 1);
        glBegin(GL_QUADS);
        for (int i = 0; i < g.nx; ++i)
            for (int j = 0; j < g.ny; ++j) {
                const double grey = (i + j) % 2 ? 0.35 : 0.8;
                glColor4d(grey, grey, grey, 0.25);
                const double x = g.x0 + i * g.step, y = g.y0 + j * g.step;
                glVertex3d(x, y, 0);
                glVertex3d(x + g.step, y, 0);
                glVertex3d(x + g.step, y + g.step, 0);
                glVertex3d(x, y + g.step, 0);
            }
        glEnd();
        Unlit unlit;
        glColor4d(0.3, 0.3, 0.3, 0.5);
        glBegin(GL_LINE_LOOP);
        glVertex3d(g.x0, g.y0, 0);
        glVertex3d(g.x0 + g.nx * g.step, g.y0, 0);
        glVertex3d(g.x0 + g.nx * g.step, g.y0 + g.ny * g.step, 0);
        glVertex3d(g.x0, g.y0 + g.ny * g.step, 0);
        glEnd();
        glPopMatrix();
    }
    glEndList();

    // The calibration points.
    glNewList(nextList(), GL_COMPILE);
    {
        Unlit unlit;
        glColor4d(0.1, 0.2, 0.85, 1.0);
        glBegin(GL_POINTS);
        for (const Vec3& p : camera.calibrationPoints)
            vertex(p);
        glEnd();
    }
    glEndList();

    // The viewing cone from the camera through its field-of-view corners.
    const Vec3 apex = camera.cameraPose.position();
    std::vector<Vec3> corners;
    for (const Line& line : camera.fovCorners)
        corners.push_back(CalibrationScene::fovCornerEnd(camera, line));
    glNewList(nextList(), GL_COMPILE);
    if (!corners.empty()) {
        Unlit unlit;
        glColor4d(0, 0, 0, 0.02);
        glBegin(GL_TRIANGLE_FAN);
        vertex(apex);
        for (const Vec3& c : corners)
            vertex(c);
        vertex(corners.front());
        glEnd();
        glColor4d(0, 0, 0, 0.1);
        glBegin(GL_LINES);
        for (const Vec3& c : corners) {
            vertex(apex);
            vertex(c);
        }
        glEnd();
        glColor4d(0, 0, 0, 1);
    }
    glEndList();

    // The field of view at the calibration plane.
    glNewList(nextList(), GL_COMPILE);
    if (corners.size() >= 3) {
        glColor4d(0.5, 0.5, 0.5, 0.5);
        glBegin(corners.size() == 4 ? GL_QUADS : GL_POLYGON);
        const Vec3 n = cross(corners[1] - corners[0], corners[2] - corners[0]);
        glNormal3d(n.x, n.y, n.z);
        for (const Vec3& c : corners)
            vertex(c);
        glEnd();
        Unlit unlit;
        glColor4d(0, 0, 0, 0.5);
        glBegin(GL_LINE_LOOP);
        for (const Vec3& c : corners)
            vertex(c);
        glEnd();
    }
    glEndList();

    // The camera body: a tube closed at the back, looking along its Z axis.
    glNewList(nextList(), GL_COMPILE);
    {
        glPushMatrix();
        glMultMatrixd(camera.cameraPose.transform().data());
        const double s = bodySize(camera);
        glScaled(s, s, s);
        glColor4d(1, 1, 1, 0.15);
        disk(0, 0.5, 32);
        cylinder(0.5, 1.0, 32);
        glPushMatrix();
        glTranslated(0, 0, 1);
        glCallList(2);
        glPopMatrix();
        glRotated(180, 1, 0, 0);
        glColor4d(1, 1, 1, 0.15);
        disk(0, 0.5, 32);
        glCallList(1);
        glPopMatrix();
    }
    glEndList();
}

void SceneRenderer::compileFinish(const CalibrationScene& scene)
{
    m_finishMark = m_sceneLists;
    const double r = scene.radius();

    // The user frame: its axes and a cube at its origin.
    glNewList(nextList(), GL_COMPILE);
    {
        glColor4d(0.4, 0.4, 0.4, 1.0);
        cube(r / 100, true);
        Unlit unlit;
        const double a = r / 5;
        glBegin(GL_LINES);
        glColor4d(0.8, 0, 0, 1);
        glVertex3d(0, 0, 0);
        glVertex3d(a, 0, 0);
        glColor4d(0, 0.6, 0, 1);
        glVertex3d(0, 0, 0);
        glVertex3d(0, a, 0);
        glColor4d(0, 0, 0.8, 1);
        glVertex3d(0, 0, 0);
        glVertex3d(0, 0, a);
        glEnd();
    }
    glEndList();

    // Reference (nominal) positions: solid red cubes.
    m_referenceList = nextList();
    glNewList(m_referenceList, GL_COMPILE);
    {
        Unlit unlit;
        glColor4d(0.8, 0, 0, 1);
        for (const FoundPoint& f : scene.foundPoints()) {
            glPushMatrix();
            glTranslated(f.nominal.x, f.nominal.y, f.nominal.z);
            cube(r / 60, true);
            glPopMatrix();
        }
    }
    glEndList();

    // Offset reference (found) positions: orange wire cubes.
    m_offsetReferenceList = nextList();
    glNewList(m_offsetReferenceList, GL_COMPILE);
    {
        Unlit unlit;
        glColor4d(1, 0.5, 0, 1);
        for (const FoundPoint& f : scene.foundPoints()) {
            glPushMatrix();
            glTranslated(f.offset.x, f.offset.y, f.offset.z);
            cube(r / 40, false);
            glPopMatrix();
        }
    }
    glEndList();

    // Each found point with its line of sight and its line back to the nominal position.
    m_labels.clear();
    for (size_t i = 0; i < scene.foundPoints().size(); ++i) {
        const FoundPoint& f = scene.foundPoints()[i];
        glNewList(nextList(), GL_COMPILE);
        {
            Unlit unlit;
            glEnable(GL_POLYGON_OFFSET_LINE);
            glPointSize(5.0f);
            glColor4d(0, 0.5, 0, 1);
            glBegin(GL_POINTS);
            vertex(f.offset);
            glEnd();
            const Line& sight = f.lineOfSight;
            const double dd = dot(sight.direction, sight.direction);
            double t = dd > 0 ? dot(f.offset - sight.start, sight.direction) / dd : 0;
            if (t <= 0)
                t = 1;
            glBegin(GL_LINES);
            vertex(sight.start);
            vertex(sight.start + sight.direction * t);
            vertex(f.nominal);
            vertex(f.offset);
            glEnd();
        }
        glEndList();

        const QByteArray text = foundPointLabel(int(i)).toLatin1();
        m_labels.push_back({f.offset, QString::fromLatin1(text)});
        glNewList(kFirstLabelList + unsigned(i), GL_COMPILE);
        {
            Unlit unlit;
            glColor4d(0, 0, 0, 1);
            glRasterPos3d(f.offset.x, f.offset.y, f.offset.z);
            glBitmap(0, 0, 0, 0, 6, 6, nullptr); // beside the point, not over it
            if (m_glut) {
                glListBase(kFontBase);
                glCallLists(GLsizei(text.size()), GL_UNSIGNED_BYTE, text.constData());
            }
        }
        glEndList();
    }
}

void SceneRenderer::dropFinish()
{
    if (m_finishMark < 0)
        return;
    const int count = m_sceneLists - m_finishMark;
    if (count > 0)
        glDeleteLists(kFirstSceneList + unsigned(m_finishMark), count);
    if (!m_labels.empty())
        glDeleteLists(kFirstLabelList, GLsizei(m_labels.size()));
    m_sceneLists = m_finishMark;
    m_finishMark = -1;
    m_labels.clear();
    m_referenceList = m_offsetReferenceList = 0;
}

void SceneRenderer::dropAll()
{
    dropFinish();
    if (m_sceneLists > 0)
        glDeleteLists(kFirstSceneList, m_sceneLists);
    m_sceneLists = 0;
    m_camerasCompiled = 0;
}

void SceneRenderer::sync(const CalibrationScene& scene)
{
    if (scene.generation() != m_generation) {
        dropAll();
        m_generation = scene.generation();
        m_foundGeneration = scene.foundGeneration();
    }
    if (scene.foundGeneration() != m_foundGeneration) {
        dropFinish();
        m_foundGeneration = scene.foundGeneration();
    }
    int finished = 0;
    for (const Camera& c : scene.cameras())
        finished += c.finished ? 1 : 0;
    if (finished > m_camerasCompiled) {
        // Cameras come before the finishing lists.
        dropFinish();
        for (int i = m_camerasCompiled; i < int(scene.cameras().size()); ++i)
            if (scene.cameras()[size_t(i)].finished)
                compileCamera(scene.cameras()[size_t(i)]);
        m_camerasCompiled = finished;
    }
    if (scene.drawingFinished() && m_finishMark < 0)
        compileFinish(scene);
}

void SceneRenderer::draw(const CalibrationScene& scene, const ViewState& view, int width, int height,
                         bool showReference, bool showOffsetReference)
{
    glViewport(0, 0, width, height);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    clearAlphaToOpaque();

    const double r = scene.radius();
    const Projection p = view.projection(r, width, height);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    gluPerspective(p.fovy, p.aspect, p.zNear, p.zFar);

    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    const GLfloat fromViewer[] = {0, 0, 1, 0};
    glLightfv(GL_LIGHT0, GL_POSITION, fromViewer);
    gluLookAt(0, 0, p.eyeDistance, 0, 0, 0, 0, 1, 0);
    glTranslated(view.panX(), view.panY(), 0);
    const Vec3 o = view.secondOffset();
    glTranslated(o.x, o.y, o.z);
    glMultMatrixd(view.rotation().data());
    const Vec3 c = scene.centre();
    glTranslated(-c.x, -c.y, -c.z);
    glLightfv(GL_LIGHT0, GL_POSITION, fromViewer);

    glDepthMask(GL_FALSE);
    for (int i = 1; i <= m_sceneLists; ++i) {
        const unsigned list = kFirstSceneList - 1 + unsigned(i);
        if (list == m_referenceList && !showReference)
            continue;
        if (list == m_offsetReferenceList && !showOffsetReference)
            continue;
        glCallList(list);
    }
    glDepthMask(GL_TRUE);
    glDepthFunc(GL_ALWAYS);
    for (int i = 1; i <= int(m_labels.size()); ++i)
        glCallList(kFirstLabelList - 1 + unsigned(i));
    glDepthFunc(GL_LESS);

    glGetDoublev(GL_MODELVIEW_MATRIX, m_modelView.m.data());
    glGetDoublev(GL_PROJECTION_MATRIX, m_projection.m.data());
}

void SceneRenderer::release()
{
    glDeleteLists(1, kFontBase + kFontChars - 1);
    m_sceneLists = 0;
    m_camerasCompiled = 0;
    m_finishMark = -1;
    m_labels.clear();
    m_generation = m_foundGeneration = -1;
}

} // namespace nxr::plot3d
