#pragma once
// The image display's movable shapes: a window, a cursor, a line and a line pair that the page
// places, shows and hands to the operator for editing, and reads back. The display's public
// members of these shapes forward here one line each; the shapes' items live in the display's
// graphics collection under fixed keys, and the edited shape is drawn by the editor with its
// handles. Screen-free; the display is reached through MovableHost.

#include "frame/Export.h"
#include "graphics/MovableShapeEditor.h"
#include "graphics/MoveableGraphics.h"

#include <QString>

class QPainter;

namespace nxr {

class MovableHost;
class clsOverlayCollection;
struct ScreenMapping;

class NXR_EXPORT MovableShapes : private MovableEditorSink
{
public:
    static constexpr const char* kWindowKey = "MovableWindow";
    static constexpr const char* kCursorKey = "MovableCursor";
    static constexpr const char* kLineKey = "MovableLine";
    static constexpr const char* kLinePairKey = "MovableLinePair";
    // The view button the shapes' enabling properties switch: the window reset.
    static constexpr int kWindowResetButton = 13;
    static constexpr int kPointerMouseMode = 1;
    // Coordinates and sizes beyond this (image pixels) are refused.
    static constexpr double kLargest = 1.0e6;
    static constexpr qint32 kDefaultWindowColor = 0x00FF00;
    static constexpr qint32 kDefaultCursorColor = 0x0000FF;
    static constexpr qint32 kDefaultLineColor = 0x00FFFF;

    static QString keyOf(MovableShape shape);

    MovableShapes(MovableHost& host, clsOverlayCollection& graphics);
    ~MovableShapes() override;
    MovableShapes(const MovableShapes&) = delete;
    MovableShapes& operator=(const MovableShapes&) = delete;

    clsMoveableGraphics& model() { return m_model; }
    const clsMoveableGraphics& model() const { return m_model; }
    MovableShapeEditor& editor() { return m_editor; }

    // Window.
    void SetMovableWindow(double top, double left, double height, double width, double angle, bool rotatable);
    void EditMovableWindow();
    void ShowMovableWindow(qint32 color);
    double MovableWindowTop() const { return m_model.Window.Top; }
    double MovableWindowLeft() const { return m_model.Window.Left; }
    double MovableWindowHeight() const { return m_model.Window.Height; }
    double MovableWindowWidth() const { return m_model.Window.Width; }
    double MovableWindowAngle() const { return m_model.Window.Angle; }
    bool MovableWindowVisible() const;
    void setMovableWindowVisible(bool visible);

    // Cursor.
    void SetMovableCursor(double x, double y);
    void EditMovableCursor();
    void ShowMovableCursor(bool show);
    double MovableCursorX() const { return m_model.Cursor.X(); }
    double MovableCursorY() const { return m_model.Cursor.Y(); }
    bool MovableCursorVisible() const;
    void setMovableCursorVisible(bool visible);
    qint32 MovableCursorColor() const { return m_cursorColor; }
    void setMovableCursorColor(qint32 color);
    // Whether the operator may move the cursor in its edit mode (True at first); a fixed cursor
    // is shown and its edit mode only ends.
    bool MoveableCursor() const { return m_editor.cursorMovable(); }
    void setMoveableCursor(bool movable);

    // Line. The arrow flag gives the line a head at its second end. The line and the line pair
    // are one line of the model, read back through either.
    void SetMovableLine(double x1, double y1, double x2, double y2, bool arrowed);
    void EditMovableLine();
    void ShowMovableLine(bool show);
    bool MovableLineVisible() const;
    void setMovableLineVisible(bool visible);
    // Endpoint 1 or 2, coordinate "X" or "Y"; anything else reports "invalid parameters" and
    // gives 0.
    double MovableLineEndpoint(int endpoint, const QString& xOrY);

    // Line pair. The starting width is kept within the pair's limits.
    void SetMovableLinePair(double x1, double y1, double x2, double y2, double startingWidth);
    void EditMovableLinePair();
    void ShowMovableLinePair(bool show);
    bool MovableLinePairVisible() const;
    void setMovableLinePairVisible(bool visible);
    double MovableLinePairEndpoint(int endpoint, const QString& xOrY);
    double MovableLinePairWidth() const { return m_model.Line.PairWidth; }
    // The "MinPairWidth" and "MaxPairWidth" keys; the width follows new limits.
    void setMinPairWidth(double value);
    void setMaxPairWidth(double value);

    // The enabling properties: the window reset button is enabled while any of them is on.
    bool MoveWindowEnabled() const { return m_enabled[0]; }
    bool MoveCursorEnabled() const { return m_enabled[1]; }
    bool MoveLineEnabled() const { return m_enabled[2]; }
    bool MoveLinePairEnabled() const { return m_enabled[3]; }
    void setMoveWindowEnabled(bool enabled) { setEnabled(0, QStringLiteral("MoveWindowEnabled"), enabled); }
    void setMoveCursorEnabled(bool enabled) { setEnabled(1, QStringLiteral("MoveCursorEnabled"), enabled); }
    void setMoveLineEnabled(bool enabled) { setEnabled(2, QStringLiteral("MoveLineEnabled"), enabled); }
    void setMoveLinePairEnabled(bool enabled)
    {
        setEnabled(3, QStringLiteral("MoveLinePairEnabled"), enabled);
    }

    // The edit in progress.
    MovableShape editedShape() const { return m_editor.shape(); }
    bool isEditing() const { return m_editor.active(); }
    bool isEditing(MovableShape shape) const { return m_editor.shape() == shape; }
    // The key the graphics painting leaves to the editor; empty while nothing is edited.
    QString editedKey() const { return keyOf(m_editor.shape()); }
    // The window reset button: the edited shape goes back to where its edit began.
    void resetEdited();
    // OK (true) or Cancel (false) of the edit bar.
    void finishEdit(bool accepted);
    // The edited shape with its handles; the display paints it after the graphics.
    void paintEdited(QPainter& painter, const ScreenMapping& mapping, const QRect& dirty) const;

private:
    void shapeChanged(MovableShape shape, const QRectF& imageArea) override;
    void repaintArea(const QRectF& imageArea) override;
    void editFinished(MovableShape shape, bool accepted) override;

    template <typename Body> void run(const QString& routine, Body&& body);
    void beginEdit(const QString& routine, MovableShape shape, qint32 color);
    bool visible(MovableShape shape) const;
    void setVisible(MovableShape shape, bool visible);
    // Replaces the shape's item with its current geometry when it is shown.
    void syncItem(MovableShape shape);
    void addItem(MovableShape shape);
    qint32 colorOf(MovableShape shape) const;
    double endpoint(const QString& routine, int endpoint, const QString& xOrY);
    void setEnabled(int index, const QString& routine, bool enabled);

    MovableHost& m_host;
    clsOverlayCollection& m_graphics;
    clsMoveableGraphics m_model;
    MovableShapeEditor m_editor;
    qint32 m_windowColor = kDefaultWindowColor;
    qint32 m_cursorColor = kDefaultCursorColor;
    qint32 m_lineColor = kDefaultLineColor;
    bool m_enabled[4] = {false, false, false, false};
    // The mouse mode and visibility before the edit, given back when it ends.
    int m_modeBefore = kPointerMouseMode;
    bool m_visibleBefore = false;
};

} // namespace nxr
