#include "rules/RaiseStatistics.h"

#include <algorithm>

namespace brantel {

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
        // A clock that was set back does not show how long it lasted.
        const bool isForward = isRaising || !m_lastSeconds || !seconds || (*seconds >= *m_lastSeconds);
        if (m_raisedAt && seconds && isForward) {
            m_longestSeconds = std::max(m_longestSeconds.value_or(0.0), *seconds - *m_raisedAt);
        } else {
            m_isTimeMissing = true;
        }
    }
    m_wasRaised = isRaised;
    m_lastSeconds = seconds;
}

std::optional<double> RaiseStatistics::longestSeconds() const
{
    return m_isTimeMissing ? std::nullopt : m_longestSeconds;
}

}  // namespace brantel
