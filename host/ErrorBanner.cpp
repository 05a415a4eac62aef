#include "host/ErrorBanner.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace nxr {

ErrorBanner::ErrorBanner(QWidget* pageWindow) : QFrame(pageWindow)
{
    setObjectName(QStringLiteral("host_ErrorBanner"));
    setAutoFillBackground(true);
    QPalette colours = palette();
    colours.setColor(QPalette::Window, QColor(0xb0, 0x1e, 0x1e));
    colours.setColor(QPalette::WindowText, Qt::white);
    setPalette(colours);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 4, 4, 4);
    m_text = new QLabel(this);
    m_text->setObjectName(QStringLiteral("lbl_Error"));
    m_text->setWordWrap(true);
    m_text->setTextFormat(Qt::PlainText);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_dismiss = new QPushButton(QStringLiteral("\u00d7"), this);
    m_dismiss->setObjectName(QStringLiteral("cmd_Dismiss"));
    m_dismiss->setToolTip(QStringLiteral("Dismiss"));
    m_dismiss->setFlat(true);
    m_dismiss->setFixedWidth(28);
    layout->addWidget(m_text, 1);
    layout->addWidget(m_dismiss, 0, Qt::AlignTop);
    connect(m_dismiss, &QPushButton::clicked, this, &QWidget::hide);
    pageWindow->installEventFilter(this);
    hide();
}

void ErrorBanner::showError(const QString& text)
{
    ++m_count;
    m_text->setText(
        m_count == 1
            ? text
            : QStringLiteral("%1\n(%2 script errors; the others are on the console)").arg(text).arg(m_count));
    place();
    show();
    raise();
}

void ErrorBanner::place()
{
    const int width = parentWidget()->width();
    setGeometry(0, 0, width, heightForWidth(width) > 0 ? heightForWidth(width) : sizeHint().height());
}

bool ErrorBanner::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize && isVisible())
        place();
    return QFrame::eventFilter(watched, event);
}

} // namespace nxr
