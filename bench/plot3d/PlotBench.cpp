// Redraw of the calibration plot while the view is turned, against the same display lists
// called in a bare context, measured in the same run; and the time to build the scene's lists.
//
// Scene: 5 cameras with 1,000 calibration points each and their grids, cones and fields of view,
// and 7 found points, in an 800 x 600 picture. Counters (medians of many frames, each finished
// with glFinish):
//   bare_ms      a bare offscreen context of the same size: clear, projection, model view, and
//                glCallList over the same scene and label lists
//   plot_ms      the plot during a right-button drag: one mouse move (turning the view) and the
//                widget's redraw into its frame (the window system's composition of that frame
//                into the window is left out: it is the toolkit's, the same for any GL widget)
//   ratio        plot_ms / bare_ms
//   ratio_best   the fastest plot frame / the fastest bare frame (steadier on a busy machine)
//   compile_ms   compiling every display list of the scene (already fed)
//   feed_ms      feeding the scene through the control's methods, InitializeDrawing to
//                FinishDrawing, lists compiled included
//
// Needs an X display with GLX, for example: xvfb-run -a build/bench/plot3d/plot3d_bench

#include "bench/support/BenchSupport.h"
#include "plot3d/NXR3DPlot.h"
#include "plot3d/PlotGLView.h"
#include "plot3d/SceneRenderer.h"

#include <GL/gl.h>
#include <GL/glu.h>

#include <QApplication>
#include <QMouseEvent>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QTest>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <memory>
#include <vector>

using namespace nxr::plot3d;

namespace {

using nxr::bench::median;
constexpr int kWidth = 800, kHeight = 600;

void feedScene(NXR3DPlot& plot)
{
    plot.InitializeDrawing();
    for (int c = 0; c < 5; ++c) {
        const double cx = (c - 2) * 300.0;
        plot.AddCamera(QStringLiteral("CAM%1").arg(c + 1), 5, 1000, 800, cx, 40, 800, 180, 5 * (c - 2), 0, cx,
                       0, 0, 0, 0, 3 * c, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, "GF", "UF");
        for (int k = 0; k < 4; ++k) {
            const double dx = (k == 0 || k == 3) ? -1 : 1, dy = k < 2 ? -1 : 1;
            plot.AddFOVCorner(cx, 40, 800, 0.2 * dx, 0.15 * dy, -1);
        }
        for (int i = 0; i < 1000; ++i)
            plot.AddCalibrationPoint(cx + 5 * (i % 40) - 100, 5 * (i / 40) - 60, 0.1 * std::sin(i));
        plot.FinishCamera();
    }
    for (int f = 0; f < 7; ++f) {
        const double x = (f - 3) * 180.0;
        plot.AddFoundPoint(f % 5, x, 30, 0, x + 2, 31, 0.5, x, 40, 800, 2, -9, -799.5);
    }
    plot.FinishDrawing();
}

struct Fixture
{
    std::unique_ptr<NXR3DPlot> plot;
    PlotGLView* gl = nullptr;

    // The bare context and its lists.
    QOffscreenSurface surface;
    QOpenGLContext context;
    std::unique_ptr<QOpenGLFramebufferObject> fbo;
    std::unique_ptr<SceneRenderer> bare;

    bool ok = false;

    Fixture()
    {
        plot = std::make_unique<NXR3DPlot>();
        gl = plot->glView();
        if (!gl) {
            std::fprintf(stderr, "no OpenGL picture: %s\n", qPrintable(plot->LastErrorString()));
            return;
        }
        feedScene(*plot);
        plot->show();
        if (!QTest::qWaitForWindowExposed(plot.get()))
            return;
        gl->resize(kWidth, kHeight);
        plot->resize(kWidth, kHeight + plot->height() - gl->height());
        QCoreApplication::processEvents();

        surface.setFormat(PlotGLView::plotFormat());
        surface.create();
        context.setFormat(PlotGLView::plotFormat());
        if (!context.create() || !context.makeCurrent(&surface))
            return;
        fbo = std::make_unique<QOpenGLFramebufferObject>(gl->width() * gl->devicePixelRatioF(),
                                                         gl->height() * gl->devicePixelRatioF(),
                                                         QOpenGLFramebufferObject::CombinedDepthStencil);
        fbo->bind();
        bare = std::make_unique<SceneRenderer>(PlotGLView::glutAvailable());
        bare->initialize();
        bare->sync(plot->scene());
        context.doneCurrent();
        ok = true;
    }

    ~Fixture()
    {
        if (context.makeCurrent(&surface)) {
            if (bare)
                bare->release();
            fbo.reset();
            context.doneCurrent();
        }
    }

    // The floor: the plot's lists called with the same matrices, nothing else.
    void bareFrame()
    {
        context.makeCurrent(&surface);
        fbo->bind();
        const int w = fbo->width(), h = fbo->height();
        const CalibrationScene& scene = plot->scene();
        const Projection p = plot->view().projection(scene.radius(), w, h);
        glViewport(0, 0, w, h);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        gluPerspective(p.fovy, p.aspect, p.zNear, p.zFar);
        glMatrixMode(GL_MODELVIEW);
        glLoadMatrixd(plot->view().modelView(scene.radius(), scene.centre()).data());
        glDepthMask(GL_FALSE);
        for (int i = 1; i <= bare->sceneListCount(); ++i)
            glCallList(SceneRenderer::kFirstSceneList - 1 + unsigned(i));
        glDepthMask(GL_TRUE);
        glDepthFunc(GL_ALWAYS);
        for (int i = 1; i <= bare->labelListCount(); ++i)
            glCallList(SceneRenderer::kFirstLabelList - 1 + unsigned(i));
        glDepthFunc(GL_LESS);
        glFinish();
        context.doneCurrent();
    }

    // One step of a right-button drag: the view turns by a pixel and the picture is redrawn.
    void dragFrame(int step)
    {
        const QPointF pos(200 + (step % 200), 300);
        QMouseEvent move(QEvent::MouseMove, pos, gl->mapToGlobal(pos), Qt::NoButton, Qt::RightButton, {});
        QCoreApplication::sendEvent(gl, &move);
        gl->renderNow();
    }

    double compileOnce()
    {
        context.makeCurrent(&surface);
        auto fresh = std::make_unique<SceneRenderer>(PlotGLView::glutAvailable());
        fresh->initialize();
        glFinish();
        const double ms = nxr::bench::timeOnce<std::milli>([&] {
            fresh->sync(plot->scene());
            glFinish();
        });
        fresh->release();
        context.doneCurrent();
        return ms;
    }
};

// Made on first use, ended in main while the application still exists.
std::unique_ptr<Fixture> g_fixture;
Fixture& fixture()
{
    if (!g_fixture)
        g_fixture = std::make_unique<Fixture>();
    return *g_fixture;
}

void RotateRedraw(benchmark::State& state)
{
    Fixture& f = fixture();
    if (!f.ok) {
        state.SkipWithError("no OpenGL context on this display");
        return;
    }
    QTest::mousePress(f.gl, Qt::RightButton, {}, QPoint(200, 300));
    std::vector<double> bare, plot;
    int step = 0;
    for (auto _ : state) {
        for (int i = 0; i < 40; ++i) {
            bare.push_back(nxr::bench::timeOnce<std::milli>([&] { f.bareFrame(); }));
            plot.push_back(nxr::bench::timeOnce<std::milli>([&] { f.dragFrame(++step); }));
        }
    }
    QTest::mouseRelease(f.gl, Qt::RightButton, {}, QPoint(200, 300));
    state.counters["bare_ms"] = median(bare);
    state.counters["plot_ms"] = median(plot);
    state.counters["ratio"] = median(plot) / median(bare);
    // The fastest frames of each, less disturbed by other work on a shared machine.
    state.counters["ratio_best"] =
        *std::min_element(plot.begin(), plot.end()) / *std::min_element(bare.begin(), bare.end());
}
BENCHMARK(RotateRedraw)->Iterations(5)->Unit(benchmark::kMillisecond);

void CompileScene(benchmark::State& state)
{
    Fixture& f = fixture();
    if (!f.ok) {
        state.SkipWithError("no OpenGL context on this display");
        return;
    }
    std::vector<double> compile, feed;
    for (auto _ : state) {
        compile.push_back(f.compileOnce());
        feed.push_back(nxr::bench::timeOnce<std::milli>([&] {
            feedScene(*f.plot);
            f.gl->makeCurrent();
            glFinish();
            f.gl->doneCurrent();
        }));
    }
    state.counters["compile_ms"] = median(compile);
    state.counters["feed_ms"] = median(feed);
}
BENCHMARK(CompileScene)->Iterations(15)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("DISPLAY")) {
        std::fprintf(stderr, "plot3d_bench needs an X display: xvfb-run -a %s\n", argv[0]);
        return 1;
    }
    qputenv("QT_QPA_PLATFORM", "xcb");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    g_fixture.reset();
    return 0;
}
