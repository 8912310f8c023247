#ifndef APPS_TABLES_DATABASE_CHECK_H
#define APPS_TABLES_DATABASE_CHECK_H

// Looks for everything in an event-management database that a component would stumble over: damage, tables that are not
// as defined, wrong values, rules that are refused or never evaluated, entries that stand twice, and entries of an
// ignore list that make those of the allow list pointless.

#include <functional>
#include <optional>
#include <string>

#include "sql/Database.h"
#include "tables/EventTables.h"

struct Finding {
    std::string table;                ///< empty if it is about the whole file
    std::optional<std::int64_t> row;  ///< its key
    std::string text;                 ///< what is wrong
    std::string rule;                 ///< the text that ruleFault is in
    std::optional<RuleFault> ruleFault;
};

/// Calls `tell` with each finding. All of it is about one state of the database. Throws sql::Error.
void checkDatabase(sql::Database& database, const std::function<void(const Finding&)>& tell);

#endif
