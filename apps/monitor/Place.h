#ifndef APPS_MONITOR_PLACE_H
#define APPS_MONITOR_PLACE_H

// Where a managed object is: on the interface card in a slot, or in a component of the system card.

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>

struct Place {
    enum class Kind { SLOT, COMPONENT };

    Kind kind;
    std::uint32_t number;
};

inline Place slotPlace(std::uint32_t slot)
{
    return {Place::Kind::SLOT, slot};
}

inline Place componentPlace(std::uint32_t component)
{
    return {Place::Kind::COMPONENT, component};
}

inline bool operator<(const Place& left, const Place& right)
{
    return std::tie(left.kind, left.number) < std::tie(right.kind, right.number);
}

inline bool operator==(const Place& left, const Place& right)
{
    return (left.kind == right.kind) && (left.number == right.number);
}

inline bool operator!=(const Place& left, const Place& right)
{
    return !(left == right);
}

/// "slot" or "component".
inline std::string kindText(Place::Kind kind)
{
    return (kind == Place::Kind::SLOT) ? "slot" : "component";
}

/// "slot 3", "component 7".
inline std::string placeText(const Place& place)
{
    return kindText(place.kind) + " " + std::to_string(place.number);
}

/// The kind of that name; nothing for any other text.
inline std::optional<Place::Kind> kindOfText(const std::string& text)
{
    if (text == "slot") {
        return Place::Kind::SLOT;
    }
    return (text == "component") ? std::optional(Place::Kind::COMPONENT) : std::nullopt;
}

#endif
