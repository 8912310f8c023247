#ifndef TESTS_MONITOR_MONITORED_H
#define TESTS_MONITOR_MONITORED_H

// Rule sets, readings and events for the tests of the monitor.

#include <initializer_list>
#include <map>
#include <string>
#include <vector>

#include "monitor/ConditionMonitor.h"

namespace brantel {

constexpr UtcTime NOON{std::chrono::milliseconds(1789214400123)};  // 2026-09-12T12:00:00.123Z

constexpr const char* ABOVE_90 = "expr=signed(value>90)";
constexpr const char* HYSTERESIS = "expr=unsigned(hyshigh(70,80))";
constexpr const char* DOUBLE_HYSTERESIS_RULE = "expr=signed(hyshigh(70,80) hyslow(10,20))";
constexpr const char* CHANGE_ABOVE_5 = "expr=unsigned(delta>5)";

/// A rule set with these rules, their places enabled.
inline RuleSet ruleSetOf(std::initializer_list<RuleKey> rules)
{
    RuleSet ruleSet;
    for (const RuleKey& rule : rules) {
        ruleSet.enabledPlaces.insert(rule.place);
        ruleSet.rules.insert(rule);
    }
    return ruleSet;
}

/// What was read: numbers of type int.
inline Reading readingOf(const std::map<std::uint32_t, int>& values)
{
    Reading reading;
    for (const auto& [oid, value] : values) {
        reading.values[oid] = {OID_TYPE_INT32, value};
    }
    return reading;
}

/// The events as the sentences that people read.
inline std::vector<std::string> sentencesOf(const std::vector<Event>& events)
{
    std::vector<std::string> sentences;
    sentences.reserve(events.size());
    for (const Event& event : events) {
        sentences.push_back(eventText(event));
    }
    return sentences;
}

/// A monitor, and the sentences of what each step brings.
class TestedMonitor {
public:
    using Sentences = std::vector<std::string>;

    Sentences follow(const RuleSet& ruleSet)
    {
        return collect([&](auto& events) { m_monitor.follow(ruleSet, {NOON, events}); });
    }

    Sentences take(const Place& place, const Reading& reading)
    {
        return collect([&](auto& events) { m_monitor.takeReading(place, reading, {NOON, events}); });
    }

    Sentences fail(const Place& place, const std::string& reason)
    {
        return collect([&](auto& events) { m_monitor.takeFailure(place, reason, {NOON, events}); });
    }

    ConditionMonitor& monitor() { return m_monitor; }

private:
    template <typename Step>
    static Sentences collect(const Step& step)
    {
        std::vector<Event> events;
        step(events);
        return sentencesOf(events);
    }

    ConditionMonitor m_monitor;
};

}  // namespace brantel

#endif
