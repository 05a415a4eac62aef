#include "imagedisplay/NXRStatusBar.h"

#include "frame/ClassRegistry.h"
#include "frame/Trace.h"

#include <QLabel>

#include <cmath>

NXR_REGISTER_CLASS(NXRStatusBar)

NXRStatusBar::NXRStatusBar(QWidget* parent) : ScriptableWidget(parent)
{
    m_zoom = new QLabel(this);
    m_zoom->setObjectName(QStringLiteral("lbl_Zoom"));
    m_zoom->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_pixel = new QLabel(this);
    m_pixel->setObjectName(QStringLiteral("lbl_Pixel"));
    m_pixel->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    setMinimumHeight(fontMetrics().height() + 4);
}

QString NXRStatusBar::zoomText(float zoom)
{
    const double value = double(zoom);
    if (value == std::floor(value))
        return QString::number(value, 'f', 0) + QLatin1Char('%');
    // "###0.0#": one decimal at least, two at most.
    QString text = QString::number(value, 'f', 2);
    if (text.endsWith(QLatin1Char('0')))
        text.chop(1);
    return text + QLatin1Char('%');
}

void NXRStatusBar::UpdateStatusBar(float VSng_Zoom)
{
    core().guard(QStringLiteral("UpdateStatusBar"), [&] {
        NXR_TRACE(QStringLiteral("NXRStatusBar"), QStringLiteral("UpdateStatusBar"),
                  QStringLiteral("Entered, zoom=") + nxr::fromSingle(VSng_Zoom));
        m_zoom->setText(zoomText(VSng_Zoom));
    });
}

void NXRStatusBar::showPixel(const QString& text)
{
    m_pixel->setText(text);
}

QString NXRStatusBar::zoomLabelText() const
{
    return m_zoom->text();
}

QString NXRStatusBar::pixelLabelText() const
{
    return m_pixel->text();
}

void NXRStatusBar::resizeEvent(QResizeEvent* event)
{
    ScriptableWidget::resizeEvent(event);
    const int zoomWidth = std::min(width(), fontMetrics().horizontalAdvance(QStringLiteral("00000.00%")) + 8);
    m_zoom->setGeometry(4, 0, zoomWidth, height());
    m_pixel->setGeometry(zoomWidth + 8, 0, std::max(0, width() - zoomWidth - 12), height());
}
