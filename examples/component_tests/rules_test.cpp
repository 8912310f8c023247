// What a component does with rules: its log lines, and why a rule is refused.

#include <EventMgmtRulesParsing.h>
#include <RuleDiagnosis.h>
#include <brantel/testing/Diagnostics.h>
#include <gtest/gtest.h>

using namespace brantelTesting;

TEST(RefusedRule, IsLogged)
{
    DiagnosticsCapture diagnostics(3);  // the trace level: errors
    EXPECT_FALSE(vemorRules::isValidRule("expr=signed(value>5"));
    EXPECT_EQ(diagnostics.take(),
              Diagnostics{errorLine("EventMgmtRulesParsing.cpp", "parseExpression",
                                    "Failed to find ')' character in expression = '%s'",
                                    "Failed to find ')' character in expression = 'expr=signed(value>5'")});
}

TEST(RefusedRule, IsExplained)
{
    const auto fault = vemorRules::findFault("expr=signed(value>5");
    ASSERT_TRUE(fault);
    EXPECT_EQ(fault->position, 11U);
    EXPECT_EQ(fault->length, 1U);
    EXPECT_EQ(fault->reason, "the ')' of this bracket is missing");
    EXPECT_EQ(fault->remedy, "close it with ')'");
}
