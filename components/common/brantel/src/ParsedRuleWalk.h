#ifndef BRANTEL_PARSED_RULE_WALK_H
#define BRANTEL_PARSED_RULE_WALK_H

// The fast way to evaluate an expression of one of the shapes that the parser builds: a walk over its operands in
// place. It copies nothing, allocates nothing and reports nothing: each function answers in `result`, or declines
// (returns false) when the expression has another shape or there would be something to report. Where it answers, it
// answers as filling in and checking a copy would. Private.
//
// The expensive operation is querying an operand's type, a virtual call. So each is queried as rarely as possible, the
// usual type is marked likely, and all functions are inlined: each call site then meets, rule after rule, the same
// type.

#include <type_traits>
#include <typeinfo>

#include <boost/any.hpp>
#include <boost/config.hpp>

#include "EventMgmtRulesCppObjects.h"

namespace vemorRules {

// Sets `result` unless the operator is none of the eight.
template <typename T>
BOOST_FORCEINLINE bool applyOperator(RelationalOperator relationalOperator, T left, T right, bool& result)
{
    switch (relationalOperator) {
        case GREATER_THAN: result = (left > right); return true;
        case GREATER_OR_EQUAL: result = (left >= right); return true;
        case LESS_THAN: result = (left < right); return true;
        case LESS_OR_EQUAL: result = (left <= right); return true;
        case EQUAL: result = (left == right); return true;
        case NOT_EQUAL: result = (left != right); return true;
        case LOGICAL_AND: result = (left != 0) && (right != 0); return true;
        case LOGICAL_OR: result = (left != 0) || (right != 0); return true;
    }
    return false;
}

// Types are compared by address, which is enough for every rule that the parser builds. A type that only compares
// equal, from a plug-in loaded apart, makes the walk decline.
template <typename Held>
BOOST_FORCEINLINE bool isType(const std::type_info& heldType)
{
    return BOOST_LIKELY(&heldType == &typeid(Held));
}

template <typename T>
BOOST_FORCEINLINE bool readNumber(const boost::any& operand, T& number)
{
    // The type that a rule of T holds, first; the thresholds of a hysteresis are int in every rule.
    using Other = std::conditional_t<std::is_signed_v<T>, unsigned int, int>;
    const std::type_info& heldType = operand.type();
    if (isType<T>(heldType)) {
        number = *boost::unsafe_any_cast<T>(&operand);
        return true;
    }
    if (isType<Other>(heldType)) {
        number = static_cast<T>(*boost::unsafe_any_cast<Other>(&operand));
        return true;
    }
    return false;
}

// A ParamField and a number, in either order.
template <typename T>
BOOST_FORCEINLINE bool walkComparison(const Expression& expression, T value, bool& result)
{
    T number = 0;
    if (isType<ParamField>(expression.m_leftOperand.type())) {
        return readNumber(expression.m_rightOperand, number) &&
               applyOperator(expression.m_relationalOperator, value, number, result);
    }
    return readNumber(expression.m_leftOperand, number) && isType<ParamField>(expression.m_rightOperand.type()) &&
           applyOperator(expression.m_relationalOperator, number, value, result);
}

template <typename T>
BOOST_FORCEINLINE bool walkNestedComparison(const boost::any& operand, T value, bool& result)
{
    return isType<Expression>(operand.type()) &&
           walkComparison(*boost::unsafe_any_cast<Expression>(&operand), value, result);
}

// Two nested comparisons, joined by "and" or "or".
template <typename T>
BOOST_FORCEINLINE bool walkCombination(const Expression& expression, T value, bool& result)
{
    bool left = false;
    bool right = false;
    if (!walkNestedComparison(expression.m_leftOperand, value, left) ||
        !walkNestedComparison(expression.m_rightOperand, value, right)) {
        return false;
    }
    result = (expression.m_relationalOperator == LOGICAL_AND) ? (left && right) : (left || right);
    return true;
}

// The expression of a value or delta rule: a combination or a comparison.
template <typename T>
BOOST_FORCEINLINE bool walkSimpleExpression(const Expression& expression, T value, bool& result)
{
    const RelationalOperator relationalOperator = expression.m_relationalOperator;
    const bool isCombination = (relationalOperator == LOGICAL_AND) || (relationalOperator == LOGICAL_OR);
    return isCombination ? walkCombination(expression, value, result) : walkComparison(expression, value, result);
}

// A MemoryField joined to a nested comparison; answers what the comparison alone yields.
template <typename T>
BOOST_FORCEINLINE bool walkHysteresisExpression(const Expression& expression, RelationalOperator joining, T sample,
                                                bool& result)
{
    return (expression.m_relationalOperator == joining) && isType<MemoryField>(expression.m_leftOperand.type()) &&
           walkNestedComparison(expression.m_rightOperand, sample, result);
}

// The pair of a hysteresis: raised when the sample raises it, or when it was raised and the sample keeps it.
template <typename T>
BOOST_FORCEINLINE bool walkHysteresisPair(const Expression& first, const Expression& second, T sample,
                                          bool previousState, bool& result)
{
    bool keeps = false;
    bool raises = false;
    if (!walkHysteresisExpression(first, LOGICAL_AND, sample, keeps) ||
        !walkHysteresisExpression(second, LOGICAL_OR, sample, raises)) {
        return false;
    }
    result = (previousState && keeps) || raises;
    return true;
}

}  // namespace vemorRules

#endif
