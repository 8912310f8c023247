#include "tables/EventDatabase.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "tables/RowNumbers.h"

namespace brantel {

using eventMgmt::EvmDatabase;
using sql::ColumnValues;
using sql::Row;

namespace {

void requireTablesAsDefined(const sql::Database& database)
{
    for (const EventTable& eventTable : eventTables()) {
        if (const std::optional<std::string> difference = database.differenceFrom(eventTable.definition())) {
            throw sql::Error(sql::Problem::DIFFERENT, "'" + database.path() + "': " + *difference);
        }
    }
}

// A trigger or index of another program would change or refuse what this one writes: a trigger may empty a list when a
// component is enabled.
void requireNoAttachments(const sql::Database& database)
{
    const std::vector<std::string> attachments =
        database.findAttachments(eventMgmt::tableDefinitions<sql::TableDefinition>());
    if (!attachments.empty()) {
        throw sql::Error(sql::Problem::DIFFERENT, "'" + database.path() + "': " + attachments.front() +
                                                      "; remove it first ('brantel db check' lists all)");
    }
}

}  // namespace

sql::Database openEventDatabase(const std::string& path, sql::Database::Access access)
{
    try {
        return sql::Database(path, EVENT_DATABASE_IDENTITY, access);
    } catch (const sql::Error& error) {
        if ((error.problem() == sql::Problem::NOT_FOUND) || (error.problem() == sql::Problem::EMPTY)) {
            throw sql::Error(error.problem(), std::string(error.what()) + "; 'brantel db init' creates a database");
        }
        throw;
    }
}

EventDatabase EventDatabase::create(const std::string& path)
{
    return EventDatabase(
        sql::Database::create(path, EVENT_DATABASE_IDENTITY, eventMgmt::tableDefinitions<sql::TableDefinition>()));
}

EventDatabase::EventDatabase(const std::string& path, sql::Database::Access access)
    : m_database(openEventDatabase(path, access))
{
    requireTablesAsDefined(m_database);
    if (access == sql::Database::Access::WRITE) {
        requireNoAttachments(m_database);
    }
}

sql::Table EventDatabase::table(const EventTable& eventTable)
{
    return sql::Table(m_database, eventTable.definition());
}

void ChangeRecord::noteAdded(const EventTable& table, const Row& row)
{
    const bool isConfiguration = table.kind() == EventTableKind::CONFIGURATION;
    note(table, row, isConfiguration ? (row.back() == sql::Value(1)) : (table.kind() == EventTableKind::ALLOW));
}

void ChangeRecord::noteRemoved(const EventTable& table, const Row& row)
{
    note(table, row, table.kind() == EventTableKind::IGNORE);
}

void ChangeRecord::note(const EventTable& table, const Row& row, bool letsThrough)
{
    if (const auto* const pNumber = std::get_if<std::int64_t>(&row[table.placeColumn()])) {
        m_changes.emplace(table.name(), *pNumber, letsThrough);
    }
}

void ChangeRecord::write(EventDatabase& database) const
{
    sql::Table changes = database.table(rowChangeTable());
    std::int64_t rowIndex = changes.largestKey();
    // A monitor looks for larger numbers only and would not notice a smaller one.
    if (rowIndex > MAX_NUMBER - static_cast<std::int64_t>(m_changes.size())) {
        throw sql::Error(sql::Problem::OTHER,
                         "'" + database.database().path() + "': " + rowChangeTable().name() +
                             " has a row with RowIndex " + std::to_string(rowIndex) +
                             ": no larger number is left for the next change; remove that row by hand "
                             "and restart the monitors");
    }
    for (const auto& [tableName, number, letsThrough] : m_changes) {
        changes.insert({++rowIndex, number, tableName, letsThrough});
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

// Selects the rows of a place, the entries of an object there, or the entry with the rule.
ColumnValues whereOf(const EventTable& eventTable, const Place& place)
{
    return {{eventTable.placeColumnName(), place.number}};
}

ColumnValues whereOf(const EventTable& list, const ListEntry& entry)
{
    ColumnValues where = whereOf(list, entry.place);
    where.push_back({EvmDatabase::ALLOW_IGNORE_COLUMN_OID, std::to_string(entry.oid)});
    if (entry.rule) {
        where.push_back({EvmDatabase::ALLOW_IGNORE_COLUMN_RULE, *entry.rule});
    }
    return where;
}

std::int64_t removeRows(EventDatabase& database, const EventTable& eventTable, const ColumnValues& where,
                        ChangeRecord& changes)
{
    sql::Table table = database.table(eventTable);
    table.forEach(where, [&](const Row& row) { changes.noteRemoved(eventTable, row); });
    return table.remove(where);
}

}  // namespace

ChangeResult enableComponent(EventDatabase& database, std::uint32_t component, bool isEnabled)
{
    sql::Transaction transaction(database.database());
    const EventTable& eventTable = tableFor(EventTableKind::CONFIGURATION, Place::Kind::COMPONENT);
    const std::vector<Row> found = database.table(eventTable).select(whereOf(eventTable, componentPlace(component)));
    const Row row{component, isEnabled};
    const ChangeResult result = setConfiguration(database, eventTable, found, row);
    transaction.commit();
    return result;
}

CardChange enableCard(EventDatabase& database, std::uint32_t slot, std::optional<std::uint32_t> cardType,
                      bool isEnabled)
{
    sql::Transaction transaction(database.database());
    const EventTable& eventTable = tableFor(EventTableKind::CONFIGURATION, Place::Kind::SLOT);
    const std::vector<Row> found = database.table(eventTable).select(whereOf(eventTable, slotPlace(slot)));
    if (found.empty() && !cardType) {
        return {ChangeResult::NOT_FOUND, std::nullopt};
    }
    const sql::Value type = cardType ? sql::Value(*cardType) : found.front()[1];
    const Row row{slot, type, isEnabled};
    CardChange change{setConfiguration(database, eventTable, found, row), std::nullopt};
    change.isSwitched = found.empty() || (found.front().back() != row.back());
    if (!found.empty() && (found.front()[1] != type)) {
        change.oldType = valueText(eventTable.columns()[1], found.front()[1]);
    }
    transaction.commit();
    return change;
}

bool isInList(EventDatabase& database, EventTableKind list, const ListEntry& entry)
{
    const EventTable& eventTable = tableFor(list, entry.place.kind);
    return database.table(eventTable).count(whereOf(eventTable, entry)) > 0;
}

std::vector<ChangeResult> addToList(EventDatabase& database, EventTableKind list, const std::vector<ListEntry>& entries)
{
    sql::Transaction transaction(database.database());
    std::vector<ChangeResult> results;
    ChangeRecord changes;
    for (const ListEntry& entry : entries) {
        if (isInList(database, list, entry)) {
            results.push_back(ChangeResult::UNCHANGED);
            continue;
        }
        const EventTable& eventTable = tableFor(list, entry.place.kind);
        sql::Table table = database.table(eventTable);
        Row row{RowNumbers(eventTable, table).next(), entry.place.number, std::to_string(entry.oid)};
        if (entry.rule) {
            row.emplace_back(*entry.rule);
        }
        table.insert(row);
        changes.noteAdded(eventTable, row);
        results.push_back(ChangeResult::CHANGED);
    }
    changes.write(database);
    transaction.commit();
    return results;
}

std::vector<ChangeResult> removeFromList(EventDatabase& database, EventTableKind list,
                                         const std::vector<ListEntry>& entries)
{
    sql::Transaction transaction(database.database());
    std::vector<ChangeResult> results;
    ChangeRecord changes;
    for (const ListEntry& entry : entries) {
        const EventTable& eventTable = tableFor(list, entry.place.kind);
        const std::int64_t nRemoved = removeRows(database, eventTable, whereOf(eventTable, entry), changes);
        results.push_back((nRemoved == 0) ? ChangeResult::NOT_FOUND : ChangeResult::CHANGED);
    }
    if (std::count(results.begin(), results.end(), ChangeResult::NOT_FOUND) > 0) {
        std::replace(results.begin(), results.end(), ChangeResult::CHANGED, ChangeResult::UNCHANGED);
        return results;  // the transaction is undone
    }
    changes.write(database);
    transaction.commit();
    return results;
}

std::int64_t removePlace(EventDatabase& database, const Place& place)
{
    sql::Transaction transaction(database.database());
    ChangeRecord changes;
    std::int64_t nRemoved = 0;
    for (const EventTable& eventTable : eventTables()) {
        if (eventTable.placeKind() == place.kind) {
            nRemoved += removeRows(database, eventTable, whereOf(eventTable, place), changes);
        }
    }
    changes.write(database);
    transaction.commit();
    return nRemoved;
}

std::int64_t pruneChanges(EventDatabase& database, std::int64_t nKept)
{
    sql::Transaction transaction(database.database());
    sql::Table changes = database.table(rowChangeTable());
    const std::int64_t nRemoved =
        changes.removeRange(std::numeric_limits<std::int64_t>::min(), changes.largestKey() - nKept);
    transaction.commit();
    return nRemoved;
}

}  // namespace brantel
