#include "views/clsListItem.h"

QString clsListItem::SubItem(int index) const
{
    return index >= 1 && index <= int(m_subItems.size()) ? m_subItems[size_t(index - 1)] : QString();
}

void clsListItem::setSubItem(int index, const QString& value)
{
    if (index < 1)
        return;
    if (index > int(m_subItems.size()))
        m_subItems.resize(size_t(index));
    m_subItems[size_t(index - 1)] = value;
}

void clsListItem::insertSubItem(int index)
{
    if (index >= 1 && index <= int(m_subItems.size()))
        m_subItems.insert(m_subItems.begin() + (index - 1), QString());
}

void clsListItem::removeSubItem(int index)
{
    if (index >= 1 && index <= int(m_subItems.size()))
        m_subItems.erase(m_subItems.begin() + (index - 1));
}
