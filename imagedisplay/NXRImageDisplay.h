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
//   DisplayPartsFace (parts/, the base)  their scripting members, one-line forwards
//
// C++ entry for showing an image: showImage(). Script entry for a local file: LoadLocalImage().

#include "frame/Export.h"
#include "imagedisplay/parts/DisplayPartsFace.h"

#include <QImage>
#include <QVariant>

#include <memory>

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

class NXR_EXPORT NXRImageDisplay : public nxr::DisplayPartsFace
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
    nxr::DisplayPart& partOf(const std::type_info& type) const override;

    std::unique_ptr<Private> d;
};
