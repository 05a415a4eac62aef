#pragma once
// A display stand-in for mask edits: an image list, a controller whose files live in a local
// folder (downloads and uploads), and a record of everything the edit asked of the display.

#include "imagedisplay/loading/ImageList.h"
#include "loading/FakeFiles.h"
#include "mask/MaskHost.h"

#include <QFile>
#include <QMap>
#include <QStringList>

#include <vector>

namespace nxr::testing {

class UploadingFiles : public FakeFiles
{
public:
    using FakeFiles::FakeFiles;
    QString failUploads; // an upload error to give, when set
    int uploads = 0;

    bool copyToController(const QString& localPath, const QString&, const QString& controllerPath,
                          const QString&, const QString&, QString* error) override
    {
        ++uploads;
        if (!failUploads.isEmpty()) {
            *error = failUploads;
            return false;
        }
        QFile in(localPath);
        if (!in.open(QIODevice::ReadOnly)) {
            *error = QStringLiteral("no local file");
            return false;
        }
        put(controllerPath, in.readAll());
        return true;
    }
};

class FakeMaskHost : public MaskHost
{
public:
    explicit FakeMaskHost(const QString& controllerRoot) : files(controllerRoot) {}

    ImageList list;
    UploadingFiles files;
    bool repaint = true;
    bool batch = false;
    int redraws = 0;
    bool controlsShown = false;
    std::vector<QRect> viewChanges;
    QMap<QString, QString> paletteKeys{{"SelectedTool", "0"}, {"SelectedToolSize", "1"}};
    QMap<QString, QString> viewKeys{{"ActiveMouseCursor", "3"}};
    QStringList errors;
    std::vector<bool> exits;
    std::vector<bool> repaintDuringLoad;

    ImageList& imageList() override { return list; }
    ControllerFiles& controllerFiles() override
    {
        repaintDuringLoad.push_back(repaint);
        return files;
    }
    bool autoRepaint() const override { return repaint; }
    void setAutoRepaint(bool on) override { repaint = on; }
    bool inBatchUpdate() const override { return batch; }
    void resetAndRedraw() override { ++redraws; }
    void editMaskChanged(const QRect& changed) override { viewChanges.push_back(changed); }
    void repaintEditArea(const QRectF&) override {}
    void showMaskEditControls(bool show) override { controlsShown = show; }
    void setBusyPointer(bool) override {}
    QString maskToolProperty(const QString& key) override { return paletteKeys.value(key); }
    void setMaskToolProperty(const QString& key, const QString& value) override { paletteKeys[key] = value; }
    QString viewButtonProperty(const QString& key) override { return viewKeys.value(key); }
    void setViewButtonProperty(const QString& key, const QString& value) override { viewKeys[key] = value; }
    void reportError(const QString&, const QString& text) override { errors << text; }
    void showCriticalMessage(const QString&) override {}
    void raiseExitMaskEditMode(bool accepted) override { exits.push_back(accepted); }
};

} // namespace nxr::testing
