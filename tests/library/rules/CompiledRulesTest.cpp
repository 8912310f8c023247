// The flat form of rules: which rules have one, and that it answers what the check functions answer.

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "EventMgmtCompiledRules.h"
#include "EventMgmtRulesParsing.h"
#include "library/rules/EvaluationTest.h"
#include "src/SeriesMasks.h"

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

template <typename T = int>
CompiledRule compiled(const std::string& text)
{
    const std::optional<CompiledRule> rule = compileRule<T>(ruleOf(text));
    EXPECT_TRUE(rule.has_value()) << text;
    return rule.value();
}

// The samples among `candidates` that raise the rule.
template <typename T>
std::vector<T> raising(const CompiledRule& rule, const std::vector<T>& candidates)
{
    std::vector<T> found;
    for (const T sample : candidates) {
        if (checkSimpleValueRule(rule, sample)) {
            found.push_back(sample);
        }
    }
    return found;
}

class CompiledRules : public EvaluationTest {
protected:
    static bool areCompiled(const RuleObject& rule)
    {
        return compileRule<int>(rule).has_value() || compileRule<unsigned int>(rule).has_value();
    }

    static RuleObject valueRule(const Expression& expression) { return {SIMPLE_EXPRESSION_VALUE, {expression}}; }
};

TEST_F(CompiledRules, CompareEveryOperatorWithBothEndsOfTheRange)
{
    const std::vector<int> samples = {INT_MINIMUM, INT_MINIMUM + 1, -1, 0, 1, INT_MAXIMUM - 1, INT_MAXIMUM};
    const std::string lowest = std::to_string(INT_MINIMUM);
    const std::string highest = std::to_string(INT_MAXIMUM);
    const auto raisedBy = [&](const std::string& expression) {
        return raising(compiled("expr=signed(" + expression + ")"), samples);
    };
    using Samples = std::vector<int>;
    EXPECT_EQ(raisedBy("value>0"), (Samples{1, INT_MAXIMUM - 1, INT_MAXIMUM}));
    EXPECT_EQ(raisedBy("value>=0"), (Samples{0, 1, INT_MAXIMUM - 1, INT_MAXIMUM}));
    EXPECT_EQ(raisedBy("value<0"), (Samples{INT_MINIMUM, INT_MINIMUM + 1, -1}));
    EXPECT_EQ(raisedBy("value<=0"), (Samples{INT_MINIMUM, INT_MINIMUM + 1, -1, 0}));
    EXPECT_EQ(raisedBy("value==0"), Samples{0});
    EXPECT_EQ(raisedBy("value!=0"), (Samples{INT_MINIMUM, INT_MINIMUM + 1, -1, 1, INT_MAXIMUM - 1, INT_MAXIMUM}));
    EXPECT_EQ(raisedBy("0<value"), raisedBy("value>0"));
    EXPECT_EQ(raisedBy("0<=value"), raisedBy("value>=0"));
    EXPECT_EQ(raisedBy("0>value"), raisedBy("value<0"));
    EXPECT_EQ(raisedBy("0>=value"), raisedBy("value<=0"));

    EXPECT_EQ(raisedBy("value>" + highest), Samples{});
    EXPECT_EQ(raisedBy("value>=" + highest), Samples{INT_MAXIMUM});
    EXPECT_EQ(raisedBy("value<=" + highest), samples);
    EXPECT_EQ(raisedBy("value<" + lowest), Samples{});
    EXPECT_EQ(raisedBy("value<=" + lowest), Samples{INT_MINIMUM});
    EXPECT_EQ(raisedBy("value>=" + lowest), samples);
}

TEST_F(CompiledRules, CompareUnsignedSamplesAsUnsigned)
{
    const std::vector<unsigned int> samples = {0, 1, 0x7fffffff, 0x80000000, 0xffffffff};
    const auto raisedBy = [&](const std::string& expression) {
        return raising(compiled<unsigned int>("expr=unsigned(" + expression + ")"), samples);
    };
    using Samples = std::vector<unsigned int>;
    EXPECT_EQ(raisedBy("value>2147483647"), (Samples{0x80000000, 0xffffffff}));
    EXPECT_EQ(raisedBy("value<2147483648"), (Samples{0, 1, 0x7fffffff}));
    EXPECT_EQ(raisedBy("value>4294967295"), Samples{});
    EXPECT_EQ(raisedBy("value<0"), Samples{});
}

TEST_F(CompiledRules, JoinTwoComparisons)
{
    const std::vector<int> samples = {-1, 0, 1, 9, 10, 11};
    using Samples = std::vector<int>;
    EXPECT_EQ(raising(compiled("expr=signed(value>0 and value<10)"), samples), (Samples{1, 9}));
    EXPECT_EQ(raising(compiled("expr=signed(value<0 or value>10)"), samples), (Samples{-1, 11}));
    EXPECT_EQ(raising(compiled("expr=signed(value!=0 or value>10)"), samples), (Samples{-1, 1, 9, 10, 11}));
}

TEST_F(CompiledRules, TakeTheSizeOfAChangeUpToTheLimitOfSignedRules)
{
    const CompiledRule rule = compiled("expr=signed(delta>=20)");
    EXPECT_TRUE(checkSimpleDeltaRule(rule, 5, 25));
    EXPECT_TRUE(checkSimpleDeltaRule(rule, 25, 5));
    EXPECT_FALSE(checkSimpleDeltaRule(rule, 5, 24));
    EXPECT_TRUE(checkSimpleDeltaRule(rule, 0, INT_MAXIMUM));
    EXPECT_FALSE(isDeltaTooLarge(rule, 0, INT_MAXIMUM));
    EXPECT_FALSE(checkSimpleDeltaRule(rule, -1, INT_MAXIMUM));
    EXPECT_TRUE(isDeltaTooLarge(rule, -1, INT_MAXIMUM));
    EXPECT_TRUE(isDeltaTooLarge(rule, INT_MAXIMUM, INT_MINIMUM));

    const CompiledRule unsignedRule = compiled<unsigned int>("expr=unsigned(delta>=4294967295)");
    EXPECT_TRUE(checkSimpleDeltaRule(unsignedRule, 0u, 0xffffffffu));
    EXPECT_FALSE(isDeltaTooLarge(unsignedRule, 0xffffffffu, 0u));
}

TEST_F(CompiledRules, KeepTheStateOfAHysteresisBetweenItsThresholds)
{
    const CompiledRule upper = compiled("expr=signed(hyshigh(70,80))");
    EXPECT_FALSE(checkSingleHysteresisRule(upper, 75, false));
    EXPECT_TRUE(checkSingleHysteresisRule(upper, 81, false));
    EXPECT_TRUE(checkSingleHysteresisRule(upper, 75, true));
    EXPECT_FALSE(checkSingleHysteresisRule(upper, 70, true));
    EXPECT_FALSE(checkSingleHysteresisRule(upper, 80, false));

    const CompiledRule both = compiled("expr=signed(hyshigh(70,80) hyslow(10,20))");
    bool isHigh = false;
    bool isLow = true;
    checkDoubleHysteresisRule(both, 15, isHigh, isLow);
    EXPECT_EQ(std::pair(isHigh, isLow), std::pair(false, true));
    checkDoubleHysteresisRule(both, 90, isHigh, isLow);
    EXPECT_EQ(std::pair(isHigh, isLow), std::pair(true, false));
}

TEST_F(CompiledRules, AreNeverRaisedByTheFunctionOfAnotherType)
{
    const CompiledRule value = compiled("expr=signed(value>0)");
    const CompiledRule hysteresis = compiled("expr=signed(hyshigh(1,2))");
    bool isHigh = true;
    bool isLow = true;
    EXPECT_FALSE(checkSimpleDeltaRule(value, 0, 5));
    EXPECT_FALSE(checkSingleHysteresisRule(value, 5, true));
    EXPECT_FALSE(checkSimpleValueRule(hysteresis, 5));
    checkDoubleHysteresisRule(value, 5, isHigh, isLow);
    EXPECT_EQ(std::pair(isHigh, isLow), std::pair(false, false));
}

TEST_F(CompiledRules, DoNotExistForWhatNoTextMakesOrTheChecksWouldReport)
{
    const Expression overFive = comparison(GREATER_THAN, 5);
    EXPECT_TRUE(areCompiled(valueRule(overFive)));
    EXPECT_TRUE(areCompiled(valueRule({LOGICAL_AND, overFive, overFive})));

    EXPECT_FALSE(areCompiled({}));
    EXPECT_FALSE(areCompiled({static_cast<ExpressionType>(257), {overFive}}));
    EXPECT_FALSE(areCompiled({SIMPLE_EXPRESSION_VALUE, {overFive, overFive}}));
    EXPECT_FALSE(areCompiled({SIMPLE_EXPRESSION_DELTA, {}}));
    EXPECT_FALSE(areCompiled({SINGLE_HYSTERESIS, {overFive, overFive}}));
    EXPECT_FALSE(areCompiled({DOUBLE_HYSTERESIS, std::vector<Expression>(4, overFive)}));
    EXPECT_FALSE(areCompiled(ruleOf("expr=signed(value>1);expr=signed(value>2)")));

    EXPECT_FALSE(areCompiled(valueRule({GREATER_THAN, 6, 5})));
    EXPECT_FALSE(areCompiled(valueRule({GREATER_THAN, ParamField(), ParamField()})));
    EXPECT_FALSE(areCompiled(valueRule({GREATER_THAN, ParamField(), MemoryField()})));
    EXPECT_FALSE(areCompiled(valueRule({GREATER_THAN, ParamField(), boost::any()})));
    EXPECT_FALSE(areCompiled(valueRule({GREATER_THAN, ParamField(), 5L})));
    EXPECT_FALSE(areCompiled(valueRule({LOGICAL_AND, ParamField(), 5})));
    EXPECT_FALSE(areCompiled(valueRule({LOGICAL_OR, overFive, 1})));
    EXPECT_FALSE(areCompiled(valueRule({LOGICAL_OR, 1, overFive})));
    EXPECT_FALSE(areCompiled(valueRule({LOGICAL_OR, overFive, Expression(LOGICAL_OR, overFive, overFive)})));
    EXPECT_FALSE(areCompiled(valueRule({static_cast<RelationalOperator>(8), ParamField(), 5})));
    EXPECT_FALSE(areCompiled(valueRule({static_cast<RelationalOperator>(-1), ParamField(), 5})));
    const Expression keeping(LOGICAL_AND, MemoryField(), overFive);
    const Expression raising(LOGICAL_OR, MemoryField(), overFive);
    EXPECT_TRUE(areCompiled({SINGLE_HYSTERESIS, {keeping, raising}}));
    for (const Expression& other :
         {raising, Expression(LOGICAL_AND, overFive, MemoryField()), Expression(LOGICAL_AND, MemoryField(), 1)}) {
        EXPECT_FALSE(areCompiled({SINGLE_HYSTERESIS, {other, raising}}));
    }
    for (const Expression& other :
         {keeping, Expression(LOGICAL_OR, overFive, MemoryField()), Expression(LOGICAL_OR, MemoryField(), 1)}) {
        EXPECT_FALSE(areCompiled({SINGLE_HYSTERESIS, {keeping, other}}));
    }
    RuleObject halfDouble = ruleOf("expr=signed(hyshigh(1,2) hyslow(3,4))");
    halfDouble.m_expressions[0] = overFive;
    EXPECT_FALSE(areCompiled(halfDouble));
    halfDouble = ruleOf("expr=signed(hyshigh(1,2) hyslow(3,4))");
    halfDouble.m_expressions[3] = overFive;
    EXPECT_FALSE(areCompiled(halfDouble));
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(CompiledRules, ShowAndTakeThresholds)
{
    CompiledRule rule = compiled("expr=signed(hyshigh(70,80) hyslow(-20,10))");
    std::vector<std::int64_t> thresholds;
    for (std::size_t i = 0; i < rule.nThresholds(); ++i) {
        thresholds.push_back(rule.threshold(i));
    }
    EXPECT_EQ(thresholds, (std::vector<std::int64_t>{70, 80, 10, -20}));

    rule.setThreshold(1, 90);
    bool isHigh = false;
    bool isLow = false;
    checkDoubleHysteresisRule(rule, 85, isHigh, isLow);
    EXPECT_FALSE(isHigh);
    checkDoubleHysteresisRule(rule, 91, isHigh, isLow);
    EXPECT_TRUE(isHigh);
}

TEST_F(CompiledRules, KeepTheirOperatorsWhenAThresholdChanges)
{
    for (const char* const token : {">", ">=", "<", "<=", "==", "!="}) {
        for (const char* const junction : {" and ", " or "}) {
            const auto text = [&](const char* first, const char* second) {
                return std::string("expr=unsigned(value") + token + first + junction + second + token + "value)";
            };
            CompiledRule changed = compiled<unsigned int>(text("1", "2"));
            changed.setThreshold(0, 4000000000);
            changed.setThreshold(1, 7);
            EXPECT_EQ(changed.threshold(0), 4000000000);
            EXPECT_EQ(changed.threshold(1), 7);
            const std::vector<unsigned int> samples = {0, 1, 2, 6, 7, 8, 3999999999, 4000000000, 4000000001};
            EXPECT_EQ(raising(changed, samples), raising(compiled<unsigned int>(text("4000000000", "7")), samples))
                << text("1", "2");
        }
    }
}

// One rule's verdicts on a series, sample by sample, by the function of its type.
struct OneByOne {
    std::vector<bool> raised;
    std::vector<bool> lowerRaised;
    SeriesCounts counts;
    RuleState state;
};

template <typename T>
OneByOne evaluatedOneByOne(const CompiledRule& rule, const T* pSamples, std::size_t n, RuleState state)
{
    OneByOne result;
    for (std::size_t i = 0; i < n; ++i) {
        const bool wasRaised = state.isRaised;
        const bool wasLowerRaised = state.isLowerRaised;
        const auto previous = static_cast<T>(state.previousSample);
        switch (rule.type()) {
            case SIMPLE_EXPRESSION_VALUE: state.isRaised = checkSimpleValueRule(rule, pSamples[i]); break;
            case SIMPLE_EXPRESSION_DELTA:
                state.isRaised = state.hasPreviousSample && checkSimpleDeltaRule(rule, previous, pSamples[i]);
                break;
            case SINGLE_HYSTERESIS: state.isRaised = checkSingleHysteresisRule(rule, pSamples[i], wasRaised); break;
            default: checkDoubleHysteresisRule(rule, pSamples[i], state.isRaised, state.isLowerRaised); break;
        }
        state.previousSample = static_cast<std::uint32_t>(pSamples[i]);
        state.hasPreviousSample = true;
        result.raised.push_back(state.isRaised);
        result.lowerRaised.push_back(state.isLowerRaised);
        result.counts.raised.raises += (state.isRaised && !wasRaised) ? 1 : 0;
        result.counts.raised.raisedSamples += state.isRaised ? 1 : 0;
        result.counts.lowerRaised.raises += (state.isLowerRaised && !wasLowerRaised) ? 1 : 0;
        result.counts.lowerRaised.raisedSamples += state.isLowerRaised ? 1 : 0;
    }
    result.state = state;
    return result;
}

std::vector<std::uint64_t> asWords(const std::vector<bool>& verdicts)
{
    std::vector<std::uint64_t> words((verdicts.size() + 63) / 64);
    for (std::size_t i = 0; i < verdicts.size(); ++i) {
        words[i / 64] |= std::uint64_t{verdicts[i]} << (i % 64);
    }
    return words;
}

bool operator==(const RaiseCounts& one, const RaiseCounts& other)
{
    return (one.raises == other.raises) && (one.raisedSamples == other.raisedSamples);
}

void expectSameState(const RuleState& actual, const RuleState& expected)
{
    EXPECT_EQ(actual.previousSample, expected.previousSample);
    EXPECT_EQ(actual.hasPreviousSample, expected.hasPreviousSample);
    EXPECT_EQ(actual.isRaised, expected.isRaised);
    EXPECT_EQ(actual.isLowerRaised, expected.isLowerRaised);
}

// A rule of each kind and instantiation, with thresholds between the samples below.
std::vector<CompiledRule> rulesOfEveryKind()
{
    std::vector<CompiledRule> rules;
    for (const std::string expression :
         {"value>5", "value!=7", "value<2 or value>8", "value>2 and value<8", "value!=3 and value!=7",
          "value==3 or value==7", "value<8 and value!=5", "value>MAX", "delta>=4", "delta<1 or delta>6",
          "delta!=2 and delta!=4", "hyshigh(3,7)", "hyslow(3,7)", "hyshigh(3,MAX)", "hyshigh(5,8) hyslow(1,4)",
          "hyshigh(5,MAX) hyslow(1,4)"}) {
        const auto with = [&expression](const std::string& largest) {
            const std::size_t pos = expression.find("MAX");
            return (pos == std::string::npos) ? expression : std::string(expression).replace(pos, 3, largest);
        };
        rules.push_back(compiled<int>("expr=signed(" + with("2147483647") + ")"));
        rules.push_back(compiled<unsigned int>("expr=unsigned(" + with("4294967295") + ")"));
    }
    return rules;
}

// Small numbers, and now and then both ends of the ranges.
std::vector<std::uint32_t> samplesOfEveryKind(std::size_t n)
{
    std::vector<std::uint32_t> samples(n);
    std::uint32_t random = 12345;
    for (std::uint32_t& sample : samples) {
        random = random * 1664525u + 1013904223u;
        const std::uint32_t choice = random >> 16;
        sample = (choice % 16 == 0) ? 0x7fffffffu + choice / 16 % 3 : choice / 16 % 10;
    }
    return samples;
}

// What the series function wrote into memory that is larger than it may use.
struct Written {
    explicit Written(std::size_t n) : raised((n + 63) / 64 + 1, ~0ull), lowerRaised(raised) {}

    std::vector<std::uint64_t> raised;
    std::vector<std::uint64_t> lowerRaised;
    SeriesCounts counts;
    SeriesOutput output() { return {raised.data(), lowerRaised.data(), &counts}; }
};

void expectWritten(const Written& written, const OneByOne& expected)
{
    std::vector<std::uint64_t> raised = asWords(expected.raised);
    std::vector<std::uint64_t> lowerRaised = asWords(expected.lowerRaised);
    raised.push_back(~0ull);  // not touched
    lowerRaised.push_back(~0ull);
    EXPECT_EQ(written.raised, raised);
    EXPECT_EQ(written.lowerRaised, lowerRaised);
    EXPECT_TRUE(written.counts.raised == expected.counts.raised);
    EXPECT_TRUE(written.counts.lowerRaised == expected.counts.lowerRaised);
}

template <typename T>
OneByOne expectedFor(const CompiledRule& rule, const std::uint32_t* pSamples, std::size_t n, const RuleState& state)
{
    return evaluatedOneByOne(rule, reinterpret_cast<const T*>(pSamples), n, state);
}

class CompiledSeries : public ::testing::TestWithParam<const SeriesMasks*> {
protected:
    static void expectSeriesLikeOneByOne(const CompiledRule& rule, const std::uint32_t* pSamples, std::size_t n,
                                         const RuleState& before)
    {
        Written written(n);
        RuleState state = before;
        const SeriesOutput output = written.output();
        checkSeriesWith(*GetParam(), &rule, 1, pSamples, n, &state, &output);
        const OneByOne expected = expectedFor<int>(rule, pSamples, n, before);
        expectWritten(written, expected);
        expectSameState(state, expected.state);
    }
};

TEST_P(CompiledSeries, AreEvaluatedLikeOneSampleAfterTheOtherAtEveryLengthAndAlignment)
{
    constexpr std::size_t LONGEST = 200;
    constexpr std::size_t N_ALIGNMENTS = 16;
    const std::vector<std::uint32_t> samples = samplesOfEveryKind(LONGEST + N_ALIGNMENTS);
    for (const CompiledRule& rule : rulesOfEveryKind()) {
        for (std::size_t n = 0; n <= LONGEST; ++n) {
            // Allocated as long as it is, so that reading on is noticed.
            const std::size_t offset = n % N_ALIGNMENTS;
            const std::vector<std::uint32_t> part(samples.begin(), samples.begin() + static_cast<long>(offset + n));
            RuleState raisedBefore;
            raisedBefore.isRaised = true;
            raisedBefore.isLowerRaised = (rule.type() == DOUBLE_HYSTERESIS);
            raisedBefore.hasPreviousSample = true;
            raisedBefore.previousSample = 9;
            for (const RuleState& state : {RuleState(), raisedBefore}) {
                expectSeriesLikeOneByOne(rule, part.data() + offset, n, state);
            }
            if (HasFailure()) {
                FAIL() << "type " << rule.type() << ", unsigned " << rule.isUnsigned() << ", " << n << " samples";
            }
        }
        for (std::size_t offset = 0; offset < N_ALIGNMENTS; ++offset) {
            expectSeriesLikeOneByOne(rule, samples.data() + offset, LONGEST, RuleState());
        }
    }
}

TEST_P(CompiledSeries, ContinueWhereTheLastOneEnded)
{
    const std::vector<std::uint32_t> samples = samplesOfEveryKind(10'000);
    std::uint64_t raises = 0;
    for (const CompiledRule& rule : rulesOfEveryKind()) {
        RuleState state;
        SeriesCounts counts;
        const SeriesOutput output = {nullptr, nullptr, &counts};
        std::size_t done = 0;
        for (const std::size_t n : {1u, 63u, 64u, 65u, 4096u, 5000u, 711u}) {
            checkSeriesWith(*GetParam(), &rule, 1, samples.data() + done, n, &state, &output);
            done += n;
        }
        ASSERT_EQ(done, samples.size());
        const OneByOne expected = expectedFor<int>(rule, samples.data(), done, {});
        EXPECT_TRUE(counts.raised == expected.counts.raised);
        EXPECT_TRUE(counts.lowerRaised == expected.counts.lowerRaised);
        expectSameState(state, expected.state);
        raises += counts.raised.raises;
    }
    EXPECT_GT(raises, 10'000U);
}

TEST_P(CompiledSeries, OfManyRulesAreEvaluatedLikeThoseOfEach)
{
    const std::vector<CompiledRule> rules = rulesOfEveryKind();
    const std::vector<std::uint32_t> samples = samplesOfEveryKind(5003);
    std::vector<RuleState> states(rules.size());
    std::vector<Written> written(rules.size(), Written(samples.size()));
    std::vector<SeriesOutput> outputs;
    for (Written& one : written) {
        outputs.push_back(one.output());
    }
    checkSeriesWith(*GetParam(), rules.data(), rules.size(), samples.data(), samples.size(), states.data(),
                    outputs.data());
    for (std::size_t i = 0; i < rules.size(); ++i) {
        const OneByOne expected = expectedFor<int>(rules[i], samples.data(), samples.size(), {});
        expectWritten(written[i], expected);
        expectSameState(states[i], expected.state);
    }
}

TEST_P(CompiledSeries, OfManyRulesKeepTheirStatesAlsoWithoutOutput)
{
    const std::vector<CompiledRule> rules = rulesOfEveryKind();
    const std::vector<std::uint32_t> samples = samplesOfEveryKind(100);
    std::vector<RuleState> states(rules.size());
    checkSeriesWith(*GetParam(), rules.data(), rules.size(), samples.data(), samples.size(), states.data(), nullptr);
    for (std::size_t i = 0; i < rules.size(); ++i) {
        expectSameState(states[i], expectedFor<int>(rules[i], samples.data(), samples.size(), {}).state);
    }
}

INSTANTIATE_TEST_SUITE_P(With, CompiledSeries,
                         ::testing::ValuesIn(usableSeriesMasks().begin(), usableSeriesMasks().end()),
                         [](const auto& masks) { return std::string(masks.param->name); });

TEST_F(CompiledRules, EvaluateSeriesOfSignedAndUnsignedSamples)
{
    const std::vector<int> samples = {-5, 5, 15};
    RuleState state;
    SeriesCounts counts;
    std::uint64_t raised = 0;
    checkSeries(compiled("expr=signed(value<0)"), samples.data(), samples.size(), state, {&raised, nullptr, &counts});
    EXPECT_EQ(raised, 0b001U);
    EXPECT_TRUE(counts.raised == (RaiseCounts{1, 1}));

    const std::vector<unsigned int> unsignedSamples = {0xfffffffb, 5, 15};
    checkSeries(compiled<unsigned int>("expr=unsigned(value>10)"), unsignedSamples.data(), unsignedSamples.size(),
                state, {&raised, nullptr, nullptr});
    EXPECT_EQ(raised, 0b101U);
}

TEST_F(CompiledRules, WithASampleEachAreEvaluatedLikeOneSampleOfEach)
{
    std::vector<CompiledRule> rules;
    while (rules.size() < 150) {
        const std::vector<CompiledRule> more = rulesOfEveryKind();
        rules.insert(rules.end(), more.begin(), more.end());
    }
    std::vector<RuleState> states(rules.size());
    std::vector<std::uint64_t> changed((rules.size() + 63) / 64);
    const std::vector<std::uint32_t> samples = samplesOfEveryKind(20 * rules.size());
    for (std::size_t cycle = 0; cycle < 20; ++cycle) {
        const std::uint32_t* const pSamples = samples.data() + cycle * rules.size();
        std::vector<bool> expectedChanges;
        std::vector<RuleState> expectedStates;
        for (std::size_t i = 0; i < rules.size(); ++i) {
            const RuleState after = expectedFor<int>(rules[i], pSamples + i, 1, states[i]).state;
            expectedChanges.push_back((after.isRaised != states[i].isRaised) ||
                                      (after.isLowerRaised != states[i].isLowerRaised));
            expectedStates.push_back(after);
        }
        const std::size_t nChanged = checkEach(rules.data(), pSamples, rules.size(), states.data(), changed.data());
        EXPECT_EQ(changed, asWords(expectedChanges));
        EXPECT_EQ(nChanged, static_cast<std::size_t>(std::count(expectedChanges.begin(), expectedChanges.end(), true)));
        for (std::size_t i = 0; i < rules.size(); ++i) {
            expectSameState(states[i], expectedStates[i]);
        }
    }
}

}  // namespace
}  // namespace vemorRules
