#include "monitor/LiveView.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "apps/monitor/Monitored.h"

namespace brantel {
namespace {

// A view with four places, one of which fails, ten rules, two of which are raised, and eight events.
class LiveViewTest : public testing::Test {
protected:
    LiveViewTest()
    {
        for (std::uint32_t slot = 0; slot < 3; ++slot) {
            for (std::uint32_t oid = 1; oid <= 3; ++oid) {
                const bool isRaised = (slot == 2) && (oid < 3);
                m_monitor.restoreRule({slotPlace(slot), oid, ABOVE_90}, {isRaised ? 95 : 5, isRaised, false});
            }
        }
        m_monitor.restoreRule({slotPlace(3), 1, ABOVE_90}, {});
        m_monitor.restoreFailure(slotPlace(3), std::nullopt, "no answer");
        for (int i = 1; i <= 8; ++i) {
            Event event;
            event.time = NOON;
            event.kind = EventKind::FAILED;
            event.reason = "event " + std::to_string(i);
            m_view.report(event);
        }
    }

    std::vector<std::string> linesAt(std::size_t height) const
    {
        std::vector<std::string> texts;
        for (const LiveView::Line& line : m_view.linesOf(m_monitor, {}, height)) {
            texts.push_back(line.text);
        }
        return texts;
    }

    static std::size_t countOf(const std::vector<std::string>& lines, const std::string& part)
    {
        std::size_t count = 0;
        for (const std::string& line : lines) {
            count += std::size_t{line.find(part) != std::string::npos};
        }
        return count;
    }

private:
    OutputQueue m_queue{100, [](const OutputQueue::Item&) { return 0; },
                        [](std::uint64_t) { return OutputQueue::Item(); }};
    LiveView m_view{m_queue};
    ConditionMonitor m_monitor;
};

TEST_F(LiveViewTest, ShowsEverythingGivenRoom)
{
    const std::vector<std::string> lines = linesAt(40);

    EXPECT_EQ(countOf(lines, "ok,"), 3U);
    EXPECT_EQ(countOf(lines, "FAILED: no answer"), 1U);
    EXPECT_EQ(countOf(lines, ABOVE_90), 10U);
    EXPECT_EQ(countOf(lines, "event "), 8U);
    EXPECT_EQ(countOf(lines, "more rule"), 0U);
}

TEST_F(LiveViewTest, FitsOnEveryTerminalAndShowsFailuresAndRaisedRulesFirst)
{
    for (std::size_t height = 1; height <= 40; ++height) {
        const std::vector<std::string> lines = linesAt(height);

        EXPECT_LE(lines.size(), std::max<std::size_t>(height - 1, 1)) << height << " rows";
        EXPECT_EQ(countOf(lines, "FAILED: no answer"), (height >= 3) ? 1U : 0U) << height << " rows";
        EXPECT_EQ(countOf(lines, "RAISED"), std::min<std::size_t>(std::max<std::size_t>(height, 4) - 4, 2))
            << height << " rows";
    }
}

TEST_F(LiveViewTest, GivesEventsTheRemainingRoomNewestLast)
{
    const std::vector<std::string> lines = linesAt(16);

    EXPECT_EQ(countOf(lines, "RAISED"), 2U);
    EXPECT_GE(countOf(lines, "event "), 2U);
    EXPECT_NE(lines.back().find("event 8"), std::string::npos);
}

}  // namespace

}  // namespace brantel
