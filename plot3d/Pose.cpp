#include "plot3d/Pose.h"

#include <cmath>
#include <numbers>

namespace nxr::plot3d {
namespace {
double radians(double degrees)
{
    return degrees * std::numbers::pi / 180.0;
}

// One row of m times (p, w): w = 1 for a point, 0 for a direction.
double rowTimes(const Mat4& m, int row, const Vec3& p, double w)
{
    return m.at(row, 0) * p.x + m.at(row, 1) * p.y + m.at(row, 2) * p.z + m.at(row, 3) * w;
}
} // namespace

Vec3 operator+(const Vec3& a, const Vec3& b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
Vec3 operator-(const Vec3& a, const Vec3& b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
Vec3 operator*(const Vec3& a, double s)
{
    return {a.x * s, a.y * s, a.z * s};
}
double dot(const Vec3& a, const Vec3& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
Vec3 cross(const Vec3& a, const Vec3& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
double length(const Vec3& a)
{
    return std::sqrt(dot(a, a));
}

Mat4 Mat4::translation(double x, double y, double z)
{
    Mat4 t;
    t.at(0, 3) = x;
    t.at(1, 3) = y;
    t.at(2, 3) = z;
    return t;
}

namespace {
// A turn of `degrees` that carries axis i towards axis j (right-handed for (1,2), (2,0), (0,1)).
Mat4 planeRotation(int i, int j, double degrees)
{
    const double c = std::cos(radians(degrees)), s = std::sin(radians(degrees));
    Mat4 t;
    t.at(i, i) = c;
    t.at(i, j) = -s;
    t.at(j, i) = s;
    t.at(j, j) = c;
    return t;
}
} // namespace

Mat4 Mat4::rotationX(double degrees)
{
    return planeRotation(1, 2, degrees);
}

Mat4 Mat4::rotationY(double degrees)
{
    return planeRotation(2, 0, degrees);
}

Mat4 Mat4::rotationZ(double degrees)
{
    return planeRotation(0, 1, degrees);
}

Mat4 Mat4::scaling(double s)
{
    Mat4 t;
    t.at(0, 0) = t.at(1, 1) = t.at(2, 2) = s;
    return t;
}

Mat4 Mat4::perspective(double fovyDegrees, double aspect, double zNear, double zFar)
{
    const double f = 1.0 / std::tan(radians(fovyDegrees) / 2.0);
    Mat4 t;
    t.at(0, 0) = f / aspect;
    t.at(1, 1) = f;
    t.at(2, 2) = (zFar + zNear) / (zNear - zFar);
    t.at(2, 3) = 2.0 * zFar * zNear / (zNear - zFar);
    t.at(3, 2) = -1.0;
    t.at(3, 3) = 0.0;
    return t;
}

Mat4 Mat4::lookAt(const Vec3& eye, const Vec3& centre, const Vec3& up)
{
    Vec3 f = centre - eye;
    f = f * (1.0 / length(f));
    Vec3 s = cross(f, up);
    s = s * (1.0 / length(s));
    const Vec3 u = cross(s, f);
    Mat4 t;
    t.at(0, 0) = s.x;
    t.at(0, 1) = s.y;
    t.at(0, 2) = s.z;
    t.at(1, 0) = u.x;
    t.at(1, 1) = u.y;
    t.at(1, 2) = u.z;
    t.at(2, 0) = -f.x;
    t.at(2, 1) = -f.y;
    t.at(2, 2) = -f.z;
    return t * translation(-eye.x, -eye.y, -eye.z);
}

Mat4 Mat4::operator*(const Mat4& o) const
{
    Mat4 r;
    for (int row = 0; row < 4; ++row)
        for (int col = 0; col < 4; ++col) {
            double sum = 0;
            for (int k = 0; k < 4; ++k)
                sum += at(row, k) * o.at(k, col);
            r.at(row, col) = sum;
        }
    return r;
}

Vec3 Mat4::transformPoint(const Vec3& p) const
{
    const double x = rowTimes(*this, 0, p, 1), y = rowTimes(*this, 1, p, 1), z = rowTimes(*this, 2, p, 1);
    const double w = rowTimes(*this, 3, p, 1);
    return w != 0.0 ? Vec3{x / w, y / w, z / w} : Vec3{x, y, z};
}

Vec3 Mat4::transformDirection(const Vec3& d) const
{
    return {rowTimes(*this, 0, d, 0), rowTimes(*this, 1, d, 0), rowTimes(*this, 2, d, 0)};
}

Mat4 Mat4::rigidInverse() const
{
    Mat4 r;
    for (int row = 0; row < 3; ++row)
        for (int col = 0; col < 3; ++col)
            r.at(row, col) = at(col, row);
    const Vec3 t{at(0, 3), at(1, 3), at(2, 3)};
    const Vec3 back = r.transformDirection(t);
    r.at(0, 3) = -back.x;
    r.at(1, 3) = -back.y;
    r.at(2, 3) = -back.z;
    return r;
}

Mat4 Pose::transform() const
{
    return Mat4::translation(x, y, z) * Mat4::rotationZ(r) * Mat4::rotationY(p) * Mat4::rotationX(w);
}

bool project(const Vec3& point, const Mat4& modelView, const Mat4& projection, int viewportWidth,
             int viewportHeight, Vec3* window)
{
    const Mat4 all = projection * modelView;
    const double cx = rowTimes(all, 0, point, 1), cy = rowTimes(all, 1, point, 1);
    const double cz = rowTimes(all, 2, point, 1), cw = rowTimes(all, 3, point, 1);
    if (cw <= 0.0)
        return false;
    window->x = (cx / cw * 0.5 + 0.5) * viewportWidth;
    window->y = (cy / cw * 0.5 + 0.5) * viewportHeight;
    window->z = cz / cw * 0.5 + 0.5;
    return true;
}

} // namespace nxr::plot3d
