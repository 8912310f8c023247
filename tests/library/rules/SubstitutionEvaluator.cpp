#include "library/rules/SubstitutionEvaluator.h"

#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include <syslog.h>

#include "library/rules/ReportedSignatures.h"
#include "trace/TraceObject.h"
#include "trace/logAssertFailed.h"

namespace substitution {

// Calls that take an Expression are qualified, for argument-dependent lookup finds the library's functions too.

using vemorRules::Expression;
using vemorRules::ExpressionType;
using vemorRules::MemoryField;
using vemorRules::ParamField;
using vemorRules::RuleObject;

namespace {

bool traceLevelIsAbove(std::int32_t threshold)
{
    return (g_traceObject != nullptr) && (g_traceObject->getTraceLevel() > threshold);
}

// `format` is that of the whole line, with tag and location. The source line is always the same here.
template <typename... Args>
void error(const char* format, const char* function, Args... args)
{
    if (traceLevelIsAbove(2)) {
        syslog(3, format, "EventMgmtRulesCppObjects.cpp", 1, function, args...);
    }
}

template <typename... Args>
void debug3(const char* format, const char* function, Args... args)
{
    if (traceLevelIsAbove(8)) {
        syslog(7, format, "EventMgmtRulesCppObjects.cpp", 1, function, args...);
    }
}

template <typename T>
void debugResult(const char* function, T x, int result)
{
    if (traceLevelIsAbove(8)) {
        std::stringstream text;
        text << "x=" << x << ": result=" << result;
        debug3("[DEBUG3] %s:%d (%s) - %s", function, text.str().c_str());
    }
}

void assertFailed(const char* condition, const char* function)
{
    logAssertFailed(condition, "components/common/brantel/src/EventMgmtRulesCppObjects.cpp", 1, function);
}

const std::type_info& otherTypeOf(const std::type_info& typeInfo)
{
    if (typeInfo == typeid(ParamField)) {
        return typeid(MemoryField);
    }
    if (typeInfo == typeid(MemoryField)) {
        return typeid(ParamField);
    }
    error("[ERROR] %s:%d (%s) - getOtherType(): Unknown typeInfo", "getOtherType");
    return typeid(ParamField);
}

std::string nameOf(ExpressionType type)
{
    switch (static_cast<int>(type)) {
        case 0: return "NO_EXPRESSION";
        case 1: return "SIMPLE_EXPRESSION_VALUE";
        case 2: return "SIMPLE_EXPRESSION_DELTA";
        case 3: return "SINGLE_HYSTERESIS";
        case 4: return "DOUBLE_HYSTERESIS";
        default: return "unknown";
    }
}

bool typeIs(int wanted, const RuleObject& rule, const char* function)
{
    if (rule.m_expressionType == wanted) {
        return true;
    }
    error("[ERROR] %s:%d (%s) - m_expressionType=%d=%s not supported by this function", function,
          static_cast<int>(rule.m_expressionType), nameOf(rule.m_expressionType).c_str());
    return false;
}

// `format` has a placeholder for the actual count.
bool countIs(std::size_t wanted, const RuleObject& rule, const char* function, const char* format)
{
    if (rule.m_expressions.size() == wanted) {
        return true;
    }
    error(format, function, static_cast<int>(rule.m_expressions.size()));
    return false;
}

}  // namespace

template <typename T>
bool fillInValue(boost::any& operand, T value, const std::type_info& typeInfo)
{
    const char* const signature = vemorRules::fillInValueSignature<T>;
    if (!(typeInfo == typeid(ParamField)) && !(typeInfo == typeid(MemoryField))) {
        assertFailed("(typeInfo == typeid(ParamField)) || (typeInfo == typeid(MemoryField))", signature);
    }
    const std::type_info& otherType = otherTypeOf(typeInfo);

    if (operand.type() == typeid(int)) {
        return true;
    }
    if (operand.type() == typeid(unsigned int)) {
        return true;
    }
    if (operand.type() == typeInfo) {
        operand = boost::any(value);
        return true;
    }
    if (operand.type() == typeid(Expression)) {
        auto copy = boost::any_cast<Expression>(operand);
        if (!fillInValue<T>(copy.m_leftOperand, value, typeInfo)) {
            return false;
        }
        if (!fillInValue<T>(copy.m_rightOperand, value, typeInfo)) {
            return false;
        }
        operand = boost::any(copy);
        return true;
    }
    if (operand.type() == otherType) {
        return true;
    }
    error("[ERROR] %s:%d (%s) - fillInValue(): unknown expression type", "fillInValue");
    assertFailed("false", signature);
    return false;
}

template <typename T>
T check(const boost::any& operand)
{
    const char* const signature = vemorRules::checkSignature<T>;
    if (operand.type() == typeid(int)) {
        return static_cast<T>(boost::any_cast<int>(operand));
    }
    if (operand.type() == typeid(unsigned int)) {
        return static_cast<T>(boost::any_cast<unsigned int>(operand));
    }
    if (operand.type() == typeid(Expression)) {
        const auto copy = boost::any_cast<Expression>(operand);
        const T left = check<T>(copy.m_leftOperand);
        const T right = check<T>(copy.m_rightOperand);
        switch (static_cast<int>(copy.m_relationalOperator)) {
            case 0: return (left > right) ? 1 : 0;
            case 1: return (left >= right) ? 1 : 0;
            case 2: return (left < right) ? 1 : 0;
            case 3: return (left <= right) ? 1 : 0;
            case 4: return (left == right) ? 1 : 0;
            case 5: return (left != right) ? 1 : 0;
            case 6: return ((left != 0) && (right != 0)) ? 1 : 0;
            case 7: return ((left != 0) || (right != 0)) ? 1 : 0;
            default: assertFailed("false", signature); return 0;
        }
    }
    if (operand.type() == typeid(ParamField)) {
        error("[ERROR] %s:%d (%s) - ParamField not filled in", "check");
        assertFailed("false", signature);
        return 0;
    }
    if (operand.type() == typeid(MemoryField)) {
        error("[ERROR] %s:%d (%s) - MemoryField not filled in", "check");
        assertFailed("false", signature);
        return 0;
    }
    error("[ERROR] %s:%d (%s) - check(): unknown type", "check");
    assertFailed("false", signature);
    return 0;
}

template <typename T>
bool checkInt(const Expression& expression, T value)
{
    boost::any copy(expression);
    if (!fillInValue<T>(copy, value, typeid(ParamField))) {
        return false;
    }
    const bool result = (check<T>(copy) != 0);
    debugResult("checkInt", value, result ? 1 : 0);
    return result;
}

template <typename T>
bool checkSimpleValueRule(const RuleObject& rule, T sample)
{
    if (!typeIs(1, rule, "checkSimpleValueRule") ||
        !countIs(1, rule, "checkSimpleValueRule",
                 "[ERROR] %s:%d (%s) - Simple expression but nr of expressions = %d != expected = 1")) {
        return false;
    }
    return substitution::checkInt<T>(rule.m_expressions[0], sample);
}

template <typename T>
bool checkSimpleDeltaRule(const RuleObject& rule, T firstSample, T secondSample)
{
    if (!typeIs(2, rule, "checkSimpleDeltaRule") ||
        !countIs(1, rule, "checkSimpleDeltaRule",
                 "[ERROR] %s:%d (%s) - Simple expression for delta but nr of expressions = %d != expected = 1")) {
        return false;
    }
    const std::int64_t first = firstSample;
    const std::int64_t second = secondSample;
    const std::int64_t delta = std::abs(second - first);
    debug3("[DEBUG3] %s:%d (%s) - delta=%llu", "checkSimpleDeltaRule", static_cast<unsigned long long>(delta));
    if ((typeid(T) == typeid(int)) && (delta > 2147483647)) {
        error(
            "[ERROR] %s:%d (%s) - Delta=%lld but VEMOR does not support deltas larger than %lld in int32_t "
            "rules",
            "checkSimpleDeltaRule", 2147483647LL, static_cast<long long>(delta));
        return false;
    }
    return substitution::checkInt<T>(rule.m_expressions[0], static_cast<T>(delta));
}

template <typename T>
bool checkHysteresis(const Expression& first, const Expression& second, T sample, bool previousState)
{
    boost::any firstCopy(first);
    boost::any secondCopy(second);
    if (!fillInValue<T>(firstCopy, sample, typeid(ParamField))) {
        return false;
    }
    if (!fillInValue<T>(secondCopy, sample, typeid(ParamField))) {
        return false;
    }
    if (!fillInValue<T>(firstCopy, previousState ? 1 : 0, typeid(MemoryField))) {
        return false;
    }
    const T intermediateResult = check<T>(firstCopy);
    if (!fillInValue<T>(secondCopy, intermediateResult, typeid(MemoryField))) {
        return false;
    }
    const T finalResult = check<T>(secondCopy);
    debugResult("checkHysteresis", sample, static_cast<int>(finalResult));
    return finalResult != 0;
}

template <typename T>
bool checkSingleHysteresisRule(const RuleObject& rule, T sample, bool previousState)
{
    if (!typeIs(3, rule, "checkSingleHysteresisRule") ||
        !countIs(2, rule, "checkSingleHysteresisRule",
                 "[ERROR] %s:%d (%s) - Numbers of expressions=%d while 2 are required to check single hysteresis")) {
        return false;
    }
    return substitution::checkHysteresis<T>(rule.m_expressions[0], rule.m_expressions[1], sample, previousState);
}

template <typename T>
void checkDoubleHysteresisRule(const RuleObject& rule, T sample, bool& upperState, bool& lowerState)
{
    if (!typeIs(4, rule, "checkDoubleHysteresisRule") ||
        !countIs(4, rule, "checkDoubleHysteresisRule",
                 "[ERROR] %s:%d (%s) - Numbers of expressions=%d while 4 are required to check double hysteresis")) {
        upperState = false;
        lowerState = false;
        return;
    }
    upperState = substitution::checkHysteresis<T>(rule.m_expressions[0], rule.m_expressions[1], sample, upperState);
    lowerState = substitution::checkHysteresis<T>(rule.m_expressions[2], rule.m_expressions[3], sample, lowerState);
}

#define INSTANTIATE_SUBSTITUTION(T)                                                  \
    template bool fillInValue<T>(boost::any&, T, const std::type_info&);             \
    template T check<T>(const boost::any&);                                          \
    template bool checkInt<T>(const Expression&, T);                                 \
    template bool checkSimpleValueRule<T>(const RuleObject&, T);                     \
    template bool checkSimpleDeltaRule<T>(const RuleObject&, T, T);                  \
    template bool checkHysteresis<T>(const Expression&, const Expression&, T, bool); \
    template bool checkSingleHysteresisRule<T>(const RuleObject&, T, bool);          \
    template void checkDoubleHysteresisRule<T>(const RuleObject&, T, bool&, bool&);

INSTANTIATE_SUBSTITUTION(int)
INSTANTIATE_SUBSTITUTION(unsigned int)

}  // namespace substitution
