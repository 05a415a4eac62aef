#pragma once
// The scripting members of the parts plugged into the image display: masks (MaskPart), result
// graphics and movable shapes (GraphicsPart). Each forwards in one line to its part; the display
// derives from this class and says where its parts are (partOf), so the page sees one object.

#include "frame/Export.h"
#include "frame/ScriptableWidget.h"

#include <QVariant>

#include <typeinfo>

namespace nxr {

class DisplayPart;

class NXR_EXPORT DisplayPartsFace : public ScriptableWidget
{
    Q_OBJECT
    Q_PROPERTY(int ShowMask READ ShowMask WRITE setShowMask DESIGNABLE false)
    Q_PROPERTY(int EditMaskMode READ EditMaskMode WRITE setEditMaskMode DESIGNABLE false)
    Q_PROPERTY(bool ShowOverlay READ ShowOverlay WRITE setShowOverlay)
    Q_PROPERTY(double MovableWindowTop READ MovableWindowTop)
    Q_PROPERTY(double MovableWindowLeft READ MovableWindowLeft)
    Q_PROPERTY(double MovableWindowHeight READ MovableWindowHeight)
    Q_PROPERTY(double MovableWindowWidth READ MovableWindowWidth)
    Q_PROPERTY(double MovableWindowAngle READ MovableWindowAngle)
    Q_PROPERTY(bool MovableWindowVisible READ MovableWindowVisible WRITE setMovableWindowVisible)
    Q_PROPERTY(double MovableCursorX READ MovableCursorX)
    Q_PROPERTY(double MovableCursorY READ MovableCursorY)
    Q_PROPERTY(bool MovableCursorVisible READ MovableCursorVisible WRITE setMovableCursorVisible)
    Q_PROPERTY(int MovableCursorColor READ MovableCursorColor WRITE setMovableCursorColor)
    Q_PROPERTY(bool MoveableCursor READ MoveableCursor WRITE setMoveableCursor)
    Q_PROPERTY(bool MovableLineVisible READ MovableLineVisible WRITE setMovableLineVisible)
    Q_PROPERTY(bool MovableLinePairVisible READ MovableLinePairVisible WRITE setMovableLinePairVisible)
    Q_PROPERTY(double MovableLinePairWidth READ MovableLinePairWidth)
    Q_PROPERTY(bool MoveWindowEnabled READ MoveWindowEnabled WRITE setMoveWindowEnabled)
    Q_PROPERTY(bool MoveCursorEnabled READ MoveCursorEnabled WRITE setMoveCursorEnabled)
    Q_PROPERTY(bool MoveLineEnabled READ MoveLineEnabled WRITE setMoveLineEnabled)
    Q_PROPERTY(bool MoveLinePairEnabled READ MoveLinePairEnabled WRITE setMoveLinePairEnabled)

public:
    using ScriptableWidget::ScriptableWidget;

    // ---- Masks: one-line forwards to MaskPart (imagedisplay/parts) ----
    // Mask type 0 or 1: the don't-care mask, 2: the emphasis mask.
    Q_INVOKABLE void LoadMask(const QString& vstr_FileServer, const QString& vstr_FilePath,
                              const QString& vstr_FTPUserName, const QString& vstr_FTPPassword,
                              int vlng_MaskType);
    Q_INVOKABLE void EditDontCareMask();
    Q_INVOKABLE void EditEmphasisMask();
    // 0 none, 1 the don't-care mask, 2 the emphasis mask, 3 both, tinted over the image.
    int ShowMask() const;
    void setShowMask(int value);
    // -1 none, 0 don't-care, 1 emphasis.
    int EditMaskMode() const;
    void setEditMaskMode(int value);
    // The local file of mask 0/1 (don't-care) or 2 (emphasis).
    Q_INVOKABLE QString MaskImageFilename(int vlng_Mask);
    // ---- end of the mask forwards ----
    // ---- result graphics and movable shapes: one-line forwards to imagedisplay/parts ----
    // Graphics over the image (graphics/OverlayGraphics): drawn after the image in screen pixels,
    // kept through new images, zoom, scroll and live mode.
    Q_INVOKABLE void DrawText(const QString& vstr_Text, int vlng_X, int vlng_Y, int vlng_Color);
    Q_INVOKABLE void DrawTextArray(const QVariant& vvar_Text, const QVariant& vvar_X, const QVariant& vvar_Y,
                                   const QVariant& vvar_Color);
    Q_INVOKABLE void ClearGraphics();
    Q_INVOKABLE void EraseOverlay();
    bool ShowOverlay() const;
    void setShowOverlay(bool value);
    Q_INVOKABLE void LoadOverlay(const QString& vstr_FileServer, const QString& vstr_FilePath,
                                 const QString& vstr_FTPUserName, const QString& vstr_FTPPassword);
    Q_INVOKABLE void LoadCombinedImageAndOverlay(const QString& vstr_FileServer,
                                                 const QString& vstr_ImageFilePath,
                                                 const QString& vstr_OverlayFilePath,
                                                 const QString& vstr_FTPUserName,
                                                 const QString& vstr_FTPPassword);
    Q_INVOKABLE void DrawLine(double vdbl_X1, double vdbl_Y1, double vdbl_X2, double vdbl_Y2, int vlng_Color,
                              const QString& vstr_Key = QString());
    Q_INVOKABLE void DrawArrow(double vdbl_X1, double vdbl_Y1, double vdbl_X2, double vdbl_Y2, int vlng_Color,
                               int vint_Style, const QString& vstr_Key = QString());
    Q_INVOKABLE void DrawBox(double vdbl_Left, double vdbl_Top, double vdbl_Width, double vdbl_Height,
                             double vdbl_Angle, int vlng_Color, const QString& vstr_Key = QString());
    Q_INVOKABLE void DrawCircle(double vdbl_X, double vdbl_Y, double vdbl_Radius, int vlng_Color,
                                const QString& vstr_Key = QString());
    Q_INVOKABLE void DrawCross(double vdbl_X, double vdbl_Y, double vdbl_Angle, int vlng_Color,
                               const QString& vstr_Key = QString());
    Q_INVOKABLE void RemoveGraphic(const QString& vstr_Key);
    // Movable window, cursor, line and line pair (graphics/MovableShapes).
    Q_INVOKABLE void SetMovableWindow(double VDbl_Top, double VDbl_Left, double VDbl_Height,
                                      double VDbl_Width, double VDbl_Angle, bool vbln_Rotatable);
    Q_INVOKABLE void EditMovableWindow();
    Q_INVOKABLE void ShowMovableWindow(int vlng_Color);
    double MovableWindowTop() const;
    double MovableWindowLeft() const;
    double MovableWindowHeight() const;
    double MovableWindowWidth() const;
    double MovableWindowAngle() const;
    bool MovableWindowVisible() const;
    void setMovableWindowVisible(bool value);
    Q_INVOKABLE void SetMovableCursor(double vdbl_X, double vdbl_Y);
    Q_INVOKABLE void EditMovableCursor();
    Q_INVOKABLE void ShowMovableCursor(bool vbln_Show);
    double MovableCursorX() const;
    double MovableCursorY() const;
    bool MovableCursorVisible() const;
    void setMovableCursorVisible(bool value);
    int MovableCursorColor() const;
    void setMovableCursorColor(int value);
    bool MoveableCursor() const;
    void setMoveableCursor(bool value);
    Q_INVOKABLE void SetMovableLine(double vdbl_X1, double vdbl_Y1, double vdbl_X2, double vdbl_Y2,
                                    bool vbln_Arrowed);
    Q_INVOKABLE void EditMovableLine();
    Q_INVOKABLE void ShowMovableLine(bool vbln_Show);
    bool MovableLineVisible() const;
    void setMovableLineVisible(bool value);
    Q_INVOKABLE double MovableLineEndpoint(int lng_Endpoint, const QString& str_XorY);
    Q_INVOKABLE void SetMovableLinePair(double vdbl_X1, double vdbl_Y1, double vdbl_X2, double vdbl_Y2,
                                        double vdbl_StartingWidth);
    Q_INVOKABLE void EditMovableLinePair();
    Q_INVOKABLE void ShowMovableLinePair(bool vbln_Show);
    bool MovableLinePairVisible() const;
    void setMovableLinePairVisible(bool value);
    Q_INVOKABLE double MovableLinePairEndpoint(int vlng_Endpoint, const QString& vstr_XorY);
    double MovableLinePairWidth() const;
    bool MoveWindowEnabled() const;
    void setMoveWindowEnabled(bool value);
    bool MoveCursorEnabled() const;
    void setMoveCursorEnabled(bool value);
    bool MoveLineEnabled() const;
    void setMoveLineEnabled(bool value);
    bool MoveLinePairEnabled() const;
    void setMoveLinePairEnabled(bool value);
    // ---- end of result graphics and movable shapes ----

    // A subsystem registered with NXR_REGISTER_DISPLAY_PART (edit/DisplayParts.h).
    template <typename Part> Part& part() const { return static_cast<Part&>(partOf(typeid(Part))); }

protected:
    virtual DisplayPart& partOf(const std::type_info& type) const = 0;
};

} // namespace nxr
