#pragma once
// A multi-column list whose items pages address by their texts: an item's key is made from its
// text ("Key_" + a numeric text), so texts are unique. Columns with pixel widths, small icons
// from picture files, text colours, the four view styles and sorting by a clicked header.
//
// From C++ (the open/save dialog) the same members serve, plus direct access:
//
//     NXRListView list;
//     list.AddColumn("Name", 1, 160);
//     list.AddColumn("Size", 2, 80);
//     list.addIcon(QIcon::fromTheme("image-x-generic"), "image");
//     list.AddToList("image", "LOG0001.PNG");
//     list.SetSubItem("LOG0001.PNG", 1, "12 kB");
//     QObject::connect(&list, &NXRListView::OnDoubleClick, [&] { open(list.selectedText()); });
//
// View styles ("View"): 0 large icons, 1 small icons, 2 list, 3 report (columns, the default).

#include "frame/Export.h"
#include "frame/ScriptableWidget.h"
#include "views/ImageList.h"
#include "views/clsListItem.h"

#include <QStringList>

#include <optional>

class QAbstractItemView;
class QItemSelectionModel;
class QListView;
class QStackedLayout;
class QTreeView;

namespace nxr::views {
class ListModel;
}

class NXR_EXPORT NXRListView : public nxr::ScriptableWidget
{
    Q_OBJECT
    Q_PROPERTY(int PxWidth READ PxWidth WRITE setPxWidth)
    Q_PROPERTY(int PxHeight READ PxHeight WRITE setPxHeight)
    Q_PROPERTY(bool HourglassCursor READ HourglassCursor WRITE setHourglassCursor)

public:
    explicit NXRListView(QWidget* parent = nullptr);
    ~NXRListView() override;

    Q_INVOKABLE void AddToList(const QString& vstrImageKey, const QString& vstrListItem);
    Q_INVOKABLE void SetSubItem(const QString& VStr_ListItem, int VLng_SubIndex, const QString& vstr_Text);
    Q_INVOKABLE void RemoveFromList(const QString& vstrListItem);
    Q_INVOKABLE void ClearList();
    Q_INVOKABLE void AddListImage(const QString& vstrImagePath, const QString& vstrImageKey);
    // Position 1 is the first column; 0 or less appends.
    Q_INVOKABLE void AddColumn(const QString& vstr_ColumnHeaderText, int vlng_Position, int vlng_WidthPixels);
    Q_INVOKABLE void RemoveColumn(int vlng_Position);
    Q_INVOKABLE void ClearColumns();
    Q_INVOKABLE void SetFont(const QString& vstr_FontName, int vlng_FontSize);
    Q_INVOKABLE void SetListItemColor(const QString& vstr_ListItemName, int vlng_Color);

    int PxWidth() const { return width(); }
    void setPxWidth(int value);
    int PxHeight() const { return height(); }
    void setPxHeight(int value);
    bool HourglassCursor() const { return m_hourglass; }
    void setHourglassCursor(bool value);

    // ---- C++ access
    // Sorts as a click on the header of `column` (0: the texts) does.
    void sortByColumn(int column);
    int sortColumn() const { return m_sortColumn; }
    bool sortDescending() const { return m_descending; }
    int itemCount() const;
    // Item texts in list order.
    QStringList itemTexts() const;
    // A copy of the item with this text (selection included); nothing when there is none.
    std::optional<clsListItem> item(const QString& text) const;
    QString selectedText() const;
    int viewStyle() const { return m_view; }
    void addIcon(const QIcon& icon, const QString& key);
    nxr::views::ImageList& images() { return m_images; }
    nxr::views::ListModel* model() const { return m_model; }
    QTreeView* reportView() const { return m_report; }
    QListView* iconView() const { return m_iconView; }
    QAbstractItemView* activeView() const;

Q_SIGNALS:
    void OnItemSelected();
    void OnDoubleClick();

private:
    void addKeys();
    void setView(const QString& value);
    void setSelectedIndex(const QString& value);
    void setSelectedByText(const QString& value);
    void selectRow(int row);
    int selectedRow() const;
    void applyHeaderWidths();
    void onCurrentChanged();
    void onClicked();
    void reportListError(const QString& routine, const QString& prefix, int number,
                         const QString& description);

    nxr::views::ImageList m_images;
    nxr::views::ListModel* m_model = nullptr;
    QItemSelectionModel* m_selection = nullptr;
    QStackedLayout* m_stack = nullptr;
    QTreeView* m_report = nullptr;
    QListView* m_iconView = nullptr;
    int m_view = 3;
    int m_sortColumn = -1;
    bool m_descending = false;
    bool m_hourglass = false;
    bool m_quiet = false;           // selection changes made by the page raise no events
    bool m_notifiedByPress = false; // the press of the current click already raised OnItemSelected
};
