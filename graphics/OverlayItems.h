#pragma once
// The vector graphics drawn over the image, and the ordered, optionally keyed list that holds
// them. Insertion order is drawing order. Positions are image pixels, colours 0x00BBGGRR, angles
// degrees.

#include "frame/Export.h"
#include "graphics/Geometry.h"

#include <QString>

#include <array>
#include <variant>
#include <vector>

namespace nxr {

struct NXR_EXPORT clsBoxItem
{
    double Left = 0.0, Top = 0.0, Width = 0.0, Height = 0.0;
    double Angle = 0.0;
    qint32 Color = 0;
};

struct NXR_EXPORT clsCrossItem
{
    double X = 0.0, Y = 0.0;
    double Angle = 0.0;
    qint32 Color = 0;
};

struct NXR_EXPORT clsCircleItem
{
    double X = 0.0, Y = 0.0;
    double Radius = 0.0;
    qint32 Color = 0;
};

struct NXR_EXPORT clsTextItem
{
    QString Text;
    double X = 0.0, Y = 0.0; // top left of the text, before its 3-pixel offset
    qint32 Color = 0;
};

// A line, an arrowed line, or a pair of parallel lines round a centre line.
class NXR_EXPORT clsLineItem
{
public:
    double X1 = 0.0, Y1 = 0.0, X2 = 0.0, Y2 = 0.0;
    qint32 Color = 0;
    // Style bits handed to the line drawing: 4 arrow head at the first end, 8 at the second, the
    // low two bits the pen (0 solid, 1 dashed, 2 dotted, 3 dash-dot).
    qint16 Arrowed = 0;
    bool IsPair = false;
    double PairWidth = 0.0;

    double MinPairWidth() const { return m_minPairWidth; }
    double MaxPairWidth() const { return m_maxPairWidth; }
    // Below 1 stores 1.0; otherwise kept only when there is no maximum (-1) or the maximum is
    // larger.
    void SetMinPairWidth(double value);
    // Kept only when it is -1 (no maximum) or larger than the minimum.
    void SetMaxPairWidth(double value);

    // The four corners of a pair: end 1 and end 2 of the centre line each moved by
    // +PairWidth/2 and -PairWidth/2 along the unit normal n = (-d.Y, d.X) of the direction
    // d = end 2 - end 1. Order: end 1 + n, end 2 + n, end 2 - n, end 1 - n. A line of zero length
    // gives its end points four times.
    std::array<clsVector, 4> PairCorners() const;

private:
    double m_minPairWidth = 1.0;
    double m_maxPairWidth = -1.0;
};

using OverlayItem = std::variant<clsBoxItem, clsCrossItem, clsLineItem, clsTextItem, clsCircleItem>;

class NXR_EXPORT clsOverlayCollection
{
public:
    // Every adder takes the key last: an empty key adds the item without a key. A key that is
    // already present throws nxr::Failure ("This key is already associated with an element of
    // this collection") and adds nothing.
    void AddBox(double left, double top, double width, double height, double angle, qint32 color,
                const QString& key = {});
    void AddCross(double x, double y, double angle, qint32 color, const QString& key = {});
    void AddLine(double x1, double y1, double x2, double y2, qint32 color, const QString& key = {});
    void AddArrowLine(double x1, double y1, double x2, double y2, qint32 color, qint16 arrowed,
                      const QString& key = {});
    void AddLinePair(double x1, double y1, double x2, double y2, double width, qint32 color,
                     const QString& key = {});
    void AddText(double x, double y, const QString& text, qint32 color, const QString& key = {});
    void AddCircle(double x, double y, double radius, qint32 color, const QString& key = {});

    int Count() const { return int(m_entries.size()); }
    // Positions count from 1, as in any collection the pages know. A position outside 1..Count or
    // a missing key throws nxr::Failure ("Invalid procedure call or argument").
    const OverlayItem& Item(int index) const;
    OverlayItem& Item(int index);
    const OverlayItem& Item(const QString& key) const;
    bool Contains(const QString& key) const;
    QString KeyAt(int index) const;
    void Remove(int index);
    // A missing key is ignored.
    void RemoveKey(const QString& key);
    // Removes every item, one by one from the front.
    void Clear();

    // Enumeration in drawing order.
    struct Entry
    {
        QString key;
        OverlayItem item;
    };
    std::vector<Entry>::const_iterator begin() const { return m_entries.begin(); }
    std::vector<Entry>::const_iterator end() const { return m_entries.end(); }

private:
    void addLineItem(double x1, double y1, double x2, double y2, qint32 color, qint16 arrowed, bool isPair,
                     double width, const QString& key);
    void add(OverlayItem item, const QString& key);
    int indexOfKey(const QString& key) const;
    void checkIndex(int index) const;

    std::vector<Entry> m_entries;
};

} // namespace nxr
