// The subcommands of "brantel db", end-to-end, as invoked from a shell.

#include <sys/stat.h>

#include <gtest/gtest.h>

#include "support/CommandRun.h"
#include "support/TemporaryDirectory.h"

namespace brantel {
namespace {

using Arguments = std::vector<std::string>;

class DbCommand : public testing::Test {
protected:
    // Runs in a directory of the test's own, where events.db is.
    CommandResult db(const Arguments& arguments, const std::string& input = "") const
    {
        Arguments all{"db"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return runProgram(BRANTEL_COMMAND, all, {input, "", m_directory.path(), {"BRANTEL_DB="}});
    }

    std::string countOf(const std::string& table) const
    {
        const std::string out = db({"show", "--json"}).out;
        const std::string name = "\"" + table + "\":";
        const std::size_t begin = out.find(name) + name.size();
        return out.substr(begin, out.find_first_of(",}", begin) - begin);
    }

    // Whatever SQLite understands, past the command.
    void sqlite(const std::string& statements) const
    {
        const CommandResult result =
            runProgram("/usr/bin/sqlite3", {"events.db", statements}, {"", "", m_directory.path(), {}});
        ASSERT_EQ(result.exitCode, 0) << result;
    }

    static std::string firstLine(const CommandResult& result)
    {
        return result.err.substr(0, result.err.find('\n') + 1);
    }

    void init() const { ASSERT_EQ(db({"init"}).exitCode, 0); }

    static CommandResult fine(const std::string& out) { return {0, out + "\n", ""}; }
    static CommandResult refused(const std::string& err) { return {1, "", "brantel: " + err + "\n"}; }
    static CommandResult unusable(const std::string& err) { return {2, "", "brantel: " + err + "\n"}; }
    static CommandResult misused(const std::string& err)
    {
        return {2, "", "brantel: " + err + "\nRun with --help for more information.\n"};
    }

    TemporaryDirectory m_directory;
};

TEST_F(DbCommand, CreatesADatabaseOnce)
{
    EXPECT_EQ(db({"init"}), fine("events.db: the event-management database is ready"));
    db({"component", "enable", "7"});
    EXPECT_EQ(db({"init"}), fine("events.db: the event-management database is ready"));
    EXPECT_EQ(countOf("ComponentConfigTable"), "1");
}

TEST_F(DbCommand, TakesTheFileFromTheCommandLineOrTheEnvironment)
{
    const std::string one = m_directory.path() + "/one.db";
    EXPECT_EQ(db({"init", one}), fine(one + ": the event-management database is ready"));
    EXPECT_EQ(db({"--db", one, "check"}), fine(one + ": nothing is wrong"));
    EXPECT_EQ(db({"check", "--db", one}), fine(one + ": nothing is wrong"));
    EXPECT_EQ(runProgram(BRANTEL_COMMAND, {"db", "check"}, {"", "", "", {"BRANTEL_DB=" + one}}),
              fine(one + ": nothing is wrong"));
    EXPECT_EQ(db({"check"}), unusable("'events.db' does not exist; 'brantel db init' creates a database"));
}

TEST_F(DbCommand, EnablesAndDisablesComponents)
{
    init();
    EXPECT_EQ(db({"component", "enable", "7"}), fine("component 7: events enabled"));
    EXPECT_EQ(db({"component", "enable", "7"}), fine("component 7: events are enabled already"));
    EXPECT_EQ(db({"component", "disable", "4294967295"}), fine("component 4294967295: events disabled"));
    EXPECT_EQ(db({"show", "ComponentConfigTable"}), fine("ComponentID  EnableEvents\n"
                                                         "          7  true\n"
                                                         " 4294967295  false"));
}

TEST_F(DbCommand, EnablesAndDisablesCards)
{
    init();
    EXPECT_EQ(db({"card", "enable", "3"}), refused("slot 3: there is no card yet; specify its type with --type"));
    EXPECT_EQ(db({"card", "enable", "3", "--type", "17"}), fine("slot 3: events enabled"));
    EXPECT_EQ(db({"card", "disable", "3"}), fine("slot 3: events disabled"));
    EXPECT_EQ(db({"show", "IfcCardsConfigTable", "--json"}), fine(R"({"Slot":3,"CardType":17,"EnableEvents":false})"));
}

TEST_F(DbCommand, ReportsAChangedTypeOfACard)
{
    init();
    db({"card", "enable", "3", "--type", "17"});
    EXPECT_EQ(db({"card", "enable", "3", "--type", "18"}),
              fine("slot 3: events are enabled already, type 18 (was 17)"));
    EXPECT_EQ(db({"card", "disable", "3", "--type", "17"}), fine("slot 3: events disabled, type 17 (was 18)"));
    EXPECT_EQ(db({"card", "disable", "3", "--type", "17"}), fine("slot 3: events are disabled already"));
}

TEST_F(DbCommand, RemovesAComponentOrACardWithItsEntries)
{
    init();
    db({"component", "enable", "3"});
    db({"allow", "add", "--component", "3", "1", "/"});
    db({"card", "enable", "3", "--type", "17"});
    EXPECT_EQ(db({"component", "remove", "3"}), fine("component 3: 2 rows removed"));
    EXPECT_EQ(db({"component", "remove", "3"}), refused("component 3 is in no table"));
    EXPECT_EQ(db({"card", "remove", "3"}), fine("slot 3: 1 row removed"));
    EXPECT_EQ(db({"card", "remove", "3"}), refused("slot 3 is in no table"));
    EXPECT_EQ(db({"check"}), fine("events.db: nothing is wrong"));
}

TEST_F(DbCommand, PrunesTheRowChangeTable)
{
    init();
    for (const char* const component : {"1", "2", "3"}) {
        db({"component", "enable", component});
    }
    EXPECT_EQ(db({"prune", "--keep", "2"}), fine("NrOfRowsChangedTable: 1 row removed"));
    EXPECT_EQ(db({"prune"}), fine("NrOfRowsChangedTable: 1 row removed"));
    EXPECT_EQ(db({"show", "NrOfRowsChangedTable", "--json"}),
              fine(R"({"RowIndex":3,"ComponentID":3,"TableOid":"ComponentConfigTable","EnableEvent":true})"));
    EXPECT_EQ(db({"prune", "--keep", "0"}).exitCode, 2) << "the count would start again";
}

TEST_F(DbCommand, NamesTheRemedyForAnEmptyOrMissingFile)
{
    const std::string remedy = "; 'brantel db init' creates a database";
    for (const Arguments& arguments : {Arguments{"show"}, {"check"}, {"component", "enable", "1"}}) {
        EXPECT_EQ(db(arguments), unusable("'events.db' does not exist" + remedy));
    }
    m_directory.write("events.db", "");
    for (const Arguments& arguments : {Arguments{"show"}, {"check"}, {"component", "enable", "1"}}) {
        EXPECT_EQ(db(arguments), unusable("'events.db' is empty" + remedy));
    }
    EXPECT_EQ(db({"init"}), fine("events.db: the event-management database is ready"));
}

TEST_F(DbCommand, RefusesADatabaseThatIsNotAFile)
{
    ASSERT_EQ(mkfifo((m_directory.path() + "/events.db").c_str(), 0600), 0);
    for (const Arguments& arguments : {Arguments{"show"}, {"check"}, {"init"}, {"component", "enable", "1"}}) {
        EXPECT_EQ(db(arguments), unusable("'events.db' is not a regular file"));
    }
}

TEST_F(DbCommand, ShowsUnknownNamesWithoutTheirControlCharacters)
{
    const std::string escape = "\x1b[31m";
    EXPECT_EQ(db({"--db", "a" + escape + ".db", "show"}),
              unusable("'a?[31m.db' does not exist; 'brantel db init' creates a database"));
    EXPECT_EQ(db({"init", "a\xc2\x9b.db"}), fine("a?.db: the event-management database is ready"));
    EXPECT_EQ(db({"--db", "a\xc2\x9b.db", "check"}), fine("a?.db: nothing is wrong"));
    init();
    EXPECT_EQ(db({"import", "b" + escape + ".csv"}), unusable("cannot read b?[31m.csv: No such file or directory"));
    EXPECT_EQ(
        db({"import", "-"}, "Slot,OID," + escape + "\n"),
        unusable("standard input:1: the first row names '?[31m', which is not a column of IfcCardsIgnoreEventsTable; "
                 "the columns of IfcCardsIgnoreEventsTable are RowIndex, Slot, OID"));
    EXPECT_EQ(db({"import", "-"}, "{\"\\u001b\\u202e\":[]}"),
              unusable("standard input:1:2: '?"
                       "?' is not one of the tables ComponentConfigTable, IfcCardsConfigTable, "
                       "SysCardAllowEventsTable, SysCardIgnoreEventsTable, IfcCardsAllowEventsTable, "
                       "IfcCardsIgnoreEventsTable"));
    EXPECT_EQ(
        db({"import", "-"}, "Slot,OID\n3," + escape + "\n"),
        refused("standard input:2: OID: '?[31m' is not an OID: write a decimal number from 0 to 4294967295 without "
                "leading zeros\nbrantel: nothing is imported"));
    EXPECT_EQ(db({"import", "-"}, "Slot,OID,Rule\n3,1,/ \xe2\x80\xae\n"),
              refused("standard input:2: Rule:3: refused: there is a control character\n"
                      "    / ?\n"
                      "      ^\n"
                      "    write the rule in one line\n"
                      "brantel: nothing is imported"));
}

// A pipe that delivers nothing yet keeps no other writer waiting.
TEST_F(DbCommand, LocksNothingWhileItWaitsForItsInput)
{
    init();
    const LiveCommand import(BRANTEL_COMMAND, {"db", "--db", m_directory.path() + "/events.db", "import", "-"},
                             LiveCommand::Output::PIPE);
    import.write("Slot,OID,Rule\n1,1,/\n");
    EXPECT_EQ(db({"component", "enable", "1"}), fine("component 1: events enabled"));
    EXPECT_EQ(countOf("IfcCardsAllowEventsTable"), "0");
}

TEST_F(DbCommand, AddsListsAndRemovesAllowedObjects)
{
    init();
    const std::string rule = "expr=unsigned(hyshigh(70,80))";
    EXPECT_EQ(db({"allow", "add", "--component", "7", "0x4d2", rule}),
              fine("component 7 OID 1234 added to SysCardAllowEventsTable"));
    EXPECT_EQ(db({"allow", "add", "--component", "7", "1234", rule}),
              fine("component 7 OID 1234 is already in SysCardAllowEventsTable"));
    EXPECT_EQ(db({"allow", "add", "--slot", "3", "5", ""}), fine("slot 3 OID 5 added to IfcCardsAllowEventsTable"));
    EXPECT_EQ(db({"allow", "list"}), fine("RowIndex  ComponentID  OID   Rule\n"
                                          "       1            7  1234  expr=unsigned(hyshigh(70,80))\n"
                                          "RowIndex  Slot  OID  Rule\n"
                                          "       1     3  5"));
    EXPECT_EQ(db({"allow", "list", "--component", "7", "--oid", "0x4D2", "--json"}),
              fine(R"JSON({"RowIndex":1,"ComponentID":7,"OID":"1234","Rule":"expr=unsigned(hyshigh(70,80))"})JSON"));
    EXPECT_EQ(db({"allow", "list", "--slot", "4", "--json"}), (CommandResult{0, "", ""}));
    EXPECT_EQ(db({"allow", "remove", "--component", "7", "1234", "expr=signed(value>1)"}),
              refused("component 7 OID 1234 is not in SysCardAllowEventsTable with this rule"));
    EXPECT_EQ(db({"allow", "remove", "--component", "7", "1234"}),
              fine("component 7 OID 1234 removed from SysCardAllowEventsTable"));
    EXPECT_EQ(db({"allow", "remove", "--component", "7", "1234"}),
              refused("component 7 OID 1234 is not in SysCardAllowEventsTable"));
}

TEST_F(DbCommand, AddsListsAndRemovesIgnoredObjects)
{
    init();
    EXPECT_EQ(db({"ignore", "add", "--slot", "3", "5"}), fine("slot 3 OID 5 added to IfcCardsIgnoreEventsTable"));
    EXPECT_EQ(db({"ignore", "add", "--component", "3", "5"}),
              fine("component 3 OID 5 added to SysCardIgnoreEventsTable"));
    EXPECT_EQ(db({"ignore", "list", "--slot", "3"}), fine("RowIndex  Slot  OID\n"
                                                          "       1     3  5"));
    EXPECT_EQ(db({"ignore", "remove", "--slot", "3", "5"}),
              fine("slot 3 OID 5 removed from IfcCardsIgnoreEventsTable"));
}

TEST_F(DbCommand, TakesTheNamesOfObjects)
{
    init();
    EXPECT_EQ(db({"allow", "add", "--slot", "3", "cpu.busy", "/"}),
              fine("slot 3 cpu.busy added to IfcCardsAllowEventsTable"));
    EXPECT_EQ(db({"allow", "add", "--slot", "3", "0x00020102", "/"}),
              fine("slot 3 cpu.busy is already in IfcCardsAllowEventsTable"));
    EXPECT_EQ(db({"allow", "add", "--slot", "3", "5", "/"}), fine("slot 3 OID 5 added to IfcCardsAllowEventsTable"));
    EXPECT_EQ(db({"allow", "list", "--oid", "cpu.busy", "--json"}),
              fine(R"({"RowIndex":1,"Slot":3,"OID":"131330","Rule":"/"})"));
    EXPECT_EQ(db({"ignore", "add", "--component", "7", "mem.available"}),
              fine("component 7 mem.available added to SysCardIgnoreEventsTable"));
    EXPECT_EQ(db({"ignore", "remove", "--component", "7", "mem.available"}),
              fine("component 7 mem.available removed from SysCardIgnoreEventsTable"));
}

TEST_F(DbCommand, TakesListsOfSlotsAndOfComponents)
{
    init();
    EXPECT_EQ(db({"allow", "add", "--slot", "0-1,7", "cpu.busy", "/"}),
              fine("slot 0 cpu.busy added to IfcCardsAllowEventsTable\n"
                   "slot 1 cpu.busy added to IfcCardsAllowEventsTable\n"
                   "slot 7 cpu.busy added to IfcCardsAllowEventsTable"));
    EXPECT_EQ(db({"ignore", "add", "--component", "4294967294-4294967295", "5"}),
              fine("component 4294967294 OID 5 added to SysCardIgnoreEventsTable\n"
                   "component 4294967295 OID 5 added to SysCardIgnoreEventsTable"));
    EXPECT_EQ(db({"allow", "list", "--slot", "7,1", "--json"}),
              fine("{\"RowIndex\":2,\"Slot\":1,\"OID\":\"131330\",\"Rule\":\"/\"}\n"
                   "{\"RowIndex\":3,\"Slot\":7,\"OID\":\"131330\",\"Rule\":\"/\"}"));
    EXPECT_EQ(db({"allow", "remove", "--slot", "0,7", "cpu.busy"}),
              fine("slot 0 cpu.busy removed from IfcCardsAllowEventsTable\n"
                   "slot 7 cpu.busy removed from IfcCardsAllowEventsTable"));
    EXPECT_EQ(countOf("IfcCardsAllowEventsTable"), "1");
}

TEST_F(DbCommand, ChangesNothingIfOneOfSeveralEntriesIsRefused)
{
    init();
    db({"ignore", "add", "--slot", "1,3", "5"});
    EXPECT_EQ(db({"ignore", "remove", "--slot", "0-3", "5"}),
              refused("slot 0 OID 5 is not in IfcCardsIgnoreEventsTable\n"
                      "brantel: slot 2 OID 5 is not in IfcCardsIgnoreEventsTable\n"
                      "brantel: nothing is removed"));
    EXPECT_EQ(db({"allow", "add", "--slot", "0-3", "5", "expr=signed(value=<5)"}).exitCode, 1);
    EXPECT_EQ(countOf("IfcCardsIgnoreEventsTable"), "2");
    EXPECT_EQ(countOf("IfcCardsAllowEventsTable"), "0");
    EXPECT_EQ(countOf("NrOfRowsChangedTable"), "2");
}

TEST_F(DbCommand, ExplainsARefusedRuleAndStoresNothing)
{
    init();
    EXPECT_EQ(db({"allow", "add", "--component", "7", "1", "expr=signed(value =< 5)"}),
              refused("rule:19: refused: '=<' is not an operator\n"
                      "    expr=signed(value =< 5)\n"
                      "                      ^~\n"
                      "    write '<='"));
    EXPECT_EQ(db({"allow", "add", "--component", "7", "1", "expr=signed(value>1);expr=signed(value<5)"}),
              refused("rule:1: refused: a rule of several parts is never evaluated: make each part a rule of its own\n"
                      "    expr=signed(value>1);expr=signed(value<5)\n"
                      "    ^~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n"
                      "    write a rule of one part"));
    EXPECT_EQ(countOf("SysCardAllowEventsTable"), "0");
    EXPECT_EQ(countOf("NrOfRowsChangedTable"), "0");
}

TEST_F(DbCommand, WarnsOfAnObjectThatIsAllowedAndIgnored)
{
    init();
    db({"ignore", "add", "--slot", "3", "5"});
    EXPECT_EQ(db({"allow", "add", "--slot", "3", "5", ""}),
              (CommandResult{0, "slot 3 OID 5 added to IfcCardsAllowEventsTable\n",
                             "brantel: slot 3 OID 5 is in IfcCardsIgnoreEventsTable too: ignored events are "
                             "never raised\n"}));
    EXPECT_EQ(db({"check"}), (CommandResult{1,
                                            "IfcCardsAllowEventsTable row 1: has no effect: row 1 of "
                                            "IfcCardsIgnoreEventsTable ignores the events of this slot and OID\n"
                                            "events.db: 1 problem\n",
                                            ""}));
}

TEST_F(DbCommand, NotesEveryChangeForMonitors)
{
    init();
    db({"component", "enable", "7"});
    db({"ignore", "add", "--slot", "3", "5"});
    EXPECT_EQ(db({"show", "nrofrowschangedtable"}),
              fine("RowIndex  ComponentID  TableOid                   EnableEvent\n"
                   "       1            7  ComponentConfigTable       true\n"
                   "       2            3  IfcCardsIgnoreEventsTable  false"));
}

constexpr const char* UNKNOWN_TABLE =
    "unknown table 'x'; expected ComponentConfigTable, IfcCardsConfigTable, SysCardAllowEventsTable, "
    "SysCardIgnoreEventsTable, IfcCardsAllowEventsTable, IfcCardsIgnoreEventsTable or NrOfRowsChangedTable";

TEST_F(DbCommand, ShowsHowManyRowsThereAre)
{
    init();
    db({"component", "enable", "7"});
    EXPECT_EQ(db({"show"}), fine("Table                      Rows\n"
                                 "ComponentConfigTable          1\n"
                                 "IfcCardsConfigTable           0\n"
                                 "SysCardAllowEventsTable       0\n"
                                 "SysCardIgnoreEventsTable      0\n"
                                 "IfcCardsAllowEventsTable      0\n"
                                 "IfcCardsIgnoreEventsTable     0\n"
                                 "NrOfRowsChangedTable          1"));
    EXPECT_EQ(db({"show", "IfcCardConfigTable"}),
              unusable("unknown table 'IfcCardConfigTable'; did you mean 'IfcCardsConfigTable'?"));
    EXPECT_EQ(db({"show", "x"}), unusable(UNKNOWN_TABLE));
}

constexpr const char* EVENTS =
    "{\n"
    "\"ComponentConfigTable\": [\n"
    "  {\"ComponentID\":7,\"EnableEvents\":true}\n"
    "],\n"
    "\"IfcCardsConfigTable\": [\n"
    "],\n"
    "\"SysCardAllowEventsTable\": [\n"
    "  {\"RowIndex\":3,\"ComponentID\":7,\"OID\":\"1\",\"Rule\":\"expr=signed(value>1)\"},\n"
    "  {\"RowIndex\":5,\"ComponentID\":7,\"OID\":\"2\",\"Rule\":\" / a \\\"comment\\\"\"}\n"
    "],\n"
    "\"SysCardIgnoreEventsTable\": [\n"
    "],\n"
    "\"IfcCardsAllowEventsTable\": [\n"
    "],\n"
    "\"IfcCardsIgnoreEventsTable\": [\n"
    "  {\"RowIndex\":1,\"Slot\":3,\"OID\":\"4294967295\"}\n"
    "]\n"
    "}\n";

TEST_F(DbCommand, ExportsWhatItImported)
{
    init();
    std::string events = EVENTS;
    events.replace(events.find(" / a"), 4, "/ a");
    EXPECT_EQ(db({"import", "--format", "json", "-"}, events), fine("4 rows imported"));
    EXPECT_EQ(db({"export"}), (CommandResult{0, events, ""}));
    const std::string csv =
        "RowIndex,ComponentID,OID,Rule\n"
        "3,7,\"1\",\"expr=signed(value>1)\"\n"
        "5,7,\"2\",\"/ a \"\"comment\"\"\"\n";
    EXPECT_EQ(db({"export", "--format", "csv", "--table", "syscardalloweventstable"}), (CommandResult{0, csv, ""}));
    EXPECT_EQ(db({"import", "--replace", m_directory.write("rules.csv", csv)}), fine("2 rows imported"));
    EXPECT_EQ(db({"export"}), (CommandResult{0, events, ""}));
    EXPECT_EQ(db({"check"}), fine("events.db: nothing is wrong"));
}

TEST_F(DbCommand, ImportsAllOfAFileOrNothing)
{
    init();
    const std::string rules =
        "ComponentID,OID,Rule\n"
        "7,1,expr=signed(value>1)\n"
        "7,two,expr=signed(value=1)\n"
        "x,3,\n";
    EXPECT_EQ(db({"import", "-"}, rules),
              refused("standard input:3: OID: 'two' is not an OID: write a decimal number from 0 to 4294967295 without "
                      "leading zeros\n"
                      "brantel: standard input:3: Rule:18: refused: '=' is not an operator\n"
                      "    expr=signed(value=1)\n"
                      "                     ^\n"
                      "    write '==' to compare\n"
                      "brantel: standard input:4: ComponentID: 'x' is not a number from 0 to 4294967295\n"
                      "brantel: nothing is imported"));
    EXPECT_EQ(countOf("SysCardAllowEventsTable"), "0");
    EXPECT_EQ(countOf("NrOfRowsChangedTable"), "0");
}

TEST_F(DbCommand, StoresOidsInOneFormHoweverTheyAreWritten)
{
    init();
    EXPECT_EQ(db({"ignore", "add", "--slot", "010", "010"}), fine("slot 10 OID 10 added to IfcCardsIgnoreEventsTable"));
    EXPECT_EQ(db({"import", "-"}, "Slot,OID\n010,010\n011,0x00b\n11,011\n"), fine("1 row imported, 2 already there"));
    EXPECT_EQ(db({"import", "-"}, R"({"IfcCardsIgnoreEventsTable": [{"Slot": 12, "OID": "0012"}]})"),
              fine("1 row imported"));
    EXPECT_EQ(db({"import", "-"}, "RowIndex,Slot,OID\n01,10,0XA\n"), fine("0 rows imported, 1 already there"));
    EXPECT_EQ(db({"ignore", "list", "--slot", "10-12"}), fine("RowIndex  Slot  OID\n"
                                                              "       1    10  10\n"
                                                              "       3    11  11\n"
                                                              "       4    12  12"));
    EXPECT_EQ(db({"check"}), fine("events.db: nothing is wrong"));
}

TEST_F(DbCommand, ReplacesRowsOnRequestOnly)
{
    init();
    EXPECT_EQ(db({"import", "-"}, "Slot,CardType,EnableEvents\n3,17,true\n"), fine("1 row imported"));
    EXPECT_EQ(db({"import", "-"}, "Slot,CardType,EnableEvents\n4,17,true\n3,18,true\n"),
              unusable("standard input:3: IfcCardsConfigTable has another row with Slot 3; nothing is imported "
                       "(--replace empties the table before)"));
    EXPECT_EQ(countOf("IfcCardsConfigTable"), "1");
    EXPECT_EQ(db({"import", "--replace", "-"}, "Slot,CardType,EnableEvents\n"), fine("0 rows imported"));
    EXPECT_EQ(countOf("IfcCardsConfigTable"), "0");
}

TEST_F(DbCommand, ImportsExistingRowsOnlyOnce)
{
    init();
    const std::string cards = "Slot,CardType,EnableEvents\n3,17,true\n";
    db({"import", "-"}, cards);
    EXPECT_EQ(db({"import", "-"}, cards), fine("0 rows imported, 1 already there"));
    EXPECT_EQ(db({"import", "-"}, "ComponentID,OID,Rule\n7,1,/\n7,1,/\n7,2,/\n"),
              fine("2 rows imported, 1 already there"));
    EXPECT_EQ(countOf("NrOfRowsChangedTable"), "2");
    EXPECT_EQ(db({"import", "-"}, "ComponentID,OID,Rule\n7,2,/\n7,1,/\n"), fine("0 rows imported, 2 already there"));
    EXPECT_EQ(countOf("NrOfRowsChangedTable"), "2") << "nothing changed";
    EXPECT_EQ(db({"import", "-"}, "ComponentID,OID,Rule\n7,2,/\n8,1,/\n7,3,/\n"),
              fine("2 rows imported, 1 already there"));
    EXPECT_EQ(db({"show", "NrOfRowsChangedTable"}), fine("RowIndex  ComponentID  TableOid                 EnableEvent\n"
                                                         "       1            3  IfcCardsConfigTable      true\n"
                                                         "       2            7  SysCardAllowEventsTable  true\n"
                                                         "       3            7  SysCardAllowEventsTable  true\n"
                                                         "       4            8  SysCardAllowEventsTable  true"));
    EXPECT_EQ(db({"check"}), fine("events.db: nothing is wrong"));
}

TEST_F(DbCommand, ImportsDuplicatesThatHaveARowIndex)
{
    init();
    const std::string csv = "RowIndex,Slot,OID\n1,3,\"1\"\n2,3,\"1\"\n";
    EXPECT_EQ(db({"import", "-"}, csv), fine("2 rows imported")) << "as they were exported";
    EXPECT_EQ(db({"export", "--format", "csv", "--table", "IfcCardsIgnoreEventsTable"}), (CommandResult{0, csv, ""}));
    EXPECT_EQ(db({"import", "-"}, csv), fine("0 rows imported, 2 already there"));
}

TEST_F(DbCommand, NumbersImportedRowsAfterExistingOnes)
{
    init();
    db({"import", "-"}, "RowIndex,Slot,OID\n8,3,1\n");
    db({"import", "-"}, "Slot,OID\n3,2\n3,3\n");
    EXPECT_EQ(db({"ignore", "list", "--slot", "3"}), fine("RowIndex  Slot  OID\n"
                                                          "       8     3  1\n"
                                                          "       9     3  2\n"
                                                          "      10     3  3"));
}

TEST_F(DbCommand, NumbersRowsByWhatIsFreeOnceTheLargestNumberIsTaken)
{
    init();
    db({"import", "-"}, "RowIndex,Slot,OID\n4294967295,3,1\n2,3,2\n");
    EXPECT_EQ(db({"ignore", "add", "--slot", "3", "5"}), fine("slot 3 OID 5 added to IfcCardsIgnoreEventsTable"));
    EXPECT_EQ(db({"import", "-"}, "Slot,OID\n3,6\n3,2\n3,7\n"), fine("2 rows imported, 1 already there"));
    EXPECT_EQ(db({"ignore", "list", "--slot", "3"}), fine("  RowIndex  Slot  OID\n"
                                                          "         1     3  5\n"
                                                          "         2     3  2\n"
                                                          "         3     3  6\n"
                                                          "         5     3  7\n"
                                                          "4294967295     3  1"));
    EXPECT_EQ(db({"check"}), fine("events.db: nothing is wrong"));
}

TEST_F(DbCommand, ChangesNothingThatItCannotNumberForMonitors)
{
    init();
    for (const char* const rowIndex : {"4294967295", "9223372036854775807"}) {
        sqlite(std::string("DELETE FROM NrOfRowsChangedTable; INSERT INTO NrOfRowsChangedTable VALUES (") + rowIndex +
               ", 1, 'ComponentConfigTable', 1)");
        EXPECT_EQ(db({"component", "enable", "9"}),
                  unusable(std::string("'events.db': NrOfRowsChangedTable has a row with RowIndex ") + rowIndex +
                           ": no larger number is left for the next change; remove that row by hand and restart the "
                           "monitors"));
        EXPECT_EQ(countOf("ComponentConfigTable"), "0");
    }
}

TEST_F(DbCommand, FindsTheFormatOfStandardInputByItsFirstCharacter)
{
    init();
    db({"component", "enable", "7"});
    const std::string exported = db({"export"}).out;
    EXPECT_EQ(db({"import", "--replace", "-"}, exported), fine("1 row imported"));
    EXPECT_EQ(db({"import", "-"}, "ComponentID,EnableEvents\n8,true\n"), fine("1 row imported"));
}

TEST_F(DbCommand, EscapesWhatATerminalWouldObeyInJson)
{
    init();
    sqlite("INSERT INTO IfcCardsAllowEventsTable VALUES (1, 2, '3', '/\u202E\u009B' || char(127))");

    const std::string row = R"({"RowIndex":1,"Slot":2,"OID":"3","Rule":"/\u202e\u009b\u007f"})";
    EXPECT_EQ(db({"show", "IfcCardsAllowEventsTable", "--json"}), fine(row));
    EXPECT_NE(db({"check", "--json"}).out.find(R"("rule":"/\u202e\u009b\u007f")"), std::string::npos)
        << db({"check", "--json"});
}

TEST_F(DbCommand, RefusesNestedJsonHoweverDeepItIs)
{
    init();
    const std::string nested(100000, '[');
    EXPECT_EQ(db({"import", "-"}, "{\"ComponentConfigTable\":[{\"ComponentID\":" + nested),
              unusable("standard input:1:41: ComponentID: an array or object is not a number from 0 to 4294967295"));
    EXPECT_EQ(db({"import", "--format", "json", "-"}, nested),
              unusable("standard input:1:1: this is not an object with the tables"));
}

TEST_F(DbCommand, NamesTheInputThatItCannotRead)
{
    init();
    EXPECT_EQ(db({"import", "/"}), unusable("cannot read /: Is a directory"));
    EXPECT_EQ(db({"import", "--format", "json", "/"}), unusable("cannot read /: Is a directory"));
    EXPECT_EQ(db({"import", "/proc/self/mem"}), unusable("cannot read /proc/self/mem: Input/output error"));
}

// A rule may be as long as the monitor takes it, and doubles in size if it is all quotes.
TEST_F(DbCommand, ExportsTheLongestRulesSoThatTheyCanBeImported)
{
    init();
    const std::string rule = "/" + std::string(65535, '"');
    const std::string start = R"({"IfcCardsAllowEventsTable":[{"Slot":3,"OID":"1","Rule":"/)";
    std::string escaped;
    for (std::size_t i = 1; i < rule.size(); ++i) {
        escaped += "\\\"";
    }
    EXPECT_EQ(db({"import", "-"}, start + escaped + "\"}]}"), fine("1 row imported"));
    for (const char* const format : {"json", "csv"}) {
        const CommandResult exported = db({"export", "--format", format, "--table", "IfcCardsAllowEventsTable"});
        EXPECT_EQ(exported.exitCode, 0);
        EXPECT_EQ(db({"import", "--replace", "-"}, exported.out), fine("1 row imported"));
        EXPECT_EQ(db({"export", "--format", format, "--table", "IfcCardsAllowEventsTable"}).out, exported.out);
    }
    const std::string reason = "refused: the rule is longer than 65536 bytes\n";
    EXPECT_EQ(firstLine(db({"import", "-"}, start + escaped + "x\"}]}")),
              "brantel: standard input:1:30: Rule:65537: " + reason);
    EXPECT_EQ(firstLine(db({"import", "-"}, "Slot,OID,Rule\n3,1,/" + std::string(65536, 'x') + "\n")),
              "brantel: standard input:2: Rule:65537: " + reason);
    EXPECT_EQ(firstLine(db({"allow", "add", "--slot", "3", "1", rule + "x"})), "brantel: rule:65537: " + reason);
}

TEST_F(DbCommand, LeavesTheRowChangeTableToTheChanges)
{
    init();
    EXPECT_EQ(db({"import", "-"}, "ComponentID,TableOid,EnableEvent\n"),
              unusable("NrOfRowsChangedTable cannot be imported: it records changes"));
    EXPECT_EQ(db({"export", "--format", "csv", "--table", "NrOfRowsChangedTable"}),
              fine("RowIndex,ComponentID,TableOid,EnableEvent"));
}

TEST_F(DbCommand, StopsAfterTenWrongRows)
{
    init();
    std::string rows = "Slot,OID\n";
    for (int i = 0; i < 20; ++i) {
        rows += "3,x\n";
    }
    const std::string err = db({"import", "-"}, rows).err;
    EXPECT_NE(err.find("standard input:11:"), std::string::npos);
    EXPECT_EQ(err.find("standard input:12:"), std::string::npos);
}

TEST_F(DbCommand, ShowsHowFarAnImportIsOnATerminal)
{
    init();
    m_directory.write("rows.csv", "Slot,OID\n3,1\n3,2\n");
    const std::string command = std::string(BRANTEL_COMMAND) + " db import rows.csv";
    const CommandResult result =
        runProgram("/usr/bin/script", {"-qec", command, "/dev/null"}, {"", "", m_directory.path(), {"BRANTEL_DB="}});
    EXPECT_EQ(result.out,
              "\r[####################                    ]  50 %  1 rows\x1b[K"
              "\r\x1b[K"
              "2 rows imported\r\n");
}

TEST_F(DbCommand, ChecksWhatOthersWrote)
{
    init();
    sqlite(
        "INSERT INTO SysCardAllowEventsTable VALUES (1, 7, '1', 'expr=signed(value=1)');"
        "INSERT INTO SysCardIgnoreEventsTable VALUES (1, 7, '2'), (2, 7, '2')");
    EXPECT_EQ(db({"check"}), (CommandResult{1,
                                            "SysCardAllowEventsTable row 1: Rule: '=' is not an operator\n"
                                            "    expr=signed(value=1)\n"
                                            "                     ^\n"
                                            "    write '==' to compare\n"
                                            "SysCardIgnoreEventsTable row 2: is a duplicate of row 1\n"
                                            "events.db: 2 problems\n",
                                            ""}));
    EXPECT_EQ(db({"check", "--json"}).out,
              "{\"table\":\"SysCardAllowEventsTable\",\"row\":1,\"reason\":\"Rule: '=' is not an operator\",\"rule\":"
              "\"expr=signed(value=1)\",\"column\":18,\"remedy\":\"write '==' to compare\"}\n"
              "{\"table\":\"SysCardIgnoreEventsTable\",\"row\":2,\"reason\":\"is a duplicate of row 1\"}\n");
    EXPECT_EQ(db({"export"}).exitCode, 2) << "what could not be imported again is not exported";
    sqlite("ALTER TABLE IfcCardsConfigTable RENAME COLUMN CardType TO Type");
    const std::string difference =
        "table 'IfcCardsConfigTable': column 2 is 'Type' INTEGER NOT NULL; it should be 'CardType' INTEGER NOT NULL";
    EXPECT_EQ(db({"check"}), (CommandResult{1, "IfcCardsConfigTable: " + difference + "\nevents.db: 1 problem\n", ""}));
    EXPECT_EQ(db({"component", "enable", "1"}), unusable("'events.db': " + difference));
}

TEST_F(DbCommand, RefusesAFileThatIsNotADatabase)
{
    m_directory.write("events.db",
                      "not a database, but long enough to look like one at first sight, is it not? ....."
                      "................................................................................");
    EXPECT_EQ(db({"show"}), unusable("'events.db' is not a database (file is not a database)"));
    EXPECT_EQ(db({"init"}), unusable("'events.db' is not a database (file is not a database)"));
}

TEST_F(DbCommand, ExplainsWrongArguments)
{
    EXPECT_EQ(
        db({}),
        misused("a subcommand of 'brantel db' is missing; expected init, show, component, card, allow, ignore, import, "
                "export, check or prune"));
    EXPECT_EQ(db({"component", "enable"}), misused("ID is required"));
    EXPECT_EQ(db({"component", "enable", "4294967296"}),
              misused("ID: '4294967296' is not a number from 0 to 4294967295 (decimal or 0x)"));
    EXPECT_EQ(db({"component", "enable", "--", "-1"}),
              misused("ID: '-1' is not a number from 0 to 4294967295 (decimal or 0x)"));
    EXPECT_EQ(db({"allow", "add", "1", "expr"}), misused("--component or --slot is required"));
    EXPECT_EQ(db({"allow", "add", "--slot", "1", "--component", "1", "1", ""}), misused("--component excludes --slot"));
    EXPECT_EQ(db({"ignore", "add", "--slot", "1", ""}), misused("OID: the value is empty"));
    for (const std::string object : {"+1", " 1", "1 ", "011x", "-0x0", "0x", "1,0", "4294967296", "net."}) {
        EXPECT_EQ(db({"ignore", "add", "--slot", "1", object}),
                  unusable("unknown object '" + object + "'; expected a number or a name of 'brantel card objects'"));
    }
    EXPECT_EQ(db({"allow", "list", "--oid", "cpu.bsy"}),
              unusable("unknown object 'cpu.bsy'; did you mean 'cpu.busy'?"));
    EXPECT_EQ(db({"ignore", "add", "--slot", "3-1", "5"}),
              misused("--slot: invalid list '3-1': expected numbers and ranges from 0 to 4294967295, such as 0-3,7, at "
                      "most 1000 numbers"));
    EXPECT_EQ(db({"allow", "add", "--slot", "1", "1"}), misused("RULE is required"));
    EXPECT_EQ(db({"export", "--format", "csv"}), unusable("a CSV file holds one table: name it with --table"));
    EXPECT_EQ(db({"export", "--table", "x"}), unusable(UNKNOWN_TABLE));
}

}  // namespace

}  // namespace brantel
