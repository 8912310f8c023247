#ifndef TESTS_LIBRARY_RULES_RULE_TEXTS_H
#define TESTS_LIBRARY_RULES_RULE_TEXTS_H

// Rule objects as texts, so that a test compares a whole object at once and a failure shows it:
//
//     "SIMPLE_EXPRESSION_VALUE: (ParamField > int 5)"
//     "SINGLE_HYSTERESIS: (MemoryField and (ParamField > int 80)), (MemoryField or (ParamField > int 90))"

#include <string>

#include "EventMgmtRulesCppObjects.h"

namespace vemorRules {

std::string described(const boost::any& operand);
std::string described(const Expression& expression);
std::string described(const RuleObject& rule);

}  // namespace vemorRules

#endif
