#ifndef APPS_MONITOR_EVENT_H
#define APPS_MONITOR_EVENT_H

// What the monitor reports: that a condition of a rule was raised or cleared, that a source of values failed or
// recovered, that a row of the database is refused. docs/monitor.md describes the texts.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "common/UtcTime.h"
#include "rules/RuleSession.h"
#include "tables/Place.h"

namespace brantel {

enum class EventKind {
    RAISED,
    CLEARED,
    FAILED,     ///< a place, or one of its objects, cannot be read or evaluated
    RECOVERED,  ///< the end of such a failure
    REFUSED,    ///< a row of the database is not followed
    LOST        ///< there was no room for events while the journal could not be written
};
constexpr std::size_t N_EVENT_KINDS = 6;

/// Numbers of events in a row.
struct EventRange {
    std::uint64_t first;
    std::uint64_t last;

    std::uint64_t count() const { return last - first + 1; }
};

/// The largest valid number of an event: no monitor runs long enough to reach it, and readers of JSON still represent
/// it exactly.
constexpr std::uint64_t MAX_EVENT_NUMBER = 1'000'000'000'000'000;

struct Event {
    std::uint64_t number = 0;  ///< counts all events of a journal, from 1
    UtcTime time;
    EventKind kind = EventKind::RAISED;
    std::optional<Place> place;                ///< none: REFUSED, LOST
    std::optional<std::uint32_t> oid;          ///< none: the whole place
    std::string rule;                          ///< empty: not about a rule
    std::string condition;                     ///< "upper" or "lower" of a double hysteresis
    std::optional<SampleValue> value;          ///< none: not caused by a sample
    std::optional<SampleValue> previousValue;  ///< the sample before
    std::string reason;
    std::optional<EventRange> lost{};  ///< LOST: which
};

using Events = std::vector<Event>;

/// Takes the events of one moment.
struct EventSink {
    UtcTime now;
    Events& events;

    /// Appends an event, to be filled in.
    Event& add(EventKind kind) const;
};

/// "raised", "cleared", "failed", "recovered", "refused", "lost".
const char* eventKindText(EventKind kind);

/// An event as a JSON object in one line, without the line's end. Bytes that are not UTF-8 are replaced.
std::string eventJson(const Event& event);

/// Reads such a line; nothing if it is not an event, or if a number in it is out of range.
std::optional<Event> parseEvent(const std::string& line);

/// An event in one line for people, without time and number: "slot 3 csv.1 raised: 92 > 90: above ...".
std::string eventText(const Event& event);

}  // namespace brantel

#endif
