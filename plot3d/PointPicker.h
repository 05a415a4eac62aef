#pragma once
// Which drawn point lies under the mouse, and what its tooltip says. Plain maths over the
// scene and the matrices of the last redraw.

#include "frame/Export.h"
#include "plot3d/CalibrationScene.h"

#include <QString>

namespace nxr::plot3d {

struct PickedPoint
{
    enum class Kind { None, Calibration, Found, Nominal, Camera };
    Kind kind = Kind::None;
    int camera = -1; // for calibration points and cameras
    int index = -1;  // point index within its camera, or found-point index
    Vec3 position;
    double distance = 0; // pixels from the mouse
};

// The nearest point within `radiusPx` of (x, y), given in pixels from the top left of a
// `width` x `height` picture. Found points win over calibration points at equal distance.
NXR_EXPORT PickedPoint pickPoint(const CalibrationScene& scene, const Mat4& modelView, const Mat4& projection,
                                 int width, int height, double x, double y, double radiusPx);

// "Calibration point 3 of CAM1\nX 10.00  Y 20.00  Z 0.00 mm", and for a found point its offset
// from nominal too. Empty for Kind::None.
NXR_EXPORT QString tooltipText(const CalibrationScene& scene, const PickedPoint& picked);

} // namespace nxr::plot3d
