#include "imagedisplay/parts/DisplayPartsFace.h"

#include "graphics/MovableShapes.h"
#include "imagedisplay/parts/GraphicsPart.h"
#include "imagedisplay/parts/MaskPart.h"

namespace nxr {

// ---- Masks: one-line forwards to MaskPart (imagedisplay/parts/MaskPart) ----

// clang-format off
void DisplayPartsFace::LoadMask(const QString& vstr_FileServer, const QString& vstr_FilePath, const QString& vstr_FTPUserName, const QString& vstr_FTPPassword, int vlng_MaskType) { part<MaskPart>().session().LoadMask(vstr_FileServer, vstr_FilePath, vstr_FTPUserName, vstr_FTPPassword, vlng_MaskType); }
void DisplayPartsFace::EditDontCareMask() { part<MaskPart>().session().EditDontCareMask(); }
void DisplayPartsFace::EditEmphasisMask() { part<MaskPart>().session().EditEmphasisMask(); }
int DisplayPartsFace::ShowMask() const { return part<MaskPart>().session().ShowMask(); }
void DisplayPartsFace::setShowMask(int value) { part<MaskPart>().session().setShowMask(value); }
int DisplayPartsFace::EditMaskMode() const { return part<MaskPart>().session().EditMaskMode(); }
void DisplayPartsFace::setEditMaskMode(int value) { part<MaskPart>().setEditMaskMode(value); }
QString DisplayPartsFace::MaskImageFilename(int vlng_Mask) { return part<MaskPart>().session().MaskImageFilename(vlng_Mask); }
// clang-format on
// ---- result graphics and movable shapes: one-line forwards to imagedisplay/parts ----

// clang-format off
void DisplayPartsFace::DrawText(const QString& vstr_Text, int vlng_X, int vlng_Y, int vlng_Color) { part<GraphicsPart>().graphics().DrawText(vstr_Text, vlng_X, vlng_Y, vlng_Color); }
void DisplayPartsFace::DrawTextArray(const QVariant& vvar_Text, const QVariant& vvar_X, const QVariant& vvar_Y, const QVariant& vvar_Color) { part<GraphicsPart>().graphics().DrawTextArray(vvar_Text, vvar_X, vvar_Y, vvar_Color); }
void DisplayPartsFace::ClearGraphics() { part<GraphicsPart>().graphics().ClearGraphics(); }
void DisplayPartsFace::EraseOverlay() { part<GraphicsPart>().graphics().EraseOverlay(); }
bool DisplayPartsFace::ShowOverlay() const { return part<GraphicsPart>().graphics().ShowOverlay(); }
void DisplayPartsFace::setShowOverlay(bool value) { part<GraphicsPart>().graphics().setShowOverlay(value); }
void DisplayPartsFace::LoadOverlay(const QString& vstr_FileServer, const QString& vstr_FilePath, const QString& vstr_FTPUserName, const QString& vstr_FTPPassword) { part<GraphicsPart>().graphics().LoadOverlay(vstr_FileServer, vstr_FilePath, vstr_FTPUserName, vstr_FTPPassword); }
void DisplayPartsFace::LoadCombinedImageAndOverlay(const QString& vstr_FileServer, const QString& vstr_ImageFilePath, const QString& vstr_OverlayFilePath, const QString& vstr_FTPUserName, const QString& vstr_FTPPassword) { part<GraphicsPart>().graphics().LoadCombinedImageAndOverlay(vstr_FileServer, vstr_ImageFilePath, vstr_OverlayFilePath, vstr_FTPUserName, vstr_FTPPassword); }
void DisplayPartsFace::DrawLine(double vdbl_X1, double vdbl_Y1, double vdbl_X2, double vdbl_Y2, int vlng_Color, const QString& vstr_Key) { part<GraphicsPart>().graphics().DrawLine(vdbl_X1, vdbl_Y1, vdbl_X2, vdbl_Y2, vlng_Color, vstr_Key); }
void DisplayPartsFace::DrawArrow(double vdbl_X1, double vdbl_Y1, double vdbl_X2, double vdbl_Y2, int vlng_Color, int vint_Style, const QString& vstr_Key) { part<GraphicsPart>().graphics().DrawArrow(vdbl_X1, vdbl_Y1, vdbl_X2, vdbl_Y2, vlng_Color, qint16(vint_Style), vstr_Key); }
void DisplayPartsFace::DrawBox(double vdbl_Left, double vdbl_Top, double vdbl_Width, double vdbl_Height, double vdbl_Angle, int vlng_Color, const QString& vstr_Key) { part<GraphicsPart>().graphics().DrawBox(vdbl_Left, vdbl_Top, vdbl_Width, vdbl_Height, vdbl_Angle, vlng_Color, vstr_Key); }
void DisplayPartsFace::DrawCircle(double vdbl_X, double vdbl_Y, double vdbl_Radius, int vlng_Color, const QString& vstr_Key) { part<GraphicsPart>().graphics().DrawCircle(vdbl_X, vdbl_Y, vdbl_Radius, vlng_Color, vstr_Key); }
void DisplayPartsFace::DrawCross(double vdbl_X, double vdbl_Y, double vdbl_Angle, int vlng_Color, const QString& vstr_Key) { part<GraphicsPart>().graphics().DrawCross(vdbl_X, vdbl_Y, vdbl_Angle, vlng_Color, vstr_Key); }
void DisplayPartsFace::RemoveGraphic(const QString& vstr_Key) { part<GraphicsPart>().graphics().RemoveGraphic(vstr_Key); }
void DisplayPartsFace::SetMovableWindow(double VDbl_Top, double VDbl_Left, double VDbl_Height, double VDbl_Width, double VDbl_Angle, bool vbln_Rotatable) { part<GraphicsPart>().shapes().SetMovableWindow(VDbl_Top, VDbl_Left, VDbl_Height, VDbl_Width, VDbl_Angle, vbln_Rotatable); }
void DisplayPartsFace::EditMovableWindow() { part<GraphicsPart>().shapes().EditMovableWindow(); }
void DisplayPartsFace::ShowMovableWindow(int vlng_Color) { part<GraphicsPart>().shapes().ShowMovableWindow(vlng_Color); }
double DisplayPartsFace::MovableWindowTop() const { return part<GraphicsPart>().shapes().MovableWindowTop(); }
double DisplayPartsFace::MovableWindowLeft() const { return part<GraphicsPart>().shapes().MovableWindowLeft(); }
double DisplayPartsFace::MovableWindowHeight() const { return part<GraphicsPart>().shapes().MovableWindowHeight(); }
double DisplayPartsFace::MovableWindowWidth() const { return part<GraphicsPart>().shapes().MovableWindowWidth(); }
double DisplayPartsFace::MovableWindowAngle() const { return part<GraphicsPart>().shapes().MovableWindowAngle(); }
bool DisplayPartsFace::MovableWindowVisible() const { return part<GraphicsPart>().shapes().MovableWindowVisible(); }
void DisplayPartsFace::setMovableWindowVisible(bool value) { part<GraphicsPart>().shapes().setMovableWindowVisible(value); }
void DisplayPartsFace::SetMovableCursor(double vdbl_X, double vdbl_Y) { part<GraphicsPart>().shapes().SetMovableCursor(vdbl_X, vdbl_Y); }
void DisplayPartsFace::EditMovableCursor() { part<GraphicsPart>().shapes().EditMovableCursor(); }
void DisplayPartsFace::ShowMovableCursor(bool vbln_Show) { part<GraphicsPart>().shapes().ShowMovableCursor(vbln_Show); }
double DisplayPartsFace::MovableCursorX() const { return part<GraphicsPart>().shapes().MovableCursorX(); }
double DisplayPartsFace::MovableCursorY() const { return part<GraphicsPart>().shapes().MovableCursorY(); }
bool DisplayPartsFace::MovableCursorVisible() const { return part<GraphicsPart>().shapes().MovableCursorVisible(); }
void DisplayPartsFace::setMovableCursorVisible(bool value) { part<GraphicsPart>().shapes().setMovableCursorVisible(value); }
int DisplayPartsFace::MovableCursorColor() const { return part<GraphicsPart>().shapes().MovableCursorColor(); }
void DisplayPartsFace::setMovableCursorColor(int value) { part<GraphicsPart>().shapes().setMovableCursorColor(value); }
bool DisplayPartsFace::MoveableCursor() const { return part<GraphicsPart>().shapes().MoveableCursor(); }
void DisplayPartsFace::setMoveableCursor(bool value) { part<GraphicsPart>().shapes().setMoveableCursor(value); }
void DisplayPartsFace::SetMovableLine(double vdbl_X1, double vdbl_Y1, double vdbl_X2, double vdbl_Y2, bool vbln_Arrowed) { part<GraphicsPart>().shapes().SetMovableLine(vdbl_X1, vdbl_Y1, vdbl_X2, vdbl_Y2, vbln_Arrowed); }
void DisplayPartsFace::EditMovableLine() { part<GraphicsPart>().shapes().EditMovableLine(); }
void DisplayPartsFace::ShowMovableLine(bool vbln_Show) { part<GraphicsPart>().shapes().ShowMovableLine(vbln_Show); }
bool DisplayPartsFace::MovableLineVisible() const { return part<GraphicsPart>().shapes().MovableLineVisible(); }
void DisplayPartsFace::setMovableLineVisible(bool value) { part<GraphicsPart>().shapes().setMovableLineVisible(value); }
double DisplayPartsFace::MovableLineEndpoint(int lng_Endpoint, const QString& str_XorY) { return part<GraphicsPart>().shapes().MovableLineEndpoint(lng_Endpoint, str_XorY); }
void DisplayPartsFace::SetMovableLinePair(double vdbl_X1, double vdbl_Y1, double vdbl_X2, double vdbl_Y2, double vdbl_StartingWidth) { part<GraphicsPart>().shapes().SetMovableLinePair(vdbl_X1, vdbl_Y1, vdbl_X2, vdbl_Y2, vdbl_StartingWidth); }
void DisplayPartsFace::EditMovableLinePair() { part<GraphicsPart>().shapes().EditMovableLinePair(); }
void DisplayPartsFace::ShowMovableLinePair(bool vbln_Show) { part<GraphicsPart>().shapes().ShowMovableLinePair(vbln_Show); }
bool DisplayPartsFace::MovableLinePairVisible() const { return part<GraphicsPart>().shapes().MovableLinePairVisible(); }
void DisplayPartsFace::setMovableLinePairVisible(bool value) { part<GraphicsPart>().shapes().setMovableLinePairVisible(value); }
double DisplayPartsFace::MovableLinePairEndpoint(int vlng_Endpoint, const QString& vstr_XorY) { return part<GraphicsPart>().shapes().MovableLinePairEndpoint(vlng_Endpoint, vstr_XorY); }
double DisplayPartsFace::MovableLinePairWidth() const { return part<GraphicsPart>().shapes().MovableLinePairWidth(); }
bool DisplayPartsFace::MoveWindowEnabled() const { return part<GraphicsPart>().shapes().MoveWindowEnabled(); }
void DisplayPartsFace::setMoveWindowEnabled(bool value) { part<GraphicsPart>().shapes().setMoveWindowEnabled(value); }
bool DisplayPartsFace::MoveCursorEnabled() const { return part<GraphicsPart>().shapes().MoveCursorEnabled(); }
void DisplayPartsFace::setMoveCursorEnabled(bool value) { part<GraphicsPart>().shapes().setMoveCursorEnabled(value); }
bool DisplayPartsFace::MoveLineEnabled() const { return part<GraphicsPart>().shapes().MoveLineEnabled(); }
void DisplayPartsFace::setMoveLineEnabled(bool value) { part<GraphicsPart>().shapes().setMoveLineEnabled(value); }
bool DisplayPartsFace::MoveLinePairEnabled() const { return part<GraphicsPart>().shapes().MoveLinePairEnabled(); }
void DisplayPartsFace::setMoveLinePairEnabled(bool value) { part<GraphicsPart>().shapes().setMoveLinePairEnabled(value); }
// clang-format on
// ---- end of result graphics and movable shapes ----

} // namespace nxr
