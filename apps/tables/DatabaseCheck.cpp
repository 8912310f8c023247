#include "tables/DatabaseCheck.h"

#include <vector>

#include "EvmDatabase.h"

namespace brantel {
namespace {

using Report = std::function<void(const Finding&)>;

std::int64_t keyOf(const sql::Row& row)
{
    const auto* const pKey = std::get_if<std::int64_t>(&row.front());
    return (pKey != nullptr) ? *pKey : 0;
}

void checkValues(const EventTable& eventTable, const sql::Row& row, const Report& report)
{
    for (const RowFault& fault : faultsOfRow(eventTable, row)) {
        const std::string rule = fault.ruleFault ? std::get<std::string>(row.back()) : "";
        report({eventTable.name(), keyOf(row), fault.column + ": " + fault.reason, rule, fault.ruleFault});
    }
}

sql::Table tableOf(sql::Database& database, const EventTable& eventTable)
{
    return sql::Table(database, eventTable.definition());
}

// Two entries of a list must differ in more than the RowIndex.
void checkRepeats(sql::Database& database, const EventTable& eventTable, const Report& report)
{
    tableOf(database, eventTable)
        .forEachRepeated(entryColumns(eventTable), [&](std::int64_t row, std::int64_t firstRow) {
            report({eventTable.name(), row, "is a duplicate of row " + std::to_string(firstRow), "", {}});
        });
}

void checkRows(sql::Database& database, const EventTable& eventTable, const Report& report)
{
    tableOf(database, eventTable).forEach({}, [&](const sql::Row& row) { checkValues(eventTable, row, report); });
    if (eventTable.isList()) {
        checkRepeats(database, eventTable, report);
    }
}

// Entries of an allow list that the ignore list of the same places makes pointless.
void checkShadows(sql::Database& database, const EventTable& allowTable, const Report& report)
{
    const Place::Kind placeKind = *allowTable.placeKind();
    const EventTable& ignoreTable = tableFor(EventTableKind::IGNORE, placeKind);
    tableOf(database, allowTable)
        .forEachMatch(tableOf(database, ignoreTable),
                      {allowTable.placeColumnName(), eventMgmt::EvmDatabase::ALLOW_IGNORE_COLUMN_OID},
                      [&](std::int64_t row, std::int64_t ignoringRow) {
                          report({allowTable.name(),
                                  row,
                                  "has no effect: row " + std::to_string(ignoringRow) + " of " + ignoreTable.name() +
                                      " ignores the events of this " + placeKindText(placeKind) + " and OID",
                                  "",
                                  {}});
                      });
}

// What other programs changed in the tables, which can be read nevertheless.
void checkDefinitions(const sql::Database& database, const Report& report)
{
    for (const std::string& attachment :
         database.findAttachments(eventMgmt::tableDefinitions<sql::TableDefinition>())) {
        report({"", {}, attachment, "", {}});
    }
    for (const EventTable& eventTable : eventTables()) {
        if (!database.hasConstraintsOf(eventTable.definition())) {
            report({eventTable.name(), {}, "its constraints are not those that 'brantel db init' gives it", "", {}});
        }
    }
}

}  // namespace

void checkDatabase(sql::Database& database, const Report& report)
{
    const sql::Transaction oneState(database);
    bool isReadable = true;
    const auto reportUnreadable = [&](const Finding& finding) {
        isReadable = false;
        report(finding);
    };
    for (const std::string& damage : database.findDamage()) {
        reportUnreadable({"", {}, damage, "", {}});
    }
    for (const EventTable& eventTable : eventTables()) {
        if (const std::optional<std::string> difference = database.differenceFrom(eventTable.definition())) {
            reportUnreadable({eventTable.name(), {}, *difference, "", {}});
        }
    }
    if (!isReadable) {
        return;
    }
    checkDefinitions(database, report);
    for (const EventTable& eventTable : eventTables()) {
        checkRows(database, eventTable, report);
    }
    for (const EventTable& eventTable : eventTables()) {
        if (eventTable.kind() == EventTableKind::ALLOW) {
            checkShadows(database, eventTable, report);
        }
    }
}

}  // namespace brantel
