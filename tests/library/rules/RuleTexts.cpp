#include "library/rules/RuleTexts.h"

namespace vemorRules {

namespace {

std::string described(RelationalOperator relationalOperator)
{
    switch (relationalOperator) {
        case GREATER_THAN: return ">";
        case GREATER_OR_EQUAL: return ">=";
        case LESS_THAN: return "<";
        case LESS_OR_EQUAL: return "<=";
        case EQUAL: return "==";
        case NOT_EQUAL: return "!=";
        case LOGICAL_AND: return "and";
        case LOGICAL_OR: return "or";
    }
    return "operator " + std::to_string(static_cast<int>(relationalOperator));
}

std::string described(ExpressionType type)
{
    switch (type) {
        case NO_EXPRESSION: return "NO_EXPRESSION";
        case SIMPLE_EXPRESSION_VALUE: return "SIMPLE_EXPRESSION_VALUE";
        case SIMPLE_EXPRESSION_DELTA: return "SIMPLE_EXPRESSION_DELTA";
        case SINGLE_HYSTERESIS: return "SINGLE_HYSTERESIS";
        case DOUBLE_HYSTERESIS: return "DOUBLE_HYSTERESIS";
    }
    return "type " + std::to_string(static_cast<int>(type));
}

}  // namespace

std::string described(const boost::any& operand)
{
    const std::type_info& heldType = operand.type();
    if (heldType == typeid(int)) {
        return "int " + std::to_string(boost::any_cast<int>(operand));
    }
    if (heldType == typeid(unsigned int)) {
        return "unsigned " + std::to_string(boost::any_cast<unsigned int>(operand));
    }
    if (heldType == typeid(ParamField)) {
        return "ParamField";
    }
    if (heldType == typeid(MemoryField)) {
        return "MemoryField";
    }
    if (heldType == typeid(Expression)) {
        return described(boost::any_cast<const Expression&>(operand));
    }
    return operand.empty() ? "empty" : "foreign";
}

std::string described(const Expression& expression)
{
    return "(" + described(expression.m_leftOperand) + " " + described(expression.m_relationalOperator) + " " +
           described(expression.m_rightOperand) + ")";
}

std::string described(const RuleObject& rule)
{
    std::string text = described(rule.m_expressionType);
    const char* separator = ": ";
    for (const Expression& expression : rule.m_expressions) {
        text += separator + described(expression);
        separator = ", ";
    }
    return text;
}

}  // namespace vemorRules
