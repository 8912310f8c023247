#include <algorithm>
#include <optional>
#include <variant>

#include <boost/algorithm/string/predicate.hpp>

#include "common/CommandLine.h"
#include "common/CsvReader.h"
#include "common/LineReader.h"
#include "common/Numbers.h"
#include "common/PrintableText.h"
#include "tables/RowFiles.h"

namespace brantel {
namespace {

constexpr std::size_t ABSENT = static_cast<std::size_t>(-1);

using Names = std::vector<std::string>;

sql::Value flagFrom(const std::string& text)
{
    if (boost::iequals(text, "true") || (text == "1")) {
        return 1;
    }
    if (boost::iequals(text, "false") || (text == "0")) {
        return 0;
    }
    return {};
}

sql::Value valueFrom(const sql::Field& field, const std::string& text)
{
    switch (field.type()) {
        case sql::field_type::INTEGER: {
            const std::optional<std::int64_t> number = parseInteger<std::int64_t>(text, 0, MAX_NUMBER);
            return number ? sql::Value(*number) : sql::Value();
        }
        case sql::field_type::BOOLEAN: return flagFrom(text);
        case sql::field_type::TEXT: break;
    }
    return text;
}

// The position of each column of the table among the names; nothing if the names are not those of the table.
std::optional<std::vector<std::size_t>> positionsOf(const EventTable& table, const Names& names)
{
    std::vector<std::size_t> positions;
    std::size_t nFound = 0;
    for (const sql::Field& column : table.columns()) {
        const auto found = std::find(names.begin(), names.end(), column.name());
        const bool mayBeAbsent = table.hasRowIndex() && positions.empty();
        if (found != names.end()) {
            positions.push_back(static_cast<std::size_t>(found - names.begin()));
            ++nFound;
        } else if (mayBeAbsent) {
            positions.push_back(ABSENT);
        } else {
            return std::nullopt;
        }
    }
    return (nFound == names.size()) ? std::optional(positions) : std::nullopt;
}

// What is wrong with a first row that is not that of any table, compared with the table that it resembles most.
class WrongHeader {
public:
    explicit WrongHeader(const Names& names) : m_names(names)
    {
        std::size_t mostAlike = 0;
        for (const EventTable& table : eventTables()) {
            const std::size_t alike = likeness(table);
            if (alike > mostAlike) {
                mostAlike = alike;
                m_pTable = &table;
            }
        }
    }

    std::string reason() const
    {
        if (m_pTable == nullptr) {
            return "the first row does not name the columns of a table; the tables are " + importableTableNames();
        }
        return firstDifference() + "; the columns of " + m_pTable->name() + " are " + columnNames();
    }

private:
    static bool isColumn(const EventTable& table, const std::string& name)
    {
        const std::vector<sql::Field>& columns = table.columns();
        return std::any_of(columns.begin(), columns.end(),
                           [&](const sql::Field& column) { return boost::iequals(column.name(), name); });
    }

    // Twice the number of columns that are named, in any letter case, minus the number of those that are not: all of a
    // small table outweigh some of a larger one.
    std::size_t likeness(const EventTable& table) const
    {
        const auto isNamed = [&](const std::string& name) { return isColumn(table, name); };
        const auto nNamed = static_cast<std::size_t>(std::count_if(m_names.begin(), m_names.end(), isNamed));
        const std::size_t nOthers = table.columns().size() - std::min(nNamed, table.columns().size());
        return (2 * nNamed > nOthers) ? 2 * nNamed - nOthers : 0;
    }

    std::string firstDifference() const
    {
        for (std::size_t i = 0; i < m_names.size(); ++i) {
            const std::string& name = m_names[i];
            if (!isColumn(*m_pTable, name)) {
                return "the first row names " + inQuotes(name) + ", which is not a column of " + m_pTable->name();
            }
            const auto begin = m_names.begin();
            const auto end = begin + static_cast<std::ptrdiff_t>(i);
            if (std::find(begin, end, name) != end) {
                return "the first row names " + inQuotes(name) + " twice";
            }
        }
        for (const sql::Field& column : m_pTable->columns()) {
            const bool isRowIndex = m_pTable->hasRowIndex() && (&column == &m_pTable->columns().front());
            const auto found = std::find_if(m_names.begin(), m_names.end(), [&](const std::string& name) {
                return boost::iequals(name, column.name());
            });
            if ((found == m_names.end()) && !isRowIndex) {
                return "the first row does not name " + column.name();
            }
            if ((found != m_names.end()) && (*found != column.name())) {
                return "the first row names " + inQuotes(*found) + ", which is written " + column.name();
            }
        }
        return "";
    }

    std::string columnNames() const
    {
        std::string names;
        for (const sql::Field& column : m_pTable->columns()) {
            names += (names.empty() ? "" : ", ") + column.name();
        }
        return names;
    }

    const Names& m_names;
    const EventTable* m_pTable = nullptr;
};

class CsvRows {
public:
    explicit CsvRows(const SpooledInput& input) : m_lines(input.file(), input.name()), m_csv(m_lines) {}

    void read(RowReceiver& receiver)
    {
        const std::optional<CsvRow> header = nextRow();
        if (!header) {
            throw CommandError(m_lines.name() + ": the first row, which names the columns, is missing");
        }
        findTable(*header);
        receiver.beginTable(*m_pTable);
        std::optional<CsvRow> row = nextRow();
        while (row && receiver.take(sourceRow(*row))) {
            row = nextRow();
        }
    }

private:
    std::optional<CsvRow> nextRow()
    {
        std::optional<CsvRow> row = m_csv.next();
        while (row && row->fields.empty()) {
            row = m_csv.next();
        }
        return row;
    }

    std::string locationOf(const CsvRow& row) const { return m_lines.name() + ":" + std::to_string(row.line); }

    void findTable(const CsvRow& header)
    {
        m_nFields = header.fields.size();
        for (const EventTable& table : eventTables()) {
            if (const std::optional<std::vector<std::size_t>> positions = positionsOf(table, header.fields)) {
                m_pTable = &table;
                m_positions = *positions;
                return;
            }
        }
        throw CommandError(locationOf(header) + ": " + WrongHeader(header.fields).reason());
    }

    SourceRow sourceRow(const CsvRow& csvRow) const
    {
        SourceRow result{m_pTable, {}, locationOf(csvRow), {}};
        requireFieldCount(csvRow);
        const std::vector<sql::Field>& columns = m_pTable->columns();
        for (std::size_t i = 0; i < columns.size(); ++i) {
            if (m_positions[i] == ABSENT) {
                result.row.emplace_back();
                result.needsRowIndex = true;
                continue;
            }
            const std::string& text = csvRow.fields[m_positions[i]];
            result.row.push_back(valueFrom(columns[i], text));
            if (std::holds_alternative<std::monostate>(result.row.back())) {
                result.faults.push_back(unreadableValue(columns[i], inQuotes(text)));
            }
        }
        return result;
    }

    void requireFieldCount(const CsvRow& csvRow) const
    {
        const std::size_t nFields = csvRow.fields.size();
        if (nFields == m_nFields) {
            return;
        }
        throw CommandError(locationOf(csvRow) + ": the row has " + std::to_string(nFields) +
                           ((nFields == 1) ? " field" : " fields") + ", the first row names " +
                           std::to_string(m_nFields) +
                           ((nFields > m_nFields) ? "; put quotes around a field that contains a comma" : ""));
    }

    LineReader m_lines;
    CsvReader m_csv;
    const EventTable* m_pTable = nullptr;
    std::vector<std::size_t> m_positions;  ///< of the table's columns among the fields
    std::size_t m_nFields = 0;
};

std::string csvText(const std::string& text)
{
    std::string quoted = "\"";
    for (const char character : text) {
        quoted += (character == '"') ? "\"\"" : std::string(1, character);
    }
    return quoted + "\"";
}

}  // namespace

void readCsvRows(const SpooledInput& input, RowReceiver& receiver)
{
    CsvRows(input).read(receiver);
}

std::string csvHeader(const EventTable& table)
{
    std::string line;
    for (const sql::Field& field : table.columns()) {
        line += (line.empty() ? "" : ",") + field.name();
    }
    return line;
}

std::string csvRow(const EventTable& table, const sql::Row& row)
{
    std::string line;
    const std::vector<sql::Field>& columns = table.columns();
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const std::string text = valueText(columns[i], row[i]);
        line += (i == 0) ? "" : ",";
        line += (columns[i].type() == sql::field_type::TEXT) ? csvText(text) : text;
    }
    return line;
}

}  // namespace brantel
