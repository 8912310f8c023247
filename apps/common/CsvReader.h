#ifndef APPS_COMMON_CSV_READER_H
#define APPS_COMMON_CSV_READER_H

// Rows of comma-separated values, each as soon as its last line is complete. Fields may be quoted with ", also over
// several lines; blanks around a field do not count.

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "common/LineReader.h"

namespace brantel {

struct CsvRow {
    std::size_t line;                 ///< on which the row starts
    std::vector<std::string> fields;  ///< none for an empty line
};

class CsvReader {
public:
    /// Reads from `lines`, which must outlive the reader.
    explicit CsvReader(LineReader& lines);
    ~CsvReader();
    CsvReader(const CsvReader&) = delete;
    CsvReader& operator=(const CsvReader&) = delete;

    /// The next row; nothing after the last one. Throws CommandError for misplaced or missing quotes, for a row that is
    /// too long and for what LineReader throws.
    std::optional<CsvRow> next();

private:
    struct Parser;

    [[noreturn]] void throwAtRow(const std::string& what) const;

    LineReader& m_lines;
    std::unique_ptr<Parser> m_pParser;
    std::size_t m_rowLine = 0;
};

}  // namespace brantel

#endif
