// The tree view through its scripting interface and through real clicks and keys: keys made from
// texts and the lookup rule, where AddNode puts nodes, the messages of every failure (the tree
// unchanged), the selection keys, and the events of operator changes.

#include "ViewTestSupport.h"
#include "frame/ClassRegistry.h"
#include "views/NXRTreeView.h"

#include <QLineEdit>
#include <QSignalSpy>
#include <QStyleOptionViewItem>
#include <QTemporaryDir>
#include <QTreeWidget>

#include <gtest/gtest.h>

#include <memory>

using nxr::test::clickAt;

namespace {

class TreeView : public ::testing::Test
{
protected:
    void SetUp() override
    {
        tree.reset(qobject_cast<NXRTreeView*>(nxr::ClassRegistry::instance().create("NXRTreeView")));
        ASSERT_TRUE(tree);
        tree->resize(300, 400);
        tree->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(tree.get()));
        errors = std::make_unique<QSignalSpy>(tree.get(), &NXRTreeView::OnError);
    }

    // MC: { VISION { 12, TOOLS }, CAMERA }, UD1:
    void fillDevices()
    {
        tree->AddNode("", -1, "", "MC:");
        tree->AddNode("MC:", NXRTreeView::tvwChild, "", "VISION");
        tree->AddNode("VISION", NXRTreeView::tvwChild, "", "12");
        tree->AddNode("VISION", NXRTreeView::tvwChild, "", "TOOLS");
        tree->AddNode("MC:", NXRTreeView::tvwChild, "", "CAMERA");
        tree->AddNode("", -1, "", "UD1:");
        ASSERT_EQ(errors->count(), 0) << tree->LastErrorString().toStdString();
    }

    QTreeWidgetItem* item(const QString& name) const { return tree->findNode(name); }
    QPoint center(const QString& name) const
    {
        return tree->treeWidget()->visualItemRect(item(name)).center();
    }
    QWidget* viewport() const { return tree->treeWidget()->viewport(); }

    // Texts with their parents' texts, in tree order: the whole shape of the tree.
    QStringList shape() const
    {
        QStringList s;
        for (const QString& t : tree->nodeTexts()) {
            QTreeWidgetItem* n = item(tree->NodeTextToKey(t));
            s << (n->parent() ? n->parent()->text(0) + "/" : "/") + t + "#" + NXRTreeView::tagOf(n) +
                     (n->isExpanded() ? "+" : "-") + (n->isDisabled() ? "x" : "");
        }
        return s << QString::number(tree->NodeCount());
    }

    std::unique_ptr<NXRTreeView> tree;
    std::unique_ptr<QSignalSpy> errors;
};

TEST_F(TreeView, NumericTextsGetKeysAndAreFoundByTextOrKey)
{
    fillDevices();
    EXPECT_EQ(tree->NodeTextToKey("12"), "Key_12");
    EXPECT_EQ(tree->NodeTextToKey("VISION"), "VISION");
    EXPECT_EQ(tree->NodeTextToKey("vision"), "");
    EXPECT_EQ(tree->NodeTextToKey("99"), "");
    EXPECT_EQ(item("12"), item("Key_12"));
    EXPECT_EQ(NXRTreeView::keyOf(item("12")), "Key_12");
    tree->SetProperty("Selected", "12");
    EXPECT_EQ(tree->GetProperty("Selected"), "12");
    EXPECT_EQ(tree->GetProperty("ParentOfSelected"), "VISION");
    EXPECT_EQ(tree->GetProperty("FullSelectedPath"), "MC:\\VISION\\12");
    tree->SetProperty("Selected", "MC:");
    EXPECT_EQ(tree->GetProperty("ParentOfSelected"), "");
    tree->SetNodeTag("Key_12", "twelve");
    tree->SetProperty("Selected", "Key_12");
    EXPECT_EQ(tree->GetProperty("Selected"), "twelve");
    tree->RemoveNode("VISION");
    EXPECT_EQ(tree->NodeCount(), 3);
    EXPECT_EQ(item("12"), nullptr);
    tree->AddNode("MC:", NXRTreeView::tvwChild, "", "12"); // its key is free again
    EXPECT_EQ(errors->count(), 0) << tree->LastErrorString().toStdString();
    tree->ClearTree();
    EXPECT_EQ(tree->NodeCount(), 0);
}

TEST_F(TreeView, RelationshipsPlaceNodes)
{
    struct Case
    {
        const char* relative;
        int relationship;
        QStringList order; // the texts after adding "N"
    };
    const Case cases[] = {
        {"B", NXRTreeView::tvwFirst, {"N", "A", "B", "C"}},
        {"B", NXRTreeView::tvwLast, {"A", "B", "C", "N"}},
        {"B", NXRTreeView::tvwNext, {"A", "B", "N", "C"}},
        {"B", NXRTreeView::tvwPrevious, {"A", "N", "B", "C"}},
        {"", -1, {"A", "B", "C", "N"}},
        {"B", -1, {"A", "B", "C", "N"}},
        {"", NXRTreeView::tvwFirst, {"N", "A", "B", "C"}},
    };
    for (const Case& c : cases) {
        tree->ClearTree();
        tree->AddNode("", -1, "", "P");
        for (const char* t : {"A", "B", "C"})
            tree->AddNode("P", NXRTreeView::tvwChild, "", t);
        const bool underP = QString(c.relative) == "B" && c.relationship >= 0;
        tree->AddNode(c.relative, c.relationship, "", "N");
        ASSERT_EQ(errors->count(), 0) << tree->LastErrorString().toStdString();
        QStringList order;
        for (int i = 0; i < item("P")->childCount(); ++i)
            order << item("P")->child(i)->text(0);
        if (!underP) {
            QTreeWidgetItem* n = item("N");
            ASSERT_EQ(n->parent(), nullptr);
            const int at = tree->treeWidget()->indexOfTopLevelItem(n);
            order.insert(at == 0 ? 0 : order.size(), "N");
        }
        EXPECT_EQ(order, c.order) << c.relative << " " << c.relationship;
        EXPECT_TRUE(tree->NodeExpanded("N"));
    }
}

TEST_F(TreeView, EveryFailureReportsItsTextAndLeavesTheTreeAsItWas)
{
    fillDevices();
    QTemporaryDir dir;
    tree->AddListImage(nxr::test::writePicture(QDir(dir.path()), "folder.png", Qt::yellow), "folder");
    tree->SetNodeExpanded("CAMERA", false);
    tree->SetNodeEnabled("TOOLS", false);
    tree->SetProperty("Selected", "12");
    const nxr::test::FailingCall cases[] = {
        {[&] { tree->AddNode("", NXRTreeView::tvwChild, "", "NEW"); },
         "Error: no parent defined for child node (NEW)"},
        {[&] { tree->AddNode("NOPE", NXRTreeView::tvwChild, "", "NEW"); },
         "Error in AddNode: Element not found (NOPE)"},
        {[&] { tree->AddNode("MC:", NXRTreeView::tvwChild, "", "VISION"); },
         "Error in AddNode: Key is not unique in collection (VISION)"},
        {[&] { tree->AddNode("", -1, "", "Key_12"); },
         "Error in AddNode: Key is not unique in collection (Key_12)"},
        {[&] { tree->AddNode("MC:", NXRTreeView::tvwChild, "nothing", "NEW"); },
         "Error in AddNode: Image not found (nothing)"},
        {[&] { tree->AddNode("MC:", 5, "", "NEW"); }, "Error in AddNode: Invalid property value"},
        {[&] { tree->AddNode("", -1, "", ""); }, "Error in AddNode: Invalid key"},
        {[&] { tree->RemoveNode("13"); }, "Error: Node not found for 13"},
        {[&] { tree->SetNodeColor("vision", 255); }, "Error: Node not found for vision"},
        {[&] { tree->SetNodeTag("NOPE", "x"); }, "Error: Node not found for NOPE"},
        {[&] { tree->NodeChecked("NOPE"); }, "Error: Node not found for NOPE"},
        {[&] { tree->SetNodeChecked("NOPE", true); }, "Error: Node not found for NOPE"},
        {[&] { tree->NodeEnabled("NOPE"); }, "Error: Node not found for NOPE"},
        {[&] { tree->SetNodeEnabled("NOPE", true); }, "Error: Node not found for NOPE"},
        {[&] { tree->NodeExpanded("NOPE"); }, "Error: Node not found for NOPE"},
        {[&] { tree->SetNodeExpanded("NOPE", true); }, "Error: Node not found for NOPE"},
        {[&] { tree->SetProperty("Selected", "NOPE"); }, "Error: Node not found for NOPE"},
        {[&] { tree->SetProperty("Selected", "TOOLS"); },
         "Error setting Selected property: Node is disabled (TOOLS)"},
        {[&] { tree->SetProperty("Style", "8"); }, "Error setting Style property: Invalid property value"},
        {[&] { tree->SetProperty("Style", "lines"); }, "Error setting Style property: Type mismatch"},
        {[&] { tree->SetProperty("Foo", "1"); }, "Error setting unknown property (Foo)"},
        {[&] { tree->GetProperty("Foo"); }, "Error getting unknown property (Foo)"},
        {[&] { tree->SetFont("Sans", -3); }, "Error in SetFont: Invalid property value"},
        {[&] { tree->AddListImage(dir.filePath("none.png"), "x"); },
         "Error in LoadPicture: cannot read a picture from " + dir.filePath("none.png")},
        {[&] { tree->AddListImage(dir.filePath("folder.png"), "folder"); },
         "Error adding ListImage: Key is not unique in collection"},
        {[&] { tree->AddListImage(dir.filePath("folder.png"), ""); }, "Error adding ListImage: Invalid key"},
    };
    nxr::test::expectEachFails(*tree, *errors, cases,
                               [&] { return shape() << tree->GetProperty("Selected"); });
    tree->treeWidget()->clearSelection();
    tree->GetProperty("Selected");
    EXPECT_EQ(tree->LastErrorString(), "Error getting Selected property: No node is selected");
    EXPECT_EQ(tree->GetProperty("ParentOfSelected"), "");
}

TEST_F(TreeView, ExpandTreeTakesTrueInAnyCase)
{
    fillDevices();
    const struct
    {
        const char* argument;
        bool expanded;
    } cases[] = {{"true", true}, {"FALSE", false}, {"TRUE", true},
                 {"yes", false}, {"True", true},   {"", false}};
    for (const auto& c : cases) {
        tree->ExpandTree(c.argument);
        for (const char* n : {"MC:", "VISION"})
            EXPECT_EQ(tree->NodeExpanded(n), c.expanded) << c.argument << " " << n;
    }
}

TEST_F(TreeView, StatesIconsAndColoursApplyToTheNamedNode)
{
    fillDevices();
    QTemporaryDir dir;
    tree->AddListImage(nxr::test::writePicture(QDir(dir.path()), "cam.png", Qt::blue, 64), "7");
    tree->AddNode("CAMERA", NXRTreeView::tvwChild, "7", "CAM1");
    EXPECT_FALSE(item("CAM1")->icon(0).isNull());
    tree->SetNodeColor("CAM1", 0x00FF00);
    EXPECT_EQ(item("CAM1")->foreground(0).color(), QColor(0, 255, 0));
    tree->SetNodeColor("CAM1", int(0x80000008u)); // the window's text colour: the view's own
    EXPECT_EQ(item("CAM1")->data(0, Qt::ForegroundRole), QVariant());
    tree->SetNodeChecked("CAM1", true); // kept while no boxes show
    EXPECT_EQ(item("CAM1")->data(0, Qt::CheckStateRole), QVariant());
    tree->setCheckboxes(true);
    EXPECT_EQ(item("CAM1")->checkState(0), Qt::Checked);
    EXPECT_EQ(item("VISION")->checkState(0), Qt::Unchecked);
    EXPECT_TRUE(tree->NodeChecked("CAM1"));
    tree->SetNodeEnabled("CAM1", false);
    EXPECT_FALSE(tree->NodeEnabled("CAM1"));
    tree->SetNodeExpanded("MC:", false);
    EXPECT_FALSE(tree->NodeExpanded("MC:"));
    tree->SetFont("DejaVu Sans", 15);
    EXPECT_EQ(tree->treeWidget()->font().pointSize(), 15);
    EXPECT_EQ(tree->treeWidget()->font().family(), "DejaVu Sans");
    tree->setEnabledState(false);
    EXPECT_FALSE(tree->treeWidget()->isEnabled());
    tree->SetProperty("Style", "0");
    EXPECT_EQ(tree->treeWidget()->iconSize(), QSize(0, 0));
    EXPECT_FALSE(tree->treeWidget()->rootIsDecorated());
    EXPECT_EQ(errors->count(), 0) << tree->LastErrorString().toStdString();
}

TEST_F(TreeView, OperatorActionsRaiseEventsWithTheNodesText)
{
    fillDevices();
    QSignalSpy clicks(tree.get(), &NXRTreeView::OnNodeClick);
    QSignalSpy doubles(tree.get(), &NXRTreeView::OnDoubleClick);
    QSignalSpy expands(tree.get(), &NXRTreeView::OnExpand);
    QSignalSpy collapses(tree.get(), &NXRTreeView::OnCollapse);
    QSignalSpy labels(tree.get(), &NXRTreeView::OnLabelChanged);
    QSignalSpy checks(tree.get(), &NXRTreeView::OnNodeChecked);

    // The page's own changes raise nothing.
    tree->SetNodeExpanded("VISION", false);
    tree->ExpandTree("TRUE");
    tree->SetProperty("Selected", "CAMERA");
    EXPECT_EQ(clicks.count() + expands.count() + collapses.count(), 0);

    clickAt(viewport(), center("TOOLS"));
    EXPECT_EQ(clicks.count(), 1);
    EXPECT_EQ(tree->GetProperty("Selected"), "TOOLS");
    clickAt(viewport(), center("TOOLS"));
    EXPECT_EQ(clicks.count(), 2);
    QTest::keyClick(tree->treeWidget(), Qt::Key_Up);
    EXPECT_EQ(clicks.count(), 3);
    EXPECT_EQ(tree->GetProperty("Selected"), "12");

    tree->SetProperty("Selected", "VISION");
    QTest::keyClick(tree->treeWidget(), Qt::Key_Left);
    ASSERT_EQ(collapses.count(), 1);
    EXPECT_EQ(collapses.at(0).at(0).toString(), "VISION");
    QTest::keyClick(tree->treeWidget(), Qt::Key_Right);
    ASSERT_EQ(expands.count(), 1);
    EXPECT_EQ(expands.at(0).at(0).toString(), "VISION");

    nxr::test::doubleClickAt(viewport(), center("CAMERA"));
    EXPECT_EQ(doubles.count(), 1);

    // Check boxes: a click on the box.
    tree->setCheckboxes(true);
    QStyleOptionViewItem option;
    option.initFrom(viewport());
    option.rect = tree->treeWidget()->visualItemRect(item("TOOLS"));
    option.features = QStyleOptionViewItem::HasCheckIndicator | QStyleOptionViewItem::HasDisplay;
    const QRect box = tree->treeWidget()->style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator,
                                                                  &option, tree->treeWidget());
    clickAt(viewport(), box.center());
    ASSERT_EQ(checks.count(), 1);
    EXPECT_EQ(checks.at(0).at(0).toString(), "TOOLS");
    EXPECT_TRUE(tree->NodeChecked("TOOLS"));
    EXPECT_EQ(tree->GetProperty("LastChangedNode"), "TOOLS");

    // Label edits: F2 on the selected node, a new text, Enter.
    auto editLabel = [&](const QString& name, const QString& text) {
        tree->SetProperty("Selected", name);
        QTest::keyClick(tree->treeWidget(), Qt::Key_F2);
        QLineEdit* editor = nullptr;
        for (QLineEdit* e : tree->treeWidget()->viewport()->findChildren<QLineEdit*>())
            if (e->isVisible())
                editor = e;
        if (!editor)
            return false;
        editor->selectAll();
        QTest::keyClicks(editor, text);
        QTest::keyClick(editor, Qt::Key_Return);
        QCoreApplication::processEvents(); // the editor commits after its own key handling
        return true;
    };
    EXPECT_FALSE(editLabel("CAMERA", "CAMERAS")); // not yet editable
    EXPECT_EQ(labels.count(), 0);
    tree->setEditableLabels(true);
    ASSERT_TRUE(editLabel("CAMERA", "7"));
    ASSERT_EQ(labels.count(), 1);
    EXPECT_EQ(labels.at(0).at(0).toString(), "7");
    EXPECT_EQ(tree->NodeTextToKey("7"), "Key_7");
    EXPECT_EQ(item("7"), item("Key_7"));
    EXPECT_EQ(item("CAMERA"), nullptr);
    EXPECT_EQ(tree->GetProperty("Selected"), "7");
    EXPECT_EQ(tree->GetProperty("LastChangedNode"), "7");
    const int errorsBefore = errors->count();
    ASSERT_TRUE(editLabel("7", "TOOLS")); // another node's text: refused
    EXPECT_EQ(labels.count(), 1);
    EXPECT_EQ(errors->count(), errorsBefore + 1);
    EXPECT_EQ(tree->LastErrorString(), "Error in AfterLabelEdit: Key is not unique in collection (TOOLS)");
    EXPECT_EQ(item("7")->text(0), "7");
    EXPECT_EQ(tree->NodeCount(), 6);
}

} // namespace
