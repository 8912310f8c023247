#ifndef APPS_TABLES_EVENT_DATABASE_H
#define APPS_TABLES_EVENT_DATABASE_H

// The event-management database on disk: its seven tables, changed by people and watched by monitors.
//
// Every change adds rows to the row-change table in the same transaction. A monitor remembers the largest RowIndex that
// it has seen; rows beyond it say in which table (TableOid, its name) rows of which component or slot (ComponentID)
// changed, and whether that lets events through (EnableEvent is 1: enabled, allowed, no longer ignored) or holds them
// back (0).

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <tuple>

#include "sql/Database.h"
#include "tables/EventTables.h"

/// By which the database is known: "EvMg", and the version of its tables.
constexpr sql::Identity EVENT_DATABASE_IDENTITY{0x45764D67, 1};

class EventDatabase {
public:
    /// Creates a database, or opens the one that is there. Throws sql::Error.
    static EventDatabase create(const std::string& path);

    /// Opens a database whose tables are as defined. Throws sql::Error.
    EventDatabase(const std::string& path, sql::Database::Access access);

    sql::Database& database() { return m_database; }
    sql::Table table(const EventTable& eventTable);

private:
    explicit EventDatabase(sql::Database database) : m_database(std::move(database)) {}

    sql::Database m_database;
};

/// Collects what one transaction changes, and adds it to the row-change table.
class ChangeRecord {
public:
    /// Notes that a row was added, or removed.
    void noteAdded(const EventTable& table, const sql::Row& row) { note(table, row, letsEventsThrough(table, row)); }
    void noteRemoved(const EventTable& table, const sql::Row& row) { note(table, row, !letsEventsThrough(table, row)); }

    /// One row for each component or slot of a table, and direction.
    void write(EventDatabase& database) const;

private:
    static bool letsEventsThrough(const EventTable& table, const sql::Row& row);
    void note(const EventTable& table, const sql::Row& row, bool letsThrough);

    std::set<std::tuple<std::string, std::int64_t, bool>> m_changes;
};

/// What the operations below, each a transaction, found and did.
enum class ChangeResult {
    CHANGED,
    UNCHANGED,  ///< it was so already
    NOT_FOUND   ///< there is nothing to change
};

/// Lets a component raise events, or not. A component that has no row gets one.
ChangeResult enableComponent(EventDatabase& database, std::int64_t componentId, bool isEnabled);

/// The same for the card in a slot; its row gets the type if one is given. NOT_FOUND for a card without a row and type.
ChangeResult enableCard(EventDatabase& database, std::int64_t slot, std::optional<std::int64_t> cardType,
                        bool isEnabled);

/// An entry of an allow or an ignore list.
struct ListEntry {
    std::int64_t owner;  ///< the component, or the slot
    std::string oid;
    std::optional<std::string> rule;  ///< only in allow lists
};

/// Adds an entry, unless there is the same already.
ChangeResult addToList(EventDatabase& database, eventMgmt::AllowIgnoreTableId id, const ListEntry& entry);

/// Removes the entries of an OID, or of an OID with a rule.
ChangeResult removeFromList(EventDatabase& database, eventMgmt::AllowIgnoreTableId id, const ListEntry& entry);

#endif
