#ifndef BRANTEL_PARSED_RULE_WALK_H
#define BRANTEL_PARSED_RULE_WALK_H

// The fast way to decide an expression: a walk over its operands in place, with the numbers that its placeholders stand
// for beside it. It copies nothing, allocates nothing and reports nothing: it answers, or it declines (no value) when
// there would be something to report. Where it answers, it answers as filling in and checking a copy would. Private.

#include <optional>
#include <typeinfo>

#include <boost/any.hpp>

#include "EventMgmtRulesCppObjects.h"

namespace vemorRules {

/// What the placeholders stand for; a MemoryField without a number makes the walk decline.
template <typename T>
struct PlaceholderValues {
    T param;
    std::optional<T> memory;
};

template <typename T>
std::optional<T> applyOperator(RelationalOperator relationalOperator, T left, T right)
{
    switch (relationalOperator) {
        case GREATER_THAN: return left > right;
        case GREATER_OR_EQUAL: return left >= right;
        case LESS_THAN: return left < right;
        case LESS_OR_EQUAL: return left <= right;
        case EQUAL: return left == right;
        case NOT_EQUAL: return left != right;
        case LOGICAL_AND: return (left != 0) && (right != 0);
        case LOGICAL_OR: return (left != 0) || (right != 0);
    }
    return std::nullopt;
}

template <typename T>
std::optional<T> walkExpression(const Expression& expression, const PlaceholderValues<T>& values);

// Types are told apart by address, which is enough for every rule that the parser builds. A type that only compares
// equal, from a plug-in loaded apart, makes the walk decline.
template <typename T>
std::optional<T> walkOperand(const boost::any& operand, const PlaceholderValues<T>& values)
{
    const std::type_info* const pHeldType = &operand.type();
    if (pHeldType == &typeid(ParamField)) {
        return values.param;
    }
    if (pHeldType == &typeid(int)) {
        return static_cast<T>(*boost::unsafe_any_cast<int>(&operand));
    }
    if (pHeldType == &typeid(unsigned int)) {
        return static_cast<T>(*boost::unsafe_any_cast<unsigned int>(&operand));
    }
    if (pHeldType == &typeid(Expression)) {
        return walkExpression(*boost::unsafe_any_cast<Expression>(&operand), values);
    }
    if (pHeldType == &typeid(MemoryField)) {
        return values.memory;
    }
    return std::nullopt;
}

template <typename T>
std::optional<T> walkExpression(const Expression& expression, const PlaceholderValues<T>& values)
{
    const std::optional<T> left = walkOperand(expression.m_leftOperand, values);
    const std::optional<T> right = walkOperand(expression.m_rightOperand, values);
    if (!left || !right) {
        return std::nullopt;
    }
    return applyOperator(expression.m_relationalOperator, *left, *right);
}

}  // namespace vemorRules

#endif
