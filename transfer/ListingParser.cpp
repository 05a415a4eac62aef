#include "transfer/ListingParser.h"

namespace nxr {

namespace {
const QString kEndMarker = QStringLiteral("#####");
const QString kLineEnd = QStringLiteral("\r\n");
} // namespace

DirectoryListing parseLongListing(const QString& response)
{
    DirectoryListing result;
    if (response.isEmpty()) {
        result.files = QStringList{QString()};
        result.folders = QStringList{QString()};
        return result;
    }
    QString text = response;
    text.replace(QStringLiteral("\r\n\r\n"), kLineEnd);
    text = text.toUpper() + kEndMarker;
    const QStringList lines = text.split(kLineEnd);
    result.files.reserve(lines.size());
    result.folders.reserve(lines.size());
    for (const QString& raw : lines) {
        const QString line = raw.trimmed();
        const QStringList fields = line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        if (fields.size() != 9)
            continue;
        QString name = fields.last();
        if (name.endsWith(kEndMarker))
            name.chop(kEndMarker.size());
        if (name.isEmpty() || name == kEndMarker || name == QLatin1String("..") ||
            name == QLatin1String(".") || name.contains(QLatin1Char('*')))
            continue;
        (line.startsWith(QLatin1Char('D')) ? result.folders : result.files).append(name);
    }
    if (result.files.isEmpty())
        result.files = QStringList(lines.size(), QString());
    if (result.folders.isEmpty())
        result.folders = QStringList(lines.size(), QString());
    return result;
}

} // namespace nxr
