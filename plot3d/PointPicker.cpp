#include "plot3d/PointPicker.h"

#include <cmath>

namespace nxr::plot3d {
namespace {
QString xyz(const Vec3& v)
{
    return QStringLiteral("X %1  Y %2  Z %3").arg(v.x, 0, 'f', 2).arg(v.y, 0, 'f', 2).arg(v.z, 0, 'f', 2);
}
} // namespace

PickedPoint pickPoint(const CalibrationScene& scene, const Mat4& modelView, const Mat4& projection, int width,
                      int height, double x, double y, double radiusPx)
{
    PickedPoint best;
    best.distance = radiusPx;
    auto consider = [&](PickedPoint::Kind kind, int camera, int index, const Vec3& p) {
        Vec3 w;
        if (!project(p, modelView, projection, width, height, &w) || w.z < 0.0 || w.z > 1.0)
            return;
        const double d = std::hypot(w.x - x, (height - w.y) - y);
        if (d < best.distance || (best.kind == PickedPoint::Kind::None && d <= best.distance)) {
            best = {kind, camera, index, p, d};
        }
    };
    for (size_t i = 0; i < scene.foundPoints().size(); ++i) {
        consider(PickedPoint::Kind::Found, scene.foundPoints()[i].cameraIndex, int(i),
                 scene.foundPoints()[i].offset);
        consider(PickedPoint::Kind::Nominal, scene.foundPoints()[i].cameraIndex, int(i),
                 scene.foundPoints()[i].nominal);
    }
    for (size_t c = 0; c < scene.cameras().size(); ++c) {
        const Camera& cam = scene.cameras()[c];
        consider(PickedPoint::Kind::Camera, int(c), -1, cam.cameraPose.position());
        for (size_t i = 0; i < cam.calibrationPoints.size(); ++i)
            consider(PickedPoint::Kind::Calibration, int(c), int(i), cam.calibrationPoints[i]);
    }
    return best;
}

QString tooltipText(const CalibrationScene& scene, const PickedPoint& picked)
{
    const auto cameraName = [&](int c) {
        return c >= 0 && c < int(scene.cameras().size()) ? scene.cameras()[size_t(c)].viewName
                                                         : QStringLiteral("camera %1").arg(c);
    };
    switch (picked.kind) {
    case PickedPoint::Kind::None:
        return {};
    case PickedPoint::Kind::Calibration:
        return QStringLiteral("Calibration point %1 of %2\n%3 mm")
            .arg(picked.index + 1)
            .arg(cameraName(picked.camera), xyz(picked.position));
    case PickedPoint::Kind::Camera:
        return QStringLiteral("Camera %1\n%2 mm").arg(cameraName(picked.camera), xyz(picked.position));
    case PickedPoint::Kind::Nominal:
    case PickedPoint::Kind::Found: {
        const FoundPoint& f = scene.foundPoints()[size_t(picked.index)];
        const Vec3 d = f.deviation();
        const QString head = picked.kind == PickedPoint::Kind::Found ? QStringLiteral("Found point P%1 (%2)")
                                                                     : QStringLiteral("Nominal of P%1 (%2)");
        return head.arg(picked.index + 1).arg(cameraName(f.cameraIndex)) + QStringLiteral("\nfound ") +
               xyz(f.offset) + QStringLiteral(" mm\nnominal ") + xyz(f.nominal) +
               QStringLiteral(" mm\noffset dX %1  dY %2  dZ %3 (%4) mm")
                   .arg(d.x, 0, 'f', 2)
                   .arg(d.y, 0, 'f', 2)
                   .arg(d.z, 0, 'f', 2)
                   .arg(length(d), 0, 'f', 2);
    }
    }
    return {};
}

} // namespace nxr::plot3d
