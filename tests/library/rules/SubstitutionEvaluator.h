#ifndef TESTS_LIBRARY_RULES_SUBSTITUTION_EVALUATOR_H
#define TESTS_LIBRARY_RULES_SUBSTITUTION_EVALUATOR_H

// The evaluation of rules, by the letter: every function copies the expression, replaces the placeholders in the
// copy and reduces it to a number. It shares nothing with the library but the rule objects, and writes the same lines
// and reports; the tests compare the library's evaluation with it.
//
// T is int or unsigned int. See EventMgmtRulesCppObjects.h for what the functions mean.

#include <typeinfo>

#include <boost/any.hpp>

#include "EventMgmtRulesCppObjects.h"

namespace substitution {

template <typename T>
bool fillInValue(boost::any& operand, T value, const std::type_info& typeInfo);

template <typename T>
T check(const boost::any& operand);

template <typename T>
bool checkInt(const vemorRules::Expression& expression, T value);

template <typename T>
bool checkSimpleValueRule(const vemorRules::RuleObject& rule, T sample);

template <typename T>
bool checkSimpleDeltaRule(const vemorRules::RuleObject& rule, T firstSample, T secondSample);

template <typename T>
bool checkHysteresis(const vemorRules::Expression& first, const vemorRules::Expression& second, T sample,
                     bool previousState);

template <typename T>
bool checkSingleHysteresisRule(const vemorRules::RuleObject& rule, T sample, bool previousState);

template <typename T>
void checkDoubleHysteresisRule(const vemorRules::RuleObject& rule, T sample, bool& upperState, bool& lowerState);

}  // namespace substitution

#endif
