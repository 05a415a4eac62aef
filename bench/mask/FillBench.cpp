// The mask fill against OpenCV's flood fill on a camera-sized mask with holes, both on the same
// 32-bit pixels, 4-connected, exact colour match. Every iteration fills the whole region once
// with each; counters: ours_ms, opencv_ms and ratio (ours / opencv).

#include "MaskScenario.h"
#include "bench/support/BenchSupport.h"
#include "mask/MaskFill.h"

#include <benchmark/benchmark.h>
#include <opencv2/imgproc.hpp>

#include <chrono>

namespace {

using Clock = nxr::bench::ThreadClock;

void FillAgainstOpenCv(benchmark::State& state)
{
    QImage ours = nxr::bench::maskWithHoles(int(state.range(0)));
    QImage theirs = ours.copy();
    cv::Mat mat(theirs.height(), theirs.width(), CV_32SC1, theirs.bits(), size_t(theirs.bytesPerLine()));
    const QRgb colours[2] = {qRgb(0, 0, 255), qRgb(0, 0, 0)};
    double oursSeconds = 0, theirSeconds = 0;
    int turn = 0;
    for (auto _ : state) {
        const QRgb pen = colours[turn++ % 2];
        const auto t0 = Clock::now();
        const QRect r = nxr::floodFillMask(ours, QPoint(0, 0), pen);
        const auto t1 = Clock::now();
        cv::floodFill(mat, cv::Point(0, 0), cv::Scalar(double(qint32(pen))), nullptr, cv::Scalar(),
                      cv::Scalar(), 4);
        const auto t2 = Clock::now();
        benchmark::DoNotOptimize(r);
        oursSeconds += std::chrono::duration<double>(t1 - t0).count();
        theirSeconds += std::chrono::duration<double>(t2 - t1).count();
        state.SetIterationTime(std::chrono::duration<double>(t2 - t0).count());
    }
    if (ours != theirs)
        state.SkipWithError("the two fills painted different pixels");
    const double n = double(state.iterations());
    state.counters["ours_ms"] = oursSeconds / n * 1e3;
    state.counters["opencv_ms"] = theirSeconds / n * 1e3;
    state.counters["ratio"] = oursSeconds / theirSeconds;
}
BENCHMARK(FillAgainstOpenCv)->Arg(0)->Arg(400)->Arg(3000)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
