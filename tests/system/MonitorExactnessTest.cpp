// Recorded series, replayed row by row through cards, client, codec, evaluation and journal, bring exactly the events
// that follow from the numbers; so they do when the monitor is killed again and again.

#include <algorithm>
#include <csignal>
#include <map>
#include <random>
#include <sstream>

#include <gtest/gtest.h>

#include "system/RecordedSeries.h"
#include "system/TestNode.h"

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

// A node whose cards serve series, each row once.
class ReplayingNode : public TestNode {
public:
    ReplayingNode(std::size_t nSeries, std::size_t nSamples)
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
            const std::string csv =
                write("series" + std::to_string(slot) + ".csv", csvOf({begin, m_series.end()}, "row"));
            m_cards.push_back(startCard(slot, {"--source", "csv:" + csv, "--step"}));
        }
        const CommandResult imported = run({"db", "import", write("rules.csv", rules.str())});
        EXPECT_EQ(imported.exitCode, 0) << imported;
    }

    const std::vector<RecordedSeries>& series() const { return m_series; }

    /// How many cards have had their last row evaluated.
    std::size_t finishedCards() const
    {
        const std::string journal = contentOf(path("journal"));
        std::size_t finished = 0;
        const std::string mark = R"("object":"csv.1")";
        for (std::size_t pos = journal.find(mark); pos != std::string::npos; pos = journal.find(mark, pos + 1)) {
            ++finished;
        }
        return finished;
    }

    bool isFinished() const { return finishedCards() == m_cards.size(); }

    /// The events of the journal by series, each checked to be numbered in turn.
    std::map<std::size_t, std::vector<SeriesEvent>> eventsBySeries() const
    {
        std::map<std::size_t, std::vector<SeriesEvent>> events;
        std::uint64_t number = 0;
        for (const Event& event : journal()) {
            EXPECT_EQ(event.number, ++number);
            if (event.place && event.oid && (*event.oid != ROW_COLUMN) && event.value) {
                const std::size_t index = event.place->number * SERIES_PER_CARD + (*event.oid - ROW_COLUMN - 1);
                events[index].push_back({0, event.condition, event.kind == EventKind::RAISED, *event.value,
                                         event.previousValue.value_or(*event.value)});
            }
        }
        return events;
    }

    /// Compares the journal with what follows from the first `nRows` samples.
    void expectEventsOfRows(std::size_t nRows) const
    {
        auto events = eventsBySeries();
        for (std::size_t i = 0; i < m_series.size(); ++i) {
            std::vector<SeriesEvent> expected = m_series[i].events;
            const auto isLater = [&](const SeriesEvent& event) { return event.row > nRows; };
            expected.erase(std::remove_if(expected.begin(), expected.end(), isLater), expected.end());
            EXPECT_EQ(events[i], expected) << "series " << i << ": " << m_series[i].rule;
        }
    }

private:
    std::vector<RecordedSeries> m_series;
    std::vector<std::unique_ptr<ChildProcess>> m_cards;
};

TEST(MonitorExactness, ReplayedSeriesBringExactlyTheEventsThatFollowFromTheirNumbers)
{
    const std::size_t nSamples = amount("MONITOR_SAMPLES", 500);
    const ReplayingNode node(amount("MONITOR_SERIES", 100), nSamples);

    const auto pMonitor =
        node.start({"monitor", "--interval", "1ms", "--journal", node.path("journal")}, "monitor.out");
    EXPECT_TRUE(waitUntil([&] { return node.isFinished(); }, std::chrono::seconds(600)));
    pMonitor->send(SIGTERM);

    EXPECT_EQ(pMonitor->wait(), 0);
    node.expectEventsOfRows(nSamples);
}

// The last row of the only card whose evaluation the state holds.
unsigned long lastRowInState(const TestNode& node)
{
    std::istringstream lines(contentOf(node.path("state")));
    const std::string start = "rule slot 0 " + std::to_string(ROW_COLUMN) + " ";
    for (std::string line; std::getline(lines, line);) {
        if ((line.rfind(start, 0) == 0) && (line[start.size()] != '-')) {
            return std::stoul(line.substr(start.size()));
        }
    }
    return 0;
}

TEST(MonitorExactness, KillsAtAnyMomentNeitherTearNorRepeatNorLoseAnEvent)
{
    const std::size_t nKills = amount("MONITOR_KILLS", 12);
    const std::size_t nSamples = nKills * 400 + 500;  // more than a row a millisecond is not read
    const ReplayingNode node(24, nSamples);
    const std::vector<std::string> monitor = {"monitor", "--interval",      "1ms", "--journal", node.path("journal"),
                                              "--state", node.path("state")};
    std::mt19937_64 random(std::random_device{}());

    for (std::size_t i = 0; i < nKills; ++i) {
        {
            const auto pMonitor = node.start(monitor, "monitor.out");
            std::this_thread::sleep_for(std::chrono::microseconds(random() % 400'000));
            pMonitor->send(SIGKILL);
            EXPECT_EQ(pMonitor->wait(), -SIGKILL) << contentOf(node.path("monitor.out"));
        }
        ASSERT_LT(lastRowInState(node), nSamples) << "the recording is too short";
        // The card goes on with the row after the last one that the state holds: one that was read but not recorded
        // counts as never read.
        const std::string nextRow = std::to_string(lastRowInState(node) + 1);
        ASSERT_EQ(node.run({"set", "0", "csv.row=uint32:" + nextRow}).exitCode, 0);
    }
    const auto pMonitor = node.start(monitor, "monitor.out");
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    pMonitor->send(SIGTERM);

    EXPECT_EQ(pMonitor->wait(), 0);
    const std::size_t lastRow = lastRowInState(node);
    EXPECT_GT(lastRow, nKills);
    RecordProperty("rows", static_cast<int>(lastRow));
    node.expectEventsOfRows(lastRow);
}

}  // namespace
