#include "tables/DatabaseCheck.h"

#include <map>
#include <utility>
#include <vector>

namespace {

using Tell = std::function<void(const Finding&)>;

std::int64_t keyOf(const sql::Row& row)
{
    const auto* const pKey = std::get_if<std::int64_t>(&row.front());
    return (pKey != nullptr) ? *pKey : 0;
}

void visitRows(sql::Database& database, const EventTable& eventTable, const std::function<void(const sql::Row&)>& visit)
{
    sql::Table(database, eventTable.name(), eventTable.definition().definition).forEach({}, visit);
}

void checkValues(const EventTable& eventTable, const sql::Row& row, const Tell& tell)
{
    for (const RowFault& fault : faultsOfRow(eventTable, row)) {
        const std::string rule = fault.ruleFault ? std::get<std::string>(row.back()) : "";
        tell({eventTable.name(), keyOf(row), fault.column + ": " + fault.reason, rule, fault.ruleFault});
    }
}

// What two entries of a list must not have in common: everything but the RowIndex.
using Entry = std::vector<sql::Value>;

void checkRows(sql::Database& database, const EventTable& eventTable, const Tell& tell)
{
    const bool isList = (eventTable.kind() == EventTableKind::ALLOW) || (eventTable.kind() == EventTableKind::IGNORE);
    std::map<Entry, std::int64_t> firstRows;
    visitRows(database, eventTable, [&](const sql::Row& row) {
        checkValues(eventTable, row, tell);
        if (!isList) {
            return;
        }
        const auto [found, isNew] = firstRows.emplace(Entry(row.begin() + 1, row.end()), keyOf(row));
        if (!isNew) {
            tell({eventTable.name(), keyOf(row), "says the same as row " + std::to_string(found->second), "", {}});
        }
    });
}

using OwnerAndOid = std::pair<sql::Value, sql::Value>;

OwnerAndOid ownerAndOidOf(const sql::Row& row)
{
    return {row[1], row[2]};
}

void checkShadows(sql::Database& database, const EventTable& allowTable, const EventTable& ignoreTable,
                  const Tell& tell)
{
    std::map<OwnerAndOid, std::int64_t> ignored;
    visitRows(database, ignoreTable, [&](const sql::Row& row) { ignored.emplace(ownerAndOidOf(row), keyOf(row)); });
    visitRows(database, allowTable, [&](const sql::Row& row) {
        const auto found = ignored.find(ownerAndOidOf(row));
        if (found != ignored.end()) {
            tell({allowTable.name(),
                  keyOf(row),
                  "has no effect: row " + std::to_string(found->second) + " of " + ignoreTable.name() +
                      " ignores the events of this " + allowTable.ownerWord() + " and OID",
                  "",
                  {}});
        }
    });
}

}  // namespace

void checkDatabase(sql::Database& database, const Tell& tell)
{
    const sql::Transaction oneState(database);
    bool isReadable = true;
    const auto tellUnreadable = [&](const Finding& finding) {
        isReadable = false;
        tell(finding);
    };
    for (const std::string& damage : database.findDamage()) {
        tellUnreadable({"", {}, damage, "", {}});
    }
    for (const EventTable& eventTable : eventTables()) {
        if (const std::optional<std::string> difference = database.differenceFrom(eventTable.definition())) {
            tellUnreadable({eventTable.name(), {}, *difference, "", {}});
        }
    }
    if (!isReadable) {
        return;
    }
    for (const EventTable& eventTable : eventTables()) {
        checkRows(database, eventTable, tell);
    }
    using namespace eventMgmt;
    checkShadows(database, allowIgnoreTable(SYS_CARD_ALLOW_EVENTS_TABLE_ID),
                 allowIgnoreTable(SYS_CARD_IGNORE_EVENTS_TABLE_ID), tell);
    checkShadows(database, allowIgnoreTable(IFC_CARDS_ALLOW_EVENTS_TABLE_ID),
                 allowIgnoreTable(IFC_CARDS_IGNORE_EVENTS_TABLE_ID), tell);
}
