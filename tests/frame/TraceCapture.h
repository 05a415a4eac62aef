#pragma once
// Collects what the library writes to its error trace while the object lives.

#include <QString>
#include <QStringList>
#include <QtGlobal>

class TraceCapture
{
public:
    TraceCapture()
    {
        s_lines.clear();
        m_previous = qInstallMessageHandler(&TraceCapture::handler);
    }
    ~TraceCapture() { qInstallMessageHandler(m_previous); }
    const QStringList& lines() const { return s_lines; }

private:
    static void handler(QtMsgType, const QMessageLogContext& context, const QString& message)
    {
        if (context.category && qstrcmp(context.category, "nexaro.error") == 0)
            s_lines << message;
    }
    static inline QStringList s_lines;
    QtMessageHandler m_previous = nullptr;
};
