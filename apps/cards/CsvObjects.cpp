#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "OidValue.h"
#include "cards/CardObjects.h"
#include "cards/OidTable.h"
#include "cards/SourceFile.h"
#include "cards/ValueText.h"
#include "common/CommandLine.h"
#include "common/CsvReader.h"
#include "common/LineReader.h"
#include "common/PrintableText.h"
#include "samples/SampleTime.h"

namespace brantel {
namespace {

constexpr std::size_t MAX_ROWS = 1'000'000;
constexpr std::size_t MAX_SIZE = std::size_t{256} << 20U;  // of the file, which is kept whole

// A recording is kept whole: it is replayed again and again.
class Recording {
public:
    Recording(const CsvReplay& replay, const SecondsClock& clock) : m_replay(replay), m_clock(clock)
    {
        checkSourceFile(replay.file, MAX_SIZE);
        LineReader lines(replay.file);
        CsvReader reader(lines);
        while (std::optional<CsvRow> row = reader.next()) {
            if (!row->fields.empty()) {
                addRow(std::move(*row));
            }
        }
        if (m_rows.empty()) {
            throw CommandError(replay.file + ": no rows after the header");
        }
        setDuration();
        m_start = m_clock();
        setRowNumber(1);
    }

    std::vector<std::size_t> valueColumns() const
    {
        std::vector<std::size_t> columns;
        for (std::size_t column = 0; column < m_header.size(); ++column) {
            if (column != m_timeColumn) {
                columns.push_back(column);
            }
        }
        return columns;
    }

    const std::string& label(std::size_t column) const { return m_header[column]; }

    /// The narrowest of int32, uint32, int64, uint64 and string that holds every value of the column.
    OidValueType typeOf(std::size_t column) const
    {
        for (const OidValueType type : {OID_TYPE_INT32, OID_TYPE_UINT32, OID_TYPE_INT64, OID_TYPE_UINT64}) {
            const auto fits = [&](const Row& row) { return parseValue(type, row.fields[column]).has_value(); };
            if (std::all_of(m_rows.begin(), m_rows.end(), fits)) {
                return type;
            }
        }
        return OID_TYPE_STRING;
    }

    /// The field of the row whose time or turn it is.
    const std::string& fieldNow(std::size_t column)
    {
        return (m_replay.isStepped ? rowOfStep(column) : rowOfTime()).fields[column];
    }

    bool isStepped() const { return m_replay.isStepped; }

    /// The row whose turn it is, from 1.
    unsigned int rowNumber() const { return static_cast<unsigned int>(m_row + 1); }
    bool hasRow(unsigned int number) const { return (number >= 1) && (number <= m_rows.size()); }
    void setRowNumber(unsigned int number)
    {
        m_row = number - 1;
        m_isServed.assign(m_header.size(), false);
    }

private:
    struct Row {
        double seconds;  ///< since the first row
        std::vector<std::string> fields;
    };

    const Row& rowOfStep(std::size_t column)
    {
        if (m_isServed[column] && hasRow(rowNumber() + 1)) {
            setRowNumber(rowNumber() + 1);
        }
        m_isServed[column] = true;
        return m_rows[m_row];
    }

    const Row& rowOfTime() const
    {
        const double position = std::fmod((m_clock() - m_start) * m_replay.speed, m_duration);
        const auto after = std::upper_bound(m_rows.begin(), m_rows.end(), position,
                                            [](double seconds, const Row& row) { return seconds < row.seconds; });
        return (after == m_rows.begin()) ? *after : *(after - 1);
    }

    void addRow(CsvRow row)
    {
        const std::string location = m_replay.file + ":" + std::to_string(row.line);
        for (const std::string& field : row.fields) {
            if (field.size() > MAX_TEXT_LENGTH) {
                throw CommandError(location + ": a field is longer than " + std::to_string(MAX_TEXT_LENGTH) + " bytes");
            }
        }
        if (m_header.empty()) {
            takeHeader(std::move(row.fields), location);
            return;
        }
        if (row.fields.size() != m_header.size()) {
            throw CommandError(location + ": " + std::to_string(row.fields.size()) + " fields, but the header has " +
                               std::to_string(m_header.size()));
        }
        if (m_rows.size() == MAX_ROWS) {
            throw CommandError(location + ": more than " + std::to_string(MAX_ROWS) + " rows");
        }
        const double seconds = secondsOfRow(row.fields, location);
        if (!m_rows.empty() && (seconds < m_rows.back().seconds)) {
            throw CommandError(location + ": its time is before that of the row above");
        }
        m_rows.push_back({seconds, std::move(row.fields)});
    }

    void takeHeader(std::vector<std::string> fields, const std::string& location)
    {
        for (const std::string& name : fields) {
            if (utf8Length(name) < name.size()) {
                throw CommandError(location + ": the name of the column " + inQuotes(name) + " is not UTF-8");
            }
        }
        m_header = std::move(fields);
        const std::string wanted = m_replay.timeColumn.empty() ? "time" : m_replay.timeColumn;
        if (std::count(m_header.begin(), m_header.end(), wanted) > 1) {
            throw CommandError(location + ": several columns are named " + inQuotes(wanted));
        }
        const auto column = std::find(m_header.begin(), m_header.end(), wanted);
        if (column != m_header.end()) {
            m_timeColumn = static_cast<std::size_t>(column - m_header.begin());
        } else if (!m_replay.timeColumn.empty()) {
            throw CommandError(location + ": no column " + inQuotes(m_replay.timeColumn));
        }
        const std::size_t nColumns = valueColumns().size();
        if ((nColumns == 0) || (nColumns > oids::MAX_SIGNALS)) {
            throw CommandError(location + ": " + std::to_string(nColumns) + " columns of values, not 1 to " +
                               std::to_string(oids::MAX_SIGNALS));
        }
    }

    double secondsOfRow(const std::vector<std::string>& fields, const std::string& location)
    {
        if (m_timeColumn == NO_COLUMN) {
            return static_cast<double>(m_rows.size()) * m_replay.interval;
        }
        const std::optional<double> seconds = m_times.parse(fields[m_timeColumn]);
        if (!seconds) {
            throw CommandError(location + ": " + inQuotes(fields[m_timeColumn]) + " is not a time");
        }
        if (m_rows.empty()) {
            m_firstTime = *seconds;
        }
        return *seconds - m_firstTime;
    }

    // The last row stays as long as the rows before it did on average.
    void setDuration()
    {
        const double last = m_rows.back().seconds;
        const double average = (m_rows.size() > 1) ? last / static_cast<double>(m_rows.size() - 1) : m_replay.interval;
        m_duration = last + ((average > 0) ? average : m_replay.interval);
    }

    static constexpr std::size_t NO_COLUMN = static_cast<std::size_t>(-1);

    const CsvReplay m_replay;
    const SecondsClock m_clock;
    std::vector<std::string> m_header;
    std::size_t m_timeColumn = NO_COLUMN;
    SampleTimes m_times;
    double m_firstTime = 0;
    std::vector<Row> m_rows;
    double m_duration = 0;
    double m_start = 0;
    std::size_t m_row = 0;
    std::vector<bool> m_isServed;  ///< the columns of that row
};

void addRowObject(CardObjects& objects, const std::shared_ptr<Recording>& pRecording)
{
    const auto check = [pRecording](const boost::any& value) {
        return pRecording->hasRow(boost::any_cast<unsigned int>(value)) ? icsc::RESULT_OK : icsc::RESULT_WRONG_VALUE;
    };
    const auto write = [pRecording](const boost::any& value) {
        pRecording->setRowNumber(boost::any_cast<unsigned int>(value));
    };
    objects[oids::CSV_ROW] = {OID_TYPE_UINT32, [pRecording] { return pRecording->rowNumber(); }, check, write};
}

}  // namespace

void addCsvObjects(CardObjects& objects, const CsvReplay& replay, const SecondsClock& clock)
{
    const auto pRecording = std::make_shared<Recording>(replay, clock);
    std::uint32_t index = 0;
    for (const std::size_t column : pRecording->valueColumns()) {
        const OidValueType type = pRecording->typeOf(column);
        objects[oids::CSV_COLUMN + index] =
            readOnly(type, [pRecording, column, type] { return *parseValue(type, pRecording->fieldNow(column)); });
        addConstant(objects, makeOidValue(oids::CSV_LABEL + index, pRecording->label(column)));
        ++index;
    }
    if (pRecording->isStepped()) {
        addRowObject(objects, pRecording);
    }
}

}  // namespace brantel
