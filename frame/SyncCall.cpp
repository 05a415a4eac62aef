#include "frame/SyncCall.h"

#include <vector>

namespace nxr {
namespace {

struct CallStack
{
    struct Owner
    {
        QPointer<QObject> object;
        bool given = false;
    };
    std::vector<Owner> owners;
    // Where the chain of each wait in progress starts in `owners`.
    std::vector<size_t> waits;

    size_t chainStart() const { return waits.empty() ? 0 : waits.back(); }
};

CallStack& stack()
{
    thread_local CallStack s;
    return s;
}

} // namespace

CallEntry::CallEntry(QObject* owner)
{
    CallStack& s = stack();
    m_outermost = s.owners.size() == s.chainStart();
    s.owners.push_back({owner, owner != nullptr});
}

CallEntry::~CallEntry()
{
    stack().owners.pop_back();
}

QList<QPointer<QObject>> CallEntry::chain()
{
    const CallStack& s = stack();
    QList<QPointer<QObject>> result;
    for (size_t i = s.chainStart(); i < s.owners.size(); ++i)
        if (s.owners[i].given)
            result.append(s.owners[i].object);
    return result;
}

bool CallEntry::chainBroken()
{
    const CallStack& s = stack();
    for (size_t i = s.chainStart(); i < s.owners.size(); ++i) {
        if (s.owners[i].given && s.owners[i].object.isNull())
            return true;
    }
    return false;
}

NestedWait::NestedWait()
{
    CallStack& s = stack();
    s.waits.push_back(s.owners.size());
}

NestedWait::~NestedWait()
{
    stack().waits.pop_back();
}

int NestedWait::depth()
{
    return int(stack().waits.size());
}

} // namespace nxr
