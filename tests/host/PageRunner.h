#pragma once
// Writes pages into a temporary folder and runs a page host process on them, keeping this
// process's event loop running (so a test's HTTP server answers meanwhile).

#include <QImage>
#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <ostream>

// Readable texts in test failures.
inline void PrintTo(const QString& text, std::ostream* os)
{
    *os << '"' << text.toStdString() << '"';
}

struct PageRun
{
    int exitCode = -1;
    bool crashed = false;
    bool timedOut = false;
    QString out;
    QString err;
    QStringList outLines() const { return out.split(QLatin1Char('\n'), Qt::SkipEmptyParts); }
};

// The first line of a run's standard output that starts with `prefix`, or an empty text.
inline QString lineStartingWith(const PageRun& run, const QString& prefix)
{
    for (const QString& line : run.outLines())
        if (line.startsWith(prefix))
            return line;
    return QString();
}

// A run ended by itself with `code`; on failure both outputs are shown.
#define EXPECT_RUN(run, code)                                                                                \
    ASSERT_FALSE((run).timedOut);                                                                            \
    ASSERT_FALSE((run).crashed) << qPrintable((run).err);                                                    \
    EXPECT_EQ((run).exitCode, (code)) << "stdout:\n"                                                         \
                                      << qPrintable((run).out) << "stderr:\n"                                \
                                      << qPrintable((run).err)

// Pixels of `image` in `area` (the whole image when empty) that show `colour`, alpha ignored.
inline int pixelsOf(const QImage& image, QRgb colour, QRect area = {})
{
    int n = 0;
    area = area.isEmpty() ? image.rect() : area.intersected(image.rect());
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            n += (image.pixel(x, y) | 0xff000000) == (colour | 0xff000000);
    return n;
}

// The distinct colours in a rectangle of an image.
inline int coloursIn(const QImage& image, const QRect& area)
{
    QSet<QRgb> colours;
    const QRect r = area.intersected(image.rect());
    for (int y = r.top(); y <= r.bottom(); ++y)
        for (int x = r.left(); x <= r.right(); ++x)
            colours.insert(image.pixel(x, y) | 0xff000000);
    return int(colours.size());
}

class QProcess;

class PageRunner
{
public:
    QString dir() const { return m_dir.path(); }
    QString path(const QString& name) const { return m_dir.filePath(name); }
    // Writes a file (folders made as needed); returns its path.
    QString write(const QString& name, const QByteArray& content = {}) const;
    // A form whose top widget is `width` x `height`, with `body` as the content of a QVBoxLayout
    // (a list of <item> elements).
    static QByteArray form(int width, int height, const QByteArray& items);
    static QByteArray item(const QByteArray& className, const QByteArray& name,
                           const QByteArray& properties = {});

    // Extra environment variables of the runs.
    void setEnv(const QString& name, const QString& value) { m_env.insert(name, value); }
    // Gives a process the runs' environment and working folder.
    void prepare(QProcess& process) const;
    PageRun run(const QStringList& arguments, int timeoutMs = 60000, const QString& program = {}) const;
    // A page folder `name` with page.ui and page.js, run headless with extra arguments.
    PageRun runPage(const QString& name, const QByteArray& ui, const QByteArray& js,
                    const QStringList& extra = {}) const;

private:
    QTemporaryDir m_dir;
    QMap<QString, QString> m_env;
};
