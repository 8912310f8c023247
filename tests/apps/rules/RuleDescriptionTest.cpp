#include "rules/RuleDescription.h"

#include <ostream>

#include <gtest/gtest.h>

#include "EventMgmtRulesParsing.h"
#include "RuleDiagnosis.h"

namespace brantel {
namespace {

struct DescribedRule {
    const char* rule;
    const char* kind;
    const char* meaning;
};

std::ostream& operator<<(std::ostream& stream, const DescribedRule& described)
{
    return stream << described.rule;
}

class RuleDescription : public testing::TestWithParam<DescribedRule> {};

TEST_P(RuleDescription, PutsARuleIntoPlainWords)
{
    vemorRules::RuleObject parsed;
    ASSERT_TRUE(vemorRules::parseRule(GetParam().rule, &parsed));

    EXPECT_EQ(ruleKindText(parsed.m_expressionType), GetParam().kind);
    EXPECT_EQ(meaningText(parsed, vemorRules::isUnsignedRule(GetParam().rule)), GetParam().meaning);
    EXPECT_EQ(meaningText(GetParam().rule), GetParam().meaning);
}

const DescribedRule describedRules[] = {
    {"", "empty rule", "has no condition"},
    {"/ expr=signed(value>1)", "empty rule", "has no condition"},
    {"expr=signed(value>100)", "value rule", "raised while value > 100"},
    {"expr=signed(value>=100)", "value rule", "raised while value >= 100"},
    {"expr=signed(value<-7)", "value rule", "raised while value < -7"},
    {"expr=signed(value<=-7)", "value rule", "raised while value <= -7"},
    {"expr=signed(value==0)", "value rule", "raised while value == 0"},
    {"expr=signed(value!=0)", "value rule", "raised while value != 0"},
    {"expr=unsigned(value>4294967295)", "value rule", "raised while value > 4294967295"},
    {"expr=signed(5>value)", "value rule", "raised while value < 5"},
    {"expr=signed(5>=value)", "value rule", "raised while value <= 5"},
    {"expr=signed(5<value)", "value rule", "raised while value > 5"},
    {"expr=signed(5<=value)", "value rule", "raised while value >= 5"},
    {"expr=signed(5==value)", "value rule", "raised while value == 5"},
    {"expr=signed(5!=value)", "value rule", "raised while value != 5"},
    {"EXPR = Signed( value < -10 OR 10 < value )", "value rule", "raised while value < -10 or value > 10"},
    {"expr=unsigned(value>5 and value<9)", "value rule", "raised while value > 5 and value < 9"},
    {"expr=unsigned(delta>=5)", "delta rule", "raised while the change between two samples is >= 5"},
    {"expr=signed(delta>5 and 9>delta)", "delta rule", "raised while the change between two samples is > 5 and is < 9"},
    {"expr=signed(hyshigh(80,90))", "single hysteresis", "raised when value > 90, cleared when value <= 80"},
    {"expr=signed(hyshigh(90,80))", "single hysteresis", "raised when value > 90, cleared when value <= 80"},
    {"expr=signed(hyslow(-20,-10))", "single hysteresis", "raised when value < -20, cleared when value >= -10"},
    {"expr=unsigned(hyshigh(10,4000000000))", "single hysteresis",
     "raised when value > 4000000000, cleared when value <= 10"},
    {"expr=unsigned(hyslow(3000000000,4000000000))", "single hysteresis",
     "raised when value < 3000000000, cleared when value >= 4000000000"},
    {"expr=signed(hyslow(10,20) hyshigh(80,90))", "double hysteresis",
     "upper: raised when value > 90, cleared when value <= 80; "
     "lower: raised when value < 10, cleared when value >= 20"},
};

INSTANTIATE_TEST_SUITE_P(EveryKind, RuleDescription, testing::ValuesIn(describedRules));

TEST(RuleTextDescription, DescribesEachOfSeveralPartsSeparately)
{
    EXPECT_EQ(meaningText("expr=signed(value>-1); /expr=unsigned(hyshigh(1,4000000000))"),
              "(1) raised while value > -1; (2) raised when value > 4000000000, cleared when value <= 1");
}

TEST(RuleTextDescription, HasNoOtherKinds)
{
    EXPECT_EQ(ruleKindText(static_cast<vemorRules::ExpressionType>(5)), "unknown rule");
}

}  // namespace

}  // namespace brantel
