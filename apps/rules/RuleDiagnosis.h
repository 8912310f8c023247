#ifndef APPS_RULES_RULE_DIAGNOSIS_H
#define APPS_RULES_RULE_DIAGNOSIS_H

// Why a rule text is refused, and where. Whether it is refused is the library's verdict (isValidRule); this explains
// it, by the parser's own steps in the parser's own order, so that the reason is the one behind its error line.

#include <optional>
#include <string>

#include "rules/MappedText.h"

/// The first fault of a rule text.
struct RuleFault {
    TextSpan span;       ///< in the rule as written
    std::string reason;  ///< what is wrong
    std::string remedy;  ///< what would be right
};

/// The fault that makes the parser refuse `rule`; nothing exactly when it accepts it.
std::optional<RuleFault> findFault(const std::string& rule);

#endif
