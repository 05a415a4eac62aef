#pragma once
// Empties the URL cache the page host fetches through, so that files fetched earlier from the
// controller are not shown stale. Cookies are left alone.

#include "frame/ScriptableObject.h"

class NXR_EXPORT NXRCacheControl : public nxr::ScriptableObject
{
    Q_OBJECT
    Q_CLASSINFO("Description", "Empties the URL cache pages are fetched through (cookies are kept)")

public:
    explicit NXRCacheControl(QObject* parent = nullptr);

    Q_INVOKABLE void Delete_IECache();

    // How the last Delete_IECache went: the steps taken, the entries deleted and the status that
    // ended the walk (-1: nothing more to size, 259: no more items, other: a failed call).
    int lastSteps() const { return m_steps; }
    int lastDeleted() const { return m_deleted; }
    int lastStatus() const { return m_status; }

private:
    int step(bool first);

    quint64 m_handle = 0;
    int m_steps = 0;
    int m_deleted = 0;
    int m_status = 0;
};
