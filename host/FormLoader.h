#pragma once
// Builds the widgets of a page's form: classes of the library's registry by name ("NXRImageDisplay",
// also "NexaroControls.NXRImageDisplay"), Qt's own widgets otherwise.

#include <QList>
#include <QMap>
#include <QPointer>
#include <QStringList>
#include <QUiLoader>

namespace nxr {

class FormLoader : public QUiLoader
{
    Q_OBJECT

public:
    explicit FormLoader(QObject* parent = nullptr);

    // Loads a form (.ui text). A library control that is not safe for initialising from untrusted
    // data is still created, but none of the form's property values reach it.
    QWidget* loadForm(const QByteArray& form, QWidget* parentWidget = nullptr);
    // Properties no widget of the form gets from the form (a controller's page: those that read
    // local files or open links with the desktop's programs).
    void setDroppedProperties(const QStringList& names) { m_dropped = names; }

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
    QByteArray withoutUnsafeProperties(const QByteArray& form);
    bool isSafeToInitialize(const QString& className);

    QMap<QString, bool> m_initSafety; // by class name
    QList<Created> m_created;
    QStringList m_messages;
    QStringList m_dropped;
};

} // namespace nxr
