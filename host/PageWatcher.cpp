#include "host/PageWatcher.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace nxr {
namespace {

constexpr int kSettleMs = 150;

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArrayLiteral("-");
    return QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256);
}

} // namespace

PageWatcher::PageWatcher(const QString& page, QObject* parent)
    : QObject(parent), m_page(QFileInfo(page).absoluteFilePath())
{
    m_settle.setSingleShot(true);
    m_settle.setInterval(kSettleMs);
    connect(&m_settle, &QTimer::timeout, this, &PageWatcher::check);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, &m_settle, qOverload<>(&QTimer::start));
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, &m_settle, qOverload<>(&QTimer::start));
    setFiles({});
}

void PageWatcher::setFiles(const QStringList& files)
{
    m_files.clear();
    for (const QString& file : files)
        m_files << QFileInfo(file).absoluteFilePath();
    QStringList paths{m_page};
    if (!QFileInfo(m_page).isDir())
        paths << QFileInfo(m_page).absolutePath();
    for (const QString& file : std::as_const(m_files))
        paths << file << QFileInfo(file).absolutePath();
    paths.removeDuplicates();
    if (!m_watcher.files().isEmpty())
        m_watcher.removePaths(m_watcher.files());
    if (!m_watcher.directories().isEmpty())
        m_watcher.removePaths(m_watcher.directories());
    QStringList existing;
    for (const QString& path : std::as_const(paths))
        if (QFileInfo::exists(path))
            existing << path;
    if (!existing.isEmpty())
        m_watcher.addPaths(existing);
    m_last = fingerprint();
}

QByteArray PageWatcher::fingerprint() const
{
    QByteArray all;
    QStringList files = m_files;
    files << m_page;
    // What a folder page is made of: its forms, scripts and page.json.
    const QFileInfo page(m_page);
    const QDir folder(page.isDir() ? m_page : page.absolutePath());
    for (const QString& name :
         folder.entryList({QStringLiteral("*.ui"), QStringLiteral("*.js"), QStringLiteral("*.json")},
                          QDir::Files, QDir::Name))
        files << folder.filePath(name);
    files.removeDuplicates();
    files.sort();
    for (const QString& file : std::as_const(files))
        all += file.toUtf8() + '\0' + (QFileInfo(file).isDir() ? QByteArray("dir") : contentOf(file)) + '\0';
    return all;
}

void PageWatcher::check()
{
    const QByteArray before = m_last;
    // A file replaced by a rename is no longer watched: watch the new one.
    setFiles(m_files);
    if (m_last != before)
        Q_EMIT changed();
}

} // namespace nxr
