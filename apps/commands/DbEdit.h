#ifndef APPS_COMMANDS_DB_EDIT_H
#define APPS_COMMANDS_DB_EDIT_H

// "brantel db init", "db component", "db card", "db allow", "db ignore" and "db prune": make an event-management
// database and change it.

#include <cstdint>
#include <optional>
#include <set>
#include <string>

#include "common/CommandLine.h"
#include "tables/EventDatabase.h"

namespace brantel {

/// Creates the database, or checks an existing one.
ExitCode initDatabase(const std::string& path);

ExitCode setComponentEnabled(const std::string& path, std::uint32_t component, bool isEnabled);

/// EXIT_NEGATIVE_ANSWER for a card whose type is neither known nor given.
ExitCode setCardEnabled(const std::string& path, std::uint32_t slot, std::optional<std::uint32_t> cardType,
                        bool isEnabled);

/// The entries of a list for an object: one for each place, with the same rule.
struct ListOptions {
    std::set<Place> places;
    std::uint32_t oid = 0;
    std::optional<std::string> rule;
};

/// Adds those that are missing. EXIT_NEGATIVE_ANSWER if the rule is refused.
ExitCode addListEntries(const std::string& path, EventTableKind list, const ListOptions& options);

/// Removes all of them. EXIT_NEGATIVE_ANSWER, and nothing is removed, if one is not there.
ExitCode removeListEntries(const std::string& path, EventTableKind list, const ListOptions& options);

/// Removes a component or a card with its entries in the lists. EXIT_NEGATIVE_ANSWER if no row is about it.
ExitCode removePlaceRows(const std::string& path, const Place& place);

/// Removes the rows of the row-change table but the last `nKept`.
ExitCode pruneRowChanges(const std::string& path, std::int64_t nKept);

}  // namespace brantel

#endif
