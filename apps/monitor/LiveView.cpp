#include "monitor/LiveView.h"

#include <algorithm>
#include <cstdio>

#include <sys/ioctl.h>
#include <unistd.h>

#include "cards/OidTable.h"
#include "common/TextTable.h"

namespace {

constexpr std::size_t N_EVENTS = 8;

constexpr const char* CLEARED = "cleared";

// What a terminal does with these.
constexpr const char* SECOND_SCREEN = "\x1b[?1049h";
constexpr const char* FIRST_SCREEN = "\x1b[?1049l";
constexpr const char* HOME = "\x1b[H";
constexpr const char* CLEAR_BELOW = "\x1b[J";

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
    return text.empty() ? CLEARED : text;
}

std::string valueText(const WatchedRule& rule)
{
    const std::optional<SampleValue>& sample = rule.session.memory().previousSample;
    return sample ? std::to_string(*sample) : "-";
}

struct RuleRows {
    std::vector<std::vector<std::string>> rows;
    std::size_t urgent = 0;  ///< how many of them, the first ones, are raised or failing
};

// What is urgent first, so that it is seen when there is no room for all.
RuleRows ruleRows(const ConditionMonitor& monitor)
{
    RuleRows result;
    std::vector<std::vector<std::string>> others;
    for (const auto& [place, watched] : monitor.places()) {
        for (const auto& [oid, object] : watched.objects) {
            for (const WatchedRule& rule : object.rules) {
                const std::string state = object.failure.empty() ? stateText(rule) : "failed: " + object.failure;
                auto& rows = (state == CLEARED) ? others : result.rows;
                rows.push_back({placeText(place), nameOfOid(oid), valueText(rule), state, rule.text});
            }
        }
    }
    result.urgent = result.rows.size();
    result.rows.insert(result.rows.end(), others.begin(), others.end());
    return result;
}

// The beginning of `text` that is at most `width` characters wide.
std::string cutTo(const std::string& text, std::size_t width)
{
    std::size_t length = std::min(text.size(), width);
    while ((length < text.size()) && (characterCount(text, length + 1) <= width)) {
        ++length;
    }
    return text.substr(0, length);
}

std::string placeLine(const std::pair<const Place, WatchedPlace>& entry, const MonitorFigures& figures)
{
    const auto& [place, watched] = entry;
    const auto found = figures.places.find(place);
    const MonitorFigures::PlaceFigures each =
        (found == figures.places.end()) ? MonitorFigures::PlaceFigures() : found->second;
    return placeText(place) + ": " + (watched.failure.empty() ? "answers" : "FAILED: " + watched.failure) + ", " +
           counted(watched.objects.size(), "object") + ", " + counted(each.readings, "reading") + ", last " +
           milliseconds(each.lastReading);
}

}  // namespace

LiveView::~LiveView()
{
    if (!m_picture.empty()) {
        static_cast<void>(std::fputs((FIRST_SCREEN + m_picture).c_str(), stdout));
        static_cast<void>(std::fflush(stdout));
    }
}

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
    const bool isFirst = m_picture.empty();
    m_picture.clear();
    for (const Line& line : linesOf(monitor, figures, size.height)) {
        const std::string text = cutTo(printable(line.text), size.width);
        m_picture += (line.colour ? m_output.coloured(*line.colour, text) : text) + "\x1b[K\r\n";
    }
    m_output.writeText(std::string(isFirst ? SECOND_SCREEN : "") + HOME + m_picture + CLEAR_BELOW);
    m_output.finish();
}

std::vector<LiveView::Line> LiveView::linesOf(const ConditionMonitor& monitor, const MonitorFigures& figures,
                                              std::size_t height) const
{
    std::vector<Line> lines = {
        {"brantel monitor: cycle " + std::to_string(figures.cycles) + ", last " + milliseconds(figures.lastCycle) +
             ", longest " + milliseconds(figures.longestCycle) + ", " + counted(figures.evaluations, "evaluation"),
         {}}};
    for (const auto& entry : monitor.places()) {
        lines.push_back(
            {placeLine(entry, figures), entry.second.failure.empty() ? std::nullopt : std::optional(Colour::RED)});
    }
    constexpr std::size_t OTHER_LINES = 5;  // two empty ones, titles, that about more rules, and where the cursor stays
    const std::size_t reserved = lines.size() + m_lastEvents.size() + OTHER_LINES;
    lines.push_back({});
    addRules(lines, monitor, (height > reserved) ? height - reserved : 1);
    lines.push_back({});
    for (const Event& event : m_lastEvents) {
        lines.push_back({timeText(event.time).substr(11, 8) + " " + sentenceOf(event), colourOf(event.kind)});
    }
    return lines;
}

void LiveView::addRules(std::vector<Line>& lines, const ConditionMonitor& monitor, std::size_t room) const
{
    const RuleRows rules = ruleRows(monitor);
    const std::size_t shown = std::min(room, rules.rows.size());
    TextTable table({{"Place", Alignment::LEFT},
                     {"Object", Alignment::LEFT},
                     {"Value", Alignment::RIGHT},
                     {"State", Alignment::LEFT},
                     {"Rule", Alignment::LEFT}});
    for (std::size_t i = 0; i < shown; ++i) {
        table.addRow(rules.rows[i]);
    }
    const std::vector<std::string> texts = table.lines();
    lines.push_back({texts.front(), Colour::DIM});
    for (std::size_t i = 0; i < shown; ++i) {
        lines.push_back({texts[i + 1], (i < rules.urgent) ? std::optional(Colour::RED) : std::nullopt});
    }
    if (shown < rules.rows.size()) {
        lines.push_back({"... and " + counted(rules.rows.size() - shown, "more rule"), Colour::DIM});
    }
}
