#ifndef EVENT_MGMT_COMPILED_RULES_H
#define EVENT_MGMT_COMPILED_RULES_H

// Rules in a flat form that is evaluated in a nanosecond or less: one sample, a series of samples, many rules over one
// series, or many rules with a sample each. The answers are those of the check functions (EventMgmtRulesCppObjects.h)
// in the instantiation that the rule was compiled for; nothing is logged or reported.
//
//     RuleObject rule;
//     parseRule("expr=signed(hyshigh(80,90))", &rule);
//     const std::optional<CompiledRule> compiled = compileRule<int>(rule);  // nothing: keep to the check functions
//
//     bool isRaised = checkSingleHysteresisRule(*compiled, 95, false);      // one sample
//
//     RuleState state;                                                      // a series
//     SeriesCounts counts;
//     checkSeries(*compiled, samples.data(), samples.size(), state, {nullptr, nullptr, &counts});
//
// What these functions do not answer:
//
//     a rule of another type                              is never raised
//     the first sample of a delta rule's series           is not raised: there is nothing to compare with
//     a change above 2147483647 of a signed delta rule    is not raised, as in checkSimpleDeltaRule, but without its
//                                                         error line: isDeltaTooLarge
//
// A sample may be an int or an unsigned int: its 32 bits are taken as the rule's instantiation takes them.
//
// A compiled rule owns nothing: it is copied like a number, and an array of them is one block of memory. No function
// keeps anything between calls, allocates or throws. Any number of threads may evaluate at once, also the same rule.
// On x86-64 the series functions use AVX2 where the processor has it.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <type_traits>

#include "BrantelExport.h"
#include "EventMgmtRulesCppObjects.h"

namespace vemorRules {

class CompiledRule {
public:
    /// `span` + 1 numbers from `first`, modulo 2^32.
    struct Interval {
        std::uint32_t first;
        std::uint32_t span;

        bool contains(std::uint32_t number) const noexcept { return (number - first) <= span; }
    };

    ExpressionType type() const noexcept { return static_cast<ExpressionType>(m_type); }

    /// Whether the rule was compiled for unsigned samples.
    bool isUnsigned() const noexcept { return m_isUnsigned; }

    /// 1 for a comparison; 2 for two that are joined, left before right, and for a single hysteresis: the one that
    /// keeps it raised before the one that raises it; 4 for a double hysteresis, the upper pair first.
    std::size_t nThresholds() const noexcept { return m_nThresholds; }

    /// A threshold as the rule's samples are written, -2147483648 to 4294967295. `index` is below nThresholds().
    BRANTEL_EXPORT std::int64_t threshold(std::size_t index) const noexcept;

    /// Replaces a threshold; operators and everything else remain. `index` is below nThresholds(). Of `threshold`, the
    /// low 32 bits count. The thresholds of a hysteresis are taken as they are, also when that makes the one that keeps
    /// it stricter than the one that raises it.
    BRANTEL_EXPORT void setThreshold(std::size_t index, std::int64_t threshold) noexcept;

private:
    friend class RuleCompiler;
    friend class RuleReader;
    template <typename T>
    friend bool checkSimpleValueRule(const CompiledRule& rule, T sample) noexcept;
    template <typename T>
    friend bool checkSimpleDeltaRule(const CompiledRule& rule, T firstSample, T secondSample) noexcept;
    template <typename T>
    friend bool checkSingleHysteresisRule(const CompiledRule& rule, T sample, bool previousState) noexcept;
    template <typename T>
    friend void checkDoubleHysteresisRule(const CompiledRule& rule, T sample, bool& upperState,
                                          bool& lowerState) noexcept;

    // Rules whose every comparison, or both that are joined, hold for the numbers of one interval: almost all. They are
    // evaluated where the caller is, all others in the library.
    enum class Plain : std::uint8_t { NO, VALUE, SIGNED_DELTA, UNSIGNED_DELTA, SINGLE_HYSTERESIS, DOUBLE_HYSTERESIS };

    CompiledRule() = default;
    bool isPlain(Plain plain) const noexcept { return __builtin_expect(m_plain == plain, true); }
    bool hysteresisState(std::size_t keeping, std::uint32_t sample, bool previousState) const noexcept
    {
        // Without a branch on the sample, which cannot be predicted.
        const bool keeps = m_intervals[keeping].contains(sample);
        const bool raises = m_intervals[keeping + 1].contains(sample);
        return bool(raises | (keeps & previousState));
    }

    /// The verdict of a value or delta rule that is not plain; false for a rule of another type.
    BRANTEL_EXPORT bool checkOther(ExpressionType type, std::uint32_t number) const noexcept;

    /// The new state of a hysteresis of a rule that is not plain; false for a rule of another type.
    BRANTEL_EXPORT bool checkOtherHysteresis(ExpressionType type, std::size_t keeping, std::uint32_t sample,
                                             bool previousState) const noexcept;

    // Of a hysteresis, the numbers for which each comparison holds. Of a value or delta rule, the numbers for which its
    // comparisons hold (0 and 1) and for which the rule does (2, and if those are not one interval, 3: see m_nSets).
    Interval m_intervals[4] = {};
    std::uint8_t m_isEmpty[4] = {};    // then the interval means nothing
    std::uint8_t m_operators[4] = {};  // as if the monitored quantity were on the left
    std::uint8_t m_type = NO_EXPRESSION;
    Plain m_plain = Plain::NO;
    std::uint8_t m_nThresholds = 0;
    std::uint8_t m_nSets = 0;  // 2: the rule holds for what is in both sets, or for all else if m_isOr
    bool m_isUnsigned = false;
    bool m_isOr = false;
};

static_assert(std::is_trivially_copyable_v<CompiledRule> && (sizeof(CompiledRule) <= 48));

/// Compiles `rule` for samples of T, int or unsigned int. Returns nothing for rules that no text makes (several parts
/// included) and those that the check functions would report: a wrong number of expressions, operands of other shapes,
/// operators outside the table. Throws nothing, logs nothing.
template <typename T>
BRANTEL_EXPORT std::optional<CompiledRule> compileRule(const RuleObject& rule);

/// The verdict of a value rule.
template <typename T>
bool checkSimpleValueRule(const CompiledRule& rule, T sample) noexcept
{
    const auto number = static_cast<std::uint32_t>(sample);
    if (rule.isPlain(CompiledRule::Plain::VALUE)) {
        return rule.m_intervals[2].contains(number);
    }
    return rule.checkOther(SIMPLE_EXPRESSION_VALUE, number);
}

/// The size of the change between two samples, as numbers of T.
template <typename T>
std::uint32_t deltaOf(T firstSample, T secondSample) noexcept
{
    const auto first = static_cast<std::uint32_t>(firstSample);
    const auto second = static_cast<std::uint32_t>(secondSample);
    return (firstSample < secondSample) ? second - first : first - second;
}

/// Whether a change between two samples is larger than the delta rule takes: above 2147483647 for a signed one.
template <typename T>
bool isDeltaTooLarge(const CompiledRule& rule, T firstSample, T secondSample) noexcept
{
    return !rule.isUnsigned() &&
           (deltaOf(static_cast<std::int32_t>(firstSample), static_cast<std::int32_t>(secondSample)) > 0x7fffffffu);
}

/// The verdict of a delta rule on the size of the change between two samples.
template <typename T>
bool checkSimpleDeltaRule(const CompiledRule& rule, T firstSample, T secondSample) noexcept
{
    const auto first = static_cast<std::int32_t>(firstSample);
    const auto second = static_cast<std::int32_t>(secondSample);
    if (rule.isPlain(CompiledRule::Plain::SIGNED_DELTA)) {
        return rule.m_intervals[2].contains(deltaOf(first, second));
    }
    const std::uint32_t change = deltaOf(static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(second));
    if (rule.isPlain(CompiledRule::Plain::UNSIGNED_DELTA)) {
        return rule.m_intervals[2].contains(change);
    }
    return rule.checkOther(SIMPLE_EXPRESSION_DELTA, rule.isUnsigned() ? change : deltaOf(first, second));
}

/// The new state of a single hysteresis.
template <typename T>
bool checkSingleHysteresisRule(const CompiledRule& rule, T sample, bool previousState) noexcept
{
    const auto number = static_cast<std::uint32_t>(sample);
    if (rule.isPlain(CompiledRule::Plain::SINGLE_HYSTERESIS)) {
        return rule.hysteresisState(0, number, previousState);
    }
    return rule.checkOtherHysteresis(SINGLE_HYSTERESIS, 0, number, previousState);
}

/// Updates the states of the upper and the lower pair of a double hysteresis.
template <typename T>
void checkDoubleHysteresisRule(const CompiledRule& rule, T sample, bool& upperState, bool& lowerState) noexcept
{
    const auto number = static_cast<std::uint32_t>(sample);
    if (rule.isPlain(CompiledRule::Plain::DOUBLE_HYSTERESIS)) {
        upperState = rule.hysteresisState(0, number, upperState);
        lowerState = rule.hysteresisState(2, number, lowerState);
        return;
    }
    upperState = rule.checkOtherHysteresis(DOUBLE_HYSTERESIS, 0, number, upperState);
    lowerState = rule.checkOtherHysteresis(DOUBLE_HYSTERESIS, 2, number, lowerState);
}

/// What a rule carries from one sample to the next; a new one is that of a rule without samples.
struct RuleState {
    std::uint32_t previousSample = 0;  ///< its 32 bits, whatever the instantiation
    bool hasPreviousSample = false;
    bool isRaised = false;       ///< the only condition, or the upper one of a double hysteresis
    bool isLowerRaised = false;  ///< the lower one of a double hysteresis
};

/// How often a condition went from cleared to raised, and how many samples found it raised.
struct RaiseCounts {
    std::uint64_t raises = 0;
    std::uint64_t raisedSamples = 0;
};

/// Of a whole series: the only condition, or the upper one of a double hysteresis; and its lower one.
struct SeriesCounts {
    RaiseCounts raised;
    RaiseCounts lowerRaised;
};

/// What is wanted of a series, each null if it is not. Bit i % 64 of word i / 64 is the verdict on sample i; there is a
/// word for each 64 samples begun, and the last one's remaining bits are 0.
struct SeriesOutput {
    std::uint64_t* pRaised = nullptr;
    std::uint64_t* pLowerRaised = nullptr;  ///< of a double hysteresis; otherwise all 0
    SeriesCounts* pCounts = nullptr;        ///< added to what is there
};

/// Evaluates a rule on `n` samples, in their order, as the check function of its type would one by one. `state` is that
/// after the samples before, and is updated.
template <typename T>
BRANTEL_EXPORT void checkSeries(const CompiledRule& rule, const T* pSamples, std::size_t n, RuleState& state,
                                const SeriesOutput& output) noexcept;

/// Evaluates `nRules` rules on the same samples, which are read from memory once. `pStates` and `pOutputs` have an
/// element for each rule; `pOutputs` may be null.
template <typename T>
BRANTEL_EXPORT void checkSeries(const CompiledRule* pRules, std::size_t nRules, const T* pSamples, std::size_t n,
                                RuleState* pStates, const SeriesOutput* pOutputs) noexcept;

/// Evaluates `n` rules of any types and instantiations on a sample each, of which the 32 bits count. `pStates` has a
/// state for each rule, whose isRaised and isLowerRaised are the verdicts afterwards. Sets bit i % 64 of word i / 64 of
/// `pChanged` if a condition of rule i changed, and clears it otherwise. Returns how many did.
BRANTEL_EXPORT std::size_t checkEach(const CompiledRule* pRules, const std::uint32_t* pSamples, std::size_t n,
                                     RuleState* pStates, std::uint64_t* pChanged) noexcept;

}  // namespace vemorRules

#endif
