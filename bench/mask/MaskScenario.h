#pragma once
// Camera-sized masks and operation sequences for the mask benchmarks.

#include "mask/MaskEditor.h"

#include <QImage>
#include <QPainter>

#include <random>

namespace nxr::bench {

constexpr int kWidth = 2592;
constexpr int kHeight = 1944;

// A black (unmasked) mask with red holes of every size: the region a fill from (0, 0) covers.
inline QImage maskWithHoles(int holes = 400)
{
    QImage mask(kWidth, kHeight, QImage::Format_RGB32);
    mask.fill(qRgb(0, 0, 0));
    QPainter p(&mask);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(255, 0, 0));
    std::mt19937 rng(5);
    std::uniform_int_distribution<int> x(40, kWidth - 40), y(40, kHeight - 40), size(3, 120);
    for (int i = 0; i < holes; ++i) {
        const QRect r(x(rng), y(rng), size(rng), size(rng));
        i % 2 ? p.drawEllipse(r) : p.drawRect(r);
    }
    return mask;
}

// Paints `count` mixed operations through the editor's mouse and commands: strokes of every
// size, joined lines, rectangles, ellipses, fills now and then, a mask none and a mask all.
inline void paintMixed(MaskEditor& editor, int count, unsigned seed)
{
    std::mt19937 rng(seed);
    auto uni = [&](int a, int b) { return std::uniform_int_distribution<int>(a, b)(rng); };
    for (int i = 0; i < count; ++i) {
        const int kind = uni(0, 19);
        const int button = uni(0, 4) == 0 ? MaskEditor::RightButton : MaskEditor::LeftButton;
        editor.setToolSize(uni(0, 2));
        const QPointF a(uni(0, kWidth - 1), uni(0, kHeight - 1));
        if (i == count / 3) {
            editor.command(KSEMaskCommand_MaskNone);
        } else if (i == count / 2) {
            editor.command(KSEMaskCommand_MaskAll);
        } else if (kind < 7) {
            editor.setTool(KSEMaskTool_Freehand);
            editor.press(a, button, 0);
            QPointF at = a;
            for (int k = 0; k < 30; ++k) {
                at += QPointF(uni(-12, 12), uni(-12, 12));
                editor.move(at);
            }
            editor.release(at, button, 0);
        } else if (kind < 10) {
            editor.setTool(KSEMaskTool_JoinedLine);
            for (int k = 0; k < 4; ++k) {
                const QPointF p(uni(0, kWidth - 1), uni(0, kHeight - 1));
                editor.press(p, button, 0);
                editor.release(p, button, 0);
            }
            editor.doubleClick(a, button);
        } else if (kind < 19) {
            editor.setTool(kind < 14 ? KSEMaskTool_Rectangle : KSEMaskTool_Ellipse);
            const QPointF b = a + QPointF(uni(-300, 300), uni(-300, 300));
            editor.press(a, button, 0);
            editor.move(b);
            editor.release(b, button, 0);
        } else {
            editor.setTool(KSEMaskTool_Fill);
            editor.press(a, button, 0);
            editor.release(a, button, 0);
        }
    }
}

} // namespace nxr::bench
