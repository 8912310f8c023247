#ifndef APPS_RULES_COMPARISON_H
#define APPS_RULES_COMPARISON_H

// The comparisons in a parsed rule as people read them: the monitored quantity first.

#include <cstdint>

#include "EventMgmtRulesCppObjects.h"

namespace brantel {

struct Comparison {
    vemorRules::RelationalOperator relationalOperator;  ///< between the monitored quantity and the limit
    std::int64_t limit;
};

/// `expression` compares a placeholder with a number, in either order. `isUnsigned` comes from the rule text: the
/// thresholds of a hysteresis do not show it.
Comparison comparisonOf(const vemorRules::Expression& expression, bool isUnsigned);

/// Whether `expression` is two comparisons joined by "and" or "or".
bool isJoined(const vemorRules::Expression& expression);

/// The expression that an operand holds.
const vemorRules::Expression& nestedExpression(const boost::any& operand);

/// ">", ..., "or".
const char* operatorText(vemorRules::RelationalOperator relationalOperator);

/// The operator that holds whenever this comparison operator does not.
vemorRules::RelationalOperator negated(vemorRules::RelationalOperator relationalOperator);

/// Whether the comparison holds for `value`.
bool holds(const Comparison& comparison, std::int64_t value);

}  // namespace brantel

#endif
