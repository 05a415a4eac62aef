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
        const QStringView line = QStringView(raw).trimmed();
        // Count the space-separated fields and keep the last one.
        int fields = 0;
        QStringView last;
        qsizetype i = 0;
        const qsizetype n = line.size();
        while (i < n) {
            while (i < n && line[i] == QLatin1Char(' '))
                ++i;
            if (i == n)
                break;
            const qsizetype start = i;
            while (i < n && line[i] != QLatin1Char(' '))
                ++i;
            ++fields;
            last = line.mid(start, i - start);
        }
        if (fields != 9)
            continue;
        if (last.endsWith(kEndMarker))
            last.chop(kEndMarker.size());
        if (last.isEmpty() || last == kEndMarker || last == QLatin1String("..") ||
            last == QLatin1String(".") || last.contains(QLatin1Char('*')))
            continue;
        (line.startsWith(QLatin1Char('D')) ? result.folders : result.files).append(last.toString());
    }
    if (result.files.isEmpty())
        result.files = QStringList(lines.size(), QString());
    if (result.folders.isEmpty())
        result.folders = QStringList(lines.size(), QString());
    return result;
}

} // namespace nxr
