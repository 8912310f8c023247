#ifndef APPS_COMMANDS_DB_TRANSFER_H
#define APPS_COMMANDS_DB_TRANSFER_H

// "brantel db import" and "db export": the rows of an event-management database from and to files. What was exported
// and is imported into an empty database makes the same tables again, value by value; the row-change table is not part
// of it.

#include <optional>
#include <string>

#include "common/CommandLine.h"
#include "tables/RowSource.h"

struct ImportOptions {
    std::string file;
    std::optional<TableFormat> format;  ///< by the name of the file if not set
    bool replaces = false;              ///< the tables that the file is about are emptied before
};

/// Imports all rows of a file, or none: EXIT_NEGATIVE_ANSWER, after telling why, if one of them is wrong.
ExitCode importTables(const std::string& path, const ImportOptions& options);

struct ExportOptions {
    std::string table;  ///< needed for CSV; all tables if empty
    TableFormat format = TableFormat::JSON;
};

/// Writes one state of the database to standard output.
ExitCode exportTables(const std::string& path, const ExportOptions& options);

#endif
