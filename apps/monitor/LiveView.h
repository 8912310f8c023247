#ifndef APPS_MONITOR_LIVE_VIEW_H
#define APPS_MONITOR_LIVE_VIEW_H

// The monitor on a terminal: places, rules with their last values and states, the last events, drawn anew at each
// cycle on the terminal's second screen. The last picture is left on the first.

#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "monitor/ConditionMonitor.h"
#include "monitor/EventOutput.h"
#include "monitor/MonitorFigures.h"

class LiveView : public EventOutput {
public:
    LiveView() = default;
    ~LiveView() override;
    LiveView(const LiveView&) = delete;
    LiveView& operator=(const LiveView&) = delete;

    /// Notes an event for the next drawing.
    void tell(const Event& event, const std::string& line) override;

    void draw(const ConditionMonitor& monitor, const MonitorFigures& figures);

private:
    struct Line {
        std::string text;
        std::optional<Colour> colour;
    };

    std::vector<Line> linesOf(const ConditionMonitor& monitor, const MonitorFigures& figures, std::size_t height) const;
    void addRules(std::vector<Line>& lines, const ConditionMonitor& monitor, std::size_t room) const;

    ResultOutput m_output;
    std::string m_picture;  ///< drawn last
    std::deque<Event> m_lastEvents;
};

#endif
