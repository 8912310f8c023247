// The subcommands of "brantel db", as a shell sees them.

#include <gtest/gtest.h>

#include "apps/CommandRun.h"
#include "support/TemporaryDirectory.h"

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

    void init() const { ASSERT_EQ(db({"init"}).exitCode, 0); }

    static CommandResult fine(const std::string& out) { return {0, out + "\n", ""}; }
    static CommandResult refused(const std::string& err) { return {1, "", "brantel: " + err + "\n"}; }
    static CommandResult unusable(const std::string& err) { return {2, "", "brantel: " + err + "\n"}; }
    static CommandResult misused(const std::string& err)
    {
        return {2, "", err + "\nRun with --help for more information.\n"};
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
    EXPECT_EQ(db({"check"}), unusable("'events.db' does not exist"));
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
    EXPECT_EQ(db({"card", "enable", "3"}),
              refused("slot 3: there is no card yet; say of which type it is with --type"));
    EXPECT_EQ(db({"card", "enable", "3", "--type", "17"}), fine("slot 3: events enabled"));
    EXPECT_EQ(db({"card", "disable", "3"}), fine("slot 3: events disabled"));
    EXPECT_EQ(db({"show", "IfcCardsConfigTable", "--json"}), fine(R"({"Slot":3,"CardType":17,"EnableEvents":false})"));
}

TEST_F(DbCommand, AddsListsAndRemovesAllowedObjects)
{
    init();
    const std::string rule = "expr=unsigned(hyshigh(70,80))";
    EXPECT_EQ(db({"allow", "add", "--component", "7", "0x4d2", rule}),
              fine("component 7 OID 1234 added to SysCardAllowEventsTable"));
    EXPECT_EQ(db({"allow", "add", "--component", "7", "1234", rule}),
              fine("component 7 OID 1234 is there already, in SysCardAllowEventsTable"));
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
                             "brantel: slot 3 OID 5 is in IfcCardsIgnoreEventsTable too: what is ignored is not "
                             "allowed\n"}));
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
    EXPECT_EQ(db({"show", "x"}), unusable("there is no table 'x'; the tables are\n"
                                          "  ComponentConfigTable\n"
                                          "  IfcCardsConfigTable\n"
                                          "  SysCardAllowEventsTable\n"
                                          "  SysCardIgnoreEventsTable\n"
                                          "  IfcCardsAllowEventsTable\n"
                                          "  IfcCardsIgnoreEventsTable\n"
                                          "  NrOfRowsChangedTable"));
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
        "7,0x2,expr=signed(value=1)\n"
        "x,3,\n";
    EXPECT_EQ(db({"import", "-"}, rules),
              refused("standard input:3: OID: '0x2' is no OID: write a decimal number from 0 to 4294967295 without "
                      "leading zeros\n"
                      "brantel: standard input:3: Rule: refused: '=' is not an operator\n"
                      "    expr=signed(value=1)\n"
                      "                     ^\n"
                      "    write '==' to compare\n"
                      "brantel: standard input:4: ComponentID: 'x' is no number\n"
                      "brantel: nothing is imported"));
    EXPECT_EQ(countOf("SysCardAllowEventsTable"), "0");
    EXPECT_EQ(countOf("NrOfRowsChangedTable"), "0");
}

TEST_F(DbCommand, ImportsNoRowOverAnotherUnlessAskedTo)
{
    init();
    const std::string cards = "Slot,CardType,EnableEvents\n3,17,true\n";
    EXPECT_EQ(db({"import", "-"}, cards), fine("1 row imported"));
    EXPECT_EQ(db({"import", "-"}, cards),
              unusable("standard input:2: IfcCardsConfigTable has a row with Slot 3 already; nothing is imported"));
    EXPECT_EQ(db({"import", "--replace", "-"}, "Slot,CardType,EnableEvents\n"), fine("0 rows imported"));
    EXPECT_EQ(countOf("IfcCardsConfigTable"), "0");
}

TEST_F(DbCommand, NumbersImportedRowsAfterThoseThatAreThere)
{
    init();
    db({"import", "-"}, "RowIndex,Slot,OID\n8,3,1\n");
    db({"import", "-"}, "Slot,OID\n3,2\n3,3\n");
    EXPECT_EQ(db({"ignore", "list", "--slot", "3"}), fine("RowIndex  Slot  OID\n"
                                                          "       8     3  1\n"
                                                          "       9     3  2\n"
                                                          "      10     3  3"));
}

TEST_F(DbCommand, LeavesTheRowChangeTableToTheChanges)
{
    init();
    EXPECT_EQ(db({"import", "-"}, "ComponentID,TableOid,EnableEvent\n"),
              unusable("NrOfRowsChangedTable can not be imported: every change adds to it"));
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
    const auto sqlite = [&](const std::string& statements) {
        return runProgram("/usr/bin/sqlite3", {"events.db", statements}, {"", "", m_directory.path(), {}}).exitCode;
    };
    ASSERT_EQ(sqlite("INSERT INTO SysCardAllowEventsTable VALUES (1, 7, '1', 'expr=signed(value=1)');"
                     "INSERT INTO SysCardIgnoreEventsTable VALUES (1, 7, '2'), (2, 7, '2')"),
              0);
    EXPECT_EQ(db({"check"}), (CommandResult{1,
                                            "SysCardAllowEventsTable row 1: Rule: '=' is not an operator\n"
                                            "    expr=signed(value=1)\n"
                                            "                     ^\n"
                                            "    write '==' to compare\n"
                                            "SysCardIgnoreEventsTable row 2: says the same as row 1\n"
                                            "events.db: 2 problems\n",
                                            ""}));
    EXPECT_EQ(db({"check", "--json"}).out,
              "{\"table\":\"SysCardAllowEventsTable\",\"row\":1,\"problem\":\"Rule: '=' is not an operator\",\"rule\":"
              "\"expr=signed(value=1)\",\"column\":18,\"remedy\":\"write '==' to compare\"}\n"
              "{\"table\":\"SysCardIgnoreEventsTable\",\"row\":2,\"problem\":\"says the same as row 1\"}\n");
    EXPECT_EQ(db({"export"}).exitCode, 2) << "what could not be imported again is not exported";
    ASSERT_EQ(sqlite("ALTER TABLE IfcCardsConfigTable RENAME COLUMN CardType TO Type"), 0);
    const std::string difference =
        "table 'IfcCardsConfigTable': column 2 is 'Type' INTEGER NOT NULL; it should be 'CardType' INTEGER NOT NULL";
    EXPECT_EQ(db({"check"}), (CommandResult{1, "IfcCardsConfigTable: " + difference + "\nevents.db: 1 problem\n", ""}));
    EXPECT_EQ(db({"component", "enable", "1"}), unusable("'events.db': " + difference));
}

TEST_F(DbCommand, RefusesWhatIsNoDatabase)
{
    m_directory.write("events.db",
                      "not a database, but long enough to look like one at first sight, is it not? ....."
                      "................................................................................");
    EXPECT_EQ(db({"show"}), unusable("'events.db' is not a database (file is not a database)"));
    EXPECT_EQ(db({"init"}), unusable("'events.db' is not a database (file is not a database)"));
}

TEST_F(DbCommand, SaysWhatIsWrongWithItsArguments)
{
    EXPECT_EQ(db({}), misused("A subcommand is required"));
    EXPECT_EQ(db({"component", "enable"}), misused("id is required"));
    EXPECT_EQ(db({"component", "enable", "4294967296"}), misused("Could not convert: id = 4294967296"));
    EXPECT_EQ(db({"component", "enable", "--", "-1"}), misused("Could not convert: id = -1"));
    EXPECT_EQ(db({"allow", "add", "1", "expr"}), misused("--component or --slot is required"));
    EXPECT_EQ(db({"allow", "add", "--slot", "1", "--component", "1", "1", ""}), misused("--component excludes --slot"));
    EXPECT_EQ(db({"ignore", "add", "--slot", "1", "4294967296"}),
              misused("OID: '4294967296' is no number from 0 to 4294967295, decimal or after 0x"));
    EXPECT_EQ(db({"allow", "add", "--slot", "1", "1"}), misused("rule is required"));
    EXPECT_EQ(db({"export", "--format", "csv"}), unusable("a CSV file holds one table: name it with --table"));
    EXPECT_EQ(db({"export", "--table", "x"}), unusable("there is no table 'x' ('brantel db show' names them)"));
}

}  // namespace
