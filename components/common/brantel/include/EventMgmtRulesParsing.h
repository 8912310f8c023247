#ifndef EVENT_MGMT_RULES_PARSING_H
#define EVENT_MGMT_RULES_PARSING_H

// Event rules from text: validation and parsing into a RuleObject.
//
// Components call isValidRule on a rule text that they are given and parseRule on one that they will evaluate; the
// inner levels are exported for tools and tests. The levels, outermost first:
//
//     rule         empty, a comment ("/" first), or parts separated by ";"          parseRule
//     part         expr = signed(...) or expr = unsigned(...)                       parseExpression
//     and / or     two basic expressions joined by one "and" or "or"                parseExpressionWithAndOrOr
//     basic        value or delta, a relational operator, a whole number            parseBasicExpression
//     hysteresis   hyshigh(n,n), hyslow(n,n) or both                                parseHysteresisExpression
//     number       decimal digits, in signed rules with an optional "-" before      extractIntegerValue
//
// For example:
//
//     RuleObject rule;
//     if (!parseRule("expr=unsigned(hyshigh(70,80))", &rule)) {
//         return;  // the log says why
//     }
//     bool isRaised = checkSingleHysteresisRule(rule, 85U, false);  // true: above 80
//     isRaised = checkSingleHysteresisRule(rule, 75U, isRaised);    // true: not at 70 yet
//
//     isValidRule("expr=unsigned(value=80)");  // false: "=" is not an operator; logs
//         "Failed to find relational operator in expression 'value=80'"
//
//     RuleObject parts;
//     parseRule("expr=signed(value>1);expr=signed(value>2)", &parts);  // true, but
//     checkSimpleValueRule(parts, 5);                                  // always false: two expressions
//
// A valid rule is not always one that can be evaluated: the check functions take a rule of exactly one part. Of several
// parts, or of two rules that were parsed into one object, the expressions add up, and every evaluation logs "nr of
// expressions = 2 != expected = 1" and is false. So is every evaluation of an empty rule or a comment: its object has
// no type.
//
// The RuleObject does not have the word "signed" or "unsigned": the component keeps it with the object and calls the
// instantiation that it names (EventMgmtRulesCppObjects.h). RuleDiagnosis.h answers which one that is, whether an
// object can be evaluated, and why a text is refused; here only the log says so.
//
// Only parseRule and isValidRule remove blanks and convert to lower case; the inner functions see a text as it is.
//
// A null output pointer means that the call only checks: every check runs, nothing is stored. What was stored before a
// fault was found stays; discard the object when a call returns false. A fault is logged once, as an error, by the
// function that finds it. A number out of range raises boost::bad_lexical_cast in the inner functions; parseRule turns
// it into error lines and false. Each line is one dynamic call of syslog, so a program that wants to see the lines
// defines that function. No function keeps state; all may run on any thread.

#include <string>
#include <vector>

#include <boost/any.hpp>
#include <boost/lexical_cast/bad_lexical_cast.hpp>

#include "BrantelExport.h"
#include "EventMgmtRulesCppObjects.h"

namespace vemorRules {

/// True if `rule` is empty or a comment, that is, if its very first character is "/".
BRANTEL_EXPORT bool isEmptyRule(const std::string& rule);

/// True if `rule` is empty, a comment or a rule that parseRule accepts, also one that the check functions never
/// evaluate because it has several parts. Logs what parseRule logs.
BRANTEL_EXPORT bool isValidRule(const std::string& rule);

/// Parses a whole rule and appends its expressions to `*pRuleObject`; an empty rule or a comment leaves it unchanged.
/// Use a fresh RuleObject for each rule: what a second rule appends makes the object one that is never evaluated, and
/// the call returns true. Spaces and letter case do not matter. With several parts the type is that of the last one.
/// Throws nothing.
BRANTEL_EXPORT bool parseRule(const std::string& rule, RuleObject* pRuleObject);

/// Parses one part of a rule, the text between two ";", in lower case and without blanks.
BRANTEL_EXPORT bool parseExpression(const std::string& part, RuleObject* pRuleObject);

/// Parses two basic expressions joined by "or" (`isOr`) or "and" into one expression. Both must be about "value" or
/// both about "delta".
BRANTEL_EXPORT bool parseExpressionWithAndOrOr(const std::string& expr, bool isUnsigned, bool isOr,
                                               RuleObject* pRuleObject);

/// Parses one relational expression into `*pExpression`; round brackets are ignored. Sets `isDelta` to whether it is
/// about "delta".
BRANTEL_EXPORT bool parseBasicExpression(const std::string& expr, bool isUnsigned, bool& isDelta,
                                         Expression* pExpression);

/// Parses "hyshigh(n,n)", "hyslow(n,n)" or both, in either order, and appends the upper pair of expressions before the
/// lower one. The larger number of a pair is its high threshold, whichever comes first. Reports a violated invariant,
/// and succeeds, when `*pRuleObject` held other expressions before.
BRANTEL_EXPORT bool parseHysteresisExpression(const std::string& expr, bool isUnsigned, RuleObject* pRuleObject);

/// Parses the one hysteresis call whose word, "hyshigh" (`isHigh`) or "hyslow", starts at position `pos` of `expr`.
/// Does not set the type of the rule. "Hysteris", here and below, is how components know the name.
BRANTEL_EXPORT bool parseSingleHysterisExpression(const std::string& expr, bool isUnsigned, unsigned int pos,
                                                  bool isHigh, RuleObject* pRuleObject);

/// Converts the two arguments of a hysteresis call and appends its pair of expressions, the thresholds as int in
/// signed and unsigned rules alike. `highestValue` and `lowestValue` are only starting values. T = unsigned int
/// exactly when `isUnsigned`; `args` holds two numbers.
template <typename T>
BRANTEL_EXPORT bool parseSingleHysterisExpressionAux(T highestValue, T lowestValue, bool isUnsigned,
                                                     const std::vector<std::string>& args, bool isHigh,
                                                     RuleObject* pRuleObject);

/// Converts the number of a basic expression and stores it, as T, into `*pOperand` unless that is null. A negative
/// number is refused in a signed delta expression. `expr` is the expression for the error line, `value` only a
/// starting value. T = unsigned int exactly when `isUnsigned`.
template <typename T>
BRANTEL_EXPORT bool handleNumericValue(const std::string& expr, const std::string& numberText, T value, bool isUnsigned,
                                       bool isDelta, boost::any* pOperand);

/// Checks and converts one number: decimal digits, with an optional "-" before them unless `isUnsigned`. `value` is
/// only changed on success. Throws boost::bad_lexical_cast for a number outside T's range and for a lone "-".
template <typename T>
BRANTEL_EXPORT bool extractIntegerValue(const std::string& text, T& value, bool isUnsigned);

}  // namespace vemorRules

#endif
