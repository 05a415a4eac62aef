#include "host/FormResources.h"

#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <functional>

namespace nxr::FormResources {
namespace {

bool isPictureElement(QStringView name)
{
    return name == QLatin1String("pixmap") || name == QLatin1String("iconset") ||
           name == QLatin1String("normaloff") || name == QLatin1String("normalon") ||
           name == QLatin1String("disabledoff") || name == QLatin1String("disabledon") ||
           name == QLatin1String("activeoff") || name == QLatin1String("activeon") ||
           name == QLatin1String("selectedoff") || name == QLatin1String("selectedon");
}

bool isQtResource(const QString& name)
{
    return name.startsWith(QLatin1String(":/")) || name.startsWith(QLatin1String("qrc:"));
}

// Walks the form; `onName` sees the trimmed text of every picture element and says what to write
// instead. False when the form is not readable XML.
bool walk(const QByteArray& form, QByteArray* out, const std::function<QString(const QString&)>& onName)
{
    QXmlStreamReader reader(form);
    QXmlStreamWriter writer(out);
    QList<bool> inPicture;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.hasError())
            return false;
        if (reader.isStartElement())
            inPicture << isPictureElement(reader.name());
        else if (reader.isEndElement() && !inPicture.isEmpty())
            inPicture.removeLast();
        if (reader.isCharacters() && !reader.isWhitespace() && !inPicture.isEmpty() && inPicture.last()) {
            const QString name = reader.text().toString().trimmed();
            writer.writeCharacters(isQtResource(name) ? name : onName(name));
            continue;
        }
        writer.writeCurrentToken(reader);
    }
    return true;
}

} // namespace

QStringList references(const QByteArray& form)
{
    QStringList names;
    QByteArray ignored;
    walk(form, &ignored, [&names](const QString& name) {
        if (!names.contains(name))
            names << name;
        return name;
    });
    return names;
}

QByteArray rewritten(const QByteArray& form, const QMap<QString, QString>& localFiles)
{
    QByteArray out;
    if (!walk(form, &out, [&localFiles](const QString& name) { return localFiles.value(name); }))
        return form; // the form loader reports what it cannot read; it reads no pictures either
    return out;
}

} // namespace nxr::FormResources
