// The recorder of diagnostics, in a program that is compiled as hardened distributions compile: with _FORTIFY_SOURCE.

#include "brantel/testing/Diagnostics.h"

#include <gtest/gtest.h>
#include <syslog.h>

#include "EventMgmtRulesParsing.h"

namespace brantelTesting {
namespace {

TEST(DiagnosticsCapture, RecordsLinesOfTheLibraryAndOfTheProgramAndReportsInOrder)
{
    TraceObject* const pTraceBefore = g_traceObject;
    {
        DiagnosticsCapture diagnostics(3);
        ::syslog(LOG_WARNING, "fan %d at %s", 2, "full speed");
        EXPECT_FALSE(vemorRules::isValidRule("expr=signed(value>5"));
        logAssertFailed("slot < 10", "src/Fan.cpp", 7, "void Fan::start(int)");
        const SourceLines parser("EventMgmtRulesParsing.cpp");
        EXPECT_EQ(diagnostics.take(),
                  (Diagnostics{"4 fan %d at %s => fan 2 at full speed",
                               parser.error("parseExpression", "Failed to find ')' character in expression = '%s'",
                                            "expr=signed(value>5"),
                               assertReport("slot < 10", "src/Fan.cpp", "void Fan::start(int)")}));
        EXPECT_EQ(diagnostics.take(), Diagnostics{});
    }
    EXPECT_EQ(g_traceObject, pTraceBefore);
    EXPECT_EQ(setAssertFailedHandler(nullptr), nullptr);
}

TEST(DiagnosticsCapture, LetsThroughWhatTheTraceLevelDoes)
{
    DiagnosticsCapture diagnostics(2);
    EXPECT_FALSE(vemorRules::isValidRule("rule"));
    EXPECT_EQ(diagnostics.take(), Diagnostics{});

    diagnostics.setTraceLevel(3);
    EXPECT_FALSE(vemorRules::isValidRule("rule"));
    const Diagnostics line{errorLine("EventMgmtRulesParsing.cpp", "parseRule",
                                     "Failed to parse part = '%s' of rule = '%s'",
                                     "Failed to parse part = 'rule' of rule = 'rule'")};
    EXPECT_EQ(diagnostics.take(), line);
    EXPECT_EQ(line, Diagnostics{"3 [ERROR] %s:%d (%s) - Failed to parse part = '%s' of rule = '%s' => [ERROR] "
                                "EventMgmtRulesParsing.cpp:# (parseRule) - Failed to parse part = 'rule' of rule = "
                                "'rule'"});
    EXPECT_EQ(writtenAt(2, line), Diagnostics{});
    EXPECT_EQ(writtenAt(3, line), line);

    diagnostics.removeTraceObject();
    EXPECT_FALSE(vemorRules::isValidRule("rule"));
    EXPECT_EQ(diagnostics.take(), Diagnostics{});
}

}  // namespace

}  // namespace brantelTesting
