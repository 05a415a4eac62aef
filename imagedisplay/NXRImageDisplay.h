#pragma once
// The image display control: one camera image with zoom, scroll and pan, a tool bar of view
// buttons, a status line and an OK/Cancel bar for the editing modes.
//
// This class is the scripting face only. The work lives in its collaborators:
//   ImageViewport (fra_ImageBackground)  zoom and scroll state, scroll bars, view placement
//   RasterView (ctl_LEAD, ...)          bitmaps and their painting
//   MouseDispatcher                     mouse modes, pan, zoom clicks, wheel, editing hooks
//   ToolbarClickHandler                 tool-bar actions and which names the page hears
//   DisplayLayout                       placement of the parts
//   EditSession (edit/)                 the one edit: OK/Cancel bar, Accept/Cancel, interaction
//   DisplayParts (edit/)                subsystems plugged in (graphics, movable shapes, masks)
//
// C++ entry for showing an image: showImage(). Script entry for a local file: LoadLocalImage().

#include "frame/Export.h"
#include "frame/ScriptableWidget.h"

#include <QImage>
#include <QVariant>

#include <memory>
#include <typeinfo>

class QFrame;
class QLabel;
class QPushButton;
class QTimer;
class NXRStatusBar;
class NXRViewButtons;

namespace nxr {
class DisplayDialogs;
class DisplayEditHost;
class DisplayLoading;
class DisplayPart;
class EditHost;
class EditSession;
struct DisplayState;
class ImageViewport;
class MouseDispatcher;
class RasterView;
class ToolbarClickHandler;
} // namespace nxr

class NXR_EXPORT NXRImageDisplay : public nxr::ScriptableWidget
{
    Q_OBJECT
    Q_CLASSINFO("Description", "Camera image with zoom, scroll, pan, live mode, tool bar and status line")
    Q_PROPERTY(QString Caption READ Caption WRITE setCaption NOTIFY CaptionChanged)
    Q_PROPERTY(float Zoom READ Zoom WRITE setZoom DESIGNABLE false)
    Q_PROPERTY(int ImageHeight READ ImageHeight)
    Q_PROPERTY(int ImageWidth READ ImageWidth)
    Q_PROPERTY(
        bool ImageCaptureButtonsVisible READ ImageCaptureButtonsVisible WRITE setImageCaptureButtonsVisible)
    Q_PROPERTY(bool WindowResetButtonVisible READ WindowResetButtonVisible WRITE setWindowResetButtonVisible)
    Q_PROPERTY(bool OpenSaveButtonsVisible READ OpenSaveButtonsVisible WRITE setOpenSaveButtonsVisible)
    Q_PROPERTY(
        QString OverrideImageLabelCaption READ OverrideImageLabelCaption WRITE setOverrideImageLabelCaption)
    Q_PROPERTY(int OverrideImageLabelColor READ OverrideImageLabelColor WRITE setOverrideImageLabelColor)
    Q_PROPERTY(bool HourglassCursor READ HourglassCursor WRITE setHourglassCursor DESIGNABLE false)
    Q_PROPERTY(bool ProgressCursor READ ProgressCursor WRITE setProgressCursor DESIGNABLE false)
    Q_PROPERTY(QString HostName READ HostName WRITE setHostName)
    Q_PROPERTY(int ForeColor READ ForeColor WRITE setForeColor NOTIFY ForeColorChanged)
    Q_PROPERTY(bool ShowFrame READ ShowFrame WRITE setShowFrame)
    Q_PROPERTY(bool AcquireEnabled READ AcquireEnabled WRITE setAcquireEnabled)
    Q_PROPERTY(bool LiveEnabled READ LiveEnabled WRITE setLiveEnabled)
    Q_PROPERTY(bool WaitOnDisplay READ WaitOnDisplay WRITE setWaitOnDisplay)
    Q_PROPERTY(QString CurrentImageFilename READ CurrentImageFilename)
    // Masks (forwarded to nxr::MaskPart, see the mask block below).
    Q_PROPERTY(int ShowMask READ ShowMask WRITE setShowMask DESIGNABLE false)
    Q_PROPERTY(int EditMaskMode READ EditMaskMode WRITE setEditMaskMode DESIGNABLE false)

    // ---- result graphics and movable shapes (imagedisplay/parts) ----
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
    explicit NXRImageDisplay(QWidget* parent = nullptr);
    ~NXRImageDisplay() override;

    QString Caption() const;
    void setCaption(const QString& value);
    float Zoom() const;
    void setZoom(float value);
    int ImageHeight() const;
    int ImageWidth() const;
    bool ImageCaptureButtonsVisible();
    void setImageCaptureButtonsVisible(bool value);
    bool WindowResetButtonVisible();
    void setWindowResetButtonVisible(bool value);
    bool OpenSaveButtonsVisible();
    void setOpenSaveButtonsVisible(bool value);
    QString OverrideImageLabelCaption() const;
    void setOverrideImageLabelCaption(const QString& value);
    int OverrideImageLabelColor() const;
    void setOverrideImageLabelColor(int value);
    bool HourglassCursor() const;
    void setHourglassCursor(bool value);
    bool ProgressCursor() const;
    void setProgressCursor(bool value);
    QString HostName() const;
    void setHostName(const QString& value);
    int ForeColor() const;
    void setForeColor(int value);
    bool ShowFrame() const;
    void setShowFrame(bool value);
    bool AcquireEnabled();
    void setAcquireEnabled(bool value);
    bool LiveEnabled();
    void setLiveEnabled(bool value);

    Q_INVOKABLE void SetFont(const QString& vstr_FontName, int vlng_FontSize);
    Q_INVOKABLE void Resize(int vlng_Width, int vlng_Height);
    Q_INVOKABLE void ZoomTo(int VLng_Top, int VLng_Left, int vlng_Height, int vlng_Width);
    // Shows an image file of the local file system (the page's own files, test data); images on
    // the controller are loaded through the controller loading routines instead.
    Q_INVOKABLE void LoadLocalImage(const QString& vstr_FilePath);

    // Controller images: loading (an empty path clears the display), saving back, live mode.
    // The work is done by DisplayLoading (imagedisplay/loading).
    Q_INVOKABLE void LoadImage(const QString& vstr_FileServer, const QString& vstr_FilePath,
                               const QString& vstr_FTPUserName, const QString& vstr_FTPPassword);
    Q_INVOKABLE void SaveCurrentImage(const QString& vstr_RemoteHost, const QString& vstr_FilePath,
                                      const QString& vstr_FTPUserName, const QString& vstr_FTPPassword);
    Q_INVOKABLE void AbortLiveMode();

    // The image log and the open/save dialog (imagedisplay/dialog).
    Q_INVOKABLE void AddLogImage(const QString& vstr_Date, const QString& vstr_Process,
                                 const QString& vstr_TimeStamp, const QString& vstr_ImageID);
    Q_INVOKABLE void ClearLogDataList();
    Q_INVOKABLE void UpdateLogImageLoad();
    nxr::DisplayDialogs& dialogs() const;
    QString CurrentImageFilename() const;
    bool WaitOnDisplay() const;
    void setWaitOnDisplay(bool value);

    // ---- Masks: one-line forwards to nxr::MaskPart (imagedisplay/parts) ----
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

    // ---- C++ interface for the library's other subsystems ----

    // Shows a bitmap in ctl_LEAD and files it as the current image. With keepViewIfSameSize and
    // an image of the size of the one shown, zoom and scroll stay; otherwise the image is fitted
    // and OnZoomChanged raised.
    void showImage(const QImage& image, bool keepViewIfSameSize = true);
    // Removes the shown image.
    void clearImage();
    // Sets the file name GetProperty("OriginalFilename") reports.
    void setOriginalFilename(const QString& name);

    nxr::DisplayLoading& loading() const;
    // Back to the first state (pointer mouse mode, raster views repainting, layout).
    void InitDisplay();

    nxr::RasterView* leadView() const;
    nxr::RasterView* tempLeadView() const;
    nxr::RasterView* maskLeadView() const;
    nxr::RasterView* originalMaskLeadView() const;
    nxr::RasterView* overlayLeadView() const;
    // ctl_MaskLEAD while a mask is edited, ctl_LEAD otherwise.
    nxr::RasterView* activeView() const;
    nxr::ImageViewport& viewport() const;
    nxr::MouseDispatcher& mouse() const;
    nxr::ToolbarClickHandler& toolbarClicks() const;
    NXRViewButtons* viewButtons() const;
    NXRStatusBar* statusBar() const;
    nxr::DisplayState& state();
    const nxr::DisplayState& state() const;
    // The one edit (OK/Cancel bar, Accept/Cancel, the editor's interaction).
    nxr::EditSession& editSession() const;
    // What the editing subsystems see of the display.
    nxr::EditHost& editHost() const;
    // A subsystem registered with NXR_REGISTER_DISPLAY_PART (edit/DisplayParts.h).
    template <typename Part> Part& part() const { return static_cast<Part&>(partOf(typeid(Part))); }
    // The busy flag of the zoom click handler.
    bool busy() const;
    int mouseMode() const;
    float defaultZoom() const;

    // Updates the status bar and raises OnZoomChanged with the active view's zoom.
    void raiseZoomChanged();
    // Sends "ButtonEnabled" = "<button>, True|False" to the tool bar.
    void EnableOMIViewButton(int button, bool enable);
    void RefreshDisplay();
    // Writes the view's rectangles to the trace (the hidden cmd_Debug button does the same).
    void msub_OutputLEADDims();

    QTimer* liveModeTimer() const;
    QTimer* imageRefreshTimer() const;
    QTimer* leadDoubleClickTimer() const;

Q_SIGNALS:
    void OnButtonClicked(const QString& str_Button);
    void OnExitMaskEditMode(int int_Accepted);
    void OnExitMovableWindowEditMode(int int_Accepted);
    void OnExitMovableCursorEditMode(int int_Accepted);
    void OnUserLoadedImage(const QString& str_ImageFilePath, int lng_ImageWidth, int lng_ImageHeight);
    void OnLiveModeToggled(bool bln_LiveModeOn);
    void OnZoomChanged(float sng_NewZoom);
    void OnLogListRequested();
    void OnLogImageSelected(const QString& str_Selector);

    void CaptionChanged();
    void ForeColorChanged();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    friend class nxr::DisplayEditHost; // hands the property table to the plugged-in parts
    struct Private;

    void UserControl_Initialize();
    void UserControl_Resize();
    void UserControl_Terminate();
    void addKeys();
    void setupToolbarActions();
    void msub_UpdateImageCaption();
    void msub_SetFontName(const QString& name);
    void msub_SetFontSize(double size);
    void applyChildFont();
    void setButtonsVisible(std::initializer_list<int> buttons, bool visible);
    bool toolbarFlag(const QString& key);
    void forwardToButtonControls(const QString& key, bool value);
    void ctl_NXRViewButtons_OnButtonClicked(int button);
    void editChanged();
    void showPixelUnderMouse(bool inside, const QPointF& image);
    int frameMarginPixels() const;
    nxr::DisplayPart& partOf(const std::type_info& type) const;

    std::unique_ptr<Private> d;
};
