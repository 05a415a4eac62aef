// Filling a list with 10,000 rows of 5 columns and sorting it by a numeric column, against the
// floor of the same rows put into a bare Qt item view (standard item model, tree view) and sorted
// by Qt, measured alternately in the same run. Both views are shown on the offscreen platform.
//
//   FillAndSort/0  the list filled through its public members from C++ (AddToList, SetSubItem)
//   FillAndSort/1  the same calls made by a page script (QJSEngine), as pages do
//   TreeFill       10,100 tree nodes through AddNode against a bare QTreeWidget (below)
//
// Counters (medians of the rounds, processor time of the GUI thread): floor_ms, list_ms,
// ratio = list_ms / floor_ms, and the parts of the list's time: fill_ms and sort_ms (the sort
// includes the views' update after it).

#include "bench/support/BenchSupport.h"
#include "views/NXRListView.h"
#include "views/NXRTreeView.h"

#include <QApplication>
#include <QHeaderView>
#include <QJSEngine>
#include <QStandardItemModel>
#include <QTreeView>
#include <QTreeWidget>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <vector>

namespace {

using Clock = nxr::bench::ThreadClock;
using nxr::bench::median;

constexpr int kRows = 10000;

struct Row
{
    QString name, tool, score, time, note;
    double scoreValue;
};

const std::vector<Row>& rows()
{
    static const std::vector<Row> data = [] {
        std::mt19937 random(7);
        std::vector<Row> out;
        for (int i = 0; i < kRows; ++i) {
            const double score = double(random() % 100000) / 1000.0;
            out.push_back({QStringLiteral("IMG%1.PNG").arg(i, 5, 10, QLatin1Char('0')),
                           QStringLiteral("LOCATOR%1").arg(random() % 9), QString::number(score, 'f', 3),
                           QStringLiteral("2026-11-%1 %2:%3:00")
                               .arg(1 + random() % 28, 2, 10, QLatin1Char('0'))
                               .arg(random() % 24, 2, 10, QLatin1Char('0'))
                               .arg(random() % 60, 2, 10, QLatin1Char('0')),
                           random() % 3 ? QStringLiteral("found") : QStringLiteral("not found"), score});
        }
        return out;
    }();
    return data;
}

double msSince(Clock::time_point t0)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - t0).count();
}

double floorRound()
{
    const auto t0 = Clock::now();
    QStandardItemModel model(0, 5);
    model.setHorizontalHeaderLabels({"Name", "Tool", "Score", "Time", "Note"});
    QTreeView view;
    view.setRootIsDecorated(false);
    view.setUniformRowHeights(true);
    view.setModel(&model);
    view.resize(600, 400);
    view.show();
    for (const Row& r : rows()) {
        auto* score = new QStandardItem;
        score->setData(r.scoreValue, Qt::DisplayRole);
        model.appendRow({new QStandardItem(r.name), new QStandardItem(r.tool), score,
                         new QStandardItem(r.time), new QStandardItem(r.note)});
    }
    view.setSortingEnabled(true);
    view.sortByColumn(2, Qt::AscendingOrder);
    QApplication::processEvents();
    return msSince(t0);
}

void fillByMembers(NXRListView& list)
{
    for (const Row& r : rows()) {
        list.AddToList("", r.name);
        list.SetSubItem(r.name, 1, r.tool);
        list.SetSubItem(r.name, 2, r.score);
        list.SetSubItem(r.name, 3, r.time);
        list.SetSubItem(r.name, 4, r.note);
    }
}

void fillByScript(QJSEngine& engine, NXRListView& list)
{
    static const QJSValue data = [&] {
        QJSValue array = engine.newArray(kRows);
        for (int i = 0; i < kRows; ++i) {
            const Row& r = rows()[size_t(i)];
            QJSValue row = engine.newArray(5);
            row.setProperty(0, r.name);
            row.setProperty(1, r.tool);
            row.setProperty(2, r.score);
            row.setProperty(3, r.time);
            row.setProperty(4, r.note);
            array.setProperty(quint32(i), row);
        }
        return array;
    }();
    engine.globalObject().setProperty("rows", data);
    engine.globalObject().setProperty("list", engine.newQObject(&list));
    const QJSValue result = engine.evaluate("for (var i = 0; i < rows.length; i++) {"
                                            "  var r = rows[i];"
                                            "  list.AddToList('', r[0]);"
                                            "  for (var c = 1; c < 5; c++) list.SetSubItem(r[0], c, r[c]);"
                                            "}");
    if (result.isError())
        qFatal("script failed: %s", qPrintable(result.toString()));
}

void FillAndSort(benchmark::State& state)
{
    const bool script = state.range(0) == 1;
    rows();
    QJSEngine engine;
    std::vector<double> floor, total, fill, sort;
    for (auto _ : state) {
        floor.push_back(floorRound());
        const auto t0 = Clock::now();
        NXRListView list;
        QJSEngine::setObjectOwnership(&list, QJSEngine::CppOwnership);
        list.resize(600, 400);
        list.show();
        for (const char* caption : {"Name", "Tool", "Score", "Time", "Note"})
            list.AddColumn(caption, 0, 100);
        if (script)
            fillByScript(engine, list);
        else
            fillByMembers(list);
        const auto t1 = Clock::now();
        list.sortByColumn(2);
        QApplication::processEvents();
        const auto t2 = Clock::now();
        if (list.itemCount() != kRows || list.itemTexts().isEmpty() || !list.LastErrorString().isEmpty())
            state.SkipWithError("the list was not filled");
        total.push_back(std::chrono::duration<double, std::milli>(t2 - t0).count());
        fill.push_back(std::chrono::duration<double, std::milli>(t1 - t0).count());
        sort.push_back(std::chrono::duration<double, std::milli>(t2 - t1).count());
        engine.globalObject().deleteProperty("list");
        engine.collectGarbage();
    }
    const double f = median(floor), t = median(total);
    state.counters["floor_ms"] = f;
    state.counters["list_ms"] = t;
    state.counters["ratio"] = t / f;
    state.counters["fill_ms"] = median(fill);
    state.counters["sort_ms"] = median(sort);
    state.SetLabel(script ? "page script" : "C++ members");
}

BENCHMARK(FillAndSort)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(7);

// A tree of 100 folders with 100 nodes each through AddNode, against the same nodes put into a bare
// QTreeWidget. Counters: floor_ms, tree_ms, ratio.
void TreeFill(benchmark::State& state)
{
    std::vector<double> floor, ours;
    for (auto _ : state) {
        auto t0 = Clock::now();
        {
            QTreeWidget bare;
            bare.setHeaderHidden(true);
            bare.resize(300, 400);
            bare.show();
            for (int f = 0; f < 100; ++f) {
                auto* folder = new QTreeWidgetItem(QStringList{QStringLiteral("FOLDER%1").arg(f)});
                bare.addTopLevelItem(folder);
                folder->setExpanded(true);
                for (int i = 0; i < 100; ++i) {
                    auto* n = new QTreeWidgetItem(QStringList{QStringLiteral("F%1_IMG%2").arg(f).arg(i)});
                    folder->addChild(n);
                }
            }
            QApplication::processEvents();
            floor.push_back(std::chrono::duration<double, std::milli>(Clock::now() - t0).count());
        }
        t0 = Clock::now();
        {
            NXRTreeView tree;
            tree.resize(300, 400);
            tree.show();
            for (int f = 0; f < 100; ++f) {
                const QString folder = QStringLiteral("FOLDER%1").arg(f);
                tree.AddNode(QString(), -1, QString(), folder);
                for (int i = 0; i < 100; ++i)
                    tree.AddNode(folder, NXRTreeView::tvwChild, QString(),
                                 QStringLiteral("F%1_IMG%2").arg(f).arg(i));
            }
            QApplication::processEvents();
            if (tree.NodeCount() != 10100 || !tree.LastErrorString().isEmpty())
                state.SkipWithError("the tree was not filled");
            ours.push_back(std::chrono::duration<double, std::milli>(Clock::now() - t0).count());
        }
    }
    state.counters["floor_ms"] = median(floor);
    state.counters["tree_ms"] = median(ours);
    state.counters["ratio"] = median(ours) / median(floor);
}

BENCHMARK(TreeFill)->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace
