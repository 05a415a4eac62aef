#pragma once
// Turns the calibration scene into OpenGL display lists and draws them. Needs a current
// compatibility-profile context for every call but the constructor.
//
// List numbers:
//   1, 2        ring markers (GLU disks), called from the camera bodies
//   101 ...     scene lists, one running counter: per camera its grid surface, calibration points,
//               viewing cone, field-of-view surface and body; then the user frame, the reference
//               (nominal) positions, the offset reference (found) positions and one list per
//               found point
//   501 + i     the label of found point i
//   1000 + c    font bitmaps of characters 0..126 (empty when no bitmap font is available; the
//               owner then writes the labels itself, see labelsDrawnByOwner())

#include "frame/Export.h"
#include "plot3d/CalibrationScene.h"
#include "plot3d/ViewState.h"

#include <QString>

#include <vector>

namespace nxr::plot3d {

struct Label
{
    Vec3 position;
    QString text;
};

class NXR_EXPORT SceneRenderer
{
public:
    static constexpr unsigned kFirstSceneList = 101;
    static constexpr unsigned kFirstLabelList = 501;
    static constexpr unsigned kFontBase = 1000;
    static constexpr int kFontChars = 127;

    // useGlut: GLUT may be used (it has been initialised); otherwise cubes and font lists are
    // built without it.
    explicit SceneRenderer(bool useGlut) : m_glut(useGlut) {}

    // The start-up state, lists 1 and 2 and the font lists.
    void initialize();
    // Re-applies the fixed start-up state (after anything else has drawn into the context).
    void applyState();
    // Brings the compiled lists in line with the scene: drops what the scene dropped, compiles
    // finished cameras not yet compiled and, once drawing is finished, the remaining lists.
    void sync(const CalibrationScene& scene);
    // One redraw into the current framebuffer, `width` x `height` device pixels.
    void draw(const CalibrationScene& scene, const ViewState& view, int width, int height, bool showReference,
              bool showOffsetReference);
    // Sets the alpha of the whole frame to 1, leaving colour and the clear colour as they are.
    static void clearAlphaToOpaque();
    // Deletes every list (1 to the end of the font lists).
    void release();

    int sceneListCount() const { return m_sceneLists; }
    int labelListCount() const { return int(m_labels.size()); }
    unsigned referenceList() const { return m_referenceList; }
    unsigned offsetReferenceList() const { return m_offsetReferenceList; }
    bool labelsDrawnByOwner() const { return !m_glut; }
    // The labels of the compiled label lists, in list order.
    const std::vector<Label>& labels() const { return m_labels; }
    // The matrices of the last draw.
    const Mat4& modelView() const { return m_modelView; }
    const Mat4& projection() const { return m_projection; }

    static QString foundPointLabel(int index) { return QStringLiteral("P%1").arg(index + 1); }

private:
    unsigned nextList();
    void compileCamera(const Camera& camera);
    void compileFinish(const CalibrationScene& scene);
    void dropFinish();
    void dropAll();
    void cube(double size, bool solid);

    bool m_glut = false;
    int m_generation = -1;
    int m_foundGeneration = -1;
    int m_camerasCompiled = 0;
    int m_sceneLists = 0;
    int m_finishMark = -1; // scene list count before the finishing lists; -1: not compiled
    unsigned m_referenceList = 0;
    unsigned m_offsetReferenceList = 0;
    std::vector<Label> m_labels;
    Mat4 m_modelView;
    Mat4 m_projection;
};

} // namespace nxr::plot3d
