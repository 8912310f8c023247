#ifndef APPS_COMMANDS_DB_SHOW_H
#define APPS_COMMANDS_DB_SHOW_H

// "brantel db show", "db allow list", "db ignore list" and "db check": what is in an event-management database, and
// what is wrong with it.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "common/CommandLine.h"
#include "tables/EventTables.h"

/// The rows of a table, or the number of rows of each table if `tableName` is empty.
ExitCode showTables(const std::string& path, const std::string& tableName, bool isJson);

/// Which entries of a list are wanted; all if nothing is set.
struct ListFilter {
    std::optional<std::uint32_t> component;
    std::optional<std::uint32_t> slot;
    std::string oid;
};

/// The entries of the list of the system card's components, and of that of the interface cards.
ExitCode showList(const std::string& path, EventTableKind list, const ListFilter& filter, bool isJson);

/// EXIT_NEGATIVE_ANSWER if something is wrong.
ExitCode showFindings(const std::string& path, bool isJson);

#endif
