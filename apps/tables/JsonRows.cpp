#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <set>
#include <variant>

#include <nlohmann/json.hpp>

#include "common/CommandLine.h"
#include "common/JsonLine.h"
#include "common/LineReader.h"
#include "common/PrintableText.h"
#include "tables/RowFiles.h"

namespace brantel {

namespace {

using Json = nlohmann::ordered_json;

// The line and column of a byte, both from 1; a column is a character.
struct TextPosition {
    std::size_t line = 1;
    std::size_t column = 0;
};

// The bytes of the input for the parser, which keeps each text and number as a whole, so none may be too long. Knows
// where the last value begins.
class JsonBytes {
public:
    explicit JsonBytes(const SpooledInput& input) : m_input(input) {}

    bool isAtEnd()
    {
        if (m_pNext == m_pEnd) {
            m_pNext = m_buffer.data();
            m_pEnd = m_pNext + m_input.read(m_buffer.data(), m_buffer.size());
        }
        return m_pNext == m_pEnd;
    }

    const char& peek() const { return *m_pNext; }

    void advance()
    {
        const char byte = *m_pNext++;
        note(byte);
        if (byte == '\0') {
            throw CommandError(at(m_position) + "there is a NUL byte");
        }
        if (++m_nBytes - m_nBytesBeforeToken > LineReader::MAX_LINE_LENGTH) {
            throw CommandError(at(m_tokenPosition) + "a text, a number or a gap is longer than " +
                               std::to_string(LineReader::MAX_LINE_LENGTH) + " bytes");
        }
    }

    /// "rules.json:4:3: ", where the last value begins.
    std::string atValue() const { return at(m_tokenPosition); }

    /// The same, where the next byte is.
    std::string atEnd() const { return at(m_position); }

    /// "rules.json:4:3".
    std::string valueLocation() const { return locationText(m_tokenPosition); }

private:
    // What the next byte is part of.
    enum class State { BETWEEN, IN_WORD, IN_TEXT, AFTER_BACKSLASH };

    void note(char byte)
    {
        if (m_isLineEnd) {
            ++m_position.line;
            m_position.column = 0;
        }
        m_isLineEnd = (byte == '\n');
        constexpr unsigned int LEAD_BITS = 0xC0;
        constexpr unsigned int CONTINUATION = 0x80;
        if ((static_cast<unsigned char>(byte) & LEAD_BITS) != CONTINUATION) {
            ++m_position.column;
        }
        follow(byte);
    }

    void follow(char byte)
    {
        if (m_state == State::AFTER_BACKSLASH) {
            m_state = State::IN_TEXT;
        } else if (m_state == State::IN_TEXT) {
            m_state = (byte == '"') ? State::BETWEEN : (byte == '\\') ? State::AFTER_BACKSLASH : State::IN_TEXT;
        } else if (isBlank(byte)) {
            m_state = State::BETWEEN;
        } else if (isStructure(byte)) {
            // The parser reads one byte beyond a number before it hands the number over.
            if (m_state == State::BETWEEN) {
                beginToken();
            }
            m_state = State::BETWEEN;
        } else if (m_state == State::BETWEEN) {
            beginToken();
            m_state = (byte == '"') ? State::IN_TEXT : State::IN_WORD;
        }
    }

    static bool isBlank(char byte) { return (byte == ' ') || (byte == '\t') || (byte == '\r') || (byte == '\n'); }

    static bool isStructure(char byte)
    {
        return (byte == '{') || (byte == '}') || (byte == '[') || (byte == ']') || (byte == ',') || (byte == ':');
    }

    void beginToken()
    {
        m_tokenPosition = m_position;
        m_nBytesBeforeToken = m_nBytes;
    }

    std::string locationText(const TextPosition& position) const
    {
        return m_input.name() + ":" + std::to_string(position.line) + ":" +
               std::to_string(std::max<std::size_t>(position.column, 1));
    }

    std::string at(const TextPosition& position) const { return locationText(position) + ": "; }

    const SpooledInput& m_input;
    std::array<char, 65536> m_buffer{};
    const char* m_pNext = nullptr;
    const char* m_pEnd = nullptr;
    std::size_t m_nBytes = 0;
    std::size_t m_nBytesBeforeToken = 0;
    TextPosition m_position;
    TextPosition m_tokenPosition;
    bool m_isLineEnd = false;
    State m_state = State::BETWEEN;
};

// The same as a pair of iterators, as the parser takes them.
class ByteIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    ByteIterator() = default;
    explicit ByteIterator(JsonBytes& bytes) : m_pBytes(&bytes) {}

    reference operator*() const { return m_pBytes->peek(); }
    ByteIterator& operator++()
    {
        m_pBytes->advance();
        return *this;
    }
    bool operator!=(const ByteIterator& /*end*/) const { return !m_pBytes->isAtEnd(); }

private:
    JsonBytes* m_pBytes = nullptr;
};

// "unexpected '}'; expected string literal" out of the parser's "[...] parse error at line 1, column 2: syntax error
// while parsing object key - unexpected ...".
std::string plainReason(std::string reason)
{
    for (const std::string beforeReason : {"] ", ": ", " - "}) {
        const std::size_t pos = reason.find(beforeReason);
        if (pos != std::string::npos) {
            reason.erase(0, pos + beforeReason.size());
        }
    }
    const std::size_t begin = reason.find("; last read: '");
    if (begin != std::string::npos) {
        const std::size_t expectation = reason.rfind("'; expected ");
        reason.erase(begin, (expectation == std::string::npos) ? expectation : expectation + 1 - begin);
    }
    return reason;
}

// Makes rows of what the parser finds. Keeps nothing but the row that is being read; nothing is nested deeper than the
// values of a row.
class RowBuilder : public nlohmann::json_sax<Json> {
public:
    RowBuilder(JsonBytes& bytes, RowReceiver& receiver) : m_bytes(bytes), m_receiver(receiver) {}

    bool null() override { return take({}, "null"); }

    bool boolean(bool value) override
    {
        const bool fits = isInRow() && (column().type() == sql::field_type::BOOLEAN);
        return take(fits ? sql::Value(value) : sql::Value(), value ? "true" : "false");
    }

    bool number_integer(number_integer_t value) override
    {
        const bool fits = isInRow() && (column().type() == sql::field_type::INTEGER);
        return take(fits ? sql::Value(value) : sql::Value(), std::to_string(value));
    }

    bool number_unsigned(number_unsigned_t value) override
    {
        constexpr auto MAX = static_cast<number_unsigned_t>(std::numeric_limits<std::int64_t>::max());
        if (value <= MAX) {
            return number_integer(static_cast<std::int64_t>(value));
        }
        return take({}, std::to_string(value));
    }

    bool number_float(number_float_t /*value*/, const string_t& text) override { return take({}, inQuotes(text)); }

    bool string(string_t& text) override
    {
        if (isInRow() && (column().type() == sql::field_type::TEXT)) {
            return take(std::move(text), "");
        }
        return take({}, inQuotes(text));
    }

    bool binary(binary_t& /*value*/) override { return false; }  // not in JSON

    bool start_object(std::size_t /*size*/) override
    {
        switch (m_level) {
            case Level::DOCUMENT: m_level = Level::TABLES; return true;
            case Level::ROWS: beginRow(); return true;
            case Level::TABLES:
            case Level::VALUES: break;
        }
        refuse();
    }

    bool start_array(std::size_t /*size*/) override
    {
        if (m_level != Level::TABLES) {
            refuse();
        }
        m_level = Level::ROWS;
        m_receiver.beginTable(*m_pTable);
        return true;
    }

    bool key(string_t& name) override
    {
        if (m_level == Level::TABLES) {
            findTable(name);
        } else {
            findColumn(name);
        }
        return true;
    }

    bool end_object() override
    {
        if (m_level == Level::VALUES) {
            m_level = Level::ROWS;
            return endRow();
        }
        return true;
    }

    bool end_array() override
    {
        m_level = Level::TABLES;
        return true;
    }

    bool parse_error(std::size_t /*position*/, const std::string& /*lastToken*/,
                     const nlohmann::detail::exception& error) override
    {
        throw CommandError(m_bytes.atEnd() + "this is not JSON: " + plainReason(error.what()));
    }

private:
    // What the next value is part of: the file, the outermost object, a table's array, a row.
    enum class Level { DOCUMENT, TABLES, ROWS, VALUES };

    bool isInRow() const { return m_level == Level::VALUES; }

    const sql::Field& column() const { return m_pTable->columns()[m_column]; }

    // Refuses a value that cannot be where it is, whatever its type.
    [[noreturn]] void refuse() const
    {
        switch (m_level) {
            case Level::DOCUMENT: throw CommandError(m_bytes.atValue() + "this is not an object with the tables");
            case Level::TABLES: throw CommandError(m_bytes.atValue() + m_pTable->name() + " is not an array of rows");
            case Level::ROWS:
                throw CommandError(m_bytes.atValue() + "a row of " + m_pTable->name() + " is an object, not this");
            case Level::VALUES: break;
        }
        throw CommandError(m_bytes.atValue() +
                           unreadableValue(column(), column().name() + ": an array or object").reason);
    }

    void findTable(const std::string& name)
    {
        m_pTable = findEventTable(name);
        if ((m_pTable == nullptr) || (m_pTable->name() != name)) {
            throw CommandError(m_bytes.atValue() + inQuotes(name) + " is not one of the tables " +
                               importableTableNames());
        }
        if (!m_tables.insert(m_pTable).second) {
            throw CommandError(m_bytes.atValue() + "the table " + name + " is a duplicate");
        }
    }

    void findColumn(const std::string& name)
    {
        const std::vector<sql::Field>& columns = m_pTable->columns();
        const auto found = std::find_if(columns.begin(), columns.end(),
                                        [&](const sql::Field& column) { return column.name() == name; });
        if (found == columns.end()) {
            throw CommandError(m_bytes.atValue() + m_pTable->name() + " does not have a column " + inQuotes(name));
        }
        m_column = static_cast<std::size_t>(found - columns.begin());
        if (m_isSet[m_column]) {
            throw CommandError(m_bytes.atValue() + "the row has two values for " + name);
        }
        m_isSet[m_column] = true;
    }

    // Takes the value of a column, or the fault if there is none.
    bool take(sql::Value value, const std::string& shownText)
    {
        if (!isInRow()) {
            refuse();
        }
        if (std::holds_alternative<std::monostate>(value)) {
            m_row.faults.push_back(unreadableValue(column(), shownText));
        }
        m_row.row[m_column] = std::move(value);
        return true;
    }

    void beginRow()
    {
        m_level = Level::VALUES;
        const std::size_t nColumns = m_pTable->columns().size();
        m_row = SourceRow{m_pTable, {}, m_bytes.valueLocation(), {}};
        m_row.row.resize(nColumns);
        m_isSet.assign(nColumns, false);
    }

    bool endRow()
    {
        for (std::size_t i = 0; i < m_isSet.size(); ++i) {
            const bool mayBeAbsent = m_pTable->hasRowIndex() && (i == 0);
            if (!m_isSet[i] && !mayBeAbsent) {
                throw CommandError(m_row.location + ": the row has no value for " + m_pTable->columns()[i].name());
            }
        }
        m_row.needsRowIndex = !m_isSet.front();
        return m_receiver.take(std::move(m_row));
    }

    JsonBytes& m_bytes;
    RowReceiver& m_receiver;
    Level m_level = Level::DOCUMENT;
    std::set<const EventTable*> m_tables;
    const EventTable* m_pTable = nullptr;
    SourceRow m_row{};
    std::vector<bool> m_isSet;  ///< which columns the row has had
    std::size_t m_column = 0;
};

Json jsonValue(const sql::Field& field, const sql::Value& value)
{
    if (const auto* const pText = std::get_if<std::string>(&value)) {
        return *pText;
    }
    if (const auto* const pNumber = std::get_if<std::int64_t>(&value)) {
        const bool isFlag = (field.type() == sql::field_type::BOOLEAN) && ((*pNumber == 0) || (*pNumber == 1));
        return isFlag ? Json(*pNumber == 1) : Json(*pNumber);
    }
    if (const auto* const pOther = std::get_if<sql::OtherValue>(&value)) {
        return pOther->text;
    }
    return nullptr;
}

}  // namespace

void readJsonRows(const SpooledInput& input, RowReceiver& receiver)
{
    JsonBytes bytes(input);
    RowBuilder builder(bytes, receiver);
    Json::sax_parse(ByteIterator(bytes), ByteIterator(), &builder);
}

std::string jsonRow(const EventTable& table, const sql::Row& row)
{
    Json json = Json::object();
    const std::vector<sql::Field>& columns = table.columns();
    for (std::size_t i = 0; i < columns.size(); ++i) {
        json[columns[i].name()] = jsonValue(columns[i], row[i]);
    }
    return jsonLine(json);
}

void writeJsonTable(const EventTable& table, const RowVisitor& visitRows, const std::string& end, const LineSink& sink)
{
    std::string line = jsonLine(table.name()) + ": [";
    const char* separator = "";
    visitRows([&](const sql::Row& row) {
        sink(line + separator);
        line = "  " + jsonRow(table, row);
        separator = ",";
    });
    sink(line);
    sink("]" + end);
}

}  // namespace brantel
