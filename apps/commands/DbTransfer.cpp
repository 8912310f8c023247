#include "commands/DbTransfer.h"

#include <iostream>
#include <map>

#include "commands/RuleCheck.h"
#include "common/ProgressBar.h"
#include "common/ResultOutput.h"
#include "tables/EventDatabase.h"
#include "tables/RowSink.h"

namespace {

constexpr std::size_t MAX_TOLD_ROWS = 10;

class Import {
public:
    Import(EventDatabase& database, RowSource& source, bool replaces) : m_database(database), m_source(source)
    {
        for (const EventTable* const pTable : source.tables()) {
            if (pTable->kind() == EventTableKind::CHANGES) {
                throw CommandError(pTable->name() + " can not be imported: every change adds to it");
            }
            sql::Table& table = m_tables.emplace(pTable, database.table(*pTable)).first->second;
            if (replaces) {
                table.forEach({}, [&](const sql::Row& row) { m_changes.noteRemoved(*pTable, row); });
                table.remove({});
            }
            m_nextRowIndex[pTable] = table.largestKey() + 1;
        }
    }

    /// True if every row was right; then they are in the tables.
    bool run()
    {
        ProgressBar progress("rows", m_source.expectedRows());
        while (std::optional<SourceRow> row = m_source.next()) {
            take(*row);
            progress.step();
            if (m_nWrongRows == MAX_TOLD_ROWS) {
                break;
            }
        }
        m_changes.write(m_database);
        return m_nWrongRows == 0;
    }

    std::size_t rowCount() const { return m_nRows; }

private:
    void take(SourceRow& row)
    {
        std::int64_t& nextRowIndex = m_nextRowIndex[row.pTable];
        if (row.needsRowIndex) {
            row.row.front() = nextRowIndex;
        }
        std::vector<RowFault> faults = row.faults;
        if (faults.empty()) {
            faults = faultsOfRow(*row.pTable, row.row);
        }
        if (!faults.empty()) {
            tell(row, faults);
            return;
        }
        insert(row);
        if (row.pTable->hasRowIndex()) {
            nextRowIndex = std::max(nextRowIndex, std::get<std::int64_t>(row.row.front()) + 1);
        }
        m_changes.noteAdded(*row.pTable, row.row);
        ++m_nRows;
    }

    void insert(const SourceRow& row)
    {
        try {
            m_tables.at(row.pTable).insert(row.row);
        } catch (const sql::Error& error) {
            if (error.problem() != sql::Problem::CONSTRAINT) {
                throw;
            }
            const sql::Field& key = row.pTable->columns().front();
            throw CommandError(row.place + ": " + row.pTable->name() + " has a row with " + key.name() + " " +
                               valueText(key, row.row.front()) + " already; nothing is imported");
        }
    }

    void tell(const SourceRow& row, const std::vector<RowFault>& faults)
    {
        ++m_nWrongRows;
        for (const RowFault& fault : faults) {
            std::cerr << "brantel: " << row.place << ": " << fault.column << ": "
                      << (fault.ruleFault ? "refused: " : "") << printable(fault.reason) << '\n';
            if (fault.ruleFault) {
                for (const std::string& line : pictureOf(std::get<std::string>(row.row.back()), *fault.ruleFault)) {
                    std::cerr << line << '\n';
                }
            }
        }
    }

    EventDatabase& m_database;
    RowSource& m_source;
    std::map<const EventTable*, sql::Table> m_tables;
    std::map<const EventTable*, std::int64_t> m_nextRowIndex;
    ChangeRecord m_changes;
    std::size_t m_nRows = 0;
    std::size_t m_nWrongRows = 0;
};

std::vector<const EventTable*> exportedTables(const ExportOptions& options)
{
    std::vector<const EventTable*> tables;
    for (const EventTable& table : eventTables()) {
        if (options.table.empty() ? (table.kind() != EventTableKind::CHANGES)
                                  : (findEventTable(options.table) == &table)) {
            tables.push_back(&table);
        }
    }
    if (tables.empty()) {
        throw CommandError("there is no table '" + options.table + "' ('brantel db show' names them)");
    }
    return tables;
}

// A row that could not be imported again is not exported.
void requireExportable(const EventTable& table, const sql::Row& row)
{
    const std::vector<RowFault> faults =
        (table.kind() == EventTableKind::CHANGES) ? std::vector<RowFault>() : faultsOfRow(table, row);
    if (!faults.empty()) {
        throw CommandError(table.name() + " row " + valueText(table.columns().front(), row.front()) + ": " +
                           faults.front().column + ": " + printable(faults.front().reason) +
                           "; mend it before the export ('brantel db check' tells all)");
    }
}

}  // namespace

ExitCode importTables(const std::string& path, const ImportOptions& options)
{
    const std::unique_ptr<RowSource> pSource =
        openRowSource(options.file, options.format.value_or(formatOfFile(options.file)));
    EventDatabase database(path, sql::Database::Access::WRITE);
    sql::Transaction transaction(database.database());
    Import import(database, *pSource, options.replaces);
    if (!import.run()) {
        std::cerr << "brantel: nothing is imported\n";
        return EXIT_NEGATIVE_ANSWER;
    }
    transaction.commit();
    ResultOutput output;
    output.writeLine(std::to_string(import.rowCount()) + ((import.rowCount() == 1) ? " row" : " rows") + " imported");
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
