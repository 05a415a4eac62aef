#pragma once
// The rows and columns of a list view: one clsListItem per row, column headers with pixel widths,
// and a key index. Column 0 shows the item text, column n sub-item n. Icons come from an
// ImageList the owner keeps alive.

#include "frame/Export.h"
#include "views/ListSorting.h"
#include "views/clsListItem.h"

#include <QAbstractTableModel>
#include <QHash>

#include <vector>

namespace nxr::views {

class ImageList;

class NXR_EXPORT ListModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    struct Column
    {
        QString caption;
        int width = 100;
    };

    explicit ListModel(const ImageList* icons, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    // ---- Items. Rows are 0-based here.
    //
    // Appended rows and changed sub-items are announced to the views in one batch when control
    // returns to the event loop (or at the next change of structure, or flushPending()), so
    // filling thousands of rows one call at a time costs the views one update. The item accessors
    // below see every row at once; the model's index() sees announced rows only.
    const clsListItem& item(int row) const { return m_rows[size_t(row)]; }
    int itemCount() const { return int(m_rows.size()); }
    // The row of the item with this key, -1 when none.
    int rowOfKey(const QString& key) const { return m_keyRow.value(key, -1); }
    void appendItem(const clsListItem& item);
    void removeItem(int row);
    void clearItems();
    void setSubItem(int row, int index, const QString& text);
    void setForeColor(int row, qint32 color);
    void setSelectedFlag(int row, bool selected);

    // ---- Columns (positions 0-based).
    int headerCount() const { return int(m_columns.size()); }
    const Column& header(int position) const { return m_columns[size_t(position)]; }
    // Inserts a header; sub-items of later columns move with their headers.
    void insertHeader(int position, const Column& column);
    void removeHeader(int position);
    void clearHeaders();

    // ---- Sorting.
    std::vector<QString> columnValues(int column) const;
    // Announces the rows appended and the cells changed since the last announcement.
    void flushPending();
    // Reorders the rows: order[i] is the present row that goes to row i. Persistent indexes
    // (the view's selection and current item) follow their rows.
    void applyOrder(const std::vector<int>& order);

Q_SIGNALS:
    void headersChanged();

private:
    void reindexFrom(int row);
    void schedule();

    int m_announced = 0; // rows the views know about
    int m_changedFirst = -1, m_changedLast = -1;
    bool m_scheduled = false;

    const ImageList* m_icons;
    std::vector<clsListItem> m_rows;
    std::vector<Column> m_columns;
    QHash<QString, int> m_keyRow;
};

} // namespace nxr::views
