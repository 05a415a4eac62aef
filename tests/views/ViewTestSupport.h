#pragma once
// Real mouse and key input for the view tests, a picture file to load icons from, and the run
// of a table of failing calls.

#include <QAbstractItemView>
#include <QDir>
#include <QImage>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <functional>
#include <span>

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

// A call that must fail, and the error text it must leave.
struct FailingCall
{
    std::function<void()> call;
    QString text;
};

// Each call raises one error event, leaves its text in LastErrorString (the member and the key)
// and leaves state() as it was.
template <typename Control, typename State>
void expectEachFails(Control& control, const QSignalSpy& errors, std::span<const FailingCall> calls,
                     State state)
{
    const auto before = state();
    for (const FailingCall& c : calls) {
        const auto errorsBefore = errors.count();
        c.call();
        EXPECT_EQ(control.LastErrorString(), c.text);
        EXPECT_EQ(control.GetProperty("LastErrorString"), c.text);
        EXPECT_EQ(errors.count(), errorsBefore + 1) << c.text.toStdString();
        EXPECT_EQ(state(), before) << c.text.toStdString();
    }
}

} // namespace nxr::test
