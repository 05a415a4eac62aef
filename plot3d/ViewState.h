#pragma once
// How the calibration scene is looked at: turning angles, pan, zoom, and the projection and
// model-view matrices of a redraw. Plain maths; the GL view applies the same steps with GL calls.
//
// The scene size R is the bounding-box diagonal. The eye sits at D = 6 R on the view axis, moved
// toward the scene by Z = 6 * zoomDistance; the vertical field of view is 2 atan(0.5 R / D), so
// an unzoomed view shows the whole box. The near plane is D - R - Z but never below R / 20, the
// far plane D + R - Z.
//
// Mouse modes, picked by the buttons held when one goes down:
//   left and right: 3 (zoom), middle or Ctrl+right: 2 (pan), right: 1 (turn), otherwise 0.
// Turning: 180 degrees per picture height in both directions, elevation kept in -90..90.
// Zoom: one step moves the eye so its distance to the centre is multiplied by 0.98 (in) or
// divided by 0.98 (out); dragging up zooms in, one step per pixel.

#include "frame/Export.h"
#include "plot3d/Pose.h"

#include <Qt>

namespace nxr::plot3d {

struct Projection
{
    double fovy = 0; // degrees
    double aspect = 1;
    double zNear = 0;
    double zFar = 0;
    double eyeDistance = 0; // D - Z
};

class NXR_EXPORT ViewState
{
public:
    static constexpr double kZoomStep = 0.98;
    static constexpr double kDefaultAzimuth = -30.0;
    static constexpr double kDefaultElevation = 30.0;

    static int mouseMode(Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers);

    double azimuth() const { return m_azimuth; }
    double elevation() const { return m_elevation; }
    double panX() const { return m_panX; }
    double panY() const { return m_panY; }
    double zoomDistance() const { return m_zoomDistance; }
    Vec3 secondOffset() const { return m_offset; }

    void setAngles(double azimuth, double elevation);
    void setPan(double x, double y);
    void setSecondOffset(const Vec3& o) { m_offset = o; }
    // Back to the starting view: default angles, no pan, no zoom.
    void reset();

    // Mode 1: a mouse movement of (dx, dy) pixels on a picture `height` pixels high.
    void turn(double dx, double dy, int height);
    // Mode 2: the scene follows the pointer in the plane of the centre.
    void pan(double dx, double dy, int height, double radius);
    // Mode 3 and the wheel: `steps` > 0 zooms in, < 0 out.
    void zoom(int steps, double radius);

    Projection projection(double radius, int width, int height) const;
    // The view's rotation: elevation about the screen's X axis, azimuth about the scene's Z axis
    // (Z is up in robot frames).
    Mat4 rotation() const;
    // Everything applied to the scene after the projection: look-at, pan, offset, rotation,
    // minus the centre.
    Mat4 modelView(double radius, const Vec3& centre) const;

private:
    double m_azimuth = kDefaultAzimuth;
    double m_elevation = kDefaultElevation;
    double m_panX = 0, m_panY = 0;
    double m_zoomDistance = 0;
    Vec3 m_offset;
};

} // namespace nxr::plot3d
