#include "tables/RowFiles.h"

#include <boost/algorithm/string/predicate.hpp>

namespace brantel {

TableFormat formatOf(const SpooledInput& input)
{
    if (boost::iends_with(input.name(), ".json")) {
        return TableFormat::JSON;
    }
    if (boost::iends_with(input.name(), ".csv")) {
        return TableFormat::CSV;
    }
    const char first = input.firstByte();
    return ((first == '{') || (first == '[')) ? TableFormat::JSON : TableFormat::CSV;
}

RowFault unreadableValue(const sql::Field& field, const std::string& shownText)
{
    switch (field.type()) {
        case sql::field_type::INTEGER:
            return {field.name(), shownText + " is not a number from 0 to " + std::to_string(MAX_NUMBER), {}};
        case sql::field_type::BOOLEAN: return {field.name(), shownText + " is neither true nor false", {}};
        case sql::field_type::TEXT: break;
    }
    return {field.name(), shownText + " is not a text", {}};
}

std::string importableTableNames()
{
    std::string names;
    for (const EventTable& table : eventTables()) {
        if (table.kind() != EventTableKind::CHANGES) {
            names += (names.empty() ? "" : ", ") + table.name();
        }
    }
    return names;
}

std::size_t expectedRows(const SpooledInput& input, TableFormat format)
{
    // CSV: the lines after the first. JSON: the objects in the outermost one.
    const std::size_t count = input.count((format == TableFormat::CSV) ? '\n' : '{');
    return (count == 0) ? 0 : count - 1;
}

void readRows(const SpooledInput& input, TableFormat format, RowReceiver& receiver)
{
    if (format == TableFormat::JSON) {
        readJsonRows(input, receiver);
    } else {
        readCsvRows(input, receiver);
    }
}

}  // namespace brantel
