#ifndef APPS_SAMPLES_SAMPLE_READER_H
#define APPS_SAMPLES_SAMPLE_READER_H

// Samples from one column of CSV rows, or one a line, with their times if there is a time column. By default the first
// row is the header if every field that is not empty is a name, which starts with a letter, "_" or "%". Words for a
// missing value, such as "N/A", are not names.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "common/CsvReader.h"
#include "common/LineReader.h"

namespace brantel {

enum class Header { AUTOMATIC, PRESENT, ABSENT };

/// Which columns to read, each by the name in the header or by number from 1; empty if not given.
struct ColumnChoice {
    std::string sample;  ///< may only be left out if there is just one column besides the time
    std::string time;    ///< left out: the column that the header names "time" or "timestamp", in any case, if any
    Header header = Header::AUTOMATIC;
};

/// One row of data; it has either a value or a fault.
struct Sample {
    std::uint64_t number;  ///< of the row, from 1, the header not counted
    std::size_t line;
    std::optional<std::string> time;  ///< as written
    std::int64_t value;
    std::string fault;  ///< why there is no value, such as "'abc' is not a whole number"
};

class SampleReader {
public:
    /// Reads samples from `lowest` to `highest`. Reads from `lines`, which must outlive the reader.
    SampleReader(LineReader& lines, const ColumnChoice& choice, std::int64_t lowest, std::int64_t highest);

    /// The next sample; nothing after the last one. Throws CommandError when a chosen column does not exist or its name
    /// is not unique, when no column was chosen where there are several, and for what CsvReader throws.
    std::optional<Sample> next();

private:
    void chooseColumns(const CsvRow& firstRow);
    std::optional<std::size_t> timeColumnOf(const CsvRow& firstRow) const;
    std::size_t columnOf(const std::string& choice, const CsvRow& firstRow) const;
    [[noreturn]] void throwAtFirstRow(const CsvRow& firstRow, const std::string& reason) const;
    void readValue(const std::vector<std::string>& fields, Sample& sample) const;

    std::string m_inputName;
    CsvReader m_rows;
    ColumnChoice m_choice;
    std::int64_t m_lowest;
    std::int64_t m_highest;
    bool m_hasHeader = false;
    std::size_t m_nColumns = 0;  ///< in a row; 0 before the first row
    std::size_t m_sampleColumn = 0;
    std::optional<std::size_t> m_timeColumn;
    std::uint64_t m_number = 0;
};

}  // namespace brantel

#endif
