#ifndef EVENT_MGMT_RULES_CPP_OBJECTS_H
#define EVENT_MGMT_RULES_CPP_OBJECTS_H

// Event rules in their parsed form, and the functions that evaluate them.
//
// A component parses a rule text once (EventMgmtRulesParsing.h) into a RuleObject and keeps it. On every new sample it
// calls the check function of the rule's type:
//
//     SIMPLE_EXPRESSION_VALUE   checkSimpleValueRule        the sample alone
//     SIMPLE_EXPRESSION_DELTA   checkSimpleDeltaRule        the previous and the new sample
//     SINGLE_HYSTERESIS         checkSingleHysteresisRule   the sample and the state returned last time
//     DOUBLE_HYSTERESIS         checkDoubleHysteresisRule   the sample and two states, updated in place
//
// in the instantiation that the rule text declares: T = int for "signed(", T = unsigned int for "unsigned(". These two
// instantiations are all that the library exports. The object does not know which one is right; the type of the sample
// selects it. The wrong one compares the same 32 bits as T, without an error line: checkSimpleValueRule(rule, 5) with a
// rule "expr=unsigned(value>3000000000)" is true, because that limit is negative as an int.
//
// For example:
//
//     RuleObject rule;
//     parseRule("expr=signed(hyshigh(80,90) hyslow(10,20))", &rule);
//     bool isHigh = false;
//     bool isLow = false;
//     checkDoubleHysteresisRule(rule, 95, isHigh, isLow);  // isHigh: 95 is above 90
//     checkDoubleHysteresisRule(rule, 5, isHigh, isLow);   // isLow: 5 is below 10; isHigh no longer
//
//     checkSimpleValueRule(rule, 95);  // false, and an error line: the rule is of another type
//
// No function keeps anything between calls or changes the rule. Any number of threads may evaluate at once, also the
// same rule. Objects of these types may be read by several threads as long as none modifies them.
//
// Errors go to syslog when the trace level is above 2, debug lines when it is above 8; violated invariants go to
// logAssertFailed at any level. Nothing here throws but std::bad_alloc.

#include <cstdint>
#include <typeinfo>
#include <vector>

#include <boost/any.hpp>

#include "BrantelExport.h"

namespace vemorRules {

/// Operand that stands for the value under test: the sample, or the size of the change in a delta rule.
struct BRANTEL_EXPORT ParamField {};

/// Operand that stands for remembered state in a hysteresis expression.
struct BRANTEL_EXPORT MemoryField {};

/// How an expression relates its two operands. Every operator yields 1 for true and 0 for false.
enum RelationalOperator : std::int32_t {
    GREATER_THAN = 0,      ///< left > right
    GREATER_OR_EQUAL = 1,  ///< left >= right
    LESS_THAN = 2,         ///< left < right
    LESS_OR_EQUAL = 3,     ///< left <= right
    EQUAL = 4,             ///< left == right
    NOT_EQUAL = 5,         ///< left != right
    LOGICAL_AND = 6,       ///< both are non-zero
    LOGICAL_OR = 7         ///< at least one is non-zero
};

/// What kind of rule a RuleObject holds, and with how many expressions.
enum ExpressionType : std::int32_t {
    NO_EXPRESSION = 0,            ///< nothing parsed; no expression
    SIMPLE_EXPRESSION_VALUE = 1,  ///< condition on the sample; 1 expression
    SIMPLE_EXPRESSION_DELTA = 2,  ///< condition on the change between two samples; 1 expression
    SINGLE_HYSTERESIS = 3,        ///< an upper or a lower hysteresis; 2 expressions
    DOUBLE_HYSTERESIS = 4         ///< an upper and a lower hysteresis; 4 expressions
};

/// Names of the expression types as log lines print them, indexed by ExpressionType (0 to 4).
BRANTEL_EXPORT extern const char* const expressionTypeNames[5];

/// One node of an expression tree. An operand holds an int, an unsigned int, a ParamField, a MemoryField or a nested
/// Expression; anything else, the empty operand included, is reported when the expression is evaluated. Copies are
/// deep: a copy shares nothing with its source.
struct BRANTEL_EXPORT Expression {
    /// Both operands empty; the operator means nothing until one is assigned.
    Expression() = default;

    /// Stores the operator and copies of the left and then of the right operand.
    Expression(RelationalOperator relationalOperator, const boost::any& left, const boost::any& right)
        : m_relationalOperator(relationalOperator), m_leftOperand(left), m_rightOperand(right)
    {
    }

    Expression(const Expression&) = default;
    Expression(Expression&&) = default;
    ~Expression() = default;

    /// The source may also be a part of this expression, such as its left operand.
    Expression& operator=(Expression source) noexcept
    {
        m_relationalOperator = source.m_relationalOperator;
        m_leftOperand.swap(source.m_leftOperand);
        m_rightOperand.swap(source.m_rightOperand);
        return *this;
    }

    RelationalOperator m_relationalOperator = GREATER_THAN;
    boost::any m_leftOperand;
    boost::any m_rightOperand;
};

/// A parsed rule. After a successful parse the number of expressions is the one that its type names.
/// A hysteresis is a pair of expressions; the upper pair of a double hysteresis comes before the lower one.
struct BRANTEL_EXPORT RuleObject {
    ExpressionType m_expressionType = NO_EXPRESSION;
    std::vector<Expression> m_expressions;
};

/// Returns the other placeholder type: typeid(MemoryField) for typeid(ParamField) and the reverse. Any other identity
/// logs an error and yields typeid(ParamField).
BRANTEL_EXPORT const std::type_info& getOtherType(const std::type_info& typeInfo);

/// Replaces placeholders in `operand` by `value`, in place and in nested expressions too. `typeInfo` names the
/// placeholder to replace: typeid(ParamField) or typeid(MemoryField); any other is reported as a violated invariant
/// and taken as it is. Numbers and the other placeholder are left as they are.
/// Returns false, after an error line and a report, when an operand holds none of the five known types; a nested
/// expression in which that happens is left unchanged.
template <typename T>
BRANTEL_EXPORT bool fillInValue(boost::any& operand, T value, const std::type_info& typeInfo);

/// Reduces `operand` to a number: an int or unsigned int converted to T (same 32 bits), an expression to 1 or 0. Both
/// operands of an expression are always evaluated, left before right; comparisons compare as T.
/// A placeholder that is left or a foreign type logs an error, is reported and counts as 0; an operator outside
/// 0 to 7 is reported only and yields 0.
template <typename T>
BRANTEL_EXPORT T check(const boost::any& operand);

/// Evaluates one expression with `value` for its ParamField. Returns false also when an operand is foreign (reported by
/// fillInValue). An evaluation ends with the debug line "x=<value>: result=<1 or 0>".
template <typename T>
BRANTEL_EXPORT bool checkInt(const Expression& expression, T value);

/// Evaluates a value rule against one sample. A rule of another type or with other than 1 expression logs an error and
/// yields false.
template <typename T>
BRANTEL_EXPORT bool checkSimpleValueRule(const RuleObject& rule, T sample);

/// Evaluates a delta rule against the size of the change between two samples; its direction does not count. A rule of
/// another type or with other than 1 expression logs an error and yields false; so does, for T = int, a change above
/// 2147483647. The size is logged at debug level.
template <typename T>
BRANTEL_EXPORT bool checkSimpleDeltaRule(const RuleObject& rule, T firstSample, T secondSample);

/// Evaluates a pair of hysteresis expressions against one sample and returns the new state. In the first expression
/// MemoryField is `previousState`, in the second the result of the first. Returns false also when an
/// operand is foreign (reported by fillInValue). An evaluation ends with the debug line "x=<sample>: result=<1 or
/// 0>".
template <typename T>
BRANTEL_EXPORT bool checkHysteresis(const Expression& first, const Expression& second, T sample, bool previousState);

/// Evaluates a single-hysteresis rule and returns the new state, to be passed back with the next sample. A rule of
/// another type or with other than 2 expressions logs an error and yields false.
template <typename T>
BRANTEL_EXPORT bool checkSingleHysteresisRule(const RuleObject& rule, T sample, bool previousState);

/// Evaluates a double-hysteresis rule: updates the state of the upper pair, then that of the lower pair. A rule of
/// another type or with other than 4 expressions logs an error and sets both states to false.
template <typename T>
BRANTEL_EXPORT void checkDoubleHysteresisRule(const RuleObject& rule, T sample, bool& upperState, bool& lowerState);

}  // namespace vemorRules

#endif
