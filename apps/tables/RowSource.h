#ifndef APPS_TABLES_ROW_SOURCE_H
#define APPS_TABLES_ROW_SOURCE_H

// Rows of the event-management tables from a file.
//
//     CSV   one table; the first row names its columns, in any order, and so tells which table it is
//     JSON  an object with an array of rows under each table's name, a row being an object with a value per column
//
// Numbers are decimal, flags "true" and "false" (in CSV also 1 and 0). A row without a RowIndex gets the next free one.

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tables/EventTables.h"

enum class TableFormat { CSV, JSON };

/// The format of a file by the end of its name; CSV unless it is ".json".
TableFormat formatOfFile(const std::string& path);

/// A row as the file has it.
struct SourceRow {
    const EventTable* pTable;
    sql::Row row;       ///< a value that could not be read is null
    std::string place;  ///< "rules.csv:17", or "rules.json: SysCardAllowEventsTable[3]"

    /// What could not be read; the other faults of the row are to be found by faultsOfRow.
    std::vector<RowFault> faults;

    /// The RowIndex is null: it is to be filled in.
    bool needsRowIndex = false;
};

class RowSource {
public:
    virtual ~RowSource() = default;

    /// The next row; nothing after the last one. Throws CommandError for what is not a row at all.
    virtual std::optional<SourceRow> next() = 0;

    /// The tables that the file is about, also those without rows.
    virtual std::vector<const EventTable*> tables() const = 0;

    /// How many rows there are, if that is known beforehand.
    virtual std::optional<std::size_t> expectedRows() const = 0;
};

/// Opens `path`; "-" is standard input. Throws CommandError.
std::unique_ptr<RowSource> openRowSource(const std::string& path, TableFormat format);

#endif
