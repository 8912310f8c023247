#include "rules/RuleNotes.h"

#include <ostream>

#include <gtest/gtest.h>

#include "EventMgmtRulesParsing.h"

namespace brantel {
namespace {

using Notes = std::vector<std::string>;

struct NotedRule {
    const char* rule;
    Notes notes;
};

std::ostream& operator<<(std::ostream& stream, const NotedRule& notedRule)
{
    return stream << notedRule.rule;
}

constexpr const char* NEVER_RAISED = "the condition never holds: the rule is never raised";
constexpr const char* NEVER_CLEARED = "the condition always holds: the rule is never cleared";
constexpr const char* UPPER_NEVER = "the upper hysteresis is never raised: no sample is beyond its raising threshold";
constexpr const char* NEVER_EVALUATED = "a rule of several parts is never evaluated: make each part a rule of its own";

class RuleNotes : public testing::TestWithParam<NotedRule> {};

TEST_P(RuleNotes, NameEachSurprise)
{
    ASSERT_TRUE(vemorRules::isValidRule(GetParam().rule)) << GetParam().rule;
    EXPECT_EQ(notesOn(GetParam().rule), GetParam().notes) << GetParam().rule;
}

const NotedRule notedRules[] = {
    {"", {}},
    {"/;;", {}},
    {"expr=signed(value>100)", {}},
    {"expr=signed(value<0)", {}},
    {"expr=unsigned(value<0)", {NEVER_RAISED}},
    {"expr=unsigned(value>=0)", {NEVER_CLEARED}},
    {"expr=unsigned(value>4294967295)", {NEVER_RAISED}},
    {"expr=unsigned(4294967295>=value)", {NEVER_CLEARED}},
    {"expr=unsigned(value<=4294967294)", {}},
    {"expr=signed(value>2147483647)", {NEVER_RAISED}},
    {"expr=signed(value>=-2147483648)", {NEVER_CLEARED}},
    {"expr=signed(value==2147483647)", {}},
    {"expr=signed(value>5 and value<3)", {NEVER_RAISED}},
    {"expr=signed(value>5 and value<7)", {}},
    {"expr=signed(value>5 and value<6)", {NEVER_RAISED}},
    {"expr=signed(value>5 or value<7)", {NEVER_CLEARED}},
    {"expr=signed(value==5 or value!=5)", {NEVER_CLEARED}},
    {"expr=signed(delta<0)", {NEVER_RAISED}},
    {"expr=unsigned(delta<0)", {NEVER_RAISED}},
    {"expr=unsigned(delta>=0)", {NEVER_CLEARED}},
    {"expr=signed(delta>=0)", {}},  // fails for a change above the range of int
    {"expr=unsigned(delta>2147483647)", {}},
    {"expr=signed(delta>2147483647)", {NEVER_RAISED}},
    {"expr=signed(hyshigh(80,90))", {}},
    {"expr=signed(hyshigh(5,5))", {"the hysteresis has equal thresholds: it is a plain comparison"}},
    {"expr=unsigned(hyslow(0,10))", {"the hysteresis is never raised: no sample is beyond its raising threshold"}},
    {"expr=unsigned(hyslow(1,10))", {}},
    {"expr=signed(hyshigh(1,2147483647) hyslow(-2,-1))", {UPPER_NEVER}},
    {"expr=unsigned(hyshigh(2147483647,2147483648))", {}},
    {"expr=unsigned(hyshigh(1,4294967295) hyslow(7,7))",
     {UPPER_NEVER, "the lower hysteresis has equal thresholds: it is a plain comparison"}},
    {"expr=signed(hyshigh(80,90) and hyslow(10,20))", {}},
    {"expr=signed(hyslow(10,20) or hyshigh(80,90))", {}},
    {"expr=signed(hyshigh(80,90) and Value > 5)", {"'and Value > 5' is ignored"}},
    {"expr=signed(not hyshigh(80,90) hyshigh(1,2) hyslow(10,20))", {"'not' is ignored", "'hyshigh(1,2)' is ignored"}},
    {"expr = signed(value>5) and value < 9", {"'and value < 9' is ignored"}},
    {"expr = not signed(value>5)", {"'not' is ignored"}},
    {"exprunsigned(value<=5)", {"the rule is signed: 'unsigned(' counts only after the first '='"}},
    {"exprsigned(value<=5)", {}},
    {"expr=signed(value>5);expr=signed(value<3)", {NEVER_EVALUATED}},
    {"expr=signed(value>5);expr=unsigned(value<0)", {NEVER_RAISED, NEVER_EVALUATED}},
};

INSTANTIATE_TEST_SUITE_P(Rules, RuleNotes, testing::ValuesIn(notedRules));

}  // namespace

}  // namespace brantel
