#ifndef APPS_RULES_RULE_DESCRIPTION_H
#define APPS_RULES_RULE_DESCRIPTION_H

// A parsed rule in plain words: "raised while value > 100".

#include <string>

#include "EventMgmtRulesCppObjects.h"

namespace brantel {

/// "value rule", "double hysteresis" and so on.
std::string ruleKindText(vemorRules::ExpressionType type);

/// When the condition of `rule` holds. `rule` is as the parser fills it from a single part; `isUnsigned` comes from its
/// text, because the thresholds of a hysteresis do not show it.
std::string meaningText(const vemorRules::RuleObject& rule, bool isUnsigned);

/// The same for a whole valid rule text, each of several parts on its own.
std::string meaningText(const std::string& rule);

}  // namespace brantel

#endif
