#include "plot3d/ViewState.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace nxr::plot3d {

int ViewState::mouseMode(Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers)
{
    if ((buttons & Qt::LeftButton) && (buttons & Qt::RightButton))
        return 3;
    if (buttons & Qt::MiddleButton)
        return 2;
    if ((buttons & Qt::RightButton) && (modifiers & Qt::ControlModifier))
        return 2;
    if (buttons & Qt::RightButton)
        return 1;
    return 0;
}

void ViewState::setAngles(double azimuth, double elevation)
{
    m_azimuth = std::fmod(azimuth, 360.0);
    m_elevation = std::clamp(elevation, -90.0, 90.0);
}

void ViewState::setPan(double x, double y)
{
    m_panX = x;
    m_panY = y;
}

void ViewState::reset()
{
    *this = ViewState{};
}

void ViewState::turn(double dx, double dy, int height)
{
    const double perPixel = 180.0 / std::max(1, height);
    setAngles(m_azimuth + dx * perPixel, m_elevation - dy * perPixel);
}

void ViewState::pan(double dx, double dy, int height, double radius)
{
    // At the centre's depth the picture is R * eye distance / D high.
    const double d = 6.0 * radius;
    const double eye = d - 6.0 * m_zoomDistance;
    const double perPixel = radius * (eye / d) / std::max(1, height);
    m_panX += dx * perPixel;
    m_panY -= dy * perPixel;
}

void ViewState::zoom(int steps, double radius)
{
    const double d = 6.0 * radius;
    const double eye = (d - 6.0 * m_zoomDistance) * std::pow(kZoomStep, steps);
    m_zoomDistance = (d - eye) / 6.0;
}

Projection ViewState::projection(double radius, int width, int height) const
{
    Projection p;
    const double d = 6.0 * radius;
    const double z = 6.0 * m_zoomDistance;
    p.fovy = 2.0 * std::atan(0.5 * radius / d) * 180.0 / std::numbers::pi;
    p.aspect = double(std::max(1, width)) / double(std::max(1, height));
    p.zNear = std::max(d - radius - z, radius / 20.0);
    p.zFar = d + radius - z;
    p.eyeDistance = d - z;
    return p;
}

Mat4 ViewState::rotation() const
{
    Mat4 r = Mat4::rotationX(m_elevation - 90.0) * Mat4::rotationZ(-m_azimuth);
    r.m[15] = 1.0;
    return r;
}

Mat4 ViewState::modelView(double radius, const Vec3& centre) const
{
    const Projection p = projection(radius, 1, 1);
    return Mat4::lookAt({0, 0, p.eyeDistance}, {0, 0, 0}, {0, 1, 0}) * Mat4::translation(m_panX, m_panY, 0) *
           Mat4::translation(m_offset.x, m_offset.y, m_offset.z) * rotation() *
           Mat4::translation(-centre.x, -centre.y, -centre.z);
}

} // namespace nxr::plot3d
