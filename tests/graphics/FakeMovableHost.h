#pragma once
// A display stand-in for the movable shapes: records repaints, view-button properties, the mouse
// mode, edit-mode changes with their outcomes, and errors as the display would word them.

#include "graphics/MovableHost.h"

#include <QStringList>
#include <QVector>

namespace nxr::testing {

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
    QStringList traces;

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
    void trace(const QString& routine, const QString& message) override
    {
        traces << routine + ": " + message;
    }
};

} // namespace nxr::testing
