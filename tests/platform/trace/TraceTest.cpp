// The trace platform: the trace object and the reports of violated invariants.

#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "support/Diagnostics.h"

namespace {

TEST(TheTraceObject, IsNullUntilAProgramSetsIt)
{
    EXPECT_EQ(g_traceObject, nullptr);
}

TEST(TheTraceObject, HasTheLevelLastSet)
{
    for (const std::int32_t level : {0, 3, 9, -1, INT32_MIN, INT32_MAX}) {
        TraceObject trace(level);
        EXPECT_EQ(trace.getTraceLevel(), level);
        trace.setTraceLevel(8);
        EXPECT_EQ(trace.getTraceLevel(), 8);
        trace.setTraceLevel(level);
        EXPECT_EQ(trace.getTraceLevel(), level);
    }
}

TEST(TheTraceObject, MayBeReadWhileItIsChanged)
{
    TraceObject trace(3);
    std::thread writer([&trace] {
        for (int i = 0; i < 1000; ++i) {
            trace.setTraceLevel((i % 2 == 0) ? 9 : 3);
        }
    });
    for (int i = 0; i < 1000; ++i) {
        const std::int32_t level = trace.getTraceLevel();
        EXPECT_TRUE((level == 3) || (level == 9)) << level;
    }
    writer.join();
}

// What the handler below was called with.
std::vector<std::string> calls;

void rememberCall(const char* condition, const char* file, int line, const char* function)
{
    calls.push_back(std::string(condition) + " | " + file + " | " + std::to_string(line) + " | " + function);
}

class LogAssertFailed : public DiagnosticsTest {
protected:
    // The fixture's capture has installed a handler; these tests start without one.
    void SetUp() override
    {
        m_pHandlerOfTheFixture = setAssertFailedHandler(nullptr);
        calls.clear();
    }
    void TearDown() override { setAssertFailedHandler(m_pHandlerOfTheFixture); }

    static int reportOnce()
    {
        logAssertFailed("slot < 10", "src/Unit.cpp", 42, "bool check(int)");
        return 0;
    }

    const std::string m_line =
        "3 Assertion '%s' failed: %s:%d (%s) => Assertion 'slot < 10' failed: src/Unit.cpp:42 (bool check(int))";

private:
    AssertFailedHandler m_pHandlerOfTheFixture = nullptr;
};

TEST_F(LogAssertFailed, WritesOneSyslogLineAtPriorityErrorWhateverTheTraceLevel)
{
    expectAtEveryTraceLevel(reportOnce, 0, {m_line});
}

TEST_F(LogAssertFailed, CallsTheInstalledHandlerInsteadWithAllFourArguments)
{
    EXPECT_EQ(setAssertFailedHandler(rememberCall), nullptr);
    reportOnce();
    EXPECT_EQ(calls, std::vector<std::string>{"slot < 10 | src/Unit.cpp | 42 | bool check(int)"});
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(LogAssertFailed, WritesTheLineAgainAfterTheHandlerIsTakenBack)
{
    setAssertFailedHandler(rememberCall);
    EXPECT_EQ(setAssertFailedHandler(nullptr), &rememberCall);
    reportOnce();
    EXPECT_EQ(calls, std::vector<std::string>{});
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{m_line});
}

TEST_F(LogAssertFailed, CallsAHandlerThatIsPutBack)
{
    setAssertFailedHandler(rememberCall);
    const AssertFailedHandler before =
        setAssertFailedHandler([](const char*, const char*, int, const char*) { calls.emplace_back("other"); });
    reportOnce();
    setAssertFailedHandler(before);
    reportOnce();
    EXPECT_EQ(calls, (std::vector<std::string>{"other", "slot < 10 | src/Unit.cpp | 42 | bool check(int)"}));
}

}  // namespace
