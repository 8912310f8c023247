#include "monitor/MonitorFigures.h"

#include <iomanip>
#include <sstream>

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

struct Standing {
    std::uint64_t rules = 0;
    std::uint64_t raised = 0;
    std::uint64_t failing = 0;
};

Standing standingOf(const ConditionMonitor& monitor)
{
    Standing standing;
    for (const auto& [place, watched] : monitor.places()) {
        standing.failing += std::uint64_t{!watched.failure.empty()};
        for (const auto& [oid, object] : watched.objects) {
            standing.failing += std::uint64_t{!object.failure.empty()};
            for (const WatchedRule& rule : object.rules) {
                const auto& isRaised = rule.session.memory().isRaised;
                standing.raised += std::uint64_t{isRaised[0]} + std::uint64_t{isRaised[1]};
                ++standing.rules;
            }
        }
    }
    return standing;
}

void addPlaces(MetricsText& text, const MonitorFigures& figures)
{
    const auto addEach = [&](auto member) {
        for (const auto& [place, each] : figures.places) {
            text.addValue(each.*member, label(kindText(place.kind), std::to_string(place.number)));
        }
    };
    using PlaceFigures = MonitorFigures::PlaceFigures;
    text.startMetric("readings_total", "counter", "Readings of a place that were completed.");
    addEach(&PlaceFigures::readings);
    text.startMetric("failed_readings_total", "counter", "Readings of a place that brought nothing.");
    addEach(&PlaceFigures::failures);
    text.startMetric("skipped_readings_total", "counter", "Readings not begun because one was under way.");
    addEach(&PlaceFigures::skipped);
    text.startMetric("reading_seconds", "gauge", "How long the last reading of a place took.");
    for (const auto& [place, each] : figures.places) {
        text.addValue(each.lastReading.count(), label(kindText(place.kind), std::to_string(place.number)));
    }
}

}  // namespace

std::string prometheusText(const MonitorFigures& figures, const ConditionMonitor& monitor)
{
    MetricsText text;
    text.addMetric("cycles_total", "counter", "Cycles begun.", figures.cycles);
    text.addMetric("late_cycles_total", "counter", "Cycles that began later than their time.", figures.lateCycles);
    text.addMetric("cycle_seconds_total", "counter", "Time of all cycles, each to its last recorded reading.",
                   figures.cycleTime.count());
    text.addMetric("last_cycle_seconds", "gauge", "Time of the last cycle.", figures.lastCycle.count());
    text.addMetric("longest_cycle_seconds", "gauge", "Time of the longest cycle.", figures.longestCycle.count());
    text.startMetric("part_seconds_total", "counter", "What the time went into; all but wait is the monitor's own.");
    for (std::size_t i = 0; i < N_CYCLE_PARTS; ++i) {
        text.addValue(figures.parts[i].count(), label("part", PART_NAMES[i]));
    }
    text.addMetric("requests_total", "counter", "Requests sent to cards.", figures.requests);
    addPlaces(text, figures);
    text.addMetric("evaluations_total", "counter", "Evaluations of rules.", figures.evaluations);
    text.startMetric("events_total", "counter", "Events by kind.");
    for (std::size_t i = 0; i < figures.events.size(); ++i) {
        text.addValue(figures.events[i], label("kind", kindText(static_cast<EventKind>(i))));
    }
    const Standing standing = standingOf(monitor);
    text.addMetric("rules", "gauge", "Rules followed.", standing.rules);
    text.addMetric("raised_conditions", "gauge", "Conditions that are raised.", standing.raised);
    text.addMetric("failing_sources", "gauge", "Places and objects that cannot be read or evaluated.",
                   standing.failing);
    return text.text();
}
