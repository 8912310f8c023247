#include "monitor/MonitorMetrics.h"

#include <iomanip>
#include <sstream>

namespace brantel {
namespace {

constexpr const char* PART_NAMES[N_CYCLE_PARTS] = {"database", "send", "wait",     "receive",
                                                   "decode",   "host", "evaluate", "record"};

class MetricsText {
public:
    MetricsText() { m_text << std::setprecision(9); }

    void startMetric(const std::string& name, const char* type, const char* help)
    {
        m_name = "brantel_monitor_" + name;
        m_text << "# HELP " << m_name << ' ' << help << "\n# TYPE " << m_name << ' ' << type << '\n';
    }

    template <typename Number>
    void addValue(Number value, const std::string& labels = "")
    {
        m_text << m_name << (labels.empty() ? "" : "{" + labels + "}") << ' ' << value << '\n';
    }

    template <typename Number>
    void addMetric(const std::string& name, const char* type, const char* help, Number value)
    {
        startMetric(name, type, help);
        addValue(value);
    }

    std::string text() const { return m_text.str(); }

private:
    std::ostringstream m_text;
    std::string m_name;
};

std::string label(const std::string& name, const std::string& value)
{
    return name + "=\"" + value + "\"";
}

struct Totals {
    std::uint64_t rules = 0;
    std::uint64_t raised = 0;
    std::uint64_t failing = 0;
};

Totals totalsOf(const ConditionMonitor& monitor)
{
    Totals totals;
    for (const auto& [place, watched] : monitor.places()) {
        totals.failing += std::uint64_t{!watched.failure.empty()};
        for (const auto& [oid, object] : watched.objects) {
            totals.failing += std::uint64_t{!object.failure.empty()};
            for (const auto& [text, session] : object.rules) {
                const RuleMemory& memory = session.memory();
                totals.raised += std::uint64_t{memory.isRaised} + std::uint64_t{memory.isLowerRaised};
                ++totals.rules;
            }
        }
    }
    return totals;
}

void addPlaces(MetricsText& text, const MonitorMetrics& metrics)
{
    const auto addEach = [&](auto member) {
        for (const auto& [place, each] : metrics.places) {
            text.addValue(each.*member, label(placeKindText(place.kind), std::to_string(place.number)));
        }
    };
    using PlaceMetrics = MonitorMetrics::PlaceMetrics;
    text.startMetric("readings_total", "counter", "Readings of a place that were completed.");
    addEach(&PlaceMetrics::readings);
    text.startMetric("failed_readings_total", "counter", "Readings of a place that brought nothing.");
    addEach(&PlaceMetrics::failures);
    text.startMetric("skipped_readings_total", "counter", "Readings not begun because one was under way.");
    addEach(&PlaceMetrics::skipped);
    text.startMetric("reading_seconds", "gauge", "How long the last reading of a place took.");
    for (const auto& [place, each] : metrics.places) {
        text.addValue(each.lastReading.count(), label(placeKindText(place.kind), std::to_string(place.number)));
    }
}

}  // namespace

std::string prometheusText(const MonitorMetrics& metrics, const ConditionMonitor& monitor)
{
    MetricsText text;
    text.addMetric("cycles_total", "counter", "Cycles begun.", metrics.cycles);
    text.addMetric("late_cycles_total", "counter", "Cycles that began later than their time.", metrics.lateCycles);
    text.addMetric("cycle_seconds_total", "counter", "Time of all cycles, each to its last recorded reading.",
                   metrics.cycleTime.count());
    text.addMetric("last_cycle_seconds", "gauge", "Time of the last cycle.", metrics.lastCycle.count());
    text.addMetric("longest_cycle_seconds", "gauge", "Time of the longest cycle.", metrics.longestCycle.count());
    text.startMetric("part_seconds_total", "counter", "Time of cycles by activity; wait is for answers.");
    for (std::size_t i = 0; i < N_CYCLE_PARTS; ++i) {
        text.addValue(metrics.parts[i].count(), label("part", PART_NAMES[i]));
    }
    text.addMetric("requests_total", "counter", "Requests sent to cards.", metrics.requests);
    addPlaces(text, metrics);
    text.addMetric("evaluations_total", "counter", "Evaluations of rules.", metrics.evaluations);
    text.startMetric("events_total", "counter", "Events by kind.");
    for (std::size_t i = 0; i < metrics.events.size(); ++i) {
        text.addValue(metrics.events[i], label("kind", eventKindText(static_cast<EventKind>(i))));
    }
    text.addMetric("waiting_events", "gauge", "Events that the journal could not take or synchronise yet.",
                   metrics.waitingEvents);
    text.addMetric("lost_events_total", "counter", "Events without room while the journal could not be written.",
                   metrics.lostEvents);
    text.startMetric("unwritable_seconds", "gauge", "How long a file has failed to be written; 0 if it has not.");
    text.addValue(metrics.journalFailing.count(), label("file", "journal"));
    text.addValue(metrics.stateFailing.count(), label("file", "state"));
    const Totals totals = totalsOf(monitor);
    text.addMetric("rules", "gauge", "Rules followed.", totals.rules);
    text.addMetric("raised_conditions", "gauge", "Conditions that are raised.", totals.raised);
    text.addMetric("failing_sources", "gauge", "Places and objects that cannot be read or evaluated.", totals.failing);
    return text.text();
}

}  // namespace brantel
