#include "views/NXRListView.h"

#include "frame/ClassRegistry.h"
#include "frame/Globals.h"
#include "frame/Trace.h"
#include "views/ListModel.h"
#include "views/ListSorting.h"
#include "views/ViewWidgets.h"

#include <QApplication>
#include <QHeaderView>
#include <QListView>
#include <QStackedLayout>
#include <QTreeView>

using nxr::Failure;
using nxr::views::ImageList;
using nxr::views::ListModel;

NXR_REGISTER_CLASS(NXRListView)

namespace {
const QString kClass = QStringLiteral("NXRListView");
const QString kSetProperty = QStringLiteral("SetProperty");

// Error numbers and texts of the list's collections.
constexpr int kIndexOutOfBounds = 35600;
constexpr int kElementNotFound = 35601;
constexpr int kKeyNotUnique = 35602;
constexpr int kInvalidKey = 35603;
constexpr int kTypeMismatch = 13;

const QString kIndexOutOfBoundsText = QStringLiteral("Index out of bounds");
const QString kElementNotFoundText = QStringLiteral("Element not found");

// The key of an item text. A text whose first non-blank character cannot begin a number is its
// own key, which spares the number test for the usual names.
QString keyOfText(const QString& text)
{
    for (QChar c : text) {
        if (c.isSpace())
            continue;
        if (c.isDigit() || c == QLatin1Char('+') || c == QLatin1Char('-') || c == QLatin1Char('.'))
            break;
        return text;
    }
    return nxr::Globals::collectionKey(text);
}

int rowOfText(const ListModel* model, const QString& text)
{
    return model->rowOfKey(keyOfText(text));
}

QString notFound(const QString& text)
{
    return kElementNotFoundText + QStringLiteral(" (") + text + QLatin1Char(')');
}
} // namespace

NXRListView::NXRListView(QWidget* parent) : ScriptableWidget(parent)
{
    m_model = new ListModel(&m_images, this);
    m_selection = new QItemSelectionModel(m_model, this);

    m_report = new QTreeView(this);
    m_report->setObjectName(QStringLiteral("lvw_Report"));
    m_report->setRootIsDecorated(false);
    m_report->setItemsExpandable(false);
    m_report->setUniformRowHeights(true);
    m_report->setAllColumnsShowFocus(true);
    m_report->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_report->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_report->setModel(m_model);
    m_report->setSelectionModel(m_selection);
    m_report->header()->setSectionsClickable(true);
    m_report->header()->setSortIndicatorShown(false);
    m_report->header()->setStretchLastSection(false);
    m_report->header()->setSectionsMovable(false);

    m_iconView = new QListView(this);
    m_iconView->setObjectName(QStringLiteral("lvw_Icons"));
    m_iconView->setUniformItemSizes(true);
    m_iconView->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_iconView->setModel(m_model);
    m_iconView->setSelectionModel(m_selection);
    m_iconView->setResizeMode(QListView::Adjust);

    m_stack = new QStackedLayout(this);
    m_stack->setContentsMargins(0, 0, 0, 0);
    m_stack->addWidget(m_report);
    m_stack->addWidget(m_iconView);
    m_stack->setCurrentWidget(m_report);
    setFocusProxy(m_report);

    connect(m_report->header(), &QHeaderView::sectionClicked, this,
            [this](int section) { sortByColumn(section); });
    connect(m_model, &ListModel::headersChanged, this, &NXRListView::applyHeaderWidths);
    connect(m_selection, &QItemSelectionModel::selectionChanged, this,
            [this](const QItemSelection& selected, const QItemSelection& deselected) {
                for (const QItemSelectionRange& r : deselected)
                    for (int row = r.top(); row <= r.bottom(); ++row)
                        m_model->setSelectedFlag(row, false);
                for (const QItemSelectionRange& r : selected)
                    for (int row = r.top(); row <= r.bottom(); ++row)
                        m_model->setSelectedFlag(row, true);
            });
    connect(m_selection, &QItemSelectionModel::currentRowChanged, this, &NXRListView::onCurrentChanged);
    for (QAbstractItemView* view :
         {static_cast<QAbstractItemView*>(m_report), static_cast<QAbstractItemView*>(m_iconView)}) {
        view->setSelectionMode(QAbstractItemView::SingleSelection);
        connect(view, &QAbstractItemView::clicked, this, &NXRListView::onClicked);
        connect(view, &QAbstractItemView::doubleClicked, this, [this] { Q_EMIT OnDoubleClick(); });
    }
    addKeys();
}

NXRListView::~NXRListView() = default;

void NXRListView::reportListError(const QString& routine, const QString& prefix, int number,
                                  const QString& description)
{
    core().reportError(routine, prefix + QString::number(number) + QStringLiteral(", ") + description);
}

void NXRListView::AddToList(const QString& vstrImageKey, const QString& vstrListItem)
{
    const QString routine = QStringLiteral("AddToList");
    NXR_TRACE(kClass, routine,
              QStringLiteral("enter, image=") + vstrImageKey + QStringLiteral(", item=") + vstrListItem);
    const QString key = keyOfText(vstrListItem);
    const QString adding = QStringLiteral("Error adding to list: ");
    if (key.isEmpty())
        return reportListError(routine, adding, kInvalidKey, QStringLiteral("Invalid key"));
    if (m_model->rowOfKey(key) >= 0)
        return reportListError(routine, adding, kKeyNotUnique,
                               QStringLiteral("Key is not unique in collection"));
    // The icon is checked before the item goes in, so a failing call leaves the list as it was.
    if (!vstrImageKey.isEmpty() && !m_images.contains(vstrImageKey))
        return reportListError(routine, QStringLiteral("Error setting SmallIcon: "), kElementNotFound,
                               kElementNotFoundText);
    clsListItem item;
    item.setKey(key);
    item.setText(vstrListItem);
    item.setSmallIcon(vstrImageKey);
    m_model->appendItem(item);
}

void NXRListView::SetSubItem(const QString& VStr_ListItem, int VLng_SubIndex, const QString& vstr_Text)
{
    NXR_TRACE(kClass, QStringLiteral("SetSubItem"),
              QStringLiteral("enter, item=") + VStr_ListItem + QStringLiteral(", sub=") +
                  QString::number(VLng_SubIndex));
    const QString prefix = QStringLiteral("Error setting subitem: ");
    const int row = rowOfText(m_model, VStr_ListItem);
    if (row < 0)
        return core().reportError(QStringLiteral("SetSubItem"), prefix + notFound(VStr_ListItem));
    if (VLng_SubIndex < 1 || VLng_SubIndex >= m_model->headerCount())
        return core().reportError(QStringLiteral("SetSubItem"),
                                  prefix + kIndexOutOfBoundsText + QStringLiteral(" (") +
                                      QString::number(VLng_SubIndex) + QLatin1Char(')'));
    m_model->setSubItem(row, VLng_SubIndex, vstr_Text);
}

void NXRListView::RemoveFromList(const QString& vstrListItem)
{
    NXR_TRACE(kClass, QStringLiteral("RemoveFromList"), QStringLiteral("enter, item=") + vstrListItem);
    core().guard(QStringLiteral("RemoveFromList"), [&] {
        const int row = rowOfText(m_model, vstrListItem);
        if (row < 0)
            throw Failure(notFound(vstrListItem));
        const bool wasQuiet = std::exchange(m_quiet, true);
        m_model->removeItem(row);
        m_quiet = wasQuiet;
    });
}

void NXRListView::ClearList()
{
    NXR_TRACE(kClass, QStringLiteral("ClearList"), QStringLiteral("enter"));
    const bool wasQuiet = std::exchange(m_quiet, true);
    m_model->clearItems();
    m_quiet = wasQuiet;
}

void NXRListView::AddListImage(const QString& vstrImagePath, const QString& vstrImageKey)
{
    NXR_TRACE(kClass, QStringLiteral("AddListImage"),
              QStringLiteral("enter, path=") + vstrImagePath + QStringLiteral(", key=") + vstrImageKey);
    if (const QString error = m_images.tryAdd(vstrImagePath, vstrImageKey); !error.isEmpty())
        core().reportError(QStringLiteral("AddListImage"), error);
}

void NXRListView::addIcon(const QIcon& icon, const QString& key)
{
    if (const QString error = m_images.tryAdd(icon, key); !error.isEmpty())
        core().reportError(QStringLiteral("AddListImage"), error);
}

void NXRListView::AddColumn(const QString& vstr_ColumnHeaderText, int vlng_Position, int vlng_WidthPixels)
{
    NXR_TRACE(kClass, QStringLiteral("AddColumn"),
              QStringLiteral("enter, ") + vstr_ColumnHeaderText + QStringLiteral(", position=") +
                  QString::number(vlng_Position));
    core().guard(QStringLiteral("AddColumn"), [&] {
        const int count = m_model->headerCount();
        if (vlng_Position > count + 1)
            throw Failure(kIndexOutOfBoundsText);
        if (vlng_WidthPixels < 0)
            throw Failure(QStringLiteral("Invalid property value"));
        const int position = vlng_Position <= 0 ? count : vlng_Position - 1;
        m_model->insertHeader(position, {vstr_ColumnHeaderText, vlng_WidthPixels});
        if (m_sortColumn >= std::max(1, position))
            ++m_sortColumn;
    });
}

void NXRListView::RemoveColumn(int vlng_Position)
{
    NXR_TRACE(kClass, QStringLiteral("RemoveColumn"),
              QStringLiteral("enter, position=") + QString::number(vlng_Position));
    core().guard(QStringLiteral("RemoveColumn"), [&] {
        if (vlng_Position < 1 || vlng_Position > m_model->headerCount())
            throw Failure(kIndexOutOfBoundsText);
        const int dataColumn = std::max(1, vlng_Position - 1);
        m_model->removeHeader(vlng_Position - 1);
        if (m_sortColumn == dataColumn)
            m_sortColumn = -1;
        else if (m_sortColumn > dataColumn)
            --m_sortColumn;
    });
}

void NXRListView::ClearColumns()
{
    m_model->clearHeaders();
    m_sortColumn = -1;
    m_report->header()->setSortIndicatorShown(false);
}

void NXRListView::applyHeaderWidths()
{
    QHeaderView* header = m_report->header();
    for (int i = 0; i < m_model->headerCount(); ++i)
        header->resizeSection(i, m_model->header(i).width);
    if (m_sortColumn >= 0) {
        header->setSortIndicator(m_sortColumn, m_descending ? Qt::DescendingOrder : Qt::AscendingOrder);
        header->setSortIndicatorShown(true);
    } else {
        header->setSortIndicatorShown(false);
    }
}

void NXRListView::SetFont(const QString& vstr_FontName, int vlng_FontSize)
{
    core().guard(QStringLiteral("SetFont"),
                 [&] { nxr::views::applyFont(*this, vstr_FontName, vlng_FontSize); });
}

void NXRListView::SetListItemColor(const QString& vstr_ListItemName, int vlng_Color)
{
    core().guard(QStringLiteral("SetListItemColor"), [&] {
        const int row = rowOfText(m_model, vstr_ListItemName);
        if (row < 0)
            throw Failure(notFound(vstr_ListItemName));
        m_model->setForeColor(row, qint32(vlng_Color));
    });
}

void NXRListView::setPxWidth(int value)
{
    resize(std::max(0, value), height());
}

void NXRListView::setPxHeight(int value)
{
    resize(width(), std::max(0, value));
}

void NXRListView::setHourglassCursor(bool value)
{
    m_hourglass = value;
    nxr::views::applyWaitCursor(*this, value);
}

// ---- selection and sorting

QAbstractItemView* NXRListView::activeView() const
{
    return m_view == 3 ? static_cast<QAbstractItemView*>(m_report)
                       : static_cast<QAbstractItemView*>(m_iconView);
}

int NXRListView::selectedRow() const
{
    const QModelIndexList rows = m_selection->selectedRows();
    return rows.isEmpty() ? -1 : rows.first().row();
}

void NXRListView::selectRow(int row)
{
    m_model->flushPending();
    const bool wasQuiet = std::exchange(m_quiet, true);
    const QModelIndex index = m_model->index(row, 0);
    m_selection->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    activeView()->scrollTo(index);
    m_quiet = wasQuiet;
}

void NXRListView::onCurrentChanged()
{
    if (m_quiet || !m_selection->currentIndex().isValid())
        return;
    m_notifiedByPress = QApplication::mouseButtons() != Qt::NoButton;
    Q_EMIT OnItemSelected();
}

void NXRListView::onClicked()
{
    // A click on a new item was announced by its press already; one on the selected item is not.
    if (!std::exchange(m_notifiedByPress, false))
        Q_EMIT OnItemSelected();
}

void NXRListView::sortByColumn(int column)
{
    NXR_TRACE(kClass, QStringLiteral("msub_SortListView"),
              QStringLiteral("enter, column=") + QString::number(column));
    const int count = m_model->itemCount();
    if (count == 0 || column < 0 || column >= m_model->columnCount())
        return;
    m_descending = column == m_sortColumn ? !m_descending : false;
    m_sortColumn = column;
    const std::vector<QString> values = m_model->columnValues(column);
    const nxr::views::ColumnKind kind = nxr::views::columnKind(values);
    m_model->applyOrder(nxr::views::sortedOrder(values, kind, m_descending));
    applyHeaderWidths();
    const QModelIndex current = m_selection->currentIndex();
    const int selected = selectedRow();
    if (selected >= 0)
        activeView()->scrollTo(m_model->index(selected, 0));
    else if (current.isValid())
        activeView()->scrollTo(current);
}

int NXRListView::itemCount() const
{
    return m_model->itemCount();
}

QStringList NXRListView::itemTexts() const
{
    QStringList texts;
    texts.reserve(m_model->itemCount());
    for (int row = 0; row < m_model->itemCount(); ++row)
        texts << m_model->item(row).Text();
    return texts;
}

std::optional<clsListItem> NXRListView::item(const QString& text) const
{
    const int row = rowOfText(m_model, text);
    if (row < 0)
        return std::nullopt;
    return m_model->item(row);
}

QString NXRListView::selectedText() const
{
    const int row = selectedRow();
    return row < 0 ? QString() : m_model->item(row).Text();
}

// ---- keys

void NXRListView::setView(const QString& value)
{
    int view = 0;
    try {
        view = nxr::toLong(value);
    } catch (const Failure& f) {
        return core().reportError(kSetProperty,
                                  QStringLiteral("Error setting View property: ") + f.description());
    }
    if (view < 0 || view > 3)
        return core().reportError(kSetProperty,
                                  QStringLiteral("Error setting View property: Invalid property value"));
    m_view = view;
    if (view == 3) {
        m_stack->setCurrentWidget(m_report);
    } else {
        m_iconView->setViewMode(view == 0 ? QListView::IconMode : QListView::ListMode);
        m_iconView->setFlow(view == 2 ? QListView::TopToBottom : QListView::LeftToRight);
        m_iconView->setWrapping(true);
        const int side =
            style()->pixelMetric(view == 0 ? QStyle::PM_LargeIconSize : QStyle::PM_SmallIconSize);
        m_iconView->setIconSize(QSize(side, side));
        m_iconView->setGridSize(view == 0 ? QSize(side * 3, side * 2 + fontMetrics().height() * 2) : QSize());
        m_stack->setCurrentWidget(m_iconView);
    }
    setFocusProxy(activeView());
}

void NXRListView::setSelectedIndex(const QString& value)
{
    const QString prefix = QStringLiteral("Error setting Selected property: ");
    int index = 0;
    try {
        index = nxr::toLong(value);
    } catch (const Failure& f) {
        return reportListError(kSetProperty, prefix, kTypeMismatch, f.description());
    }
    if (index < 1 || index > m_model->itemCount())
        return reportListError(kSetProperty, prefix, kIndexOutOfBounds, kIndexOutOfBoundsText);
    selectRow(index - 1);
}

void NXRListView::setSelectedByText(const QString& value)
{
    const QString prefix = QStringLiteral("Error setting SelectedByText property: ");
    if (m_model->itemCount() == 0)
        return core().reportError(kSetProperty, prefix + QStringLiteral("No items in ListView (") + value +
                                                    QLatin1Char(')'));
    // Texts are unique (their keys are), so the key finds the only candidate.
    const int row = rowOfText(m_model, value);
    if (row < 0 || m_model->item(row).Text() != value)
        return core().reportError(kSetProperty,
                                  prefix + QStringLiteral("Item not found (") + value + QLatin1Char(')'));
    selectRow(row);
}

void NXRListView::addKeys()
{
    properties()
        .add(
            QStringLiteral("View"), [this](const QString& v) { setView(v); },
            [this] { return QString::number(m_view); })
        .add(
            QStringLiteral("Selected"), [this](const QString& v) { setSelectedIndex(v); },
            [this] { return QString::number(selectedRow() + 1); })
        .addWriteOnly(QStringLiteral("SelectedByText"), [this](const QString& v) { setSelectedByText(v); })
        .addReadOnly(QStringLiteral("SelectedText"), [this] { return selectedText(); })
        .addReadOnly(QStringLiteral("LastErrorString"), [this] { return core().lastError(); })
        .addReadOnly(QStringLiteral("NumColumns"),
                     [this] { return QString::number(m_model->headerCount()); });
}
