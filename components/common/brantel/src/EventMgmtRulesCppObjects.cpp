#include "EventMgmtRulesCppObjects.h"

#include <limits>
#include <locale>
#include <sstream>
#include <string>
#include <type_traits>

#include "Log.h"
#include "ParsedRuleWalk.h"

namespace vemorRules {

// Weak, so that the address sanitizer accepts a program with both libraries that have the rules; the first one counts.
// The attribute cannot be at the definition of a constant. NOLINTNEXTLINE(readability-redundant-declaration)
extern const char* const expressionTypeNames[5] __attribute__((weak));
const char* const expressionTypeNames[5] = {
    "NO_EXPRESSION", "SIMPLE_EXPRESSION_VALUE", "SIMPLE_EXPRESSION_DELTA", "SINGLE_HYSTERESIS", "DOUBLE_HYSTERESIS",
};

namespace {

const std::type_info* const PLACEHOLDER_TYPES[2] = {&typeid(ParamField), &typeid(MemoryField)};

const char* expressionTypeName(ExpressionType type)
{
    // Unsigned, so that negative types are unknown too.
    const auto index = static_cast<std::uint32_t>(type);
    return (index < std::size(expressionTypeNames)) ? expressionTypeNames[index] : "unknown";
}

// Writes its error line in the name of `function`, the check function that was called.
bool hasExpressionType(const RuleObject& rule, ExpressionType required, const char* function)
{
    if (rule.m_expressionType != required) {
        LOG_ERROR_OF(function, "m_expressionType=%d=%s not supported by this function",
                     static_cast<int>(rule.m_expressionType), expressionTypeName(rule.m_expressionType));
        return false;
    }
    return true;
}

int numberOfExpressions(const RuleObject& rule)
{
    return static_cast<int>(rule.m_expressions.size());
}

template <typename T>
std::string sampleAndResult(T sample, bool result)
{
    std::ostringstream text;
    text.imbue(std::locale::classic());  // no thousands separators, whatever the program's locale
    text << "x=" << sample << ": result=" << result;
    return text.str();
}

// The two functions below evaluate what the walk declined, and report as they go; false when a fill failed. Marked cold
// to keep the walk's code path small.

template <typename T>
[[gnu::cold]] bool substituteAndCheck(const Expression& expression, T value, bool& result)
{
    boost::any filled(expression);
    if (!fillInValue(filled, value, typeid(ParamField))) {
        return false;
    }
    result = (check<T>(filled) != 0);
    return true;
}

template <typename T>
[[gnu::cold]] bool substituteAndCheckPair(const Expression& first, const Expression& second, T sample,
                                          bool previousState, bool& result)
{
    boost::any filledFirst(first);
    boost::any filledSecond(second);
    if (!fillInValue(filledFirst, sample, typeid(ParamField)) ||
        !fillInValue(filledSecond, sample, typeid(ParamField))) {
        return false;
    }
    // After the first fill all operands are of known types, so the fills below do not fail.
    fillInValue(filledFirst, static_cast<T>(previousState), typeid(MemoryField));
    const T intermediateResult = check<T>(filledFirst);
    fillInValue(filledSecond, intermediateResult, typeid(MemoryField));
    result = (check<T>(filledSecond) != 0);
    return true;
}

}  // namespace

const std::type_info& getOtherType(const std::type_info& typeInfo)
{
    if (typeInfo == *PLACEHOLDER_TYPES[0]) {
        return *PLACEHOLDER_TYPES[1];
    }
    if (typeInfo != *PLACEHOLDER_TYPES[1]) {
        LOG_ERROR("getOtherType(): Unknown typeInfo");
    }
    return *PLACEHOLDER_TYPES[0];
}

template <typename T>
bool fillInValue(boost::any& operand, T value, const std::type_info& typeInfo)
{
    ASSERT_OR_REPORT((typeInfo == typeid(ParamField)) || (typeInfo == typeid(MemoryField)));
    const std::type_info& otherType = getOtherType(typeInfo);

    const std::type_info& heldType = operand.type();
    if ((heldType == typeid(int)) || (heldType == typeid(unsigned int))) {
        return true;
    }
    if (heldType == typeInfo) {
        operand = value;
        return true;
    }
    if (heldType == typeid(Expression)) {
        boost::any copy(operand);
        auto& expression = boost::any_cast<Expression&>(copy);
        if (!fillInValue(expression.m_leftOperand, value, typeInfo) ||
            !fillInValue(expression.m_rightOperand, value, typeInfo)) {
            return false;
        }
        operand.swap(copy);
        return true;
    }
    if (heldType == otherType) {
        return true;  // a later call fills it in
    }
    LOG_ERROR("fillInValue(): unknown expression type");
    ASSERT_OR_REPORT(false);
    return false;
}

template <typename T>
T check(const boost::any& operand)
{
    const std::type_info& heldType = operand.type();
    if (heldType == typeid(int)) {
        return static_cast<T>(boost::any_cast<const int&>(operand));
    }
    if (heldType == typeid(unsigned int)) {
        return static_cast<T>(boost::any_cast<const unsigned int&>(operand));
    }
    if (heldType == typeid(Expression)) {
        const auto& expression = boost::any_cast<const Expression&>(operand);
        // No short cut: a placeholder left on the right is reported even when the left settles the result.
        const T left = check<T>(expression.m_leftOperand);
        const T right = check<T>(expression.m_rightOperand);
        bool result = false;
        if (!applyOperator(expression.m_relationalOperator, left, right, result)) {
            ASSERT_OR_REPORT(false);
        }
        return result;
    }
    if (heldType == typeid(ParamField)) {
        LOG_ERROR("ParamField not filled in");
    } else if (heldType == typeid(MemoryField)) {
        LOG_ERROR("MemoryField not filled in");
    } else {
        LOG_ERROR("check(): unknown type");
    }
    ASSERT_OR_REPORT(false);
    return 0;
}

template <typename T>
bool checkInt(const Expression& expression, T value)
{
    bool result = false;
    if (!walkSimpleExpression(expression, value, result) && !substituteAndCheck(expression, value, result)) {
        return false;
    }
    LOG_DEBUG3("%s", sampleAndResult(value, result).c_str());
    return result;
}

template <typename T>
bool checkSimpleValueRule(const RuleObject& rule, T sample)
{
    if (!hasExpressionType(rule, SIMPLE_EXPRESSION_VALUE, __func__)) {
        return false;
    }
    if (rule.m_expressions.size() != 1) {
        LOG_ERROR("Simple expression but nr of expressions = %d != expected = 1", numberOfExpressions(rule));
        return false;
    }
    return checkInt(rule.m_expressions[0], sample);
}

template <typename T>
bool checkSimpleDeltaRule(const RuleObject& rule, T firstSample, T secondSample)
{
    if (!hasExpressionType(rule, SIMPLE_EXPRESSION_DELTA, __func__)) {
        return false;
    }
    if (rule.m_expressions.size() != 1) {
        LOG_ERROR("Simple expression for delta but nr of expressions = %d != expected = 1", numberOfExpressions(rule));
        return false;
    }
    const long long change = static_cast<long long>(secondSample) - static_cast<long long>(firstSample);
    const long long delta = (change < 0) ? -change : change;
    LOG_DEBUG3("delta=%llu", static_cast<unsigned long long>(delta));

    constexpr long long limit = std::numeric_limits<int>::max();
    if (std::is_same_v<T, int> && (delta > limit)) {
        // The limit comes before the delta, against the sense of the sentence: readers of the log know the line so.
        LOG_ERROR("Delta=%lld but VEMOR does not support deltas larger than %lld in int32_t rules", limit, delta);
        return false;
    }
    return checkInt(rule.m_expressions[0], static_cast<T>(delta));
}

template <typename T>
bool checkHysteresis(const Expression& first, const Expression& second, T sample, bool previousState)
{
    bool result = false;
    if (!walkHysteresisPair(first, second, sample, previousState, result) &&
        !substituteAndCheckPair(first, second, sample, previousState, result)) {
        return false;
    }
    LOG_DEBUG3("%s", sampleAndResult(sample, result).c_str());
    return result;
}

template <typename T>
bool checkSingleHysteresisRule(const RuleObject& rule, T sample, bool previousState)
{
    if (!hasExpressionType(rule, SINGLE_HYSTERESIS, __func__)) {
        return false;
    }
    if (rule.m_expressions.size() != 2) {
        LOG_ERROR("Numbers of expressions=%d while 2 are required to check single hysteresis",
                  numberOfExpressions(rule));
        return false;
    }
    return checkHysteresis(rule.m_expressions[0], rule.m_expressions[1], sample, previousState);
}

template <typename T>
void checkDoubleHysteresisRule(const RuleObject& rule, T sample, bool& upperState, bool& lowerState)
{
    if (!hasExpressionType(rule, DOUBLE_HYSTERESIS, __func__)) {
        upperState = false;
        lowerState = false;
        return;
    }
    if (rule.m_expressions.size() != 4) {
        LOG_ERROR("Numbers of expressions=%d while 4 are required to check double hysteresis",
                  numberOfExpressions(rule));
        upperState = false;
        lowerState = false;
        return;
    }
    upperState = checkHysteresis(rule.m_expressions[0], rule.m_expressions[1], sample, upperState);
    lowerState = checkHysteresis(rule.m_expressions[2], rule.m_expressions[3], sample, lowerState);
}

#define INSTANTIATE_RULE_CHECKS(T)                                                                  \
    template BRANTEL_EXPORT bool fillInValue<T>(boost::any&, T, const std::type_info&);             \
    template BRANTEL_EXPORT T check<T>(const boost::any&);                                          \
    template BRANTEL_EXPORT bool checkInt<T>(const Expression&, T);                                 \
    template BRANTEL_EXPORT bool checkSimpleValueRule<T>(const RuleObject&, T);                     \
    template BRANTEL_EXPORT bool checkSimpleDeltaRule<T>(const RuleObject&, T, T);                  \
    template BRANTEL_EXPORT bool checkHysteresis<T>(const Expression&, const Expression&, T, bool); \
    template BRANTEL_EXPORT bool checkSingleHysteresisRule<T>(const RuleObject&, T, bool);          \
    template BRANTEL_EXPORT void checkDoubleHysteresisRule<T>(const RuleObject&, T, bool&, bool&);

INSTANTIATE_RULE_CHECKS(int)
INSTANTIATE_RULE_CHECKS(unsigned int)

}  // namespace vemorRules
