#include "rules/RuleReason.h"

#include <cstdlib>

#include "rules/Comparison.h"

using namespace vemorRules;

namespace {

// "above", with what the value is compared with thought after it.
const char* relationWords(RelationalOperator relationalOperator)
{
    switch (relationalOperator) {
        case GREATER_THAN: return "above";
        case GREATER_OR_EQUAL: return "at or above";
        case LESS_THAN: return "below";
        case LESS_OR_EQUAL: return "at or below";
        case EQUAL: return "equal to";
        case NOT_EQUAL: return "different from";
        case LOGICAL_AND:
        case LOGICAL_OR: break;
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

std::string reasonOfComparison(const std::string& quantity, const Comparison& comparison, SampleValue value,
                               const std::string& limitName)
{
    const Comparison outcome = asItHolds(comparison, value);
    return comparisonText(quantity, outcome) + ": " + relationWords(outcome.relationalOperator) + " the " + limitName;
}

std::string reasonOfSimpleExpression(const Expression& expression, bool isUnsigned, const std::string& quantity,
                                     SampleValue value)
{
    if (!isJoined(expression)) {
        return reasonOfComparison(quantity, comparisonOf(expression, isUnsigned), value, "limit");
    }
    const Comparison left = comparisonOf(nestedExpression(expression.m_leftOperand), isUnsigned);
    const Comparison right = comparisonOf(nestedExpression(expression.m_rightOperand), isUnsigned);
    static const char* const words[] = {"neither holds", "one of two holds", "both hold"};
    const std::size_t held = std::size_t{holds(left, value)} + std::size_t{holds(right, value)};
    return comparisonText(quantity, asItHolds(left, value)) + " and " +
           comparisonText(quantity, asItHolds(right, value)) + ": " + words[held];
}

std::string reasonOfDelta(const RuleSession& session, SampleValue previousSample, SampleValue sample)
{
    const SampleValue change = std::abs(sample - previousSample);
    const std::string quantity =
        "|" + std::to_string(sample) +
        ((previousSample < 0) ? " + " + std::to_string(-previousSample) : " - " + std::to_string(previousSample)) +
        "| = " + std::to_string(change);
    if (change > sampleRange(session.isUnsigned()).highest) {
        return quantity + ": a larger change than a signed rule decides on";
    }
    return reasonOfSimpleExpression(session.rule().m_expressions[0], session.isUnsigned(), quantity, change);
}

// Both thresholds stand in the pair: the one that keeps the condition raised in its first expression, the one that
// raises it in its second.
std::string reasonOfHysteresis(const RuleSession& session, std::size_t condition, SampleValue sample)
{
    const bool isRaised = session.memory().isRaised[condition];
    const Expression& expression = session.rule().m_expressions[2 * condition + (isRaised ? 1 : 0)];
    const Comparison comparison = comparisonOf(nestedExpression(expression.m_rightOperand), session.isUnsigned());
    const bool isUpperPair = (comparison.relationalOperator == GREATER_THAN);
    return reasonOfComparison(std::to_string(sample), comparison, sample,
                              (isUpperPair == isRaised) ? "upper threshold" : "lower threshold");
}

}  // namespace

std::string reasonOfState(const RuleSession& session, std::size_t condition, SampleValue previousSample,
                          SampleValue sample)
{
    switch (session.rule().m_expressionType) {
        case SIMPLE_EXPRESSION_VALUE:
            return reasonOfSimpleExpression(session.rule().m_expressions[0], session.isUnsigned(),
                                            std::to_string(sample), sample);
        case SIMPLE_EXPRESSION_DELTA: return reasonOfDelta(session, previousSample, sample);
        case SINGLE_HYSTERESIS:
        case DOUBLE_HYSTERESIS: return reasonOfHysteresis(session, condition, sample);
        case NO_EXPRESSION: break;
    }
    return "";
}
