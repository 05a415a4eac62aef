#pragma once
// The calibration being shown, without any drawing: cameras with their grid, calibration points
// and field-of-view corner lines, the found points of a calibration check, the bounding box of
// everything added and the centre the view turns about.
//
// Limits are those of the plot's fixed tables: 5 cameras, 7 found points, and per camera as many
// calibration points as it announced. Going past one throws nxr::Failure("Subscript out of range").

#include "frame/Export.h"
#include "plot3d/Pose.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace nxr::plot3d {

struct Line
{
    Vec3 start;
    Vec3 direction;
};

struct Camera
{
    QString viewName;
    double gridSpacing = 0;
    int numCalibrationPoints = 0;
    double calibPlaneDistance = 0;
    Pose cameraPose;
    Pose gridPose;
    Pose robotPoseCalib;
    Pose robotPoseSnap;
    QString gridFrameLabel;
    QString userFrameLabel;
    std::vector<Vec3> calibrationPoints; // filled in call order, at most numCalibrationPoints
    std::vector<Line> fovCorners;
    bool finished = false;
};

struct FoundPoint
{
    int cameraIndex = 0;
    Vec3 nominal;
    Vec3 offset; // where the cameras found the point
    Line lineOfSight;

    // The offset from the nominal position (millimetres).
    Vec3 deviation() const { return offset - nominal; }
};

struct NXR_EXPORT BoundingBox
{
    static constexpr double kStart = 1e10;
    Vec3 min{kStart, kStart, kStart};
    Vec3 max{-kStart, -kStart, -kStart};

    bool isEmpty() const { return min.x > max.x; }
    void add(const Vec3& p);
    Vec3 centre() const;
    // The length of the box's diagonal; 1 for an empty or single-point box.
    double diagonal() const;
};

class NXR_EXPORT CalibrationScene
{
public:
    static constexpr int kMaxCameras = 5;
    static constexpr int kMaxFoundPoints = 7;

    // Empties everything: no cameras, no found points, box reset, centre at the origin.
    void initialize();
    // Drops the found points only.
    void clearFoundPoints();

    // Stores a new camera at the next index and makes it the current one.
    Camera& addCamera(const Camera& camera);
    // To the current camera. Without one: "Subscript out of range".
    void addFovCorner(const Line& line);
    void addCalibrationPoint(const Vec3& point);
    // Marks the current camera finished; the next addCamera starts the following one.
    Camera& finishCamera();
    void addFoundPoint(const FoundPoint& point);

    const std::vector<Camera>& cameras() const { return m_cameras; }
    const std::vector<FoundPoint>& foundPoints() const { return m_found; }
    const BoundingBox& box() const { return m_box; }
    // The scene size R the view is framed by: the box diagonal.
    double radius() const { return m_box.diagonal(); }

    Vec3 centre() const { return m_centre; }
    void setCentre(const Vec3& c) { m_centre = c; }

    // Set by FinishDrawing: the found points and labels are to be drawn. Cleared by initialize()
    // and clearFoundPoints().
    bool drawingFinished() const { return m_drawingFinished; }
    void setDrawingFinished() { m_drawingFinished = true; }
    // Count the calls of initialize() and clearFoundPoints(), so that whoever compiled drawings
    // of the scene knows when to drop them.
    int generation() const { return m_generation; }
    int foundGeneration() const { return m_foundGeneration; }

    // Where a FOV corner line ends: its start moved along its unit direction by the camera's
    // calibration plane distance (by the direction as given when the distance is not positive).
    static Vec3 fovCornerEnd(const Camera& camera, const Line& line);

    // "User Frame" and then the cameras' view names: the choices for the centre of rotation.
    QStringList rotationCentreNames() const;
    // The centre for entry `index` of that list: the origin for "User Frame", else the camera's
    // position. Out of range: the origin.
    Vec3 rotationCentreFor(int index) const;

private:
    Camera& current();

    std::vector<Camera> m_cameras;
    std::vector<FoundPoint> m_found;
    BoundingBox m_box;
    Vec3 m_centre;
    bool m_drawingFinished = false;
    int m_generation = 0;
    int m_foundGeneration = 0;
};

} // namespace nxr::plot3d
