// Compiled rules compared with the check functions, on random rule texts, trees and samples: one sample after the
// other, and as series by every set of inner loops. The outcomes must also be the same on every machine: each shard has
// the digest of all its verdicts here, which holds on 64-bit little-endian and 32-bit big-endian hosts alike.

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "EventMgmtCompiledRules.h"
#include "EventMgmtRulesParsing.h"
#include "library/rules/RandomRules.h"
#include "library/rules/RuleTexts.h"
#include "src/SeriesMasks.h"
#include "support/Diagnostics.h"

namespace vemorRules {
namespace {

constexpr int RULES_PER_SHARD = 125'000;
constexpr std::uint32_t LONGEST_SERIES = 200;
constexpr std::uint32_t N_ALIGNMENTS = 16;

struct Shard {
    std::uint32_t seed;
    const char* digest;
};

std::ostream& operator<<(std::ostream& stream, const Shard& shard)
{
    return stream << "seed " << shard.seed;
}

class CompiledRulesComparison : public ::testing::TestWithParam<Shard> {
protected:
    void addToDigest(std::uint64_t number) { m_digest = (m_digest ^ number) * 0x100000001b3u; }

    // What the check functions require of a rule that the parser made.
    static bool hasExpressionsOfItsType(const RuleObject& rule)
    {
        static constexpr std::size_t counts[] = {1, 1, 2, 4};
        return (rule.m_expressionType != NO_EXPRESSION) &&
               (rule.m_expressions.size() == counts[rule.m_expressionType - SIMPLE_EXPRESSION_VALUE]);
    }

    // The check function of the rule's type on the next sample.
    template <typename T>
    static void checkNext(const RuleObject& rule, T sample, RuleState& state)
    {
        switch (rule.m_expressionType) {
            case SIMPLE_EXPRESSION_VALUE: state.isRaised = checkSimpleValueRule(rule, sample); break;
            case SIMPLE_EXPRESSION_DELTA:
                state.isRaised =
                    state.hasPreviousSample && checkSimpleDeltaRule(rule, static_cast<T>(state.previousSample), sample);
                break;
            case SINGLE_HYSTERESIS: state.isRaised = checkSingleHysteresisRule(rule, sample, state.isRaised); break;
            default: checkDoubleHysteresisRule(rule, sample, state.isRaised, state.isLowerRaised); break;
        }
        state.previousSample = static_cast<std::uint32_t>(sample);
        state.hasPreviousSample = true;
    }

    // The same by the compiled rule.
    template <typename T>
    void expectCheckOf(const CompiledRule& rule, T sample, const RuleState& before, const RuleState& expected)
    {
        RuleState state = before;
        const auto previous = static_cast<T>(before.previousSample);
        switch (rule.type()) {
            case SIMPLE_EXPRESSION_VALUE: state.isRaised = checkSimpleValueRule(rule, sample); break;
            case SIMPLE_EXPRESSION_DELTA:
                state.isRaised = before.hasPreviousSample && checkSimpleDeltaRule(rule, previous, sample);
                break;
            case SINGLE_HYSTERESIS: state.isRaised = checkSingleHysteresisRule(rule, sample, state.isRaised); break;
            default: checkDoubleHysteresisRule(rule, sample, state.isRaised, state.isLowerRaised); break;
        }
        EXPECT_EQ(state.isRaised, expected.isRaised) << m_subject << " on " << sample;
        EXPECT_EQ(state.isLowerRaised, expected.isLowerRaised) << m_subject << " on " << sample;
    }

    // The samples that differ most for a rule are those around its thresholds.
    std::uint32_t nextSample(const CompiledRule& rule)
    {
        if (m_random.oneIn(2)) {
            const auto index = static_cast<std::size_t>(m_random.below(static_cast<std::uint32_t>(rule.nThresholds())));
            const std::uint32_t distance = m_random.below(3);
            return static_cast<std::uint32_t>(rule.threshold(index)) + distance - 1;
        }
        return m_random.sample();
    }

    RuleState randomState()
    {
        RuleState state;
        state.hasPreviousSample = m_random.oneIn(2);
        state.previousSample = state.hasPreviousSample ? m_random.sample() : 0;
        state.isRaised = m_random.oneIn(2);
        return state;
    }

    template <typename T>
    void compareSeries(const RuleObject& rule, const CompiledRule& compiled)
    {
        const std::size_t n = m_random.below(LONGEST_SERIES + 1);
        const std::size_t offset = m_random.below(N_ALIGNMENTS);
        std::vector<std::uint32_t> samples(offset + n);
        for (std::uint32_t& sample : samples) {
            sample = nextSample(compiled);
        }
        const RuleState before = randomState();
        RuleState expected = before;
        std::vector<std::uint64_t> raised((n + 63) / 64);
        std::vector<std::uint64_t> lowerRaised(raised.size());
        for (std::size_t i = 0; i < n; ++i) {
            const RuleState beforeSample = expected;
            const auto sample = static_cast<T>(samples[offset + i]);
            checkNext(rule, sample, expected);
            expectCheckOf(compiled, sample, beforeSample, expected);
            raised[i / 64] |= std::uint64_t{expected.isRaised} << (i % 64);
            lowerRaised[i / 64] |= std::uint64_t{expected.isLowerRaised} << (i % 64);
        }
        for (const SeriesMasks* const pMasks : usableSeriesMasks()) {
            std::vector<std::uint64_t> raisedAsSeries(raised.size());
            std::vector<std::uint64_t> lowerRaisedAsSeries(raised.size());
            const SeriesOutput output = {raisedAsSeries.data(), lowerRaisedAsSeries.data(), nullptr};
            RuleState state = before;
            checkSeriesWith(*pMasks, &compiled, 1, samples.data() + offset, n, &state, &output);
            EXPECT_EQ(raisedAsSeries, raised) << m_subject << " by " << pMasks->name;
            EXPECT_EQ(lowerRaisedAsSeries, lowerRaised) << m_subject << " by " << pMasks->name;
            EXPECT_EQ(state.isRaised, expected.isRaised) << m_subject << " by " << pMasks->name;
        }
        for (const std::uint64_t word : raised) {
            addToDigest(word);
        }
        for (const std::uint64_t word : lowerRaised) {
            addToDigest(word);
        }
    }

    template <typename T>
    void compare(const RuleObject& rule)
    {
        const std::optional<CompiledRule> compiled = compileRule<T>(rule);
        addToDigest(compiled.has_value() ? 1 : 0);
        if (compiled) {
            ++m_nCompiled;
            compareSeries<T>(rule, *compiled);
        }
    }

    void compareRule()
    {
        RuleObject rule;
        if (m_random.oneIn(10)) {
            rule = m_random.ruleObject();
            m_subject = described(rule);
        } else {
            const std::string text = m_random.ruleText();
            m_subject = "'" + text + "'";
            const bool isAccepted = parseRule(text, &rule);
            m_diagnostics.take();
            if (isAccepted) {
                EXPECT_EQ(compileRule<int>(rule).has_value(), hasExpressionsOfItsType(rule)) << m_subject;
            }
        }
        compare<int>(rule);
        compare<unsigned int>(rule);
    }

    DiagnosticsCapture m_diagnostics{3};
    RandomRules m_random{GetParam().seed};
    std::uint64_t m_digest = 0xcbf29ce484222325u;
    std::string m_subject;
    int m_nCompiled = 0;
};

TEST_P(CompiledRulesComparison, AgreesWithTheCheckFunctions)
{
    for (int i = 0; (i < RULES_PER_SHARD) && !HasFailure(); ++i) {
        compareRule();
    }
    char digest[17];
    static_cast<void>(std::snprintf(digest, sizeof digest, "%016llx", static_cast<unsigned long long>(m_digest)));
    std::printf("seed %u: %d rules, %d of %d instantiations compiled, digest %s\n",
                static_cast<unsigned int>(GetParam().seed), RULES_PER_SHARD, m_nCompiled, 2 * RULES_PER_SHARD, digest);
    EXPECT_STREQ(digest, GetParam().digest);
    EXPECT_GT(m_nCompiled, RULES_PER_SHARD);
}

// The digests are those of one run: what counts is that they are the same everywhere.
INSTANTIATE_TEST_SUITE_P(Shards, CompiledRulesComparison,
                         ::testing::Values(Shard{1, "7eab91bb09412fa3"}, Shard{2, "3fa843559f54bdb9"},
                                           Shard{3, "f0bb44d0fa33b682"}, Shard{4, "e9449e0cc9379d34"},
                                           Shard{5, "d8c983162f8d7381"}, Shard{6, "5c0f41a2463a3794"},
                                           Shard{7, "2c848f5be0f40e7e"}, Shard{8, "a7b27ef9a6ebd04c"}),
                         [](const auto& shard) { return "Seed" + std::to_string(shard.param.seed); });

}  // namespace
}  // namespace vemorRules
