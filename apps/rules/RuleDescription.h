#ifndef APPS_RULES_RULE_DESCRIPTION_H
#define APPS_RULES_RULE_DESCRIPTION_H

// A parsed rule in plain words: "raised while value > 100".

#include <string>

#include "EventMgmtRulesCppObjects.h"

/// What kind of rule the type stands for: "value rule", "double hysteresis" and so on.
std::string kindOfRule(vemorRules::ExpressionType type);

/// When the condition of `rule` holds. `rule` is as the parser fills it from a single part; `isUnsigned` is what its
/// text says, because the thresholds of a hysteresis do not show it.
std::string describe(const vemorRules::RuleObject& rule, bool isUnsigned);

/// The same for a whole valid rule text, each of several parts on its own.
std::string describeRuleText(const std::string& rule);

#endif
