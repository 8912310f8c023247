#include "monitor/Event.h"

#include <array>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <type_traits>

#include <nlohmann/json.hpp>

#include "cards/OidTable.h"
#include "common/JsonLine.h"
#include "common/PrintableText.h"
#include "common/ResultOutput.h"

namespace brantel {

using Json = nlohmann::ordered_json;

namespace {

constexpr std::array<EventKind, N_EVENT_KINDS> EVENT_KINDS{EventKind::RAISED,    EventKind::CLEARED, EventKind::FAILED,
                                                           EventKind::RECOVERED, EventKind::REFUSED, EventKind::LOST};

std::optional<EventKind> parseEventKind(const std::string& text)
{
    for (const EventKind kind : EVENT_KINDS) {
        if (text == eventKindText(kind)) {
            return kind;
        }
    }
    return std::nullopt;
}

// The library would convert a number of any type and size. Throws std::out_of_range.
template <typename Number>
Number integerOf(const Json& json)
{
    const bool isInRange =
        json.is_number_unsigned()
            ? (json.get<std::uint64_t>() <= static_cast<std::uint64_t>(std::numeric_limits<Number>::max()))
            : (json.is_number_integer() && std::is_signed_v<Number> &&
               (json.get<std::int64_t>() >= static_cast<std::int64_t>(std::numeric_limits<Number>::min())));
    if (!isInRange) {
        throw std::out_of_range("not a number of its kind");
    }
    return json.get<Number>();
}

std::uint64_t eventNumberOf(const Json& json)
{
    const auto number = integerOf<std::uint64_t>(json);
    if ((number < 1) || (number > MAX_EVENT_NUMBER)) {
        throw std::out_of_range("not the number of an event");
    }
    return number;
}

std::optional<EventRange> lostOf(const Json& json)
{
    if (!json.contains("lost")) {
        return std::nullopt;
    }
    return EventRange{eventNumberOf(json.at("first")), eventNumberOf(json.at("last"))};
}

std::optional<Place> placeOf(const Json& json)
{
    for (const Place::Kind kind : PLACE_KINDS) {
        if (json.contains(placeKindText(kind))) {
            return Place{kind, integerOf<std::uint32_t>(json.at(placeKindText(kind)))};
        }
    }
    return std::nullopt;
}

template <typename Number>
std::optional<Number> numberOf(const Json& json, const char* key)
{
    return json.contains(key) ? std::optional(integerOf<Number>(json.at(key))) : std::nullopt;
}

}  // namespace

Event& EventSink::add(EventKind kind) const
{
    Event& event = events.emplace_back();
    event.time = now;
    event.kind = kind;
    return event;
}

const char* eventKindText(EventKind kind)
{
    switch (kind) {
        case EventKind::RAISED: return "raised";
        case EventKind::CLEARED: return "cleared";
        case EventKind::FAILED: return "failed";
        case EventKind::RECOVERED: return "recovered";
        case EventKind::REFUSED: return "refused";
        case EventKind::LOST: return "lost";
    }
    return "";
}

std::string eventJson(const Event& event)
{
    Json json = {{"event", event.number}, {"time", utcTimeText(event.time)}, {"kind", eventKindText(event.kind)}};
    if (event.place) {
        json[placeKindText(event.place->kind)] = event.place->number;
    }
    if (event.oid) {
        json["oid"] = *event.oid;
        json["object"] = objectName(*event.oid);
    }
    if (!event.rule.empty()) {
        json["rule"] = event.rule;
    }
    if (!event.condition.empty()) {
        json["condition"] = event.condition;
    }
    if (event.value) {
        json["value"] = *event.value;
    }
    if (event.previousValue) {
        json["previous"] = *event.previousValue;
    }
    if (event.lost) {
        json["lost"] = event.lost->count();
        json["first"] = event.lost->first;
        json["last"] = event.lost->last;
    }
    json["reason"] = event.reason;
    return jsonLine(json);
}

std::optional<Event> parseEvent(const std::string& line)
{
    try {
        const Json json = Json::parse(line);
        const std::optional<UtcTime> time = parseUtcTime(json.at("time").get<std::string>());
        const std::optional<EventKind> kind = parseEventKind(json.at("kind").get<std::string>());
        if (!time || !kind) {
            return std::nullopt;
        }
        Event event;
        event.number = eventNumberOf(json.at("event"));
        event.time = *time;
        event.kind = *kind;
        event.place = placeOf(json);
        event.oid = numberOf<std::uint32_t>(json, "oid");
        event.rule = json.value("rule", "");
        event.condition = json.value("condition", "");
        event.value = numberOf<SampleValue>(json, "value");
        event.previousValue = numberOf<SampleValue>(json, "previous");
        event.reason = json.at("reason").get<std::string>();
        event.lost = lostOf(json);
        return event;
    } catch (const Json::exception&) {
        return std::nullopt;
    } catch (const std::out_of_range&) {
        return std::nullopt;
    }
}

std::string eventText(const Event& event)
{
    std::string subject;
    if (event.place) {
        subject = placeText(*event.place) + " ";
    }
    if (event.oid) {
        subject += objectName(*event.oid) + " ";
    }
    if (!event.condition.empty()) {
        subject += event.condition + " ";
    }
    const std::string rule = event.rule.empty() ? "" : " [" + event.rule + "]";
    return printable(subject + eventKindText(event.kind) + ": " + event.reason + rule);
}

}  // namespace brantel
