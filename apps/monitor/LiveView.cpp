#include "monitor/LiveView.h"

#include <algorithm>
#include <cstdio>

#include <sys/ioctl.h>
#include <unistd.h>

#include "cards/ReadingOutput.h"

namespace {

constexpr std::size_t N_EVENTS = 8;

struct TerminalSize {
    std::size_t width;
    std::size_t height;
};

TerminalSize terminalSize()
{
    winsize size = {};
    if ((::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0) || (size.ws_row == 0) || (size.ws_col == 0)) {
        return {80, 24};
    }
    return {size.ws_col, size.ws_row};
}

std::string milliseconds(MonitorFigures::Seconds time)
{
    char text[32] = "";
    static_cast<void>(std::snprintf(text, sizeof text, "%.1f ms", time.count() * 1000));
    return text;
}

std::string stateText(const WatchedRule& rule)
{
    std::string text;
    const std::vector<std::string> conditions = rule.session.conditionNames();
    for (std::size_t i = 0; i < conditions.size(); ++i) {
        if (rule.session.memory().isRaised[i]) {
            text += (text.empty() ? "RAISED" : ",") + (conditions[i].empty() ? "" : " " + conditions[i]);
        }
    }
    return text.empty() ? "cleared" : text;
}

std::string valueText(const WatchedRule& rule)
{
    const std::optional<SampleValue>& sample = rule.session.memory().previousSample;
    return sample ? std::to_string(*sample) : "-";
}

// Raised conditions and failing objects first, so that they are seen when there is no room for all.
std::vector<std::vector<std::string>> ruleRows(const ConditionMonitor& monitor)
{
    std::vector<std::vector<std::string>> urgent;
    std::vector<std::vector<std::string>> others;
    for (const auto& [place, watched] : monitor.places()) {
        for (const auto& [oid, object] : watched.objects) {
            for (const WatchedRule& rule : object.rules) {
                const std::string state = object.failure.empty() ? stateText(rule) : "failed: " + object.failure;
                auto& rows = (state == "cleared") ? others : urgent;
                rows.push_back({placeText(place), nameOfOid(oid), valueText(rule), state, rule.text});
            }
        }
    }
    urgent.insert(urgent.end(), others.begin(), others.end());
    return urgent;
}

std::string placeLine(const std::pair<const Place, WatchedPlace>& entry, const MonitorFigures& figures)
{
    const auto& [place, watched] = entry;
    const auto found = figures.places.find(place);
    const MonitorFigures::PlaceFigures each =
        (found == figures.places.end()) ? MonitorFigures::PlaceFigures() : found->second;
    return placeText(place) + ": " + (watched.failure.empty() ? "answers" : "FAILED: " + watched.failure) + ", " +
           std::to_string(watched.objects.size()) + " objects, " + std::to_string(each.readings) + " readings, last " +
           milliseconds(each.lastReading);
}

}  // namespace

void LiveView::tell(const Event& event, const std::string&)
{
    m_lastEvents.push_back(event);
    if (m_lastEvents.size() > N_EVENTS) {
        m_lastEvents.pop_front();
    }
}

void LiveView::draw(const ConditionMonitor& monitor, const MonitorFigures& figures)
{
    const TerminalSize size = terminalSize();
    std::string picture = "\x1b[H";
    for (const std::string& line : lines(monitor, figures, size.height)) {
        picture += printable(line).substr(0, size.width) + "\x1b[K\r\n";
    }
    picture += "\x1b[J";
    m_output.writeText(picture);
    m_output.finish();
}

std::vector<std::string> LiveView::lines(const ConditionMonitor& monitor, const MonitorFigures& figures,
                                         std::size_t height) const
{
    std::vector<std::string> lines = {"brantel monitor: cycle " + std::to_string(figures.cycles) + ", last " +
                                      milliseconds(figures.lastCycle) + ", longest " +
                                      milliseconds(figures.longestCycle) + ", " + std::to_string(figures.evaluations) +
                                      " evaluations"};
    for (const auto& entry : monitor.places()) {
        lines.push_back(placeLine(entry, figures));
    }
    const std::vector<std::string> rules = alignedLines(ruleRows(monitor));
    const std::size_t reserved = lines.size() + m_lastEvents.size() + 4;
    const std::size_t room = (height > reserved) ? height - reserved : 1;
    const std::size_t shown = std::min(room, rules.size());
    lines.emplace_back();
    lines.insert(lines.end(), rules.begin(), rules.begin() + static_cast<std::ptrdiff_t>(shown));
    if (shown < rules.size()) {
        lines.push_back("... and " + std::to_string(rules.size() - shown) + " rules more");
    }
    lines.emplace_back();
    for (const Event& event : m_lastEvents) {
        lines.push_back(timeText(event.time).substr(11, 8) + " " + sentenceOf(event));
    }
    return lines;
}
