#ifndef APPS_RULES_RULE_SESSION_H
#define APPS_RULES_RULE_SESSION_H

// A parsed rule fed with one sample after the other: calls the check function of the rule's type and carries what the
// caller of these functions has to carry: the previous sample and the states.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "EventMgmtRulesCppObjects.h"

namespace brantel {

/// A sample of a signed or an unsigned rule.
using SampleValue = std::int64_t;

/// The samples that a rule can be evaluated against.
struct SampleRange {
    SampleValue lowest;
    SampleValue highest;
};

SampleRange sampleRange(bool isUnsigned);

/// One condition of a rule after a sample. A double hysteresis has two, "upper" and "lower"; every other rule has one,
/// without a name.
struct ConditionState {
    std::string name;
    bool isRaised;
    bool hasChanged;  ///< since the sample before; every condition starts cleared
};

/// What a session carries from one sample to the next.
struct RuleMemory {
    std::optional<SampleValue> previousSample;
    bool isRaised = false;       ///< the only condition, or the upper one of a double hysteresis
    bool isLowerRaised = false;  ///< the lower one of a double hysteresis
};

class RuleSession {
public:
    /// `rule` can be evaluated (vemorRules::reasonAgainstEvaluation).
    RuleSession(const vemorRules::RuleObject& rule, bool isUnsigned);

    const vemorRules::RuleObject& rule() const { return m_rule; }
    bool isUnsigned() const { return m_isUnsigned; }

    /// To be kept and given to a session of the same rule, which then continues from here.
    const RuleMemory& memory() const { return m_memory; }
    void setMemory(const RuleMemory& memory) { m_memory = memory; }

    /// The conditions as they are now, in the order in which evaluate returns them; none has just changed.
    std::vector<ConditionState> states() const { return statesSince(m_memory); }

    /// Evaluates the next sample, which is within sampleRange. Returns no states for the first sample of a delta rule,
    /// which has nothing to compare with.
    std::vector<ConditionState> evaluate(SampleValue sample);

private:
    template <typename T>
    void decide(T sample);
    std::vector<ConditionState> statesSince(const RuleMemory& before) const;

    vemorRules::RuleObject m_rule;
    bool m_isUnsigned;
    RuleMemory m_memory;
};

}  // namespace brantel

#endif
