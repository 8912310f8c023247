#include "commands/DbShow.h"

#include <nlohmann/json.hpp>

#include "commands/RuleCheck.h"
#include "common/ResultOutput.h"
#include "common/TextTable.h"
#include "tables/DatabaseCheck.h"
#include "tables/EventDatabase.h"
#include "tables/RowSink.h"

using Json = nlohmann::ordered_json;
using namespace eventMgmt;

namespace {

EventDatabase openForReading(const std::string& path)
{
    return EventDatabase(path, sql::Database::Access::READ);
}

const EventTable& requireTable(const std::string& name)
{
    const EventTable* const pTable = findEventTable(name);
    if (pTable != nullptr) {
        return *pTable;
    }
    std::string names;
    for (const EventTable& table : eventTables()) {
        names += "\n  " + table.name();
    }
    throw CommandError("there is no table '" + name + "'; the tables are" + names);
}

void showRows(ResultOutput& output, EventDatabase& database, const EventTable& eventTable,
              const sql::ColumnValues& where, bool isJson)
{
    const sql::Table table = database.table(eventTable);
    if (isJson) {
        table.forEach(where, [&](const sql::Row& row) { output.writeLine(jsonRow(eventTable, row)); });
        return;
    }
    std::vector<TextColumn> titles;
    for (const sql::Field& field : eventTable.columns()) {
        titles.push_back(
            {field.name(), (field.type() == sql::field_type::INTEGER) ? Alignment::RIGHT : Alignment::LEFT});
    }
    TextTable texts(titles);
    table.forEach(where, [&](const sql::Row& row) {
        std::vector<std::string> rowTexts;
        for (std::size_t i = 0; i < row.size(); ++i) {
            rowTexts.push_back(valueText(eventTable.columns()[i], row[i]));
        }
        texts.addRow(rowTexts);
    });
    texts.write(output);
}

void showCounts(ResultOutput& output, EventDatabase& database, bool isJson)
{
    Json counts = Json::object();
    TextTable texts({{"Table", Alignment::LEFT}, {"Rows", Alignment::RIGHT}});
    for (const EventTable& eventTable : eventTables()) {
        const std::int64_t count = database.table(eventTable).count({});
        counts[eventTable.name()] = count;
        texts.addRow({eventTable.name(), std::to_string(count)});
    }
    if (isJson) {
        output.writeLine(counts.dump());
    } else {
        texts.write(output);
    }
}

std::string placeOf(const Finding& finding)
{
    return finding.table + (finding.row ? " row " + std::to_string(*finding.row) : "");
}

Json jsonOf(const Finding& finding)
{
    Json json;
    json["table"] = finding.table.empty() ? Json() : Json(finding.table);
    json["row"] = finding.row ? Json(*finding.row) : Json();
    json["problem"] = finding.text;
    if (finding.ruleFault) {
        json["rule"] = finding.rule;
        json["column"] = columnOf(finding.rule, *finding.ruleFault);
        json["remedy"] = finding.ruleFault->remedy;
    }
    return json;
}

}  // namespace

ExitCode showTables(const std::string& path, const std::string& tableName, bool isJson)
{
    ResultOutput output;
    EventDatabase database = openForReading(path);
    const sql::Transaction oneState(database.database());
    if (tableName.empty()) {
        showCounts(output, database, isJson);
    } else {
        showRows(output, database, requireTable(tableName), {}, isJson);
    }
    output.finish();
    return EXIT_FINE;
}

ExitCode showList(const std::string& path, EventTableKind list, const ListFilter& filter, bool isJson)
{
    ResultOutput output;
    EventDatabase database = openForReading(path);
    const sql::Transaction oneState(database.database());
    for (const EventTable& eventTable : eventTables()) {
        const bool isOfCards = eventTable.ownerWord() == "slot";
        const bool isWanted = isOfCards ? !filter.component : !filter.slot;
        if ((eventTable.kind() != list) || !isWanted) {
            continue;
        }
        sql::ColumnValues where;
        if (const std::optional<std::uint32_t> owner = isOfCards ? filter.slot : filter.component) {
            where.push_back({eventTable.columns()[eventTable.ownerColumn()].name(), std::int64_t{*owner}});
        }
        if (!filter.oid.empty()) {
            where.push_back({EvmDatabase::ALLOW_IGNORE_COLUMN_OID, filter.oid});
        }
        showRows(output, database, eventTable, where, isJson);
    }
    output.finish();
    return EXIT_FINE;
}

ExitCode showFindings(const std::string& path, bool isJson)
{
    ResultOutput output;
    sql::Database database(path, EVENT_DATABASE_IDENTITY, sql::Database::Access::READ);
    std::size_t nFindings = 0;
    checkDatabase(database, [&](const Finding& finding) {
        ++nFindings;
        if (isJson) {
            output.writeLine(jsonOf(finding).dump(-1, ' ', false, Json::error_handler_t::replace));
            return;
        }
        const std::string place = placeOf(finding);
        output.writeLine(printable((place.empty() ? "" : place + ": ") + finding.text));
        if (finding.ruleFault) {
            for (const std::string& line : pictureOf(finding.rule, *finding.ruleFault)) {
                output.writeLine(line);
            }
        }
    });
    if (!isJson) {
        output.writeLine(path + ((nFindings == 0) ? ": nothing is wrong"
                                                  : ": " + std::to_string(nFindings) +
                                                        ((nFindings == 1) ? " problem" : " problems")));
    }
    output.finish();
    return (nFindings == 0) ? EXIT_FINE : EXIT_NEGATIVE_ANSWER;
}
