#pragma once
// The subsystems the image display carries (result graphics, movable shapes, mask painting).
//
// A subsystem registers itself once, in its own source file:
//
//     NXR_REGISTER_DISPLAY_PART(nxr::MovableGraphics)
//
// where the class derives from DisplayPart and is built from an EditHost&. Every display makes
// one of each registered part when it is created (after its own parts, so the part may add
// property keys, layers and tool-bar actions in its constructor) and destroys them before its
// own parts. The display's public members reach a part in one line:
//
//     void NXRImageDisplay::EditMovableWindow() { part<nxr::MovableGraphics>().EditMovableWindow(); }

#include "frame/Export.h"

#include <functional>
#include <memory>
#include <typeindex>
#include <vector>

namespace nxr {

class EditHost;

class NXR_EXPORT DisplayPart
{
public:
    virtual ~DisplayPart() = default;
};

class NXR_EXPORT DisplayParts
{
public:
    using Factory = std::function<std::unique_ptr<DisplayPart>(EditHost&)>;

    template <typename Part> static bool registerPart()
    {
        return registerFactory(typeid(Part), [](EditHost& host) { return std::make_unique<Part>(host); });
    }
    static bool registerFactory(std::type_index type, Factory factory);

    // Makes one of each registered part.
    explicit DisplayParts(EditHost& host);
    ~DisplayParts();
    DisplayParts(const DisplayParts&) = delete;
    DisplayParts& operator=(const DisplayParts&) = delete;

    // The part of a registered type; throws std::logic_error for a type never registered.
    DisplayPart& get(std::type_index type) const;
    template <typename Part> Part& get() const { return static_cast<Part&>(get(typeid(Part))); }

private:
    struct Made
    {
        std::type_index type;
        std::unique_ptr<DisplayPart> part;
    };
    std::vector<Made> m_parts;
};

} // namespace nxr

#define NXR_REGISTER_DISPLAY_PART(Class)                                                                     \
    namespace {                                                                                              \
    [[maybe_unused]] const bool nxr_display_part_registered = ::nxr::DisplayParts::registerPart<Class>();    \
    }
