// Mask painting in the real image display, 2592 x 1944 camera image and mask, 1024 x 768 display,
// zoomed to fit, Large freehand pen:
//   - one mouse move of a stroke, from the event to the repainted frame (the stroke painted,
//     the changed part of the view repainted with the working mask tinted over the camera
//     image there), against the floor of showing that frame at all: a repaint of the whole view
//     of the bare image (ratio_frame), and, stricter, a repaint of the same rectangles of the
//     bare image (ratio_same_area); for scale, a repaint of the whole view while editing
//     (edit_frame_us, the tint made for every pixel of the view);
//   - the heap the edit takes in the display (working and original mask, the mask view's
//     reductions of the camera image and its buffer, everything else the edit holds), against
//     the decoded camera image.
// Times are the thread's CPU time, medians of many moves.

#include "HeapMeter.h"
#include "MaskScenario.h"
#include "bench/support/BenchSupport.h"
#include "imagedisplay/ImageViewport.h"
#include "imagedisplay/NXRImageDisplay.h"
#include "imagedisplay/RasterView.h"
#include "imagedisplay/ViewMaths.h"
#include "imagedisplay/edit/PaintLayer.h"
#include "imagedisplay/loading/DisplayLoading.h"
#include "imagedisplay/loading/ImageList.h"
#include "imagedisplay/parts/MaskPart.h"
#include "mask/NXRMaskToolButtons.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMouseEvent>
#include <QPushButton>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
#include <vector>

namespace {

namespace bench = nxr::bench;

double cpuMicros()
{
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) * 1e6 + double(t.tv_nsec) / 1e3;
}

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0.0 : v[v.size() / 2];
}

// Notes what each repaint covered.
class AreaLog : public nxr::PaintLayer
{
public:
    void paint(QPainter&, const nxr::ViewMaths&, const QRect& dirty) override { areas.push_back(dirty); }
    std::vector<QRect> areas;
};

struct Scene
{
    explicit Scene(bool grey)
    {
        display.resize(1024, 768);
        display.show();
        QApplication::processEvents();
        camera = bench::makeCameraPattern(grey);
        display.showImage(camera);
        display.viewport().fitImage();
        QImage mask(bench::kWidth, bench::kHeight, QImage::Format_RGB32);
        mask.fill(qRgb(0, 0, 0));
        display.loading().loader().images().insert(nxr::ImageList::kDontCareMask, mask);
        QApplication::processEvents();
    }
    void startEdit()
    {
        display.EditDontCareMask();
        auto& palette = *display.part<nxr::MaskPart>().palette();
        palette.toolButton(KSEMaskTool_Freehand)->click();
        palette.sizeButton(KSEMaskToolSize_Large)->click();
        QApplication::processEvents();
    }
    QPointF widgetAt(const QPointF& image) const
    {
        nxr::RasterView* view = display.maskLeadView();
        return display.viewport().maths().toScreen(image) / view->deviceRatio();
    }
    void send(QEvent::Type type, const QPointF& image, Qt::MouseButtons held)
    {
        nxr::RasterView* view = display.maskLeadView();
        const QPointF p = widgetAt(image);
        QMouseEvent e(type, p, view->mapToGlobal(p),
                      type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, held, Qt::NoModifier);
        QApplication::sendEvent(view, &e);
    }

    NXRImageDisplay display;
    QImage camera;
};

// A point of a slow circle around the image centre: moves of a few screen pixels at fit.
QPointF strokePoint(int i)
{
    const double a = i * 0.02;
    return QPointF(bench::kWidth / 2.0 + 600 * std::cos(a), bench::kHeight / 2.0 + 500 * std::sin(a));
}

void MouseMoveAgainstBareRepaint(benchmark::State& state)
{
    const bool grey = state.range(0) != 0;
    Scene scene(grey);
    nxr::RasterView* lead = scene.display.leadView();
    nxr::RasterView* maskView = scene.display.maskLeadView();

    scene.startEdit();
    AreaLog log;
    maskView->addLayer(&log, 5000);
    QApplication::processEvents();

    std::vector<double> moves, frames, sameAreas;
    std::vector<std::vector<QRect>> moveAreas;
    int i = 0;
    scene.send(QEvent::MouseButtonPress, strokePoint(i), Qt::LeftButton);
    QApplication::processEvents();
    for (auto _ : state) {
        for (int k = 0; k < 50; ++k) {
            ++i;
            log.areas.clear();
            const double t0 = cpuMicros();
            scene.send(QEvent::MouseMove, strokePoint(i), Qt::LeftButton);
            QApplication::processEvents();
            moves.push_back(cpuMicros() - t0);
            moveAreas.push_back(log.areas);
        }
    }
    scene.send(QEvent::MouseButtonRelease, strokePoint(i), Qt::NoButton);
    QApplication::processEvents();
    const auto strokes = scene.display.part<nxr::MaskPart>().session().editor().model().Operations().Count();
    maskView->removeLayer(&log);
    std::vector<double> editFrames;
    for (int k = 0; k < 20; ++k) {
        const double t0 = cpuMicros();
        maskView->repaintDevice(QRect(QPoint(0, 0), maskView->deviceSize()));
        QApplication::processEvents();
        editFrames.push_back(cpuMicros() - t0);
    }
    if (auto* cancel = scene.display.findChild<QPushButton*>("cmd_Cancel"))
        cancel->click();
    QApplication::processEvents();

    // The floors: the bare image (no edit) repainted whole, and in the rectangles a move repainted.
    const QRect whole(QPoint(0, 0), lead->deviceSize());
    AreaLog floorLog;
    lead->addLayer(&floorLog, 5000);
    QApplication::processEvents();
    floorLog.areas.clear();
    for (int k = 0; k < 60; ++k) {
        const double t0 = cpuMicros();
        lead->repaintDevice(whole);
        QApplication::processEvents();
        frames.push_back(cpuMicros() - t0);
    }
    for (size_t k = 0; k < moveAreas.size() && k < 400; ++k) {
        const double t0 = cpuMicros();
        for (const QRect& r : moveAreas[k])
            lead->repaintDevice(r);
        QApplication::processEvents();
        sameAreas.push_back(cpuMicros() - t0);
    }
    double floorArea = 0;
    for (const QRect& r : floorLog.areas)
        floorArea += double(r.width()) * r.height();
    lead->removeLayer(&floorLog);
    double area = 0;
    for (const auto& a : moveAreas)
        for (const QRect& r : a)
            area += double(r.width()) * r.height();
    const double move = median(moves);
    state.counters["zoom"] = scene.display.Zoom();
    state.counters["move_us"] = move;
    state.counters["bare_frame_us"] = median(frames);
    state.counters["edit_frame_us"] = median(editFrames);
    state.counters["bare_same_area_us"] = median(sameAreas);
    state.counters["ratio_frame"] = move / std::max(1.0, median(frames));
    state.counters["ratio_same_area"] = move / std::max(1.0, median(sameAreas));
    state.counters["repainted_px_per_move"] = moveAreas.empty() ? 0.0 : area / double(moveAreas.size());
    state.counters["view_px"] = double(whole.width()) * whole.height();
    // Every floor repaint really painted: the whole view 60 times, then the moves' rectangles.
    state.counters["floor_painted_px"] = floorArea;
    if (strokes != 1)
        state.SkipWithError("the stroke was not recorded");
}
BENCHMARK(MouseMoveAgainstBareRepaint)->Arg(0)->Arg(1)->Iterations(8)->Unit(benchmark::kMillisecond);

// The heap an edit takes in the display: from before EditDontCareMask through a stroke, an undo
// and mask all, against the decoded camera image.
void EditHeapAgainstDecodedImage(benchmark::State& state)
{
    const bool grey = state.range(0) != 0;
    double peak = 0, held = 0;
    for (auto _ : state) {
        Scene scene(grey);
        const std::size_t before = bench::HeapMeter::inUse();
        bench::HeapMeter::resetPeak();
        scene.startEdit();
        scene.send(QEvent::MouseButtonPress, strokePoint(0), Qt::LeftButton);
        for (int i = 1; i < 200; ++i) {
            scene.send(QEvent::MouseMove, strokePoint(i), Qt::LeftButton);
            if (i % 10 == 0)
                QApplication::processEvents();
        }
        scene.send(QEvent::MouseButtonRelease, strokePoint(199), Qt::NoButton);
        QApplication::processEvents();
        auto& session = scene.display.part<nxr::MaskPart>().session();
        session.onCommandClicked(KSEMaskCommand_MaskAll);
        QApplication::processEvents();
        session.onCommandClicked(KSEMaskCommand_Undo);
        QApplication::processEvents();
        held = double(bench::HeapMeter::inUse() - before);
        peak = double(bench::HeapMeter::peak() - before);
    }
    const double image = double(bench::makeCameraPattern(grey).sizeInBytes());
    state.counters["decoded_MB"] = image / 1e6;
    state.counters["edit_peak_MB"] = peak / 1e6;
    state.counters["edit_held_MB"] = held / 1e6;
    state.counters["x_decoded"] = peak / image;
}
BENCHMARK(EditHeapAgainstDecodedImage)->Arg(0)->Arg(1)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
