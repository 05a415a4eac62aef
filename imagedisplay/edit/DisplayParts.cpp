#include "imagedisplay/edit/DisplayParts.h"

#include <stdexcept>

namespace nxr {
namespace {
struct Registered
{
    std::type_index type;
    DisplayParts::Factory factory;
};

std::vector<Registered>& registry()
{
    static std::vector<Registered> list;
    return list;
}
} // namespace

bool DisplayParts::registerFactory(std::type_index type, Factory factory)
{
    for (const Registered& r : registry()) {
        if (r.type == type)
            return false;
    }
    registry().push_back(Registered{type, std::move(factory)});
    return true;
}

DisplayParts::DisplayParts(EditHost& host)
{
    for (const Registered& r : registry())
        m_parts.push_back(Made{r.type, r.factory(host)});
}

DisplayParts::~DisplayParts()
{
    // Last made, first gone: a part may lean on one made before it.
    while (!m_parts.empty())
        m_parts.pop_back();
}

DisplayPart& DisplayParts::get(std::type_index type) const
{
    for (const Made& m : m_parts) {
        if (m.type == type)
            return *m.part;
    }
    throw std::logic_error(std::string("display part not registered: ") + type.name());
}

} // namespace nxr
