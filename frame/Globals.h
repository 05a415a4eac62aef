#pragma once
// The shared module: storage folder, image extensions, collection keys, paths, twips and
// pixels, character sets and the caption language.

#include "frame/Export.h"

#include <QString>

#include <utility>

class QWidget;

namespace nxr::Globals {

// The library's local storage root: the system temporary folder ($TMPDIR or /tmp) + "/TORVIK",
// computed on first use and kept for the life of the process. The folder is private to the
// user (mode 0700, owned by the user, not a symbolic link); when that path is taken by a link
// or by someone else, a per-user folder is used instead and the error trace says which.
// No trailing separator.
NXR_EXPORT QString storageFolder();

// For tests: where storageFolder() would settle for a given temporary folder, without caching.
NXR_EXPORT QString resolveStorageFolder(const QString& tempFolder);

// ".JPG", ".PNG", ".GIF" or ".BMP": the first of these (in this order) found anywhere in the
// upper-cased path; "" when none is.
NXR_EXPORT QString imageExtension(const QString& path);

// "Key_" + text for a numeric text, the text unchanged otherwise.
NXR_EXPORT QString collectionKey(const QString& text);

// The part after the last "\" (controller paths); the whole path when it has none.
NXR_EXPORT QString fileNameOfPath(const QString& path);

// Upper-cased, trimmed, with every "." and "/" removed: the form controller paths are compared in.
NXR_EXPORT QString normalizePath(const QString& path);

// Twips (1/1440 inch) and pixels of the primary screen, rounded to whole numbers.
NXR_EXPORT int twipsToPixels(double twips, bool horizontal = true);
NXR_EXPORT double pixelsToTwips(int pixels, bool horizontal = true);
NXR_EXPORT double twipsPerPixel(bool horizontal = true);

// When charset is numeric, applies that character set to the font of every widget inside
// container; widgets that fail are skipped.
NXR_EXPORT void setCharacterSet(QWidget* container, const QString& charset);

// The caption language from TORVIK_LANG: trimmed and lower-cased; "kn" and "jp" give "jp",
// "default" and "eg" give "eg"; anything else (or unset) gives "" (the built-in captions).
NXR_EXPORT QString languageCode();

// A caption; pick() chooses by languageCode(): the translation of `eg` in the library's caption
// set of that language (frame/CaptionTranslator.h), else `jp` for "jp" when given, else `eg`.
// Tables write {QT_TRANSLATE_NOOP("Caption", "English text")} so that lupdate finds the text.
struct NXR_EXPORT Caption
{
    Caption(QString english, QString japanese = {}) : eg(std::move(english)), jp(std::move(japanese)) {}
    QString eg;
    QString jp;
    QString pick() const;
};

} // namespace nxr::Globals
