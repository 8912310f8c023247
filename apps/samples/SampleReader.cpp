#include "samples/SampleReader.h"

#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>
#include <charconv>
#include <system_error>

#include "common/CommandLine.h"

namespace {

bool startsLikeName(const std::string& field)
{
    const char first = field.front();
    return ((first >= 'a') && (first <= 'z')) || ((first >= 'A') && (first <= 'Z')) || (first == '_') || (first == '%');
}

bool isHeader(const std::vector<std::string>& fields)
{
    bool hasName = false;
    for (const std::string& field : fields) {
        if (!field.empty()) {
            if (!startsLikeName(field)) {
                return false;
            }
            hasName = true;
        }
    }
    return hasName;
}

std::optional<std::size_t> columnNamedTime(const std::vector<std::string>& names)
{
    const auto named = std::find_if(names.begin(), names.end(), [](const std::string& name) {
        return boost::algorithm::iequals(name, "time") || boost::algorithm::iequals(name, "timestamp");
    });
    return (named != names.end()) ? std::optional<std::size_t>(named - names.begin()) : std::nullopt;
}

std::string listOf(const std::vector<std::string>& fields, bool areNames)
{
    std::string list;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        list += ((i == 0) ? "" : ", ") + std::to_string(i + 1) + (areNames ? " '" + fields[i] + "'" : "");
    }
    return list;
}

}  // namespace

SampleReader::SampleReader(LineReader& lines, const ColumnChoice& choice, std::int64_t lowest, std::int64_t highest)
    : m_inputName(lines.name()), m_rows(lines), m_choice(choice), m_lowest(lowest), m_highest(highest)
{
}

std::optional<Sample> SampleReader::next()
{
    std::optional<CsvRow> row = m_rows.next();
    // Empty lines before the first row say nothing about the columns.
    if (row && (m_columns == 0) && !row->fields.empty()) {
        chooseColumns(*row);
        if (m_hasHeader) {
            row = m_rows.next();
        }
    }
    if (!row) {
        return std::nullopt;
    }
    Sample sample{};
    sample.number = ++m_number;
    sample.line = row->line;
    readValue(row->fields, sample);
    return sample;
}

void SampleReader::chooseColumns(const CsvRow& firstRow)
{
    m_columns = firstRow.fields.size();
    m_hasHeader = isHeader(firstRow.fields);
    if (!m_choice.time.empty()) {
        m_timeColumn = columnOf(m_choice.time, firstRow);
    } else if (m_hasHeader && (m_columns > 1)) {
        m_timeColumn = columnNamedTime(firstRow.fields);
    }
    if (!m_choice.sample.empty()) {
        m_sampleColumn = columnOf(m_choice.sample, firstRow);
    } else if ((m_columns == 2) && m_timeColumn) {
        m_sampleColumn = 1 - *m_timeColumn;
    } else if (m_columns > 1) {
        throw CommandError(
            m_inputName + ":" + std::to_string(firstRow.line) +
            ": there are several columns; choose one with --column: " + listOf(firstRow.fields, m_hasHeader));
    }
    if (m_choice.time.empty() && (m_timeColumn == m_sampleColumn)) {
        m_timeColumn.reset();
    }
}

std::size_t SampleReader::columnOf(const std::string& choice, const CsvRow& firstRow) const
{
    const std::vector<std::string>& fields = firstRow.fields;
    const auto named = std::find(fields.begin(), fields.end(), choice);
    if (m_hasHeader && (named != fields.end())) {
        return static_cast<std::size_t>(named - fields.begin());
    }
    std::size_t number = 0;
    const char* const pEnd = choice.data() + choice.size();
    const auto [pRest, error] = std::from_chars(choice.data(), pEnd, number);
    if ((error == std::errc()) && (pRest == pEnd) && (number >= 1) && (number <= fields.size())) {
        return number - 1;
    }
    throw CommandError(m_inputName + ":" + std::to_string(firstRow.line) + ": there is no column '" + choice +
                       "'; the columns are " + listOf(fields, m_hasHeader));
}

void SampleReader::readValue(const std::vector<std::string>& fields, Sample& sample) const
{
    if (fields.empty()) {
        sample.fault = "the line is empty";
        return;
    }
    if (fields.size() != m_columns) {
        sample.fault = "the number of columns is " + std::to_string(fields.size()) + " and in the first row " +
                       std::to_string(m_columns);
        return;
    }
    if (m_timeColumn) {
        sample.time = fields[*m_timeColumn];
    }
    const std::string& text = fields[m_sampleColumn];
    const char* const pEnd = text.data() + text.size();
    const auto [pRest, error] = std::from_chars(text.data(), pEnd, sample.value);
    if (text.empty()) {
        sample.fault = "the sample is empty";
    } else if ((error == std::errc::invalid_argument) || (pRest != pEnd)) {
        sample.fault = "'" + text + "' is not a whole number";
    } else if ((error == std::errc::result_out_of_range) || (sample.value < m_lowest) || (sample.value > m_highest)) {
        sample.fault = text + " is out of range, " + std::to_string(m_lowest) + " to " + std::to_string(m_highest);
    }
}
