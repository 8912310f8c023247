#include "tables/EventDatabase.h"

#include <utility>

using eventMgmt::EvmDatabase;
using sql::ColumnValues;
using sql::Row;

EventDatabase EventDatabase::create(const std::string& path)
{
    return EventDatabase(sql::Database::create(path, EVENT_DATABASE_IDENTITY, eventTableDefinitions()));
}

EventDatabase::EventDatabase(const std::string& path, sql::Database::Access access)
    : m_database(path, EVENT_DATABASE_IDENTITY, access)
{
    for (const EventTable& eventTable : eventTables()) {
        if (const std::optional<std::string> difference = m_database.differenceFrom(eventTable.definition())) {
            throw sql::Error(sql::Problem::DIFFERENT, "'" + path + "': " + *difference);
        }
    }
}

sql::Table EventDatabase::table(const EventTable& eventTable)
{
    return sql::Table(m_database, eventTable.name(), eventTable.definition().definition);
}

bool ChangeRecord::letsEventsThrough(const EventTable& table, const Row& row)
{
    return (table.kind() == EventTableKind::CONFIGURATION) ? (row.back() == sql::Value(1))
                                                           : (table.kind() == EventTableKind::ALLOW);
}

void ChangeRecord::note(const EventTable& table, const Row& row, bool letsThrough)
{
    m_changes.emplace(table.name(), std::get<std::int64_t>(row[table.ownerColumn()]), letsThrough);
}

void ChangeRecord::write(EventDatabase& database) const
{
    sql::Table changes = database.table(rowChangeTable());
    std::int64_t rowIndex = changes.largestKey();
    for (const auto& [tableName, owner, letsThrough] : m_changes) {
        changes.insert({++rowIndex, owner, tableName, std::int64_t{letsThrough}});
    }
}

namespace {

// Sets `row` in place of the one with its key, which `found` holds if there is one.
ChangeResult setConfiguration(EventDatabase& database, const EventTable& eventTable, const std::vector<Row>& found,
                              const Row& row)
{
    if (!found.empty() && (found.front() == row)) {
        return ChangeResult::UNCHANGED;
    }
    sql::Table table = database.table(eventTable);
    table.remove({{table.columns().front().name(), row.front()}});
    table.insert(row);
    ChangeRecord changes;
    changes.noteAdded(eventTable, row);
    changes.write(database);
    return ChangeResult::CHANGED;
}

std::string ownerColumnName(const EventTable& eventTable)
{
    return eventTable.columns()[eventTable.ownerColumn()].name();
}

ColumnValues matching(const EventTable& eventTable, const ListEntry& entry)
{
    ColumnValues where{{ownerColumnName(eventTable), entry.owner}, {EvmDatabase::ALLOW_IGNORE_COLUMN_OID, entry.oid}};
    if (entry.rule) {
        where.push_back({EvmDatabase::ALLOW_IGNORE_COLUMN_RULE, *entry.rule});
    }
    return where;
}

}  // namespace

ChangeResult enableComponent(EventDatabase& database, std::int64_t componentId, bool isEnabled)
{
    sql::Transaction transaction(database.database());
    const EventTable& eventTable = componentConfigTable();
    const std::vector<Row> found =
        database.table(eventTable).select({{EvmDatabase::CMP_CFG_COLUMN_CMP_ID, componentId}});
    const ChangeResult result = setConfiguration(database, eventTable, found, {componentId, std::int64_t{isEnabled}});
    transaction.commit();
    return result;
}

ChangeResult enableCard(EventDatabase& database, std::int64_t slot, std::optional<std::int64_t> cardType,
                        bool isEnabled)
{
    sql::Transaction transaction(database.database());
    const EventTable& eventTable = ifcCardsConfigTable();
    const std::vector<Row> found = database.table(eventTable).select({{EvmDatabase::IFC_CARD_CFG_COLUMN_SLOT, slot}});
    if (found.empty() && !cardType) {
        return ChangeResult::NOT_FOUND;
    }
    const sql::Value type = cardType ? sql::Value(*cardType) : found.front()[1];
    const ChangeResult result = setConfiguration(database, eventTable, found, {slot, type, std::int64_t{isEnabled}});
    transaction.commit();
    return result;
}

ChangeResult addToList(EventDatabase& database, eventMgmt::AllowIgnoreTableId id, const ListEntry& entry)
{
    sql::Transaction transaction(database.database());
    const EventTable& eventTable = allowIgnoreTable(id);
    sql::Table table = database.table(eventTable);
    if (table.count(matching(eventTable, entry)) > 0) {
        return ChangeResult::UNCHANGED;
    }
    Row row{table.largestKey() + 1, entry.owner, entry.oid};
    if (entry.rule) {
        row.emplace_back(*entry.rule);
    }
    table.insert(row);
    ChangeRecord changes;
    changes.noteAdded(eventTable, row);
    changes.write(database);
    transaction.commit();
    return ChangeResult::CHANGED;
}

ChangeResult removeFromList(EventDatabase& database, eventMgmt::AllowIgnoreTableId id, const ListEntry& entry)
{
    sql::Transaction transaction(database.database());
    const EventTable& eventTable = allowIgnoreTable(id);
    sql::Table table = database.table(eventTable);
    const ColumnValues where = matching(eventTable, entry);
    ChangeRecord changes;
    table.forEach(where, [&](const Row& row) { changes.noteRemoved(eventTable, row); });
    if (table.remove(where) == 0) {
        return ChangeResult::NOT_FOUND;
    }
    changes.write(database);
    transaction.commit();
    return ChangeResult::CHANGED;
}
