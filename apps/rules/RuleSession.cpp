#include "rules/RuleSession.h"

#include <limits>

using namespace vemorRules;

namespace {

constexpr std::size_t expressionsOfType[] = {0, 1, 1, 2, 4};

}  // namespace

SampleRange sampleRange(bool isUnsigned)
{
    if (isUnsigned) {
        return {std::numeric_limits<unsigned int>::min(), std::numeric_limits<unsigned int>::max()};
    }
    return {std::numeric_limits<int>::min(), std::numeric_limits<int>::max()};
}

std::optional<std::string> reasonAgainstEvaluation(const RuleObject& rule)
{
    if (rule.m_expressionType == NO_EXPRESSION) {
        return "there is nothing to evaluate: the rule is empty or a comment";
    }
    if (rule.m_expressions.size() != expressionsOfType[rule.m_expressionType]) {
        return SEVERAL_PARTS;
    }
    return std::nullopt;
}

RuleSession::RuleSession(const RuleObject& rule, bool isUnsigned) : m_rule(rule), m_isUnsigned(isUnsigned) {}

std::vector<std::string> RuleSession::conditionNames() const
{
    if (m_rule.m_expressionType == DOUBLE_HYSTERESIS) {
        return {"upper", "lower"};
    }
    return {""};
}

std::vector<ConditionState> RuleSession::evaluate(SampleValue sample)
{
    const bool isDecided = (m_rule.m_expressionType != SIMPLE_EXPRESSION_DELTA) || m_memory.previousSample;
    const std::array<bool, 2> wasRaised = m_memory.isRaised;
    if (isDecided) {
        m_isUnsigned ? decide(static_cast<unsigned int>(sample)) : decide(static_cast<int>(sample));
    }
    m_memory.previousSample = sample;
    if (!isDecided) {
        return {};
    }
    std::vector<ConditionState> states;
    for (const std::string& name : conditionNames()) {
        const std::size_t i = states.size();
        states.push_back({name, m_memory.isRaised[i], m_memory.isRaised[i] != wasRaised[i]});
    }
    return states;
}

template <typename T>
void RuleSession::decide(T sample)
{
    switch (m_rule.m_expressionType) {
        case SIMPLE_EXPRESSION_VALUE: m_memory.isRaised[0] = checkSimpleValueRule<T>(m_rule, sample); break;
        case SIMPLE_EXPRESSION_DELTA:
            m_memory.isRaised[0] = checkSimpleDeltaRule<T>(m_rule, static_cast<T>(*m_memory.previousSample), sample);
            break;
        case SINGLE_HYSTERESIS:
            m_memory.isRaised[0] = checkSingleHysteresisRule<T>(m_rule, sample, m_memory.isRaised[0]);
            break;
        case DOUBLE_HYSTERESIS:
            checkDoubleHysteresisRule<T>(m_rule, sample, m_memory.isRaised[0], m_memory.isRaised[1]);
            break;
        case NO_EXPRESSION: break;
    }
}
