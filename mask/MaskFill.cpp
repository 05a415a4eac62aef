#include "mask/MaskFill.h"

#include <algorithm>
#include <climits>
#include <vector>

namespace nxr {

namespace {

struct Run
{
    qsizetype start;  // index of the first pixel
    qsizetype step;   // index offset of one pixel along the run
    qsizetype next;   // index of the pixel the walk back looks at now
    qsizetype across; // index offset of one pixel across the run (to the up or left side)
    int x, y;         // position of `next`
    int length;       // pixels not yet walked back, `next` included
    int turns;
    bool vertical;
    bool secondSide; // the up/left neighbour of `next` has been looked at
};

class Filler
{
public:
    Filler(QImage& image, QRgb target, QRgb pen)
        : m_bits(reinterpret_cast<quint32*>(image.bits())), m_stride(image.bytesPerLine() / 4),
          m_width(image.width()), m_height(image.height()), m_target(target), m_pen(pen)
    {
        m_runs.reserve(64);
    }

    // Paints the run from (x, y) in `direction` (0 left, 1 right, 2 up, 3 down) and queues its
    // walk back, unless it lies too many turns away.
    void startRun(int x, int y, int direction, int turns)
    {
        if (turns >= kMaskFillMaxTurns)
            return;
        const bool vertical = direction >= 2;
        const int sign = (direction == 0 || direction == 2) ? -1 : 1;
        const qsizetype step = vertical ? sign * m_stride : sign;
        const qsizetype start = qsizetype(y) * m_stride + x;
        // Pixels the run can still take beyond its start.
        int room = vertical ? (sign < 0 ? y : m_height - 1 - y) : (sign < 0 ? x : m_width - 1 - x);
        qsizetype at = start;
        int length = 1;
        m_bits[at] = m_pen;
        while (room-- > 0 && m_bits[at + step] == m_target) {
            at += step;
            m_bits[at] = m_pen;
            ++length;
        }
        const int lastX = vertical ? x : x + sign * (length - 1);
        const int lastY = vertical ? y + sign * (length - 1) : y;
        grow(x, y);
        grow(lastX, lastY);
        m_runs.push_back(
            Run{start, step, at, vertical ? 1 : m_stride, lastX, lastY, length, turns, vertical, false});
    }

    void walk()
    {
        while (!m_runs.empty()) {
            Run& run = m_runs.back();
            if (run.length == 0) {
                m_runs.pop_back();
                continue;
            }
            const int x = run.x, y = run.y, turns = run.turns;
            const qsizetype at = run.next;
            if (!run.secondSide) {
                run.secondSide = true;
                // Up of a row run, left of a column run.
                if (run.vertical ? (x > 0 && m_bits[at - 1] == m_target)
                                 : (y > 0 && m_bits[at - m_stride] == m_target)) {
                    if (run.vertical)
                        startRun(x - 1, y, 0, turns + 1);
                    else
                        startRun(x, y - 1, 2, turns + 1);
                }
                continue;
            }
            // Down of a row run, right of a column run; then one pixel back.
            const bool vertical = run.vertical;
            const qsizetype step = run.step;
            run.secondSide = false;
            run.next -= step;
            --run.length;
            if (vertical)
                run.y -= step > 0 ? 1 : -1;
            else
                run.x -= step > 0 ? 1 : -1;
            // `run` may move when a run is pushed: nothing of it is used below.
            if (vertical ? (x < m_width - 1 && m_bits[at + 1] == m_target)
                         : (y < m_height - 1 && m_bits[at + m_stride] == m_target)) {
                if (vertical)
                    startRun(x + 1, y, 1, turns + 1);
                else
                    startRun(x, y + 1, 3, turns + 1);
            }
        }
    }

    bool isTarget(int x, int y) const { return m_bits[qsizetype(y) * m_stride + x] == m_target; }
    QRect painted() const
    {
        return m_minX > m_maxX ? QRect() : QRect(QPoint(m_minX, m_minY), QPoint(m_maxX, m_maxY));
    }

private:
    void grow(int x, int y)
    {
        m_minX = std::min(m_minX, x), m_maxX = std::max(m_maxX, x);
        m_minY = std::min(m_minY, y), m_maxY = std::max(m_maxY, y);
    }

    quint32* m_bits;
    qsizetype m_stride;
    int m_width, m_height;
    quint32 m_target, m_pen;
    std::vector<Run> m_runs;
    int m_minX = INT_MAX, m_minY = INT_MAX, m_maxX = INT_MIN, m_maxY = INT_MIN;
};

} // namespace

QRect floodFillMask(QImage& image, const QPoint& seed, QRgb pen)
{
    if (image.depth() != 32 || !image.rect().contains(seed))
        return {};
    const QRgb target = reinterpret_cast<const quint32*>(image.constScanLine(seed.y()))[seed.x()];
    if (target == pen)
        return {};
    Filler filler(image, target, pen);
    filler.startRun(seed.x(), seed.y(), 0, 0);
    filler.walk();
    if (seed.x() + 1 < image.width() && filler.isTarget(seed.x() + 1, seed.y())) {
        filler.startRun(seed.x() + 1, seed.y(), 1, 0);
        filler.walk();
    }
    return filler.painted();
}

} // namespace nxr
