#include "common/CsvReader.h"

#include <utility>

#include <csv.h>

#include "common/CommandLine.h"

namespace brantel {
namespace {

// A row is one line or, with quotes, several; only LF ends it, and the CR of a CRLF is a blank like others.
int isRowEnd(unsigned char byte)
{
    return byte == CSV_LF;
}

int isBlank(unsigned char byte)
{
    return (byte == CSV_SPACE) || (byte == CSV_TAB) || (byte == CSV_CR);
}

}  // namespace

struct CsvReader::Parser {
    Parser()
    {
        if (csv_init(&csv, CSV_STRICT | CSV_STRICT_FINI | CSV_REPALL_NL) != 0) {
            throw CommandError("cannot start reading CSV");
        }
        csv_set_term_func(&csv, isRowEnd);
        csv_set_space_func(&csv, isBlank);
    }
    ~Parser() { csv_free(&csv); }
    Parser(const Parser&) = delete;
    Parser& operator=(const Parser&) = delete;

    bool feed(const std::string& text)
    {
        return csv_parse(&csv, text.data(), text.size(), appendField, endRow, this) == text.size();
    }
    bool end() { return csv_fini(&csv, appendField, endRow, this) == 0; }

    static void appendField(void* field, std::size_t length, void* parser)
    {
        static_cast<Parser*>(parser)->fields.emplace_back(static_cast<const char*>(field), length);
    }
    static void endRow(int, void* parser) { static_cast<Parser*>(parser)->isRowComplete = true; }

    csv_parser csv{};
    std::vector<std::string> fields;
    bool isRowComplete = false;
};

CsvReader::CsvReader(LineReader& lines) : m_lines(lines), m_pParser(std::make_unique<Parser>()) {}

CsvReader::~CsvReader() = default;

std::optional<CsvRow> CsvReader::next()
{
    m_pParser->fields.clear();
    m_pParser->isRowComplete = false;
    m_rowLine = m_lines.lineNumber() + 1;
    std::size_t length = 0;
    while (!m_pParser->isRowComplete) {
        const std::optional<std::string> line = m_lines.next();
        if (!line) {
            if (!m_lines.wasEnded() && !m_pParser->end()) {
                throwAtRow("the closing quote is missing");
            }
            return std::nullopt;
        }
        length += line->size();
        if (length > LineReader::MAX_LINE_LENGTH) {
            throwAtRow("the row is longer than " + std::to_string(LineReader::MAX_LINE_LENGTH) +
                       " bytes; is a closing quote missing?");
        }
        if (!m_pParser->feed(*line + "\n")) {
            throwAtRow("a quote is misplaced: quote whole fields, and write a quote inside as two");
        }
    }
    return CsvRow{m_rowLine, std::move(m_pParser->fields)};
}

void CsvReader::throwAtRow(const std::string& what) const
{
    throw CommandError(m_lines.name() + ":" + std::to_string(m_rowLine) + ": " + what);
}

}  // namespace brantel
