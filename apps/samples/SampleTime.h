#ifndef APPS_SAMPLES_SAMPLE_TIME_H
#define APPS_SAMPLES_SAMPLE_TIME_H

#include <optional>
#include <string>

namespace brantel {

/// The times of one series of samples: decimal numbers of seconds, or ISO 8601 dates and times such as
/// 2024-05-01T12:30:00, 2024-05-01 12:30:00.5 or 2024-05-01T12:30:00Z. The first one decides which: a difference
/// between a number and a date has no meaning.
class SampleTimes {
public:
    /// The time in seconds, of which only differences have a meaning. Nothing for any other text, for a date or time of
    /// day that does not exist, and for a time that is not of the series' kind.
    std::optional<double> parse(const std::string& text);

private:
    std::optional<bool> m_areDates;  ///< not known before the first time
};

}  // namespace brantel

#endif
