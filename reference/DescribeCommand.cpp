#include "reference/DescribeCommand.h"

#include "frame/ClassRegistry.h"
#include "reference/ReferenceWriter.h"

#include <QApplication>
#include <QFile>
#include <QSaveFile>
#include <QTextStream>

#include <cstring>
#include <memory>

namespace nxr::reference {
namespace {

ClassDescription describeRegistered(const QString& name)
{
    const ClassRegistry& registry = ClassRegistry::instance();
    // A throwaway instance answers the key table; its constructor may not open windows or connections.
    std::unique_ptr<QObject> instance(registry.create(name, nullptr));
    return describe(registry.metaObject(name), instance.get());
}

} // namespace

bool wantsDescribe(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i)
        if (std::strcmp(argv[i], "--describe") == 0 || std::strncmp(argv[i], "--describe=", 11) == 0)
            return true;
    return false;
}

int runDescribe(const QStringList& arguments, QTextStream& out, QTextStream& err)
{
    QString target, format = QStringLiteral("text"), output;
    bool asked = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        QString arg = arguments.at(i), value;
        const qsizetype eq = arg.indexOf(QLatin1Char('='));
        const bool inlineValue = arg.startsWith(QLatin1String("--")) && eq > 0;
        if (inlineValue) {
            value = arg.mid(eq + 1);
            arg = arg.left(eq);
        }
        const bool takesValue = arg == QLatin1String("--describe") || arg == QLatin1String("--format") ||
                                arg == QLatin1String("--output");
        if (!takesValue) {
            err << "--describe takes only --format and --output, not " << arguments.at(i) << "\n";
            return asked ? 1 : -1;
        }
        if (!inlineValue) {
            if (i + 1 >= arguments.size()) {
                err << arg << " needs a value\n";
                return 1;
            }
            value = arguments.at(++i);
        }
        if (arg == QLatin1String("--describe")) {
            asked = true;
            target = value;
        } else if (arg == QLatin1String("--format")) {
            format = value;
        } else {
            output = value;
        }
    }
    if (!asked)
        return -1;
    if (format != QLatin1String("text") && format != QLatin1String("markdown")) {
        err << "--format is text or markdown, not '" << format << "'\n";
        return 1;
    }

    const ClassRegistry& registry = ClassRegistry::instance();
    QStringList names;
    if (target == QLatin1String("all")) {
        names = registry.names();
    } else if (registry.contains(target)) {
        names << QString::fromLatin1(registry.metaObject(target)->className());
    } else {
        err << "unknown class '" << target
            << "'; the classes are: " << registry.names().join(QStringLiteral(", ")) << " (or all)\n";
        return 1;
    }

    QList<ClassDescription> classes;
    for (const QString& name : names)
        classes << describeRegistered(name);
    QString text;
    if (format == QLatin1String("markdown")) {
        text = toMarkdown(classes);
    } else {
        for (const ClassDescription& d : classes)
            text += (text.isEmpty() ? QString() : QStringLiteral("\n")) + toText(d);
    }

    if (output.isEmpty()) {
        out << text;
        out.flush();
        return 0;
    }
    QSaveFile file(output);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0 || !file.commit()) {
        err << "cannot write " << output << ": " << file.errorString() << "\n";
        return 1;
    }
    return 0;
}

int describeFromCommandLine(int argc, char** argv)
{
    if (!wantsDescribe(argc, argv))
        return -1;
    // Nothing is shown: the offscreen platform serves with or without a display.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    int qtArgc = 1;
    QApplication app(qtArgc, argv);
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    QTextStream out(stdout), err(stderr);
    return runDescribe(arguments, out, err);
}

} // namespace nxr::reference
