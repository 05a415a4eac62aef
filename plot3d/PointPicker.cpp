#include "plot3d/PointPicker.h"

#include "frame/Globals.h"

#include <cmath>

namespace nxr::plot3d {
namespace {
// A caption in the language TORVIK_LANG selects (translations/).
QString caption(const char* english)
{
    return nxr::Globals::Caption{QString::fromUtf8(english)}.pick();
}

QString mm(double value)
{
    return QString::number(value, 'f', 2);
}

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
        return c >= 0 && c < int(scene.cameras().size())
                   ? scene.cameras()[size_t(c)].viewName
                   : caption(QT_TRANSLATE_NOOP("Caption", "camera %1")).arg(c);
    };
    switch (picked.kind) {
    case PickedPoint::Kind::None:
        return {};
    case PickedPoint::Kind::Calibration:
        return caption(QT_TRANSLATE_NOOP("Caption", "Calibration point %1 of %2\n%3 mm"))
            .arg(QString::number(picked.index + 1), cameraName(picked.camera), xyz(picked.position));
    case PickedPoint::Kind::Camera:
        return caption(QT_TRANSLATE_NOOP("Caption", "Camera %1\n%2 mm"))
            .arg(cameraName(picked.camera), xyz(picked.position));
    case PickedPoint::Kind::Nominal:
    case PickedPoint::Kind::Found: {
        const FoundPoint& f = scene.foundPoints()[size_t(picked.index)];
        const Vec3 d = f.deviation();
        const QString head = picked.kind == PickedPoint::Kind::Found
                                 ? caption(QT_TRANSLATE_NOOP("Caption", "Found point P%1 (%2)"))
                                 : caption(QT_TRANSLATE_NOOP("Caption", "Nominal of P%1 (%2)"));
        // One pass over each text, so that a camera's name never takes the place of a number.
        return head.arg(QString::number(picked.index + 1), cameraName(f.cameraIndex)) +
               caption(QT_TRANSLATE_NOOP("Caption", "\nfound %1 mm\nnominal %2 mm"))
                   .arg(xyz(f.offset), xyz(f.nominal)) +
               caption(QT_TRANSLATE_NOOP("Caption", "\noffset dX %1  dY %2  dZ %3 (%4) mm"))
                   .arg(mm(d.x), mm(d.y), mm(d.z), mm(length(d)));
    }
    }
    return {};
}

} // namespace nxr::plot3d
