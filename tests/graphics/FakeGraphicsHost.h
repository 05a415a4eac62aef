#pragma once
// A display stand-in for the result graphics: records repaints and shown composites, serves
// controller files from memory.

#include "graphics/GraphicsHost.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>

namespace nxr::testing {

class FakeGraphicsHost : public GraphicsHost
{
public:
    int repaints = 0;
    QImage image;
    QImage composite;
    int composites = 0;
    bool editing = false;
    QMap<QString, QByteArray> controllerFiles;
    QStringList copiedTo;
    QStringList loadedImages;
    QMap<QString, QImage> imageFiles; // what loadImage shows

    void requestRepaint() override { ++repaints; }
    QImage currentImage() const override { return image; }
    void showComposite(const QImage& c) override
    {
        composite = c;
        ++composites;
    }
    bool copyFromController(const QString&, const QString& path, const QString&, const QString&,
                            const QString& localPath, QString* error) override
    {
        copiedTo << localPath;
        if (!controllerFiles.contains(path)) {
            *error = QStringLiteral("no such file");
            return false;
        }
        QDir().mkpath(QFileInfo(localPath).path());
        QFile f(localPath);
        if (!f.open(QIODevice::WriteOnly))
            return false;
        f.write(controllerFiles.value(path));
        return true;
    }
    bool loadImage(const QString&, const QString& path, const QString&, const QString&) override
    {
        loadedImages << path;
        if (!imageFiles.contains(path))
            return false;
        image = imageFiles.value(path);
        return true;
    }
    bool isEditingShape() const override { return editing; }
};

} // namespace nxr::testing
