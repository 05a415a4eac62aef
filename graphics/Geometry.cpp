#include "graphics/Geometry.h"

#include "frame/Conversions.h"

#include <cmath>

namespace nxr {

double ArcTan2(double y, double x)
{
    if (x == 0.0) {
        if (y == 0.0)
            return 0.0;
        return y < 0.0 ? -kMathPi / 2.0 : kMathPi / 2.0;
    }
    if (x > 0.0)
        return std::atan(y / x);
    // The negative X axis itself reports -pi: a window lying along it reads -180 degrees.
    return y > 0.0 ? std::atan(y / x) + kMathPi : std::atan(y / x) - kMathPi;
}

double ArcCos(double x)
{
    if (std::abs(x) == 1.0)
        return 0.0;
    const double root = std::sqrt(1.0 - x * x);
    if (!std::isfinite(root) || root == 0.0)
        return 0.0;
    return kMathPi / 2.0 - std::atan(x / root);
}

double RadiansToDegrees(double radians)
{
    return radians * 180.0 / kMathPi;
}

qint32 GetContrastColor(qint32 color)
{
    const long r = color & 255;
    const long g = std::lround(double(color & 0xFF00) / 256.0);
    const long b = ContrastColorBlue(color);
    return (r < 128 && g < 128 && b < 128) ? 0xFFFFFF : 0;
}

long ContrastColorBlue(qint32 color)
{
    // 65281, not 65536: blue then runs from 0 to 256. Kept as pages have always seen it.
    return std::lround(double(color & 0xFF0000) / 65281.0);
}

// clsVector ----------------------------------------------------------------------------------

double clsVector::Component(int i) const
{
    return (i >= 1 && i <= 3) ? m_c[std::size_t(i - 1)] : 0.0;
}

void clsVector::setComponent(int i, double v)
{
    if (i >= 1 && i <= 3)
        m_c[std::size_t(i - 1)] = v;
}

double clsVector::Length() const
{
    return std::pow(std::pow(m_c[0], 2.0) + std::pow(m_c[1], 2.0) + std::pow(m_c[2], 2.0), 0.5);
}

void clsVector::Add(const clsVector& a, const clsVector& b)
{
    for (std::size_t i = 0; i < 3; ++i)
        m_c[i] = a.m_c[i] + b.m_c[i];
}

void clsVector::Subtract(const clsVector& a, const clsVector& b)
{
    for (std::size_t i = 0; i < 3; ++i)
        m_c[i] = a.m_c[i] - b.m_c[i];
}

void clsVector::CrossProduct(const clsVector& a, const clsVector& b)
{
    const double x = a.Y() * b.Z() - a.Z() * b.Y();
    const double y = a.Z() * b.X() - a.X() * b.Z();
    const double z = a.X() * b.Y() - a.Y() * b.X();
    m_c = {x, y, z};
}

double clsVector::DotProduct(const clsVector& v) const
{
    return m_c[0] * v.m_c[0] + m_c[1] * v.m_c[1] + m_c[2] * v.m_c[2];
}

void clsVector::Scale(double k, const clsVector& v)
{
    for (std::size_t i = 0; i < 3; ++i)
        m_c[i] = k * v.m_c[i];
}

void clsVector::Negate(const clsVector& v)
{
    Scale(-1.0, v);
}

void clsVector::Normalize(const clsVector& v)
{
    const double length = v.Length();
    if (length == 0.0)
        return;
    for (std::size_t i = 0; i < 3; ++i)
        m_c[i] = v.m_c[i] / length;
}

void clsVector::CopyFrom(const clsVector& v)
{
    m_c = v.m_c;
}

double clsVector::DistanceTo(const clsVector& v) const
{
    clsVector d;
    d.Subtract(*this, v);
    return std::pow(d.DotProduct(d), 0.5);
}

double clsVector::ProjectOntoLine(const clsVector& a, const clsVector& b)
{
    const double d = a.DistanceTo(b);
    if (d == 0.0)
        throw Failure(QStringLiteral("Division by zero"));
    const double t = ((b.Y() - a.Y()) * (b.Y() - Y()) + (b.X() - a.X()) * (b.X() - X())) / (d * d);
    clsVector back;
    back.Subtract(a, b);
    back.Scale(t, back);
    Add(b, back);
    return t;
}

// clsRectangle -------------------------------------------------------------------------------

clsVector& clsRectangle::Corner(int i)
{
    if (i < 0 || i > 3)
        throw Failure(QStringLiteral("Subscript out of range"));
    return m_corner[std::size_t(i)];
}

const clsVector& clsRectangle::Corner(int i) const
{
    if (i < 0 || i > 3)
        throw Failure(QStringLiteral("Subscript out of range"));
    return m_corner[std::size_t(i)];
}

void clsRectangle::UpdateProjections()
{
    m_vStart = m_axisV.DotProduct(m_corner[0]);
    m_vEnd = m_axisV.DotProduct(m_corner[3]);
    m_uStart = m_axisU.DotProduct(m_corner[0]);
    m_uEnd = m_axisU.DotProduct(m_corner[1]);
}

bool clsRectangle::Contains(const clsVector& p) const
{
    const double u = m_axisU.DotProduct(p);
    const double v = m_axisV.DotProduct(p);
    return u >= m_uStart && u <= m_uEnd && v >= m_vStart && v <= m_vEnd;
}

void clsRectangle::SetFromBox(double left, double top, double width, double height, double angle)
{
    const double theta = std::atan(1.0) * angle / 45.0;
    m_axisU = clsVector(std::cos(theta), -std::sin(theta));
    m_axisV = clsVector(std::sin(theta), std::cos(theta));
    const double wx = width * m_axisU.X(), wy = width * m_axisU.Y();
    const double hx = height * m_axisV.X(), hy = height * m_axisV.Y();
    const double cx = left + width / 2.0, cy = top + height / 2.0;
    m_corner[0] = clsVector(cx - wx / 2.0 - hx / 2.0, cy - wy / 2.0 - hy / 2.0);
    m_corner[1] = clsVector(m_corner[0].X() + wx, m_corner[0].Y() + wy);
    m_corner[2] = clsVector(m_corner[1].X() + hx, m_corner[1].Y() + hy);
    m_corner[3] = clsVector(m_corner[0].X() + hx, m_corner[0].Y() + hy);
    UpdateProjections();
}

void clsRectangle::SetFromWindow(const clsWindow& w)
{
    SetFromBox(w.Left, w.Top, w.Width, w.Height, w.Angle);
}

void clsRectangle::Orthogonalize()
{
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = i + 1; j < 4; ++j)
            if (m_corner[i].DistanceTo(m_corner[j]) < 0.000001)
                m_corner[j].CopyFrom(m_corner[i]);

    clsVector u, v;
    u.Subtract(m_corner[1], m_corner[0]);
    v.Subtract(m_corner[3], m_corner[0]);
    const double lu = u.Length(), lv = v.Length();
    if (lu == 0.0 && lv == 0.0) {
        UpdateProjections();
        return;
    }
    if (lu >= lv)
        v = clsVector(-u.Y(), u.X());
    else
        u = clsVector(v.Y(), -v.X());
    m_axisU.Normalize(u);
    m_axisV.Normalize(v);
    UpdateProjections();
}

clsWindow clsRectangle::ToWindow() const
{
    clsWindow w;
    clsVector edge;
    edge.Subtract(m_corner[1], m_corner[0]);
    w.Width = edge.Length();
    edge.Subtract(m_corner[3], m_corner[0]);
    w.Height = edge.Length();
    clsVector diagonal;
    diagonal.Subtract(m_corner[2], m_corner[0]);
    diagonal.Scale(0.5, diagonal);
    clsVector centre;
    centre.Add(m_corner[0], diagonal);
    w.Top = centre.Y() - w.Height * 0.5;
    w.Left = centre.X() - w.Width * 0.5;
    w.Angle = ArcTan2(-m_axisU.Y(), m_axisU.X()) * 180.0 / (4.0 * std::atan(1.0));
    return w;
}

} // namespace nxr
