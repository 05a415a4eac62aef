// The Designer plugin as Designer uses it: loaded from its file, one entry per registered control,
// and forms made from its entries (dropped, or saved by Designer's form writer) load in the host.
#include "designer/ControlCatalog.h"
#include "frame/ClassRegistry.h"
#include "host/FormLoader.h"

#include <QBuffer>
#include <QMetaProperty>
#include <QPluginLoader>
#include <QWidget>
#include <QXmlStreamReader>
#include <QtDesigner/QFormBuilder>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>

#include <gtest/gtest.h>

#include <memory>

namespace {

using nxr::ClassRegistry;

QDesignerCustomWidgetCollectionInterface* loadPlugin()
{
    static QPluginLoader loader(QStringLiteral(NXR_DESIGNER_PLUGIN));
    if (!loader.isLoaded() && !loader.load())
        ADD_FAILURE() << loader.errorString().toStdString();
    return qobject_cast<QDesignerCustomWidgetCollectionInterface*>(loader.instance());
}

struct DroppedWidget
{
    QString className, objectName;
    QRect geometry;
};

DroppedWidget readDomXml(const QString& xml)
{
    DroppedWidget result;
    QXmlStreamReader reader(xml);
    while (!reader.atEnd()) {
        reader.readNext();
        if (!reader.isStartElement())
            continue;
        if (reader.name() == QLatin1String("widget") && result.className.isEmpty()) {
            result.className = reader.attributes().value(QLatin1String("class")).toString();
            result.objectName = reader.attributes().value(QLatin1String("name")).toString();
        } else if (reader.name() == QLatin1String("width")) {
            result.geometry.setWidth(reader.readElementText().toInt());
        } else if (reader.name() == QLatin1String("height")) {
            result.geometry.setHeight(reader.readElementText().toInt());
        }
    }
    EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString() << "\n" << xml.toStdString();
    return result;
}

QStringList registeredControls()
{
    QStringList result;
    for (const QString& name : ClassRegistry::instance().names())
        if (ClassRegistry::instance().isWidget(name))
            result << name;
    return result;
}

TEST(DesignerPlugin, OffersEveryRegisteredControlAndNoPlainObject)
{
    QDesignerCustomWidgetCollectionInterface* plugin = loadPlugin();
    ASSERT_NE(plugin, nullptr);
    QStringList offered;
    for (QDesignerCustomWidgetInterface* entry : plugin->customWidgets())
        offered << entry->name();
    offered.sort();
    EXPECT_EQ(offered, registeredControls());
    EXPECT_TRUE(offered.contains(QStringLiteral("NXRImageDisplay")));
    EXPECT_FALSE(offered.contains(QStringLiteral("NXRInfo"))); // not a control: created from scripts
}

TEST(DesignerPlugin, EveryEntryHasIconTipHeaderSizeAndMakesItsClass)
{
    QDesignerCustomWidgetCollectionInterface* plugin = loadPlugin();
    ASSERT_NE(plugin, nullptr);
    QSet<QString> tips;
    for (QDesignerCustomWidgetInterface* entry : plugin->customWidgets()) {
        SCOPED_TRACE(entry->name().toStdString());
        EXPECT_EQ(entry->group(), QStringLiteral("NexaroControls"));
        EXPECT_FALSE(entry->icon().pixmap(32, 32).isNull());
        EXPECT_FALSE(entry->toolTip().isEmpty());
        tips.insert(entry->toolTip());
        EXPECT_TRUE(entry->includeFile().endsWith(QLatin1Char('/') + entry->name() + QStringLiteral(".h")))
            << entry->includeFile().toStdString();
        EXPECT_FALSE(entry->isContainer());

        const DroppedWidget dom = readDomXml(entry->domXml());
        EXPECT_EQ(dom.className, entry->name());
        EXPECT_EQ(dom.objectName, nxr::designer::defaultObjectName(entry->name()));
        QWidget parent;
        QWidget* widget = entry->createWidget(&parent);
        ASSERT_NE(widget, nullptr);
        // Within the control's limits; a visible control gets a size one can grab in Designer.
        EXPECT_EQ(dom.geometry.size(),
                  dom.geometry.size().expandedTo(widget->minimumSize()).boundedTo(widget->maximumSize()));
        if (widget->maximumWidth() >= 60 && widget->maximumHeight() >= 20) {
            EXPECT_GE(dom.geometry.width(), 60);
            EXPECT_GE(dom.geometry.height(), 20);
        }
        EXPECT_EQ(QString::fromLatin1(widget->metaObject()->className()), entry->name());
        EXPECT_EQ(widget->parentWidget(), &parent);
    }
    EXPECT_EQ(tips.size(), plugin->customWidgets().size()) << "two controls share a tool tip";
}

QByteArray formAround(const QStringList& widgetXml, const QStringList& classes)
{
    QString form = QStringLiteral("<ui version=\"4.0\"><class>Form</class>"
                                  "<widget class=\"QWidget\" name=\"Form\">"
                                  "<property name=\"geometry\"><rect><x>0</x><y>0</y><width>900</width>"
                                  "<height>700</height></rect></property>");
    form += widgetXml.join(QString());
    form += QStringLiteral("</widget><customwidgets>");
    for (const QString& c : classes)
        form +=
            QStringLiteral("<customwidget><class>%1</class><extends>QWidget</extends><header>%1.h</header>"
                           "</customwidget>")
                .arg(c);
    form += QStringLiteral("</customwidgets><resources/><connections/></ui>");
    return form.toUtf8();
}

TEST(DesignerPlugin, FormOfDroppedControlsLoadsInTheHost)
{
    QDesignerCustomWidgetCollectionInterface* plugin = loadPlugin();
    ASSERT_NE(plugin, nullptr);
    QStringList fragments, classes;
    QMap<QString, DroppedWidget> expected;
    for (QDesignerCustomWidgetInterface* entry : plugin->customWidgets()) {
        QString xml = entry->domXml();
        const DroppedWidget dom = readDomXml(xml);
        // Only the <widget> element goes into the form, as Designer does on a drop.
        const qsizetype begin = xml.indexOf(QStringLiteral("<widget"));
        const qsizetype end = xml.lastIndexOf(QStringLiteral("</widget>")) + 9;
        fragments << xml.mid(begin, end - begin);
        classes << entry->name();
        expected.insert(dom.objectName, dom);
    }

    nxr::FormLoader loader;
    std::unique_ptr<QWidget> form(loader.loadForm(formAround(fragments, classes)));
    ASSERT_NE(form, nullptr) << loader.errorString().toStdString();
    EXPECT_TRUE(loader.messages().isEmpty()) << loader.messages().join(QLatin1Char('\n')).toStdString();
    for (const DroppedWidget& dom : expected) {
        SCOPED_TRACE(dom.className.toStdString());
        auto* widget = form->findChild<QWidget*>(dom.objectName);
        ASSERT_NE(widget, nullptr);
        EXPECT_EQ(QString::fromLatin1(widget->metaObject()->className()), dom.className);
        EXPECT_EQ(widget->size(), dom.geometry.size());
    }
}

// A value different from `current` that the property's type can hold, or an invalid variant.
QVariant changedValue(const QVariant& current)
{
    switch (current.typeId()) {
    case QMetaType::Bool:
        return !current.toBool();
    case QMetaType::Int:
        return current.toInt() + 1;
    case QMetaType::Double:
    case QMetaType::Float:
        return current.toDouble() + 0.5;
    case QMetaType::QString:
        return QStringLiteral("Set in Designer");
    default:
        return {};
    }
}

// The library's own designable, writable properties (Qt's widget properties are Qt's business).
QList<QMetaProperty> designableProperties(const QObject* object)
{
    QList<QMetaProperty> result;
    const QMetaObject* meta = object->metaObject();
    for (int i = QWidget::staticMetaObject.propertyCount(); i < meta->propertyCount(); ++i) {
        const QMetaProperty p = meta->property(i);
        if (p.isWritable() && p.isDesignable() && p.isStored())
            result << p;
    }
    return result;
}

// Designer's form writer, saving as Designer does: a control's own inner widgets belong to the
// control, not to the form.
class DesignerWriter : public QFormBuilder
{
protected:
    ::DomWidget* createDom(QWidget* widget, ::DomWidget* parent, bool recursive) override
    {
        const bool control =
            ClassRegistry::instance().contains(QString::fromLatin1(widget->metaObject()->className()));
        return QFormBuilder::createDom(widget, parent, recursive && !control);
    }
};

TEST(DesignerPlugin, FormSavedByDesignersWriterLoadsUnchanged)
{
    QDesignerCustomWidgetCollectionInterface* plugin = loadPlugin();
    ASSERT_NE(plugin, nullptr);
    QWidget page;
    page.setObjectName(QStringLiteral("Form"));
    page.resize(900, 700);
    QMap<QString, QMap<QString, QVariant>> changed; // object name -> property -> value
    int count = 0;
    for (QDesignerCustomWidgetInterface* entry : plugin->customWidgets()) {
        QWidget* widget = entry->createWidget(&page);
        ASSERT_NE(widget, nullptr);
        const QString name = nxr::designer::defaultObjectName(entry->name());
        widget->setObjectName(name);
        widget->setGeometry(10 + count, 20, 150 + count, 90);
        ++count;
        for (const QMetaProperty& p : designableProperties(widget)) {
            const QVariant value = changedValue(p.read(widget));
            // A control may refuse a value (a range, a state); only accepted values are compared.
            if (value.isValid() && p.write(widget, value) && p.read(widget) == value)
                changed[name].insert(QString::fromLatin1(p.name()), value);
        }
    }

    QByteArray saved;
    QBuffer buffer(&saved);
    buffer.open(QIODevice::WriteOnly);
    DesignerWriter writer;
    writer.save(&buffer, &page);
    buffer.close();

    nxr::FormLoader loader;
    std::unique_ptr<QWidget> form(loader.loadForm(saved));
    ASSERT_NE(form, nullptr) << loader.errorString().toStdString();
    int compared = 0;
    for (auto it = changed.cbegin(); it != changed.cend(); ++it) {
        auto* widget = form->findChild<QWidget*>(it.key());
        ASSERT_NE(widget, nullptr) << it.key().toStdString();
        for (auto p = it.value().cbegin(); p != it.value().cend(); ++p) {
            ++compared;
            EXPECT_EQ(widget->property(p.key().toLatin1().constData()), p.value())
                << it.key().toStdString() << "." << p.key().toStdString() << " in\n"
                << saved.toStdString();
        }
    }
    EXPECT_GT(compared, 0) << "no property was changed, so nothing was compared";
    for (const QString& name : changed.keys())
        EXPECT_EQ(form->findChild<QWidget*>(name)->width(), page.findChild<QWidget*>(name)->width());
}

// The catalogue's rules, on classes of the test's own.
class SizedByInfo : public QWidget
{
    Q_OBJECT
    Q_CLASSINFO("DefaultSize", "480, 360")
    Q_CLASSINFO("Description", "A widget that says its size")
};

class HugeHint : public QWidget
{
    Q_OBJECT
public:
    QSize sizeHint() const override { return {5000, 10}; }
};

TEST(ControlCatalog, NamesSizesAndTexts)
{
    EXPECT_EQ(nxr::designer::defaultObjectName(QStringLiteral("NXRImageDisplay")),
              QStringLiteral("ctl_ImageDisplay"));
    EXPECT_EQ(nxr::designer::defaultObjectName(QStringLiteral("Other")), QStringLiteral("ctl_Other"));
    EXPECT_EQ(nxr::designer::defaultObjectName(QStringLiteral("NXR")), QStringLiteral("ctl_NXR"));

    HugeHint huge;
    QWidget plain; // no size hint
    QWidget fixed;
    fixed.setFixedSize(0, 0);
    QWidget large;
    large.setMinimumWidth(500);
    struct Case
    {
        const QMetaObject* meta;
        const QWidget* instance;
        QSize expected;
    } cases[] = {
        {&SizedByInfo::staticMetaObject, nullptr, {480, 360}},
        {&HugeHint::staticMetaObject, &huge, {800, 20}},
        {&QWidget::staticMetaObject, &plain, {200, 100}},
        {&QWidget::staticMetaObject, nullptr, {200, 100}},
        {&SizedByInfo::staticMetaObject, &fixed, {0, 0}},
        {&SizedByInfo::staticMetaObject, &large, {500, 360}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(nxr::designer::defaultSize(c.meta, c.instance), c.expected) << c.meta->className();

    EXPECT_EQ(nxr::designer::description(&SizedByInfo::staticMetaObject),
              QStringLiteral("A widget that says its size"));
    EXPECT_TRUE(nxr::designer::description(&HugeHint::staticMetaObject).contains(QLatin1String("HugeHint")));
    EXPECT_EQ(nxr::designer::icon(QStringLiteral("NXRStatusBar")).pixmap(16, 16).size(), QSize(16, 16));
}

} // namespace

#include "DesignerPluginTest.moc"
