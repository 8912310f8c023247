#ifndef APPS_COMMANDS_DB_SHOW_H
#define APPS_COMMANDS_DB_SHOW_H

// "brantel db show", "db allow list", "db ignore list" and "db check": what is in an event-management database, and
// what is wrong with it.

#include <cstdint>
#include <optional>
#include <set>
#include <string>

#include "common/CommandLine.h"
#include "tables/EventTables.h"

namespace brantel {

/// The rows of a table, or the number of rows of each table if `tableName` is empty.
ExitCode showTables(const std::string& path, const std::string& tableName, bool isJson);

/// Which entries of a list are wanted.
struct ListFilter {
    std::set<Place> places;            ///< of one kind; empty: all
    std::optional<std::uint32_t> oid;  ///< none: all
};

/// The entries for the components of the system card, and those for the interface cards.
ExitCode showList(const std::string& path, EventTableKind list, const ListFilter& filter, bool isJson);

/// EXIT_NEGATIVE_ANSWER if something is wrong.
ExitCode showFindings(const std::string& path, bool isJson);

}  // namespace brantel

#endif
