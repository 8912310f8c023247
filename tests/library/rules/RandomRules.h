#ifndef TESTS_LIBRARY_RULES_RANDOM_RULES_H
#define TESTS_LIBRARY_RULES_RANDOM_RULES_H

// Random rule texts, expression trees and samples, the same for a seed on every machine and with every compiler.

#include <cstdint>
#include <random>
#include <string>

#include "EventMgmtRulesCppObjects.h"

namespace vemorRules {

class RandomRules {
public:
    explicit RandomRules(std::uint32_t seed) : m_engine(seed) {}

    /// A number from 0 to `limit` - 1.
    std::uint32_t below(std::uint32_t limit) { return next() % limit; }

    bool oneIn(std::uint32_t count) { return below(count) == 0; }

    /// 32 bits that are often near what the rules compare with, or at an end of a range.
    std::uint32_t sample();

    /// A rule text of any kind; a few are not valid.
    std::string ruleText();

    /// An expression as the parser would not build it: placeholders and numbers anywhere, sometimes an operand that is
    /// empty or foreign, or an operator outside the table.
    Expression tree(std::uint32_t depth);

    /// An operand of such an expression, or alone.
    boost::any operand(std::uint32_t depth);

    /// A rule object of such expressions; sometimes its type is unknown or its count of expressions wrong.
    RuleObject ruleObject();

private:
    // The standard defines the engine's numbers, but not those of its distributions.
    std::uint32_t next() { return static_cast<std::uint32_t>(m_engine()); }

    std::string number(bool isUnsigned);
    std::string comparison(const char* fieldWord, bool isUnsigned);
    std::string hysteresis(const char* word, bool isUnsigned);
    std::string exprValue(bool isUnsigned);
    std::string part();

    std::mt19937 m_engine;
};

}  // namespace vemorRules

#endif
