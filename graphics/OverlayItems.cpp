#include "graphics/OverlayItems.h"

#include "frame/Conversions.h"

#include <cmath>

namespace nxr {

void clsLineItem::SetMinPairWidth(double value)
{
    if (value < 1.0) {
        m_minPairWidth = 1.0;
        return;
    }
    if (m_maxPairWidth == -1.0 || m_maxPairWidth > value)
        m_minPairWidth = value;
}

void clsLineItem::SetMaxPairWidth(double value)
{
    if (value == -1.0 || value > m_minPairWidth)
        m_maxPairWidth = value;
}

std::array<clsVector, 4> clsLineItem::PairCorners() const
{
    const clsVector a(X1, Y1), b(X2, Y2);
    clsVector d;
    d.Subtract(b, a);
    d.Normalize(d);
    if (d.Length() == 0.0)
        return {a, b, b, a};
    const double half = PairWidth / 2.0;
    const double nx = -d.Y() * half, ny = d.X() * half;
    return {clsVector(X1 + nx, Y1 + ny), clsVector(X2 + nx, Y2 + ny), clsVector(X2 - nx, Y2 - ny),
            clsVector(X1 - nx, Y1 - ny)};
}

void clsOverlayCollection::add(OverlayItem item, const QString& key)
{
    if (!key.isEmpty() && indexOfKey(key) >= 0)
        throw Failure(QStringLiteral("This key is already associated with an element of this collection"));
    m_entries.push_back({key, std::move(item)});
}

void clsOverlayCollection::AddBox(double left, double top, double width, double height, double angle,
                                  qint32 color, const QString& key)
{
    add(clsBoxItem{left, top, width, height, angle, color}, key);
}

void clsOverlayCollection::AddCross(double x, double y, double angle, qint32 color, const QString& key)
{
    add(clsCrossItem{x, y, angle, color}, key);
}

void clsOverlayCollection::AddLine(double x1, double y1, double x2, double y2, qint32 color,
                                   const QString& key)
{
    addLineItem(x1, y1, x2, y2, color, 0, false, 0.0, key);
}

void clsOverlayCollection::AddArrowLine(double x1, double y1, double x2, double y2, qint32 color,
                                        qint16 arrowed, const QString& key)
{
    addLineItem(x1, y1, x2, y2, color, arrowed, false, 0.0, key);
}

void clsOverlayCollection::AddLinePair(double x1, double y1, double x2, double y2, double width, qint32 color,
                                       const QString& key)
{
    addLineItem(x1, y1, x2, y2, color, 0, true, width, key);
}

void clsOverlayCollection::addLineItem(double x1, double y1, double x2, double y2, qint32 color,
                                       qint16 arrowed, bool isPair, double width, const QString& key)
{
    clsLineItem line;
    line.X1 = x1;
    line.Y1 = y1;
    line.X2 = x2;
    line.Y2 = y2;
    line.Color = color;
    line.Arrowed = arrowed;
    line.IsPair = isPair;
    line.PairWidth = width;
    add(std::move(line), key);
}

void clsOverlayCollection::AddText(double x, double y, const QString& text, qint32 color, const QString& key)
{
    add(clsTextItem{text, x, y, color}, key);
}

void clsOverlayCollection::AddCircle(double x, double y, double radius, qint32 color, const QString& key)
{
    add(clsCircleItem{x, y, radius, color}, key);
}

void clsOverlayCollection::checkIndex(int index) const
{
    if (index < 1 || index > Count())
        throw Failure(QStringLiteral("Invalid procedure call or argument"));
}

const OverlayItem& clsOverlayCollection::Item(int index) const
{
    checkIndex(index);
    return m_entries[std::size_t(index - 1)].item;
}

OverlayItem& clsOverlayCollection::Item(int index)
{
    checkIndex(index);
    return m_entries[std::size_t(index - 1)].item;
}

const OverlayItem& clsOverlayCollection::Item(const QString& key) const
{
    const int i = key.isEmpty() ? -1 : indexOfKey(key);
    if (i < 0)
        throw Failure(QStringLiteral("Invalid procedure call or argument"));
    return m_entries[std::size_t(i)].item;
}

bool clsOverlayCollection::Contains(const QString& key) const
{
    return !key.isEmpty() && indexOfKey(key) >= 0;
}

QString clsOverlayCollection::KeyAt(int index) const
{
    checkIndex(index);
    return m_entries[std::size_t(index - 1)].key;
}

int clsOverlayCollection::indexOfKey(const QString& key) const
{
    for (std::size_t i = 0; i < m_entries.size(); ++i)
        if (m_entries[i].key == key)
            return int(i);
    return -1;
}

void clsOverlayCollection::Remove(int index)
{
    checkIndex(index);
    m_entries.erase(m_entries.begin() + (index - 1));
}

void clsOverlayCollection::RemoveKey(const QString& key)
{
    if (key.isEmpty())
        return;
    const int i = indexOfKey(key);
    if (i >= 0)
        m_entries.erase(m_entries.begin() + i);
}

void clsOverlayCollection::Clear()
{
    // From the front, one by one; the vector lets that be one call.
    m_entries.clear();
}

} // namespace nxr
