#pragma once
// A strip across the top of the page window that shows the page's last script error with its
// file and line (and how many there were), until the user dismisses it. The page's own layout
// is left alone: the strip lies over it and follows the window's width.

#include <QFrame>

class QLabel;
class QPushButton;

namespace nxr {

class ErrorBanner : public QFrame
{
    Q_OBJECT

public:
    explicit ErrorBanner(QWidget* pageWindow);

    // Shows `text` (FILE:LINE: MESSAGE) as the newest error.
    void showError(const QString& text);
    int errorCount() const { return m_count; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void place();

    QLabel* m_text;
    QPushButton* m_dismiss;
    int m_count = 0;
};

} // namespace nxr
