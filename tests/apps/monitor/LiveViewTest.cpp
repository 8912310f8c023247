#include "monitor/LiveView.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "apps/monitor/Monitored.h"

namespace brantel {
namespace {

class LiveViewOfANode : public testing::Test {
protected:
    std::vector<std::string> linesAt(std::size_t height) const
    {
        std::vector<std::string> texts;
        for (const LiveView::Line& line : m_view.linesOf(m_monitor, {}, height)) {
            texts.push_back(line.text);
        }
        return texts;
    }

    OutputQueue m_queue{100, [](const OutputQueue::Item&) { return 0; },
                        [](std::uint64_t) { return OutputQueue::Item(); }};
    LiveView m_view{m_queue};
    ConditionMonitor m_monitor;
};

// A view with four places, one of which fails, ten rules, two of which are raised, and eight events.
class LiveViewTest : public LiveViewOfANode {
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

    static std::size_t countOf(const std::vector<std::string>& lines, const std::string& part)
    {
        std::size_t count = 0;
        for (const std::string& line : lines) {
            count += std::size_t{line.find(part) != std::string::npos};
        }
        return count;
    }
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

TEST_F(LiveViewTest, FitsOnEveryTerminalAndShowsRaisedRulesAndThenFailuresFirst)
{
    for (std::size_t height = 1; height <= 40; ++height) {
        const std::vector<std::string> lines = linesAt(height);

        EXPECT_LE(lines.size(), std::max<std::size_t>(height - 1, 1)) << height << " rows";
        const std::size_t shown = std::max<std::size_t>(height, 3) - 3;  // without first line, count and cursor
        EXPECT_EQ(countOf(lines, "RAISED"), std::min<std::size_t>(shown, 2)) << height << " rows";
        EXPECT_EQ(countOf(lines, "FAILED: no answer"), (shown > 2) ? 1U : 0U) << height << " rows";
    }
}

TEST_F(LiveViewTest, GivesEventsTheRemainingRoomNewestLast)
{
    const std::vector<std::string> lines = linesAt(16);

    EXPECT_EQ(countOf(lines, "RAISED"), 2U);
    EXPECT_GE(countOf(lines, "event "), 2U);
    EXPECT_NE(lines.back().find("event 8"), std::string::npos);
}

// Seven places that fail, with a rule each, and one that works, with a raised and two other rules.
class LiveViewOfAFailingNode : public LiveViewOfANode {
protected:
    LiveViewOfAFailingNode()
    {
        for (std::uint32_t slot = 0; slot < 7; ++slot) {
            m_monitor.restoreRule({slotPlace(slot), 1, ABOVE_90}, {});
            m_monitor.restoreFailure(slotPlace(slot), std::nullopt, "no answer");
        }
        for (std::uint32_t oid = 1; oid <= 3; ++oid) {
            m_monitor.restoreRule({slotPlace(7), oid, ABOVE_90}, {95, oid == 3, false});
        }
    }
};

using Lines = std::vector<std::string>;

TEST_F(LiveViewOfAFailingNode, CountsWhatItLeavesOut)
{
    const std::string first = "brantel monitor: cycle 0, last 0.0 ms, longest 0.0 ms, 0 evaluations";
    const std::string raised = "slot 7  0x00000003     95  RAISED  expr=signed(value>90)";
    const auto failed = [](int slot) {
        return "slot " + std::to_string(slot) + ": FAILED: no answer, 1 object, 0 readings, last 0.0 ms";
    };
    EXPECT_EQ(linesAt(1), Lines{first});
    EXPECT_EQ(linesAt(2), Lines{first});
    EXPECT_EQ(linesAt(3), (Lines{first, "... and 8 more places (7 failing), 10 more rules (1 raised)"}));
    EXPECT_EQ(linesAt(4), (Lines{first, raised, "... and 8 more places (7 failing), 9 more rules"}));
    EXPECT_EQ(linesAt(6),
              (Lines{first, failed(0), failed(1), raised, "... and 6 more places (5 failing), 9 more rules"}));
    EXPECT_EQ(linesAt(10), (Lines{first, failed(0), failed(1), failed(2), failed(3), failed(4), failed(5), raised,
                                  "... and 2 more places (1 failing), 9 more rules"}));
}

TEST_F(LiveViewOfANode, ShowsRaisedRulesBeforeFailingOnes)
{
    for (std::uint32_t oid = 1; oid <= 4; ++oid) {
        m_monitor.restoreRule({slotPlace(7), oid, ABOVE_90}, {95, oid >= 3, false});
    }
    m_monitor.restoreFailure(slotPlace(7), 2, "not a number");
    m_monitor.restoreFailure(slotPlace(7), 3, "not a number");

    Lines lines = linesAt(7);
    lines.erase(lines.begin(), lines.begin() + 2);  // the first line, and the place
    EXPECT_EQ(lines, (Lines{"slot 7  0x00000003     95  RAISED, failed: not a number  expr=signed(value>90)",
                            "slot 7  0x00000004     95  RAISED                        expr=signed(value>90)",
                            "slot 7  0x00000002     95  failed: not a number          expr=signed(value>90)",
                            "slot 7  0x00000001     95  cleared                       expr=signed(value>90)"}));
    EXPECT_EQ(linesAt(5).back(), "... and 1 more place, 2 more rules (1 failing)");
}

}  // namespace

}  // namespace brantel
