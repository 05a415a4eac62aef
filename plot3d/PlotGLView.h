#pragma once
// The picture of the calibration plot (pic_OpenGL): an OpenGL widget with a compatibility-profile
// context that draws the scene's display lists and turns, moves and zooms the view with the mouse.
// It shares the scene and the view state with its owner and tells it when the view changed.

#include "frame/Export.h"
#include "plot3d/CalibrationScene.h"
#include "plot3d/PointPicker.h"
#include "plot3d/SceneRenderer.h"
#include "plot3d/ViewState.h"

#include <QOpenGLWidget>
#include <QPoint>

#include <memory>

namespace nxr::plot3d {

class NXR_EXPORT PlotGLView : public QOpenGLWidget
{
    Q_OBJECT

public:
    PlotGLView(CalibrationScene* scene, ViewState* view, QWidget* parent = nullptr);
    ~PlotGLView() override;

    // The format every plot context asks for: compatibility profile, RGBA, depth, double buffer.
    static QSurfaceFormat plotFormat();
    // Sets up GLUT once per process, and only where it can work (an X display the application is
    // connected to); answers whether GLUT is usable. Without it cubes are drawn by hand and labels
    // are written with QPainter over the GL frame.
    static bool glutAvailable();
    // Makes glutAvailable() answer false from now on, as on a system without an X display; for
    // trying the hand-drawn cubes and the QPainter labels where GLUT would work.
    static void disableGlut();

    void setReferenceVisible(bool visible);
    void setOffsetReferenceVisible(bool visible);
    bool referenceVisible() const { return m_showReference; }
    bool offsetReferenceVisible() const { return m_showOffsetReference; }

    // Compiles what the scene has gained or dropped, now when the context exists (else when it
    // is created), then redraws.
    void sceneChanged();
    void redraw() { update(); }
    // Draws the picture into the widget's frame right away and waits for the GL to finish,
    // without composing it into the window (for measurements).
    void renderNow();

    const SceneRenderer* renderer() const { return m_renderer.get(); }
    int mouseMode() const { return m_mode; }

Q_SIGNALS:
    void viewChanged();

protected:
    void initializeGL() override;
    void resizeGL(int w, int h) override;
    void paintGL() override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    PickedPoint pickAt(const QPoint& pos, double radius) const;
    void releaseLists();

    CalibrationScene* m_scene;
    ViewState* m_view;
    std::unique_ptr<SceneRenderer> m_renderer;
    bool m_showReference = true;
    bool m_showOffsetReference = true;
    int m_mode = 0;
    QPoint m_last;
};

} // namespace nxr::plot3d
