#pragma once
// The 3D calibration plot: where each camera sits, its grid, calibration points and field of
// view, and where the cameras found the check points against their nominal positions.
//
// The page feeds the scene in this order and then asks for the drawing:
//   InitializeDrawing; per camera AddCamera, AddFOVCorner..., AddCalibrationPoint...,
//   FinishCamera; AddFoundPoint...; FinishDrawing.
// ClearFoundPoints replaces the found points without rebuilding the cameras.
//
// Mouse on the picture: right button turns, middle (or Ctrl+right) moves, left and right together
// zoom, the wheel zooms, a double click turns about the point under the pointer; hovering a
// point shows its coordinates. The list below the picture chooses the centre of rotation.

#include "frame/Export.h"
#include "frame/ScriptableWidget.h"
#include "plot3d/CalibrationScene.h"
#include "plot3d/ViewState.h"

class QCheckBox;
class QComboBox;
class QGroupBox;
class QPushButton;

namespace nxr::plot3d {
class PlotGLView;
}

class NXR_EXPORT NXR3DPlot : public nxr::ScriptableWidget
{
    Q_OBJECT

public:
    explicit NXR3DPlot(QWidget* parent = nullptr);
    ~NXR3DPlot() override;

    Q_INVOKABLE void Reset();
    Q_INVOKABLE void InitializeDrawing();
    Q_INVOKABLE void ClearFoundPoints();
    Q_INVOKABLE void
    AddCamera(const QString& RStr_CameraViewName, double VDbl_GridSpacing, int VLng_NumCalibrationPoints,
              double VDbl_CalibPlaneDistance, double VDbl_CameraPosX, double VDbl_CameraPosY,
              double VDbl_CameraPosZ, double VDbl_CameraPosW, double VDbl_CameraPosP, double VDbl_CameraPosR,
              double VDbl_GridPosX, double VDbl_GridPosY, double VDbl_GridPosZ, double VDbl_GridPosW,
              double VDbl_GridPosP, double VDbl_GridPosR, double VDbl_RobotPosCalibX,
              double VDbl_RobotPosCalibY, double VDbl_RobotPosCalibZ, double VDbl_RobotPosCalibW,
              double VDbl_RobotPosCalibP, double VDbl_RobotPosCalibR, double VDbl_RobotPosSnapX,
              double VDbl_RobotPosSnapY, double VDbl_RobotPosSnapZ, double VDbl_RobotPosSnapW,
              double VDbl_RobotPosSnapP, double VDbl_RobotPosSnapR, const QString& RStr_GridFrameLabel,
              const QString& RStr_UserFrameLabel);
    Q_INVOKABLE void AddFOVCorner(double VDbl_LineStartX, double VDbl_LineStartY, double VDbl_LineStartZ,
                                  double VDbl_LineDirX, double VDbl_LineDirY, double VDbl_LineDirZ);
    Q_INVOKABLE void AddCalibrationPoint(double VDbl_PointX, double VDbl_PointY, double VDbl_PointZ);
    Q_INVOKABLE void AddFoundPoint(int VLng_CameraIndex, double VDbl_NominalPointX, double VDbl_NominalPointY,
                                   double VDbl_NominalPointZ, double VDbl_OffsetPointX,
                                   double VDbl_OffsetPointY, double VDbl_OffsetPointZ, double VDbl_LineStartX,
                                   double VDbl_LineStartY, double VDbl_LineStartZ, double VDbl_LineDirX,
                                   double VDbl_LineDirY, double VDbl_LineDirZ);
    Q_INVOKABLE void FinishCamera();
    Q_INVOKABLE void FinishDrawing();

    // Writes the current view as a PNG file. A relative path is taken inside the storage folder;
    // an absolute one must lie inside it too, so a page can never write elsewhere.
    Q_INVOKABLE void SaveImage(const QString& vstr_FilePath);

    // For C++ users and tests.
    const nxr::plot3d::CalibrationScene& scene() const { return m_scene; }
    const nxr::plot3d::ViewState& view() const { return m_view; }
    nxr::plot3d::ViewState& view() { return m_view; }
    // The picture; null when no OpenGL context could be had (the control then stays blank).
    nxr::plot3d::PlotGLView* glView() const { return m_gl; }
    QComboBox* rotationCenterList() const { return m_rotationCenter; }

private:
    void enableOpenGL();
    void setCentreFromList(int index);
    void viewChanged();

    nxr::plot3d::CalibrationScene m_scene;
    nxr::plot3d::ViewState m_view;
    nxr::plot3d::PlotGLView* m_gl = nullptr;
    QWidget* m_picture = nullptr;
    QGroupBox* m_frame = nullptr;
    QComboBox* m_rotationCenter = nullptr;
    QPushButton* m_center = nullptr;
    QCheckBox* m_reference = nullptr;
    QCheckBox* m_offsetReference = nullptr;
    bool m_framed = false;
};
