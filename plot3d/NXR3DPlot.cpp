#include "plot3d/NXR3DPlot.h"

#include "frame/ClassRegistry.h"
#include "frame/Globals.h"
#include "frame/Trace.h"
#include "plot3d/PlotGLView.h"
#include "plot3d/SavePath.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QPushButton>
#include <QVBoxLayout>

using namespace nxr::plot3d;

NXR_REGISTER_CLASS(NXR3DPlot)

namespace {
const QString kClass = QStringLiteral("NXR3DPlot");
const char* const kUserFrame = QT_TRANSLATE_NOOP("Caption", "User Frame");

// A caption in the language TORVIK_LANG selects (translations/).
QString caption(const char* english)
{
    return nxr::Globals::Caption{QString::fromUtf8(english)}.pick();
}

QString xyzArgs(double x, double y, double z)
{
    return QStringLiteral("%1, %2, %3").arg(nxr::fromDouble(x), nxr::fromDouble(y), nxr::fromDouble(z));
}
} // namespace

NXR3DPlot::NXR3DPlot(QWidget* parent) : ScriptableWidget(parent)
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);

    m_frame = new QGroupBox(caption(QT_TRANSLATE_NOOP("Caption", "Rotation center")), this);
    m_frame->setObjectName(QStringLiteral("fra_RotationCenter"));
    auto* row = new QHBoxLayout(m_frame);
    row->setContentsMargins(4, 2, 4, 2);
    m_rotationCenter = new QComboBox(m_frame);
    m_rotationCenter->setObjectName(QStringLiteral("cmb_RotationCenter"));
    m_rotationCenter->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    m_center = new QPushButton(caption(QT_TRANSLATE_NOOP("Caption", "Center")), m_frame);
    m_center->setObjectName(QStringLiteral("cmd_Center"));
    m_reference = new QCheckBox(caption(QT_TRANSLATE_NOOP("Caption", "Reference position")), m_frame);
    m_reference->setObjectName(QStringLiteral("chk_ReferencelPosition"));
    m_reference->setChecked(true);
    m_offsetReference =
        new QCheckBox(caption(QT_TRANSLATE_NOOP("Caption", "Offset reference position")), m_frame);
    m_offsetReference->setObjectName(QStringLiteral("chk_OffsetReferencelPosition"));
    m_offsetReference->setChecked(true);
    row->addWidget(m_rotationCenter);
    row->addWidget(m_center);
    row->addSpacing(12);
    row->addWidget(m_reference);
    row->addWidget(m_offsetReference);
    row->addStretch(1);

    enableOpenGL();
    layout->addWidget(m_picture, 1);
    layout->addWidget(m_frame);

    connect(m_rotationCenter, &QComboBox::activated, this, [this](int index) { setCentreFromList(index); });
    connect(m_center, &QPushButton::clicked, this, [this] {
        m_view.setPan(0, 0);
        m_view.setSecondOffset({});
        setCentreFromList(m_rotationCenter->currentIndex());
    });
    connect(m_reference, &QCheckBox::toggled, this, [this](bool on) {
        if (m_gl)
            m_gl->setReferenceVisible(on);
    });
    connect(m_offsetReference, &QCheckBox::toggled, this, [this](bool on) {
        if (m_gl)
            m_gl->setOffsetReferenceVisible(on);
    });

    auto& table = properties();
    table.add(
        QStringLiteral("Azimuth"),
        [this](const QString& v) {
            m_view.setAngles(nxr::toDouble(v), m_view.elevation());
            viewChanged();
        },
        [this] { return nxr::fromDouble(m_view.azimuth()); });
    table.add(
        QStringLiteral("Elevation"),
        [this](const QString& v) {
            m_view.setAngles(m_view.azimuth(), nxr::toDouble(v));
            viewChanged();
        },
        [this] { return nxr::fromDouble(m_view.elevation()); });
    table.addReadOnly(QStringLiteral("ZoomDistance"),
                      [this] { return nxr::fromDouble(m_view.zoomDistance()); });
    table.addReadOnly(QStringLiteral("PanX"), [this] { return nxr::fromDouble(m_view.panX()); });
    table.addReadOnly(QStringLiteral("PanY"), [this] { return nxr::fromDouble(m_view.panY()); });
    table.addReadOnly(QStringLiteral("CameraCount"),
                      [this] { return QString::number(m_scene.cameras().size()); });
    table.addReadOnly(QStringLiteral("FoundPointCount"),
                      [this] { return QString::number(m_scene.foundPoints().size()); });
    table.addReadOnly(QStringLiteral("Center"), [this] {
        const Vec3 c = m_scene.centre();
        return xyzArgs(c.x, c.y, c.z);
    });
    table.addReadOnly(QStringLiteral("OpenGL"), [this] { return nxr::fromBool(m_gl != nullptr); });
    table.addReadOnly(QStringLiteral("PictureHeight"),
                      [this] { return QString::number(m_picture->height()); });
    table.addReadOnly(QStringLiteral("MouseMode"),
                      [this] { return QString::number(m_gl ? m_gl->mouseMode() : 0); });
    table.add(
        QStringLiteral("ReferencePosition"),
        [this](const QString& v) { m_reference->setChecked(nxr::toBool(v)); },
        [this] { return nxr::fromBool(m_reference->isChecked()); });
    table.add(
        QStringLiteral("OffsetReferencePosition"),
        [this](const QString& v) { m_offsetReference->setChecked(nxr::toBool(v)); },
        [this] { return nxr::fromBool(m_offsetReference->isChecked()); });

    Reset();
}

NXR3DPlot::~NXR3DPlot() = default;

void NXR3DPlot::enableOpenGL()
{
    // Find out first whether this system gives a context of the kind the plot draws with; without
    // one the picture stays blank and the page is told why.
    QString failure;
    const QSurfaceFormat format = PlotGLView::plotFormat();
    QOffscreenSurface surface;
    surface.setFormat(format);
    surface.create();
    QOpenGLContext probe;
    probe.setFormat(format);
    // GL widgets are only put on the screen by platforms that composite them with the window; the
    // offscreen and minimal ones may give a context but crash when such a widget is shown.
    static const QStringList compositing = {QStringLiteral("xcb"),         QStringLiteral("wayland"),
                                            QStringLiteral("wayland-egl"), QStringLiteral("eglfs"),
                                            QStringLiteral("windows"),     QStringLiteral("cocoa")};
    if (!compositing.contains(QGuiApplication::platformName()) ||
        QOpenGLContext::openGLModuleType() != QOpenGLContext::LibGL || !surface.isValid()) {
        failure = QStringLiteral("EnableOpenGL: ChoosePixelFormat failed.");
    } else if (!probe.create() || !probe.makeCurrent(&surface)) {
        failure = QStringLiteral("EnableOpenGL: wglCreateContext failed.");
    } else {
        const QSurfaceFormat got = probe.format();
        if (got.profile() == QSurfaceFormat::CoreProfile || got.depthBufferSize() == 0 ||
            got.renderableType() == QSurfaceFormat::OpenGLES)
            failure = QStringLiteral("EnableOpenGL: ChoosePixelFormat failed.");
        probe.doneCurrent();
    }

    if (!failure.isEmpty()) {
        m_picture = new QWidget(this);
        m_picture->setObjectName(QStringLiteral("pic_OpenGL"));
        m_picture->setAutoFillBackground(true);
        core().reportError(QStringLiteral("EnableOpenGL"), failure);
        return;
    }
    m_gl = new PlotGLView(&m_scene, &m_view, this);
    m_picture = m_gl;
    connect(m_gl, &PlotGLView::viewChanged, this, [this] { viewChanged(); });
}

void NXR3DPlot::viewChanged()
{
    if (m_gl)
        m_gl->redraw();
}

void NXR3DPlot::setCentreFromList(int index)
{
    m_scene.setCentre(m_scene.rotationCentreFor(index));
    viewChanged();
}

void NXR3DPlot::Reset()
{
    core().guard(QStringLiteral("Reset"), [&] {
        NXR_TRACE(kClass, QStringLiteral("Reset"), QStringLiteral("Entered"));
        m_rotationCenter->clear();
        m_rotationCenter->addItem(caption(kUserFrame));
        m_rotationCenter->setCurrentIndex(0);
    });
}

void NXR3DPlot::InitializeDrawing()
{
    core().guard(QStringLiteral("InitializeDrawing"), [&] {
        NXR_TRACE(kClass, QStringLiteral("InitializeDrawing"), QStringLiteral("Entered"));
        m_scene.initialize();
        m_framed = false;
        Reset();
        if (m_gl)
            m_gl->sceneChanged();
    });
}

void NXR3DPlot::ClearFoundPoints()
{
    core().guard(QStringLiteral("ClearFoundPoints"), [&] {
        NXR_TRACE(kClass, QStringLiteral("ClearFoundPoints"), QStringLiteral("Entered"));
        m_scene.clearFoundPoints();
        if (m_gl)
            m_gl->sceneChanged();
    });
}

void NXR3DPlot::AddCamera(const QString& RStr_CameraViewName, double VDbl_GridSpacing,
                          int VLng_NumCalibrationPoints, double VDbl_CalibPlaneDistance,
                          double VDbl_CameraPosX, double VDbl_CameraPosY, double VDbl_CameraPosZ,
                          double VDbl_CameraPosW, double VDbl_CameraPosP, double VDbl_CameraPosR,
                          double VDbl_GridPosX, double VDbl_GridPosY, double VDbl_GridPosZ,
                          double VDbl_GridPosW, double VDbl_GridPosP, double VDbl_GridPosR,
                          double VDbl_RobotPosCalibX, double VDbl_RobotPosCalibY, double VDbl_RobotPosCalibZ,
                          double VDbl_RobotPosCalibW, double VDbl_RobotPosCalibP, double VDbl_RobotPosCalibR,
                          double VDbl_RobotPosSnapX, double VDbl_RobotPosSnapY, double VDbl_RobotPosSnapZ,
                          double VDbl_RobotPosSnapW, double VDbl_RobotPosSnapP, double VDbl_RobotPosSnapR,
                          const QString& RStr_GridFrameLabel, const QString& RStr_UserFrameLabel)
{
    core().guard(QStringLiteral("AddCamera"), [&] {
        NXR_TRACE(kClass, QStringLiteral("AddCamera"),
                  QStringLiteral("Entered, RStr_CameraViewName = ") + RStr_CameraViewName);
        Camera c;
        c.viewName = RStr_CameraViewName;
        c.gridSpacing = VDbl_GridSpacing;
        c.numCalibrationPoints = VLng_NumCalibrationPoints;
        c.calibPlaneDistance = VDbl_CalibPlaneDistance;
        c.cameraPose = {VDbl_CameraPosX, VDbl_CameraPosY, VDbl_CameraPosZ,
                        VDbl_CameraPosW, VDbl_CameraPosP, VDbl_CameraPosR};
        c.gridPose = {VDbl_GridPosX, VDbl_GridPosY, VDbl_GridPosZ,
                      VDbl_GridPosW, VDbl_GridPosP, VDbl_GridPosR};
        c.robotPoseCalib = {VDbl_RobotPosCalibX, VDbl_RobotPosCalibY, VDbl_RobotPosCalibZ,
                            VDbl_RobotPosCalibW, VDbl_RobotPosCalibP, VDbl_RobotPosCalibR};
        c.robotPoseSnap = {VDbl_RobotPosSnapX, VDbl_RobotPosSnapY, VDbl_RobotPosSnapZ,
                           VDbl_RobotPosSnapW, VDbl_RobotPosSnapP, VDbl_RobotPosSnapR};
        c.gridFrameLabel = RStr_GridFrameLabel;
        c.userFrameLabel = RStr_UserFrameLabel;
        m_scene.addCamera(c);
        m_rotationCenter->addItem(RStr_CameraViewName);
    });
}

void NXR3DPlot::AddFOVCorner(double VDbl_LineStartX, double VDbl_LineStartY, double VDbl_LineStartZ,
                             double VDbl_LineDirX, double VDbl_LineDirY, double VDbl_LineDirZ)
{
    core().guard(QStringLiteral("AddFOVCorner"), [&] {
        m_scene.addFovCorner({{VDbl_LineStartX, VDbl_LineStartY, VDbl_LineStartZ},
                              {VDbl_LineDirX, VDbl_LineDirY, VDbl_LineDirZ}});
    });
}

void NXR3DPlot::AddCalibrationPoint(double VDbl_PointX, double VDbl_PointY, double VDbl_PointZ)
{
    core().guard(QStringLiteral("AddCalibrationPoint"), [&] {
        m_scene.addCalibrationPoint({VDbl_PointX, VDbl_PointY, VDbl_PointZ});
    });
}

void NXR3DPlot::AddFoundPoint(int VLng_CameraIndex, double VDbl_NominalPointX, double VDbl_NominalPointY,
                              double VDbl_NominalPointZ, double VDbl_OffsetPointX, double VDbl_OffsetPointY,
                              double VDbl_OffsetPointZ, double VDbl_LineStartX, double VDbl_LineStartY,
                              double VDbl_LineStartZ, double VDbl_LineDirX, double VDbl_LineDirY,
                              double VDbl_LineDirZ)
{
    core().guard(QStringLiteral("AddFoundPoint"), [&] {
        FoundPoint f;
        f.cameraIndex = VLng_CameraIndex;
        f.nominal = {VDbl_NominalPointX, VDbl_NominalPointY, VDbl_NominalPointZ};
        f.offset = {VDbl_OffsetPointX, VDbl_OffsetPointY, VDbl_OffsetPointZ};
        f.lineOfSight = {{VDbl_LineStartX, VDbl_LineStartY, VDbl_LineStartZ},
                         {VDbl_LineDirX, VDbl_LineDirY, VDbl_LineDirZ}};
        m_scene.addFoundPoint(f);
    });
}

void NXR3DPlot::FinishCamera()
{
    const QString routine = QStringLiteral("FinishCamera");
    try {
        NXR_TRACE(kClass, routine, QStringLiteral("Entered"));
        m_scene.finishCamera();
        if (m_gl)
            m_gl->sceneChanged();
    } catch (const nxr::Failure& f) {
        core().fail(routine, f.description() + QStringLiteral(" in FinishCamera"));
    } catch (const std::exception& e) {
        core().fail(routine, QString::fromLocal8Bit(e.what()) + QStringLiteral(" in FinishCamera"));
    }
}

void NXR3DPlot::FinishDrawing()
{
    core().guard(QStringLiteral("FinishDrawing"), [&] {
        NXR_TRACE(kClass, QStringLiteral("FinishDrawing"), QStringLiteral("Entered"));
        m_scene.setDrawingFinished();
        if (!m_framed) {
            // The first drawing shows the whole scene.
            m_framed = true;
            m_view.reset();
            m_scene.setCentre(m_scene.box().centre());
        }
        if (m_gl)
            m_gl->sceneChanged();
    });
}

void NXR3DPlot::SaveImage(const QString& vstr_FilePath)
{
    core().guard(QStringLiteral("SaveImage"), [&] {
        NXR_TRACE(kClass, QStringLiteral("SaveImage"),
                  QStringLiteral("Entered, vstr_FilePath = ") + vstr_FilePath);
        if (!m_gl)
            throw nxr::Failure(QStringLiteral("there is no picture: OpenGL is not available"));
        const QString path = resolveImagePath(nxr::Globals::storageFolder(), vstr_FilePath);
        const QImage image = m_gl->grabFramebuffer();
        if (image.isNull())
            throw nxr::Failure(QStringLiteral("the picture could not be read"));
        if (!image.save(path, "PNG"))
            throw nxr::Failure(QStringLiteral("cannot write ") + vstr_FilePath);
    });
}
