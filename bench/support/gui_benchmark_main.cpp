// Main of the benchmarks that paint or encode images, or build widgets: a GUI application (a
// widgets one when built with NXR_BENCH_WIDGETS) on the offscreen platform unless one is asked for.
#include <benchmark/benchmark.h>

#ifdef NXR_BENCH_WIDGETS
#include <QApplication>
using BenchApplication = QApplication;
#else
#include <QGuiApplication>
using BenchApplication = QGuiApplication;
#endif

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    BenchApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
