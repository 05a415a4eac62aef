#include "designer/ControlCatalog.h"

#include "frame/ClassRegistry.h"

#include <QFont>
#include <QMetaClassInfo>
#include <QPainter>
#include <QPixmap>
#include <QRegularExpression>
#include <QWidget>

namespace nxr::designer {
namespace {

QString classInfo(const QMetaObject* meta, const char* name)
{
    const int index = meta ? meta->indexOfClassInfo(name) : -1;
    return index < 0 ? QString() : QString::fromUtf8(meta->classInfo(index).value());
}

QString withoutPrefix(const QString& className)
{
    return className.startsWith(QLatin1String("NXR")) ? className.mid(3) : className;
}

} // namespace

QStringList controlClasses()
{
    const ClassRegistry& registry = ClassRegistry::instance();
    QStringList result;
    for (const QString& name : registry.names())
        if (registry.isWidget(name))
            result << name;
    return result;
}

QString defaultObjectName(const QString& className)
{
    const QString base = withoutPrefix(className);
    return QStringLiteral("ctl_") + (base.isEmpty() ? className : base);
}

QString description(const QMetaObject* meta)
{
    const QString text = classInfo(meta, "Description");
    if (!text.isEmpty())
        return text;
    return QStringLiteral("%1, a scriptable control of NexaroControls")
        .arg(meta ? QString::fromLatin1(meta->className()) : QStringLiteral("A control"));
}

QSize defaultSize(const QMetaObject* meta, const QWidget* instance)
{
    static const QRegularExpression pattern(QStringLiteral("^\\s*(\\d+)\\s*,\\s*(\\d+)\\s*$"));
    const QRegularExpressionMatch match = pattern.match(classInfo(meta, "DefaultSize"));
    QSize size(match.captured(1).toInt(), match.captured(2).toInt());
    if (!match.hasMatch() || size.isEmpty()) {
        const QSize hint = instance ? instance->sizeHint() : QSize();
        size = !hint.isValid() || hint.isEmpty() ? QSize(200, 100)
                                                 : hint.expandedTo(QSize(60, 20)).boundedTo(QSize(800, 600));
    }
    // The control's own limits win: a control with a minimum gets it, one that is invisible at
    // run time (a fixed 0x0) stays so.
    if (instance)
        size = size.expandedTo(instance->minimumSize()).boundedTo(instance->maximumSize());
    return size;
}

QString domXml(const QString& className, const QSize& size)
{
    return QStringLiteral("<ui language=\"c++\">\n"
                          " <widget class=\"%1\" name=\"%2\">\n"
                          "  <property name=\"geometry\">\n"
                          "   <rect><x>0</x><y>0</y><width>%3</width><height>%4</height></rect>\n"
                          "  </property>\n"
                          " </widget>\n"
                          "</ui>\n")
        .arg(className, defaultObjectName(className))
        .arg(size.width())
        .arg(size.height());
}

QIcon icon(const QString& className)
{
    // Initials of the words of the name: "ImageDisplay" gives "ID", "FileTransferCtl" "FTC".
    QString initials;
    const QString base = withoutPrefix(className);
    for (qsizetype i = 0; i < base.size() && initials.size() < 3; ++i)
        if (base.at(i).isUpper() || base.at(i).isDigit() || i == 0)
            initials += base.at(i).toUpper();
    const QColor colour = QColor::fromHsv(int(qHash(className) % 360), 150, 170);

    QIcon result;
    for (const int side : {16, 32, 64}) {
        QPixmap pixmap(side, side);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(colour.darker(150));
        painter.setBrush(colour);
        painter.drawRoundedRect(QRectF(0.5, 0.5, side - 1, side - 1), side / 6.0, side / 6.0);
        QFont font;
        font.setBold(true);
        font.setPixelSize(qMax(6, side * (initials.size() > 2 ? 3 : 4) / 10));
        painter.setFont(font);
        painter.setPen(Qt::white);
        painter.drawText(QRect(0, 0, side, side), Qt::AlignCenter, initials);
        painter.end();
        result.addPixmap(pixmap);
    }
    return result;
}

} // namespace nxr::designer
