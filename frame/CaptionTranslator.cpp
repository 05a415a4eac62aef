#include "frame/CaptionTranslator.h"

#include "frame/Globals.h"

#include <QFile>
#include <QTranslator>

#include <map>
#include <memory>

namespace nxr::Globals {

QString captionSetPath(const QString& code)
{
    return QStringLiteral(":/nexarocontrols/i18n/nexarocontrols_%1.qm").arg(code);
}

QString translatedCaption(const QString& english)
{
    const QString code = languageCode();
    if (code.isEmpty())
        return {};
    // One translator per language, loaded when first asked: TORVIK_LANG may change while the
    // process runs (NXRClientSetupObject), and controls made afterwards follow it. Kept private to
    // the library rather than installed in the application, whose own translations stay its own.
    static std::map<QString, std::unique_ptr<QTranslator>> translators;
    auto it = translators.find(code);
    if (it == translators.end()) {
        auto translator = std::make_unique<QTranslator>();
        if (!QFile::exists(captionSetPath(code)) || !translator->load(captionSetPath(code)))
            translator.reset();
        it = translators.emplace(code, std::move(translator)).first;
    }
    if (!it->second)
        return {};
    return it->second->translate("Caption", english.toUtf8().constData());
}

} // namespace nxr::Globals
