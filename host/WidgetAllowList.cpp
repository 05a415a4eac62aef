#include "host/WidgetAllowList.h"

#include <QHash>
#include <QObject>

namespace nxr::WidgetAllowList {
namespace {

// What every listed widget offers.
const Members kWidget{
    {QStringLiteral("objectName"), QStringLiteral("windowTitle"), QStringLiteral("x"), QStringLiteral("y"),
     QStringLiteral("width"), QStringLiteral("height")},
    {QStringLiteral("enabled"), QStringLiteral("visible"), QStringLiteral("toolTip")},
    {QStringLiteral("show"), QStringLiteral("hide"), QStringLiteral("setFocus"), QStringLiteral("update")},
    {}};

Members merged(const Members& a, const Members& b)
{
    return Members{a.readOnly + b.readOnly, a.readWrite + b.readWrite, a.methods + b.methods,
                   a.signals_ + b.signals_};
}

const QHash<QString, Members>& table()
{
    static const QHash<QString, Members> t = [] {
        const Members button{{QStringLiteral("checkable")},
                             {QStringLiteral("text"), QStringLiteral("checked")},
                             {QStringLiteral("click"), QStringLiteral("toggle")},
                             {QStringLiteral("clicked"), QStringLiteral("toggled"), QStringLiteral("pressed"),
                              QStringLiteral("released")}};
        const Members range{{},
                            {QStringLiteral("value"), QStringLiteral("minimum"), QStringLiteral("maximum")},
                            {},
                            {QStringLiteral("valueChanged")}};
        QHash<QString, Members> h;
        h.insert(QStringLiteral("QWidget"), kWidget);
        h.insert(QStringLiteral("QFrame"), kWidget);
        h.insert(QStringLiteral("QLabel"), merged(kWidget, {{}, {QStringLiteral("text")}, {}, {}}));
        for (const char* name : {"QPushButton", "QCheckBox", "QRadioButton", "QToolButton"})
            h.insert(QLatin1String(name), merged(kWidget, button));
        h.insert(QStringLiteral("QGroupBox"),
                 merged(kWidget, {{},
                                  {QStringLiteral("title"), QStringLiteral("checked")},
                                  {},
                                  {QStringLiteral("clicked"), QStringLiteral("toggled")}}));
        h.insert(QStringLiteral("QLineEdit"),
                 merged(kWidget, {{},
                                  {QStringLiteral("text"), QStringLiteral("placeholderText"),
                                   QStringLiteral("readOnly")},
                                  {QStringLiteral("clear"), QStringLiteral("selectAll")},
                                  {QStringLiteral("textChanged"), QStringLiteral("textEdited"),
                                   QStringLiteral("returnPressed"), QStringLiteral("editingFinished")}}));
        h.insert(QStringLiteral("QPlainTextEdit"),
                 merged(kWidget, {{},
                                  {QStringLiteral("plainText"), QStringLiteral("readOnly")},
                                  {QStringLiteral("appendPlainText"), QStringLiteral("clear")},
                                  {QStringLiteral("textChanged")}}));
        h.insert(
            QStringLiteral("QComboBox"),
            merged(kWidget, {{QStringLiteral("count")},
                             {QStringLiteral("currentIndex"), QStringLiteral("currentText")},
                             {QStringLiteral("addItem"), QStringLiteral("clear"), QStringLiteral("itemText")},
                             {QStringLiteral("currentIndexChanged"), QStringLiteral("activated")}}));
        for (const char* name : {"QSpinBox", "QDoubleSpinBox", "QSlider", "QScrollBar", "QDial"})
            h.insert(QLatin1String(name), merged(kWidget, range));
        h.insert(QStringLiteral("QProgressBar"),
                 merged(kWidget, {{},
                                  {QStringLiteral("value"), QStringLiteral("minimum"),
                                   QStringLiteral("maximum"), QStringLiteral("format")},
                                  {},
                                  {}}));
        h.insert(QStringLiteral("QTabWidget"), merged(kWidget, {{QStringLiteral("count")},
                                                                {QStringLiteral("currentIndex")},
                                                                {},
                                                                {QStringLiteral("currentChanged")}}));
        h.insert(QStringLiteral("QStackedWidget"), merged(kWidget, {{QStringLiteral("count")},
                                                                    {QStringLiteral("currentIndex")},
                                                                    {},
                                                                    {QStringLiteral("currentChanged")}}));
        return h;
    }();
    return t;
}

} // namespace

QString listedClass(const QObject* object)
{
    if (!object)
        return QString();
    const QString name = QString::fromLatin1(object->metaObject()->className());
    return table().contains(name) ? name : QString();
}

Members membersOf(const QString& className)
{
    return table().value(className);
}

QVariantMap describe(const QString& className)
{
    const Members m = membersOf(className);
    return QVariantMap{{QStringLiteral("className"), className},
                       {QStringLiteral("readOnly"), m.readOnly},
                       {QStringLiteral("readWrite"), m.readWrite},
                       {QStringLiteral("methods"), m.methods},
                       {QStringLiteral("signals"), m.signals_}};
}

} // namespace nxr::WidgetAllowList
