#ifndef APPS_COMMANDS_DB_EDIT_H
#define APPS_COMMANDS_DB_EDIT_H

// "brantel db init", "db component", "db card", "db allow" and "db ignore": make an event-management database and
// change it, one row at a time.

#include <cstdint>
#include <optional>
#include <string>

#include "common/CommandLine.h"
#include "tables/EventTables.h"

/// Creates the database, or says that it is there and as it should be.
ExitCode initDatabase(const std::string& path);

ExitCode setComponentEnabled(const std::string& path, std::int64_t componentId, bool isEnabled);

/// EXIT_NEGATIVE_ANSWER for a card whose type is neither known nor given.
ExitCode setCardEnabled(const std::string& path, std::int64_t slot, std::optional<std::int64_t> cardType,
                        bool isEnabled);

/// What a person says of the entries of a list: those of a component, or those of the card in a slot.
struct ListOptions {
    std::optional<std::uint32_t> component;
    std::optional<std::uint32_t> slot;
    std::string oid;
    std::optional<std::string> rule;
};

/// EXIT_NEGATIVE_ANSWER if the rule is refused.
ExitCode addListEntry(const std::string& path, EventTableKind list, const ListOptions& options);

/// EXIT_NEGATIVE_ANSWER if there is no such entry.
ExitCode removeListEntries(const std::string& path, EventTableKind list, const ListOptions& options);

#endif
