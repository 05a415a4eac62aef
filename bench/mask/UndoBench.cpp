// Undo on a camera-sized mask: replaying 200 mixed operations from the original against painting
// the same 200 operations once directly on a copy of the original (the baseline); and the
// editor's peak heap during an edit against the decoded camera image.

#include "HeapMeter.h"
#include "MaskScenario.h"
#include "bench/support/BenchSupport.h"
#include "mask/MaskPainter.h"

#include <benchmark/benchmark.h>

#include <chrono>

namespace {

using Clock = nxr::bench::ThreadClock;
using nxr::MaskEditor;
namespace bench = nxr::bench;

void UndoReplayAgainstDirectPass(benchmark::State& state)
{
    const QImage start = bench::maskWithHoles(100);
    MaskEditor editor;
    editor.begin(start, KSEEditMask_DontCare);
    bench::paintMixed(editor, 201, 11);
    if (editor.model().Operations().Count() != 201) {
        state.SkipWithError("the scenario did not record 201 operations");
        return;
    }
    double replaySeconds = 0, directSeconds = 0;
    QImage direct;
    for (auto _ : state) {
        const auto t0 = Clock::now();
        editor.undo(); // replays the first 200
        const auto t1 = Clock::now();
        direct = start.copy();
        for (const auto& op : editor.model().Operations().items())
            nxr::MaskPainter::apply(direct, *op, KSEEditMask_DontCare);
        const auto t2 = Clock::now();
        replaySeconds += std::chrono::duration<double>(t1 - t0).count();
        directSeconds += std::chrono::duration<double>(t2 - t1).count();
        state.SetIterationTime(std::chrono::duration<double>(t2 - t0).count());
        state.PauseTiming();
        editor.redo();
        state.ResumeTiming();
    }
    editor.undo();
    if (editor.working() != direct)
        state.SkipWithError("replay and direct pass differ");
    const double n = double(state.iterations());
    state.counters["replay_ms"] = replaySeconds / n * 1e3;
    state.counters["direct_ms"] = directSeconds / n * 1e3;
    state.counters["ratio"] = replaySeconds / directSeconds;
}
BENCHMARK(UndoReplayAgainstDirectPass)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

// Peak heap of one edit (begin, 200 operations, 20 undos, 10 redos, end) over the heap before
// it, against the camera image decoded as grey (8-bit) and as colour (32-bit).
void EditorPeakMemory(benchmark::State& state)
{
    const QImage mask = bench::maskWithHoles(100); // owned by the display's image list, not the editor
    std::size_t extra = 0;
    for (auto _ : state) {
        const std::size_t before = bench::HeapMeter::inUse();
        bench::HeapMeter::resetPeak();
        {
            MaskEditor editor;
            editor.begin(mask, KSEEditMask_DontCare);
            bench::paintMixed(editor, 200, 3);
            for (int i = 0; i < 20; ++i)
                editor.undo();
            for (int i = 0; i < 10; ++i)
                editor.redo();
            editor.end();
        }
        extra = bench::HeapMeter::peak() - before;
    }
    const double grey = double(bench::kWidth) * bench::kHeight;
    state.counters["peak_MB"] = double(extra) / 1e6;
    state.counters["x_grey_camera"] = double(extra) / grey;
    state.counters["x_colour_camera"] = double(extra) / (4 * grey);
}
BENCHMARK(EditorPeakMemory)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
