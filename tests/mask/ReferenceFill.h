#pragma once
// The mask fill written the plain way, recursing once per run, for checking the library's fill
// against it. Recursion depth is bounded by the turn limit, so the thread's stack suffices.

#include "mask/MaskFill.h"

#include <QImage>

namespace nxr::testing {

class ReferenceFill
{
public:
    ReferenceFill(QImage& image, QRgb pen) : m_image(image), m_pen(pen) {}

    void fillAt(int x, int y)
    {
        if (!m_image.rect().contains(x, y))
            return;
        m_target = pixel(x, y);
        if (m_target == m_pen)
            return;
        fill(x, y, 0, 1);
        if (x + 1 < m_image.width() && pixel(x + 1, y) == m_target)
            fill(x + 1, y, 1, 1);
    }

private:
    QRgb pixel(int x, int y) const { return reinterpret_cast<const QRgb*>(m_image.constScanLine(y))[x]; }
    bool isTarget(int x, int y) const { return m_image.rect().contains(x, y) && pixel(x, y) == m_target; }

    // depth: 1 for the runs from the seed, one more per turn.
    void fill(int x, int y, int direction, int depth)
    {
        if (depth > kMaskFillMaxTurns)
            return;
        static const int dx[] = {-1, 1, 0, 0}, dy[] = {0, 0, -1, 1};
        int endX = x, endY = y;
        while (isTarget(endX + dx[direction], endY + dy[direction])) {
            endX += dx[direction];
            endY += dy[direction];
        }
        for (int px = x, py = y;; px += dx[direction], py += dy[direction]) {
            reinterpret_cast<QRgb*>(m_image.scanLine(py))[px] = m_pen;
            if (px == endX && py == endY)
                break;
        }
        const int across[2] = {direction < 2 ? 2 : 0, direction < 2 ? 3 : 1};
        for (int px = endX, py = endY;; px -= dx[direction], py -= dy[direction]) {
            for (int a : across)
                if (isTarget(px + dx[a], py + dy[a]))
                    fill(px + dx[a], py + dy[a], a, depth + 1);
            if (px == x && py == y)
                break;
        }
    }

    QImage& m_image;
    QRgb m_pen;
    QRgb m_target = 0;
};

} // namespace nxr::testing
