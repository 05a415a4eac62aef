#pragma once
// The image display's status line: the zoom, and the image pixel under the mouse.

#include "frame/Export.h"
#include "frame/ScriptableWidget.h"

class QLabel;

class NXR_EXPORT NXRStatusBar : public nxr::ScriptableWidget
{
    Q_OBJECT
    Q_CLASSINFO("Description", "Status line of the image display: zoom and the pixel under the mouse")

public:
    explicit NXRStatusBar(QWidget* parent = nullptr);

    // Shows the zoom followed by "%": whole zooms plainly ("200%"), others with one or two
    // decimals ("33.33%", "12.5%").
    Q_INVOKABLE void UpdateStatusBar(float VSng_Zoom);

    // The zoom as UpdateStatusBar writes it.
    static QString zoomText(float zoom);

    // The pixel under the mouse ("" hides it).
    void showPixel(const QString& text);
    QString zoomLabelText() const;
    QString pixelLabelText() const;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QLabel* m_zoom = nullptr;
    QLabel* m_pixel = nullptr;
};
