#include "views/ListModel.h"

#include "views/ImageList.h"
#include "views/ItemColors.h"

namespace nxr::views {

ListModel::ListModel(const ImageList* icons, QObject* parent) : QAbstractTableModel(parent), m_icons(icons) {}

int ListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_announced;
}

int ListModel::columnCount(const QModelIndex& parent) const
{
    // Without headers the item texts still show in the icon and list styles.
    return parent.isValid() ? 0 : std::max(1, int(m_columns.size()));
}

QVariant ListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_announced)
        return {};
    const clsListItem& row = m_rows[size_t(index.row())];
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        return row.columnText(index.column());
    case Qt::DecorationRole:
        if (index.column() == 0 && !row.SmallIcon().isEmpty() && m_icons)
            return m_icons->icon(row.SmallIcon());
        return {};
    case Qt::ForegroundRole:
        return textBrush(row.ForeColor());
    default:
        return {};
    }
}

QVariant ListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal)
        return QAbstractTableModel::headerData(section, orientation, role);
    if (section < 0 || section >= int(m_columns.size()))
        return {}; // the text column before any header is added
    if (role == Qt::DisplayRole)
        return m_columns[size_t(section)].caption;
    return {};
}

void ListModel::reindexFrom(int row)
{
    for (int r = row; r < int(m_rows.size()); ++r)
        m_keyRow.insert(m_rows[size_t(r)].Key(), r);
}

void ListModel::schedule()
{
    if (m_scheduled)
        return;
    m_scheduled = true;
    QMetaObject::invokeMethod(this, &ListModel::flushPending, Qt::QueuedConnection);
}

void ListModel::flushPending()
{
    m_scheduled = false;
    if (m_changedFirst >= 0) {
        const int last = std::min(m_changedLast, m_announced - 1);
        if (m_changedFirst <= last)
            Q_EMIT dataChanged(index(m_changedFirst, 0), index(last, columnCount() - 1),
                               {Qt::DisplayRole, Qt::ToolTipRole, Qt::ForegroundRole});
        m_changedFirst = m_changedLast = -1;
    }
    if (m_announced < int(m_rows.size())) {
        beginInsertRows({}, m_announced, int(m_rows.size()) - 1);
        m_announced = int(m_rows.size());
        endInsertRows();
    }
}

void ListModel::appendItem(const clsListItem& item)
{
    const int row = int(m_rows.size());
    m_rows.push_back(item);
    m_keyRow.insert(item.Key(), row);
    schedule();
}

void ListModel::removeItem(int row)
{
    flushPending();
    beginRemoveRows({}, row, row);
    m_keyRow.remove(m_rows[size_t(row)].Key());
    m_rows.erase(m_rows.begin() + row);
    --m_announced;
    reindexFrom(row);
    endRemoveRows();
}

void ListModel::clearItems()
{
    beginResetModel();
    m_rows.clear();
    m_keyRow.clear();
    m_announced = 0;
    m_changedFirst = m_changedLast = -1;
    endResetModel();
}

void ListModel::setSubItem(int row, int index, const QString& text)
{
    m_rows[size_t(row)].setSubItem(index, text);
    if (row < m_announced) {
        m_changedFirst = m_changedFirst < 0 ? row : std::min(m_changedFirst, row);
        m_changedLast = std::max(m_changedLast, row);
        schedule();
    }
}

void ListModel::setForeColor(int row, qint32 color)
{
    m_rows[size_t(row)].setForeColor(color);
    if (row < m_announced) {
        m_changedFirst = m_changedFirst < 0 ? row : std::min(m_changedFirst, row);
        m_changedLast = std::max(m_changedLast, row);
        schedule();
    }
}

void ListModel::setSelectedFlag(int row, bool selected)
{
    if (row >= 0 && row < int(m_rows.size()))
        m_rows[size_t(row)].setSelected(selected);
}

void ListModel::insertHeader(int position, const Column& column)
{
    // The texts always stay in the first column: the first header takes over the column that
    // already shows them, and a header put in front of others gets the texts while the former
    // first header moves on with an empty sub-item.
    flushPending();
    const bool grows = !m_columns.empty();
    const int dataColumn = std::max(1, position);
    if (grows)
        beginInsertColumns({}, dataColumn, dataColumn);
    m_columns.insert(m_columns.begin() + position, column);
    if (grows)
        for (clsListItem& row : m_rows)
            row.insertSubItem(dataColumn);
    if (grows)
        endInsertColumns();
    Q_EMIT headerDataChanged(Qt::Horizontal, 0, columnCount() - 1);
    Q_EMIT headersChanged();
}

void ListModel::removeHeader(int position)
{
    flushPending();
    const bool shrinks = m_columns.size() > 1;
    const int dataColumn = std::max(1, position);
    if (shrinks)
        beginRemoveColumns({}, dataColumn, dataColumn);
    m_columns.erase(m_columns.begin() + position);
    if (shrinks)
        for (clsListItem& row : m_rows)
            row.removeSubItem(dataColumn);
    if (shrinks)
        endRemoveColumns();
    Q_EMIT headerDataChanged(Qt::Horizontal, 0, columnCount() - 1);
    Q_EMIT headersChanged();
}

void ListModel::clearHeaders()
{
    flushPending();
    beginResetModel();
    m_columns.clear();
    for (clsListItem& row : m_rows)
        row.clearSubItems();
    endResetModel();
    Q_EMIT headersChanged();
}

std::vector<QString> ListModel::columnValues(int column) const
{
    std::vector<QString> values;
    values.reserve(m_rows.size());
    for (const clsListItem& row : m_rows)
        values.push_back(row.columnText(column));
    return values;
}

void ListModel::applyOrder(const std::vector<int>& order)
{
    flushPending();
    Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    std::vector<int> newRowOf(m_rows.size());
    std::vector<clsListItem> rows;
    rows.reserve(m_rows.size());
    for (int i = 0; i < int(order.size()); ++i) {
        newRowOf[size_t(order[size_t(i)])] = i;
        rows.push_back(std::move(m_rows[size_t(order[size_t(i)])]));
    }
    m_rows = std::move(rows);
    reindexFrom(0);
    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    after.reserve(before.size());
    for (const QModelIndex& index : before)
        after << this->index(newRowOf[size_t(index.row())], index.column());
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

} // namespace nxr::views
