#pragma once
// Real mouse and key input for the view tests, and a picture file to load icons from.

#include <QAbstractItemView>
#include <QDir>
#include <QImage>
#include <QPainter>
#include <QTest>

namespace nxr::test {

inline void clickAt(QWidget* widget, QPoint point, Qt::MouseButton button = Qt::LeftButton)
{
    QTest::mouseClick(widget, button, Qt::NoModifier, point);
}

inline void doubleClickAt(QWidget* widget, QPoint point)
{
    // An item view answers a double click only on the item its press went to.
    QTest::mousePress(widget, Qt::LeftButton, Qt::NoModifier, point);
    QTest::mouseRelease(widget, Qt::LeftButton, Qt::NoModifier, point);
    QTest::mouseDClick(widget, Qt::LeftButton, Qt::NoModifier, point);
}

// A small picture written into dir, returned as its path.
inline QString writePicture(const QDir& dir, const QString& name, QColor color, int side = 32)
{
    QImage image(side, side, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setBrush(color);
    p.drawEllipse(1, 1, side - 2, side - 2);
    p.end();
    const QString path = dir.filePath(name);
    image.save(path);
    return path;
}

} // namespace nxr::test
