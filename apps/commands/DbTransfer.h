#ifndef APPS_COMMANDS_DB_TRANSFER_H
#define APPS_COMMANDS_DB_TRANSFER_H

// "brantel db import" and "db export": the rows of an event-management database from and to files. An export that is
// imported into an empty database makes the same tables, value by value; the row-change table is not part of it.

#include <optional>
#include <string>

#include "common/CommandLine.h"
#include "tables/RowFiles.h"

namespace brantel {

struct ImportOptions {
    std::string file;
    std::optional<TableFormat> format;  ///< none: by the name of the file
    bool replaces = false;              ///< empty the tables of the file first
};

/// Imports all rows of a file, or none: if one of them is wrong, prints the reason and returns EXIT_NEGATIVE_ANSWER.
ExitCode importTables(const std::string& path, const ImportOptions& options);

struct ExportOptions {
    std::string table;  ///< required for CSV; empty: all tables
    TableFormat format = TableFormat::JSON;
};

/// Writes one state of the database to standard output.
ExitCode exportTables(const std::string& path, const ExportOptions& options);

}  // namespace brantel

#endif
