#include "rules/RuleSession.h"

#include <limits>

namespace brantel {

SampleRange sampleRange(bool isUnsigned)
{
    if (isUnsigned) {
        return {std::numeric_limits<unsigned int>::min(), std::numeric_limits<unsigned int>::max()};
    }
    return {std::numeric_limits<int>::min(), std::numeric_limits<int>::max()};
}

RuleSession::RuleSession(const vemorRules::RuleObject& rule, bool isUnsigned) : m_rule(rule), m_isUnsigned(isUnsigned)
{
}

std::vector<ConditionState> RuleSession::statesSince(const RuleMemory& before) const
{
    const bool hasChanged = (m_memory.isRaised != before.isRaised);
    if (m_rule.m_expressionType != vemorRules::DOUBLE_HYSTERESIS) {
        return {{"", m_memory.isRaised, hasChanged}};
    }
    return {{"upper", m_memory.isRaised, hasChanged},
            {"lower", m_memory.isLowerRaised, m_memory.isLowerRaised != before.isLowerRaised}};
}

std::vector<ConditionState> RuleSession::evaluate(SampleValue sample)
{
    const bool isDecided = (m_rule.m_expressionType != vemorRules::SIMPLE_EXPRESSION_DELTA) || m_memory.previousSample;
    const RuleMemory before = m_memory;
    if (isDecided) {
        m_isUnsigned ? decide(static_cast<unsigned int>(sample)) : decide(static_cast<int>(sample));
    }
    m_memory.previousSample = sample;
    return isDecided ? statesSince(before) : std::vector<ConditionState>();
}

template <typename T>
void RuleSession::decide(T sample)
{
    using namespace vemorRules;
    switch (m_rule.m_expressionType) {
        case SIMPLE_EXPRESSION_VALUE: m_memory.isRaised = checkSimpleValueRule<T>(m_rule, sample); break;
        case SIMPLE_EXPRESSION_DELTA:
            m_memory.isRaised = checkSimpleDeltaRule<T>(m_rule, static_cast<T>(*m_memory.previousSample), sample);
            break;
        case SINGLE_HYSTERESIS:
            m_memory.isRaised = checkSingleHysteresisRule<T>(m_rule, sample, m_memory.isRaised);
            break;
        case DOUBLE_HYSTERESIS:
            checkDoubleHysteresisRule<T>(m_rule, sample, m_memory.isRaised, m_memory.isLowerRaised);
            break;
        case NO_EXPRESSION: break;
    }
}

}  // namespace brantel
