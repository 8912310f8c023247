#include "samples/SampleReader.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <system_error>

#include <boost/algorithm/string/predicate.hpp>

#include "common/CommandLine.h"
#include "common/Numbers.h"
#include "common/PrintableText.h"

namespace brantel {
namespace {

constexpr const char* WORDS_FOR_NO_VALUE[] = {"n/a", "na", "nan", "nil", "none", "null", "inf", "infinity"};

bool isName(const std::string& field)
{
    constexpr const char* MINUS_SIGN = "\xE2\x88\x92";
    const char first = field.front();
    const bool isLetter = ((first >= 'a') && (first <= 'z')) || ((first >= 'A') && (first <= 'Z'));
    const bool isBeyondAscii = (static_cast<unsigned char>(first) >= 0x80) && (field.rfind(MINUS_SIGN, 0) != 0);
    const auto isField = [&field](const char* word) { return boost::algorithm::iequals(field, word); };
    return (isLetter || isBeyondAscii || (first == '_') || (first == '%')) &&
           std::none_of(std::begin(WORDS_FOR_NO_VALUE), std::end(WORDS_FOR_NO_VALUE), isField);
}

bool looksLikeHeader(const std::vector<std::string>& fields)
{
    bool hasName = false;
    for (const std::string& field : fields) {
        if (!field.empty()) {
            if (!isName(field)) {
                return false;
            }
            hasName = true;
        }
    }
    return hasName;
}

bool isHeader(const std::vector<std::string>& fields, Header header)
{
    return (header == Header::PRESENT) || ((header == Header::AUTOMATIC) && looksLikeHeader(fields));
}

bool isNamedTime(const std::string& name)
{
    return boost::algorithm::iequals(name, "time") || boost::algorithm::iequals(name, "timestamp");
}

using Columns = std::vector<std::size_t>;

template <typename Predicate>
Columns columnsThat(const std::vector<std::string>& fields, Predicate isWanted)
{
    Columns columns;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (isWanted(fields[i])) {
            columns.push_back(i);
        }
    }
    return columns;
}

Columns allColumns(const std::vector<std::string>& fields)
{
    return columnsThat(fields, [](const std::string&) { return true; });
}

// "1 'time', 2 'load'", or the numbers alone.
std::string columnsText(const Columns& columns, const std::vector<std::string>& fields, bool areNames)
{
    constexpr std::size_t MOST = 20;
    std::string list;
    for (std::size_t i = 0; (i < columns.size()) && (i < MOST); ++i) {
        list += ((i == 0) ? "" : ", ") + std::to_string(columns[i] + 1);
        list += areNames ? " " + inQuotes(fields[columns[i]]) : "";
    }
    return list + ((columns.size() > MOST) ? " and " + std::to_string(columns.size() - MOST) + " more" : "");
}

}  // namespace

SampleReader::SampleReader(LineReader& lines, const ColumnChoice& choice, std::int64_t lowest, std::int64_t highest)
    : m_inputName(lines.name()), m_rows(lines), m_choice(choice), m_lowest(lowest), m_highest(highest)
{
}

std::optional<Sample> SampleReader::next()
{
    std::optional<CsvRow> row = m_rows.next();
    // Empty lines before the first row do not define the columns.
    if (row && (m_nColumns == 0) && !row->fields.empty()) {
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
    m_nColumns = firstRow.fields.size();
    m_hasHeader = isHeader(firstRow.fields, m_choice.header);
    if (!m_choice.sample.empty()) {
        m_sampleColumn = columnOf(m_choice.sample, firstRow);
    }
    m_timeColumn = m_choice.time.empty() ? timeColumnOf(firstRow) : columnOf(m_choice.time, firstRow);
    if (!m_choice.sample.empty() || (m_nColumns == 1)) {
        return;
    }
    if ((m_nColumns > 2) || !m_timeColumn) {
        throwAtFirstRow(firstRow, "there are several columns; choose one with --column: " +
                                      columnsText(allColumns(firstRow.fields), firstRow.fields, m_hasHeader));
    }
    m_sampleColumn = 1 - *m_timeColumn;
}

// The column that the header names as times, if any; it is not the column of the samples.
std::optional<std::size_t> SampleReader::timeColumnOf(const CsvRow& firstRow) const
{
    if (!m_hasHeader || (m_nColumns == 1)) {
        return std::nullopt;
    }
    Columns named = columnsThat(firstRow.fields, isNamedTime);
    if (!m_choice.sample.empty()) {
        named.erase(std::remove(named.begin(), named.end(), m_sampleColumn), named.end());
    }
    if (named.size() > 1) {
        throwAtFirstRow(firstRow, "there are several columns of times; choose one with --time-column: " +
                                      columnsText(named, firstRow.fields, m_hasHeader));
    }
    return named.empty() ? std::nullopt : std::optional(named.front());
}

std::size_t SampleReader::columnOf(const std::string& choice, const CsvRow& firstRow) const
{
    const std::vector<std::string>& fields = firstRow.fields;
    const Columns named =
        m_hasHeader ? columnsThat(fields, [&choice](const std::string& field) { return field == choice; }) : Columns();
    if (named.size() > 1) {
        throwAtFirstRow(firstRow, "several columns are named " + inQuotes(choice) +
                                      "; choose one by its number: " + columnsText(named, fields, false));
    }
    if (!named.empty()) {
        return named.front();
    }
    if (const auto number = parseInteger<std::size_t>(choice, 1, fields.size())) {
        return *number - 1;
    }
    throwAtFirstRow(firstRow, "there is no column " + inQuotes(choice) + "; the columns are " +
                                  columnsText(allColumns(fields), fields, m_hasHeader));
}

void SampleReader::throwAtFirstRow(const CsvRow& firstRow, const std::string& reason) const
{
    throw CommandError(m_inputName + ":" + std::to_string(firstRow.line) + ": " + reason);
}

void SampleReader::readValue(const std::vector<std::string>& fields, Sample& sample) const
{
    if (fields.empty()) {
        sample.fault = "the line is empty";
        return;
    }
    if (fields.size() != m_nColumns) {
        sample.fault = "the number of columns is " + std::to_string(fields.size()) + " and in the first row " +
                       std::to_string(m_nColumns);
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
        sample.fault = inQuotes(text) + " is not a whole number";
    } else if ((error == std::errc::result_out_of_range) || (sample.value < m_lowest) || (sample.value > m_highest)) {
        sample.fault =
            shortened(text) + " is out of range, " + std::to_string(m_lowest) + " to " + std::to_string(m_highest);
    }
}

}  // namespace brantel
