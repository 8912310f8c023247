#ifndef APPS_TABLES_EVENT_DATABASE_H
#define APPS_TABLES_EVENT_DATABASE_H

// The event-management database on disk: its seven tables, changed by people and watched by monitors.
//
// Every change adds rows to the row-change table in the same transaction. A monitor remembers the largest RowIndex that
// it has seen; rows beyond it name the table that changed (TableOid) and the component or slot whose rows changed
// (ComponentID), and show whether the change lets events through (EnableEvent is 1: enabled, allowed, no longer
// ignored) or holds them back (0).

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <tuple>

#include "EvmDatabase.h"
#include "sql/Database.h"
#include "tables/EventTables.h"

namespace brantel {

constexpr sql::Identity EVENT_DATABASE_IDENTITY{eventMgmt::DATABASE_APPLICATION_ID, eventMgmt::DATABASE_SCHEMA_VERSION};

/// Opens a database without a look at its tables. Throws sql::Error with a remedy.
sql::Database openEventDatabase(const std::string& path, sql::Database::Access access);

class EventDatabase {
public:
    /// Creates a database, or opens an existing one. Throws sql::Error.
    static EventDatabase create(const std::string& path);

    /// Opens a database whose tables are as defined and, for writing, without triggers and indexes of other programs.
    /// Throws sql::Error.
    EventDatabase(const std::string& path, sql::Database::Access access);

    sql::Database& database() { return m_database; }
    sql::Table table(const EventTable& eventTable);

private:
    explicit EventDatabase(sql::Database database) : m_database(std::move(database)) {}

    sql::Database m_database;
};

/// Collects the changes of one transaction and adds them to the row-change table.
class ChangeRecord {
public:
    /// Notes that a row was added, or removed.
    void noteAdded(const EventTable& table, const sql::Row& row);
    void noteRemoved(const EventTable& table, const sql::Row& row);

    /// One row for each component or slot of a table, and direction. Throws sql::Error if they cannot be numbered.
    void write(EventDatabase& database) const;

private:
    void note(const EventTable& table, const sql::Row& row, bool letsThrough);

    std::set<std::tuple<std::string, std::int64_t, bool>> m_changes;
};

/// The results of the operations below, each a transaction.
enum class ChangeResult {
    CHANGED,
    UNCHANGED,  ///< as it was before
    NOT_FOUND   ///< there is nothing to change
};

/// Allows or forbids a component to raise events. A component without a row gets one.
ChangeResult enableComponent(EventDatabase& database, std::uint32_t component, bool isEnabled);

/// The result for the row of a card.
struct CardChange {
    ChangeResult result = ChangeResult::UNCHANGED;
    std::optional<std::string> oldType;  ///< if the type changed
    bool isSwitched = false;             ///< it is new, or was enabled or disabled
};

/// The same for the card in a slot, whose row gets the type, if given. NOT_FOUND for a card without a row and a type.
CardChange enableCard(EventDatabase& database, std::uint32_t slot, std::optional<std::uint32_t> cardType,
                      bool isEnabled);

/// An entry of an allow or an ignore list.
struct ListEntry {
    Place place{};
    std::uint32_t oid = 0;
    std::optional<std::string> rule;  ///< only in allow lists
};

/// Whether the list has an entry with the object or, with a rule, one with both.
bool isInList(EventDatabase& database, EventTableKind list, const ListEntry& entry);

/// Adds the entries that are missing. Returns the result of each.
std::vector<ChangeResult> addToList(EventDatabase& database, EventTableKind list,
                                    const std::vector<ListEntry>& entries);

/// Removes all entries with the object or, with a rule, those with both. If one is NOT_FOUND, the others stay,
/// UNCHANGED.
std::vector<ChangeResult> removeFromList(EventDatabase& database, EventTableKind list,
                                         const std::vector<ListEntry>& entries);

/// Removes a component or a card from the configuration and from both of its lists. Returns the number of rows removed.
std::int64_t removePlace(EventDatabase& database, const Place& place);

/// Removes all rows of the row-change table but those with the last `nKept` numbers, at least one. Returns the number
/// of rows removed.
std::int64_t pruneChanges(EventDatabase& database, std::int64_t nKept);

}  // namespace brantel

#endif
