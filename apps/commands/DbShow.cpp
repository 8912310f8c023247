#include "commands/DbShow.h"

#include <functional>

#include <nlohmann/json.hpp>

#include "EvmDatabase.h"
#include "common/JsonLine.h"
#include "common/PrintableText.h"
#include "common/ResultOutput.h"
#include "common/TextTable.h"
#include "rules/RuleFaultPicture.h"
#include "tables/DatabaseCheck.h"
#include "tables/EventDatabase.h"
#include "tables/RowFiles.h"

namespace brantel {

using Json = nlohmann::ordered_json;

namespace {

EventDatabase openForReading(const std::string& path)
{
    return EventDatabase(path, sql::Database::Access::READ);
}

std::vector<std::string> textsOf(const EventTable& eventTable, const sql::Row& row)
{
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < row.size(); ++i) {
        texts.push_back(valueText(eventTable.columns()[i], row[i]));
    }
    return texts;
}

// The rows of each selection, in turn.
void showRows(ResultOutput& output, EventDatabase& database, const EventTable& eventTable,
              const std::vector<sql::ColumnValues>& selections, bool isJson)
{
    const sql::Table table = database.table(eventTable);
    const auto forEachRow = [&](const std::function<void(const sql::Row&)>& visit) {
        for (const sql::ColumnValues& where : selections) {
            table.forEach(where, visit);
        }
    };
    if (isJson) {
        forEachRow([&](const sql::Row& row) { output.writeLine(jsonRow(eventTable, row)); });
        return;
    }
    std::vector<TextColumn> titles;
    for (const sql::Field& field : eventTable.columns()) {
        titles.push_back(
            {field.name(), (field.type() == sql::field_type::INTEGER) ? Alignment::RIGHT : Alignment::LEFT});
    }
    // Reads one state of the table twice, so that no more than a row is kept.
    TextLayout layout(titles);
    forEachRow([&](const sql::Row& row) { layout.measure(textsOf(eventTable, row)); });
    output.writeLine(layout.titleLine());
    forEachRow([&](const sql::Row& row) { output.writeLine(layout.lineOf(textsOf(eventTable, row))); });
}

// Selects the wanted entries of a list.
std::vector<sql::ColumnValues> selectionsOf(const EventTable& list, const ListFilter& filter)
{
    sql::ColumnValues ofObject;
    if (filter.oid) {
        ofObject.push_back({eventMgmt::EvmDatabase::ALLOW_IGNORE_COLUMN_OID, std::to_string(*filter.oid)});
    }
    if (filter.places.empty()) {
        return {ofObject};
    }
    std::vector<sql::ColumnValues> selections;
    for (const Place& place : filter.places) {
        selections.push_back(ofObject);
        selections.back().push_back({list.placeColumnName(), place.number});
    }
    return selections;
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
        output.writeLine(jsonLine(counts));
    } else {
        texts.write(output);
    }
}

std::string locationOf(const Finding& finding)
{
    return finding.table + (finding.row ? " row " + std::to_string(*finding.row) : "");
}

Json jsonOf(const Finding& finding)
{
    Json json;
    json["table"] = finding.table.empty() ? Json() : Json(finding.table);
    json["row"] = finding.row ? Json(*finding.row) : Json();
    json["reason"] = finding.reason;
    if (finding.ruleFault) {
        json["rule"] = finding.rule;
        json["column"] = faultColumn(finding.rule, *finding.ruleFault);
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
        showRows(output, database, requireEventTable(tableName), {sql::ColumnValues()}, isJson);
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
        const bool isWanted = filter.places.empty() || (filter.places.begin()->kind == eventTable.placeKind());
        if ((eventTable.kind() == list) && isWanted) {
            showRows(output, database, eventTable, selectionsOf(eventTable, filter), isJson);
        }
    }
    output.finish();
    return EXIT_FINE;
}

ExitCode showFindings(const std::string& path, bool isJson)
{
    ResultOutput output;
    sql::Database database = openEventDatabase(path, sql::Database::Access::READ);
    std::size_t nFindings = 0;
    checkDatabase(database, [&](const Finding& finding) {
        ++nFindings;
        if (isJson) {
            output.writeLine(jsonLine(jsonOf(finding)));
            return;
        }
        const std::string location = locationOf(finding);
        output.writeLine(printable((location.empty() ? "" : location + ": ") + finding.reason));
        if (finding.ruleFault) {
            for (const std::string& line : faultPicture(finding.rule, *finding.ruleFault)) {
                output.writeLine(line);
            }
        }
    });
    if (!isJson) {
        output.writeLine(printable(path) +
                         ((nFindings == 0) ? ": nothing is wrong" : ": " + counted(nFindings, "problem")));
    }
    output.finish();
    return (nFindings == 0) ? EXIT_FINE : EXIT_NEGATIVE_ANSWER;
}

}  // namespace brantel
