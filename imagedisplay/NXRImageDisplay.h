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
//
// C++ entry for showing an image: showImage(). Script entry for a local file: LoadLocalImage().

#include "frame/Export.h"
#include "frame/ScriptableWidget.h"
#include "imagedisplay/DisplayState.h"

#include <QImage>

#include <memory>

class QFrame;
class QLabel;
class QPushButton;
class QTimer;
class NXRStatusBar;
class NXRViewButtons;

namespace nxr {
class DisplayLoading;
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

public:
    explicit NXRImageDisplay(QWidget* parent = nullptr);
    ~NXRImageDisplay() override;

    QString Caption() const { return m_caption; }
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
    QString OverrideImageLabelCaption() const { return m_overrideCaption; }
    void setOverrideImageLabelCaption(const QString& value);
    int OverrideImageLabelColor() const { return m_overrideColor; }
    void setOverrideImageLabelColor(int value);
    bool HourglassCursor() const { return m_hourglass; }
    void setHourglassCursor(bool value);
    bool ProgressCursor() const { return m_progress; }
    void setProgressCursor(bool value);
    QString HostName() const { return m_hostName; }
    void setHostName(const QString& value);
    int ForeColor() const { return m_foreColor; }
    void setForeColor(int value);
    bool ShowFrame() const { return m_showFrame; }
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
    QString CurrentImageFilename() const;
    bool WaitOnDisplay() const;
    void setWaitOnDisplay(bool value);

    // ---- C++ interface for the library's other subsystems ----

    // Shows a bitmap in ctl_LEAD. With keepViewIfSameSize and an image of the size of the one
    // shown, zoom and scroll stay; otherwise the image is fitted and OnZoomChanged raised.
    void showImage(const QImage& image, bool keepViewIfSameSize = true);
    // Removes the shown image.
    void clearImage();
    // Sets the file name GetProperty("OriginalFilename") reports.
    void setOriginalFilename(const QString& name) { m_originalFilename = name; }

    nxr::DisplayLoading& loading() const { return *m_loading; }
    // Back to the first state (pointer mouse mode, raster views repainting, layout).
    void InitDisplay();

    nxr::RasterView* leadView() const { return m_lead; }
    nxr::RasterView* tempLeadView() const { return m_tempLead; }
    nxr::RasterView* maskLeadView() const { return m_maskLead; }
    nxr::RasterView* originalMaskLeadView() const { return m_originalMaskLead; }
    nxr::RasterView* overlayLeadView() const { return m_overlayLead; }
    // ctl_MaskLEAD while a mask is edited, ctl_LEAD otherwise.
    nxr::RasterView* activeView() const;
    nxr::ImageViewport& viewport() const { return *m_viewport; }
    nxr::MouseDispatcher& mouse() const { return *m_mouse; }
    nxr::ToolbarClickHandler& toolbarClicks() const { return *m_clicks; }
    NXRViewButtons* viewButtons() const { return m_viewButtons; }
    NXRStatusBar* statusBar() const { return m_statusBar; }
    nxr::DisplayState& state() { return m_state; }
    const nxr::DisplayState& state() const { return m_state; }
    // Shows or hides the OK/Cancel bar after an editing mode began or ended.
    void editModeChanged();
    // The busy flag of the zoom click handler.
    bool busy() const;
    int mouseMode() const;
    float defaultZoom() const { return m_defaultZoom; }

    // Updates the status bar and raises OnZoomChanged with the active view's zoom.
    void raiseZoomChanged();
    // Sends "ButtonEnabled" = "<button>, True|False" to the tool bar.
    void EnableOMIViewButton(int button, bool enable);
    void RefreshDisplay();
    // Writes the view's rectangles to the trace (the hidden cmd_Debug button does the same).
    void msub_OutputLEADDims();
    // Flashes the OK/Cancel bar to remind the user to finish the editing.
    void flashOKCancel();

    QTimer* liveModeTimer() const { return m_tmrLiveMode; }
    QTimer* imageRefreshTimer() const { return m_tmrImageRefresh; }
    QTimer* leadDoubleClickTimer() const { return m_tmrLEADDblClick; }

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
    void UserControl_Initialize();
    void UserControl_Resize();
    void UserControl_Terminate();
    void addKeys();
    void setupToolbarActions();
    void msub_Localize();
    void msub_UpdateImageCaption();
    void msub_SetFontName(const QString& name);
    void msub_SetFontSize(double size);
    void applyChildFont();
    void setButtonsVisible(std::initializer_list<int> buttons, bool visible);
    bool toolbarFlag(const QString& key);
    void forwardToButtonControls(const QString& key, bool value);
    void ctl_NXRViewButtons_OnButtonClicked(int button);
    void cmd_OK_Click();
    void cmd_Cancel_Click();
    void showPixelUnderMouse(bool inside, const QPointF& image);
    int frameMarginPixels() const;

    nxr::DisplayState m_state;
    std::unique_ptr<nxr::DisplayLoading> m_loading;
    nxr::ImageViewport* m_viewport = nullptr;
    nxr::MouseDispatcher* m_mouse = nullptr;
    nxr::ToolbarClickHandler* m_clicks = nullptr;
    nxr::RasterView* m_lead = nullptr;
    nxr::RasterView* m_tempLead = nullptr;
    nxr::RasterView* m_maskLead = nullptr;
    nxr::RasterView* m_originalMaskLead = nullptr;
    nxr::RasterView* m_overlayLead = nullptr;
    NXRViewButtons* m_viewButtons = nullptr;
    NXRStatusBar* m_statusBar = nullptr;
    QFrame* m_fraImage = nullptr;
    QLabel* m_lblOverride = nullptr;
    QFrame* m_fraOKCancel = nullptr;
    QLabel* m_lblOKCancel = nullptr;
    QPushButton* m_cmdOK = nullptr;
    QPushButton* m_cmdCancel = nullptr;
    QPushButton* m_cmdDebug = nullptr;
    QTimer* m_tmrLiveMode = nullptr;
    QTimer* m_tmrImageRefresh = nullptr;
    QTimer* m_tmrFlashOKCancel = nullptr;
    QTimer* m_tmrResize = nullptr;
    QTimer* m_tmrLEADDblClick = nullptr;

    QString m_caption;
    QString m_overrideCaption;
    int m_overrideColor = 0x0000FF; // red, 0x00BBGGRR
    QString m_hostName;
    int m_foreColor = 0;
    bool m_showFrame = false;
    bool m_hourglass = false;
    bool m_progress = false;
    float m_defaultZoom = 100.0f;
    QString m_fontName;
    double m_fontSize = 0;
    bool m_fontSetByPage = false;
    QString m_originalFilename;
    int m_ftpPortNo = 21;
    int m_httpPortNo = 80;
    bool m_enableLogImageLoad = false;
    double m_minPairWidth = 0;
    double m_maxPairWidth = 0;
    bool m_inResize = false;
    bool m_shown = false;
    int m_flashesLeft = 0;
};
