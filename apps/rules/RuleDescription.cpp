#include "rules/RuleDescription.h"

#include "EventMgmtRulesParsing.h"
#include "RuleText.h"
#include "rules/Comparison.h"

namespace brantel {
namespace {

using vemorRules::Expression;
using vemorRules::ExpressionType;
using vemorRules::RuleObject;

// "> 100", to follow the monitored quantity.
std::string comparisonWords(const Expression& expression, bool isUnsigned)
{
    const Comparison comparison = comparisonOf(expression, isUnsigned);
    return operatorText(comparison.relationalOperator) + (" " + std::to_string(comparison.limit));
}

std::string conditionWords(const Expression& condition, const std::string& before, bool isUnsigned)
{
    if (!isJoined(condition)) {
        return before + comparisonWords(condition, isUnsigned);
    }
    return before + comparisonWords(nestedExpression(condition.m_leftOperand), isUnsigned) + " " +
           operatorText(condition.m_relationalOperator) + " " + before +
           comparisonWords(nestedExpression(condition.m_rightOperand), isUnsigned);
}

std::string hysteresisWords(const Expression& keeping, const Expression& raising, bool isUnsigned)
{
    const Comparison keepingComparison = comparisonOf(nestedExpression(keeping.m_rightOperand), isUnsigned);
    const bool isUpper = (keepingComparison.relationalOperator == vemorRules::GREATER_THAN);
    return "raised when value " + comparisonWords(nestedExpression(raising.m_rightOperand), isUnsigned) +
           ", cleared when value " + (isUpper ? "<= " : ">= ") + std::to_string(keepingComparison.limit);
}

}  // namespace

std::string ruleKindText(ExpressionType type)
{
    switch (type) {
        case vemorRules::NO_EXPRESSION: return "empty rule";
        case vemorRules::SIMPLE_EXPRESSION_VALUE: return "value rule";
        case vemorRules::SIMPLE_EXPRESSION_DELTA: return "delta rule";
        case vemorRules::SINGLE_HYSTERESIS: return "single hysteresis";
        case vemorRules::DOUBLE_HYSTERESIS: return "double hysteresis";
    }
    return "unknown rule";
}

std::string meaningText(const RuleObject& rule, bool isUnsigned)
{
    const std::vector<Expression>& expressions = rule.m_expressions;
    switch (rule.m_expressionType) {
        case vemorRules::SIMPLE_EXPRESSION_VALUE:
            return "raised while " + conditionWords(expressions[0], "value ", isUnsigned);
        case vemorRules::SIMPLE_EXPRESSION_DELTA:
            return "raised while the change between two samples " + conditionWords(expressions[0], "is ", isUnsigned);
        case vemorRules::SINGLE_HYSTERESIS: return hysteresisWords(expressions[0], expressions[1], isUnsigned);
        case vemorRules::DOUBLE_HYSTERESIS:
            return "upper: " + hysteresisWords(expressions[0], expressions[1], isUnsigned) +
                   "; lower: " + hysteresisWords(expressions[2], expressions[3], isUnsigned);
        case vemorRules::NO_EXPRESSION: break;
    }
    return "has no condition";
}

std::string meaningText(const std::string& rule)
{
    if (vemorRules::isEmptyRule(rule)) {
        return meaningText({}, false);
    }
    const std::vector<vemorRules::MappedText> parts = vemorRules::partsOf(rule);
    std::string words;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        RuleObject part;
        vemorRules::parseExpression(parts[i].text(), &part);
        if (parts.size() > 1) {
            words += ((i == 0) ? "(" : "; (") + std::to_string(i + 1) + ") ";
        }
        words += meaningText(part, marksOf(parts[i]).isUnsigned);
    }
    return words;
}

}  // namespace brantel
