#pragma once
// `nexaro-page --describe CLASS|all [--format text|markdown] [--output FILE]`: the reference of the
// registered classes, made from the classes themselves.

#include <QStringList>

class QTextStream;

namespace nxr::reference {

// Runs the command on arguments after the program name; -1 when they do not ask for it. Needs a
// QApplication (the controls are instantiated to read their key tables).
int runDescribe(const QStringList& arguments, QTextStream& out, QTextStream& err);

// True when the arguments ask for --describe (read before the application object exists).
bool wantsDescribe(int argc, char** argv);

// For the page host's main: answers --describe on an offscreen application and returns its exit
// code, or -1 when the command line is not a --describe one.
int describeFromCommandLine(int argc, char** argv);

} // namespace nxr::reference
