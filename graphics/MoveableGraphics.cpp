#include "graphics/MoveableGraphics.h"

#include <algorithm>
#include <cmath>

namespace nxr {

namespace {

double distance(double x1, double y1, double x2, double y2)
{
    return std::hypot(x2 - x1, y2 - y1);
}

// Distance from p to the segment a-b.
double segmentDistance(const clsVector& p, double ax, double ay, double bx, double by)
{
    const double dx = bx - ax, dy = by - ay;
    const double len2 = dx * dx + dy * dy;
    if (len2 == 0.0)
        return distance(p.X(), p.Y(), ax, ay);
    const double t = std::clamp(((p.X() - ax) * dx + (p.Y() - ay) * dy) / len2, 0.0, 1.0);
    return distance(p.X(), p.Y(), ax + t * dx, ay + t * dy);
}

void shiftCorner(clsRectangle& r, int i, const clsVector& axis, double amount)
{
    clsVector& c = r.Corner(i);
    c.setX(c.X() + amount * axis.X());
    c.setY(c.Y() + amount * axis.Y());
}

} // namespace

int clsMoveableGraphics::SizingPointer(double dx, double dy)
{
    double a = RadiansToDegrees(ArcTan2(dy, dx));
    while (a > 90.0)
        a -= 180.0;
    while (a < -90.0)
        a += 180.0;
    if (a >= -22.5 && a <= 22.5)
        return kPointerSizeWE;
    if (a > 22.5 && a <= 67.5)
        return kPointerSizeNWSE; // pointing down and right on the screen
    if (a < -22.5 && a >= -67.5)
        return kPointerSizeNESW;
    return kPointerSizeNS;
}

int clsMoveableGraphics::HitTestWindow(const clsVector& p, bool* hit)
{
    ClearHits();
    ResetHandleColors();
    const double tol = HitTolerance;
    const double u = Rect.AxisU().DotProduct(p), v = Rect.AxisV().DotProduct(p);
    const double us = Rect.UStart(), ue = Rect.UEnd(), vs = Rect.VStart(), ve = Rect.VEnd();
    const bool inU = us - tol <= u && u <= ue + tol;
    const bool inV = vs - tol <= v && v <= ve + tol;

    HitLeft = std::abs(u - us) < tol && inV;
    HitRight = std::abs(u - ue) < tol && inV;
    HitTop = std::abs(v - vs) < tol && inU;
    HitBottom = std::abs(v - ve) < tol && inU;
    // A window thinner than twice the tolerance: the nearer edge stays; on a tie the right or
    // bottom one, so that dragging outward opens the window.
    if (HitLeft && HitRight) {
        if (std::abs(u - us) < std::abs(u - ue))
            HitRight = false;
        else
            HitLeft = false;
    }
    if (HitTop && HitBottom) {
        if (std::abs(v - vs) < std::abs(v - ve))
            HitBottom = false;
        else
            HitTop = false;
    }
    // The handle sits on the right edge's middle; on a thin window only when the right edge is
    // the one that stayed.
    if (Window.Rotatable && HitRight && std::abs(v - (vs + ve) / 2.0) < tol) {
        HitRotate = true;
        HitRight = false;
    }
    const bool edge = HitLeft || HitRight || HitTop || HitBottom;
    HitInside = inU && inV && !edge && !HitRotate;

    if (HitInside) {
        HandleColors.fill(kHandleOrange);
    } else if (HitRotate) {
        HandleColors[4] = kHandleGreen;
    } else {
        auto violet = [this](int a, int b) {
            HandleColors[std::size_t(a)] = kHandleViolet;
            HandleColors[std::size_t(b)] = kHandleViolet;
        };
        if (HitLeft)
            violet(0, 3);
        if (HitRight)
            violet(1, 2);
        if (HitTop)
            violet(0, 1);
        if (HitBottom)
            violet(2, 3);
    }
    if (hit)
        *hit = edge || HitInside || HitRotate;
    return WindowPointer();
}

int clsMoveableGraphics::WindowPointer() const
{
    if (HitRotate)
        return kPointerRotate;
    if (HitInside)
        return kPointerSizeAll;
    if (!(HitLeft || HitRight || HitTop || HitBottom))
        return kPointerDefault;
    // The direction in which the grabbed edge (or corner, for two edges) moves.
    const clsVector& u = Rect.AxisU();
    const clsVector& v = Rect.AxisV();
    double dx = 0.0, dy = 0.0;
    const double su = HitRight ? 1.0 : HitLeft ? -1.0 : 0.0;
    const double sv = HitBottom ? 1.0 : HitTop ? -1.0 : 0.0;
    dx = su * u.X() + sv * v.X();
    dy = su * u.Y() + sv * v.Y();
    return SizingPointer(dx, dy);
}

void clsMoveableGraphics::DragWindow(const clsRectangle& atPress, const clsVector& pressPoint,
                                     const clsVector& p)
{
    clsRectangle r = atPress;
    const double pressAngle = Window.Angle;
    if (HitRotate) {
        if (!Window.Rotatable)
            return;
        const clsVector& c0 = atPress.Corner(0);
        const clsVector& c2 = atPress.Corner(2);
        const double cx = c0.X() + 0.5 * (c2.X() - c0.X()), cy = c0.Y() + 0.5 * (c2.Y() - c0.Y());
        if (distance(cx, cy, p.X(), p.Y()) < 1e-9 || distance(cx, cy, pressPoint.X(), pressPoint.Y()) < 1e-9)
            return;
        // The turn that carries the press point's direction to the pointer's (image
        // coordinates, Y down), so the handle follows the pointer without a jump.
        const double turn =
            std::atan2(p.Y() - cy, p.X() - cx) - std::atan2(pressPoint.Y() - cy, pressPoint.X() - cx);
        const double cs = std::cos(turn), sn = std::sin(turn);
        for (int i = 0; i < 4; ++i) {
            clsVector& c = r.Corner(i);
            const double x = c.X() - cx, y = c.Y() - cy;
            c.setX(cx + x * cs - y * sn);
            c.setY(cy + x * sn + y * cs);
        }
        for (clsVector* axis : {&r.AxisU(), &r.AxisV()}) {
            const double x = axis->X(), y = axis->Y();
            axis->setX(x * cs - y * sn);
            axis->setY(x * sn + y * cs);
        }
    } else if (HitInside) {
        // Corner 0 keeps its offset from the pointer: the window does not jump.
        const double dx = p.X() - pressPoint.X(), dy = p.Y() - pressPoint.Y();
        for (int i = 0; i < 4; ++i) {
            clsVector& c = r.Corner(i);
            c.setX(c.X() + dx);
            c.setY(c.Y() + dy);
        }
    } else if (HitLeft || HitRight || HitTop || HitBottom) {
        const clsVector& U = atPress.AxisU();
        const clsVector& V = atPress.AxisV();
        const double u = U.DotProduct(p), v = V.DotProduct(p);
        // The grabbed edge goes through p, but never closer than the least side to the
        // opposite edge: a window is not turned inside out.
        if (HitLeft) {
            const double s = std::min(u, atPress.UEnd() - kLeastLength) - atPress.UStart();
            shiftCorner(r, 0, U, s);
            shiftCorner(r, 3, U, s);
        }
        if (HitRight) {
            const double s = std::max(u, atPress.UStart() + kLeastLength) - atPress.UEnd();
            shiftCorner(r, 1, U, s);
            shiftCorner(r, 2, U, s);
        }
        if (HitTop) {
            const double s = std::min(v, atPress.VEnd() - kLeastLength) - atPress.VStart();
            shiftCorner(r, 0, V, s);
            shiftCorner(r, 1, V, s);
        }
        if (HitBottom) {
            const double s = std::max(v, atPress.VStart() + kLeastLength) - atPress.VEnd();
            shiftCorner(r, 2, V, s);
            shiftCorner(r, 3, V, s);
        }
    } else {
        return;
    }
    r.Orthogonalize();
    clsWindow w = r.ToWindow();
    w.Rotatable = Window.Rotatable;
    // Moves and edge drags keep the direction; the angle stays exactly as it was.
    if (!HitRotate)
        w.Angle = pressAngle;
    Window = w;
    Rect = r;
}

void clsMoveableGraphics::ShiftWindow(double dx, double dy)
{
    Window.Left += dx;
    Window.Top += dy;
    Rect.SetFromWindow(Window);
}

LinePart clsMoveableGraphics::HitTestLine(const clsVector& p, bool pair) const
{
    const double tol = HitTolerance;
    const double d1 = distance(p.X(), p.Y(), Line.X1, Line.Y1);
    const double d2 = distance(p.X(), p.Y(), Line.X2, Line.Y2);
    if (d1 < tol || d2 < tol)
        return d2 <= d1 ? LinePart::End2 : LinePart::End1;
    const double dc = segmentDistance(p, Line.X1, Line.Y1, Line.X2, Line.Y2);
    if (pair) {
        const auto c = Line.PairCorners();
        const double ds = std::min(segmentDistance(p, c[0].X(), c[0].Y(), c[1].X(), c[1].Y()),
                                   segmentDistance(p, c[3].X(), c[3].Y(), c[2].X(), c[2].Y()));
        if (ds < tol && ds < dc)
            return LinePart::Side;
        // Between the two lines counts as the whole pair.
        const double dx = Line.X2 - Line.X1, dy = Line.Y2 - Line.Y1;
        const double len2 = dx * dx + dy * dy;
        if (len2 > 0.0) {
            const double t = ((p.X() - Line.X1) * dx + (p.Y() - Line.Y1) * dy) / len2;
            const double across = std::abs((p.Y() - Line.Y1) * dx - (p.X() - Line.X1) * dy) / std::sqrt(len2);
            if (t >= 0.0 && t <= 1.0 && across <= Line.PairWidth / 2.0)
                return LinePart::Whole;
        }
    }
    return dc < tol ? LinePart::Whole : LinePart::None;
}

int clsMoveableGraphics::LinePointer(LinePart part) const
{
    const double dx = Line.X2 - Line.X1, dy = Line.Y2 - Line.Y1;
    switch (part) {
    case LinePart::None:
        return kPointerDefault;
    case LinePart::Whole:
        return kPointerSizeAll;
    case LinePart::End1:
    case LinePart::End2:
        return dx == 0.0 && dy == 0.0 ? int(kPointerSizeAll) : SizingPointer(dx, dy);
    case LinePart::Side:
        return dx == 0.0 && dy == 0.0 ? int(kPointerSizeAll) : SizingPointer(-dy, dx);
    }
    return kPointerDefault;
}

void clsMoveableGraphics::MoveLine(int idx, double x, double y, bool keepDirection)
{
    if (idx == 3) {
        Line.X1 += x;
        Line.Y1 += y;
        Line.X2 += x;
        Line.Y2 += y;
        return;
    }
    if (idx != 1 && idx != 2)
        return;
    const clsVector other = idx == 1 ? clsVector(Line.X2, Line.Y2) : clsVector(Line.X1, Line.Y1);
    const clsVector old = idx == 1 ? clsVector(Line.X1, Line.Y1) : clsVector(Line.X2, Line.Y2);
    clsVector p(x, y);
    if (keepDirection && !(old == other))
        p.ProjectOntoLine(old, other);
    const double len = distance(p.X(), p.Y(), other.X(), other.Y());
    if (len < kLeastLength) {
        // Which way the end lies from the other one: the new point's way, else the old one's,
        // else to the right.
        double dx = p.X() - other.X(), dy = p.Y() - other.Y();
        double dl = len;
        if (dl == 0.0) {
            dx = old.X() - other.X();
            dy = old.Y() - other.Y();
            dl = std::hypot(dx, dy);
        }
        if (dl == 0.0) {
            dx = 1.0;
            dy = 0.0;
            dl = 1.0;
        }
        p = clsVector(other.X() + dx / dl * kLeastLength, other.Y() + dy / dl * kLeastLength);
    }
    if (idx == 1) {
        Line.X1 = p.X();
        Line.Y1 = p.Y();
    } else {
        Line.X2 = p.X();
        Line.Y2 = p.Y();
    }
}

double clsMoveableGraphics::ClampPairWidth(double w) const
{
    if (!(w >= Line.MinPairWidth())) // also NaN
        w = Line.MinPairWidth();
    if (Line.MaxPairWidth() != -1.0 && w > Line.MaxPairWidth())
        w = Line.MaxPairWidth();
    return w;
}

void clsMoveableGraphics::SetPairWidthThrough(const clsVector& p)
{
    const double dx = Line.X2 - Line.X1, dy = Line.Y2 - Line.Y1;
    const double len = std::hypot(dx, dy);
    const double across = len == 0.0 ? distance(p.X(), p.Y(), Line.X1, Line.Y1)
                                     : std::abs((p.Y() - Line.Y1) * dx - (p.X() - Line.X1) * dy) / len;
    Line.PairWidth = ClampPairWidth(2.0 * across);
}

clsWindow clsMoveableGraphics::DefineMoveableWindowByLineAndWidth(double x1, double y1, double x2, double y2,
                                                                  double width)
{
    const double length = distance(x1, y1, x2, y2);
    clsWindow w;
    w.Left = (x1 + x2) / 2.0 - length / 2.0;
    w.Top = (y1 + y2) / 2.0 - width / 2.0;
    w.Width = length;
    w.Height = width;
    w.Angle = length == 0.0 ? 0.0 : RadiansToDegrees(ArcTan2(-(y2 - y1), x2 - x1));
    w.Rotatable = true;
    return w;
}

std::array<clsVector, 4> clsMoveableGraphics::GetMoveableWindowCornerPoints() const
{
    clsRectangle r;
    r.SetFromWindow(Window);
    return {r.Corner(0), r.Corner(1), r.Corner(2), r.Corner(3)};
}

} // namespace nxr
