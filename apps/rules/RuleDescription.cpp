#include "rules/RuleDescription.h"

#include <typeinfo>

#include "EventMgmtRulesParsing.h"
#include "rules/RuleText.h"

using namespace vemorRules;

namespace {

// Words for each operator, and for the one that means the same with the operands exchanged.
struct OperatorWords {
    const char* asWritten;
    const char* exchanged;
};

const OperatorWords operatorWords[] = {
    {">", "<"}, {">=", "<="}, {"<", ">"}, {"<=", ">="}, {"==", "=="}, {"!=", "!="}, {"and", "and"}, {"or", "or"},
};

const Expression& nestedExpression(const boost::any& operand)
{
    return boost::any_cast<const Expression&>(operand);
}

std::string numberText(const boost::any& operand, bool isUnsigned)
{
    if (const auto* const pUnsigned = boost::any_cast<unsigned int>(&operand)) {
        return std::to_string(*pUnsigned);
    }
    const int number = boost::any_cast<int>(operand);
    // The thresholds of an unsigned hysteresis are stored as int, with the same 32 bits.
    return isUnsigned ? std::to_string(static_cast<unsigned int>(number)) : std::to_string(number);
}

// "> 100", with the monitored quantity thought before it.
std::string comparisonWords(const Expression& comparison, bool isUnsigned)
{
    const OperatorWords& words = operatorWords[comparison.m_relationalOperator];
    const bool isFieldLeft = (comparison.m_leftOperand.type() == typeid(ParamField));
    return isFieldLeft ? words.asWritten + (" " + numberText(comparison.m_rightOperand, isUnsigned))
                       : words.exchanged + (" " + numberText(comparison.m_leftOperand, isUnsigned));
}

std::string conditionWords(const Expression& condition, const std::string& before, bool isUnsigned)
{
    const bool isJoined = (condition.m_leftOperand.type() == typeid(Expression));
    if (!isJoined) {
        return before + comparisonWords(condition, isUnsigned);
    }
    return before + comparisonWords(nestedExpression(condition.m_leftOperand), isUnsigned) + " " +
           operatorWords[condition.m_relationalOperator].asWritten + " " + before +
           comparisonWords(nestedExpression(condition.m_rightOperand), isUnsigned);
}

std::string hysteresisWords(const Expression& keeping, const Expression& raising, bool isUnsigned)
{
    const Expression& keepingComparison = nestedExpression(keeping.m_rightOperand);
    const bool isUpper = (keepingComparison.m_relationalOperator == GREATER_THAN);
    return "raised when value " + comparisonWords(nestedExpression(raising.m_rightOperand), isUnsigned) +
           ", cleared when value " + (isUpper ? "<= " : ">= ") +
           numberText(keepingComparison.m_rightOperand, isUnsigned);
}

}  // namespace

std::string kindOfRule(ExpressionType type)
{
    switch (type) {
        case NO_EXPRESSION: return "empty rule";
        case SIMPLE_EXPRESSION_VALUE: return "value rule";
        case SIMPLE_EXPRESSION_DELTA: return "delta rule";
        case SINGLE_HYSTERESIS: return "single hysteresis";
        case DOUBLE_HYSTERESIS: return "double hysteresis";
    }
    return "unknown rule";
}

std::string describe(const RuleObject& rule, bool isUnsigned)
{
    const std::vector<Expression>& expressions = rule.m_expressions;
    switch (rule.m_expressionType) {
        case SIMPLE_EXPRESSION_VALUE: return "raised while " + conditionWords(expressions[0], "value ", isUnsigned);
        case SIMPLE_EXPRESSION_DELTA:
            return "raised while the change between two samples " + conditionWords(expressions[0], "is ", isUnsigned);
        case SINGLE_HYSTERESIS: return hysteresisWords(expressions[0], expressions[1], isUnsigned);
        case DOUBLE_HYSTERESIS:
            return "upper: " + hysteresisWords(expressions[0], expressions[1], isUnsigned) +
                   "; lower: " + hysteresisWords(expressions[2], expressions[3], isUnsigned);
        case NO_EXPRESSION: break;
    }
    return "decides nothing";
}

std::string describeRuleText(const std::string& rule)
{
    if (isEmptyRule(rule)) {
        return describe({}, false);
    }
    const std::vector<MappedText> parts = partsOf(rule);
    std::string words;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        RuleObject part;
        parseExpression(parts[i].text(), &part);
        if (parts.size() > 1) {
            words += ((i == 0) ? "part " : "; part ") + std::to_string(i + 1) + ": ";
        }
        words += describe(part, marksOf(parts[i]).isUnsigned);
    }
    return words;
}
