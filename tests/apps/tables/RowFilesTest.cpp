// Rows of the tables in CSV and JSON: rows are read as they were written, and faults are reported.

#include <filesystem>
#include <limits>
#include <ostream>

#include <gtest/gtest.h>

#include "common/CommandLine.h"
#include "common/LineReader.h"
#include "support/SqlValues.h"
#include "support/TemporaryDirectory.h"
#include "tables/RowFiles.h"

namespace brantel {
namespace {

using Rows = std::vector<sql::Row>;

const EventTable& table(const std::string& name)
{
    return *findEventTable(name);
}

class RowFiles : public ::testing::Test {
protected:
    std::string csv(const std::string& content) { return m_directory.write("rows.csv", content); }
    std::string json(const std::string& content) { return m_directory.write("rows.json", content); }

    // Everything that a file holds: the names of its tables, and its rows.
    class Contents : public RowReceiver {
    public:
        void beginTable(const EventTable& eventTable) override { tables.push_back(eventTable.name()); }
        bool take(SourceRow row) override
        {
            rows.push_back(std::move(row));
            return rows.size() < nWanted;
        }

        std::vector<std::string> tables;
        std::vector<SourceRow> rows;
        std::size_t nWanted = std::numeric_limits<std::size_t>::max();
    };

    static void read(const std::string& path, RowReceiver& receiver)
    {
        const SpooledInput input(path);
        readRows(input, formatOf(input), receiver);
    }

    static std::vector<SourceRow> readAll(const std::string& path)
    {
        Contents contents;
        read(path, contents);
        return contents.rows;
    }

    static Rows valuesOf(const std::vector<SourceRow>& sourceRows)
    {
        Rows rows;
        for (const SourceRow& row : sourceRows) {
            EXPECT_TRUE(row.faults.empty()) << row.location;
            rows.push_back(row.row);
        }
        return rows;
    }

    // The reason why a file cannot be read, without the directory.
    std::string complaint(const std::string& path) const
    {
        try {
            readAll(path);
        } catch (const CommandError& error) {
            const std::string text = error.what();
            const std::string directory = m_directory.path() + "/";
            const std::size_t pos = text.find(directory);
            return (pos == std::string::npos) ? text : std::string(text).replace(pos, directory.size(), "");
        }
        return "";
    }

    TemporaryDirectory m_directory;
};

const Rows allowRows{
    {1, 7, "1234", "expr=unsigned(hyshigh(70,80))"},
    {std::int64_t{4294967295}, 0, "0", " / \"quoted\", with blanks around; and commas, \xc3\xa9 "},
    {9, 7, "1", ""},
};

TEST_F(RowFiles, InCsvComeBackAsTheyWere)
{
    const EventTable& allowTable = table("SysCardAllowEventsTable");
    std::string content = csvHeader(allowTable) + "\n";
    for (const sql::Row& row : allowRows) {
        content += csvRow(allowTable, row) + "\n";
    }
    EXPECT_EQ(valuesOf(readAll(csv(content))), allowRows);
}

TEST_F(RowFiles, InJsonComeBackAsTheyWere)
{
    std::string content = "{\n";
    const LineSink sink = [&](const std::string& line) { content += line + "\n"; };
    const auto visitorOf = [](const Rows& rows) {
        return [&rows](const std::function<void(const sql::Row&)>& visit) {
            for (const sql::Row& row : rows) {
                visit(row);
            }
        };
    };
    const Rows cards{{3, 17, 1}, {4, 17, 0}};
    writeJsonTable(table("SysCardAllowEventsTable"), visitorOf(allowRows), ",", sink);
    writeJsonTable(table("SysCardIgnoreEventsTable"), visitorOf({}), ",", sink);
    writeJsonTable(table("IfcCardsConfigTable"), visitorOf(cards), "", sink);
    content += "}\n";

    const std::vector<SourceRow> rows = readAll(json(content));
    Rows expected = allowRows;
    expected.insert(expected.end(), cards.begin(), cards.end());
    EXPECT_EQ(valuesOf(rows), expected);
    EXPECT_EQ(rows.back().pTable->name(), "IfcCardsConfigTable");
}

TEST_F(RowFiles, InCsvNameTheirTableByItsColumns)
{
    for (const EventTable& eventTable : eventTables()) {
        Contents contents;
        read(csv(csvHeader(eventTable) + "\n"), contents);
        EXPECT_EQ(contents.tables, std::vector<std::string>{eventTable.name()});
        EXPECT_TRUE(contents.rows.empty());
    }
}

TEST_F(RowFiles, InJsonNameTheirTablesAlsoWithoutRows)
{
    Contents contents;
    read(json(R"({"IfcCardsConfigTable":[],"ComponentConfigTable":[]})"), contents);
    EXPECT_EQ(contents.tables, (std::vector<std::string>{"IfcCardsConfigTable", "ComponentConfigTable"}));
}

TEST_F(RowFiles, AreReadNoFurtherThanWanted)
{
    for (const std::string& path :
         {csv("Slot,OID\n3,5\n4,5\n\"not CSV"),
          json(R"({"IfcCardsIgnoreEventsTable":[{"Slot":3,"OID":"5"},{"Slot":4,"OID":"5"},not JSON)")}) {
        Contents contents;
        contents.nWanted = 2;
        read(path, contents);
        EXPECT_EQ(contents.rows.size(), 2U) << path;
    }
}

TEST_F(RowFiles, InCsvMayHaveTheirColumnsInAnyOrder)
{
    EXPECT_EQ(valuesOf(readAll(csv("Rule,OID,RowIndex,Slot\n,5,1,3\n"))), (Rows{{1, 3, "5", ""}}));
}

TEST_F(RowFiles, MayLeaveTheirRowIndexOut)
{
    const std::vector<SourceRow> fromCsv = readAll(csv("Slot,OID\n3,5\n"));
    EXPECT_EQ(valuesOf(fromCsv), (Rows{{std::monostate(), 3, "5"}}));
    EXPECT_TRUE(fromCsv.front().needsRowIndex);
    const std::vector<SourceRow> fromJson = readAll(json(R"({"IfcCardsIgnoreEventsTable":[{"Slot":3,"OID":"5"}]})"));
    EXPECT_EQ(valuesOf(fromJson), (Rows{{std::monostate(), 3, "5"}}));
    EXPECT_TRUE(fromJson.front().needsRowIndex);
}

TEST_F(RowFiles, InCsvMayWriteFlagsAsWordsOrDigits)
{
    EXPECT_EQ(valuesOf(readAll(csv("ComponentID,EnableEvents\n1,true\n2,FALSE\n\n3,1\n4,0\n"))),
              (Rows{{1, 1}, {2, 0}, {3, 1}, {4, 0}}));
}

TEST_F(RowFiles, HaveTheirLocation)
{
    EXPECT_EQ(readAll(csv("Slot,OID\n3,5\n\n4,5\n")).back().location, m_directory.path() + "/rows.csv:4");
    const std::vector<SourceRow> rows =
        readAll(json("{\"IfcCardsIgnoreEventsTable\": [\n"
                     "  {\"Slot\":3,\"OID\":\"\\\"{\"}, {\"Slot\":4,\"OID\":\"\xc3\xa9\"}, {\n"
                     "  \"Slot\":5,\"OID\":\"6\"}]}"));
    std::vector<std::string> locations;
    for (const SourceRow& row : rows) {
        locations.push_back(row.location.substr(m_directory.path().size() + 1));
    }
    EXPECT_EQ(locations, (std::vector<std::string>{"rows.json:2:3", "rows.json:2:27", "rows.json:2:49"}));
}

TEST_F(RowFiles, AreCountedRoughlyInAdvance)
{
    const auto expected = [](const std::string& path) {
        const SpooledInput input(path);
        return expectedRows(input, formatOf(input));
    };
    EXPECT_EQ(expected(csv("Slot,OID\n3,5\n4,5\n")), 2U);
    EXPECT_EQ(expected(csv("")), 0U);
    EXPECT_EQ(expected(json(R"({"ComponentConfigTable":[{},{}],"IfcCardsConfigTable":[{}]})")), 3U);
}

TEST_F(RowFiles, HaveTheFormatOfTheirNamesOrContents)
{
    const auto format = [&](const char* name, const char* content) {
        return formatOf(SpooledInput(m_directory.write(name, content)));
    };
    EXPECT_EQ(format("rows.JSON", "Slot,OID\n"), TableFormat::JSON);
    EXPECT_EQ(format("rows.Csv", "{}"), TableFormat::CSV);
    EXPECT_EQ(format("rows", "\xEF\xBB\xBF \r\n\t{}"), TableFormat::JSON);
    EXPECT_EQ(format("rows", "[]"), TableFormat::JSON);
    EXPECT_EQ(format("rows", "Slot,OID\n"), TableFormat::CSV);
    EXPECT_EQ(format("rows", ""), TableFormat::CSV);
}

std::vector<std::string> faultTexts(const SourceRow& row)
{
    std::vector<std::string> texts;
    for (const RowFault& fault : row.faults) {
        texts.push_back(fault.column + ": " + fault.reason);
    }
    return texts;
}

TEST_F(RowFiles, NameEveryValueThatCannotBeRead)
{
    EXPECT_EQ(faultTexts(readAll(csv("Slot,CardType,EnableEvents\nx,99999999999999999999,yes\n")).front()),
              (std::vector<std::string>{"Slot: 'x' is not a number from 0 to 4294967295",
                                        "CardType: '99999999999999999999' is not a number from 0 to 4294967295",
                                        "EnableEvents: 'yes' is neither true nor false"}));
    const char* const rows =
        R"({"IfcCardsAllowEventsTable":[{"RowIndex":1.5,"Slot":18446744073709551615,"OID":5,"Rule":null}]})";
    EXPECT_EQ(faultTexts(readAll(json(rows)).front()),
              (std::vector<std::string>{"RowIndex: '1.5' is not a number from 0 to 4294967295",
                                        "Slot: 18446744073709551615 is not a number from 0 to 4294967295",
                                        "OID: 5 is not a text", "Rule: null is not a text"}));
}

struct BrokenFile {
    const char* name;
    const char* content;
    const char* complaint;
};

void PrintTo(const BrokenFile& file, std::ostream* pStream)
{
    *pStream << file.name << ": " << file.content;
}

const BrokenFile brokenFiles[] = {
    {"rows.csv", "", "rows.csv: the first row, which names the columns, is missing"},
    {"rows.csv", "Time,Level\n",
     "rows.csv:1: the first row does not name the columns of a table; the tables are TABLES"},
    {"rows.csv", "\nSlot,Rule\n",
     "rows.csv:2: the first row does not name OID; the columns of IfcCardsAllowEventsTable are RowIndex, Slot, OID, "
     "Rule"},
    {"rows.csv", "Slot,OID,Colour\n",
     "rows.csv:1: the first row names 'Colour', which is not a column of IfcCardsIgnoreEventsTable; the columns of "
     "IfcCardsIgnoreEventsTable are RowIndex, Slot, OID"},
    {"rows.csv", "ComponentID,OID,rule\n",
     "rows.csv:1: the first row names 'rule', which is written Rule; the columns of SysCardAllowEventsTable are "
     "RowIndex, "
     "ComponentID, OID, Rule"},
    {"rows.csv", "Slot,OID,OID\n",
     "rows.csv:1: the first row names 'OID' twice; the columns of IfcCardsIgnoreEventsTable are RowIndex, Slot, OID"},
    {"rows.csv", "Slot,OID\n3\n", "rows.csv:2: the row has 1 field, the first row names 2"},
    {"rows.csv", "Slot,OID,Rule\n3,1,expr=signed(hyshigh(1,2))\n",
     "rows.csv:2: the row has 4 fields, the first row names 3; put quotes around a field that contains a comma"},
    {"rows.csv", "Slot,OID\n3,\"5\n", "rows.csv:2: the closing quote is missing"},
    {"rows.json", "", "rows.json:1:1: this is not JSON: unexpected end of input; expected '[', '{', or a literal"},
    {"rows.json", "{\n\"ComponentConfigTable\": [\n  nul\n", "rows.json:3:6: this is not JSON: invalid literal"},
    {"rows.json", R"({"ComponentConfigTable":[]}})",
     "rows.json:1:28: this is not JSON: unexpected '}'; expected end of input"},
    {"rows.json", R"({"ComponentConfigTable":[]} x')",
     "rows.json:1:29: this is not JSON: invalid literal; expected end of input"},
    {"rows.json", R"({"ComponentConfigTable":[{"ComponentID":1e999}]})",
     "rows.json:1:46: this is not JSON: number overflow parsing '1e999'"},
    {"rows.json", "[]", "rows.json:1:1: this is not an object with the tables"},
    {"rows.json", R"({"X":[]})", "rows.json:1:2: 'X' is not one of the tables TABLES"},
    {"rows.json", R"({"componentconfigtable":[]})",
     "rows.json:1:2: 'componentconfigtable' is not one of the tables TABLES"},
    {"rows.json", R"({"ComponentConfigTable":{}})", "rows.json:1:25: ComponentConfigTable is not an array of rows"},
    {"rows.json", R"({"ComponentConfigTable":[3]})",
     "rows.json:1:26: a row of ComponentConfigTable is an object, not this"},
    {"rows.json", R"({"ComponentConfigTable":[{"ComponentID":[[1]]}]})",
     "rows.json:1:41: ComponentID: an array or object is not a number from 0 to 4294967295"},
    {"rows.json", R"({"ComponentConfigTable":[{"ComponentID":1,"EnableEvents":{"a":1}}]})",
     "rows.json:1:58: EnableEvents: an array or object is neither true nor false"},
    {"rows.json", R"({"ComponentConfigTable":[{"ComponentID":1}]})",
     "rows.json:1:26: the row has no value for EnableEvents"},
    {"rows.json", R"({"ComponentConfigTable":[{"ComponentID":1,"EnableEvents":true,"X":1}]})",
     "rows.json:1:63: ComponentConfigTable does not have a column 'X'"},
    {"rows.json", R"({"ComponentConfigTable":[{"ComponentID":1,"ComponentID":2}]})",
     "rows.json:1:43: the row has two values for ComponentID"},
    {"rows.json", R"({"ComponentConfigTable":[],"ComponentConfigTable":[]})",
     "rows.json:1:28: the table ComponentConfigTable is a duplicate"},
};

class BrokenRowFiles : public RowFiles, public ::testing::WithParamInterface<BrokenFile> {};

TEST_P(BrokenRowFiles, AreRefused)
{
    std::string expected = GetParam().complaint;
    const std::string tables = "TABLES";
    if (expected.find(tables) != std::string::npos) {
        expected.replace(expected.find(tables), tables.size(),
                         "ComponentConfigTable, IfcCardsConfigTable, SysCardAllowEventsTable, "
                         "SysCardIgnoreEventsTable, IfcCardsAllowEventsTable, IfcCardsIgnoreEventsTable");
    }
    EXPECT_EQ(complaint(m_directory.write(GetParam().name, GetParam().content)), expected);
}

INSTANTIATE_TEST_SUITE_P(That, BrokenRowFiles, ::testing::ValuesIn(brokenFiles));

// JSON whose depth, whose length of a text or whose blanks grow without end.
TEST_F(RowFiles, InJsonTakeNoMoreRoomThanARow)
{
    const std::string start = R"({"IfcCardsAllowEventsTable":[{"Slot":3,"OID":"5","Rule":)";
    const std::size_t length = 2 * LineReader::MAX_LINE_LENGTH;
    EXPECT_EQ(complaint(json(start + std::string(length, '['))),
              "rows.json:1:57: Rule: an array or object is not a text");
    EXPECT_EQ(complaint(json(std::string(length, '['))), "rows.json:1:1: this is not an object with the tables");
    const std::string tooLong = "a text, a number or a gap is longer than 1048576 bytes";
    EXPECT_EQ(complaint(json(start + "\"" + std::string(length, 'x'))), "rows.json:1:57: " + tooLong);
    EXPECT_EQ(complaint(json(start + std::string(length, '1'))), "rows.json:1:57: " + tooLong);
    EXPECT_EQ(complaint(json(start + std::string(length, ' '))), "rows.json:1:56: " + tooLong);
}

TEST_F(RowFiles, MayHoldNoNulByte)
{
    EXPECT_EQ(complaint(json(std::string("{\"ComponentConfigTable\":[]}\n\0{", 31))),
              "rows.json:2:1: there is a NUL byte");
    EXPECT_EQ(complaint(json(std::string("{\"Compo\0nent", 12))), "rows.json:1:8: there is a NUL byte");
    EXPECT_EQ(complaint(csv(std::string("Slot,OID\n3,\0\n", 13))), "rows.csv:2: the line contains a NUL byte");
}

TEST_F(RowFiles, ThatCannotBeReadAreNamed)
{
    const std::string folder = m_directory.path() + "/folder.json";
    std::filesystem::create_directory(folder);
    EXPECT_EQ(complaint(folder), "cannot read folder.json: Is a directory");
    EXPECT_EQ(complaint(m_directory.path() + "/none.csv"), "cannot read none.csv: No such file or directory");
    EXPECT_EQ(complaint(m_directory.path() + "/none.json"), "cannot read none.json: No such file or directory");
}

}  // namespace

}  // namespace brantel
