#include "frame/Trace.h"

#include <QRegularExpression>

#include <cstdio>
#include <mutex>

Q_LOGGING_CATEGORY(lcNxrError, "nexaro.error", QtWarningMsg)
Q_LOGGING_CATEGORY(lcNxrTrace, "nexaro.trace", QtDebugMsg)

namespace nxr {
namespace {

QtMessageHandler g_previousHandler = nullptr;

// Error-trace lines already end in CR LF and must reach stderr exactly as built, so the
// default handler (which adds its own prefix and newline) is bypassed for that category only.
// A handler installed later by the application sees the messages first and can redirect them.
void messageHandler(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (context.category && qstrcmp(context.category, "nexaro.error") == 0) {
        const QByteArray bytes = message.toLocal8Bit();
        std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stderr);
        std::fflush(stderr);
        return;
    }
    if (g_previousHandler)
        g_previousHandler(type, context, message);
}

void installHandlerOnce()
{
    static std::once_flag once;
    std::call_once(once, [] { g_previousHandler = qInstallMessageHandler(messageHandler); });
}

// Installed when the library loads, so that a handler the application installs later sits on
// top of it and receives the error trace too.
const bool g_handlerInstalled = (installHandlerOnce(), true);

} // namespace

QString scrubCredentials(QString text, const QStringList& secrets)
{
    for (const QString& secret : secrets) {
        if (!secret.isEmpty())
            text.replace(secret, QStringLiteral("***"));
    }
    static const QRegularExpression userInfo(QStringLiteral("([A-Za-z][A-Za-z0-9+.-]*://)[^/@\\s]*@"));
    text.replace(userInfo, QStringLiteral("\\1"));
    static const QRegularExpression commands(QStringLiteral("\\b(PASS|USER)\\s+\\S+"),
                                             QRegularExpression::CaseInsensitiveOption);
    text.replace(commands, QStringLiteral("\\1 ***"));
    return text;
}

QString escapeControlCharacters(const QString& text)
{
    QString result;
    result.reserve(text.size());
    for (const QChar c : text) {
        const char16_t u = c.unicode();
        if (u == '\r')
            result += QStringLiteral("<CR>");
        else if (u == '\n')
            result += QStringLiteral("<LF>");
        else if (u == 0)
            result += QStringLiteral("<NUL>");
        else if (u < 0x20 || u == 0x7f || c.category() == QChar::Separator_Line ||
                 c.category() == QChar::Separator_Paragraph)
            result += QStringLiteral("<%1>").arg(int(u), u > 0xff ? 4 : 2, 16, QLatin1Char('0')).toUpper();
        else
            result += c;
    }
    return result;
}

QString errorTraceLine(const QString& className, const QString& routine, const QString& message)
{
    return QLatin1Char('[') + escapeControlCharacters(className) + QLatin1Char('.') +
           escapeControlCharacters(routine) + QStringLiteral("] ") +
           escapeControlCharacters(scrubCredentials(message)) + QStringLiteral("\r\n");
}

void debugOutput(const QString& text) noexcept
{
    try {
        installHandlerOnce();
        qCWarning(lcNxrError).noquote() << text;
    } catch (...) {
        // The debug output never fails its caller.
    }
}

void errorTrace(const QString& className, const QString& routine, const QString& message) noexcept
{
    try {
        debugOutput(errorTraceLine(className, routine, message));
    } catch (...) {
    }
}

void ordinaryTrace(const QString& className, const QString& routine, const QString& message)
{
    qCDebug(lcNxrTrace).noquote() << QLatin1Char('[') + className + QLatin1Char('.') + routine +
                                         QStringLiteral("] ") + scrubCredentials(message);
}

} // namespace nxr
