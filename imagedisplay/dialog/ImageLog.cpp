#include "imagedisplay/dialog/ImageLog.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLocale>

#include <algorithm>

namespace nxr {
namespace {

// Parses the written forms of dates and times that logs use; an invalid value when none fits.
QDateTime parseStamp(const QString& text)
{
    static const QStringList dateTimeFormats{
        QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz"), QStringLiteral("yyyy-MM-ddTHH:mm:ss"),
        QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz"), QStringLiteral("yyyy-MM-dd HH:mm:ss"),
        QStringLiteral("yyyy/MM/dd HH:mm:ss")};
    static const QStringList dateFormats{QStringLiteral("yyyy-MM-dd"),  QStringLiteral("yyyy/MM/dd"),
                                         QStringLiteral("dd.MM.yyyy"),  QStringLiteral("MM/dd/yyyy"),
                                         QStringLiteral("dd-MMM-yyyy"), QStringLiteral("dd-MMM-yy"),
                                         QStringLiteral("yyyyMMdd")};
    static const QStringList timeFormats{QStringLiteral("HH:mm:ss.zzz"), QStringLiteral("HH:mm:ss"),
                                         QStringLiteral("H:mm:ss"), QStringLiteral("HH:mm"),
                                         QStringLiteral("HHmmss")};
    const QString t = text.trimmed();
    const QLocale c = QLocale::c();
    for (const QString& f : dateTimeFormats) {
        const QDateTime dt = c.toDateTime(t, f);
        if (dt.isValid())
            return dt;
    }
    for (const QString& f : dateFormats) {
        QString s = t;
        if (f.contains(QStringLiteral("MMM")) && s.size() > 4)
            s = s.left(4) + s.mid(4, 2).toLower() + s.mid(6); // "22-NOV-26" -> "22-Nov-26", as written
                                                              // by the controller
        QDate d = c.toDate(s, f);
        if (d.isValid()) {
            if (f.endsWith(QStringLiteral("-yy")) && d.year() < 1970)
                d = d.addYears(100);
            return QDateTime(d, QTime(0, 0));
        }
    }
    for (const QString& f : timeFormats) {
        const QTime time = c.toTime(t, f);
        if (time.isValid())
            return QDateTime(QDate(2000, 1, 1), time);
    }
    return {};
}

// Compares texts with runs of digits taken as numbers ("run 9" before "run 10").
int naturalCompare(const QString& a, const QString& b)
{
    qsizetype i = 0;
    qsizetype j = 0;
    while (i < a.size() && j < b.size()) {
        if (a[i].isDigit() && b[j].isDigit()) {
            qsizetype ei = i;
            qsizetype ej = j;
            while (ei < a.size() && a[ei].isDigit())
                ++ei;
            while (ej < b.size() && b[ej].isDigit())
                ++ej;
            // Without leading zeros, a longer run is a bigger number; equal lengths compare as text.
            QStringView na = QStringView(a).mid(i, ei - i);
            QStringView nb = QStringView(b).mid(j, ej - j);
            while (na.size() > 1 && na[0] == u'0')
                na = na.mid(1);
            while (nb.size() > 1 && nb[0] == u'0')
                nb = nb.mid(1);
            if (na.size() != nb.size())
                return na.size() < nb.size() ? -1 : 1;
            if (const int c = na.compare(nb))
                return c;
            i = ei;
            j = ej;
            continue;
        }
        const int c = QString::compare(QString(a[i]), QString(b[j]), Qt::CaseInsensitive);
        if (c)
            return c;
        ++i;
        ++j;
    }
    return int(a.size() - i) - int(b.size() - j);
}

// Orders two texts as dates or times when both parse, else naturally (numbers as numbers).
bool newerFirst(const QString& a, const QString& b)
{
    const QDateTime da = parseStamp(a);
    const QDateTime db = parseStamp(b);
    if (da.isValid() && db.isValid() && da != db)
        return da > db;
    const int byText = naturalCompare(a, b);
    return byText != 0 ? byText > 0 : a > b;
}

} // namespace

void clsLogDataList::AddLogImage(const QString& date, const QString& process, const QString& timeStamp,
                                 const QString& imageId)
{
    clsLogDate* day = m_dates.item(date);
    if (!day) {
        auto created = std::make_shared<clsLogDate>();
        created->Date = date;
        day = &m_dates.add(date, created);
    }
    clsLogProcess* proc = day->Processes.item(process);
    if (!proc) {
        auto created = std::make_shared<clsLogProcess>();
        created->Process = process;
        proc = &day->Processes.add(process, created);
    }
    if (clsLogImageInfo* known = proc->Images.item(timeStamp)) {
        known->ImageID = imageId;
        return;
    }
    auto info = std::make_shared<clsLogImageInfo>();
    info->TimeStamp = timeStamp;
    info->ImageID = imageId;
    proc->Images.add(timeStamp, info);
}

void clsLogDataList::Clear()
{
    while (m_dates.count() >= 1)
        m_dates.removeFirst();
}

int clsLogDataList::imageCount() const
{
    int n = 0;
    for (const QString& d : m_dates.keys()) {
        const clsLogDate* day = m_dates.item(d);
        for (const QString& p : day->Processes.keys())
            n += day->Processes.item(p)->Images.count();
    }
    return n;
}

std::optional<LogEntry> clsLogDataList::find(const QString& date, const QString& process,
                                             const QString& timeStamp) const
{
    const clsLogDate* day = m_dates.item(date);
    const clsLogProcess* proc = day ? day->Processes.item(process) : nullptr;
    const clsLogImageInfo* info = proc ? proc->Images.item(timeStamp) : nullptr;
    if (!info)
        return std::nullopt;
    return LogEntry{date, process, timeStamp, info->ImageID};
}

std::vector<clsLogDataList::DateView> clsLogDataList::newestFirst() const
{
    std::vector<DateView> result;
    QStringList dates = m_dates.keys();
    std::stable_sort(dates.begin(), dates.end(), newerFirst);
    for (const QString& d : dates) {
        const clsLogDate* day = m_dates.item(d);
        DateView dv{d, {}};
        QStringList processes = day->Processes.keys();
        std::stable_sort(processes.begin(), processes.end(),
                         [](const QString& a, const QString& b) { return newerFirst(b, a); });
        for (const QString& p : processes) {
            const clsLogProcess* proc = day->Processes.item(p);
            ProcessView pv{p, {}};
            QStringList stamps = proc->Images.keys();
            std::stable_sort(stamps.begin(), stamps.end(), newerFirst);
            for (const QString& s : stamps)
                pv.images.push_back(LogEntry{d, p, s, proc->Images.item(s)->ImageID});
            dv.processes.push_back(std::move(pv));
        }
        result.push_back(std::move(dv));
    }
    return result;
}

namespace LogSelector {

QString encode(const LogEntry& entry)
{
    const QJsonArray array{entry.date, entry.process, entry.timeStamp, entry.imageId};
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
}

std::optional<LogEntry> decode(const QString& selector)
{
    QJsonParseError error;
    const QJsonDocument doc = QJsonDocument::fromJson(selector.toUtf8(), &error);
    if (error.error != QJsonParseError::NoError || !doc.isArray())
        return std::nullopt;
    const QJsonArray a = doc.array();
    if (a.size() != 4)
        return std::nullopt;
    for (const auto& v : a)
        if (!v.isString())
            return std::nullopt;
    return LogEntry{a[0].toString(), a[1].toString(), a[2].toString(), a[3].toString()};
}

} // namespace LogSelector
} // namespace nxr
