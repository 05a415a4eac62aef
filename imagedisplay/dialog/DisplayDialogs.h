#pragma once
// The image display's open and save dialogs and its image log. The display's Open and Save
// buttons, AddLogImage, ClearLogDataList and UpdateLogImageLoad forward here.
//
// Open (msub_LoadImageByDialog): a controller image is loaded as LoadImage loads it; a local file
// is first copied to where the display keeps its temporary images (the local folder of "TD:\",
// named "image" with the file's extension) and loaded from there. Either way OnUserLoadedImage
// follows once the image is shown. A logged image picked in the dialog raises
// OnLogImageSelected(selector) (see LogSelector) and the page loads it.
//
// Save (msub_SaveImageByDialog): the shown image ("LEAD_image") is written to the temporary
// folder as LEAD_image.PNG (or .BMP), grey when so chosen, then copied to the local file or
// uploaded to the controller path.
//
// The dialog asks for the log by raising OnLogListRequested; the page answers with
// ClearLogDataList, AddLogImage calls and UpdateLogImageLoad, at once or later.

#include "frame/Export.h"
#include "imagedisplay/dialog/ImageLog.h"
#include "imagedisplay/dialog/OpenSaveDialog.h"

#include <QObject>
#include <QPointer>

namespace nxr {

class OpenSaveHost;

class NXR_EXPORT DisplayDialogs : public QObject
{
    Q_OBJECT

public:
    explicit DisplayDialogs(OpenSaveHost& host, QObject* parent = nullptr);
    ~DisplayDialogs() override;

    void AddLogImage(const QString& date, const QString& process, const QString& timeStamp,
                     const QString& imageId);
    void ClearLogDataList();
    void UpdateLogImageLoad();

    // The Open and Save buttons: show the dialog and return; the work follows when it closes.
    void msub_LoadImageByDialog();
    void msub_SaveImageByDialog();
    // The folder part of a controller path ("MC:\A\B.PNG" gives "MC:\A\").
    static QString mfstr_GetSubfolderFromPath(const QString& path);

    clsLogDataList& log() { return m_log; }
    // "EnableLogImageLoad": the dialog offers the image log.
    bool logEnabled() const { return m_logEnabled; }
    // The dialog, made on first use and kept for the display's life.
    OpenSaveDialog& dialog();
    bool hasDialog() const { return m_dialog != nullptr; }
    // Puts another controller connection in place of the file transfer (tests).
    void setRemoteFactory(OpenSaveDialog::RemoteFactory factory) { m_remoteFactory = std::move(factory); }

Q_SIGNALS:
    // The work after the dialog closed is over (loaded, saved, failed or cancelled).
    void dialogDone();

private:
    void finished(int result);
    void openChosen(const OpenSaveDialog::Choice& choice);
    void saveChosen(const OpenSaveDialog::Choice& choice);
    bool openLocal(const QString& localPath);

    OpenSaveHost& m_host;
    clsLogDataList m_log;
    QPointer<OpenSaveDialog> m_dialog;
    OpenSaveDialog::RemoteFactory m_remoteFactory;
    bool m_logEnabled = false;
};

} // namespace nxr
