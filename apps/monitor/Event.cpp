#include "monitor/Event.h"

#include <array>
#include <ctime>
#include <iomanip>
#include <sstream>

#include <nlohmann/json.hpp>

#include "cards/OidTable.h"
#include "cards/ReadingOutput.h"
#include "common/ResultOutput.h"

using Json = nlohmann::ordered_json;

namespace {

constexpr const char* TIME_FORMAT = "%Y-%m-%dT%H:%M:%S";

constexpr std::array EVENT_KINDS{EventKind::RAISED, EventKind::CLEARED, EventKind::FAILED, EventKind::ANSWERS,
                                 EventKind::REFUSED};

std::optional<EventKind> eventKindOf(const std::string& text)
{
    for (const EventKind kind : EVENT_KINDS) {
        if (text == kindText(kind)) {
            return kind;
        }
    }
    return std::nullopt;
}

std::optional<EventTime> timeOfText(const std::string& text)
{
    std::tm utc = {};
    std::istringstream stream(text);
    int milliseconds = 0;
    char point = '\0';
    char zone = '\0';
    stream >> std::get_time(&utc, TIME_FORMAT) >> point >> milliseconds >> zone;
    if (!stream || (stream.peek() != EOF) || (point != '.') || (zone != 'Z')) {
        return std::nullopt;
    }
    return EventTime(std::chrono::seconds(timegm(&utc)) + std::chrono::milliseconds(milliseconds));
}

std::optional<Place> placeOf(const Json& json)
{
    for (const Place::Kind kind : {Place::Kind::SLOT, Place::Kind::COMPONENT}) {
        if (json.contains(kindText(kind))) {
            return Place{kind, json.at(kindText(kind)).get<std::uint32_t>()};
        }
    }
    return std::nullopt;
}

template <typename Number>
std::optional<Number> numberOf(const Json& json, const char* key)
{
    return json.contains(key) ? std::optional(json.at(key).get<Number>()) : std::nullopt;
}

}  // namespace

EventTime eventTimeNow()
{
    return std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
}

const char* kindText(EventKind kind)
{
    switch (kind) {
        case EventKind::RAISED: return "raised";
        case EventKind::CLEARED: return "cleared";
        case EventKind::FAILED: return "failed";
        case EventKind::ANSWERS: return "answers";
        case EventKind::REFUSED: return "refused";
    }
    return "";
}

std::string jsonLineOf(const Event& event)
{
    Json json = {{"event", event.number}, {"time", timeText(event.time)}, {"kind", kindText(event.kind)}};
    if (event.place) {
        json[kindText(event.place->kind)] = event.place->number;
    }
    if (event.oid) {
        json["oid"] = *event.oid;
        json["object"] = nameOfOid(*event.oid);
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
    json["why"] = event.why;
    return lineOfJson(json);
}

std::optional<Event> eventOfJsonLine(const std::string& line)
{
    try {
        const Json json = Json::parse(line);
        const std::optional<EventTime> time = timeOfText(json.at("time").get<std::string>());
        const std::optional<EventKind> kind = eventKindOf(json.at("kind").get<std::string>());
        if (!time || !kind) {
            return std::nullopt;
        }
        return Event{json.at("event").get<std::uint64_t>(),
                     *time,
                     *kind,
                     placeOf(json),
                     numberOf<std::uint32_t>(json, "oid"),
                     json.value("rule", ""),
                     json.value("condition", ""),
                     numberOf<SampleValue>(json, "value"),
                     numberOf<SampleValue>(json, "previous"),
                     json.at("why").get<std::string>()};
    } catch (const Json::exception&) {
        return std::nullopt;
    }
}

std::string sentenceOf(const Event& event)
{
    std::string subject;
    if (event.place) {
        subject = placeText(*event.place) + " ";
    }
    if (event.oid) {
        subject += nameOfOid(*event.oid) + " ";
    }
    if (!event.condition.empty()) {
        subject += event.condition + " ";
    }
    const std::string rule = event.rule.empty() ? "" : " [" + event.rule + "]";
    return printable(subject + kindText(event.kind) + ": " + event.why + rule);
}

std::string timeText(EventTime time)
{
    const auto seconds = std::chrono::floor<std::chrono::seconds>(time);
    const std::time_t utcSeconds = seconds.time_since_epoch().count();
    std::tm utc = {};
    gmtime_r(&utcSeconds, &utc);
    std::ostringstream text;
    text << std::put_time(&utc, TIME_FORMAT) << '.' << std::setw(3) << std::setfill('0') << (time - seconds).count()
         << 'Z';
    return text.str();
}
