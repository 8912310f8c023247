#ifndef APPS_RULES_RULE_REASON_H
#define APPS_RULES_RULE_REASON_H

// Why a condition of a rule was raised or cleared, in words: "92 > 90: above the upper threshold".

#include <cstddef>
#include <string>

#include "rules/RuleSession.h"

namespace brantel {

/// The reason for the state that `session` is in after evaluating `sample`. `condition` is the position in
/// RuleSession::states; `previousSample` is the sample before, which only a delta rule needs.
std::string reasonText(const RuleSession& session, std::size_t condition, SampleValue previousSample,
                       SampleValue sample);

}  // namespace brantel

#endif
