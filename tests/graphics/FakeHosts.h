#pragma once
// Display stand-ins. FakeGraphicsHost, for the result graphics: records repaints and shown
// composites, serves controller files from memory. FakeMovableHost, for the movable shapes:
// records repaints, view-button properties, the mouse mode, edit-mode changes with their outcomes,
// and errors as the display would word them.

#include "graphics/GraphicsHost.h"
#include "graphics/MovableHost.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QStringList>
#include <QVector>

namespace nxr::testing {

class FakeGraphicsHost : public GraphicsHost
{
public:
    int repaints = 0;
    QImage image, composite;
    bool editing = false;
    QMap<QString, QByteArray> controllerFiles;
    QStringList copiedTo, loadedImages;
    QMap<QString, QImage> imageFiles; // what loadImage shows

    void requestRepaint() override { ++repaints; }
    QImage currentImage() const override { return image; }
    void showComposite(const QImage& c) override { composite = c; }
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
        return f.open(QIODevice::WriteOnly) && f.write(controllerFiles.value(path)) >= 0;
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

class FakeMovableHost : public MovableHost
{
public:
    int repaints = 0;
    QVector<QRectF> repaintAreas;
    QStringList buttonProperties; // "key=value"
    int mode = 2;
    bool maskEditing = false;
    MovableShapeEditor* activeEditor = nullptr;
    QVector<MovableShape> entered;
    QVector<std::pair<MovableShape, bool>> left;
    QStringList errors;

    void requestRepaint(const QRectF& area) override
    {
        ++repaints;
        repaintAreas << area;
    }
    void setViewButtonsProperty(const QString& key, const QString& value) override
    {
        buttonProperties << key + "=" + value;
    }
    int mouseMode() const override { return mode; }
    void setMouseMode(int m) override { mode = m; }
    bool otherEditActive() const override { return maskEditing; }
    void enterEditMode(MovableShape shape, MovableShapeEditor& editor) override
    {
        entered << shape;
        activeEditor = &editor;
    }
    void leaveEditMode(MovableShape shape, bool accepted) override
    {
        left << std::pair{shape, accepted};
        activeEditor = nullptr;
    }
    void fail(const QString& routine, const QString& description) override
    {
        errors << "Error in " + routine + ": " + description;
    }
    void trace(const QString&, const QString&) override {}
};

} // namespace nxr::testing
