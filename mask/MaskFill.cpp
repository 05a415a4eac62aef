#include "mask/MaskFill.h"

#include <algorithm>
#include <climits>
#include <vector>

namespace nxr {

namespace {

struct Run
{
    qsizetype next;   // index of the pixel the walk back looks at now
    qsizetype step;   // index offset of one pixel along the run
    qsizetype across; // index offset of one pixel across the run, to the up or left side
    int length;       // pixels not yet walked back, `next` included
    int turns;
    bool vertical;
    bool hasUpOrLeft;    // the run is not on the image's first row (column run: first column)
    bool hasDownOrRight; // nor on its last
    bool secondSide;     // the up/left neighbour of `next` has been looked at
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
        // Pixels the run can still take beyond its start.
        int room = vertical ? (sign < 0 ? y : m_height - 1 - y) : (sign < 0 ? x : m_width - 1 - x);
        quint32* const bits = m_bits;
        const quint32 target = m_target, pen = m_pen;
        qsizetype at = qsizetype(y) * m_stride + x;
        int length = 1;
        bits[at] = pen;
        while (room-- > 0 && bits[at + step] == target) {
            at += step;
            bits[at] = pen;
            ++length;
        }
        const int lastX = vertical ? x : x + sign * (length - 1);
        const int lastY = vertical ? y + sign * (length - 1) : y;
        grow(x, y);
        grow(lastX, lastY);
        m_runs.push_back(Run{at, step, vertical ? 1 : m_stride, length, turns, vertical,
                             vertical ? x > 0 : y > 0, vertical ? x < m_width - 1 : y < m_height - 1, false});
    }

    void walk()
    {
        quint32* const bits = m_bits;
        const quint32 target = m_target;
        while (!m_runs.empty()) {
            Run& run = m_runs.back();
            qsizetype at = run.next;
            int length = run.length;
            bool second = run.secondSide;
            const qsizetype step = run.step, across = run.across;
            const bool hasA = run.hasUpOrLeft, hasB = run.hasDownOrRight;
            // Walks back over pixels with nothing to start, up to the next neighbour that starts a run.
            qsizetype start = -1;
            bool sideB = false;
            if (length > 0 && !second) {
                if (hasA && bits[at - across] == target)
                    start = at - across;
                second = true;
            }
            if (start < 0) {
                while (length > 0) {
                    // The up/left neighbour of `at` has been looked at: the down/right one, then one back.
                    const qsizetype here = at;
                    at -= step;
                    --length;
                    if (hasB && bits[here + across] == target) {
                        start = here + across;
                        sideB = true;
                        second = false;
                        break;
                    }
                    if (length > 0 && hasA && bits[at - across] == target) {
                        start = at - across;
                        second = true;
                        break;
                    }
                }
            }
            const int direction = run.vertical ? (sideB ? 1 : 0) : (sideB ? 3 : 2);
            if (start < 0) {
                m_runs.pop_back();
                continue;
            }
            run.next = at;
            run.length = length;
            run.secondSide = second;
            const int turns = run.turns + 1;
            // `run` may move when the new run is pushed.
            startRun(int(start % m_stride), int(start / m_stride), direction, turns);
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
