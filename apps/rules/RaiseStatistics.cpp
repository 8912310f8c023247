#include "rules/RaiseStatistics.h"

#include <algorithm>

void RaiseStatistics::add(bool isRaised, std::optional<double> seconds)
{
    const bool isRaising = isRaised && !m_wasRaised;
    if (isRaising) {
        ++m_timesRaised;
        m_samplesInARow = 0;
        m_raisedAt = seconds;
    }
    if (isRaised) {
        ++m_samplesInARow;
        m_longestSamples = std::max(m_longestSamples, m_samplesInARow);
    }
    if (isRaised || m_wasRaised) {
        if (m_raisedAt && seconds) {
            m_longestSeconds = std::max(m_longestSeconds.value_or(0.0), *seconds - *m_raisedAt);
        } else {
            m_isTimeMissing = true;
        }
    }
    m_wasRaised = isRaised;
}

std::optional<double> RaiseStatistics::longestSeconds() const
{
    return m_isTimeMissing ? std::nullopt : m_longestSeconds;
}
