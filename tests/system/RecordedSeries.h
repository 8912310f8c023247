#ifndef TESTS_SYSTEM_RECORDED_SERIES_H
#define TESTS_SYSTEM_RECORDED_SERIES_H

// Series of samples with a rule each, made from a seed, and the events that each must bring: calculated from the
// numbers alone, by code that shares nothing with the library or the monitor.

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace brantel {

/// A change of a condition, as in the journal.
struct SeriesEvent {
    std::size_t row;  ///< of the sample that caused it, from 1; not compared, as the journal does not have it
    std::string condition;
    bool isRaised;
    std::int64_t value;
    std::int64_t previous;  ///< the value itself for the first sample
};

bool operator==(const SeriesEvent& one, const SeriesEvent& other);
std::ostream& operator<<(std::ostream& stream, const SeriesEvent& event);

struct RecordedSeries {
    std::string rule;
    std::vector<std::int64_t> samples;
    std::vector<SeriesEvent> events;
};

/// `index` chooses the kind of the rule, in turn. The last two samples are the same.
RecordedSeries makeSeries(std::size_t index, std::size_t nSamples);

/// The series as the columns of a CSV file; `firstColumn` counts the rows from 1, unless it is empty.
std::string csvOf(const std::vector<RecordedSeries>& series, const std::string& firstColumn);

}  // namespace brantel

#endif
