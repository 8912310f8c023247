#ifndef APPS_MONITOR_EVENT_H
#define APPS_MONITOR_EVENT_H

// What the monitor tells: that a condition of a rule was raised or cleared, that a source of values fails or answers
// again, that a row of the database is refused. docs/monitor.md describes the texts.

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "monitor/Place.h"
#include "rules/RuleSession.h"

enum class EventKind {
    RAISED,
    CLEARED,
    FAILED,   ///< a place, or one object of it, can not be read or evaluated
    ANSWERS,  ///< it can again
    REFUSED   ///< a row of the database is not followed
};

using EventTime = std::chrono::time_point<std::chrono::system_clock, std::chrono::milliseconds>;

struct Event {
    std::uint64_t number = 0;  ///< counts all events of a journal, from 1
    EventTime time;
    EventKind kind = EventKind::RAISED;
    std::optional<Place> place;                ///< none: REFUSED
    std::optional<std::uint32_t> oid;          ///< none: the whole place
    std::string rule;                          ///< empty: no rule is meant
    std::string condition;                     ///< "upper" or "lower" of a double hysteresis
    std::optional<SampleValue> value;          ///< none if no sample is behind it
    std::optional<SampleValue> previousValue;  ///< the sample before
    std::string why;
};

/// Now, in the resolution of events.
EventTime eventTimeNow();

/// "raised", "cleared", "failed", "answers", "refused".
const char* kindText(EventKind kind);

/// An event as a JSON object in one line, without the line's end. Bytes that are not UTF-8 are replaced.
std::string jsonLineOf(const Event& event);

/// The event of such a line; nothing if it is none.
std::optional<Event> eventOfJsonLine(const std::string& line);

/// What happened, in one line for people, without time and number: "slot 3 csv.1 raised: 92 > 90: above ...".
std::string sentenceOf(const Event& event);

/// "2026-11-21T09:26:53.589Z".
std::string timeText(EventTime time);

#endif
