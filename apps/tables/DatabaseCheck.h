#ifndef APPS_TABLES_DATABASE_CHECK_H
#define APPS_TABLES_DATABASE_CHECK_H

// Looks for everything in an event-management database that a component would stumble over: damage, tables that differ
// from their definitions, triggers and indexes of other programs, wrong values, rules that are refused or never
// evaluated, duplicates, and entries of an allow list that an ignore list makes pointless.

#include <functional>
#include <optional>
#include <string>

#include "sql/Database.h"
#include "tables/EventTables.h"

namespace brantel {

struct Finding {
    std::string table;                ///< empty: the whole file
    std::optional<std::int64_t> row;  ///< its key
    std::string reason;               ///< what is wrong
    std::string rule;                 ///< that ruleFault is about
    std::optional<RuleFault> ruleFault;
};

/// Calls `report` with each finding. All findings are about one state of the database. Throws sql::Error.
void checkDatabase(sql::Database& database, const std::function<void(const Finding&)>& report);

}  // namespace brantel

#endif
