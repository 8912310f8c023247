#ifndef RULE_DIAGNOSIS_H
#define RULE_DIAGNOSIS_H

// What a component wants to know about a rule beyond yes and no: why a text is refused, which instantiation of the
// check functions it declares, and whether a parsed rule can be evaluated at all.
//
// Whether a text is a rule is the parser's decision (EventMgmtRulesParsing.h); the diagnosis explains it:
//
//     const std::string text = "expr=signed(value>5";
//     RuleObject rule;
//     if (!parseRule(text, &rule)) {
//         const std::optional<RuleFault> fault = findFault(text);
//         // fault->position: 11, length: 1; reason: "the ')' of this bracket is missing"; remedy: "close it with ')'"
//     } else if (const std::optional<std::string> reason = reasonAgainstEvaluation(rule)) {
//         // valid, but never evaluated: empty, or of several parts
//     } else if (isUnsignedRule(text)) {
//         checkSimpleValueRule<unsigned int>(rule, 7U);
//     } else {
//         checkSimpleValueRule<int>(rule, 7);
//     }
//
//     findFault("expr=unsigned(value>3000000000)");  // nothing: this is a rule
//
// Reasons and remedies are English, for people; their wording may change between versions. What they quote of the rule
// is as written, with any byte that the rule has, and cut after 80 characters.
//
// No function keeps state or logs; all may run on any thread. They throw nothing but std::bad_alloc. The library needs
// the headers of the rules and calls none of their functions.

#include <cstddef>
#include <optional>
#include <string>

#include "BrantelExport.h"
#include "EventMgmtRulesCppObjects.h"

namespace vemorRules {

/// The first fault of a rule text.
struct RuleFault {
    std::size_t position;  ///< of its first byte in the rule as written, from 0
    std::size_t length;    ///< in bytes, at least 1; where something is missing at the end, the byte after the rule
    std::string reason;    ///< what is wrong: "'3000000000' is out of range"
    std::string remedy;    ///< what would be right: "signed numbers are -2147483648 to 2147483647"
};

/// The fault that makes the parser refuse `rule`: the one behind its error line. Nothing exactly when parseRule and
/// isValidRule accept `rule`.
BRANTEL_EXPORT std::optional<RuleFault> findFault(const std::string& rule);

/// True if `rule`, which the parser accepts, is to be evaluated with T = unsigned int, false for T = int. Of several
/// parts the last one counts, whose type the RuleObject has. False for a rule that is empty or a comment.
BRANTEL_EXPORT bool isUnsignedRule(const std::string& rule);

/// Why the check functions cannot evaluate `rule`, in words; nothing if they can. Reasons are
///     no expression: the text was empty or a comment;
///     more expressions than the type takes: a text of several parts, or two texts parsed into one object;
///     for objects that were not made by the parser: an unknown type or operator, too few expressions, an operand that
///     is not an int, an unsigned int, an Expression or a ParamField, or in a hysteresis a MemoryField.
/// To be asked once, after parsing: it takes about as long as an evaluation.
BRANTEL_EXPORT std::optional<std::string> reasonAgainstEvaluation(const RuleObject& rule);

}  // namespace vemorRules

#endif
