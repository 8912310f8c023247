#ifndef APPS_MONITOR_LIVE_VIEW_H
#define APPS_MONITOR_LIVE_VIEW_H

// The monitor on a terminal: places, rules with their last values and states, and the last events, redrawn in each
// cycle on the terminal's alternate screen. The last picture stays on the normal screen. A stopped terminal (Ctrl-S)
// gets the newest picture when it continues.

#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "monitor/ConditionMonitor.h"
#include "monitor/EventOutput.h"
#include "monitor/MonitorMetrics.h"

namespace brantel {

class LiveView : public EventOutput {
public:
    explicit LiveView(OutputQueue& output) : m_output(output) {}
    ~LiveView() override;
    LiveView(const LiveView&) = delete;
    LiveView& operator=(const LiveView&) = delete;

    /// Notes an event for the next drawing.
    void report(const Event& event) override;

    void draw(const ConditionMonitor& monitor, const MonitorMetrics& metrics);

    struct Line {
        std::string text;
        std::optional<Colour> colour;
    };

    /// The picture for a terminal of that height, at least a line shorter. If there is not enough room, raised rules
    /// come first, then failing places, failing rules, places that work, events, and the other rules; a line counts the
    /// places and rules that are left out.
    std::vector<Line> linesOf(const ConditionMonitor& monitor, const MonitorMetrics& metrics, std::size_t height) const;

private:
    void addEvents(std::vector<Line>& lines, std::size_t count) const;

    OutputQueue& m_output;
    const ResultOutput m_colours;
    std::string m_picture;  ///< drawn last
    std::deque<Event> m_lastEvents;
};

}  // namespace brantel

#endif
