#include "library/rules/RandomRules.h"

#include <cctype>
#include <iterator>

namespace vemorRules {

// Every random number is drawn in a separate statement: compilers choose the order in which arguments and operands of
// "+" are evaluated.

std::uint32_t RandomRules::sample()
{
    static constexpr std::uint32_t ends[] = {0, 1, 0x7fffffff, 0x80000000, 0x80000001, 0xffffffff};
    switch (below(4)) {
        case 0: return ends[below(std::size(ends))];
        case 1: return next();
        default: return below(24) - 8;
    }
}

std::string RandomRules::number(bool isUnsigned)
{
    const std::uint32_t bits = sample();
    if (isUnsigned) {
        return std::to_string(bits);
    }
    return std::to_string(static_cast<std::int32_t>(bits));
}

std::string RandomRules::comparison(const char* fieldWord, bool isUnsigned)
{
    static constexpr const char* tokens[] = {"<=", ">=", "==", "!=", "<", ">"};
    const std::string token = tokens[below(std::size(tokens))];
    const std::string threshold = number(isUnsigned);
    const std::string text = oneIn(3) ? (threshold + token + fieldWord) : (fieldWord + token + threshold);
    return oneIn(8) ? ("(" + text + ")") : text;
}

std::string RandomRules::hysteresis(const char* word, bool isUnsigned)
{
    const std::string first = number(isUnsigned);
    const std::string second = number(isUnsigned);
    return word + ("(" + first) + "," + second + ")";
}

std::string RandomRules::exprValue(bool isUnsigned)
{
    const char* const fieldWord = oneIn(3) ? "delta" : "value";
    switch (below(8)) {
        case 0: return hysteresis("hyshigh", isUnsigned);
        case 1: return hysteresis("hyslow", isUnsigned);
        case 2:
        case 3: {
            const std::string upper = hysteresis("HysHigh", isUnsigned);
            const std::string lower = hysteresis("HysLow", isUnsigned);
            return oneIn(2) ? (upper + " and " + lower) : (lower + upper);
        }
        case 4:
        case 5: {
            const std::string left = comparison(fieldWord, isUnsigned);
            const std::string right = comparison(fieldWord, isUnsigned);
            return left + (oneIn(2) ? " and " : " Or ") + right;
        }
        default: return comparison(fieldWord, isUnsigned);
    }
}

std::string RandomRules::part()
{
    const bool isUnsigned = oneIn(2);
    return std::string("expr = ") + (isUnsigned ? "unsigned(" : "Signed(") + exprValue(isUnsigned) + ")";
}

std::string RandomRules::ruleText()
{
    std::string text = part();
    if (oneIn(16)) {
        text += ";" + part();
    }
    if (oneIn(16)) {
        static constexpr char characters[] = "()<>=!;, -a1/";
        const std::uint32_t position = below(static_cast<std::uint32_t>(text.size()));
        text[position] = characters[below(std::size(characters) - 1)];
    }
    return text;
}

boost::any RandomRules::operand(std::uint32_t depth)
{
    const std::uint32_t kind = below(100);
    if (kind < 20) {
        return static_cast<int>(sample());
    }
    if (kind < 36) {
        return static_cast<unsigned int>(sample());
    }
    if (kind < 60) {
        return ParamField();
    }
    if (kind < 74) {
        return MemoryField();
    }
    if (kind < 95) {
        return (depth > 0) ? boost::any(tree(depth - 1)) : boost::any(ParamField());
    }
    switch (kind) {
        case 95: return boost::any(std::string("foreign"));
        case 96: return 1.0;
        case 97: return true;
        default: return boost::any();
    }
}

Expression RandomRules::tree(std::uint32_t depth)
{
    static constexpr int outside[] = {-1, 8, 0x7fffffff, -0x7fffffff - 1};
    const int number = oneIn(40) ? outside[below(std::size(outside))] : static_cast<int>(below(8));
    const boost::any left = operand(depth);
    const boost::any right = operand(depth);
    return {static_cast<RelationalOperator>(number), left, right};
}

RuleObject RandomRules::ruleObject()
{
    static constexpr int unknown[] = {0, 5, -1, 7};
    static constexpr std::uint32_t counts[] = {1, 1, 2, 4};
    const std::uint32_t kind = below(4);
    const int type = oneIn(16) ? unknown[below(std::size(unknown))] : static_cast<int>(kind + 1);
    const std::uint32_t count = oneIn(16) ? below(6) : counts[kind];
    RuleObject rule;
    rule.m_expressionType = static_cast<ExpressionType>(type);
    for (std::uint32_t i = 0; i < count; ++i) {
        rule.m_expressions.push_back(tree(2));
    }
    return rule;
}

}  // namespace vemorRules
