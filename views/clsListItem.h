#pragma once
// One item of a list view: key, text, small-icon key, text colour, selection and the texts of
// its sub-items (sub-item 1 is shown in the list's second column, and so on).

#include "frame/Export.h"

#include <QString>

#include <vector>

class NXR_EXPORT clsListItem
{
public:
    // The colour that stands for "the window's text colour" (a system colour).
    static constexpr qint32 kWindowText = qint32(0x80000008u);

    QString Key() const { return m_key; }
    void setKey(const QString& value) { m_key = value; }
    QString Text() const { return m_text; }
    void setText(const QString& value) { m_text = value; }
    QString SmallIcon() const { return m_smallIcon; }
    void setSmallIcon(const QString& value) { m_smallIcon = value; }
    qint32 ForeColor() const { return m_foreColor; }
    void setForeColor(qint32 value) { m_foreColor = value; }
    bool Selected() const { return m_selected; }
    void setSelected(bool value) { m_selected = value; }

    // Sub-item `index` (1-based); "" for one never set.
    QString SubItem(int index) const;
    void setSubItem(int index, const QString& value);
    // The text shown in column `column` (0: the text, n: sub-item n).
    QString columnText(int column) const { return column == 0 ? m_text : SubItem(column); }
    // Inserts an empty sub-item before `index` (1-based) / removes sub-item `index`, moving later
    // ones along with their columns.
    void insertSubItem(int index);
    void removeSubItem(int index);
    void clearSubItems() { m_subItems.clear(); }

private:
    QString m_key;
    QString m_text;
    QString m_smallIcon;
    qint32 m_foreColor = kWindowText;
    bool m_selected = false;
    std::vector<QString> m_subItems;
};
