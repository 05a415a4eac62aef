#pragma once
// The undo history of a mask edit: every finished drawing action as one operation, in order.
// Geometry and flags only; painting is MaskPainter's. Coordinates are mask pixels.
//
// Collections are 1-based; an index outside 1..Count gives null from Item and is ignored by
// Remove. Objects are shared: an operation keeps its stroke or line alive, and neither is
// changed once recorded.

#include "frame/Export.h"

#include <memory>
#include <vector>

namespace nxr {

struct NXR_EXPORT clsMaskPoint
{
    clsMaskPoint() = default;
    clsMaskPoint(double x, double y) : X(x), Y(y) {}
    double X = 0;
    double Y = 0;
};

using MaskPointPtr = std::shared_ptr<clsMaskPoint>;

// A 1-based list of shared items.
template <typename T> class MaskList
{
public:
    int Count() const { return int(m_items.size()); }
    std::shared_ptr<T> Item(int index) const
    {
        return index >= 1 && index <= Count() ? m_items[size_t(index - 1)] : nullptr;
    }
    void Add(std::shared_ptr<T> item)
    {
        if (item)
            m_items.push_back(std::move(item));
    }
    void Remove(int index)
    {
        if (index >= 1 && index <= Count())
            m_items.erase(m_items.begin() + (index - 1));
    }
    void RemoveAll() { m_items.clear(); }
    const std::vector<std::shared_ptr<T>>& items() const { return m_items; }

private:
    std::vector<std::shared_ptr<T>> m_items;
};

// One freehand stroke: whole pixel positions without consecutive repeats.
class NXR_EXPORT clsMaskPixelBlocks : public MaskList<clsMaskPoint>
{
public:
    // Floors both coordinates (10.9 -> 10, -0.5 -> -1) and appends the point unless it is the
    // pixel of the last point.
    void AddPoint(double x, double y);

    int BlockWidth = 0;
    bool EraseFunction = false;
};

// One polyline of the joined-line tool; every point is kept as given.
class NXR_EXPORT clsMaskJoinedLine
{
public:
    void AddPoint(double x, double y) { m_points.Add(std::make_shared<clsMaskPoint>(x, y)); }
    const MaskList<clsMaskPoint>& Points() const { return m_points; }
    MaskList<clsMaskPoint>& Points() { return m_points; }

    int LineWidth = 0;

private:
    MaskList<clsMaskPoint> m_points;
};

// Operation codes of the undo list. The two shapes are numbered the other way round from
// KSEMaskTool (rectangle 2, ellipse 3); see operationCodeForTool.
enum MaskOperationCode {
    MaskOp_Freehand = 0,
    MaskOp_JoinedLine = 1,
    MaskOp_Rectangle = 2,
    MaskOp_Ellipse = 3,
    MaskOp_Fill = 4,
    MaskOp_MaskAll = 5,
    MaskOp_MaskNone = 6,
};

// The operation code a drawing tool records (-1 for KSEMaskTool_None and unknown tools), and
// the tool that replays an operation code (-1 for mask all, mask none and unknown codes).
NXR_EXPORT int operationCodeForTool(int tool);
NXR_EXPORT int toolForOperationCode(int code);

struct NXR_EXPORT clsMaskOperation
{
    int OperationType = MaskOp_Freehand;
    std::shared_ptr<const clsMaskPixelBlocks> PixelBlocks;
    std::shared_ptr<const clsMaskJoinedLine> JoinedLine;
    // Rectangle: two opposite corners. Ellipse: centre and the two radii. Fill: the seed.
    double X1 = 0, Y1 = 0, X2 = 0, Y2 = 0;
    bool EraseMode = false;
};

using MaskOperationPtr = std::shared_ptr<clsMaskOperation>;

class NXR_EXPORT clsMaskOperations : public MaskList<clsMaskOperation>
{
};

// The model of the mask edit in progress.
class NXR_EXPORT clsMask
{
public:
    const clsMaskOperations& Operations() const { return m_operations; }
    clsMaskOperations& Operations() { return m_operations; }

    // KSEEditMaskMode of the edit in progress, -1 when none.
    int EditMode = -1;

    void RecordFreehand(std::shared_ptr<const clsMaskPixelBlocks> stroke, bool erase);
    void RecordJoinedLine(std::shared_ptr<const clsMaskJoinedLine> line, bool erase);
    void RecordRectangle(double x1, double y1, double x2, double y2, bool erase);
    void RecordEllipse(double centreX, double centreY, double radiusX, double radiusY, bool erase);
    void RecordFill(double x, double y, bool erase);
    void RecordMaskAll();
    void RecordMaskNone();
    // Removes the newest operation; nothing on an empty list.
    void Undo();
    void ClearOperations() { m_operations.RemoveAll(); }

private:
    MaskOperationPtr add(int code, bool erase);
    clsMaskOperations m_operations;
};

// A segment of a point list between two indices, its length and two marks for a joining pass.
// Published for pages; no mask routine fills it.
struct LineSegment
{
    int Lng_StartIndex = 0;
    int Lng_EndIndex = 0;
    double Dbl_Length = 0;
    bool Bln_Used = false;
    bool Bln_Eliminated = false;
};

} // namespace nxr
