// The list view through its scripting interface and through real clicks and keys: keys made from
// texts, the messages of every failure (the list unchanged), sorting by header clicks, selection,
// columns and the events.

#include "ViewTestSupport.h"
#include "frame/ClassRegistry.h"
#include "views/ListModel.h"
#include "views/NXRListView.h"

#include <QHeaderView>
#include <QListView>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTreeView>

#include <gtest/gtest.h>

#include <memory>

using nxr::test::clickAt;
using nxr::test::expectEachFails;
using nxr::test::FailingCall;

namespace {

class ListView : public ::testing::Test
{
protected:
    void SetUp() override
    {
        list.reset(
            qobject_cast<NXRListView*>(nxr::ClassRegistry::instance().create("NexaroControls.NXRListView")));
        ASSERT_TRUE(list);
        list->resize(420, 300);
        list->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(list.get()));
        errors = std::make_unique<QSignalSpy>(list.get(), &NXRListView::OnError);
        selected = std::make_unique<QSignalSpy>(list.get(), &NXRListView::OnItemSelected);
        doubles = std::make_unique<QSignalSpy>(list.get(), &NXRListView::OnDoubleClick);
    }

    // Name | Score | Time, three results.
    void fillResults()
    {
        list->AddColumn("Name", 1, 120);
        list->AddColumn("Score", 2, 80);
        list->AddColumn("Time", 3, 140);
        const char* rows[][3] = {{"part7", "10", "22-NOV-26 18:48"},
                                 {"part2", "2", ""},
                                 {"part10", "", "2026-11-22 09:00"},
                                 {"part3", "2", "21-NOV-26 07:30"}};
        for (auto& r : rows) {
            list->AddToList("", r[0]);
            list->SetSubItem(r[0], 1, r[1]);
            list->SetSubItem(r[0], 2, r[2]);
        }
        QCoreApplication::processEvents(); // the views learn of the new rows
    }

    void clickHeader(int column)
    {
        QHeaderView* header = list->reportView()->header();
        clickAt(header->viewport(),
                QPoint(header->sectionViewportPosition(column) + header->sectionSize(column) / 2,
                       header->height() / 2));
    }

    QPoint rowCenter(int row) const
    {
        return list->reportView()->visualRect(list->model()->index(row, 0)).center();
    }

    QStringList texts() const { return list->itemTexts(); }

    std::unique_ptr<NXRListView> list;
    std::unique_ptr<QSignalSpy> errors;
    std::unique_ptr<QSignalSpy> selected;
    std::unique_ptr<QSignalSpy> doubles;
};

TEST_F(ListView, ItemsAreKeyedAndFoundByTheirTexts)
{
    fillResults();
    list->AddToList("", "7");
    ASSERT_TRUE(list->item("7"));
    EXPECT_EQ(list->item("7")->Key(), "Key_7");
    EXPECT_EQ(list->item("part7")->Key(), "part7");
    list->SetProperty("SelectedByText", "7");
    EXPECT_EQ(list->GetProperty("SelectedText"), "7");
    EXPECT_EQ(list->GetProperty("Selected"), "5");
    list->SetProperty("Selected", "2");
    EXPECT_EQ(list->GetProperty("SelectedText"), "part2");
    list->SetSubItem("7", 1, "99");
    EXPECT_EQ(list->item("7")->SubItem(1), "99");
    list->RemoveFromList("7");
    EXPECT_FALSE(list->item("7"));
    EXPECT_EQ(list->GetProperty("NumColumns"), "3");
    EXPECT_EQ(errors->count(), 0) << list->LastErrorString().toStdString();
    EXPECT_EQ(selected->count(), 0); // the page's own selections raise no event
}

TEST_F(ListView, EveryFailureReportsItsTextAndLeavesTheListAsItWas)
{
    QTemporaryDir dir;
    list->AddListImage(nxr::test::writePicture(QDir(dir.path()), "ok.png", Qt::green), "ok");
    const FailingCall emptyList[] = {
        {[&] { list->SetProperty("SelectedByText", "x"); },
         "Error setting SelectedByText property: No items in ListView (x)"},
    };
    expectEachFails(*list, *errors, emptyList, [&] { return list->itemCount(); });
    fillResults();
    list->SetProperty("Selected", "2");
    const FailingCall cases[] = {
        {[&] { list->AddToList("", "part2"); },
         "Error adding to list: 35602, Key is not unique in collection"},
        {[&] { list->AddToList("", ""); }, "Error adding to list: 35603, Invalid key"},
        {[&] { list->AddToList("nothing", "part9"); }, "Error setting SmallIcon: 35601, Element not found"},
        {[&] { list->SetSubItem("part9", 1, "x"); }, "Error setting subitem: Element not found (part9)"},
        {[&] { list->SetSubItem("part2", 3, "x"); }, "Error setting subitem: Index out of bounds (3)"},
        {[&] { list->SetSubItem("part2", 0, "x"); }, "Error setting subitem: Index out of bounds (0)"},
        {[&] { list->RemoveFromList("part9"); }, "Error in RemoveFromList: Element not found (part9)"},
        {[&] { list->SetListItemColor("part9", 255); },
         "Error in SetListItemColor: Element not found (part9)"},
        {[&] { list->SetProperty("Selected", "0"); },
         "Error setting Selected property: 35600, Index out of bounds"},
        {[&] { list->SetProperty("Selected", "5"); },
         "Error setting Selected property: 35600, Index out of bounds"},
        {[&] { list->SetProperty("Selected", "two"); }, "Error setting Selected property: 13, Type mismatch"},
        {[&] { list->SetProperty("SelectedByText", "PART2"); },
         "Error setting SelectedByText property: Item not found (PART2)"},
        {[&] { list->SetProperty("View", "4"); }, "Error setting View property: Invalid property value"},
        {[&] { list->SetProperty("View", "list"); }, "Error setting View property: Type mismatch"},
        {[&] { list->SetProperty("Sorted", "1"); }, "Error: unknown property (Sorted)"},
        {[&] { list->GetProperty("Sorted"); }, "Error: unknown property (Sorted)"},
        {[&] { list->AddColumn("Extra", 5, 50); }, "Error in AddColumn: Index out of bounds"},
        {[&] { list->AddColumn("Extra", 2, -1); }, "Error in AddColumn: Invalid property value"},
        {[&] { list->RemoveColumn(4); }, "Error in RemoveColumn: Index out of bounds"},
        {[&] { list->RemoveColumn(0); }, "Error in RemoveColumn: Index out of bounds"},
        {[&] { list->SetFont("Sans", 0); }, "Error in SetFont: Invalid property value"},
        {[&] { list->AddListImage(dir.filePath("missing.png"), "m"); },
         "Error in LoadPicture: cannot read a picture from " + dir.filePath("missing.png")},
        {[&] { list->AddListImage(dir.path(), "m"); },
         "Error in LoadPicture: cannot read a picture from " + dir.path()},
        {[&] { list->AddListImage(dir.filePath("ok.png"), "ok"); },
         "Error adding ListImage: Key is not unique in collection"},
    };
    auto snapshot = [&] {
        QStringList s;
        for (const QString& t : list->itemTexts()) {
            const clsListItem it = *list->item(t);
            s << t + "|" + it.SubItem(1) + "|" + it.SubItem(2) + "|" + QString::number(it.ForeColor()) +
                     (it.Selected() ? "|sel" : "");
        }
        return s << list->GetProperty("NumColumns") << list->GetProperty("View");
    };
    expectEachFails(*list, *errors, cases, snapshot);
}

TEST_F(ListView, HeaderClicksSortByKindAndToggleDirection)
{
    fillResults();
    struct Step
    {
        int column;
        QStringList order;
        bool descending;
    };
    const Step steps[] = {
        // The order rules are the sorting's (views_sorting_test); here the column's values and
        // kind reach them and a click on the same header turns the direction.
        {1, {"part2", "part3", "part7", "part10"}, false}, // numbers: 2 before 10, the empty score last
        {1, {"part7", "part2", "part3", "part10"}, true},  // same header: reversed, ties in order, empty last
        {1, {"part2", "part3", "part7", "part10"}, false},
        {2, {"part3", "part10", "part7", "part2"}, false}, // dates in two formats, the empty time last
        {0, {"part10", "part2", "part3", "part7"}, false}, // another header: ascending text
    };
    for (const Step& s : steps) {
        clickHeader(s.column);
        EXPECT_EQ(texts(), s.order) << "column " << s.column;
        EXPECT_EQ(list->sortColumn(), s.column);
        EXPECT_EQ(list->sortDescending(), s.descending);
        QHeaderView* header = list->reportView()->header();
        EXPECT_TRUE(header->isSortIndicatorShown());
        EXPECT_EQ(header->sortIndicatorSection(), s.column);
        EXPECT_EQ(header->sortIndicatorOrder(), s.descending ? Qt::DescendingOrder : Qt::AscendingOrder);
    }
    EXPECT_EQ(errors->count(), 0);
}

TEST_F(ListView, SortingKeepsKeysIconsColoursAndTheVisibleSelection)
{
    QTemporaryDir dir;
    list->AddListImage(nxr::test::writePicture(QDir(dir.path()), "good.png", Qt::green), "good");
    list->AddListImage(nxr::test::writePicture(QDir(dir.path()), "bad.png", Qt::red), "1");
    list->AddColumn("Name", 1, 100);
    list->AddColumn("Score", 2, 60);
    for (int i = 0; i < 2000; ++i) {
        const QString text = QString::number(i);
        list->AddToList(i % 2 ? "good" : "1", text);
        list->SetSubItem(text, 1, QString::number((i * 7919) % 2000));
    }
    list->SetListItemColor("1500", 0x0000FF);
    list->SetProperty("SelectedByText", "1500");
    ASSERT_EQ(errors->count(), 0) << list->LastErrorString().toStdString();
    for (int click = 0; click < 3; ++click) {
        clickHeader(1);
        ASSERT_EQ(list->GetProperty("SelectedText"), "1500");
        const clsListItem item = *list->item("1500");
        EXPECT_EQ(item.Key(), "Key_1500");
        EXPECT_EQ(item.SmallIcon(), "1");
        EXPECT_EQ(item.ForeColor(), 0x0000FF);
        EXPECT_TRUE(item.Selected());
        const int row = list->GetProperty("Selected").toInt() - 1;
        EXPECT_EQ(list->itemTexts().at(row), "1500");
        const QModelIndex index = list->model()->index(row, 0);
        EXPECT_FALSE(list->model()->data(index, Qt::DecorationRole).value<QIcon>().isNull());
        EXPECT_EQ(list->model()->data(index, Qt::ForegroundRole).value<QBrush>().color(), QColor(255, 0, 0));
        EXPECT_TRUE(
            list->reportView()->viewport()->rect().contains(list->reportView()->visualRect(index).center()))
            << "the selected item is scrolled into view after click " << click;
        // move away so the next sort has to scroll back
        list->reportView()->scrollToTop();
    }
}

TEST_F(ListView, ClicksKeysAndDoubleClicksRaiseTheEvents)
{
    fillResults();
    QWidget* viewport = list->reportView()->viewport();
    clickAt(viewport, rowCenter(1));
    EXPECT_EQ(selected->count(), 1);
    EXPECT_EQ(list->GetProperty("SelectedText"), "part2");
    clickAt(viewport, rowCenter(1)); // the selected item again
    EXPECT_EQ(selected->count(), 2);
    QTest::keyClick(list->reportView(), Qt::Key_Down);
    EXPECT_EQ(selected->count(), 3);
    EXPECT_EQ(list->GetProperty("SelectedText"), "part10");
    nxr::test::doubleClickAt(viewport, rowCenter(3));
    EXPECT_EQ(doubles->count(), 1);
    EXPECT_EQ(list->GetProperty("SelectedText"), "part3");
    EXPECT_EQ(selected->count(), 4); // the double click selects its item once
    list->SetProperty("Selected", "1");
    EXPECT_EQ(selected->count(), 4);
}

TEST_F(ListView, ColumnsMoveTheirSubItemsAndViewStylesSwitchViews)
{
    fillResults();
    list->AddColumn("Tool", 2, 60); // between Name and Score: the scores move along
    EXPECT_EQ(list->GetProperty("NumColumns"), "4");
    EXPECT_EQ(list->item("part7")->SubItem(1), "");
    EXPECT_EQ(list->item("part7")->SubItem(2), "10");
    EXPECT_EQ(list->model()->headerData(1, Qt::Horizontal, Qt::DisplayRole).toString(), "Tool");
    EXPECT_EQ(list->reportView()->header()->sectionSize(1), 60);
    list->RemoveColumn(2);
    EXPECT_EQ(list->item("part7")->SubItem(1), "10");
    list->AddColumn("Last", 0, 50); // 0 appends
    EXPECT_EQ(list->model()->headerData(3, Qt::Horizontal, Qt::DisplayRole).toString(), "Last");
    for (int view : {0, 1, 2, 3}) {
        list->SetProperty("View", QString::number(view));
        EXPECT_EQ(list->GetProperty("View"), QString::number(view));
        EXPECT_EQ(list->activeView()->isVisible(), true);
    }
    list->SetFont("DejaVu Sans", 15);
    EXPECT_EQ(list->reportView()->font().pointSize(), 15);
    EXPECT_EQ(list->iconView()->font().pointSize(), 15);
    list->ClearColumns();
    EXPECT_EQ(list->GetProperty("NumColumns"), "0");
    EXPECT_EQ(list->item("part7")->SubItem(1), "");
    EXPECT_EQ(list->itemCount(), 4);
    list->ClearList();
    EXPECT_EQ(list->itemCount(), 0);
    clickHeader(0); // nothing to sort
    EXPECT_EQ(list->sortColumn(), -1);
    EXPECT_EQ(errors->count(), 0) << list->LastErrorString().toStdString();
}

} // namespace
