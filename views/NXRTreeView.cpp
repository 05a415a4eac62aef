#include "views/NXRTreeView.h"

#include "frame/ClassRegistry.h"
#include "frame/Globals.h"
#include "frame/Trace.h"
#include "views/ItemColors.h"
#include "views/ViewWidgets.h"

#include <QApplication>
#include <QHeaderView>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QVBoxLayout>

using nxr::Failure;
using nxr::views::ImageList;

NXR_REGISTER_CLASS(NXRTreeView)

namespace {
const QString kClass = QStringLiteral("NXRTreeView");
const QString kSetProperty = QStringLiteral("SetProperty");
const QString kGetProperty = QStringLiteral("GetProperty");
const QString kNotUnique = QStringLiteral("Key is not unique in collection");

constexpr int kKeyRole = Qt::UserRole;
constexpr int kTagRole = Qt::UserRole + 1;
constexpr int kTextRole = Qt::UserRole + 2;    // the text as the control last knew it
constexpr int kCheckedRole = Qt::UserRole + 3; // the checked state, kept while no boxes show

// A failure whose text is the whole message (not "Error in <routine>: ...").
struct Message
{
    QString text;
};

// Counts the page's own changes so they raise no events.
class Quiet
{
public:
    explicit Quiet(int& depth) : m_depth(depth) { ++m_depth; }
    ~Quiet() { --m_depth; }
    Quiet(const Quiet&) = delete;
    Quiet& operator=(const Quiet&) = delete;

private:
    int& m_depth;
};
} // namespace

NXRTreeView::NXRTreeView(QWidget* parent) : ScriptableWidget(parent)
{
    core().setUnknownKeyTexts(QStringLiteral("Error setting unknown property ("),
                              QStringLiteral("Error getting unknown property ("));
    m_tree = new QTreeWidget(this);
    m_tree->setObjectName(QStringLiteral("tvw_Tree"));
    m_tree->setColumnCount(1);
    m_tree->setHeaderHidden(true);
    m_tree->setSelectionMode(QAbstractItemView::SingleSelection);
    m_tree->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_tree->setExpandsOnDoubleClick(true);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_tree);
    setFocusProxy(m_tree);

    connect(m_tree, &QTreeWidget::itemChanged, this, &NXRTreeView::onItemChanged);
    connect(m_tree, &QTreeWidget::itemExpanded, this, [this](QTreeWidgetItem* item) {
        if (!m_quiet)
            Q_EMIT OnExpand(item->text(0));
    });
    connect(m_tree, &QTreeWidget::itemCollapsed, this, [this](QTreeWidgetItem* item) {
        if (!m_quiet)
            Q_EMIT OnCollapse(item->text(0));
    });
    connect(m_tree, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* current) {
        if (m_quiet || !current)
            return;
        m_notifiedByPress = QApplication::mouseButtons() != Qt::NoButton;
        Q_EMIT OnNodeClick();
    });
    connect(m_tree, &QTreeWidget::itemClicked, this, [this] {
        // A click on another node was announced by its press already; one on the selected node is not.
        if (!std::exchange(m_notifiedByPress, false))
            Q_EMIT OnNodeClick();
    });
    connect(m_tree, &QTreeWidget::itemDoubleClicked, this, [this] { Q_EMIT OnDoubleClick(); });
    applyStyle(m_style);
    addKeys();
}

NXRTreeView::~NXRTreeView() = default;

// ---- lookup

QString NXRTreeView::keyOf(const QTreeWidgetItem* node)
{
    return node ? node->data(0, kKeyRole).toString() : QString();
}

QString NXRTreeView::tagOf(const QTreeWidgetItem* node)
{
    return node ? node->data(0, kTagRole).toString() : QString();
}

QTreeWidgetItem* NXRTreeView::findNode(const QString& name) const
{
    if (QTreeWidgetItem* n = m_nodes.value(name))
        return n;
    return m_nodes.value(QStringLiteral("Key_") + name);
}

QTreeWidgetItem* NXRTreeView::node(const QString& name) const
{
    QTreeWidgetItem* n = findNode(name);
    if (!n)
        throw Message{QStringLiteral("Error: Node not found for ") + name};
    return n;
}

template <typename Body> void NXRTreeView::nodeRoutine(const QString& routine, Body&& body)
{
    try {
        Quiet quiet(m_quiet);
        body();
    } catch (const Message& m) {
        core().reportError(routine, m.text);
    } catch (const Failure& f) {
        core().fail(routine, f.description());
    }
}

QStringList NXRTreeView::nodeTexts() const
{
    QStringList texts;
    for (QTreeWidgetItemIterator it(m_tree); *it; ++it)
        texts << (*it)->text(0);
    return texts;
}

// ---- methods

void NXRTreeView::AddNode(const QString& vstrRelativeKey, int venuRelationship, const QString& vstrImageKey,
                          const QString& vstrText)
{
    const QString routine = QStringLiteral("AddNode");
    NXR_TRACE(kClass, routine,
              QStringLiteral("enter, relative=") + vstrRelativeKey + QStringLiteral(", relationship=") +
                  QString::number(venuRelationship) + QStringLiteral(", image=") + vstrImageKey +
                  QStringLiteral(", text=") + vstrText);
    if (venuRelationship == tvwChild && vstrRelativeKey.isEmpty())
        return core().reportError(routine, QStringLiteral("Error: no parent defined for child node (") +
                                               vstrText + QLatin1Char(')'));
    nodeRoutine(routine, [&] {
        // Everything is checked before the node goes in, so a failing call changes nothing.
        if (venuRelationship > tvwChild)
            throw Failure(QStringLiteral("Invalid property value"));
        QTreeWidgetItem* relative = nullptr;
        if (venuRelationship >= 0 && !vstrRelativeKey.isEmpty()) {
            relative = findNode(vstrRelativeKey);
            if (!relative)
                throw Failure(QStringLiteral("Element not found (") + vstrRelativeKey + QLatin1Char(')'));
        }
        const QString key = nxr::Globals::collectionKey(vstrText);
        if (key.isEmpty())
            throw Failure(QStringLiteral("Invalid key"));
        if (m_nodes.contains(key))
            throw Failure(kNotUnique + QStringLiteral(" (") + vstrText + QLatin1Char(')'));
        if (!vstrImageKey.isEmpty() && !m_images.contains(vstrImageKey))
            throw Failure(QStringLiteral("Image not found (") + vstrImageKey + QLatin1Char(')'));

        auto* n = new QTreeWidgetItem(QStringList{vstrText});
        n->setData(0, kKeyRole, key);
        n->setData(0, kTagRole, vstrText);
        n->setData(0, kTextRole, vstrText);
        n->setData(0, kCheckedRole, false);
        if (!vstrImageKey.isEmpty())
            n->setIcon(0, m_images.icon(vstrImageKey));
        if (m_editable)
            n->setFlags(n->flags() | Qt::ItemIsEditable);
        applyCheckbox(n);

        if (!relative) {
            if (venuRelationship == tvwFirst)
                m_tree->insertTopLevelItem(0, n);
            else
                m_tree->addTopLevelItem(n);
        } else if (venuRelationship == tvwChild) {
            relative->addChild(n);
        } else {
            QTreeWidgetItem* parent = relative->parent();
            const int at = parent ? parent->indexOfChild(relative) : m_tree->indexOfTopLevelItem(relative);
            const int count = parent ? parent->childCount() : m_tree->topLevelItemCount();
            const int position = venuRelationship == tvwFirst  ? 0
                                 : venuRelationship == tvwLast ? count
                                 : venuRelationship == tvwNext ? at + 1
                                                               : at;
            if (parent)
                parent->insertChild(position, n);
            else
                m_tree->insertTopLevelItem(position, n);
        }
        m_nodes.insert(key, n);
        // A new node opens, so the children the page adds next are in sight.
        n->setExpanded(true);
    });
}

void NXRTreeView::forgetSubtree(QTreeWidgetItem* n)
{
    m_nodes.remove(keyOf(n));
    for (int i = 0; i < n->childCount(); ++i)
        forgetSubtree(n->child(i));
}

void NXRTreeView::RemoveNode(const QString& vstrNodeKey)
{
    NXR_TRACE(kClass, QStringLiteral("RemoveNode"), QStringLiteral("enter, node=") + vstrNodeKey);
    nodeRoutine(QStringLiteral("RemoveNode"), [&] {
        QTreeWidgetItem* n = node(vstrNodeKey);
        forgetSubtree(n);
        delete n;
    });
}

void NXRTreeView::ClearTree()
{
    NXR_TRACE(kClass, QStringLiteral("ClearTree"), QStringLiteral("enter"));
    Quiet quiet(m_quiet);
    m_nodes.clear();
    m_tree->clear();
}

int NXRTreeView::NodeCount()
{
    return int(m_nodes.size());
}

void NXRTreeView::ExpandTree(const QString& vstrTrueFalse)
{
    NXR_TRACE(kClass, QStringLiteral("ExpandTree"), QStringLiteral("enter, ") + vstrTrueFalse);
    Quiet quiet(m_quiet);
    if (vstrTrueFalse.toUpper() == QLatin1String("TRUE"))
        m_tree->expandAll();
    else
        m_tree->collapseAll();
}

QString NXRTreeView::NodeTextToKey(const QString& vstrNodeText)
{
    for (QTreeWidgetItemIterator it(m_tree); *it; ++it)
        if ((*it)->text(0) == vstrNodeText)
            return keyOf(*it);
    return QString();
}

void NXRTreeView::AddListImage(const QString& vstrImagePath, const QString& vstrImageKey)
{
    NXR_TRACE(kClass, QStringLiteral("AddListImage"),
              QStringLiteral("enter, path=") + vstrImagePath + QStringLiteral(", key=") + vstrImageKey);
    if (const QString error = m_images.tryAdd(vstrImagePath, vstrImageKey); !error.isEmpty())
        core().reportError(QStringLiteral("AddListImage"), error);
}

void NXRTreeView::addIcon(const QIcon& icon, const QString& key)
{
    if (const QString error = m_images.tryAdd(icon, key); !error.isEmpty())
        core().reportError(QStringLiteral("AddListImage"), error);
}

void NXRTreeView::SetFont(const QString& vstr_FontName, int vlng_FontSize)
{
    nodeRoutine(QStringLiteral("SetFont"),
                [&] { nxr::views::applyFont(*this, vstr_FontName, vlng_FontSize); });
}

void NXRTreeView::SetNodeColor(const QString& vstr_NodeName, int vlng_Color)
{
    NXR_TRACE(kClass, QStringLiteral("SetNodeColor"),
              QStringLiteral("enter, node=") + vstr_NodeName + QStringLiteral(", color=") +
                  QString::number(vlng_Color));
    nodeRoutine(QStringLiteral("SetNodeColor"), [&] {
        QTreeWidgetItem* n = node(vstr_NodeName);
        n->setData(0, Qt::ForegroundRole, nxr::views::textBrush(qint32(vlng_Color)));
    });
}

void NXRTreeView::SetNodeTag(const QString& vstr_NodeName, const QString& vstr_NodeTag)
{
    NXR_TRACE(kClass, QStringLiteral("SetNodeTag"),
              QStringLiteral("enter, node=") + vstr_NodeName + QStringLiteral(", tag=") + vstr_NodeTag);
    nodeRoutine(QStringLiteral("SetNodeTag"),
                [&] { node(vstr_NodeName)->setData(0, kTagRole, vstr_NodeTag); });
}

bool NXRTreeView::NodeChecked(const QString& vstr_NodeText)
{
    bool result = false;
    nodeRoutine(QStringLiteral("NodeChecked.Get"),
                [&] { result = node(vstr_NodeText)->data(0, kCheckedRole).toBool(); });
    return result;
}

void NXRTreeView::SetNodeChecked(const QString& vstr_NodeText, bool value)
{
    nodeRoutine(QStringLiteral("NodeChecked.Let"), [&] {
        QTreeWidgetItem* n = node(vstr_NodeText);
        n->setData(0, kCheckedRole, value);
        applyCheckbox(n);
    });
}

bool NXRTreeView::NodeEnabled(const QString& vstr_NodeText)
{
    bool result = false;
    nodeRoutine(QStringLiteral("NodeEnabled.Get"), [&] { result = !node(vstr_NodeText)->isDisabled(); });
    return result;
}

void NXRTreeView::SetNodeEnabled(const QString& vstr_NodeText, bool value)
{
    nodeRoutine(QStringLiteral("NodeEnabled.Let"), [&] { node(vstr_NodeText)->setDisabled(!value); });
}

bool NXRTreeView::NodeExpanded(const QString& vstr_NodeText)
{
    bool result = false;
    nodeRoutine(QStringLiteral("NodeExpanded.Get"), [&] { result = node(vstr_NodeText)->isExpanded(); });
    return result;
}

void NXRTreeView::SetNodeExpanded(const QString& vstr_NodeText, bool value)
{
    nodeRoutine(QStringLiteral("NodeExpanded.Let"), [&] { node(vstr_NodeText)->setExpanded(value); });
}

// ---- properties

void NXRTreeView::setPxWidth(int value)
{
    resize(std::max(0, value), height());
}

void NXRTreeView::setPxHeight(int value)
{
    resize(width(), std::max(0, value));
}

void NXRTreeView::setHourglassCursor(bool value)
{
    m_hourglass = value;
    nxr::views::applyWaitCursor(*this, value);
}

void NXRTreeView::setEditableLabels(bool value)
{
    Quiet quiet(m_quiet);
    m_editable = value;
    m_tree->setEditTriggers(value ? QAbstractItemView::SelectedClicked | QAbstractItemView::EditKeyPressed
                                  : QAbstractItemView::NoEditTriggers);
    for (QTreeWidgetItemIterator it(m_tree); *it; ++it)
        (*it)->setFlags(value ? (*it)->flags() | Qt::ItemIsEditable : (*it)->flags() & ~Qt::ItemIsEditable);
}

void NXRTreeView::applyCheckbox(QTreeWidgetItem* n)
{
    if (m_checkboxes) {
        n->setFlags(n->flags() | Qt::ItemIsUserCheckable);
        n->setCheckState(0, n->data(0, kCheckedRole).toBool() ? Qt::Checked : Qt::Unchecked);
    } else {
        n->setFlags(n->flags() & ~Qt::ItemIsUserCheckable);
        n->setData(0, Qt::CheckStateRole, QVariant());
    }
}

void NXRTreeView::setCheckboxes(bool value)
{
    Quiet quiet(m_quiet);
    m_checkboxes = value;
    for (QTreeWidgetItemIterator it(m_tree); *it; ++it)
        applyCheckbox(*it);
}

void NXRTreeView::applyStyle(int style)
{
    // Bit 0: pictures, bit 1: plus/minus buttons, bit 2: lines (the platform's style decides
    // whether lines are drawn).
    m_style = style;
    const int side = QWidget::style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, m_tree);
    m_tree->setIconSize((style & 1) ? QSize(side, side) : QSize(0, 0));
    m_tree->setRootIsDecorated((style & 2) != 0);
}

// ---- operator changes

void NXRTreeView::onItemChanged(QTreeWidgetItem* item, int column)
{
    if (m_quiet || column != 0)
        return;
    const QString oldText = item->data(0, kTextRole).toString();
    const QString newText = item->text(0);
    if (newText != oldText) {
        const QString oldKey = keyOf(item);
        const QString newKey = nxr::Globals::collectionKey(newText);
        if (newKey.isEmpty() || (newKey != oldKey && m_nodes.contains(newKey))) {
            {
                Quiet quiet(m_quiet);
                item->setText(0, oldText);
            }
            core().fail(QStringLiteral("AfterLabelEdit"),
                        (newKey.isEmpty() ? QStringLiteral("Invalid key") : kNotUnique) +
                            QStringLiteral(" (") + newText + QLatin1Char(')'));
            return;
        }
        {
            Quiet quiet(m_quiet);
            m_nodes.remove(oldKey);
            m_nodes.insert(newKey, item);
            item->setData(0, kKeyRole, newKey);
            item->setData(0, kTextRole, newText);
            if (tagOf(item) == oldText)
                item->setData(0, kTagRole, newText);
        }
        m_lastChanged = newText;
        Q_EMIT OnLabelChanged(newText);
        return;
    }
    if (m_checkboxes && (item->flags() & Qt::ItemIsUserCheckable)) {
        const bool checked = item->checkState(0) == Qt::Checked;
        if (checked != item->data(0, kCheckedRole).toBool()) {
            {
                Quiet quiet(m_quiet);
                item->setData(0, kCheckedRole, checked);
            }
            m_lastChanged = newText;
            Q_EMIT OnNodeChecked(newText);
        }
    }
}

// ---- keys

QString NXRTreeView::fullPath(const QTreeWidgetItem* n) const
{
    QStringList parts;
    for (; n; n = n->parent())
        parts.prepend(n->text(0));
    return parts.join(QLatin1Char('\\'));
}

void NXRTreeView::setSelected(const QString& value)
{
    QTreeWidgetItem* n = findNode(value);
    if (!n)
        return core().reportError(kSetProperty, QStringLiteral("Error: Node not found for ") + value);
    Quiet quiet(m_quiet);
    // The selected node is drawn in the highlighted-text colour whatever its own colour, so a
    // white or system-coloured node stays readable while selected.
    if (n->isDisabled())
        return core().reportError(kSetProperty,
                                  QStringLiteral("Error setting Selected property: Node is disabled (") +
                                      value + QLatin1Char(')'));
    m_tree->setCurrentItem(n);
    m_tree->scrollToItem(n);
}

QString NXRTreeView::selectedTag() const
{
    const QList<QTreeWidgetItem*> selected = m_tree->selectedItems();
    if (selected.isEmpty())
        throw Failure(QStringLiteral("No node is selected"));
    return tagOf(selected.first());
}

void NXRTreeView::addKeys()
{
    properties()
        .add(
            QStringLiteral("Selected"), [this](const QString& v) { setSelected(v); },
            [this] {
                try {
                    return selectedTag();
                } catch (const Failure& f) {
                    core().reportError(kGetProperty,
                                       QStringLiteral("Error getting Selected property: ") + f.description());
                    return QString();
                }
            })
        .addWriteOnly(QStringLiteral("Style"),
                      [this](const QString& v) {
                          try {
                              const int style = nxr::toLong(v);
                              if (style < 0 || style > 7)
                                  throw Failure(QStringLiteral("Invalid property value"));
                              applyStyle(style);
                          } catch (const Failure& f) {
                              core().reportError(kSetProperty,
                                                 QStringLiteral("Error setting Style property: ") +
                                                     f.description());
                          }
                      })
        .addReadOnly(QStringLiteral("ParentOfSelected"),
                     [this] {
                         const QList<QTreeWidgetItem*> selected = m_tree->selectedItems();
                         return selected.isEmpty() ? QString() : tagOf(selected.first()->parent());
                     })
        .addReadOnly(QStringLiteral("FullSelectedPath"),
                     [this] {
                         const QList<QTreeWidgetItem*> selected = m_tree->selectedItems();
                         return selected.isEmpty() ? QString() : fullPath(selected.first());
                     })
        .addReadOnly(QStringLiteral("LastChangedNode"), [this] { return m_lastChanged; })
        .addReadOnly(QStringLiteral("LastErrorString"), [this] { return core().lastError(); });
}
