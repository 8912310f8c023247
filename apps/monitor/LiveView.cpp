#include "monitor/LiveView.h"

#include <algorithm>
#include <cstdio>

#include <sys/ioctl.h>
#include <unistd.h>

#include "cards/OidTable.h"
#include "common/PrintableText.h"
#include "common/TextTable.h"

namespace brantel {
namespace {

constexpr std::size_t N_EVENTS = 8;

constexpr const char* CLEARED = "cleared";

// Control sequences.
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

std::string milliseconds(MonitorMetrics::Seconds time)
{
    char text[32] = "";
    static_cast<void>(std::snprintf(text, sizeof text, "%.1f ms", time.count() * 1000));
    return text;
}

std::string conditionsText(const RuleSession& session)
{
    std::string text;
    for (const ConditionState& condition : session.states()) {
        if (condition.isRaised) {
            text += (text.empty() ? "RAISED" : ",") + (condition.name.empty() ? "" : " " + condition.name);
        }
    }
    return text.empty() ? CLEARED : text;
}

std::string sampleText(const RuleSession& session)
{
    const std::optional<SampleValue>& sample = session.memory().previousSample;
    return sample ? std::to_string(*sample) : "-";
}

// At least as much of a rule as a terminal can show; rules may be far longer.
std::string shownBeginning(const std::string& rule)
{
    constexpr std::size_t WIDEST_TERMINAL = 1024;
    constexpr std::size_t LONGEST_CHARACTER = 4;
    return rule.substr(0, WIDEST_TERMINAL * LONGEST_CHARACTER);
}

// Urgent rows first, so that they are visible when there is not enough room.
LiveView::RuleRows ruleRows(const ConditionMonitor& monitor)
{
    LiveView::RuleRows result;
    std::vector<std::vector<std::string>> others;
    for (const auto& [place, watched] : monitor.places()) {
        for (const auto& [oid, object] : watched.objects) {
            for (const auto& [rule, session] : object.rules) {
                const std::string state =
                    object.failure.empty() ? conditionsText(session) : "failed: " + object.failure;
                auto& rows = (state == CLEARED) ? others : result.rows;
                rows.push_back({placeText(place), objectName(oid), sampleText(session), state, shownBeginning(rule)});
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

std::string placeLine(const std::pair<const Place, WatchedPlace>& entry, const MonitorMetrics& metrics)
{
    const auto& [place, watched] = entry;
    const auto found = metrics.places.find(place);
    const MonitorMetrics::PlaceMetrics each =
        (found == metrics.places.end()) ? MonitorMetrics::PlaceMetrics() : found->second;
    return placeText(place) + ": " + (watched.failure.empty() ? "ok" : "FAILED: " + watched.failure) + ", " +
           counted(watched.objects.size(), "object") + ", " + counted(each.readings, "reading") + ", last " +
           milliseconds(each.lastReading);
}

}  // namespace

LiveView::~LiveView()
{
    if (!m_picture.empty()) {
        m_output.put({FIRST_SCREEN + m_picture});
    }
}

void LiveView::report(const Event& event)
{
    m_lastEvents.push_back(event);
    m_lastEvents.back().rule = shownBeginning(event.rule);
    if (m_lastEvents.size() > N_EVENTS) {
        m_lastEvents.pop_front();
    }
}

void LiveView::draw(const ConditionMonitor& monitor, const MonitorMetrics& metrics)
{
    const TerminalSize size = terminalSize();
    if (m_picture.empty()) {
        m_output.put({SECOND_SCREEN});
    }
    m_picture.clear();
    for (const Line& line : linesOf(monitor, metrics, size.height)) {
        const std::string text = cutTo(printable(line.text), size.width);
        m_picture += (line.colour ? m_colours.coloured(*line.colour, text) : text) + "\x1b[K\r\n";
    }
    m_output.putPicture({HOME + m_picture + CLEAR_BELOW});
}

std::vector<LiveView::Line> LiveView::linesOf(const ConditionMonitor& monitor, const MonitorMetrics& metrics,
                                              std::size_t height) const
{
    std::vector<Line> lines = {
        {"brantel monitor: cycle " + std::to_string(metrics.cycles) + ", last " + milliseconds(metrics.lastCycle) +
             ", longest " + milliseconds(metrics.longestCycle) + ", " + counted(metrics.evaluations, "evaluation"),
         {}}};
    const RuleRows rules = ruleRows(monitor);
    const std::size_t room = (height > 2) ? height - 2 : 0;  // without the first line and the cursor's
    const std::vector<Line> places = placeLines(monitor, metrics, room, rules.urgent);
    lines.insert(lines.end(), places.begin(), places.end());
    addRulesAndEvents(lines, rules, room - places.size());
    return lines;
}

// Failing places first. If there is not enough room, raised and failing rules come before places that work.
std::vector<LiveView::Line> LiveView::placeLines(const ConditionMonitor& monitor, const MonitorMetrics& metrics,
                                                 std::size_t room, std::size_t urgentRules)
{
    std::vector<Line> lines;
    std::vector<Line> working;
    for (const auto& entry : monitor.places()) {
        if (entry.second.failure.empty()) {
            working.push_back({placeLine(entry, metrics), {}});
        } else {
            lines.push_back({placeLine(entry, metrics), Colour::RED});
        }
    }
    const std::size_t ruleLines = urgentRules + 1;  // with the one about more rules
    const std::size_t roomAboveRules = (room > ruleLines) ? room - ruleLines : 0;
    const std::size_t shown = std::min(room, std::max(lines.size(), roomAboveRules));
    lines.insert(lines.end(), working.begin(), working.end());
    lines.resize(std::min(shown, lines.size()));
    return lines;
}

// Events get the room that urgent rules leave; the other rules get the rest.
void LiveView::addRulesAndEvents(std::vector<Line>& lines, const RuleRows& rules, std::size_t room) const
{
    constexpr std::size_t TITLES = 2;  // and an empty line before them
    constexpr std::size_t SMALLEST_ROOM_WITH_TITLES = 5;
    const bool hasTitles = room >= SMALLEST_ROOM_WITH_TITLES;
    const std::size_t rows = room - (hasTitles ? TITLES : 0);
    const std::size_t needed = std::max<std::size_t>(rules.urgent, 1) + 1;  // with the one about more rules
    const std::size_t eventLines = std::min(m_lastEvents.size() + 1, (rows > needed) ? rows - needed : 0);
    addRules(lines, rules, rows - eventLines, hasTitles);
    if (eventLines > 1) {
        lines.push_back({});
        for (auto event = m_lastEvents.end() - static_cast<std::ptrdiff_t>(eventLines - 1); event != m_lastEvents.end();
             ++event) {
            lines.push_back({utcTimeText(event->time).substr(11, 8) + " " + eventText(*event), colourOf(event->kind)});
        }
    }
}

void LiveView::addRules(std::vector<Line>& lines, const RuleRows& rules, std::size_t room, bool hasTitles)
{
    const bool areAllShown = rules.rows.size() <= room;
    const std::size_t shown = areAllShown ? rules.rows.size() : std::max<std::size_t>(room, 1) - 1;
    TextTable table({{"Place", Alignment::LEFT},
                     {"Object", Alignment::LEFT},
                     {"Value", Alignment::RIGHT},
                     {"State", Alignment::LEFT},
                     {"Rule", Alignment::LEFT}});
    for (std::size_t i = 0; i < shown; ++i) {
        table.addRow(rules.rows[i]);
    }
    const std::vector<std::string> texts = table.lines();
    if (hasTitles) {
        lines.push_back({});
        lines.push_back({texts.front(), Colour::DIM});
    }
    for (std::size_t i = 0; i < shown; ++i) {
        lines.push_back({texts[i + 1], (i < rules.urgent) ? std::optional(Colour::RED) : std::nullopt});
    }
    if (!areAllShown && (room > 0)) {
        lines.push_back({"... and " + counted(rules.rows.size() - shown, "more rule"), Colour::DIM});
    }
}

}  // namespace brantel
