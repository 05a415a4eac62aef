#pragma once
// --watch: tells when the files of a page on disk have changed, so the host can load it again.
// It watches the page as named (a folder, a form or a page.json), the files the last load read
// and their folders (editors often save by writing a new file and renaming it). A change counts
// once the page's files read differently: their contents, or the forms, scripts and page.json a
// watched folder holds. Signals come together: a burst of saves gives one changed().

#include <QByteArray>
#include <QFileSystemWatcher>
#include <QObject>
#include <QStringList>
#include <QTimer>

namespace nxr {

class PageWatcher : public QObject
{
    Q_OBJECT

public:
    explicit PageWatcher(const QString& page, QObject* parent = nullptr);

    // The files the page's load has read (empty after a failed load); the present contents are
    // the ones the next change is measured against.
    void setFiles(const QStringList& files);
    // Contents and listings of the watched files and folders, as one value.
    QByteArray fingerprint() const;

Q_SIGNALS:
    void changed();

private:
    void check();

    QString m_page;
    QStringList m_files;
    QFileSystemWatcher m_watcher;
    QTimer m_settle;
    QByteArray m_last;
};

} // namespace nxr
