#ifndef APPS_RULES_RAISE_STATISTICS_H
#define APPS_RULES_RAISE_STATISTICS_H

// How often and how long a condition was raised over a series of samples.

#include <cstdint>
#include <optional>

namespace brantel {

class RaiseStatistics {
public:
    /// Takes the state of the condition after the next sample, and the sample's time in seconds if it is known.
    void add(bool isRaised, std::optional<double> seconds);

    /// How often the condition went from cleared to raised.
    std::uint64_t timesRaised() const { return m_timesRaised; }

    /// The most samples in a row that found it raised.
    std::uint64_t longestSamples() const { return m_longestSamples; }

    /// The longest time from a sample that raised it to the one that cleared it, or to the last one if none did.
    /// Nothing if it was never raised, or if the time of a sample that this depends on is not known or goes back.
    std::optional<double> longestSeconds() const;

private:
    bool m_wasRaised = false;
    std::uint64_t m_timesRaised = 0;
    std::uint64_t m_samplesInARow = 0;
    std::uint64_t m_longestSamples = 0;
    std::optional<double> m_raisedAt;
    std::optional<double> m_lastSeconds;
    std::optional<double> m_longestSeconds;
    bool m_isTimeMissing = false;
};

}  // namespace brantel

#endif
