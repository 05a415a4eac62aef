#pragma once
// The icons of a tree or list view, keyed by the page's image keys (numeric keys are stored as
// "Key_" + key, like node and item keys), loaded from picture files.

#include "frame/Export.h"

#include <QHash>
#include <QIcon>
#include <QString>

namespace nxr::views {

class NXR_EXPORT ImageList
{
public:
    enum class Step { Load, Add };
    struct Error
    {
        Step step;
        QString description;
    };

    // Loads the picture file and files it under key. Throws Error: Step::Load when the file is
    // missing, no regular file, larger than 32 MB or no picture (one text for all, so a page learns
    // nothing about local files it cannot show); Step::Add for an empty or taken key. Nothing is
    // changed on failure.
    void add(const QString& path, const QString& key);
    // Files an icon directly (C++ callers).
    void add(const QIcon& icon, const QString& key);
    // add() for the views' AddListImage: the error text the page sees, empty on success.
    QString tryAdd(const QString& path, const QString& key);
    QString tryAdd(const QIcon& icon, const QString& key);

    bool contains(const QString& key) const;
    QIcon icon(const QString& key) const;
    int count() const { return int(m_icons.size()); }
    void clear() { m_icons.clear(); }

private:
    QHash<QString, QIcon> m_icons;
};

} // namespace nxr::views
