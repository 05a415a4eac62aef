#include "frame/Globals.h"

#include "frame/CaptionTranslator.h"

#include "frame/Conversions.h"
#include "frame/Trace.h"

#include <QDir>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <cerrno>
#include <cmath>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>

namespace nxr::Globals {
namespace {

const QString kGlobals = QStringLiteral("Globals");

// Makes sure `path` is a real folder owned by this user and closed to others: creates it with
// mode 0700, or takes an existing one only if it is ours (not a link) and tightens its mode.
bool ensurePrivateFolder(const QString& path, QString* why)
{
    const QByteArray native = QFile::encodeName(path);
    if (::mkdir(native.constData(), 0700) != 0 && errno != EEXIST) {
        *why = QStringLiteral("cannot create ") + path + QStringLiteral(": ") +
               QString::fromLocal8Bit(strerror(errno));
        return false;
    }
    struct stat st
    {
    };
    if (::lstat(native.constData(), &st) != 0) {
        *why = QStringLiteral("cannot inspect ") + path;
        return false;
    }
    if (S_ISLNK(st.st_mode)) {
        *why = path + QStringLiteral(" is a symbolic link");
        return false;
    }
    if (!S_ISDIR(st.st_mode)) {
        *why = path + QStringLiteral(" is not a folder");
        return false;
    }
    if (st.st_uid != ::geteuid()) {
        *why = path + QStringLiteral(" belongs to another user");
        return false;
    }
    if ((st.st_mode & 077) != 0 && ::chmod(native.constData(), 0700) != 0) {
        *why = QStringLiteral("cannot make ") + path + QStringLiteral(" private");
        return false;
    }
    return true;
}

} // namespace

QString resolveStorageFolder(const QString& tempFolder)
{
    QString base = QDir::cleanPath(tempFolder);
    const QString preferred = base + QStringLiteral("/TORVIK");
    QString why;
    if (ensurePrivateFolder(preferred, &why))
        return preferred;

    // Someone else holds the shared name: fall back to a name of this user's own.
    const QString perUser = preferred + QLatin1Char('-') + QString::number(::geteuid());
    QString whyPerUser;
    if (ensurePrivateFolder(perUser, &whyPerUser)) {
        errorTrace(kGlobals, QStringLiteral("StorageFolder"),
                   why + QStringLiteral("; using ") + perUser + QStringLiteral(" instead"));
        return perUser;
    }
    // Both names are taken: a fresh folder only this process could have made.
    QByteArray templ = QFile::encodeName(preferred + QStringLiteral("-XXXXXX"));
    if (char* made = ::mkdtemp(templ.data())) {
        const QString fresh = QFile::decodeName(made);
        errorTrace(kGlobals, QStringLiteral("StorageFolder"),
                   why + QStringLiteral("; ") + whyPerUser + QStringLiteral("; using ") + fresh +
                       QStringLiteral(" instead"));
        return fresh;
    }
    errorTrace(kGlobals, QStringLiteral("StorageFolder"),
               why + QStringLiteral("; no private folder could be made"));
    return preferred;
}

QString storageFolder()
{
    static std::once_flag once;
    static QString folder;
    std::call_once(once, [] { folder = resolveStorageFolder(QDir::tempPath()); });
    return folder;
}

QString imageExtension(const QString& path)
{
    const QString upper = path.toUpper();
    for (const char* ext : {".JPG", ".PNG", ".GIF", ".BMP"}) {
        if (upper.contains(QLatin1String(ext)))
            return QString::fromLatin1(ext);
    }
    return QString();
}

QString collectionKey(const QString& text)
{
    return isNumeric(text) ? QStringLiteral("Key_") + text : text;
}

QString fileNameOfPath(const QString& path)
{
    const qsizetype slash = path.lastIndexOf(QLatin1Char('\\'));
    return slash < 0 ? path : path.mid(slash + 1);
}

QString normalizePath(const QString& path)
{
    QString result = path.toUpper().trimmed();
    result.remove(QLatin1Char('.'));
    result.remove(QLatin1Char('/'));
    return result;
}

double twipsPerPixel(bool horizontal)
{
    double dpi = 96.0;
    if (qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        if (const QScreen* screen = QGuiApplication::primaryScreen())
            dpi = horizontal ? screen->logicalDotsPerInchX() : screen->logicalDotsPerInchY();
    }
    if (dpi <= 0)
        dpi = 96.0;
    return 1440.0 / dpi;
}

int twipsToPixels(double twips, bool horizontal)
{
    return int(std::lround(twips / twipsPerPixel(horizontal)));
}

double pixelsToTwips(int pixels, bool horizontal)
{
    return pixels * twipsPerPixel(horizontal);
}

void setCharacterSet(QWidget* container, const QString& charset)
{
    if (!container || !isNumeric(charset))
        return;
    const int number = toLong(charset);
    // The character-set numbers pages use, and the writing system each stands for.
    QFontDatabase::WritingSystem system = QFontDatabase::Latin;
    switch (number) {
    case 128:
        system = QFontDatabase::Japanese;
        break;
    case 129:
        system = QFontDatabase::Korean;
        break;
    case 134:
        system = QFontDatabase::SimplifiedChinese;
        break;
    case 136:
        system = QFontDatabase::TraditionalChinese;
        break;
    case 161:
        system = QFontDatabase::Greek;
        break;
    case 162:
        system = QFontDatabase::Latin;
        break;
    case 177:
        system = QFontDatabase::Hebrew;
        break;
    case 178:
        system = QFontDatabase::Arabic;
        break;
    case 204:
        system = QFontDatabase::Cyrillic;
        break;
    case 222:
        system = QFontDatabase::Thai;
        break;
    default:
        break;
    }
    const QStringList families = QFontDatabase::families(system);
    for (QWidget* w : container->findChildren<QWidget*>()) {
        try {
            w->setProperty("characterSet", number);
            QFont font = w->font();
            if (!families.isEmpty() && !families.contains(font.family())) {
                font.setFamilies(QStringList{font.family(), families.first()});
                w->setFont(font);
            }
        } catch (...) {
            // One control without a usable font does not stop the others.
        }
    }
}

QString languageCode()
{
    const QString value = qEnvironmentVariable("TORVIK_LANG").trimmed().toLower();
    if (value == QLatin1String("kn") || value == QLatin1String("jp"))
        return QStringLiteral("jp");
    if (value == QLatin1String("default") || value == QLatin1String("eg"))
        return QStringLiteral("eg");
    return QString();
}

QString Caption::pick() const
{
    // The compiled caption set first (translations/), then a Japanese text given in the table.
    const QString translated = translatedCaption(eg);
    if (!translated.isEmpty())
        return translated;
    return languageCode() == QLatin1String("jp") && !jp.isEmpty() ? jp : eg;
}

} // namespace nxr::Globals
