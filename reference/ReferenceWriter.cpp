#include "reference/ReferenceWriter.h"

#include <algorithm>

namespace nxr::reference {
namespace {

QString kind(const ClassDescription& d)
{
    return d.isControl ? QStringLiteral("control") : QStringLiteral("object");
}

QString howToCreate(const ClassDescription& d)
{
    return d.isControl
               ? QStringLiteral("place it on a form, or createObject(\"%1\", parentWidget)").arg(d.name)
               : QStringLiteral("createObject(\"%1\")").arg(d.name);
}

QString access(const PropertyInfo& p)
{
    return p.writable ? QStringLiteral("read/write") : QStringLiteral("read");
}

QString keySides(const KeyInfo& k)
{
    if (k.set && k.get)
        return QStringLiteral("set/get");
    return k.set ? QStringLiteral("set") : QStringLiteral("get");
}

// Left-aligned columns.
QString columns(const QList<QStringList>& rows)
{
    QList<qsizetype> widths;
    for (const QStringList& row : rows)
        for (qsizetype i = 0; i < row.size(); ++i) {
            if (widths.size() <= i)
                widths << 0;
            widths[i] = std::max(widths[i], row.at(i).size());
        }
    QString out;
    for (const QStringList& row : rows) {
        QString line = QStringLiteral("  ");
        for (qsizetype i = 0; i < row.size(); ++i)
            line += i + 1 < row.size() ? row.at(i).leftJustified(widths[i] + 2) : row.at(i);
        out += line + QLatin1Char('\n');
    }
    return out;
}

QString code(const QString& text)
{
    return QLatin1Char('`') + text + QLatin1Char('`');
}

} // namespace

QString toText(const ClassDescription& d)
{
    QString out = QStringLiteral("%1 (%2; %3)\n").arg(d.name, kind(d), howToCreate(d));
    if (!d.description.isEmpty())
        out += QStringLiteral("  %1\n").arg(d.description);

    out += QStringLiteral("\nProperties\n");
    QList<QStringList> rows;
    for (const PropertyInfo& p : d.properties)
        rows << QStringList{p.name, p.type, access(p)};
    out += rows.isEmpty() ? QStringLiteral("  (none)\n") : columns(rows);

    out += QStringLiteral("\nMethods\n");
    rows.clear();
    for (const MethodInfo& m : d.methods)
        rows << QStringList{m.returnType, m.signature()};
    out += rows.isEmpty() ? QStringLiteral("  (none)\n") : columns(rows);

    out += QStringLiteral("\nEvents\n");
    for (const MethodInfo& e : d.events)
        out += QStringLiteral("  %1\n").arg(e.signature());
    if (d.events.isEmpty())
        out += QStringLiteral("  (none)\n");

    out += QStringLiteral("\nSetProperty/GetProperty keys\n");
    rows.clear();
    for (const KeyInfo& k : d.keys)
        rows << QStringList{k.key, keySides(k)};
    out += rows.isEmpty() ? QStringLiteral("  (none)\n") : columns(rows);
    return out;
}

QString toMarkdown(const QList<ClassDescription>& classes)
{
    QString out = QStringLiteral(
        "# NexaroControls class reference\n\n"
        "Generated from the classes themselves (their meta-objects and property-key tables) by\n"
        "`nexaro-page --describe all --format markdown`; do not edit. After changing a class, run\n"
        "`./scripts/update-reference.sh` (the test `reference_current` fails while this file is stale).\n\n"
        "Every class answers `SetProperty(key, value)` / `GetProperty(key)` with the keys listed (exact,\n"
        "case-sensitive; Booleans as \"True\"/\"False\"), sets `LastErrorString` and raises `OnError()` on\n"
        "failure. Controls are placed on a form (Designer's widget box, group NexaroControls); objects are\n"
        "made with `createObject(\"NAME\")`.\n\n"
        "| class | kind | what it does |\n|---|---|---|\n");
    for (const ClassDescription& d : classes)
        out +=
            QStringLiteral("| [%1](#%2) | %3 | %4 |\n").arg(d.name, d.name.toLower(), kind(d), d.description);

    for (const ClassDescription& d : classes) {
        out += QStringLiteral("\n## %1\n\n").arg(d.name);
        if (!d.description.isEmpty())
            out += d.description + QStringLiteral("\n\n");
        out += d.isControl ? QStringLiteral("A control: %1.\n").arg(howToCreate(d))
                           : QStringLiteral("An object: %1.\n").arg(howToCreate(d));

        out += QStringLiteral("\n### Properties\n\n");
        if (d.properties.isEmpty()) {
            out += QStringLiteral("None.\n");
        } else {
            out += d.isControl
                       ? QStringLiteral("| property | type | access | in Designer |\n|---|---|---|---|\n")
                       : QStringLiteral("| property | type | access |\n|---|---|---|\n");
            for (const PropertyInfo& p : d.properties) {
                out += QStringLiteral("| %1 | %2 | %3 |").arg(code(p.name), code(p.type), access(p));
                if (d.isControl)
                    out += p.designable ? QStringLiteral(" yes |") : QStringLiteral(" |");
                out += QLatin1Char('\n');
            }
        }

        out += QStringLiteral("\n### Methods\n\n");
        if (d.methods.isEmpty()) {
            out += QStringLiteral("None.\n");
        } else {
            out += QStringLiteral("| method | returns |\n|---|---|\n");
            for (const MethodInfo& m : d.methods)
                out += QStringLiteral("| %1 | %2 |\n").arg(code(m.signature()), code(m.returnType));
        }

        out += QStringLiteral("\n### Events\n\n");
        if (d.events.isEmpty())
            out += QStringLiteral("None.\n");
        for (const MethodInfo& e : d.events)
            out += QStringLiteral("- %1\n").arg(code(e.signature()));

        out += QStringLiteral("\n### SetProperty / GetProperty keys\n\n");
        if (d.keys.isEmpty()) {
            out += QStringLiteral("None.\n");
        } else {
            out += QStringLiteral("| key | SetProperty | GetProperty |\n|---|---|---|\n");
            for (const KeyInfo& k : d.keys)
                out += QStringLiteral("| %1 | %2 | %3 |\n")
                           .arg(code(k.key), k.set ? QStringLiteral("yes") : QString(),
                                k.get ? QStringLiteral("yes") : QString());
        }
    }
    return out;
}

} // namespace nxr::reference
