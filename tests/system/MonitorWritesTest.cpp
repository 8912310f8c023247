// The monitor while writes of its files go wrong, at each call in turn: it never crashes, loses nothing silently, and
// leaves files that the next monitor can continue from.

#include <algorithm>
#include <map>
#include <sstream>
#include <tuple>

#include <gtest/gtest.h>

#include "support/FaultyWrites.h"
#include "system/ReplayingNode.h"

namespace brantel {
namespace {

constexpr std::size_t SERIES = 12;
constexpr std::size_t SAMPLES = 2000;  // more than all runs together read

struct Scenario {
    const char* file;  ///< "state", "journal" or "metrics"
    const char* mode;
    bool isLasting;
    bool isEachCall;  ///< and not the first alone
};

void PrintTo(const Scenario& scenario, std::ostream* pStream)
{
    *pStream << scenario.mode << (scenario.isLasting ? "_lasting_" : "_once_") << scenario.file;
}

// A call on one of the faulty files, as the preloaded library noted it.
struct NotedCall {
    std::string text;  ///< its name, and the path
    bool hasFailed;

    bool is(const std::string& name) const { return text.rfind(name, 0) == 0; }
    bool isOn(const std::string& ending) const
    {
        return (text.size() >= ending.size()) && (text.substr(text.size() - ending.size()) == ending);
    }
};

using NotedCalls = std::vector<NotedCall>;

NotedCalls callsOf(const WriteFault& fault, const std::string& log)
{
    const std::string mode = fault.mode;
    std::istringstream lines(log);
    NotedCalls calls;
    for (NotedCall call; std::getline(lines, call.text); calls.push_back(call)) {
        const long number = static_cast<long>(calls.size()) + 1;
        const bool isFaulty = (number == fault.call) || (fault.isLasting && (number > fault.call));
        const bool needsRoom = call.is("write") || (call.is("open") && call.isOn(".new"));
        call.hasFailed = isFaulty && ((mode == "failing") || ((mode == "full") && needsRoom));
    }
    return calls;
}

// Whether the journal has all events at the end, and on disk.
bool isJournalSafe(const NotedCalls& calls)
{
    bool isOpen = false;
    bool isLineMissing = false;
    bool isUnsynchronised = false;
    for (const NotedCall& call : calls) {
        if (call.is("open")) {
            isOpen = !call.hasFailed;
        } else if (call.is("write")) {
            isLineMissing = call.hasFailed;
            isUnsynchronised = true;
        } else if (call.is("fdatasync")) {
            isUnsynchronised = call.hasFailed;
        }
    }
    return isOpen && !isLineMissing && !isUnsynchronised;
}

// Whether the state could be locked and was replaced the last time that this was tried.
bool isStateSaved(const NotedCalls& calls)
{
    bool isLocked = false;
    bool isSaved = false;
    for (const NotedCall& call : calls) {
        if (call.isOn(".lock")) {
            isLocked = !call.hasFailed;
        } else {
            isSaved = !call.hasFailed && (isSaved || call.is("open"));
        }
    }
    return isLocked && isSaved;
}

// A node whose monitor has run for a few cycles, and can be put back to how it was then.
class MonitoredNode : public ReplayingNode {
public:
    MonitoredNode() : ReplayingNode(SERIES, SAMPLES)
    {
        EXPECT_EQ(runMonitor().exitCode, 0);
        for (const char* name : {"state", "journal", "metrics"}) {
            m_files[name] = contentOf(path(name));
        }
    }

    CommandResult runMonitor(const std::vector<std::string>& environment = {}) const
    {
        return run({"monitor", "--interval", "1ms", "--cycles", "3", "--journal", path("journal"), "--state",
                    path("state"), "--metrics", path("metrics")},
                   environment);
    }

    void putBack() const
    {
        for (const auto& [name, content] : m_files) {
            write(name, content);
        }
        continueAfterState();
    }

    /// No event is missing that follows from the first `nRows` samples; some may be there twice.
    void expectNoEventOfRowsMissing(std::size_t nRows) const
    {
        auto events = eventsBySeries();
        for (const auto& [series, expected] : eventsOfRows(0, nRows)) {
            for (const SeriesEvent& event : expected) {
                EXPECT_NE(std::find(events[series].begin(), events[series].end(), event), events[series].end())
                    << "series " << series << ": " << event;
            }
        }
    }

private:
    std::map<std::string, std::string> m_files;
};

class MonitorWrites : public ::testing::TestWithParam<Scenario> {
protected:
    // Runs the monitor with the fault, then without it. False if it came to its end without the faulty call.
    bool isReached(const WriteFault& fault) const
    {
        SCOPED_TRACE(::testing::PrintToString(fault));
        m_node.putBack();
        m_node.write("calls", "");
        const CommandResult faulty = m_node.runMonitor(environmentOf(fault, m_node.path("calls")));
        const NotedCalls calls = callsOf(fault, contentOf(m_node.path("calls")));
        const bool isReached = calls.size() >= static_cast<std::size_t>(fault.call);
        SCOPED_TRACE(faulty);
        EXPECT_EQ(faulty.exitCode, isAllRecorded(calls) ? 0 : 2);
        if (faulty.err.empty()) {
            EXPECT_EQ(faulty.exitCode, 0);
            m_node.expectEventsOfRows(m_node.lastRowInState());
        } else {
            EXPECT_EQ(faulty.err.rfind("brantel: ", 0), 0U);
            EXPECT_NE(faulty.err.find(GetParam().file), std::string::npos);
        }
        expectSoundNextRun();
        return isReached;
    }

    static bool isAllRecorded(const NotedCalls& calls)
    {
        const std::string file = GetParam().file;
        return (file == "journal") ? isJournalSafe(calls) : (file == "metrics") || isStateSaved(calls);
    }

    void expectSoundNextRun() const
    {
        m_node.continueAfterState();
        const CommandResult next = m_node.runMonitor();
        EXPECT_EQ(next.exitCode, 0) << next;
        EXPECT_EQ(next.err, "");
        if ((std::string(GetParam().file) == "state") && GetParam().isLasting) {
            m_node.expectNoEventOfRowsMissing(m_node.lastRowInState());
        } else {
            m_node.expectEventsOfRows(m_node.lastRowInState());
        }
    }

    MonitoredNode m_node;
};

TEST_P(MonitorWrites, ThatFailLoseNothingSilentlyAndLeaveSoundFiles)
{
    const Scenario& scenario = GetParam();
    WriteFault fault{scenario.mode, m_node.path(scenario.file) + "*", scenario.isLasting, 1};
    ASSERT_TRUE(isReached(fault));
    do {
        ++fault.call;
    } while (scenario.isEachCall && !HasFailure() && isReached(fault));
}

std::vector<Scenario> scenarios()
{
    std::vector<Scenario> all;
    for (const char* file : {"state", "journal", "metrics"}) {
        all.push_back({file, "full", true, true});
        all.push_back({file, "failing", false, true});
        all.push_back({file, "failing", true, true});
        all.push_back({file, "short", true, false});
        all.push_back({file, "slow", true, false});
    }
    return all;
}

INSTANTIATE_TEST_SUITE_P(Of, MonitorWrites, ::testing::ValuesIn(scenarios()), ::testing::PrintToStringParamName());

}  // namespace

}  // namespace brantel
