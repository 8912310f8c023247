#ifndef APPS_TABLES_PLACE_H
#define APPS_TABLES_PLACE_H

// Where a managed object is: on the interface card in a slot, or in a component of the system card.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <tuple>

namespace brantel {

struct Place {
    enum class Kind { SLOT, COMPONENT };

    Kind kind;
    std::uint32_t number;
};

constexpr std::array<Place::Kind, 2> PLACE_KINDS{Place::Kind::SLOT, Place::Kind::COMPONENT};

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
inline std::string placeKindText(Place::Kind kind)
{
    return (kind == Place::Kind::SLOT) ? "slot" : "component";
}

/// "slot 3", "component 7".
inline std::string placeText(const Place& place)
{
    return placeKindText(place.kind) + " " + std::to_string(place.number);
}

/// The kind of that name; nothing for any other text.
inline std::optional<Place::Kind> parsePlaceKind(const std::string& text)
{
    for (const Place::Kind kind : PLACE_KINDS) {
        if (text == placeKindText(kind)) {
            return kind;
        }
    }
    return std::nullopt;
}

}  // namespace brantel

#endif
