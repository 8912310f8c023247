#include "tables/RowSource.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <fstream>
#include <iostream>
#include <iterator>
#include <system_error>

#include <boost/algorithm/string/predicate.hpp>
#include <nlohmann/json.hpp>

#include "common/CommandLine.h"
#include "common/LineReader.h"
#include "samples/CsvReader.h"

using Json = nlohmann::ordered_json;

namespace {

constexpr std::size_t ABSENT = static_cast<std::size_t>(-1);

std::string tableNames()
{
    std::string names;
    for (const EventTable& table : eventTables()) {
        names += (names.empty() ? "" : ", ") + table.name();
    }
    return names;
}

sql::Value numberFrom(const std::string& text)
{
    std::int64_t number = 0;
    const char* const pEnd = text.data() + text.size();
    const std::from_chars_result result = std::from_chars(text.data(), pEnd, number);
    const bool isNumber = (result.ec == std::errc()) && (result.ptr == pEnd);
    return isNumber ? sql::Value(number) : sql::Value();
}

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
        case sql::field_type::INTEGER: return numberFrom(text);
        case sql::field_type::BOOLEAN: return flagFrom(text);
        case sql::field_type::TEXT: break;
    }
    return text;
}

sql::Value valueFrom(const sql::Field& field, const Json& json)
{
    switch (field.type()) {
        case sql::field_type::INTEGER: return json.is_number_integer() ? numberFrom(json.dump()) : sql::Value();
        case sql::field_type::BOOLEAN:
            return json.is_boolean() ? sql::Value(std::int64_t{json.get<bool>()}) : sql::Value();
        case sql::field_type::TEXT: break;
    }
    return json.is_string() ? sql::Value(json.get<std::string>()) : sql::Value();
}

RowFault unreadable(const sql::Field& field, const std::string& text)
{
    switch (field.type()) {
        case sql::field_type::INTEGER: return {field.name(), text + " is no number", {}};
        case sql::field_type::BOOLEAN: return {field.name(), text + " is neither true nor false", {}};
        case sql::field_type::TEXT: break;
    }
    return {field.name(), text + " is no text", {}};
}

// Adds the value of a column, or the fault if there is none.
void addValue(SourceRow& row, const sql::Field& field, const sql::Value& value, const std::string& text)
{
    row.row.push_back(value);
    if (value == sql::Value()) {
        row.faults.push_back(unreadable(field, text));
    }
}

void addRowIndexToComeLater(SourceRow& row)
{
    row.row.emplace_back();
    row.needsRowIndex = true;
}

class CsvRows : public RowSource {
public:
    explicit CsvRows(const std::string& path) : m_lines(path), m_csv(m_lines), m_expectedRows(countRows(path))
    {
        const std::optional<CsvRow> header = nextRow();
        if (!header) {
            throw CommandError(m_lines.name() + ": there is no row with the names of the columns");
        }
        findTable(*header);
    }

    std::optional<SourceRow> next() override
    {
        const std::optional<CsvRow> csvRow = nextRow();
        if (!csvRow) {
            return std::nullopt;
        }
        SourceRow result{m_pTable, {}, m_lines.name() + ":" + std::to_string(csvRow->line), {}};
        if (csvRow->fields.size() != m_nFields) {
            throw CommandError(result.place + ": the row has " + std::to_string(csvRow->fields.size()) +
                               " fields, the first row names " + std::to_string(m_nFields));
        }
        const std::vector<sql::Field>& columns = m_pTable->columns();
        for (std::size_t i = 0; i < columns.size(); ++i) {
            if (m_positions[i] == ABSENT) {
                addRowIndexToComeLater(result);
            } else {
                const std::string& text = csvRow->fields[m_positions[i]];
                addValue(result, columns[i], valueFrom(columns[i], text), "'" + text + "'");
            }
        }
        return result;
    }

    std::vector<const EventTable*> tables() const override { return {m_pTable}; }
    std::optional<std::size_t> expectedRows() const override { return m_expectedRows; }

private:
    // The lines after the first; rows, as every text is one line.
    static std::optional<std::size_t> countRows(const std::string& path)
    {
        std::ifstream file(path, std::ios::binary);
        if ((path == "-") || !file.seekg(0)) {
            return std::nullopt;
        }
        const auto nLineEnds = std::count(std::istreambuf_iterator<char>(file), {}, '\n');
        return static_cast<std::size_t>(std::max<std::ptrdiff_t>(nLineEnds - 1, 0));
    }

    std::optional<CsvRow> nextRow()
    {
        std::optional<CsvRow> row = m_csv.next();
        while (row && row->fields.empty()) {
            row = m_csv.next();
        }
        return row;
    }

    void findTable(const CsvRow& header)
    {
        m_nFields = header.fields.size();
        for (const EventTable& table : eventTables()) {
            if (fits(table, header.fields)) {
                m_pTable = &table;
                return;
            }
        }
        throw CommandError(m_lines.name() + ":" + std::to_string(header.line) +
                           ": the first row does not name the columns of one of the tables " + tableNames());
    }

    // Notes where each column stands.
    bool fits(const EventTable& table, const std::vector<std::string>& names)
    {
        m_positions.clear();
        std::size_t nFound = 0;
        for (const sql::Field& column : table.columns()) {
            const auto found = std::find(names.begin(), names.end(), column.name());
            const bool mayBeAbsent = table.hasRowIndex() && m_positions.empty();
            if (found != names.end()) {
                m_positions.push_back(static_cast<std::size_t>(found - names.begin()));
                ++nFound;
            } else if (mayBeAbsent) {
                m_positions.push_back(ABSENT);
            } else {
                return false;
            }
        }
        return nFound == names.size();
    }

    LineReader m_lines;
    CsvReader m_csv;
    std::optional<std::size_t> m_expectedRows;
    const EventTable* m_pTable = nullptr;
    std::vector<std::size_t> m_positions;  ///< of the table's columns among the fields
    std::size_t m_nFields = 0;
};

class JsonRows : public RowSource {
public:
    explicit JsonRows(const std::string& path) : m_name((path == "-") ? "standard input" : path), m_document(read(path))
    {
        if (!m_document.is_object()) {
            throw CommandError(m_name + ": there is no object with the tables");
        }
        for (const auto& [name, rows] : m_document.items()) {
            const EventTable* const pTable = findEventTable(name);
            if ((pTable == nullptr) || (pTable->name() != name)) {
                throw CommandError(m_name + ": '" + name + "' is not one of the tables " + tableNames());
            }
            if (!rows.is_array()) {
                throw CommandError(m_name + ": " + name + " is no array of rows");
            }
            m_tables.push_back(pTable);
        }
    }

    std::optional<SourceRow> next() override
    {
        while ((m_tableIndex < m_tables.size()) && (m_rowIndex == rowsOf(m_tableIndex).size())) {
            ++m_tableIndex;
            m_rowIndex = 0;
        }
        if (m_tableIndex == m_tables.size()) {
            return std::nullopt;
        }
        const EventTable& table = *m_tables[m_tableIndex];
        const std::string place = m_name + ": " + table.name() + "[" + std::to_string(m_rowIndex) + "]";
        return rowFrom(table, rowsOf(m_tableIndex)[m_rowIndex++], place);
    }

    std::vector<const EventTable*> tables() const override { return m_tables; }

    std::optional<std::size_t> expectedRows() const override
    {
        std::size_t nRows = 0;
        for (std::size_t i = 0; i < m_tables.size(); ++i) {
            nRows += rowsOf(i).size();
        }
        return nRows;
    }

private:
    Json read(const std::string& path) const
    {
        std::ifstream file;
        if (path != "-") {
            file.open(path, std::ios::binary);
            if (!file) {
                throw CommandError("cannot read " + path + ": " + std::generic_category().message(errno));
            }
        }
        try {
            return Json::parse((path == "-") ? std::cin : file, refuseSecondValue());
        } catch (const Json::exception& error) {
            throw CommandError(m_name + ": " + error.what());
        }
    }

    // A name that stands twice in an object would silently count once.
    static Json::parser_callback_t refuseSecondValue()
    {
        return [names = std::vector<std::vector<std::string>>()](int, Json::parse_event_t event, Json& json) mutable {
            if (event == Json::parse_event_t::object_start) {
                names.emplace_back();
            } else if (event == Json::parse_event_t::object_end) {
                names.pop_back();
            } else if (event == Json::parse_event_t::key) {
                const auto name = json.get<std::string>();
                std::vector<std::string>& seen = names.back();
                if (std::find(seen.begin(), seen.end(), name) != seen.end()) {
                    throw CommandError("the name '" + name + "' stands twice in one JSON object");
                }
                seen.push_back(name);
            }
            return true;
        };
    }

    const Json& rowsOf(std::size_t tableIndex) const { return m_document.at(m_tables[tableIndex]->name()); }

    static SourceRow rowFrom(const EventTable& table, const Json& json, const std::string& place)
    {
        if (!json.is_object()) {
            throw CommandError(place + ": the row is no object");
        }
        SourceRow result{&table, {}, place, {}};
        std::size_t nFound = 0;
        for (const sql::Field& column : table.columns()) {
            const auto found = json.find(column.name());
            const bool mayBeAbsent = table.hasRowIndex() && result.row.empty();
            if (found != json.end()) {
                addValue(result, column, valueFrom(column, *found), found->dump());
                ++nFound;
            } else if (mayBeAbsent) {
                addRowIndexToComeLater(result);
            } else {
                throw CommandError(place + ": there is no '" + column.name() + "'");
            }
        }
        if (nFound != json.size()) {
            throw CommandError(place + ": the row has values for columns that " + table.name() + " does not have");
        }
        return result;
    }

    std::string m_name;
    Json m_document;
    std::vector<const EventTable*> m_tables;
    std::size_t m_tableIndex = 0;
    std::size_t m_rowIndex = 0;
};

}  // namespace

TableFormat formatOfFile(const std::string& path)
{
    return boost::iends_with(path, ".json") ? TableFormat::JSON : TableFormat::CSV;
}

std::unique_ptr<RowSource> openRowSource(const std::string& path, TableFormat format)
{
    if (format == TableFormat::JSON) {
        return std::make_unique<JsonRows>(path);
    }
    return std::make_unique<CsvRows>(path);
}
