#ifndef APPS_MONITOR_LIVE_VIEW_H
#define APPS_MONITOR_LIVE_VIEW_H

// The monitor on a terminal: places, rules with their last values and states, the last events, drawn anew at each
// cycle.

#include <chrono>
#include <deque>
#include <string>
#include <vector>

#include "monitor/ConditionMonitor.h"
#include "monitor/EventOutput.h"
#include "monitor/MonitorFigures.h"

class LiveView : public EventOutput {
public:
    /// Notes an event for the next drawing.
    void tell(const Event& event, const std::string& line) override;

    void draw(const ConditionMonitor& monitor, const MonitorFigures& figures);

private:
    std::vector<std::string> lines(const ConditionMonitor& monitor, const MonitorFigures& figures,
                                   std::size_t height) const;

    ResultOutput m_output;
    std::deque<Event> m_lastEvents;
};

#endif
