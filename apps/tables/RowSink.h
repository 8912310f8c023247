#ifndef APPS_TABLES_ROW_SINK_H
#define APPS_TABLES_ROW_SINK_H

// Writes rows of the event-management tables in the two forms that RowSource reads; what is written and read again is
// the same, value by value.

#include <functional>
#include <string>

#include "tables/EventTables.h"

/// Takes a line, without its end.
using LineSink = std::function<void(const std::string& line)>;

/// The row that names the columns.
std::string csvHeader(const EventTable& table);

/// One row; texts are always in quotes.
std::string csvRow(const EventTable& table, const sql::Row& row);

/// One row as an object.
std::string jsonRow(const EventTable& table, const sql::Row& row);

/// Visits the rows of a table in the order of their keys.
using RowVisitor = std::function<void(const std::function<void(const sql::Row&)>& visit)>;

/// An array with a row a line, under the name of its table: `"Name": [ ... ]`, the last line ended by `end`.
void writeJsonTable(const EventTable& table, const RowVisitor& visitRows, const std::string& end, const LineSink& sink);

#endif
