// The four rule-level checks: checkSimpleValueRule, checkSimpleDeltaRule, checkSingleHysteresisRule and
// checkDoubleHysteresisRule.

#include <limits>
#include <utility>
#include <vector>

#include "EventMgmtRulesParsing.h"
#include "library/rules/EvaluationTest.h"

namespace vemorRules {
namespace {

constexpr int INT_MINIMUM = std::numeric_limits<int>::min();
constexpr int INT_MAXIMUM = std::numeric_limits<int>::max();

RuleObject ruleOf(const std::string& text)
{
    RuleObject rule;
    EXPECT_TRUE(parseRule(text, &rule)) << text;
    return rule;
}

class RuleChecks : public EvaluationTest {
protected:
    static RuleObject withType(int type, std::size_t count)
    {
        return {static_cast<ExpressionType>(type), std::vector<Expression>(count, comparison(GREATER_THAN, 5))};
    }

    static std::string typeError(const char* function, int type, const char* name)
    {
        return lines.error(function, "m_expressionType=%d=%s not supported by this function", type, name);
    }

    // The states that the check leaves, which are both true before.
    template <typename T>
    static std::pair<bool, bool> doubleStates(const RuleObject& rule, T sample)
    {
        std::pair<bool, bool> states(true, true);
        checkDoubleHysteresisRule(rule, sample, states.first, states.second);
        return states;
    }
};

TEST_F(RuleChecks, RefuseEveryTypeButTheirOwnAndNameIt)
{
    const std::vector<std::pair<int, const char*>> types = {
        {NO_EXPRESSION, "NO_EXPRESSION"},
        {SIMPLE_EXPRESSION_VALUE, "SIMPLE_EXPRESSION_VALUE"},
        {SIMPLE_EXPRESSION_DELTA, "SIMPLE_EXPRESSION_DELTA"},
        {SINGLE_HYSTERESIS, "SINGLE_HYSTERESIS"},
        {DOUBLE_HYSTERESIS, "DOUBLE_HYSTERESIS"},
        {5, "unknown"},
        {-1, "unknown"},
        {7, "unknown"},
        {INT_MAXIMUM, "unknown"},
        {INT_MINIMUM, "unknown"},
    };
    const std::pair<bool, bool> bothFalse(false, false);
    for (const auto& [type, name] : types) {
        SCOPED_TRACE(type);
        // The wrong count too: the type is tested first.
        const RuleObject rule = withType(type, 3);
        if (type != SIMPLE_EXPRESSION_VALUE) {
            const Diagnostics all = {typeError("checkSimpleValueRule", type, name)};
            expectAtEveryTraceLevel([&] { return checkSimpleValueRule<int>(rule, 6); }, false, all);
            expectAtEveryTraceLevel([&] { return checkSimpleValueRule<unsigned int>(rule, 6); }, false, all);
        }
        if (type != SIMPLE_EXPRESSION_DELTA) {
            const Diagnostics all = {typeError("checkSimpleDeltaRule", type, name)};
            expectAtEveryTraceLevel([&] { return checkSimpleDeltaRule<int>(rule, 0, 6); }, false, all);
            expectAtEveryTraceLevel([&] { return checkSimpleDeltaRule<unsigned int>(rule, 0, 6); }, false, all);
        }
        if (type != SINGLE_HYSTERESIS) {
            const Diagnostics all = {typeError("checkSingleHysteresisRule", type, name)};
            expectAtEveryTraceLevel([&] { return checkSingleHysteresisRule<int>(rule, 6, true); }, false, all);
            expectAtEveryTraceLevel([&] { return checkSingleHysteresisRule<unsigned int>(rule, 6, true); }, false, all);
        }
        if (type != DOUBLE_HYSTERESIS) {
            const Diagnostics all = {typeError("checkDoubleHysteresisRule", type, name)};
            expectAtEveryTraceLevel([&] { return doubleStates<int>(rule, 6); }, bothFalse, all);
            expectAtEveryTraceLevel([&] { return doubleStates<unsigned int>(rule, 6); }, bothFalse, all);
        }
    }
}

TEST_F(RuleChecks, RefuseACountOfExpressionsThatIsNotTheirs)
{
    const std::pair<bool, bool> bothFalse(false, false);
    for (const std::size_t count : {0u, 1u, 2u, 3u, 4u, 5u}) {
        SCOPED_TRACE(count);
        const int number = static_cast<int>(count);
        if (count != 1) {
            const Diagnostics value = {lines.error(
                "checkSimpleValueRule", "Simple expression but nr of expressions = %d != expected = 1", number)};
            const RuleObject valueRule = withType(SIMPLE_EXPRESSION_VALUE, count);
            expectAtEveryTraceLevel([&] { return checkSimpleValueRule<int>(valueRule, 6); }, false, value);
            expectAtEveryTraceLevel([&] { return checkSimpleValueRule<unsigned int>(valueRule, 6); }, false, value);

            const Diagnostics delta = {
                lines.error("checkSimpleDeltaRule",
                            "Simple expression for delta but nr of expressions = %d != expected = 1", number)};
            const RuleObject deltaRule = withType(SIMPLE_EXPRESSION_DELTA, count);
            expectAtEveryTraceLevel([&] { return checkSimpleDeltaRule<int>(deltaRule, 0, 6); }, false, delta);
            expectAtEveryTraceLevel([&] { return checkSimpleDeltaRule<unsigned int>(deltaRule, 0, 6); }, false, delta);
        }
        if (count != 2) {
            const Diagnostics all = {
                lines.error("checkSingleHysteresisRule",
                            "Numbers of expressions=%d while 2 are required to check single hysteresis", number)};
            const RuleObject rule = withType(SINGLE_HYSTERESIS, count);
            expectAtEveryTraceLevel([&] { return checkSingleHysteresisRule<int>(rule, 6, true); }, false, all);
            expectAtEveryTraceLevel([&] { return checkSingleHysteresisRule<unsigned int>(rule, 6, true); }, false, all);
        }
        if (count != 4) {
            const Diagnostics all = {
                lines.error("checkDoubleHysteresisRule",
                            "Numbers of expressions=%d while 4 are required to check double hysteresis", number)};
            const RuleObject rule = withType(DOUBLE_HYSTERESIS, count);
            expectAtEveryTraceLevel([&] { return doubleStates<int>(rule, 6); }, bothFalse, all);
            expectAtEveryTraceLevel([&] { return doubleStates<unsigned int>(rule, 6); }, bothFalse, all);
        }
    }
}

TEST_F(RuleChecks, OfDoubleHysteresisClearBothStatesOfASingleHysteresisRule)
{
    EXPECT_EQ(doubleStates(ruleOf("expr=signed(hyshigh(70,80))"), 100), std::make_pair(false, false));
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{typeError("checkDoubleHysteresisRule", 3, "SINGLE_HYSTERESIS")});
}

TEST_F(RuleChecks, OfSingleHysteresisRefuseADoubleHysteresisRule)
{
    EXPECT_FALSE(checkSingleHysteresisRule(ruleOf("expr=signed(hyshigh(70,80)hyslow(10,20))"), 100, true));
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{typeError("checkSingleHysteresisRule", 4, "DOUBLE_HYSTERESIS")});
}

class CheckSimpleValueRule : public EvaluationTest {};

TEST_F(CheckSimpleValueRule, EvaluatesTheSample)
{
    const RuleObject rule = ruleOf("expr=signed(value>5)");
    expectAtEveryTraceLevel([&] { return checkSimpleValueRule<int>(rule, 6); }, true,
                            {lines.debug("checkInt", "%s", "x=6: result=1")});
    expectAtEveryTraceLevel([&] { return checkSimpleValueRule<int>(rule, 5); }, false,
                            {lines.debug("checkInt", "%s", "x=5: result=0")});
    EXPECT_EQ(described(rule), "SIMPLE_EXPRESSION_VALUE: (ParamField > int 5)");
}

TEST_F(CheckSimpleValueRule, EvaluatesEveryRuleTheParserBuilds)
{
    struct Case {
        const char* text;
        std::vector<unsigned int> raising;
        std::vector<unsigned int> clear;
    };
    const unsigned int minusOne = UINT_MAXIMUM;
    const std::vector<Case> cases = {
        {"expr=signed(value>-1)", {0, 7, 2147483647u}, {minusOne, 2147483648u}},
        {"expr=unsigned(value>1)", {2, 2147483648u, minusOne}, {0, 1}},
        {"expr=signed(value>=3)", {3, 4}, {2, minusOne}},
        {"expr=signed(value<3)", {2, minusOne, 2147483648u}, {3, 4}},
        {"expr=unsigned(value<=4000000000)", {0, 4000000000u}, {4000000001u}},
        {"expr=signed(value==-5)", {4294967291u}, {5, 0}},
        {"expr=unsigned(value!=0)", {1, minusOne}, {0}},
        {"expr=signed(5<value)", {6}, {5, minusOne}},
        {"expr=unsigned(5>=value)", {5, 0}, {6, minusOne}},
        {"expr=signed(value<-10 or value>10)", {11, 4294967285u}, {10, 0, 4294967286u}},
        {"expr=unsigned(value>=10 and 20>value)", {10, 19}, {9, 20, minusOne}},
    };
    for (const Case& c : cases) {
        const RuleObject rule = ruleOf(c.text);
        const bool isUnsigned = (std::string(c.text).find("unsigned") != std::string::npos);
        const auto holds = [&](unsigned int sample) {
            return isUnsigned ? checkSimpleValueRule<unsigned int>(rule, sample)
                              : checkSimpleValueRule<int>(rule, static_cast<int>(sample));
        };
        for (const unsigned int sample : c.raising) {
            EXPECT_TRUE(holds(sample)) << c.text << " for " << sample;
        }
        for (const unsigned int sample : c.clear) {
            EXPECT_FALSE(holds(sample)) << c.text << " for " << sample;
        }
    }
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

class CheckSimpleDeltaRule : public EvaluationTest {
protected:
    static std::string deltaLine(unsigned long long delta)
    {
        return lines.debug("checkSimpleDeltaRule", "delta=%llu", delta);
    }
};

TEST_F(CheckSimpleDeltaRule, EvaluatesTheSizeOfTheChangeWhateverItsDirection)
{
    const RuleObject rule = ruleOf("expr=signed(delta>1)");
    const Diagnostics all = {deltaLine(2), lines.debug("checkInt", "%s", "x=2: result=1")};
    for (const auto& [first, second] : std::vector<std::pair<int, int>>{{3, 5}, {5, 3}, {-1, 1}, {-3, -5}}) {
        expectAtEveryTraceLevel([&, a = first, b = second] { return checkSimpleDeltaRule<int>(rule, a, b); }, true,
                                all);
    }
    for (const auto& [first, second] : std::vector<std::pair<unsigned int, unsigned int>>{{3, 5}, {5, 3}}) {
        expectAtEveryTraceLevel([&, a = first, b = second] { return checkSimpleDeltaRule<unsigned int>(rule, a, b); },
                                true, all);
    }
    expectAtEveryTraceLevel([&] { return checkSimpleDeltaRule<int>(rule, 7, 7); }, false,
                            {deltaLine(0), lines.debug("checkInt", "%s", "x=0: result=0")});
}

TEST_F(CheckSimpleDeltaRule, OfSignedSamplesAcceptsChangesUpToTheLargestInt)
{
    const RuleObject rule = ruleOf("expr=signed(delta==2147483647)");
    const Diagnostics all = {deltaLine(2147483647), lines.debug("checkInt", "%s", "x=2147483647: result=1")};
    expectAtEveryTraceLevel([&] { return checkSimpleDeltaRule<int>(rule, 0, INT_MAXIMUM); }, true, all);
    expectAtEveryTraceLevel([&] { return checkSimpleDeltaRule<int>(rule, -1, INT_MINIMUM); }, true, all);
}

TEST_F(CheckSimpleDeltaRule, OfSignedSamplesRefusesLargerChangesWithTheLimitBeforeTheDelta)
{
    const RuleObject rule = ruleOf("expr=signed(delta>=0)");
    struct Case {
        int first;
        int second;
        long long delta;
    };
    const std::vector<Case> cases = {{-1, INT_MAXIMUM, 2147483648LL},
                                     {INT_MINIMUM, INT_MAXIMUM, 4294967295LL},
                                     {INT_MAXIMUM, INT_MINIMUM, 4294967295LL},
                                     {-1500000000, 1500000000, 3000000000LL}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.delta);
        expectAtEveryTraceLevel(
            [&] { return checkSimpleDeltaRule<int>(rule, c.first, c.second); }, false,
            {deltaLine(static_cast<unsigned long long>(c.delta)),
             lines.error("checkSimpleDeltaRule",
                         "Delta=%lld but VEMOR does not support deltas larger than %lld in int32_t rules", 2147483647LL,
                         c.delta)});
    }
    checkSimpleDeltaRule<int>(rule, -1500000000, 1500000000);
    EXPECT_EQ(m_diagnostics.take(),
              Diagnostics{errorLine(
                  "EventMgmtRulesCppObjects.cpp", "checkSimpleDeltaRule",
                  "Delta=%lld but VEMOR does not support deltas larger than %lld in int32_t rules",
                  "Delta=2147483647 but VEMOR does not support deltas larger than 3000000000 in int32_t rules")});
}

TEST_F(CheckSimpleDeltaRule, OfUnsignedSamplesComparesAnyChange)
{
    const RuleObject rule = ruleOf("expr=unsigned(delta>4294967294)");
    const Diagnostics all = {deltaLine(4294967295ULL), lines.debug("checkInt", "%s", "x=4294967295: result=1")};
    expectAtEveryTraceLevel([&] { return checkSimpleDeltaRule<unsigned int>(rule, 0, UINT_MAXIMUM); }, true, all);
    expectAtEveryTraceLevel([&] { return checkSimpleDeltaRule<unsigned int>(rule, UINT_MAXIMUM, 0); }, true, all);
    EXPECT_FALSE(checkSimpleDeltaRule<unsigned int>(rule, 1, UINT_MAXIMUM));
}

class CheckSingleHysteresisRule : public EvaluationTest {};

TEST_F(CheckSingleHysteresisRule, CarriesTheStateFromSampleToSample)
{
    struct Case {
        const char* text;
        std::vector<std::pair<int, bool>> course;
    };
    const std::vector<Case> cases = {
        {"expr=signed(hyshigh(70,80))",
         {{75, false}, {80, false}, {81, true}, {75, true}, {71, true}, {70, false}, {75, false}}},
        {"expr=signed(hyslow(20,10))",
         {{15, false}, {10, false}, {9, true}, {15, true}, {19, true}, {20, false}, {15, false}, {-5, true}}},
    };
    for (const Case& c : cases) {
        const RuleObject rule = ruleOf(c.text);
        bool state = false;
        for (const auto& [sample, newState] : c.course) {
            state = checkSingleHysteresisRule<int>(rule, sample, state);
            EXPECT_EQ(state, newState) << c.text << " at " << sample;
        }
    }
}

TEST_F(CheckSingleHysteresisRule, ComparesLargeUnsignedThresholdsUnsigned)
{
    const RuleObject rule = ruleOf("expr=unsigned(hyshigh(3000000000,4000000000))");
    EXPECT_FALSE(checkSingleHysteresisRule<unsigned int>(rule, 100, false));
    EXPECT_FALSE(checkSingleHysteresisRule<unsigned int>(rule, 4000000000u, false));
    EXPECT_TRUE(checkSingleHysteresisRule<unsigned int>(rule, 4000000001u, false));
    EXPECT_TRUE(checkSingleHysteresisRule<unsigned int>(rule, 3000000001u, true));
    EXPECT_FALSE(checkSingleHysteresisRule<unsigned int>(rule, 3000000000u, true));
}

TEST_F(CheckSingleHysteresisRule, LogsOneLineOfItsPair)
{
    const RuleObject rule = ruleOf("expr=signed(hyshigh(70,80))");
    expectAtEveryTraceLevel([&] { return checkSingleHysteresisRule<int>(rule, 75, true); }, true,
                            {lines.debug("checkHysteresis", "%s", "x=75: result=1")});
}

class CheckDoubleHysteresisRule : public EvaluationTest {};

TEST_F(CheckDoubleHysteresisRule, UpdatesBothStatesWhateverTheOrderInTheText)
{
    struct Step {
        int sample;
        bool upper;
        bool lower;
    };
    const std::vector<Step> course = {{50, false, false}, {81, true, false}, {75, true, false}, {70, false, false},
                                      {9, false, true},   {19, false, true}, {85, true, false}, {5, false, true}};
    for (const char* text : {"expr=signed(hyshigh(70,80) hyslow(10,20))", "expr=signed(hyslow(10,20) hyshigh(70,80))",
                             "expr=unsigned(hyslow(20,10) and hyshigh(80,70))"}) {
        const RuleObject rule = ruleOf(text);
        bool upper = false;
        bool lower = false;
        bool unsignedUpper = false;
        bool unsignedLower = false;
        for (const Step& step : course) {
            checkDoubleHysteresisRule<int>(rule, step.sample, upper, lower);
            checkDoubleHysteresisRule<unsigned int>(rule, static_cast<unsigned int>(step.sample), unsignedUpper,
                                                    unsignedLower);
            EXPECT_EQ(std::make_pair(upper, lower), std::make_pair(step.upper, step.lower))
                << text << " at " << step.sample;
            EXPECT_EQ(std::make_pair(unsignedUpper, unsignedLower), std::make_pair(step.upper, step.lower))
                << text << " at " << step.sample << "u";
        }
    }
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(CheckDoubleHysteresisRule, LogsTheUpperPairBeforeTheLower)
{
    const RuleObject rule = ruleOf("expr=signed(hyslow(10,20) hyshigh(70,80))");
    expectAtEveryTraceLevel(
        [&] {
            bool upper = true;
            bool lower = true;
            checkDoubleHysteresisRule<int>(rule, 75, upper, lower);
            return std::make_pair(upper, lower);
        },
        std::make_pair(true, false),
        {lines.debug("checkHysteresis", "%s", "x=75: result=1"),
         lines.debug("checkHysteresis", "%s", "x=75: result=0")});
}

TEST_F(CheckDoubleHysteresisRule, EvaluatesTheLowerPairAlsoWhenTheUpperFails)
{
    RuleObject rule = ruleOf("expr=signed(hyshigh(70,80) hyslow(10,20))");
    rule.m_expressions[0].m_leftOperand = boost::any();
    bool upper = true;
    bool lower = false;
    checkDoubleHysteresisRule<int>(rule, 9, upper, lower);
    EXPECT_EQ(std::make_pair(upper, lower), std::make_pair(false, true));
    EXPECT_EQ(m_diagnostics.take(), unknownTypeToFillIn<int>());
}

}  // namespace
}  // namespace vemorRules
