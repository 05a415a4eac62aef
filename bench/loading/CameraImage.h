#pragma once
// A camera-like test picture for the loading benchmarks.

#include <QImage>
#include <QPainter>
#include <QRandomGenerator>

namespace nxr::bench {

// Smooth shading, a few hard-edged parts and sensor noise, at the given size.
inline QImage cameraImage(int width, int height, bool colour)
{
    QImage img(width, height, QImage::Format_RGB32);
    QPainter p(&img);
    QLinearGradient g(0, 0, width, height);
    g.setColorAt(0, QColor(40, 50, 70));
    g.setColorAt(1, QColor(210, 190, 160));
    p.fillRect(img.rect(), g);
    p.setBrush(QColor(230, 80, 40));
    p.drawEllipse(QPoint(width / 3, height * 2 / 5), height / 6, height / 6);
    p.setBrush(QColor(30, 140, 60));
    p.drawRect(width * 3 / 5, height / 6, width / 4, height / 2);
    p.end();
    QRandomGenerator rng(7);
    for (int y = 0; y < img.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(img.scanLine(y));
        for (int x = 0; x < img.width(); ++x) {
            const int n = int(rng.bounded(9)) - 4;
            const QRgb c = line[x];
            line[x] = qRgb(qBound(0, qRed(c) + n, 255), qBound(0, qGreen(c) + n, 255),
                           qBound(0, qBlue(c) + n, 255));
        }
    }
    return colour ? img : img.convertToFormat(QImage::Format_Grayscale8);
}

} // namespace nxr::bench
