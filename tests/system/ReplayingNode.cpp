#include "system/ReplayingNode.h"

#include <algorithm>
#include <sstream>

#include <gtest/gtest.h>

namespace brantel {
namespace {

constexpr std::size_t SERIES_PER_CARD = 50;
constexpr std::uint32_t ROW_COLUMN = 0x00030001;  // the first column of a recording counts its rows

std::uint32_t oidOfSeries(std::size_t index)
{
    return ROW_COLUMN + 1 + static_cast<std::uint32_t>(index % SERIES_PER_CARD);
}

std::uint32_t slotOfSeries(std::size_t index)
{
    return static_cast<std::uint32_t>(index / SERIES_PER_CARD);
}

}  // namespace

ReplayingNode::ReplayingNode(std::size_t nSeries, std::size_t nSamples)
{
    std::ostringstream rules;
    rules << "Slot,OID,Rule\n";
    for (std::size_t first = 0; first < nSeries; first += SERIES_PER_CARD) {
        const std::uint32_t slot = slotOfSeries(first);
        for (std::size_t i = first; i < std::min(first + SERIES_PER_CARD, nSeries); ++i) {
            m_series.push_back(makeSeries(i, nSamples));
            rules << slot << ',' << oidOfSeries(i) << ",\"" << m_series.back().rule << "\"\n";
        }
        rules << slot << ',' << ROW_COLUMN << ",expr=unsigned(value>=" << nSamples << ")\n";
        run({"db", "card", "enable", std::to_string(slot), "--type", "1"});
        const auto begin = m_series.begin() + static_cast<std::ptrdiff_t>(first);
        const std::string csv = write("series" + std::to_string(slot) + ".csv", csvOf({begin, m_series.end()}, "row"));
        m_cards.push_back(startCard(slot, {"--source", "csv:" + csv, "--step"}));
    }
    const CommandResult imported = run({"db", "import", write("rules.csv", rules.str())});
    EXPECT_EQ(imported.exitCode, 0) << imported;
}

std::size_t ReplayingNode::finishedCards() const
{
    const std::string journal = contentOf(path("journal"));
    std::size_t finished = 0;
    const std::string mark = R"("object":"csv.1")";
    for (std::size_t pos = journal.find(mark); pos != std::string::npos; pos = journal.find(mark, pos + 1)) {
        ++finished;
    }
    return finished;
}

std::size_t ReplayingNode::lastRowInState() const
{
    std::istringstream lines(contentOf(path("state")));
    const std::string start = "rule slot 0 " + std::to_string(ROW_COLUMN) + " ";
    for (std::string line; std::getline(lines, line);) {
        if ((line.rfind(start, 0) == 0) && (line[start.size()] != '-')) {
            return std::stoul(line.substr(start.size()));
        }
    }
    return 0;
}

void ReplayingNode::continueAfterState() const
{
    const CommandResult result = run({"set", "0", "csv.row=uint32:" + std::to_string(lastRowInState() + 1)});
    EXPECT_EQ(result.exitCode, 0) << result;
}

ReplayingNode::EventsBySeries ReplayingNode::bySeries(const std::vector<Event>& events)
{
    EventsBySeries result;
    for (const Event& event : events) {
        if (event.place && event.oid && (*event.oid != ROW_COLUMN) && event.value) {
            const std::size_t index = event.place->number * SERIES_PER_CARD + (*event.oid - ROW_COLUMN - 1);
            result[index].push_back({0, event.condition, event.kind == EventKind::RAISED, *event.value,
                                     event.previousValue.value_or(*event.value)});
        }
    }
    return result;
}

ReplayingNode::EventsBySeries ReplayingNode::eventsBySeries() const
{
    const std::vector<Event> events = journal();
    std::uint64_t number = 0;
    for (const Event& event : events) {
        EXPECT_EQ(event.number, ++number);
    }
    return bySeries(events);
}

ReplayingNode::EventsBySeries ReplayingNode::eventsOfRows(std::size_t nRowsBefore, std::size_t nRows) const
{
    EventsBySeries events;
    for (std::size_t i = 0; i < m_series.size(); ++i) {
        for (const SeriesEvent& event : m_series[i].events) {
            if ((event.row > nRowsBefore) && (event.row <= nRows)) {
                events[i].push_back(event);
            }
        }
    }
    return events;
}

void ReplayingNode::expectEventsOfRows(std::size_t nRows) const
{
    auto events = eventsBySeries();
    auto expected = eventsOfRows(0, nRows);
    for (std::size_t i = 0; i < m_series.size(); ++i) {
        EXPECT_EQ(events[i], expected[i]) << "series " << i << ": " << m_series[i].rule;
    }
}

}  // namespace brantel
