#ifndef APPS_RULES_RULE_DIAGNOSIS_H
#define APPS_RULES_RULE_DIAGNOSIS_H

// Why a rule text is refused, and where. The library decides whether it is refused (isValidRule); this explains it, by
// the parser's steps in the parser's order, so that the reason is the one behind its error line.

#include <optional>
#include <string>

#include "rules/MappedText.h"

namespace brantel {

/// The first fault of a rule text.
struct RuleFault {
    TextSpan span;       ///< in the rule as written
    std::string reason;  ///< what is wrong
    std::string remedy;  ///< what would be right
};

/// Why the library refuses `rule`, which it does.
RuleFault explainRefusal(const std::string& rule);

/// The fault that makes the parser refuse `rule`; nothing exactly when it accepts it.
std::optional<RuleFault> findFault(const std::string& rule);

}  // namespace brantel

#endif
