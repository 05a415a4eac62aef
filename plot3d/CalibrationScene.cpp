#include "plot3d/CalibrationScene.h"

#include "frame/Conversions.h"

#include <algorithm>
#include <cmath>

namespace nxr::plot3d {
namespace {
const QString kSubscript = QStringLiteral("Subscript out of range");
} // namespace

void BoundingBox::add(const Vec3& p)
{
    min = {std::min(min.x, p.x), std::min(min.y, p.y), std::min(min.z, p.z)};
    max = {std::max(max.x, p.x), std::max(max.y, p.y), std::max(max.z, p.z)};
}

Vec3 BoundingBox::centre() const
{
    return isEmpty() ? Vec3{} : (min + max) * 0.5;
}

double BoundingBox::diagonal() const
{
    if (isEmpty())
        return 1.0;
    const double d = length(max - min);
    return d > 0.0 ? d : 1.0;
}

void CalibrationScene::initialize()
{
    m_cameras.clear();
    m_found.clear();
    m_box = BoundingBox{};
    m_centre = Vec3{};
    m_drawingFinished = false;
    ++m_generation;
    ++m_foundGeneration;
}

void CalibrationScene::clearFoundPoints()
{
    m_found.clear();
    m_drawingFinished = false;
    ++m_foundGeneration;
}

Camera& CalibrationScene::addCamera(const Camera& camera)
{
    if (int(m_cameras.size()) >= kMaxCameras)
        throw Failure(kSubscript);
    if (camera.numCalibrationPoints < 0)
        throw Failure(kSubscript);
    m_cameras.push_back(camera);
    Camera& added = m_cameras.back();
    added.calibrationPoints.clear();
    added.calibrationPoints.reserve(size_t(camera.numCalibrationPoints));
    added.fovCorners.clear();
    added.finished = false;
    m_box.add(added.cameraPose.position());
    m_box.add(added.gridPose.position());
    return added;
}

Camera& CalibrationScene::current()
{
    if (m_cameras.empty() || m_cameras.back().finished)
        throw Failure(kSubscript);
    return m_cameras.back();
}

void CalibrationScene::addFovCorner(const Line& line)
{
    Camera& camera = current();
    camera.fovCorners.push_back(line);
    m_box.add(line.start);
    m_box.add(fovCornerEnd(camera, line));
}

void CalibrationScene::addCalibrationPoint(const Vec3& point)
{
    Camera& camera = current();
    if (int(camera.calibrationPoints.size()) >= camera.numCalibrationPoints)
        throw Failure(kSubscript);
    camera.calibrationPoints.push_back(point);
    m_box.add(point);
}

Camera& CalibrationScene::finishCamera()
{
    Camera& camera = current();
    camera.finished = true;
    return camera;
}

void CalibrationScene::addFoundPoint(const FoundPoint& point)
{
    if (int(m_found.size()) >= kMaxFoundPoints)
        throw Failure(kSubscript);
    m_found.push_back(point);
    m_box.add(point.nominal);
    m_box.add(point.offset);
    m_box.add(point.lineOfSight.start);
}

Vec3 CalibrationScene::fovCornerEnd(const Camera& camera, const Line& line)
{
    const double len = length(line.direction);
    if (camera.calibPlaneDistance <= 0.0 || len == 0.0)
        return line.start + line.direction;
    return line.start + line.direction * (camera.calibPlaneDistance / len);
}

QStringList CalibrationScene::rotationCentreNames() const
{
    QStringList names{QStringLiteral("User Frame")};
    for (const Camera& c : m_cameras)
        names << c.viewName;
    return names;
}

Vec3 CalibrationScene::rotationCentreFor(int index) const
{
    if (index <= 0 || index > int(m_cameras.size()))
        return {};
    return m_cameras[size_t(index - 1)].cameraPose.position();
}

} // namespace nxr::plot3d
