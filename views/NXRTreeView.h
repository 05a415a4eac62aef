#pragma once
// A tree whose nodes pages address by their texts: a node's key is made from its text
// ("Key_" + a numeric text) and its tag starts as its text. A name given by the page is looked up
// as a key, then as "Key_" + name. Node icons come from picture files; nodes have colours, tags,
// check boxes, enabled and expanded states.
//
// From C++ (the open/save dialog) the same members serve, plus direct access:
//
//     NXRTreeView tree;
//     tree.AddNode("", -1, "", "MC:");                         // a root node
//     tree.AddNode("MC:", NXRTreeView::tvwChild, "", "VISION");
//     QObject::connect(&tree, &NXRTreeView::OnNodeClick, [&] { show(tree.GetProperty("FullSelectedPath"));
//     });
//
// Operator changes (label edits, check boxes, expanding, collapsing, clicks) raise the events;
// changes the page makes through the members raise none. A label edit gives the node the key of
// its new text, so the page names it by what it shows; an edit to a text another node has is
// refused.

#include "frame/Export.h"
#include "frame/ScriptableWidget.h"
#include "views/ImageList.h"

#include <QHash>

class QTreeWidget;
class QTreeWidgetItem;

class NXR_EXPORT NXRTreeView : public nxr::ScriptableWidget
{
    Q_OBJECT
    Q_PROPERTY(int PxWidth READ PxWidth WRITE setPxWidth)
    Q_PROPERTY(int PxHeight READ PxHeight WRITE setPxHeight)
    Q_PROPERTY(bool HourglassCursor READ HourglassCursor WRITE setHourglassCursor)
    Q_PROPERTY(bool EditableLabels READ EditableLabels WRITE setEditableLabels)
    Q_PROPERTY(bool Checkboxes READ Checkboxes WRITE setCheckboxes)
    Q_PROPERTY(bool Enabled READ Enabled WRITE setEnabledState)

public:
    // Where AddNode puts a node relative to the named one; below 0: at the root level.
    enum Relationship { tvwFirst = 0, tvwLast = 1, tvwNext = 2, tvwPrevious = 3, tvwChild = 4 };
    Q_ENUM(Relationship)

    explicit NXRTreeView(QWidget* parent = nullptr);
    ~NXRTreeView() override;

    Q_INVOKABLE void AddNode(const QString& vstrRelativeKey, int venuRelationship,
                             const QString& vstrImageKey, const QString& vstrText);
    Q_INVOKABLE void RemoveNode(const QString& vstrNodeKey);
    Q_INVOKABLE void ClearTree();
    Q_INVOKABLE int NodeCount();
    Q_INVOKABLE void ExpandTree(const QString& vstrTrueFalse);
    Q_INVOKABLE QString NodeTextToKey(const QString& vstrNodeText);
    Q_INVOKABLE void AddListImage(const QString& vstrImagePath, const QString& vstrImageKey);
    Q_INVOKABLE void SetFont(const QString& vstr_FontName, int vlng_FontSize);
    Q_INVOKABLE void SetNodeColor(const QString& vstr_NodeName, int vlng_Color);
    Q_INVOKABLE void SetNodeTag(const QString& vstr_NodeName, const QString& vstr_NodeTag);

    // Per-node states, the node named by its text.
    Q_INVOKABLE bool NodeChecked(const QString& vstr_NodeText);
    Q_INVOKABLE void SetNodeChecked(const QString& vstr_NodeText, bool value);
    Q_INVOKABLE bool NodeEnabled(const QString& vstr_NodeText);
    Q_INVOKABLE void SetNodeEnabled(const QString& vstr_NodeText, bool value);
    Q_INVOKABLE bool NodeExpanded(const QString& vstr_NodeText);
    Q_INVOKABLE void SetNodeExpanded(const QString& vstr_NodeText, bool value);

    int PxWidth() const { return width(); }
    void setPxWidth(int value);
    int PxHeight() const { return height(); }
    void setPxHeight(int value);
    bool HourglassCursor() const { return m_hourglass; }
    void setHourglassCursor(bool value);
    bool EditableLabels() const { return m_editable; }
    void setEditableLabels(bool value);
    bool Checkboxes() const { return m_checkboxes; }
    void setCheckboxes(bool value);
    bool Enabled() const { return isEnabled(); }
    void setEnabledState(bool value) { setEnabled(value); }

    // ---- C++ access
    QTreeWidget* treeWidget() const { return m_tree; }
    // The node a page name stands for (key, then "Key_" + name); null when none.
    QTreeWidgetItem* findNode(const QString& name) const;
    static QString keyOf(const QTreeWidgetItem* node);
    static QString tagOf(const QTreeWidgetItem* node);
    // Texts of all nodes in the tree's order (depth first).
    QStringList nodeTexts() const;
    // The drawing style ("Style"): 0-7, as the usual tree styles (pictures, plus/minus, lines).
    int style() const { return m_style; }
    void addIcon(const QIcon& icon, const QString& key);
    nxr::views::ImageList& images() { return m_images; }

Q_SIGNALS:
    void OnNodeClick();
    void OnDoubleClick();
    void OnLabelChanged(const QString& str_NewLabel);
    void OnNodeChecked(const QString& str_NodeText);
    void OnCollapse(const QString& str_NodeText);
    void OnExpand(const QString& str_NodeText);

private:
    void addKeys();
    // The node for name or throws the lookup's failure.
    QTreeWidgetItem* node(const QString& name) const;
    // Runs a per-node routine: a failure is reported with its own text.
    template <typename Body> void nodeRoutine(const QString& routine, Body&& body);
    void forgetSubtree(QTreeWidgetItem* node);
    void setSelected(const QString& value);
    QString selectedTag() const;
    QString fullPath(const QTreeWidgetItem* node) const;
    void applyStyle(int style);
    void onItemChanged(QTreeWidgetItem* item, int column);
    void applyCheckbox(QTreeWidgetItem* item);

    QTreeWidget* m_tree = nullptr;
    nxr::views::ImageList m_images;
    QHash<QString, QTreeWidgetItem*> m_nodes;
    QString m_lastChanged;
    int m_style = 7;
    bool m_hourglass = false;
    bool m_editable = false;
    bool m_checkboxes = false;
    int m_quiet = 0;                // > 0 while the page's own calls change the tree
    bool m_notifiedByPress = false; // the press of the current click already raised OnNodeClick
};
