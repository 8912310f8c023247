#include "monitor/MonitorMetrics.h"

#include <gtest/gtest.h>

#include "apps/monitor/Monitored.h"

namespace brantel {
namespace {

bool hasLine(const std::string& text, const std::string& line)
{
    return ("\n" + text).find("\n" + line + "\n") != std::string::npos;
}

TEST(MonitorMetrics, HaveHelpAndType)
{
    MonitorMetrics metrics;
    metrics.cycles = 12;

    EXPECT_EQ(prometheusText(metrics, ConditionMonitor())
                  .rfind("# HELP brantel_monitor_cycles_total Cycles begun.\n"
                         "# TYPE brantel_monitor_cycles_total counter\n"
                         "brantel_monitor_cycles_total 12\n",
                         0),
              0U);
}

TEST(MonitorMetrics, ShowConditionsFailuresAndCounts)
{
    ConditionMonitor monitor;
    monitor.restoreRule({slotPlace(3), 5, DOUBLE_HYSTERESIS_RULE}, {7, true, false});
    monitor.restoreRule({slotPlace(3), 6, ABOVE_90}, {91, true, false});
    monitor.restoreFailure(slotPlace(3), 6, "its value is not a number");
    MonitorMetrics metrics;
    metrics.addTo(CyclePart::EVALUATE, std::chrono::milliseconds(1500));
    metrics.places[slotPlace(3)].readings = 4;
    metrics.places[componentPlace(7)].failures = 2;
    metrics.events[static_cast<std::size_t>(EventKind::CLEARED)] = 9;
    metrics.waitingEvents = 12;
    metrics.lostEvents = 34;
    metrics.journalFailing = std::chrono::milliseconds(2500);

    const std::string text = prometheusText(metrics, monitor);

    for (const char* const line :
         {"brantel_monitor_rules 2", "brantel_monitor_raised_conditions 2", "brantel_monitor_failing_sources 1",
          "brantel_monitor_part_seconds_total{part=\"evaluate\"} 1.5", "brantel_monitor_readings_total{slot=\"3\"} 4",
          "brantel_monitor_failed_readings_total{component=\"7\"} 2",
          "brantel_monitor_events_total{kind=\"cleared\"} 9", "brantel_monitor_waiting_events 12",
          "brantel_monitor_lost_events_total 34", "brantel_monitor_unwritable_seconds{file=\"journal\"} 2.5",
          "brantel_monitor_unwritable_seconds{file=\"state\"} 0"}) {
        EXPECT_TRUE(hasLine(text, line)) << line << "\n" << text;
    }
}

}  // namespace

}  // namespace brantel
