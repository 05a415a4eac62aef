#pragma once
// Builds the widgets of a page's form: classes of the library's registry by name ("NXRImageDisplay",
// also "NexaroControls.NXRImageDisplay"), Qt's own widgets otherwise.

#include <QList>
#include <QPointer>
#include <QStringList>
#include <QUiLoader>

namespace nxr {

class FormLoader : public QUiLoader
{
    Q_OBJECT

public:
    explicit FormLoader(QObject* parent = nullptr);

    QWidget* createWidget(const QString& className, QWidget* parent = nullptr,
                          const QString& name = QString()) override;

    struct Created
    {
        QPointer<QWidget> widget;
        QString className;
        bool fromRegistry = false;
    };
    // Every widget the form asked for, in creation order.
    const QList<Created>& created() const { return m_created; }
    // Problems met while building (unknown classes...), for the host to print.
    const QStringList& messages() const { return m_messages; }

private:
    QList<Created> m_created;
    QStringList m_messages;
};

} // namespace nxr
