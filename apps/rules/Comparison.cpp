#include "rules/Comparison.h"

#include <typeinfo>

namespace brantel {
namespace {

using vemorRules::EQUAL;
using vemorRules::GREATER_OR_EQUAL;
using vemorRules::GREATER_THAN;
using vemorRules::LESS_OR_EQUAL;
using vemorRules::LESS_THAN;
using vemorRules::LOGICAL_AND;
using vemorRules::LOGICAL_OR;
using vemorRules::NOT_EQUAL;

using vemorRules::Expression;
using vemorRules::RelationalOperator;

// Each operator, its equivalent for exchanged operands, and its negation.
struct OperatorEntry {
    const char* text;
    RelationalOperator exchanged;
    RelationalOperator negated;
};

constexpr OperatorEntry OPERATORS[] = {
    {">", LESS_THAN, LESS_OR_EQUAL},        {">=", LESS_OR_EQUAL, LESS_THAN}, {"<", GREATER_THAN, GREATER_OR_EQUAL},
    {"<=", GREATER_OR_EQUAL, GREATER_THAN}, {"==", EQUAL, NOT_EQUAL},         {"!=", NOT_EQUAL, EQUAL},
    {"and", LOGICAL_AND, LOGICAL_AND},      {"or", LOGICAL_OR, LOGICAL_OR},
};

std::int64_t numberOf(const boost::any& operand, bool isUnsigned)
{
    if (const auto* const pUnsigned = boost::any_cast<unsigned int>(&operand)) {
        return *pUnsigned;
    }
    const int number = boost::any_cast<int>(operand);
    // The thresholds of an unsigned hysteresis are stored as int, with the same 32 bits.
    return isUnsigned ? std::int64_t{static_cast<unsigned int>(number)} : number;
}

}  // namespace

Comparison comparisonOf(const Expression& expression, bool isUnsigned)
{
    const RelationalOperator asWritten = expression.m_relationalOperator;
    if (expression.m_leftOperand.type() == typeid(vemorRules::ParamField)) {
        return {asWritten, numberOf(expression.m_rightOperand, isUnsigned)};
    }
    return {OPERATORS[asWritten].exchanged, numberOf(expression.m_leftOperand, isUnsigned)};
}

bool isJoined(const Expression& expression)
{
    return expression.m_leftOperand.type() == typeid(Expression);
}

const Expression& nestedExpression(const boost::any& operand)
{
    return boost::any_cast<const Expression&>(operand);
}

const char* operatorText(RelationalOperator relationalOperator)
{
    return OPERATORS[relationalOperator].text;
}

RelationalOperator negated(RelationalOperator relationalOperator)
{
    return OPERATORS[relationalOperator].negated;
}

bool holds(const Comparison& comparison, std::int64_t value)
{
    switch (comparison.relationalOperator) {
        case GREATER_THAN: return value > comparison.limit;
        case GREATER_OR_EQUAL: return value >= comparison.limit;
        case LESS_THAN: return value < comparison.limit;
        case LESS_OR_EQUAL: return value <= comparison.limit;
        case EQUAL: return value == comparison.limit;
        case NOT_EQUAL: return value != comparison.limit;
        case LOGICAL_AND:
        case LOGICAL_OR: break;
    }
    return false;
}

}  // namespace brantel
