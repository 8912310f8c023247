// Recorded series, replayed row by row through cards, client, codec, evaluation and journal, bring exactly the events
// that follow from the numbers; so they do when the monitor is killed again and again.

#include <csignal>
#include <random>

#include <gtest/gtest.h>

#include "system/ReplayingNode.h"

namespace brantel {
namespace {

TEST(MonitorExactness, ReplayedSeriesCauseExactlyTheCalculatedEvents)
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
        ASSERT_LT(node.lastRowInState(), nSamples) << "the recording is too short";
        node.continueAfterState();
    }
    const auto pMonitor = node.start(monitor, "monitor.out");
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    pMonitor->send(SIGTERM);

    EXPECT_EQ(pMonitor->wait(), 0);
    const std::size_t lastRow = node.lastRowInState();
    EXPECT_GT(lastRow, nKills);
    RecordProperty("rows", static_cast<int>(lastRow));
    node.expectEventsOfRows(lastRow);
}

}  // namespace

}  // namespace brantel
