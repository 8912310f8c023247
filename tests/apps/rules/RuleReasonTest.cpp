#include "rules/RuleReason.h"

#include <ostream>

#include <gtest/gtest.h>

#include "EventMgmtRulesParsing.h"
#include "RuleDiagnosis.h"

namespace brantel {
namespace {

struct ReasonCase {
    const char* rule;
    SampleValue previous;
    SampleValue sample;
    std::size_t condition;
    const char* reason;
};

std::ostream& operator<<(std::ostream& stream, const ReasonCase& each)
{
    return stream << each.rule << ", " << each.previous << " then " << each.sample << ", condition " << each.condition;
}

class RuleReason : public testing::TestWithParam<ReasonCase> {};

TEST_P(RuleReason, NamesTheComparisonThatDecided)
{
    const ReasonCase& each = GetParam();
    vemorRules::RuleObject rule;
    ASSERT_TRUE(vemorRules::parseRule(each.rule, &rule));
    RuleSession session(rule, vemorRules::isUnsignedRule(each.rule));
    session.evaluate(each.previous);
    session.evaluate(each.sample);

    EXPECT_EQ(reasonText(session, each.condition, each.previous, each.sample), each.reason);
}

INSTANTIATE_TEST_SUITE_P(
    Value, RuleReason,
    testing::Values(ReasonCase{"expr=signed(value>90)", 0, 92, 0, "92 > 90: above the limit"},
                    ReasonCase{"expr=signed(value>90)", 92, 90, 0, "90 <= 90: at or below the limit"},
                    ReasonCase{"expr=signed(value>=-5)", 0, -5, 0, "-5 >= -5: at or above the limit"},
                    ReasonCase{"expr=signed(value>=-5)", 0, -6, 0, "-6 < -5: below the limit"},
                    ReasonCase{"expr=unsigned(value<3)", 9, 2, 0, "2 < 3: below the limit"},
                    ReasonCase{"expr=unsigned(value<=3)", 1, 4, 0, "4 > 3: above the limit"},
                    ReasonCase{"expr=unsigned(value==4294967295)", 0, 4294967295, 0,
                               "4294967295 == 4294967295: equal to the limit"},
                    ReasonCase{"expr=signed(value!=7)", 8, 7, 0, "7 == 7: equal to the limit"},
                    ReasonCase{"expr=signed(value!=7)", 7, 8, 0, "8 != 7: different from the limit"},
                    ReasonCase{"expr=signed(90<value)", 0, 92, 0, "92 > 90: above the limit"}));

INSTANTIATE_TEST_SUITE_P(
    Joined, RuleReason,
    testing::Values(ReasonCase{"expr=signed(value>1 and value<9)", 0, 5, 0, "5 > 1 and 5 < 9: both hold"},
                    ReasonCase{"expr=signed(value>1 and value<9)", 5, 9, 0, "9 > 1 and 9 >= 9: one of two holds"},
                    ReasonCase{"expr=signed(value<1 or value>9)", 5, 10, 0, "10 >= 1 and 10 > 9: one of two holds"},
                    ReasonCase{"expr=signed(value<1 or value>9)", 10, 5, 0, "5 >= 1 and 5 <= 9: neither holds"},
                    ReasonCase{"expr=unsigned(delta==0 or delta>20)", 5, 5, 0,
                               "|5 - 5| = 0 == 0 and |5 - 5| = 0 <= 20: one of two holds"}));

INSTANTIATE_TEST_SUITE_P(
    Delta, RuleReason,
    testing::Values(ReasonCase{"expr=unsigned(delta>20)", 70, 92, 0, "|92 - 70| = 22 > 20: above the limit"},
                    ReasonCase{"expr=signed(delta>20)", -10, 12, 0, "|12 + 10| = 22 > 20: above the limit"},
                    ReasonCase{"expr=signed(delta>20)", 12, -10, 0, "|-10 - 12| = 22 > 20: above the limit"},
                    ReasonCase{"expr=signed(delta>20)", -1, 2147483647, 0,
                               "|2147483647 + 1| = 2147483648: beyond the range of a signed rule"},
                    ReasonCase{"expr=unsigned(delta>20)", 0, 4294967295, 0,
                               "|4294967295 - 0| = 4294967295 > 20: above the limit"}));

INSTANTIATE_TEST_SUITE_P(
    Hysteresis, RuleReason,
    testing::Values(
        ReasonCase{"expr=signed(hyshigh(80,90))", 0, 92, 0, "92 > 90: above the upper threshold"},
        ReasonCase{"expr=signed(hyshigh(80,90))", 92, 80, 0, "80 <= 80: at or below the lower threshold"},
        ReasonCase{"expr=signed(hyslow(10,20))", 50, 9, 0, "9 < 10: below the lower threshold"},
        ReasonCase{"expr=signed(hyslow(10,20))", 9, 20, 0, "20 >= 20: at or above the upper threshold"},
        ReasonCase{"expr=unsigned(hyshigh(4000000000,4100000000))", 0, 4200000000, 0,
                   "4200000000 > 4100000000: above the upper threshold"},
        ReasonCase{"expr=signed(hyshigh(80,90) hyslow(10,20))", 0, 92, 0, "92 > 90: above the upper threshold"},
        ReasonCase{"expr=signed(hyshigh(80,90) hyslow(10,20))", 5, 92, 1, "92 >= 20: at or above the upper threshold"},
        ReasonCase{"expr=signed(hyshigh(80,90) hyslow(10,20))", 92, 5, 1, "5 < 10: below the lower threshold"}));

}  // namespace

}  // namespace brantel
