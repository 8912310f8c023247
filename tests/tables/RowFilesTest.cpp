// Rows of the tables in CSV and JSON: what is written is read again, and what is not right is told.

#include <ostream>

#include <gtest/gtest.h>

#include "common/CommandLine.h"
#include "support/TemporaryDirectory.h"
#include "tables/RowSink.h"
#include "tables/RowSource.h"

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

    static std::vector<SourceRow> readAll(const std::string& path)
    {
        std::vector<SourceRow> rows;
        const std::unique_ptr<RowSource> pSource = openRowSource(path, formatOfFile(path));
        while (const std::optional<SourceRow> row = pSource->next()) {
            rows.push_back(*row);
        }
        return rows;
    }

    static Rows valuesOf(const std::vector<SourceRow>& sourceRows)
    {
        Rows rows;
        for (const SourceRow& row : sourceRows) {
            EXPECT_TRUE(row.faults.empty()) << row.place;
            rows.push_back(row.row);
        }
        return rows;
    }

    // What is said of a file that can not be read, without the directory.
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

TEST_F(RowFiles, InCsvTellTheirTableByTheNamesOfTheColumns)
{
    for (const EventTable& eventTable : eventTables()) {
        const std::unique_ptr<RowSource> pSource = openRowSource(csv(csvHeader(eventTable) + "\n"), TableFormat::CSV);
        EXPECT_EQ(pSource->tables(), std::vector<const EventTable*>{&eventTable});
        EXPECT_EQ(pSource->next(), std::nullopt);
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

TEST_F(RowFiles, SayWhereTheyStand)
{
    EXPECT_EQ(readAll(csv("Slot,OID\n3,5\n\n4,5\n")).back().place, m_directory.path() + "/rows.csv:4");
    EXPECT_EQ(readAll(json(R"({"ComponentConfigTable":[{"ComponentID":1,"EnableEvents":true}]})")).back().place,
              m_directory.path() + "/rows.json: ComponentConfigTable[0]");
}

TEST_F(RowFiles, KnowHowManyTheyAre)
{
    EXPECT_EQ(openRowSource(csv("Slot,OID\n3,5\n4,5\n"), TableFormat::CSV)->expectedRows(), 2U);
    EXPECT_EQ(openRowSource(json(R"({"ComponentConfigTable":[{},{}],"IfcCardsConfigTable":[{}]})"), TableFormat::JSON)
                  ->expectedRows(),
              3U);
}

std::vector<std::string> faultTexts(const SourceRow& row)
{
    std::vector<std::string> texts;
    for (const RowFault& fault : row.faults) {
        texts.push_back(fault.column + ": " + fault.reason);
    }
    return texts;
}

TEST_F(RowFiles, TellEveryValueThatCanNotBeRead)
{
    EXPECT_EQ(faultTexts(readAll(csv("Slot,CardType,EnableEvents\nx,99999999999999999999,yes\n")).front()),
              (std::vector<std::string>{"Slot: 'x' is no number", "CardType: '99999999999999999999' is no number",
                                        "EnableEvents: 'yes' is neither true nor false"}));
    const char* const rows =
        R"({"IfcCardsAllowEventsTable":[{"RowIndex":1.5,"Slot":18446744073709551615,"OID":5,"Rule":null}]})";
    EXPECT_EQ(faultTexts(readAll(json(rows)).front()),
              (std::vector<std::string>{"RowIndex: 1.5 is no number", "Slot: 18446744073709551615 is no number",
                                        "OID: 5 is no text", "Rule: null is no text"}));
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

constexpr const char* TABLES =
    "ComponentConfigTable, IfcCardsConfigTable, SysCardAllowEventsTable, SysCardIgnoreEventsTable, "
    "IfcCardsAllowEventsTable, IfcCardsIgnoreEventsTable, NrOfRowsChangedTable";

const BrokenFile brokenFiles[] = {
    {"rows.csv", "", "rows.csv: there is no row with the names of the columns"},
    {"rows.csv", "\nSlot,Rule\n", "rows.csv:2: the first row does not name the columns of one of the tables "},
    {"rows.csv", "Slot,OID,Colour\n", "rows.csv:1: the first row does not name the columns of one of the tables "},
    {"rows.csv", "Slot,OID\n3\n", "rows.csv:2: the row has 1 fields, the first row names 2"},
    {"rows.csv", "Slot,OID\n3,\"5\n", "rows.csv:2: the closing quote is missing"},
    {"rows.json", "", "rows.json: [json.exception.parse_error.101]"},
    {"rows.json", "[]", "rows.json: there is no object with the tables"},
    {"rows.json", R"({"X":[]})", "rows.json: 'X' is not one of the tables "},
    {"rows.json", R"({"componentconfigtable":[]})", "rows.json: 'componentconfigtable' is not one of the tables "},
    {"rows.json", R"({"ComponentConfigTable":{}})", "rows.json: ComponentConfigTable is no array of rows"},
    {"rows.json", R"({"ComponentConfigTable":[3]})", "rows.json: ComponentConfigTable[0]: the row is no object"},
    {"rows.json", R"({"ComponentConfigTable":[{"ComponentID":1}]})",
     "rows.json: ComponentConfigTable[0]: there is no 'EnableEvents'"},
    {"rows.json", R"({"ComponentConfigTable":[{"ComponentID":1,"EnableEvents":true,"X":1}]})",
     "rows.json: ComponentConfigTable[0]: the row has values for columns that ComponentConfigTable does not have"},
    {"rows.json", R"({"ComponentConfigTable":[],"ComponentConfigTable":[]})",
     "the name 'ComponentConfigTable' stands twice in one JSON object"},
};

class BrokenRowFiles : public RowFiles, public ::testing::WithParamInterface<BrokenFile> {};

TEST_P(BrokenRowFiles, AreRefused)
{
    std::string expected = GetParam().complaint;
    if (expected.find("of the tables ") != std::string::npos) {
        expected += TABLES;
    }
    const std::string actual = complaint(m_directory.write(GetParam().name, GetParam().content));
    EXPECT_EQ(actual.substr(0, expected.size()), expected);
}

INSTANTIATE_TEST_SUITE_P(That, BrokenRowFiles, ::testing::ValuesIn(brokenFiles));

TEST_F(RowFiles, ThatAreNotThereAreNamed)
{
    EXPECT_EQ(complaint(m_directory.path() + "/none.csv"), "cannot read none.csv: No such file or directory");
    EXPECT_EQ(complaint(m_directory.path() + "/none.json"), "cannot read none.json: No such file or directory");
}

}  // namespace
