#ifndef APPS_MONITOR_CONDITION_MONITOR_H
#define APPS_MONITOR_CONDITION_MONITOR_H

// Decides what is an event: keeps the rules of a book with their previous samples and states, and the failures of their
// sources, and compares each reading with what it keeps. No input, no output, no clock.
//
// The owner of a monitor
//
//     restores what an earlier one kept (the restore functions)          once, before the first book
//     gives it the book, and gives it again when that has changed        follow
//     reads oidsOf each of the places and hands in the readings          takeReading
//     keeps places() and refusedRows() before it lets anybody see the events
//
// A condition starts cleared. One that is raised when its rule goes (removed, ignored, its place disabled) is cleared
// then. While its object cannot be read a condition stays as it is.

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "cards/ReadPlan.h"
#include "monitor/Event.h"
#include "monitor/RuleBook.h"
#include "rules/RuleSession.h"

/// A rule on an object, parsed, with its memory.
struct WatchedRule {
    std::string text;
    RuleSession session;
};

struct WatchedObject {
    std::vector<WatchedRule> rules;
    std::string failure;  ///< why it cannot be read or evaluated; empty if it can
};

struct WatchedPlace {
    std::map<std::uint32_t, WatchedObject> objects;
    std::string failure;  ///< why none of its objects can be read; empty if they can
};

class ConditionMonitor {
public:
    using Events = std::vector<Event>;

    /// Adds a rule with its memory. False if the text is no rule that can be evaluated.
    bool restoreRule(const RuleKey& key, const RuleMemory& memory);

    /// Notes a failure that was told already, of an object or of a whole place.
    void restoreFailure(const Place& place, std::optional<std::uint32_t> oid, const std::string& failure);

    /// Notes a refused row that was told already.
    void restoreRefusal(const RefusedRow& row) { m_refusedRows.insert(row); }

    /// Takes the rules of `book`, no others: those that it has already keep their memory.
    void follow(const RuleBook& book, EventTime now, Events& events);

    /// Evaluates the rules of a place on what was read of its objects.
    void takeReading(const Place& place, const Reading& reading, EventTime now, Events& events);

    /// Notes that nothing could be read of a place, and why.
    void takeFailure(const Place& place, const std::string& reason, EventTime now, Events& events);

    const std::map<Place, WatchedPlace>& places() const { return m_places; }

    /// The rows that the book refuses, all of them told.
    const std::set<RefusedRow>& refusedRows() const { return m_refusedRows; }

    /// The objects of a place that have rules.
    ObjectIdContainer oidsOf(const Place& place) const;

    /// How many rules were evaluated since construction.
    std::uint64_t evaluations() const { return m_evaluations; }

private:
    WatchedRule* findRule(const RuleKey& key);
    void dropRulesWithout(const RuleBook& book, EventTime now, Events& events);
    void evaluate(const Place& place, std::uint32_t oid, WatchedRule& rule, SampleValue sample, EventTime now,
                  Events& events);
    std::string takeValue(const Place& place, std::uint32_t oid, WatchedObject& object, const Reading& reading,
                          EventTime now, Events& events);

    std::map<Place, WatchedPlace> m_places;
    std::set<RefusedRow> m_refusedRows;
    std::uint64_t m_evaluations = 0;
};

#endif
