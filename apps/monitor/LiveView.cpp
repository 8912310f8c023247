#include "monitor/LiveView.h"

#include <algorithm>
#include <cstdio>

#include <sys/ioctl.h>
#include <unistd.h>

#include <boost/algorithm/string/join.hpp>

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

// Conditions keep their state while their object fails.
std::string stateText(const RuleSession& session, const std::string& failure)
{
    std::string conditions = conditionsText(session);
    if (failure.empty()) {
        return conditions;
    }
    return ((conditions == CLEARED) ? "" : conditions + ", ") + "failed: " + failure;
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

// The rules, the most important ones first.
struct RuleRows {
    std::vector<std::vector<std::string>> rows;
    std::size_t raised = 0;
    std::size_t failing = 0;
};

RuleRows ruleRows(const ConditionMonitor& monitor)
{
    std::vector<std::vector<std::string>> raised;
    std::vector<std::vector<std::string>> failing;
    std::vector<std::vector<std::string>> others;
    for (const auto& [place, watched] : monitor.places()) {
        for (const auto& [oid, object] : watched.objects) {
            for (const auto& [rule, session] : object.rules) {
                const bool isRaised = conditionsText(session) != CLEARED;
                auto& rows = isRaised ? raised : object.failure.empty() ? others : failing;
                rows.push_back({placeText(place), objectName(oid), sampleText(session),
                                stateText(session, object.failure), shownBeginning(rule)});
            }
        }
    }
    RuleRows result{raised, raised.size(), failing.size()};
    result.rows.insert(result.rows.end(), failing.begin(), failing.end());
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

// The places, failing ones first.
struct PlaceLines {
    std::vector<LiveView::Line> lines;
    std::size_t failing = 0;
};

PlaceLines placeLines(const ConditionMonitor& monitor, const MonitorMetrics& metrics)
{
    PlaceLines result;
    std::vector<LiveView::Line> working;
    for (const auto& entry : monitor.places()) {
        if (entry.second.failure.empty()) {
            working.push_back({placeLine(entry, metrics), {}});
        } else {
            result.lines.push_back({placeLine(entry, metrics), Colour::RED});
        }
    }
    result.failing = result.lines.size();
    result.lines.insert(result.lines.end(), working.begin(), working.end());
    return result;
}

// How many lines each part of the picture gets.
struct Shares {
    std::size_t places = 0;
    std::size_t rules = 0;
    std::size_t events = 0;
    bool hasTitles = false;
};

// Each part takes of what the ones before it have left.
Shares sharesOf(std::size_t room, const PlaceLines& places, const RuleRows& rules, std::size_t nEvents)
{
    constexpr std::size_t TITLES = 2;  // with an empty line before them
    constexpr std::size_t SMALLEST_ROOM_FOR_TITLES = 4;
    std::size_t left = room;
    const auto take = [&left](std::size_t wanted) {
        const std::size_t taken = std::min(wanted, left);
        left -= taken;
        return taken;
    };
    const std::size_t urgentRules = rules.raised + rules.failing;
    const std::size_t nItems = places.lines.size() + rules.rows.size();
    if ((nItems > room) || (rules.rows.size() > urgentRules)) {
        take(1);  // for the count, or the last rule
    }
    Shares shares;
    shares.rules = take(rules.raised);
    shares.places = take(places.failing);
    shares.rules += take(rules.failing);
    shares.places += take(places.lines.size() - places.failing);
    shares.hasTitles = left >= SMALLEST_ROOM_FOR_TITLES;
    take(shares.hasTitles ? TITLES : 0);
    if (shares.rules == 0) {
        shares.rules = take(std::min<std::size_t>(rules.rows.size(), 1));  // under its titles
    }
    if ((nEvents > 0) && (left > 1)) {
        shares.events = take(nEvents + 1) - 1;  // with an empty line before them
    }
    shares.rules += take(rules.rows.size() - shares.rules);
    if ((room > 0) && (shares.places + shares.rules + 1 == nItems)) {
        ++shares.rules;  // instead of counting it
    }
    return shares;
}

// "9 more rules (1 raised, 2 failing)"
std::string restText(std::size_t count, const char* what, std::size_t raised, std::size_t failing)
{
    std::vector<std::string> parts;
    if (raised > 0) {
        parts.push_back(std::to_string(raised) + " raised");
    }
    if (failing > 0) {
        parts.push_back(std::to_string(failing) + " failing");
    }
    return counted(count, what) + (parts.empty() ? "" : " (" + boost::algorithm::join(parts, ", ") + ")");
}

// The part of `count` items that are not among the first `shown` ones.
std::size_t beyond(std::size_t shown, std::size_t count)
{
    return count - std::min(shown, count);
}

// Counts what is left out.
void addRest(std::vector<LiveView::Line>& lines, const PlaceLines& places, const RuleRows& rules, const Shares& shares)
{
    const std::size_t failingPlaces = beyond(shares.places, places.failing);
    const std::size_t raisedRules = beyond(shares.rules, rules.raised);
    const std::size_t failingRules = beyond(shares.rules, rules.raised + rules.failing) - raisedRules;
    std::vector<std::string> parts;
    if (shares.places < places.lines.size()) {
        parts.push_back(restText(places.lines.size() - shares.places, "more place", 0, failingPlaces));
    }
    if (shares.rules < rules.rows.size()) {
        parts.push_back(restText(rules.rows.size() - shares.rules, "more rule", raisedRules, failingRules));
    }
    if (!parts.empty()) {
        const bool isUrgent = failingPlaces + raisedRules + failingRules > 0;
        lines.push_back({"... and " + boost::algorithm::join(parts, ", "), isUrgent ? Colour::RED : Colour::DIM});
    }
}

void addRules(std::vector<LiveView::Line>& lines, const RuleRows& rules, const Shares& shares)
{
    TextTable table({{"Place", Alignment::LEFT},
                     {"Object", Alignment::LEFT},
                     {"Value", Alignment::RIGHT},
                     {"State", Alignment::LEFT},
                     {"Rule", Alignment::LEFT}});
    for (std::size_t i = 0; i < shares.rules; ++i) {
        table.addRow(rules.rows[i]);
    }
    const std::vector<std::string> texts = table.lines();
    if (shares.hasTitles) {
        lines.push_back({});
        lines.push_back({texts.front(), Colour::DIM});
    }
    const std::size_t urgent = rules.raised + rules.failing;
    for (std::size_t i = 0; i < shares.rules; ++i) {
        lines.push_back({texts[i + 1], (i < urgent) ? std::optional(Colour::RED) : std::nullopt});
    }
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
    const std::size_t room = (height > 2) ? height - 2 : 0;  // without the first line and the cursor's
    const PlaceLines places = placeLines(monitor, metrics);
    const RuleRows rules = ruleRows(monitor);
    const Shares shares = sharesOf(room, places, rules, m_lastEvents.size());
    const auto endOfPlaces = places.lines.begin() + static_cast<std::ptrdiff_t>(shares.places);
    lines.insert(lines.end(), places.lines.begin(), endOfPlaces);
    addRules(lines, rules, shares);
    if (room > 0) {
        addRest(lines, places, rules, shares);
    }
    addEvents(lines, shares.events);
    return lines;
}

void LiveView::addEvents(std::vector<Line>& lines, std::size_t count) const
{
    if (count == 0) {
        return;
    }
    lines.push_back({});
    for (auto event = m_lastEvents.end() - static_cast<std::ptrdiff_t>(count); event != m_lastEvents.end(); ++event) {
        lines.push_back({utcTimeText(event->time).substr(11, 8) + " " + eventText(*event), colourOf(event->kind)});
    }
}

}  // namespace brantel
