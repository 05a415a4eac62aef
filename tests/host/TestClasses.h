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
    // The modifier keys the application believes held now.
    Q_PROPERTY(QString HeldModifiers READ HeldModifiers)

public:
    static constexpr QRgb kColor = 0xff2e86c1;
    explicit TestClickPad(QWidget* parent = nullptr);
    QString Log() const { return m_log.join(QLatin1Char(';')); }
    QString Caption() const { return m_caption; }
    void setCaption(const QString& caption) { m_caption = caption; }
    QString HeldModifiers() const;
    Q_INVOKABLE void Fire(const QString& name) { Q_EMIT OnButtonClicked(name); }

Q_SIGNALS:
    void OnButtonClicked(const QString& name);

protected:
    void paintEvent(QPaintEvent*) override;
    void mousePressEvent(QMouseEvent* e) override
    {
        record("press", e->button(), e->position(), e->modifiers());
    }
    void mouseReleaseEvent(QMouseEvent* e) override;
    // Moves are many during a drag; only those with a button held are of interest.
    void mouseMoveEvent(QMouseEvent* e) override
    {
        if (e->buttons() != Qt::NoButton)
            record("drag", Qt::NoButton, e->position(), e->modifiers());
    }
    void mouseDoubleClickEvent(QMouseEvent* e) override
    {
        record("double", e->button(), e->position(), e->modifiers());
    }
    void wheelEvent(QWheelEvent* e) override
    {
        record(QStringLiteral("wheel %1").arg(e->angleDelta().y()), Qt::NoButton, e->position(),
               e->modifiers());
    }
    void keyPressEvent(QKeyEvent* e) override;
    // " shift", " ctrl alt"...: the modifiers of an event, for the log.
    static QString modifierText(Qt::KeyboardModifiers modifiers);

    void record(const QString& what, Qt::MouseButton button, const QPointF& pos,
                Qt::KeyboardModifiers modifiers = {});
    QStringList m_log;

private:
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

// A pad that takes touch input itself (no mouse made from it) and two-finger pinches: every touch
// event is written down with its points, a finished pinch with its total scale.
class TestTouchPad : public TestClickPad
{
    Q_OBJECT
public:
    explicit TestTouchPad(QWidget* parent = nullptr);

protected:
    bool event(QEvent* e) override;
};

// A button that opens a dialog (dlg_Test, titled "Test dialog") with a text box txt_Answer and the
// buttons cmd_OK and cmd_Cancel; modal (the click returns when it is closed) unless Modal is false.
// OnClosed tells how it was closed and the text typed.
class TestDialogOpener : public nxr::ScriptableWidget
{
    Q_OBJECT
    Q_PROPERTY(bool Modal READ Modal WRITE setModal)

public:
    explicit TestDialogOpener(QWidget* parent = nullptr);
    bool Modal() const { return m_modal; }
    void setModal(bool on) { m_modal = on; }

Q_SIGNALS:
    void OnClosed(bool accepted, const QString& text);

protected:
    void paintEvent(QPaintEvent*) override;
    void mouseReleaseEvent(QMouseEvent*) override;

private:
    bool m_modal = true;
};
