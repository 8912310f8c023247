#include "monitor/MonitorFigures.h"

#include <gtest/gtest.h>

#include "monitor/Monitored.h"

namespace {

bool hasLine(const std::string& text, const std::string& line)
{
    return ("\n" + text).find("\n" + line + "\n") != std::string::npos;
}

TEST(MonitorFigures, AreMetricsWithHelpAndType)
{
    MonitorFigures figures;
    figures.cycles = 12;

    EXPECT_EQ(prometheusText(figures, ConditionMonitor())
                  .rfind("# HELP brantel_monitor_cycles_total Cycles begun.\n"
                         "# TYPE brantel_monitor_cycles_total counter\n"
                         "brantel_monitor_cycles_total 12\n",
                         0),
              0U);
}

TEST(MonitorFigures, TellWhatStandsAndWhatHappened)
{
    ConditionMonitor monitor;
    monitor.restoreRule({slotPlace(3), 5, DOUBLE_HYSTERESIS_RULE}, {7, {true, false}});
    monitor.restoreRule({slotPlace(3), 6, ABOVE_90}, {91, {true, false}});
    monitor.restoreFailure(slotPlace(3), 6, "its value is not a number");
    MonitorFigures figures;
    figures.addTo(CyclePart::EVALUATE, std::chrono::milliseconds(1500));
    figures.places[slotPlace(3)].readings = 4;
    figures.places[componentPlace(7)].failures = 2;
    figures.events[static_cast<std::size_t>(EventKind::CLEARED)] = 9;

    const std::string text = prometheusText(figures, monitor);

    for (const char* const line :
         {"brantel_monitor_rules 2", "brantel_monitor_raised_conditions 2", "brantel_monitor_failing_sources 1",
          "brantel_monitor_part_seconds_total{part=\"evaluate\"} 1.5", "brantel_monitor_readings_total{slot=\"3\"} 4",
          "brantel_monitor_failed_readings_total{component=\"7\"} 2",
          "brantel_monitor_events_total{kind=\"cleared\"} 9"}) {
        EXPECT_TRUE(hasLine(text, line)) << line << "\n" << text;
    }
}

}  // namespace
