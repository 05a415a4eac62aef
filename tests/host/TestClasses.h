#pragma once
// Classes registered only in the test page host.

#include "frame/ScriptableObject.h"
#include "frame/ScriptableWidget.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QStringList>
#include <QWheelEvent>

// A control that draws a solid colour and writes down every mouse, wheel and key event it gets.
class TestClickPad : public nxr::ScriptableWidget
{
    Q_OBJECT
    Q_PROPERTY(QString Log READ Log)
    Q_PROPERTY(QString Caption READ Caption WRITE setCaption)

public:
    static constexpr QRgb kColor = 0xff2e86c1;
    explicit TestClickPad(QWidget* parent = nullptr);
    QString Log() const { return m_log.join(QLatin1Char(';')); }
    QString Caption() const { return m_caption; }
    void setCaption(const QString& caption) { m_caption = caption; }
    Q_INVOKABLE void Fire(const QString& name) { Q_EMIT OnButtonClicked(name); }

Q_SIGNALS:
    void OnButtonClicked(const QString& name);

protected:
    void paintEvent(QPaintEvent*) override;
    void mousePressEvent(QMouseEvent* e) override { record("press", e->button(), e->position()); }
    void mouseReleaseEvent(QMouseEvent* e) override;
    // Moves are many during a drag; only those with a button held are of interest.
    void mouseMoveEvent(QMouseEvent* e) override
    {
        if (e->buttons() != Qt::NoButton)
            record("drag", Qt::NoButton, e->position());
    }
    void mouseDoubleClickEvent(QMouseEvent* e) override { record("double", e->button(), e->position()); }
    void wheelEvent(QWheelEvent* e) override
    {
        record(QStringLiteral("wheel %1").arg(e->angleDelta().y()), Qt::NoButton, e->position());
    }
    void keyPressEvent(QKeyEvent* e) override;

private:
    void record(const QString& what, Qt::MouseButton button, const QPointF& pos);
    QStringList m_log;
    QString m_caption;
};

// A plain object with a property, a method and an event.
class TestCounter : public nxr::ScriptableObject
{
    Q_OBJECT
    Q_PROPERTY(int Count READ Count WRITE setCount)

public:
    explicit TestCounter(QObject* parent = nullptr) : nxr::ScriptableObject(parent) {}
    int Count() const { return m_count; }
    void setCount(int count) { m_count = count; }
    Q_INVOKABLE void Add(int amount) { Q_EMIT OnChanged(m_count += amount); }

Q_SIGNALS:
    void OnChanged(int count);

private:
    int m_count = 0;
};

// A control that answers it is not safe for scripting.
class TestUnsafeWidget : public nxr::ScriptableWidget
{
    Q_OBJECT
public:
    explicit TestUnsafeWidget(QWidget* parent = nullptr) : nxr::ScriptableWidget(parent) {}
    nxr::HResult GetInterfaceSafetyOptions(const QString& iid, std::uint32_t* supported,
                                           std::uint32_t* enabled) override;
};

// A pad that may be scripted but not initialised from the form's data.
class TestNoInitPad : public TestClickPad
{
    Q_OBJECT
public:
    explicit TestNoInitPad(QWidget* parent = nullptr) : TestClickPad(parent) {}
    nxr::HResult GetInterfaceSafetyOptions(const QString& iid, std::uint32_t* supported,
                                           std::uint32_t* enabled) override;
};
