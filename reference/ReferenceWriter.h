#pragma once
// The class reference as text for a terminal and as the Markdown document docs/reference.md.

#include "reference/ClassDescription.h"

namespace nxr::reference {

QString toText(const ClassDescription& d);
QString toMarkdown(const QList<ClassDescription>& classes);

} // namespace nxr::reference
