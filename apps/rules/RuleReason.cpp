#include "rules/RuleReason.h"

#include <cstdlib>

#include "rules/Comparison.h"

namespace brantel {
namespace {

using vemorRules::Expression;
using vemorRules::RelationalOperator;

// "above", to be followed by what the value is compared with.
const char* relationWords(RelationalOperator relationalOperator)
{
    switch (relationalOperator) {
        case vemorRules::GREATER_THAN: return "above";
        case vemorRules::GREATER_OR_EQUAL: return "at or above";
        case vemorRules::LESS_THAN: return "below";
        case vemorRules::LESS_OR_EQUAL: return "at or below";
        case vemorRules::EQUAL: return "equal to";
        case vemorRules::NOT_EQUAL: return "different from";
        case vemorRules::LOGICAL_AND:
        case vemorRules::LOGICAL_OR: break;
    }
    return "";
}

// The comparison as it turned out: with the operator that holds.
Comparison asItHolds(const Comparison& comparison, SampleValue value)
{
    return holds(comparison, value) ? comparison : Comparison{negated(comparison.relationalOperator), comparison.limit};
}

std::string comparisonText(const std::string& quantity, const Comparison& comparison)
{
    return quantity + " " + operatorText(comparison.relationalOperator) + " " + std::to_string(comparison.limit);
}

std::string comparisonReason(const std::string& quantity, const Comparison& comparison, SampleValue value,
                             const std::string& limitName)
{
    const Comparison outcome = asItHolds(comparison, value);
    return comparisonText(quantity, outcome) + ": " + relationWords(outcome.relationalOperator) + " the " + limitName;
}

std::string simpleReason(const Expression& expression, bool isUnsigned, const std::string& quantity, SampleValue value)
{
    if (!isJoined(expression)) {
        return comparisonReason(quantity, comparisonOf(expression, isUnsigned), value, "limit");
    }
    const Comparison left = comparisonOf(nestedExpression(expression.m_leftOperand), isUnsigned);
    const Comparison right = comparisonOf(nestedExpression(expression.m_rightOperand), isUnsigned);
    static const char* const WORDS[] = {"neither holds", "one of two holds", "both hold"};
    const std::size_t held = std::size_t{holds(left, value)} + std::size_t{holds(right, value)};
    return comparisonText(quantity, asItHolds(left, value)) + " and " +
           comparisonText(quantity, asItHolds(right, value)) + ": " + WORDS[held];
}

std::string deltaReason(const RuleSession& session, SampleValue previousSample, SampleValue sample)
{
    const SampleValue change = std::abs(sample - previousSample);
    const std::string quantity =
        "|" + std::to_string(sample) +
        ((previousSample < 0) ? " + " + std::to_string(-previousSample) : " - " + std::to_string(previousSample)) +
        "| = " + std::to_string(change);
    if (change > sampleRange(session.isUnsigned()).highest) {
        return quantity + ": beyond the range of a signed rule";
    }
    return simpleReason(session.rule().m_expressions[0], session.isUnsigned(), quantity, change);
}

// The pair holds both thresholds: the one that keeps the condition raised in its first expression, the one that
// raises it in its second.
std::string hysteresisReason(const RuleSession& session, std::size_t condition, SampleValue sample)
{
    const bool isRaised = session.states()[condition].isRaised;
    const Expression& expression = session.rule().m_expressions[2 * condition + (isRaised ? 1 : 0)];
    const Comparison comparison = comparisonOf(nestedExpression(expression.m_rightOperand), session.isUnsigned());
    const bool isUpperPair = (comparison.relationalOperator == vemorRules::GREATER_THAN);
    return comparisonReason(std::to_string(sample), comparison, sample,
                            (isUpperPair == isRaised) ? "upper threshold" : "lower threshold");
}

}  // namespace

std::string reasonText(const RuleSession& session, std::size_t condition, SampleValue previousSample,
                       SampleValue sample)
{
    switch (session.rule().m_expressionType) {
        case vemorRules::SIMPLE_EXPRESSION_VALUE:
            return simpleReason(session.rule().m_expressions[0], session.isUnsigned(), std::to_string(sample), sample);
        case vemorRules::SIMPLE_EXPRESSION_DELTA: return deltaReason(session, previousSample, sample);
        case vemorRules::SINGLE_HYSTERESIS:
        case vemorRules::DOUBLE_HYSTERESIS: return hysteresisReason(session, condition, sample);
        case vemorRules::NO_EXPRESSION: break;
    }
    return "";
}

}  // namespace brantel
