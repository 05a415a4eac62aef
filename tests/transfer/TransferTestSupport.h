#pragma once
// Helpers shared by the transfer tests.

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <ostream>

// Readable test failure messages.
inline void PrintTo(const QString& text, std::ostream* os)
{
    *os << '"' << text.toStdString() << '"';
}

namespace nxr::test {

inline QByteArray readAll(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// Files in a folder, hidden ones (partial downloads) included.
inline QStringList filesIn(const QString& folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot);
}

inline int countOf(const QStringList& lines, const QString& text)
{
    int n = 0;
    for (const QString& line : lines)
        n += line == text ? 1 : 0;
    return n;
}

inline int countStarting(const QStringList& lines, const QString& prefix)
{
    int n = 0;
    for (const QString& line : lines)
        n += line.startsWith(prefix) ? 1 : 0;
    return n;
}

} // namespace nxr::test
