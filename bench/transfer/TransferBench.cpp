// CopyFile of a 100 MiB file over HTTP and over FTP from the simulator, against the curl
// command-line tool fetching the same file in the same run; and parsing a 10,000-line listing.
//
//   transfer_bench [--benchmark_filter=...]
// Prints the throughput ratios (CopyFile / curl) at the end.

#include "ControllerSimulator.h"
#include "frame/Globals.h"
#include "transfer/ConnectionPool.h"
#include "transfer/ListingParser.h"
#include "transfer/NXRFileTransferObject.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTcpServer>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>

namespace {

constexpr int kBigMb = 100;
const QString kBigPath = QStringLiteral("MD:\\BIG.BIN");

nxr::test::ControllerSimulator* g_sim = nullptr;
QTemporaryDir* g_out = nullptr;
std::map<std::string, double> g_best; // bytes per second, best iteration

void record(const std::string& name, double seconds)
{
    const double rate = double(kBigMb) * 1024 * 1024 / seconds;
    if (rate > g_best[name])
        g_best[name] = rate;
}

quint16 unusedPort()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost, 0);
    return server.serverPort();
}

// Argument 1: the previous copy is still there and is replaced (CopyFile renames over it, the
// tool truncates it); argument 0: each iteration starts without it.
void copyFile(benchmark::State& state, bool http, const std::string& name)
{
    const bool replace = state.range(0) != 0;
    NXRFileTransferObject transfer;
    transfer.setFTPPortNo(g_sim->ftpPort());
    transfer.setHTTPPortNo(http ? g_sim->httpPort() : unusedPort());
    // Keep the connection between iterations, as a page's display does.
    if (!transfer.ConnectRobot(QStringLiteral("Bench"), g_sim->host(), g_sim->user(), g_sim->password())) {
        state.SkipWithError("cannot connect");
        return;
    }
    for (auto _ : state) {
        // Either both sides start without the previous copy or both replace it: freeing 100 MiB
        // of a file costs 10-50 ms on this file system.
        if (!replace && !transfer.lastLocalPath().isEmpty())
            QFile::remove(transfer.lastLocalPath());
        const auto start = std::chrono::steady_clock::now();
        const bool ok =
            transfer.CopyFile(g_sim->host(), kBigPath, g_sim->user(), g_sim->password(), QString());
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        if (!ok || QFile(transfer.lastLocalPath()).size() != qint64(kBigMb) * 1024 * 1024) {
            state.SkipWithError(transfer.LastErrorString().toStdString().c_str());
            break;
        }
        state.SetIterationTime(took.count());
        record(name + (replace ? " replacing" : ""), took.count());
    }
    state.SetBytesProcessed(state.iterations() * qint64(kBigMb) * 1024 * 1024);
    transfer.DisconnectRobot(false);
}

void curlTool(benchmark::State& state, const QStringList& args, const std::string& name)
{
    const bool replace = state.range(0) != 0;
    const QString target = g_out->filePath(QStringLiteral("curl.bin"));
    for (auto _ : state) {
        if (!replace)
            QFile::remove(target);
        const auto start = std::chrono::steady_clock::now();
        QProcess curl;
        curl.start(QStringLiteral("curl"),
                   QStringList{QStringLiteral("-s"), QStringLiteral("-S"), QStringLiteral("-o"), target} +
                       args);
        curl.waitForFinished(120000);
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        if (curl.exitCode() != 0 || QFile(target).size() != qint64(kBigMb) * 1024 * 1024) {
            state.SkipWithError("curl failed");
            break;
        }
        state.SetIterationTime(took.count());
        record(name + (replace ? " replacing" : ""), took.count());
    }
    state.SetBytesProcessed(state.iterations() * qint64(kBigMb) * 1024 * 1024);
}

void BM_CopyFileHttp(benchmark::State& state)
{
    copyFile(state, true, "CopyFile HTTP");
}

void BM_CurlToolHttp(benchmark::State& state)
{
    curlTool(state, {QStringLiteral("http://%1:%2/MD/BIG.BIN").arg(g_sim->host()).arg(g_sim->httpPort())},
             "curl HTTP");
}

void BM_CopyFileFtp(benchmark::State& state)
{
    copyFile(state, false, "CopyFile FTP");
}

void BM_CurlToolFtp(benchmark::State& state)
{
    curlTool(state,
             {QStringLiteral("--ftp-method"), QStringLiteral("nocwd"), QStringLiteral("--user"),
              g_sim->user() + QLatin1Char(':') + g_sim->password(),
              QStringLiteral("ftp://%1:%2/MD%3A%5CBIG.BIN").arg(g_sim->host()).arg(g_sim->ftpPort())},
             "curl FTP");
}

void BM_ParseListing10000(benchmark::State& state)
{
    QString response;
    for (int i = 0; i < 10000; ++i) {
        response +=
            i % 10 == 0
                ? QStringLiteral("drwxrwxrwx   1 root     root              0 Nov 21 05:12 folder%1\r\n")
                      .arg(i)
                : QStringLiteral("-rw-rw-rw-   1 root     root         123456 Nov 21 05:12 image%1.png\r\n")
                      .arg(i);
    }
    for (auto _ : state) {
        nxr::DirectoryListing listing = nxr::parseLongListing(response);
        benchmark::DoNotOptimize(listing);
    }
    state.SetItemsProcessed(state.iterations() * 10000);
}

} // namespace

BENCHMARK(BM_CopyFileHttp)->Arg(0)->Arg(1)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CurlToolHttp)->Arg(0)->Arg(1)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CopyFileFtp)->Arg(0)->Arg(1)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CurlToolFtp)->Arg(0)->Arg(1)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ParseListing10000)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir out;
    g_out = &out;
    qputenv("TMPDIR", out.path().toUtf8());
    nxr::test::ControllerSimulator::Options options;
    options.bigFileMb = kBigMb;
    nxr::test::ControllerSimulator sim(options);
    g_sim = &sim;
    benchmark::Initialize(&argc, argv);
    if (!sim.start()) {
        std::fprintf(stderr, "simulator: %s\n", qPrintable(sim.errorText()));
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    for (const char* proto : {"HTTP", "FTP", "HTTP replacing", "FTP replacing"}) {
        const double ours = g_best[std::string("CopyFile ") + proto];
        const double tool = g_best[std::string("curl ") + proto];
        if (ours > 0 && tool > 0)
            std::printf("%s: CopyFile %.0f MiB/s, curl tool %.0f MiB/s, ratio %.2f (best of the runs)\n",
                        proto, ours / 1048576.0, tool / 1048576.0, ours / tool);
    }
    nxr::ConnectionPool::instance().clear();
    return 0;
}
