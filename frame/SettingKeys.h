#pragma once
// SetProperty writers the button bars share. A value that cannot be applied is reported as
// "Error setting <key> property: <why>" and changes nothing.

#include "frame/Conversions.h"
#include "frame/PropertyTable.h"
#include "frame/ScriptableCore.h"

#include <QWidget>

#include <functional>
#include <utility>

namespace nxr {

// Runs body for the key; a Failure it throws becomes the error above.
template <typename Body> void applySettingKey(ScriptableCore& core, const QString& key, Body&& body)
{
    try {
        body();
    } catch (const Failure& f) {
        core.reportError(QStringLiteral("SetProperty"), QStringLiteral("Error setting ") + key +
                                                            QStringLiteral(" property: ") + f.description());
    }
}

// A writer for a True/False key.
inline PropertyTable::Setter boolSettingKey(ScriptableCore& core, const QString& key,
                                            std::function<void(bool)> apply)
{
    return [&core, key, apply = std::move(apply)](const QString& v) {
        applySettingKey(core, key, [&] { apply(toBool(v)); });
    };
}

// A True/False key that shows `shape` over the widget while True (HourglassCursor,
// ProgressCursor).
inline PropertyTable::Setter cursorSettingKey(ScriptableCore& core, QWidget& widget, const QString& key,
                                              Qt::CursorShape shape)
{
    return boolSettingKey(core, key, [&widget, shape](bool on) {
        if (on)
            widget.setCursor(shape);
        else
            widget.unsetCursor();
    });
}

} // namespace nxr
