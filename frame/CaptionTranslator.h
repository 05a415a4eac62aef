#pragma once
// The caption sets in other languages, through Qt's translation system. Caption tables mark their
// English texts with QT_TRANSLATE_NOOP("Caption", "..."); lupdate collects them into
// translations/nexarocontrols_<code>.ts, the build compiles those into the library, and
// Globals::Caption::pick() looks the English text up here for the language of TORVIK_LANG.

#include "frame/Export.h"

#include <QString>

namespace nxr::Globals {

// The translation of `english` in the caption set of the language TORVIK_LANG selects ("jp"), or
// "" when that language has no caption set or the set has no translation for the text.
NXR_EXPORT QString translatedCaption(const QString& english);

// The compiled caption set of a language code, as a resource path.
NXR_EXPORT QString captionSetPath(const QString& code);

} // namespace nxr::Globals
