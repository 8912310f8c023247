#include "RuleDiagnosis.h"

#include <array>
#include <typeinfo>

#include <boost/any.hpp>

#include "RuleText.h"

namespace vemorRules {
namespace {

using Reason = std::optional<std::string>;

// Indexed by ExpressionType.
constexpr std::array<std::size_t, 5> N_EXPRESSIONS_OF_TYPE = {0, 1, 1, 2, 4};

bool isHysteresis(ExpressionType type)
{
    return (type == SINGLE_HYSTERESIS) || (type == DOUBLE_HYSTERESIS);
}

Reason reasonAgainstExpression(const Expression& expression, bool isHysteresis);

Reason reasonAgainstOperand(const boost::any& operand, bool isHysteresis)
{
    const std::type_info& type = operand.type();
    if (type == typeid(Expression)) {
        return reasonAgainstExpression(boost::any_cast<const Expression&>(operand), isHysteresis);
    }
    if (type == typeid(MemoryField)) {
        return isHysteresis ? std::nullopt : Reason("an operand is a MemoryField: only a hysteresis has a state");
    }
    if ((type == typeid(int)) || (type == typeid(unsigned int)) || (type == typeid(ParamField))) {
        return std::nullopt;
    }
    return "an operand is not an int, an unsigned int, a ParamField, a MemoryField or an Expression";
}

Reason reasonAgainstExpression(const Expression& expression, bool isHysteresis)
{
    if ((expression.m_relationalOperator < GREATER_THAN) || (expression.m_relationalOperator > LOGICAL_OR)) {
        return "the operator " + std::to_string(expression.m_relationalOperator) + " is unknown";
    }
    Reason reason = reasonAgainstOperand(expression.m_leftOperand, isHysteresis);
    return reason ? reason : reasonAgainstOperand(expression.m_rightOperand, isHysteresis);
}

}  // namespace

std::optional<std::string> reasonAgainstEvaluation(const RuleObject& rule)
{
    if (rule.m_expressionType == NO_EXPRESSION) {
        return "there is nothing to evaluate: the rule is empty or a comment";
    }
    // Unsigned, so that negative types are unknown too.
    const auto type = static_cast<std::uint32_t>(rule.m_expressionType);
    if (type >= N_EXPRESSIONS_OF_TYPE.size()) {
        return "the rule type " + std::to_string(rule.m_expressionType) + " is unknown";
    }
    const std::size_t count = rule.m_expressions.size();
    if (count > N_EXPRESSIONS_OF_TYPE[type]) {
        return SEVERAL_PARTS;
    }
    if (count < N_EXPRESSIONS_OF_TYPE[type]) {
        return "the type of the rule takes " + std::to_string(N_EXPRESSIONS_OF_TYPE[type]) +
               " expressions, the rule has " + std::to_string(count);
    }
    for (const Expression& expression : rule.m_expressions) {
        if (Reason reason = reasonAgainstExpression(expression, isHysteresis(rule.m_expressionType))) {
            return reason;
        }
    }
    return std::nullopt;
}

}  // namespace vemorRules
