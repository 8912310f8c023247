#ifndef BENCH_SUBSTITUTION_EVALUATOR_H
#define BENCH_SUBSTITUTION_EVALUATOR_H

// Decides a parsed rule the obvious way: copy its expressions, put the numbers where the placeholders stand, reduce the
// copy to a number. Reports nothing; for rules that the parser built. Instantiated for int and unsigned int.

#include "EventMgmtRulesCppObjects.h"

namespace substitution {

template <typename T>
bool checkValue(const vemorRules::RuleObject& rule, T sample);

template <typename T>
bool checkDelta(const vemorRules::RuleObject& rule, T firstSample, T secondSample);

template <typename T>
bool checkSingle(const vemorRules::RuleObject& rule, T sample, bool previousState);

template <typename T>
void checkDouble(const vemorRules::RuleObject& rule, T sample, bool& upperState, bool& lowerState);

}  // namespace substitution

#endif
