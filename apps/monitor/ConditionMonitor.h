#ifndef APPS_MONITOR_CONDITION_MONITOR_H
#define APPS_MONITOR_CONDITION_MONITOR_H

// Determines events: keeps the rules of a rule set with their previous samples and states, and the failures of their
// sources, and compares each reading with them. No input, no output, no clock.
//
// The owner of a monitor
//
//     restores the memory of an earlier one (the restore functions)      once, before the first rule set
//     passes the rule set, and passes it again when it has changed       follow
//     reads oidsOf each place and passes the readings                    takeReading
//     saves places() and refusedRows() before it reports the events
//
// A condition starts cleared. One that is raised when its rule goes (removed, ignored, its place disabled) is cleared
// then. While its object cannot be read, a condition keeps its state.

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "cards/ReadPlan.h"
#include "monitor/Event.h"
#include "monitor/RuleSet.h"
#include "rules/RuleSession.h"

namespace brantel {

/// Rules, parsed, with their memories, by their texts. There may be very many on one object.
using WatchedRules = std::map<std::string, RuleSession>;

struct WatchedObject {
    WatchedRules rules;
    std::string failure;  ///< why it cannot be read or evaluated; empty if it can
};

struct WatchedPlace {
    std::map<std::uint32_t, WatchedObject> objects;
    std::string failure;  ///< why none of its objects can be read; empty if they can
};

class ConditionMonitor {
public:
    /// Adds a rule with its memory, or replaces the memory of a rule that exists. False if the text is not a rule that
    /// can be evaluated.
    bool restoreRule(const RuleKey& key, const RuleMemory& memory);

    /// Notes a failure that was already reported, of an object or of a whole place.
    void restoreFailure(const Place& place, std::optional<std::uint32_t> oid, const std::string& failure);

    /// Notes a refused row that was already reported.
    void restoreRefusal(const RefusedRow& row) { m_refusedRows.insert(row); }

    /// Follows the rules of `ruleSet` and no others; rules that are already followed keep their memory.
    void follow(const RuleSet& ruleSet, const EventSink& sink);

    /// Evaluates the rules of a place against a reading of its objects.
    void takeReading(const Place& place, const Reading& reading, const EventSink& sink);

    /// Notes that a place could not be read, and why.
    void takeFailure(const Place& place, const std::string& reason, const EventSink& sink);

    const std::map<Place, WatchedPlace>& places() const { return m_places; }

    /// The rows that the rule set refuses, all of them reported.
    const std::set<RefusedRow>& refusedRows() const { return m_refusedRows; }

    /// The objects of a place that have rules.
    ObjectIdContainer oidsOf(const Place& place) const;

    /// How many rules were evaluated since construction.
    std::uint64_t evaluations() const { return m_evaluations; }

private:
    bool hasRule(const RuleKey& key) const;
    void dropRulesWithout(const RuleSet& ruleSet, const EventSink& sink);
    void evaluate(const Place& place, std::uint32_t oid, WatchedRules::value_type& rule, SampleValue sample,
                  const EventSink& sink);
    std::string takeValue(const Place& place, std::uint32_t oid, WatchedObject& object, const Reading& reading,
                          const EventSink& sink);

    std::map<Place, WatchedPlace> m_places;
    std::set<RefusedRow> m_refusedRows;
    std::uint64_t m_evaluations = 0;
};

}  // namespace brantel

#endif
