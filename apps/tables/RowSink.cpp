#include "tables/RowSink.h"

#include <nlohmann/json.hpp>

using Json = nlohmann::ordered_json;

namespace {

std::string csvText(const std::string& text)
{
    std::string quoted = "\"";
    for (const char character : text) {
        quoted += (character == '"') ? "\"\"" : std::string(1, character);
    }
    return quoted + "\"";
}

Json jsonValue(const sql::Field& field, const sql::Value& value)
{
    if (const auto* const pText = std::get_if<std::string>(&value)) {
        return *pText;
    }
    if (const auto* const pNumber = std::get_if<std::int64_t>(&value)) {
        return (field.type() == sql::field_type::BOOLEAN) ? Json(*pNumber != 0) : Json(*pNumber);
    }
    return nullptr;
}

}  // namespace

std::string csvHeader(const EventTable& table)
{
    std::string line;
    for (const sql::Field& field : table.columns()) {
        line += (line.empty() ? "" : ",") + field.name();
    }
    return line;
}

std::string csvRow(const EventTable& table, const sql::Row& row)
{
    std::string line;
    const std::vector<sql::Field>& columns = table.columns();
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const std::string text = valueText(columns[i], row[i]);
        line += (i == 0) ? "" : ",";
        line += (columns[i].type() == sql::field_type::TEXT) ? csvText(text) : text;
    }
    return line;
}

std::string jsonRow(const EventTable& table, const sql::Row& row)
{
    Json json = Json::object();
    const std::vector<sql::Field>& columns = table.columns();
    for (std::size_t i = 0; i < columns.size(); ++i) {
        json[columns[i].name()] = jsonValue(columns[i], row[i]);
    }
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

void writeJsonTable(const EventTable& table, const RowVisitor& visitRows, const std::string& end, const LineSink& sink)
{
    std::string line = Json(table.name()).dump() + ": [";
    const char* separator = "";
    visitRows([&](const sql::Row& row) {
        sink(line + separator);
        line = "  " + jsonRow(table, row);
        separator = ",";
    });
    sink(line);
    sink("]" + end);
}
