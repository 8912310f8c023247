// Files with rows of the tables, in the format FUZZED_FORMAT: a row without a fault comes back the same when it is
// written, in either format, and read again.
//
// Input: the file.

#include <map>
#include <vector>

#include "common/CommandLine.h"
#include "fuzz/FuzzFiles.h"
#include "tables/RowFiles.h"

namespace brantel {
namespace {

using RowsByTable = std::map<const EventTable*, std::vector<sql::Row>>;

void requireSound(const SourceRow& row)
{
    require(row.pTable != nullptr);
    require(row.row.size() == row.pTable->columns().size());
    require(!row.location.empty());
    for (const RowFault& fault : row.faults) {
        require(!fault.column.empty() && !fault.reason.empty());
    }
}

// Keeps the rows without faults, with the number of the row for a RowIndex that is to be filled in.
class SoundRows : public RowReceiver {
public:
    void beginTable(const EventTable& /*table*/) override {}

    bool take(SourceRow row) override
    {
        ++m_nRows;
        requireSound(row);
        if (row.needsRowIndex) {
            row.row.front() = m_nRows;
        }
        if (row.faults.empty() && faultsOfRow(*row.pTable, row.row).empty()) {
            rows[row.pTable].push_back(row.row);
        }
        return true;
    }

    RowsByTable rows;

private:
    std::int64_t m_nRows = 0;
};

RowsByTable soundRows(const std::string& path, TableFormat format)
{
    SoundRows receiver;
    readRows(SpooledInput(path), format, receiver);
    return receiver.rows;
}

std::string csvOf(const EventTable& table, const std::vector<sql::Row>& rows)
{
    std::string text = csvHeader(table) + "\n";
    for (const sql::Row& row : rows) {
        text += csvRow(table, row) + "\n";
    }
    return text;
}

std::string jsonOf(const RowsByTable& rows)
{
    std::string text = "{\n";
    std::size_t nTables = 0;
    for (const auto& [pTable, tableRows] : rows) {
        const auto visit = [&tableRows = tableRows](const std::function<void(const sql::Row&)>& visitRow) {
            for (const sql::Row& row : tableRows) {
                visitRow(row);
            }
        };
        writeJsonTable(*pTable, visit, (++nTables < rows.size()) ? "," : "",
                       [&](const std::string& line) { text += line + "\n"; });
    }
    return text + "}\n";
}

}  // namespace

FUZZ_TARGET(pData, size)
{
    const std::string path = fileOf(textOf(pData, size));
    RowsByTable rows;
    if (!isAccepted<CommandError>(path, [&] { rows = soundRows(path, TableFormat::FUZZED_FORMAT); })) {
        return 0;
    }
    for (const auto& [pTable, tableRows] : rows) {
        require(soundRows(fileOf(csvOf(*pTable, tableRows), "again.csv"), TableFormat::CSV) ==
                RowsByTable{{pTable, tableRows}});
    }
    require(soundRows(fileOf(jsonOf(rows), "again.json"), TableFormat::JSON) == rows);
    return 0;
}

}  // namespace brantel
