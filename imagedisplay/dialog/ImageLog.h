#pragma once
// The image log: the images the controller logged during production, as a three-level tree of
// keyed collections (date -> process -> time stamp). The page fills it through the display's
// AddLogImage; the open/save dialog shows it and names the image the user picks by a selector.
//
// Keys are compared exactly (case-sensitive). Adding a path that is already there keeps the
// entry and replaces its image identifier with the new one (the newest report wins; nothing is
// duplicated). Looking up a missing key answers null; it is not an error.

#include "frame/Export.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

namespace nxr {

// An ordered collection of objects under string keys: insertion order is kept, lookup by key.
template <typename T> class LogCollection
{
public:
    // The element under key, or null when there is none.
    T* item(const QString& key) const
    {
        const auto it = m_items.constFind(key);
        return it == m_items.constEnd() ? nullptr : it->get();
    }
    T& add(const QString& key, std::shared_ptr<T> element)
    {
        if (!m_items.contains(key))
            m_order.append(key);
        m_items.insert(key, element);
        return *element;
    }
    void removeFirst()
    {
        if (m_order.isEmpty())
            return;
        m_items.remove(m_order.takeFirst());
    }
    int count() const { return int(m_order.size()); }
    // Keys in the order they were added.
    const QStringList& keys() const { return m_order; }

private:
    QHash<QString, std::shared_ptr<T>> m_items;
    QStringList m_order;
};

class NXR_EXPORT clsLogImageInfo
{
public:
    QString TimeStamp;
    QString ImageID;
};

class NXR_EXPORT clsLogProcess
{
public:
    QString Process;
    LogCollection<clsLogImageInfo> Images; // by time stamp
};

class NXR_EXPORT clsLogDate
{
public:
    QString Date;
    LogCollection<clsLogProcess> Processes; // by process
};

// One logged image with its place in the log.
struct NXR_EXPORT LogEntry
{
    QString date;
    QString process;
    QString timeStamp;
    QString imageId;

    bool operator==(const LogEntry&) const = default;
};

class NXR_EXPORT clsLogDataList
{
public:
    // Adds one logged image, creating the date and process levels it needs.
    void AddLogImage(const QString& date, const QString& process, const QString& timeStamp,
                     const QString& imageId);
    // Empties the log: the first date is removed until none is left.
    void Clear();

    int dateCount() const { return m_dates.count(); }
    // Logged images in all dates and processes.
    int imageCount() const;
    clsLogDate* date(const QString& key) const { return m_dates.item(key); }
    // The entry at date/process/time stamp; nothing when any level is missing.
    std::optional<LogEntry> find(const QString& date, const QString& process, const QString& timeStamp) const;

    // The log for showing: dates newest first, processes by name, time stamps newest first.
    // Dates and time stamps in a common written form (2026-11-22, 22.11.2026, 22-NOV-26,
    // 11/22/2026, 10:05:00, ...) are compared as dates and times; others by their text, with
    // numbers in them compared as numbers.
    struct ProcessView
    {
        QString process;
        std::vector<LogEntry> images;
    };
    struct DateView
    {
        QString date;
        std::vector<ProcessView> processes;
    };
    std::vector<DateView> newestFirst() const;

private:
    LogCollection<clsLogDate> m_dates;
};

// The selector that OnLogImageSelected passes to the page: a JSON array of four strings,
// [date, process, time stamp, image identifier], for example
//     ["2026-11-22","Weld seam","10:05:00.250","MC:\\LOG\\P1_0001.PNG"]
// A page reads it with JSON.parse; any character in the fields (quotes, commas, brackets,
// backslashes) comes back as it went in.
namespace LogSelector {
NXR_EXPORT QString encode(const LogEntry& entry);
// Nothing when the text is not such an array.
NXR_EXPORT std::optional<LogEntry> decode(const QString& selector);
} // namespace LogSelector

} // namespace nxr
