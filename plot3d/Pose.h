#pragma once
// Poses and 4x4 transforms of the calibration plot.
//
// A pose is X, Y, Z (millimetres) and W, P, R (degrees): rotations about the fixed axes of the
// frame it is given in, first W about X, then P about Y, then R about Z. Its transform is
//
//     T = Trans(X, Y, Z) * Rz(R) * Ry(P) * Rx(W)
//
// so a point p given in the pose's frame lies at T * p in the outer frame. Matrices are stored
// column by column (element [col * 4 + row]), the layout glMultMatrixd and gluProject take.

#include "frame/Export.h"

#include <array>
#include <cstddef>

namespace nxr::plot3d {

struct Vec3
{
    double x = 0, y = 0, z = 0;
};

NXR_EXPORT Vec3 operator+(const Vec3& a, const Vec3& b);
NXR_EXPORT Vec3 operator-(const Vec3& a, const Vec3& b);
NXR_EXPORT Vec3 operator*(const Vec3& a, double s);
NXR_EXPORT double dot(const Vec3& a, const Vec3& b);
NXR_EXPORT Vec3 cross(const Vec3& a, const Vec3& b);
NXR_EXPORT double length(const Vec3& a);

struct NXR_EXPORT Mat4
{
    std::array<double, 16> m{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

    double& at(int row, int col) { return m[std::size_t(col * 4 + row)]; }
    double at(int row, int col) const { return m[std::size_t(col * 4 + row)]; }
    const double* data() const { return m.data(); }

    static Mat4 identity() { return {}; }
    static Mat4 translation(double x, double y, double z);
    static Mat4 rotationX(double degrees);
    static Mat4 rotationY(double degrees);
    static Mat4 rotationZ(double degrees);
    static Mat4 scaling(double s);
    // The matrices gluPerspective and gluLookAt build.
    static Mat4 perspective(double fovyDegrees, double aspect, double zNear, double zFar);
    static Mat4 lookAt(const Vec3& eye, const Vec3& centre, const Vec3& up);

    Mat4 operator*(const Mat4& o) const;
    // The point transformed (w = 1), divided by the resulting w.
    Vec3 transformPoint(const Vec3& p) const;
    // Only the rotation part applied (w = 0).
    Vec3 transformDirection(const Vec3& d) const;
    // The inverse of a rigid transform (rotation and translation only).
    Mat4 rigidInverse() const;
};

struct NXR_EXPORT Pose
{
    double x = 0, y = 0, z = 0, w = 0, p = 0, r = 0;

    Mat4 transform() const;
    Vec3 position() const { return {x, y, z}; }
};

// Window coordinates of a point as gluProject gives them: x to the right and y upward from the
// lower left corner of the viewport, z the depth in 0..1. False when the point is behind the eye.
NXR_EXPORT bool project(const Vec3& point, const Mat4& modelView, const Mat4& projection, int viewportWidth,
                        int viewportHeight, Vec3* window);

} // namespace nxr::plot3d
