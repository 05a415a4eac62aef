// The reference is read from the classes: what a class declares appears with its names and
// access, what Qt declares does not, and the key table is listed as the protocol answers it.
#include "frame/ClassRegistry.h"
#include "frame/ScriptableObject.h"
#include "frame/ScriptableWidget.h"
#include "reference/ClassDescription.h"
#include "reference/DescribeCommand.h"
#include "reference/ReferenceWriter.h"

#include <QTextStream>

#include <gtest/gtest.h>

using namespace nxr::reference;

class RefSample : public nxr::ScriptableObject
{
    Q_OBJECT
    Q_CLASSINFO("Description", "A sample for the reference")
    Q_PROPERTY(int Count READ Count WRITE setCount)
    Q_PROPERTY(QString Label READ Label)

public:
    explicit RefSample(QObject* parent = nullptr) : nxr::ScriptableObject(parent)
    {
        properties()
            .add(
                QStringLiteral("Count"), [](const QString&) {}, [] { return QString(); })
            .addWriteOnly(QStringLiteral("Reset"), [](const QString&) {})
            .addReadOnly(QStringLiteral("Label"), [] { return QString(); })
            .addReadOnly(QStringLiteral("Reset"), [] { return QString(); }) // second entry, other side
            .addWriteOnly(QStringLiteral("Count"), [](const QString&) {});  // shadowed duplicate
    }
    int Count() const { return 0; }
    void setCount(int) {}
    QString Label() const { return {}; }

    Q_INVOKABLE double Move(int vlng_X, const QString& vstr_Where = QString()) { return 0; }

public Q_SLOTS:
    void Refresh() {}

private Q_SLOTS:
    void msub_Internal() {}

Q_SIGNALS:
    void OnMoved(int lng_X, const QString& str_Where);
};

class RefPad : public nxr::ScriptableWidget
{
    Q_OBJECT
    Q_PROPERTY(bool Shown READ Shown WRITE setShown)
    Q_PROPERTY(bool Busy READ Busy WRITE setBusy DESIGNABLE false)
    Q_PROPERTY(int Width READ Width)

public:
    using nxr::ScriptableWidget::ScriptableWidget;
    bool Shown() const { return true; }
    void setShown(bool) {}
    bool Busy() const { return false; }
    void setBusy(bool) {}
    int Width() const { return 0; }
};

NXR_REGISTER_CLASS(RefSample)
NXR_REGISTER_CLASS(RefPad)

namespace {

template <typename T> QStringList names(const QList<T>& list)
{
    QStringList result;
    for (const T& item : list)
        result << item.name;
    return result;
}

TEST(ClassDescription, OwnAndLibraryMembersButNotQtsWithNamesAndAccess)
{
    RefSample sample;
    const ClassDescription d = describe(&RefSample::staticMetaObject, &sample);
    EXPECT_EQ(d.name, QStringLiteral("RefSample"));
    EXPECT_EQ(d.description, QStringLiteral("A sample for the reference"));
    EXPECT_FALSE(d.isControl);

    EXPECT_EQ(names(d.properties), (QStringList{"LastErrorString", "Count", "Label"}));
    EXPECT_TRUE(d.properties.at(1).writable);
    EXPECT_FALSE(d.properties.at(2).writable);
    EXPECT_EQ(d.properties.at(1).type, QStringLiteral("int"));

    // Move once (not its clone without the defaulted argument), the public slot, not the private one.
    EXPECT_EQ(names(d.methods), (QStringList{"SetProperty", "GetProperty", "Refresh", "Move"}));
    const MethodInfo& move = d.methods.at(3);
    EXPECT_EQ(move.returnType, QStringLiteral("double"));
    EXPECT_EQ(move.signature(), QStringLiteral("Move(int vlng_X, QString vstr_Where)"));
    EXPECT_EQ(d.methods.at(2).returnType, QStringLiteral("void"));

    EXPECT_EQ(names(d.events), (QStringList{"OnError", "OnMoved"}));
    EXPECT_EQ(d.events.at(1).signature(), QStringLiteral("OnMoved(int lng_X, QString str_Where)"));
}

TEST(ClassDescription, KeysOnceEachWithTheSidesTheProtocolAnswers)
{
    RefSample sample;
    const ClassDescription d = describe(&RefSample::staticMetaObject, &sample);
    ASSERT_TRUE(d.hasKeyTable);
    struct Expected
    {
        const char* key;
        bool set, get;
    } expected[] = {{"Count", true, true}, {"Reset", true, true}, {"Label", false, true}};
    ASSERT_EQ(d.keys.size(), 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(d.keys.at(i).key, QLatin1String(expected[i].key));
        EXPECT_EQ(d.keys.at(i).set, expected[i].set) << expected[i].key;
        EXPECT_EQ(d.keys.at(i).get, expected[i].get) << expected[i].key;
    }
    // Without an instance there is no key table, but the meta-object part is still there.
    const ClassDescription bare = describe(&RefSample::staticMetaObject, nullptr);
    EXPECT_FALSE(bare.hasKeyTable);
    EXPECT_EQ(bare.properties.size(), d.properties.size());
}

TEST(ClassDescription, ControlsSayWhichPropertiesDesignerEdits)
{
    RefPad pad;
    const ClassDescription d = describe(&RefPad::staticMetaObject, &pad);
    EXPECT_TRUE(d.isControl);
    EXPECT_EQ(names(d.properties), (QStringList{"LastErrorString", "Shown", "Busy", "Width"}));
    const bool designable[] = {false, true, false, false}; // read-only, yes, DESIGNABLE false, read-only
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(d.properties.at(i).designable, designable[i]) << d.properties.at(i).name.toStdString();
    // QWidget's own properties and members stay out.
    EXPECT_FALSE(names(d.properties).contains(QStringLiteral("geometry")));
    EXPECT_FALSE(names(d.methods).contains(QStringLiteral("show")));
}

struct DescribeRun
{
    int code;
    QString out, err;
};

DescribeRun runWith(const QStringList& arguments)
{
    DescribeRun run;
    QTextStream out(&run.out), err(&run.err);
    run.code = runDescribe(arguments, out, err);
    return run;
}

TEST(DescribeCommand, TextMarkdownAndBadCommandLines)
{
    const DescribeRun text = runWith({"--describe", "NexaroControls.RefSample"});
    EXPECT_EQ(text.code, 0) << text.err.toStdString();
    for (const char* line :
         {"RefSample (object; createObject(\"RefSample\"))", "Count            int      read/write",
          "double   Move(int vlng_X, QString vstr_Where)", "OnMoved(int lng_X, QString str_Where)",
          "Reset  set/get", "Label  get"})
        EXPECT_TRUE(text.out.contains(QLatin1String(line))) << line << "\n" << text.out.toStdString();

    const DescribeRun markdown = runWith({"--describe=all", "--format", "markdown"});
    EXPECT_EQ(markdown.code, 0) << markdown.err.toStdString();
    for (const QString& name : nxr::ClassRegistry::instance().names())
        EXPECT_TRUE(markdown.out.contains(QStringLiteral("\n## %1\n").arg(name))) << name.toStdString();
    EXPECT_TRUE(markdown.out.contains(QLatin1String("| `Shown` | `bool` | read/write | yes |")));
    EXPECT_TRUE(markdown.out.contains(QLatin1String("| `Busy` | `bool` | read/write | |")));
    EXPECT_TRUE(markdown.out.contains(QLatin1String("| `Reset` | yes | yes |")));

    struct Bad
    {
        QStringList arguments;
        const char* message;
    } bad[] = {
        {{"--describe", "NoSuchClass"}, "unknown class 'NoSuchClass'"},
        {{"--describe", "RefPad", "--format", "html"}, "--format is text or markdown"},
        {{"--describe"}, "--describe needs a value"},
        {{"--describe", "RefPad", "--headless"}, "not --headless"},
        {{"--describe", "all", "--output", "/nonexistent-folder/ref.md"},
         "cannot write /nonexistent-folder/ref.md"},
    };
    for (const Bad& b : bad) {
        const DescribeRun run = runWith(b.arguments);
        EXPECT_EQ(run.code, 1) << b.message;
        EXPECT_TRUE(run.err.contains(QLatin1String(b.message))) << run.err.toStdString();
    }
    EXPECT_EQ(runWith({"--headless", "page"}).code, -1); // not a --describe command line
}

} // namespace

#include "ReferenceTest.moc"
