// The library's evaluation compared with the literal substitution, on random rule texts, trees and samples: results,
// lines and reports must be the same. The outcomes must also be the same on every machine: each shard has the digest of
// all its outcomes here, which holds on 64-bit little-endian and 32-bit big-endian hosts alike.

#include <array>
#include <cstdint>
#include <cstdio>
#include <string>

#include "EventMgmtRulesParsing.h"
#include "library/rules/RandomRules.h"
#include "library/rules/RuleTexts.h"
#include "library/rules/SubstitutionEvaluator.h"
#include "support/Diagnostics.h"

namespace vemorRules {
namespace {

constexpr int CASES_PER_SHARD = 125000;
constexpr int SAMPLES_PER_RULE = 2;

// What one call did: its result or the states it left, the operand it changed, and everything that it logged and
// reported.
struct Outcome {
    std::uint32_t result = 0;
    std::string operand;
    Diagnostics diagnostics;
};

bool operator==(const Outcome& left, const Outcome& right)
{
    return (left.result == right.result) && (left.operand == right.operand) && (left.diagnostics == right.diagnostics);
}

std::ostream& operator<<(std::ostream& stream, const Outcome& outcome)
{
    return stream << outcome.result << " " << outcome.operand << " " << ::testing::PrintToString(outcome.diagnostics);
}

// FNV-1a.
class Digest {
public:
    void add(const std::string& text)
    {
        for (const char character : text) {
            m_value = (m_value ^ static_cast<unsigned char>(character)) * 0x100000001b3u;
        }
    }

    // Without the signatures of reports, which compilers spell differently.
    void add(const Outcome& outcome)
    {
        add(std::to_string(outcome.result) + outcome.operand);
        for (const std::string& text : outcome.diagnostics) {
            add((text.compare(0, 6, "assert") == 0) ? text.substr(0, text.find(" in ")) : text);
        }
    }

    std::string text() const
    {
        char digits[17];
        static_cast<void>(std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(m_value)));
        return digits;
    }

private:
    std::uint64_t m_value = 0xcbf29ce484222325u;
};

struct Shard {
    std::uint32_t seed;
    const char* digest;
};

std::ostream& operator<<(std::ostream& stream, const Shard& shard)
{
    return stream << "seed " << shard.seed;
}

class RandomComparison : public ::testing::TestWithParam<Shard> {
protected:
    template <typename Call>
    Outcome outcomeOf(Call call)
    {
        Outcome outcome;
        outcome.result = static_cast<std::uint32_t>(call(outcome.operand));
        outcome.diagnostics = m_diagnostics.take();
        return outcome;
    }

    // Compares one call of the library with one of the substitution. A call may leave an operand's text.
    template <typename Library, typename Substitution>
    void compare(const char* what, Library library, Substitution substitution)
    {
        const Outcome actual = outcomeOf(library);
        const Outcome expected = outcomeOf(substitution);
        EXPECT_EQ(actual, expected) << what << " on " << m_subject << " in case " << m_case;
        m_digest.add(actual);
        ++m_comparisons;
    }

    template <typename T>
    void compareValueRule(const RuleObject& rule)
    {
        const T sample = static_cast<T>(m_random.sample());
        compare(
            "checkSimpleValueRule", [&](std::string&) { return checkSimpleValueRule<T>(rule, sample); },
            [&](std::string&) { return substitution::checkSimpleValueRule<T>(rule, sample); });
    }

    template <typename T>
    void compareDeltaRule(const RuleObject& rule)
    {
        const T first = static_cast<T>(m_random.sample());
        const T second = static_cast<T>(m_random.sample());
        compare(
            "checkSimpleDeltaRule", [&](std::string&) { return checkSimpleDeltaRule<T>(rule, first, second); },
            [&](std::string&) { return substitution::checkSimpleDeltaRule<T>(rule, first, second); });
    }

    template <typename T>
    void compareSingleHysteresisRule(const RuleObject& rule)
    {
        const T sample = static_cast<T>(m_random.sample());
        const bool state = m_random.oneIn(2);
        compare(
            "checkSingleHysteresisRule",
            [&](std::string&) { return checkSingleHysteresisRule<T>(rule, sample, state); },
            [&](std::string&) { return substitution::checkSingleHysteresisRule<T>(rule, sample, state); });
    }

    template <typename T>
    void compareDoubleHysteresisRule(const RuleObject& rule)
    {
        const T sample = static_cast<T>(m_random.sample());
        const std::uint32_t states = m_random.below(4);
        const auto statesAfter = [&](auto check) {
            bool upper = (states & 2u) != 0;
            bool lower = (states & 1u) != 0;
            check(rule, sample, upper, lower);
            return (upper ? 2 : 0) + (lower ? 1 : 0);
        };
        compare(
            "checkDoubleHysteresisRule", [&](std::string&) { return statesAfter(checkDoubleHysteresisRule<T>); },
            [&](std::string&) { return statesAfter(substitution::checkDoubleHysteresisRule<T>); });
    }

    template <typename T>
    void compareRuleFunction(int type, const RuleObject& rule)
    {
        switch (type) {
            case SIMPLE_EXPRESSION_VALUE: compareValueRule<T>(rule); break;
            case SIMPLE_EXPRESSION_DELTA: compareDeltaRule<T>(rule); break;
            case SINGLE_HYSTERESIS: compareSingleHysteresisRule<T>(rule); break;
            case DOUBLE_HYSTERESIS: compareDoubleHysteresisRule<T>(rule); break;
            default: break;
        }
    }

    // The function of the rule's type on some samples, and sometimes another, in both instantiations.
    void compareRule(const RuleObject& rule)
    {
        for (int i = 0; i < SAMPLES_PER_RULE; ++i) {
            compareRuleFunction<int>(rule.m_expressionType, rule);
            compareRuleFunction<unsigned int>(rule.m_expressionType, rule);
        }
        if (m_random.oneIn(4)) {
            const int type = static_cast<int>(1 + m_random.below(4));
            compareRuleFunction<int>(type, rule);
            compareRuleFunction<unsigned int>(type, rule);
        }
    }

    template <typename T>
    void compareFillInValue(const boost::any& operand)
    {
        const T value = static_cast<T>(m_random.sample());
        const std::uint32_t kind = m_random.below(17);
        const std::type_info& typeInfo = (kind == 0)  ? typeid(std::string)
                                         : (kind < 9) ? typeid(ParamField)
                                                      : typeid(MemoryField);
        const auto filled = [&](auto fill, std::string& text) {
            boost::any copy(operand);
            const bool isFilled = fill(copy, value, typeInfo);
            text = described(copy);
            return isFilled;
        };
        compare(
            "fillInValue", [&](std::string& text) { return filled(fillInValue<T>, text); },
            [&](std::string& text) { return filled(substitution::fillInValue<T>, text); });
    }

    template <typename T>
    void compareCheck(const boost::any& operand)
    {
        compare(
            "check", [&](std::string&) { return check<T>(operand); },
            [&](std::string&) { return substitution::check<T>(operand); });
    }

    template <typename T>
    void compareCheckInt(const Expression& expression)
    {
        const T value = static_cast<T>(m_random.sample());
        compare(
            "checkInt", [&](std::string&) { return checkInt<T>(expression, value); },
            [&](std::string&) { return substitution::checkInt<T>(expression, value); });
    }

    template <typename T>
    void compareCheckHysteresis(const Expression& first, const Expression& second)
    {
        const T sample = static_cast<T>(m_random.sample());
        const bool state = m_random.oneIn(2);
        compare(
            "checkHysteresis", [&](std::string&) { return checkHysteresis<T>(first, second, sample, state); },
            [&](std::string&) { return substitution::checkHysteresis<T>(first, second, sample, state); });
    }

    void compareParsedRule()
    {
        const std::string text = m_random.ruleText();
        m_subject = "'" + text + "'";
        RuleObject rule;
        const bool isAccepted = parseRule(text, &rule);
        m_diagnostics.take();
        m_digest.add(isAccepted ? "accepted" : "refused");
        compareRule(rule);
    }

    void compareRandomRule()
    {
        const RuleObject rule = m_random.ruleObject();
        m_subject = described(rule);
        compareRule(rule);
    }

    void compareBuildingBlocks()
    {
        const Expression first = m_random.tree(3);
        const Expression second = m_random.tree(2);
        const boost::any operand = m_random.oneIn(4) ? m_random.operand(1) : boost::any(first);
        m_subject = described(first) + ", " + described(second) + " and " + described(operand);
        switch (m_random.below(4)) {
            case 0:
                compareFillInValue<int>(operand);
                compareFillInValue<unsigned int>(operand);
                break;
            case 1:
                compareCheck<int>(operand);
                compareCheck<unsigned int>(operand);
                break;
            case 2:
                compareCheckInt<int>(first);
                compareCheckInt<unsigned int>(first);
                break;
            default:
                compareCheckHysteresis<int>(first, second);
                compareCheckHysteresis<unsigned int>(first, second);
                break;
        }
    }

    // Mostly at the level of errors: debug lines cost the most and are the simplest.
    void setRandomTraceLevel()
    {
        const std::uint32_t kind = m_random.below(32);
        if (kind == 0) {
            m_diagnostics.removeTraceObject();
        } else {
            m_diagnostics.setTraceLevel((kind == 1) ? 2 : (kind < 6) ? 9 : 3);
        }
    }

    void compareOneCase()
    {
        setRandomTraceLevel();
        const std::uint32_t kind = m_random.below(10);
        if (kind < 5) {
            compareParsedRule();
        } else if (kind < 8) {
            compareRandomRule();
        } else {
            compareBuildingBlocks();
        }
    }

    DiagnosticsCapture m_diagnostics{3};
    RandomRules m_random{GetParam().seed};
    Digest m_digest;
    std::string m_subject;
    int m_case = 0;
    int m_comparisons = 0;
};

TEST_P(RandomComparison, AgreesWithTheSubstitution)
{
    for (; (m_case < CASES_PER_SHARD) && !HasFailure(); ++m_case) {
        compareOneCase();
    }
    std::printf("seed %u: %d cases, %d comparisons, digest %s\n", static_cast<unsigned int>(GetParam().seed), m_case,
                m_comparisons, m_digest.text().c_str());
    EXPECT_EQ(m_digest.text(), GetParam().digest);
}

// The digests are those of one run: what counts is that they are the same everywhere.
INSTANTIATE_TEST_SUITE_P(Shards, RandomComparison,
                         ::testing::Values(Shard{1, "281d1866c5be78bc"}, Shard{2, "ffcbcc56532cd173"},
                                           Shard{3, "eead0ce7666bc9d1"}, Shard{4, "0f1002ca6160a3a8"},
                                           Shard{5, "7a6f6a93d151f187"}, Shard{6, "01521f00d3a50f69"},
                                           Shard{7, "d5b974d67aedaf23"}, Shard{8, "6b748abb09cc1d7d"}),
                         [](const auto& shard) { return "Seed" + std::to_string(shard.param.seed); });

}  // namespace
}  // namespace vemorRules
