#ifndef APPS_TABLES_ROW_FILES_H
#define APPS_TABLES_ROW_FILES_H

// Rows of the event-management tables in files. They are read one at a time: however many there are, no more than one
// is kept. What is written and read again is the same, value by value.
//
//     CSV   one table; the first row names its columns, in any order, and thereby the table
//     JSON  an object with an array of rows under each table's name, a row being an object with a value per column
//
// Numbers are decimal (read from CSV also hexadecimal after 0x), flags "true" and "false" (read from CSV also as 1 and
// 0). A row without a RowIndex gets the next free one.

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "tables/EventTables.h"
#include "tables/SpooledInput.h"

namespace brantel {

enum class TableFormat { CSV, JSON };

/// The format of a file: by the end of its name, ".csv" or ".json", or else by its first character.
TableFormat formatOf(const SpooledInput& input);

/// A row as the file has it.
struct SourceRow {
    const EventTable* pTable;
    sql::Row row;          ///< a value that could not be read is null
    std::string location;  ///< "rules.csv:17", or "rules.json:4:3"

    /// The values that could not be read; faultsOfRow() finds the other faults.
    std::vector<RowFault> faults;

    /// The RowIndex is null, and to be filled in.
    bool needsRowIndex = false;
};

/// Takes the rows of a file.
class RowReceiver {
public:
    virtual ~RowReceiver() = default;

    /// A table that the file is about, before its rows, if it has any.
    virtual void beginTable(const EventTable& table) = 0;

    /// The next row of that table. False if no more rows are wanted.
    virtual bool take(SourceRow row) = 0;
};

/// The fault of a value that is not of the column's type.
RowFault unreadableValue(const sql::Field& field, const std::string& shownText);

/// "ComponentConfigTable, IfcCardsConfigTable, ...": the tables that can be imported.
std::string importableTableNames();

/// The probable number of rows, for a progress bar.
std::size_t expectedRows(const SpooledInput& input, TableFormat format);

/// Passes on all rows. Throws CommandError for anything that is not a row.
void readRows(const SpooledInput& input, TableFormat format, RowReceiver& receiver);

/// The same for each format.
void readCsvRows(const SpooledInput& input, RowReceiver& receiver);
void readJsonRows(const SpooledInput& input, RowReceiver& receiver);

/// The row that names the columns.
std::string csvHeader(const EventTable& table);

/// One row; texts are always in quotes.
std::string csvRow(const EventTable& table, const sql::Row& row);

/// One row as an object.
std::string jsonRow(const EventTable& table, const sql::Row& row);

/// Visits the rows of a table in the order of their keys.
using RowVisitor = std::function<void(const std::function<void(const sql::Row&)>& visit)>;

/// Takes a line, without its end.
using LineSink = std::function<void(const std::string& line)>;

/// An array with a row a line, under the name of its table: `"Name": [ ... ]`, the last line ended by `end`.
void writeJsonTable(const EventTable& table, const RowVisitor& visitRows, const std::string& end, const LineSink& sink);

}  // namespace brantel

#endif
