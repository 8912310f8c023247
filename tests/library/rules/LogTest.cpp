// The library's logging header: when a line is written, what it contains, and what is evaluated for it.

#include "src/Log.h"

#include "support/Diagnostics.h"

namespace {

bool writeOneOfEach()
{
    LOG_ERROR("an error of %d and '%s'", 7, "text");
    LOG_DEBUG3("a debug line without arguments");
    return true;
}

class LogMacros : public DiagnosticsTest {
protected:
    int countedArgument() { return ++m_evaluations; }

    int m_evaluations = 0;
    const SourceLines m_lines{"LogTest.cpp"};
};

TEST_F(LogMacros, WriteErrorsAboveTwoAndDebugLinesAboveEight)
{
    expectAtEveryTraceLevel(writeOneOfEach, true,
                            {m_lines.error("writeOneOfEach", "an error of %d and '%s'", 7, "text"),
                             m_lines.debug("writeOneOfEach", "a debug line without arguments")});
}

TEST_F(LogMacros, EvaluateNoArgumentOfALineThatIsNotWritten)
{
    m_diagnostics.setTraceLevel(2);
    LOG_ERROR("%d", countedArgument());
    m_diagnostics.setTraceLevel(8);
    LOG_DEBUG3("%d", countedArgument());
    m_diagnostics.removeTraceObject();
    LOG_ERROR("%d", countedArgument());
    LOG_DEBUG3("%d", countedArgument());
    EXPECT_EQ(m_evaluations, 0);
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(LogMacros, EvaluateAnArgumentOfAWrittenLineOnce)
{
    m_diagnostics.setTraceLevel(EVERYTHING);
    LOG_ERROR("%d", countedArgument());
    LOG_DEBUG3("%d", countedArgument());
    EXPECT_EQ(m_diagnostics.take(),
              (Diagnostics{m_lines.error("TestBody", "%d", 1), m_lines.debug("TestBody", "%d", 2)}));
}

TEST_F(LogMacros, WriteInTheNameOfAnotherFunction)
{
    LOG_ERROR_OF("caller", "refused");
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{m_lines.error("caller", "refused")});
}

TEST_F(LogMacros, ReportAConditionThatDoesNotHoldWhateverTheTraceLevel)
{
    const auto act = [](int number) { return ASSERT_OR_REPORT_AS(number > 3, "the function") ? "holds" : "reported"; };
    expectAtEveryTraceLevel([act] { return std::string(act(4)); }, "holds", {});
    expectAtEveryTraceLevel([act] { return std::string(act(3)); }, "reported",
                            {assertReport("number > 3", "tests/library/rules/LogTest.cpp", "the function")});
}

TEST(BaseName, IsWhatFollowsTheLastSlash)
{
    EXPECT_STREQ(brantelLog::baseName("components/common/brantel/src/Unit.cpp"), "Unit.cpp");
    EXPECT_STREQ(brantelLog::baseName("/Unit.cpp"), "Unit.cpp");
    EXPECT_STREQ(brantelLog::baseName("Unit.cpp"), "Unit.cpp");
    EXPECT_STREQ(brantelLog::baseName(""), "");
}

}  // namespace
