#include "views/ItemColors.h"

#include <QApplication>
#include <QBrush>
#include <QColor>
#include <QPalette>

namespace nxr::views {

QVariant textBrush(qint32 color)
{
    const quint32 bits = quint32(color);
    if (bits & 0x80000000u) {
        switch (bits & 0xFFu) {
        case 5: // window background
            return QBrush(QApplication::palette().color(QPalette::Base));
        case 13: // highlight
            return QBrush(QApplication::palette().color(QPalette::Highlight));
        case 14: // highlighted text
            return QBrush(QApplication::palette().color(QPalette::HighlightedText));
        case 17: // grey (disabled) text
            return QBrush(QApplication::palette().color(QPalette::Disabled, QPalette::Text));
        default: // window text and the rest: the view's own text colour
            return QVariant();
        }
    }
    return QBrush(QColor(int(bits & 0xFF), int((bits >> 8) & 0xFF), int((bits >> 16) & 0xFF)));
}

} // namespace nxr::views
