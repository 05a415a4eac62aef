#pragma once
// Geometry of the graphics drawn over the image: a three-component vector, a rotated rectangle
// kept as four corners plus two unit axes, the window record that describes such a rectangle by
// its unrotated box and an angle, and the angle and contrast-colour helpers.
//
// Coordinates are image pixels (X right, Y down); angles of shapes are degrees, a positive angle
// turning a shape counter-clockwise as the operator sees it. Several results keep long-standing
// quirks on purpose (they are relied on by pages and by the editing code): ArcTan2(0, -1) is -pi,
// ArcCos(-1) is 0, lengths go through pow() rather than sqrt(), and the blue channel of
// GetContrastColor is divided by 65281.

#include "frame/Export.h"

#include <QString>

#include <array>

namespace nxr {

// The pi of the angle helpers.
inline constexpr double kMathPi = 3.1415926536;

// Angle of (x, y) in radians, -pi..pi; (0, 0) gives 0 and the negative X axis gives -pi.
NXR_EXPORT double ArcTan2(double y, double x);
// pi/2 - atan(x / sqrt(1 - x^2)); 0 when |x| is 1 (also for -1) and for x outside -1..1.
NXR_EXPORT double ArcCos(double x);
NXR_EXPORT double RadiansToDegrees(double radians);
// 0xFFFFFF (white) when red, green and blue of an 0x00BBGGRR colour are all below 128, else 0.
NXR_EXPORT qint32 GetContrastColor(qint32 color);
// The blue value GetContrastColor compares: the blue byte scaled by 65536 / 65281 and rounded, so
// 0 to 256.
NXR_EXPORT long ContrastColorBlue(qint32 color);

class NXR_EXPORT clsVector
{
public:
    clsVector() = default;
    clsVector(double x, double y, double z = 0.0) : m_c{x, y, z} {}

    double X() const { return m_c[0]; }
    double Y() const { return m_c[1]; }
    double Z() const { return m_c[2]; }
    void setX(double v) { m_c[0] = v; }
    void setY(double v) { m_c[1] = v; }
    void setZ(double v) { m_c[2] = v; }
    // Components 1..3; any other index reads 0 and writes nothing.
    double Component(int i) const;
    void setComponent(int i, double v);

    double Length() const;
    // Each writes its result into this vector; operands may be this vector itself.
    void Add(const clsVector& a, const clsVector& b);
    void Subtract(const clsVector& a, const clsVector& b);
    void CrossProduct(const clsVector& a, const clsVector& b);
    double DotProduct(const clsVector& v) const;
    void Scale(double k, const clsVector& v);
    void Negate(const clsVector& v);
    // Leaves this vector unchanged when v has length 0.
    void Normalize(const clsVector& v);
    void CopyFrom(const clsVector& v);
    double DistanceTo(const clsVector& v) const;
    // Moves this point onto the line through a and b and returns t (0 at b, 1 at a). The
    // numerator uses X and Y only. a == b throws nxr::Failure ("Division by zero").
    double ProjectOntoLine(const clsVector& a, const clsVector& b);

    bool operator==(const clsVector&) const = default;

private:
    std::array<double, 3> m_c{0.0, 0.0, 0.0};
};

struct NXR_EXPORT clsWindow
{
    double Top = 0.0;
    double Left = 0.0;
    double Height = 0.0;
    double Width = 0.0;
    double Angle = 0.0; // degrees about the box centre
    bool Rotatable = false;

    bool operator==(const clsWindow&) const = default;
};

class NXR_EXPORT clsRectangle
{
public:
    // The stored objects themselves: callers move corners in place and then call Orthogonalize.
    // An index outside 0..3 throws nxr::Failure ("Subscript out of range").
    clsVector& Corner(int i);
    const clsVector& Corner(int i) const;
    clsVector& AxisU() { return m_axisU; }
    clsVector& AxisV() { return m_axisV; }
    const clsVector& AxisU() const { return m_axisU; }
    const clsVector& AxisV() const { return m_axisV; }

    double VStart() const { return m_vStart; }
    double VEnd() const { return m_vEnd; }
    double UStart() const { return m_uStart; }
    double UEnd() const { return m_uEnd; }
    void UpdateProjections();
    // A point lies inside exactly when its projections lie within the two spans.
    bool Contains(const clsVector& p) const;

    void SetFromBox(double left, double top, double width, double height, double angle);
    void SetFromWindow(const clsWindow& w);
    // Rebuilds true axes from edited corners: corners closer than 1e-6 are merged first, the
    // longer edge keeps its direction (U on a tie), both axes end up unit length.
    void Orthogonalize();
    clsWindow ToWindow() const;

private:
    std::array<clsVector, 4> m_corner;
    clsVector m_axisU{1.0, 0.0};
    clsVector m_axisV{0.0, 1.0};
    double m_vStart = 0.0, m_vEnd = 0.0, m_uStart = 0.0, m_uEnd = 0.0;
};

} // namespace nxr
