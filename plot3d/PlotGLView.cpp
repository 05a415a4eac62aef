#include "plot3d/PlotGLView.h"

#include <GL/freeglut.h>
#include <GL/gl.h>

#include <QGuiApplication>
#include <QMouseEvent>
#include <QOpenGLContext>
#include <QPainter>
#include <QToolTip>
#include <QWheelEvent>

namespace nxr::plot3d {

QSurfaceFormat PlotGLView::plotFormat()
{
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGL);
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    format.setVersion(2, 1);
    format.setRedBufferSize(8);
    format.setGreenBufferSize(8);
    format.setBlueBufferSize(8);
    format.setDepthBufferSize(24);
    format.setSwapBehavior(QSurfaceFormat::DoubleBuffer);
    return format;
}

namespace {
bool g_glutDisabled = false;
} // namespace

void PlotGLView::disableGlut()
{
    g_glutDisabled = true;
}

bool PlotGLView::glutAvailable()
{
    if (g_glutDisabled)
        return false;
    // freeglut opens its own connection to the X display named by DISPLAY and ends the process
    // when it cannot; it is only started when the application itself runs on that display.
    static const bool available = [] {
        if (QGuiApplication::platformName() != QLatin1String("xcb") || qEnvironmentVariableIsEmpty("DISPLAY"))
            return false;
        int argc = 1;
        char name[] = "nexaro";
        char* argv[] = {name, nullptr};
        glutInit(&argc, argv);
        return true;
    }();
    return available;
}

PlotGLView::PlotGLView(CalibrationScene* scene, ViewState* view, QWidget* parent)
    : QOpenGLWidget(parent), m_scene(scene), m_view(view)
{
    setObjectName(QStringLiteral("pic_OpenGL"));
    setFormat(plotFormat());
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(64, 64);
}

PlotGLView::~PlotGLView()
{
    // The base class destroys the context after this part of the object is gone: from here on its
    // aboutToBeDestroyed must not reach this object.
    if (context())
        disconnect(context(), &QOpenGLContext::aboutToBeDestroyed, this, nullptr);
    releaseLists();
}

void PlotGLView::releaseLists()
{
    if (!m_renderer || !context())
        return;
    makeCurrent();
    m_renderer->release();
    doneCurrent();
    m_renderer.reset();
}

void PlotGLView::initializeGL()
{
    m_renderer = std::make_unique<SceneRenderer>(glutAvailable());
    m_renderer->initialize();
    m_renderer->sync(*m_scene);
    connect(context(), &QOpenGLContext::aboutToBeDestroyed, this, &PlotGLView::releaseLists,
            Qt::UniqueConnection);
}

void PlotGLView::sceneChanged()
{
    if (m_renderer && context()) {
        makeCurrent();
        m_renderer->sync(*m_scene);
        doneCurrent();
    }
    update();
}

void PlotGLView::setReferenceVisible(bool visible)
{
    m_showReference = visible;
    update();
}

void PlotGLView::setOffsetReferenceVisible(bool visible)
{
    m_showOffsetReference = visible;
    update();
}

void PlotGLView::resizeGL(int w, int h)
{
    // Viewport and projection are set on every redraw from the current size.
    Q_UNUSED(w);
    Q_UNUSED(h);
}

void PlotGLView::paintGL()
{
    if (!m_renderer)
        return;
    const bool ownLabels = m_renderer->labelsDrawnByOwner();
    if (ownLabels)
        m_renderer->applyState(); // QPainter changed it last time
    m_renderer->sync(*m_scene);
    const qreal dpr = devicePixelRatioF();
    const int w = int(width() * dpr), h = int(height() * dpr);
    m_renderer->draw(*m_scene, *m_view, w, h, m_showReference, m_showOffsetReference);
    if (!ownLabels || m_renderer->labels().empty())
        return;
    QPainter painter(this);
    painter.setPen(Qt::black);
    for (const Label& label : m_renderer->labels()) {
        Vec3 win;
        if (!project(label.position, m_renderer->modelView(), m_renderer->projection(), w, h, &win))
            continue;
        painter.drawText(QPointF(win.x / dpr + 6, (h - win.y) / dpr - 6), label.text);
    }
}

void PlotGLView::renderNow()
{
    if (!m_renderer || !context())
        return;
    makeCurrent();
    paintGL();
    glFinish();
    doneCurrent();
}

PickedPoint PlotGLView::pickAt(const QPoint& pos, double radius) const
{
    if (!m_renderer)
        return {};
    const qreal dpr = devicePixelRatioF();
    return pickPoint(*m_scene, m_renderer->modelView(), m_renderer->projection(), int(width() * dpr),
                     int(height() * dpr), pos.x() * dpr, pos.y() * dpr, radius * dpr);
}

void PlotGLView::mousePressEvent(QMouseEvent* event)
{
    m_mode = ViewState::mouseMode(event->buttons(), event->modifiers());
    m_last = event->position().toPoint();
    QToolTip::hideText();
}

void PlotGLView::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint pos = event->position().toPoint();
    if (event->buttons() == Qt::NoButton) {
        const PickedPoint picked = pickAt(pos, 6);
        if (picked.kind == PickedPoint::Kind::None)
            QToolTip::hideText();
        else
            QToolTip::showText(event->globalPosition().toPoint(), tooltipText(*m_scene, picked), this);
        return;
    }
    const QPoint delta = pos - m_last;
    m_last = pos;
    const double r = m_scene->radius();
    switch (m_mode) {
    case 1:
        m_view->turn(delta.x(), delta.y(), height());
        break;
    case 2:
        m_view->pan(delta.x(), delta.y(), height(), r);
        break;
    case 3:
        m_view->zoom(-delta.y(), r);
        break;
    default:
        return;
    }
    update();
    Q_EMIT viewChanged();
}

void PlotGLView::mouseReleaseEvent(QMouseEvent* event)
{
    m_mode =
        event->buttons() == Qt::NoButton ? 0 : ViewState::mouseMode(event->buttons(), event->modifiers());
    m_last = event->position().toPoint();
}

void PlotGLView::mouseDoubleClickEvent(QMouseEvent* event)
{
    const PickedPoint picked = pickAt(event->position().toPoint(), 10);
    if (picked.kind == PickedPoint::Kind::None)
        return;
    m_scene->setCentre(picked.position);
    m_view->setPan(0, 0);
    m_view->setSecondOffset({});
    update();
    Q_EMIT viewChanged();
}

void PlotGLView::wheelEvent(QWheelEvent* event)
{
    const int steps = event->angleDelta().y() / 120;
    if (steps == 0)
        return;
    // One notch is five zoom steps.
    m_view->zoom(steps * 5, m_scene->radius());
    update();
    Q_EMIT viewChanged();
    event->accept();
}

} // namespace nxr::plot3d
