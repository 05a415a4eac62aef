#include "mask/MaskModel.h"

#include "mask/MaskTypes.h"

#include <cmath>

namespace nxr {

void clsMaskPixelBlocks::AddPoint(double x, double y)
{
    const double fx = std::floor(x);
    const double fy = std::floor(y);
    if (Count() > 0) {
        const auto last = Item(Count());
        if (std::trunc(last->X) == fx && std::trunc(last->Y) == fy)
            return;
    }
    Add(std::make_shared<clsMaskPoint>(fx, fy));
}

int operationCodeForTool(int tool)
{
    switch (tool) {
    case KSEMaskTool_Freehand:
        return MaskOp_Freehand;
    case KSEMaskTool_JoinedLine:
        return MaskOp_JoinedLine;
    case KSEMaskTool_Ellipse:
        return MaskOp_Ellipse;
    case KSEMaskTool_Rectangle:
        return MaskOp_Rectangle;
    case KSEMaskTool_Fill:
        return MaskOp_Fill;
    default:
        return -1;
    }
}

int toolForOperationCode(int code)
{
    switch (code) {
    case MaskOp_Freehand:
        return KSEMaskTool_Freehand;
    case MaskOp_JoinedLine:
        return KSEMaskTool_JoinedLine;
    case MaskOp_Rectangle:
        return KSEMaskTool_Rectangle;
    case MaskOp_Ellipse:
        return KSEMaskTool_Ellipse;
    case MaskOp_Fill:
        return KSEMaskTool_Fill;
    default:
        return -1;
    }
}

MaskOperationPtr clsMask::add(int code, bool erase)
{
    auto op = std::make_shared<clsMaskOperation>();
    op->OperationType = code;
    op->EraseMode = erase;
    m_operations.Add(op);
    return op;
}

void clsMask::RecordFreehand(std::shared_ptr<const clsMaskPixelBlocks> stroke, bool erase)
{
    if (stroke)
        add(MaskOp_Freehand, erase)->PixelBlocks = std::move(stroke);
}

void clsMask::RecordJoinedLine(std::shared_ptr<const clsMaskJoinedLine> line, bool erase)
{
    if (line)
        add(MaskOp_JoinedLine, erase)->JoinedLine = std::move(line);
}

void clsMask::RecordRectangle(double x1, double y1, double x2, double y2, bool erase)
{
    auto op = add(MaskOp_Rectangle, erase);
    op->X1 = x1, op->Y1 = y1, op->X2 = x2, op->Y2 = y2;
}

void clsMask::RecordEllipse(double centreX, double centreY, double radiusX, double radiusY, bool erase)
{
    auto op = add(MaskOp_Ellipse, erase);
    op->X1 = centreX, op->Y1 = centreY, op->X2 = std::abs(radiusX), op->Y2 = std::abs(radiusY);
}

void clsMask::RecordFill(double x, double y, bool erase)
{
    auto op = add(MaskOp_Fill, erase);
    op->X1 = x, op->Y1 = y;
}

void clsMask::RecordMaskAll()
{
    add(MaskOp_MaskAll, false);
}

void clsMask::RecordMaskNone()
{
    add(MaskOp_MaskNone, false);
}

void clsMask::Undo()
{
    if (m_operations.Count() > 0)
        m_operations.Remove(m_operations.Count());
}

} // namespace nxr
