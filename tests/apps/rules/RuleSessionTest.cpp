#include "rules/RuleSession.h"

#include <cstdlib>
#include <ostream>
#include <random>

#include <gtest/gtest.h>

#include "EventMgmtRulesParsing.h"
#include "RuleDiagnosis.h"
#include "rules/RaiseStatistics.h"

namespace brantel {

static bool operator==(const ConditionState& one, const ConditionState& other)
{
    return (one.name == other.name) && (one.isRaised == other.isRaised) && (one.hasChanged == other.hasChanged);
}

static std::ostream& operator<<(std::ostream& stream, const ConditionState& state)
{
    return stream << state.name << (state.hasChanged ? " becomes " : " stays ")
                  << (state.isRaised ? "raised" : "cleared");
}

namespace {

using States = std::vector<ConditionState>;

vemorRules::RuleObject parsed(const std::string& rule)
{
    vemorRules::RuleObject result;
    EXPECT_TRUE(vemorRules::parseRule(rule, &result)) << rule;
    return result;
}

RuleSession sessionOf(const std::string& rule)
{
    return {parsed(rule), vemorRules::isUnsignedRule(rule)};
}

TEST(RuleSession, HasNoStateAfterTheFirstSampleOfADeltaRule)
{
    RuleSession session = sessionOf("expr=unsigned(delta>5)");

    EXPECT_EQ(session.evaluate(100), (States{}));
    EXPECT_EQ(session.evaluate(110), (States{{"", true, true}}));
    EXPECT_EQ(session.evaluate(104), (States{{"", true, false}}));
    EXPECT_EQ(session.evaluate(104), (States{{"", false, true}}));
}

TEST(RuleSession, ContinuesWithTheMemoryOfAnother)
{
    RuleSession delta = sessionOf("expr=unsigned(delta>5)");
    delta.evaluate(100);
    RuleSession hysteresis = sessionOf("expr=signed(hyshigh(70,80) hyslow(10,20))");
    hysteresis.evaluate(81);

    RuleSession secondDelta = sessionOf("expr=unsigned(delta>5)");
    secondDelta.setMemory(delta.memory());
    RuleSession secondHysteresis = sessionOf("expr=signed(hyshigh(70,80) hyslow(10,20))");
    secondHysteresis.setMemory(hysteresis.memory());

    EXPECT_EQ(secondDelta.evaluate(110), (States{{"", true, true}}));
    EXPECT_EQ(secondHysteresis.evaluate(75), (States{{"upper", true, false}, {"lower", false, false}}));
}

TEST(RuleSession, CarriesTheTwoStatesOfADoubleHysteresis)
{
    RuleSession session = sessionOf("expr=signed(hyshigh(70,80) hyslow(10,20))");

    EXPECT_EQ(session.evaluate(75), (States{{"upper", false, false}, {"lower", false, false}}));
    EXPECT_EQ(session.evaluate(81), (States{{"upper", true, true}, {"lower", false, false}}));
    EXPECT_EQ(session.evaluate(71), (States{{"upper", true, false}, {"lower", false, false}}));
    EXPECT_EQ(session.evaluate(9), (States{{"upper", false, true}, {"lower", true, true}}));
    EXPECT_EQ(session.evaluate(19), (States{{"upper", false, false}, {"lower", true, false}}));
    EXPECT_EQ(session.evaluate(20), (States{{"upper", false, false}, {"lower", false, true}}));
}

TEST(RuleSession, DoesNotRaiseASignedDeltaRuleForAChangeAboveItsRange)
{
    RuleSession session = sessionOf("expr=signed(delta>5)");

    session.evaluate(-2147483647 - 1);
    EXPECT_EQ(session.evaluate(2147483647), (States{{"", false, false}}));
}

TEST(SampleRange, IsThatOfTheRulesSignedness)
{
    EXPECT_EQ(sampleRange(false).lowest, -2147483648LL);
    EXPECT_EQ(sampleRange(false).highest, 2147483647LL);
    EXPECT_EQ(sampleRange(true).lowest, 0LL);
    EXPECT_EQ(sampleRange(true).highest, 4294967295LL);
}

// Random series are also evaluated by the plain meaning of a rule of each kind.

class RandomSeries {
public:
    // Small numbers and the ends of the range, so that thresholds are often reached and crossed.
    SampleValue next(bool isUnsigned)
    {
        const SampleRange range = sampleRange(isUnsigned);
        const SampleValue small = static_cast<SampleValue>(m_engine() % 100U) - (isUnsigned ? 0 : 50);
        switch (m_engine() % 16U) {
            case 0: return range.lowest + static_cast<SampleValue>(m_engine() % 3U);
            case 1: return range.highest - static_cast<SampleValue>(m_engine() % 3U);
            default: return small;
        }
    }

private:
    std::mt19937 m_engine{20240501U};  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same series every time
};

constexpr int SERIES_LENGTH = 20000;

TEST(RuleSessionOnRandomSeries, EvaluatesValueRulesAsTheyRead)
{
    RandomSeries series;
    RuleSession isSigned = sessionOf("expr=signed(value<-10 or 10<value)");
    RuleSession isUnsigned = sessionOf("expr=unsigned(value>=10 and value!=4294967295)");
    for (int i = 0; i < SERIES_LENGTH; ++i) {
        const SampleValue one = series.next(false);
        ASSERT_EQ(isSigned.evaluate(one).at(0).isRaised, (one < -10) || (one > 10)) << one;
        const SampleValue other = series.next(true);
        ASSERT_EQ(isUnsigned.evaluate(other).at(0).isRaised, (other >= 10) && (other != 4294967295LL)) << other;
    }
}

TEST(RuleSessionOnRandomSeries, EvaluatesDeltaRulesAsTheyRead)
{
    for (const bool isUnsigned : {false, true}) {
        RandomSeries series;
        RuleSession session = sessionOf(isUnsigned ? "expr=unsigned(delta>20)" : "expr=signed(delta>20)");
        SampleValue previous = series.next(isUnsigned);
        session.evaluate(previous);
        for (int i = 0; i < SERIES_LENGTH; ++i) {
            const SampleValue sample = series.next(isUnsigned);
            const SampleValue change = std::abs(sample - previous);
            const bool isSupported = isUnsigned || (change <= 2147483647LL);
            ASSERT_EQ(session.evaluate(sample).at(0).isRaised, isSupported && (change > 20)) << previous << sample;
            previous = sample;
        }
    }
}

TEST(RuleSessionOnRandomSeries, EvaluatesHysteresesAsTheyRead)
{
    for (const bool isUnsigned : {false, true}) {
        RandomSeries series;
        const std::string word = isUnsigned ? "unsigned" : "signed";
        RuleSession upper = sessionOf("expr=" + word + "(hyshigh(30,40))");
        RuleSession lower = sessionOf("expr=" + word + "(hyslow(20,10))");
        RuleSession both = sessionOf("expr=" + word + "(hyslow(10,20) hyshigh(30,40))");
        bool isUpperRaised = false;
        bool isLowerRaised = false;
        for (int i = 0; i < SERIES_LENGTH; ++i) {
            const SampleValue sample = series.next(isUnsigned);
            const bool wasUpperRaised = isUpperRaised;
            const bool wasLowerRaised = isLowerRaised;
            if (sample > 40) {
                isUpperRaised = true;
            } else if (sample <= 30) {
                isUpperRaised = false;
            }
            if (sample < 10) {
                isLowerRaised = true;
            } else if (sample >= 20) {
                isLowerRaised = false;
            }
            const bool upperChanges = (isUpperRaised != wasUpperRaised);
            const bool lowerChanges = (isLowerRaised != wasLowerRaised);
            ASSERT_EQ(upper.evaluate(sample), (States{{"", isUpperRaised, upperChanges}})) << sample;
            ASSERT_EQ(lower.evaluate(sample), (States{{"", isLowerRaised, lowerChanges}})) << sample;
            ASSERT_EQ(both.evaluate(sample),
                      (States{{"upper", isUpperRaised, upperChanges}, {"lower", isLowerRaised, lowerChanges}}))
                << sample;
        }
    }
}

TEST(RaiseStatistics, CountRaisesAndTheLongest)
{
    RaiseStatistics statistics;
    double seconds = 0;
    for (const bool isRaised : {false, true, true, false, true, true, true, false, true}) {
        statistics.add(isRaised, seconds);
        seconds += 10;
    }

    EXPECT_EQ(statistics.timesRaised(), 3U);
    EXPECT_EQ(statistics.longestSamples(), 3U);
    EXPECT_EQ(statistics.longestSeconds(), 30.0);
}

TEST(RaiseStatistics, CountAConditionThatStaysRaisedUpToTheLastSample)
{
    RaiseStatistics statistics;
    statistics.add(true, 5.0);
    statistics.add(true, 7.5);

    EXPECT_EQ(statistics.timesRaised(), 1U);
    EXPECT_EQ(statistics.longestSamples(), 2U);
    EXPECT_EQ(statistics.longestSeconds(), 2.5);
}

TEST(RaiseStatistics, HaveNoTimeIfTheConditionWasNeverRaised)
{
    RaiseStatistics statistics;
    statistics.add(false, 5.0);

    EXPECT_EQ(statistics.timesRaised(), 0U);
    EXPECT_EQ(statistics.longestSamples(), 0U);
    EXPECT_EQ(statistics.longestSeconds(), std::nullopt);
}

TEST(RaiseStatistics, HaveNoTimeIfARequiredOneIsMissing)
{
    RaiseStatistics statistics;
    statistics.add(true, 5.0);
    statistics.add(false, std::nullopt);
    statistics.add(true, 7.0);
    statistics.add(false, 8.0);

    EXPECT_EQ(statistics.longestSeconds(), std::nullopt);
}

}  // namespace

}  // namespace brantel
