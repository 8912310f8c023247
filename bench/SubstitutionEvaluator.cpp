#include "SubstitutionEvaluator.h"

#include <cstdlib>

namespace substitution {

namespace {

using vemorRules::Expression;
using vemorRules::MemoryField;
using vemorRules::ParamField;
using vemorRules::RuleObject;

template <typename T>
bool fillIn(boost::any& operand, T value, const std::type_info& placeholder)
{
    if ((placeholder != typeid(ParamField)) && (placeholder != typeid(MemoryField))) {
        return false;
    }
    const std::type_info& otherPlaceholder = vemorRules::getOtherType(placeholder);
    const std::type_info& heldType = operand.type();
    if ((heldType == typeid(int)) || (heldType == typeid(unsigned int))) {
        return true;
    }
    if (heldType == placeholder) {
        operand = value;
        return true;
    }
    if (heldType == typeid(Expression)) {
        Expression copy = boost::any_cast<const Expression&>(operand);
        if (!fillIn(copy.m_leftOperand, value, placeholder) || !fillIn(copy.m_rightOperand, value, placeholder)) {
            return false;
        }
        operand = copy;
        return true;
    }
    return heldType == otherPlaceholder;
}

template <typename T>
bool isTrue(vemorRules::RelationalOperator relationalOperator, T left, T right)
{
    switch (relationalOperator) {
        case vemorRules::GREATER_THAN: return left > right;
        case vemorRules::GREATER_OR_EQUAL: return left >= right;
        case vemorRules::LESS_THAN: return left < right;
        case vemorRules::LESS_OR_EQUAL: return left <= right;
        case vemorRules::EQUAL: return left == right;
        case vemorRules::NOT_EQUAL: return left != right;
        case vemorRules::LOGICAL_AND: return (left != 0) && (right != 0);
        case vemorRules::LOGICAL_OR: return (left != 0) || (right != 0);
    }
    return false;
}

template <typename T>
T reduce(const boost::any& operand)
{
    const std::type_info& heldType = operand.type();
    if (heldType == typeid(int)) {
        return static_cast<T>(boost::any_cast<int>(operand));
    }
    if (heldType == typeid(unsigned int)) {
        return static_cast<T>(boost::any_cast<unsigned int>(operand));
    }
    if (heldType == typeid(Expression)) {
        const Expression copy = boost::any_cast<const Expression&>(operand);
        const T left = reduce<T>(copy.m_leftOperand);
        const T right = reduce<T>(copy.m_rightOperand);
        return isTrue(copy.m_relationalOperator, left, right);
    }
    return 0;
}

bool isOfType(const RuleObject& rule, vemorRules::ExpressionType type, std::size_t numberOfExpressions)
{
    return (rule.m_expressionType == type) && (rule.m_expressions.size() == numberOfExpressions);
}

template <typename T>
bool checkExpression(const Expression& expression, T value)
{
    boost::any copy(expression);
    return fillIn(copy, value, typeid(ParamField)) && (reduce<T>(copy) != 0);
}

template <typename T>
bool checkPair(const Expression& first, const Expression& second, T sample, bool previousState)
{
    boost::any firstCopy(first);
    boost::any secondCopy(second);
    if (!fillIn(firstCopy, sample, typeid(ParamField)) || !fillIn(secondCopy, sample, typeid(ParamField)) ||
        !fillIn(firstCopy, static_cast<T>(previousState), typeid(MemoryField))) {
        return false;
    }
    const T intermediateResult = reduce<T>(firstCopy);
    return fillIn(secondCopy, intermediateResult, typeid(MemoryField)) && (reduce<T>(secondCopy) != 0);
}

}  // namespace

template <typename T>
bool checkValue(const RuleObject& rule, T sample)
{
    return isOfType(rule, vemorRules::SIMPLE_EXPRESSION_VALUE, 1) && checkExpression(rule.m_expressions[0], sample);
}

template <typename T>
bool checkDelta(const RuleObject& rule, T firstSample, T secondSample)
{
    if (!isOfType(rule, vemorRules::SIMPLE_EXPRESSION_DELTA, 1)) {
        return false;
    }
    const long long delta = std::llabs(static_cast<long long>(secondSample) - static_cast<long long>(firstSample));
    return checkExpression(rule.m_expressions[0], static_cast<T>(delta));
}

template <typename T>
bool checkSingle(const RuleObject& rule, T sample, bool previousState)
{
    return isOfType(rule, vemorRules::SINGLE_HYSTERESIS, 2) &&
           checkPair(rule.m_expressions[0], rule.m_expressions[1], sample, previousState);
}

template <typename T>
void checkDouble(const RuleObject& rule, T sample, bool& upperState, bool& lowerState)
{
    const bool isRight = isOfType(rule, vemorRules::DOUBLE_HYSTERESIS, 4);
    upperState = isRight && checkPair(rule.m_expressions[0], rule.m_expressions[1], sample, upperState);
    lowerState = isRight && checkPair(rule.m_expressions[2], rule.m_expressions[3], sample, lowerState);
}

#define INSTANTIATE_SUBSTITUTION(T)                           \
    template bool checkValue<T>(const RuleObject&, T);        \
    template bool checkDelta<T>(const RuleObject&, T, T);     \
    template bool checkSingle<T>(const RuleObject&, T, bool); \
    template void checkDouble<T>(const RuleObject&, T, bool&, bool&);

INSTANTIATE_SUBSTITUTION(int)
INSTANTIATE_SUBSTITUTION(unsigned int)

}  // namespace substitution
