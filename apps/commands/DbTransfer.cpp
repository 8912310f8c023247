#include "commands/DbTransfer.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "common/Message.h"
#include "common/ProgressBar.h"
#include "common/ResultOutput.h"
#include "rules/RuleFaultPicture.h"
#include "tables/EventDatabase.h"
#include "tables/RowNumbers.h"

namespace brantel {
namespace {

constexpr std::size_t MAX_SHOWN_ROWS = 10;

// Puts the rows of a file into the tables, within a transaction of the caller's.
class Import : public RowReceiver {
public:
    Import(EventDatabase& database, ProgressBar& progress, bool replaces)
        : m_database(database), m_progress(progress), m_replaces(replaces)
    {
    }

    void beginTable(const EventTable& eventTable) override
    {
        if (eventTable.kind() == EventTableKind::CHANGES) {
            throw CommandError(eventTable.name() + " cannot be imported: it records changes");
        }
        TableImport& rows = m_tables.try_emplace(&eventTable, m_database.table(eventTable)).first->second;
        if (m_replaces) {
            rows.table.forEach({}, [&](const sql::Row& row) { m_changes.noteRemoved(eventTable, row); });
            rows.table.remove({});
        }
        rows.numbers.emplace(eventTable, rows.table);
    }

    bool take(SourceRow row) override
    {
        std::vector<RowFault> faults = row.faults;
        if (row.needsRowIndex) {
            row.row.front() = 0;  // until the row is known to be right
        }
        canonicaliseOid(*row.pTable, row.row);
        if (faults.empty()) {
            faults = faultsOfRow(*row.pTable, row.row);
        }
        if (faults.empty()) {
            insert(row);
        } else {
            ++m_nWrongRows;
            show(row, faults);
        }
        m_progress.step();
        return m_nWrongRows < MAX_SHOWN_ROWS;
    }

    /// Ends the import, after the last row. False if some row was wrong: then nothing may be kept.
    bool finish()
    {
        if (m_nWrongRows > 0) {
            return false;
        }
        for (auto& [pTable, rows] : m_tables) {
            removeRepeats(*pTable, rows);
            noteNumbered(*pTable, rows);
        }
        m_changes.write(m_database);
        return true;
    }

    std::int64_t importedCount() const { return m_nImported; }
    std::int64_t skippedCount() const { return m_nSkipped; }

private:
    struct TableImport {
        explicit TableImport(sql::Table importedTable) : table(std::move(importedTable)) {}

        sql::Table table;
        std::optional<RowNumbers> numbers;
        RowNumberSet numbered;  ///< the rows that were numbered here
    };

    void insert(SourceRow& row)
    {
        TableImport& rows = m_tables.at(row.pTable);
        if (row.needsRowIndex) {
            row.row.front() = rows.numbers->next();
        }
        if (!isNew(rows.table, row)) {
            ++m_nSkipped;
            return;
        }
        ++m_nImported;
        const std::int64_t key = std::get<std::int64_t>(row.row.front());
        if (row.needsRowIndex) {
            rows.numbered.add(key);
        } else {
            rows.numbers->leaveOut(key);
            m_changes.noteAdded(*row.pTable, row.row);
        }
    }

    // Inserts a row, unless an identical one exists.
    static bool isNew(sql::Table& table, const SourceRow& row)
    {
        try {
            table.insert(row.row);
            return true;
        } catch (const sql::Error& error) {
            if (error.problem() != sql::Problem::CONSTRAINT) {
                throw;
            }
        }
        const sql::Field& key = row.pTable->columns().front();
        if (table.select({{key.name(), row.row.front()}}) == std::vector<sql::Row>{row.row}) {
            return false;
        }
        throw CommandError(row.location + ": " + table.name() + " has another row with " + key.name() + " " +
                           valueText(key, row.row.front()) +
                           "; nothing is imported (--replace empties the table before)");
    }

    // Removes duplicates of other rows from the rows that were numbered here. One search finds them all: a search for
    // each row would read the table for each row.
    void removeRepeats(const EventTable& eventTable, TableImport& rows)
    {
        if (rows.numbered.lastByFirst().empty()) {
            return;
        }
        RowNumberSet repeats;
        rows.table.forEachRepeated(entryColumns(eventTable), [&](std::int64_t key, std::int64_t firstKey) {
            if (rows.numbered.contains(key)) {
                repeats.add(key);
            } else if (rows.numbered.contains(firstKey)) {
                repeats.add(firstKey);
            }
        });
        for (const auto& [first, last] : repeats.lastByFirst()) {
            const std::int64_t nRemoved = rows.table.removeRange(first, last);
            m_nImported -= nRemoved;
            m_nSkipped += nRemoved;
        }
    }

    void noteNumbered(const EventTable& eventTable, const TableImport& rows)
    {
        for (const auto& [first, last] : rows.numbered.lastByFirst()) {
            rows.table.forEachInRange(first, last, [&](const sql::Row& row) { m_changes.noteAdded(eventTable, row); });
        }
    }

    static void show(const SourceRow& row, const std::vector<RowFault>& faults)
    {
        for (const RowFault& fault : faults) {
            const std::string subject = row.location + ": " + fault.column;
            if (fault.ruleFault) {
                printRefusal(subject, std::get<std::string>(row.row.back()), *fault.ruleFault);
            } else {
                printMessage(subject + ": " + fault.reason);
            }
        }
    }

    EventDatabase& m_database;
    ProgressBar& m_progress;
    bool m_replaces;
    std::map<const EventTable*, TableImport> m_tables;
    ChangeRecord m_changes;
    std::int64_t m_nImported = 0;
    std::int64_t m_nSkipped = 0;
    std::size_t m_nWrongRows = 0;
};

std::vector<const EventTable*> exportedTables(const ExportOptions& options)
{
    if (!options.table.empty()) {
        return {&requireEventTable(options.table)};
    }
    std::vector<const EventTable*> tables;
    for (const EventTable& table : eventTables()) {
        if (table.kind() != EventTableKind::CHANGES) {
            tables.push_back(&table);
        }
    }
    return tables;
}

// Only rows that can be imported again are exported.
void requireExportable(const EventTable& table, const sql::Row& row)
{
    const std::vector<RowFault> faults =
        (table.kind() == EventTableKind::CHANGES) ? std::vector<RowFault>() : faultsOfRow(table, row);
    if (!faults.empty()) {
        throw CommandError(table.name() + " row " + valueText(table.columns().front(), row.front()) + ": " +
                           faults.front().column + ": " + faults.front().reason +
                           "; fix it first ('brantel db check' lists all problems)");
    }
}

}  // namespace

ExitCode importTables(const std::string& path, const ImportOptions& options)
{
    // The input is complete before the database is locked.
    const SpooledInput input(options.file);
    const TableFormat format = options.format ? *options.format : formatOf(input);
    EventDatabase database(path, sql::Database::Access::WRITE);
    sql::Transaction transaction(database.database());
    std::optional<ProgressBar> progress(std::in_place, "rows", expectedRows(input, format));
    Import rowImport(database, *progress, options.replaces);
    readRows(input, format, rowImport);
    const bool isRight = rowImport.finish();
    progress.reset();
    if (!isRight) {
        printMessage("nothing is imported");
        return EXIT_NEGATIVE_ANSWER;
    }
    transaction.commit();
    ResultOutput output;
    const std::string skipped =
        (rowImport.skippedCount() == 0) ? "" : ", " + std::to_string(rowImport.skippedCount()) + " already there";
    output.writeLine(counted(static_cast<std::uint64_t>(rowImport.importedCount()), "row") + " imported" + skipped);
    output.finish();
    return EXIT_FINE;
}

ExitCode exportTables(const std::string& path, const ExportOptions& options)
{
    const std::vector<const EventTable*> tables = exportedTables(options);
    const bool isCsv = options.format == TableFormat::CSV;
    if (isCsv && (tables.size() > 1)) {
        throw CommandError("a CSV file holds one table: name it with --table");
    }
    ResultOutput output;
    const LineSink writeLine = [&](const std::string& line) { output.writeLine(line); };
    EventDatabase database(path, sql::Database::Access::READ);
    const sql::Transaction oneState(database.database());
    const auto visitorOf = [&](const EventTable& table) {
        return [&](const std::function<void(const sql::Row&)>& visit) {
            database.table(table).forEach({}, [&](const sql::Row& row) {
                requireExportable(table, row);
                visit(row);
            });
        };
    };
    if (isCsv) {
        const EventTable& table = *tables.front();
        output.writeLine(csvHeader(table));
        visitorOf(table)([&](const sql::Row& row) { output.writeLine(csvRow(table, row)); });
    } else {
        output.writeLine("{");
        for (const EventTable* const pTable : tables) {
            writeJsonTable(*pTable, visitorOf(*pTable), (pTable == tables.back()) ? "" : ",", writeLine);
        }
        output.writeLine("}");
    }
    output.finish();
    return EXIT_FINE;
}

}  // namespace brantel
