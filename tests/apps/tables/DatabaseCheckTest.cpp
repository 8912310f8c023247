#include "tables/DatabaseCheck.h"

#include "EventDatabaseTest.h"

namespace brantel {
namespace {

class DatabaseCheck : public EventDatabaseTest {
protected:
    // "table row: reason" of each finding.
    std::vector<std::string> findings()
    {
        std::vector<std::string> texts;
        checkDatabase(m_database.database(), [&](const Finding& finding) {
            const std::string row = finding.row ? std::to_string(*finding.row) : "-";
            texts.push_back(finding.table + " " + row + ": " + finding.reason);
        });
        return texts;
    }

    using Texts = std::vector<std::string>;
};

TEST_F(DatabaseCheck, FindsNothingInAFreshDatabase)
{
    EXPECT_EQ(findings(), Texts{});
}

TEST_F(DatabaseCheck, FindsNothingWrongInDifferentRows)
{
    insert("ComponentConfigTable", {{7, 1}});
    insert("SysCardAllowEventsTable", {{1, 7, "1", "expr=signed(value>1)"},
                                       {2, 7, "1", "expr=signed(value>2)"},
                                       {3, 8, "1", "expr=signed(value>1)"},
                                       {4, 7, "2", "expr=signed(value>1)"}});
    insert("SysCardIgnoreEventsTable", {{1, 8, "2"}, {2, 7, "3"}});
    insert("IfcCardsIgnoreEventsTable", {{1, 7, "1"}});
    EXPECT_EQ(findings(), Texts{}) << "the lists of the cards do not concern the components";
}

TEST_F(DatabaseCheck, FindsRulesThatAreRefused)
{
    insert("IfcCardsAllowEventsTable", {{5, 3, "1", "expr=signed(value=1)"}});
    EXPECT_EQ(findings(), Texts{"IfcCardsAllowEventsTable 5: Rule: '=' is not an operator"});
}

TEST_F(DatabaseCheck, ShowsWhereARuleIsWrong)
{
    insert("IfcCardsAllowEventsTable", {{5, 3, "1", "expr=signed(value=1)"}});
    std::vector<Finding> found;
    checkDatabase(m_database.database(), [&](const Finding& finding) { found.push_back(finding); });
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found.front().rule, "expr=signed(value=1)");
    EXPECT_EQ(found.front().ruleFault->position, 17U);
}

TEST_F(DatabaseCheck, FindsRulesThatAreNeverEvaluated)
{
    insert("SysCardAllowEventsTable", {{1, 7, "1", "expr=signed(value>1);expr=signed(hyshigh(1,2))"}});
    EXPECT_EQ(findings(),
              Texts{"SysCardAllowEventsTable 1: Rule: a rule of several parts is never evaluated: make each "
                    "part a rule of its own"});
}

TEST_F(DatabaseCheck, FindsDuplicates)
{
    insert("SysCardAllowEventsTable", {{1, 7, "1", ""}, {4, 7, "1", ""}, {9, 7, "1", ""}});
    insert("SysCardIgnoreEventsTable", {{2, 8, "1"}, {3, 8, "1"}});
    EXPECT_EQ(findings(), (Texts{"SysCardAllowEventsTable 4: is a duplicate of row 1",
                                 "SysCardAllowEventsTable 9: is a duplicate of row 1",
                                 "SysCardIgnoreEventsTable 3: is a duplicate of row 2"}));
}

TEST_F(DatabaseCheck, FindsAllowedObjectsThatAreIgnored)
{
    insert("SysCardAllowEventsTable", {{1, 7, "1", ""}, {2, 7, "2", ""}});
    insert("SysCardIgnoreEventsTable", {{8, 7, "2"}});
    insert("IfcCardsAllowEventsTable", {{3, 4, "1", ""}});
    insert("IfcCardsIgnoreEventsTable", {{9, 4, "1"}});
    EXPECT_EQ(findings(),
              (Texts{"SysCardAllowEventsTable 2: has no effect: row 8 of SysCardIgnoreEventsTable ignores "
                     "the events of this component and OID",
                     "IfcCardsAllowEventsTable 3: has no effect: row 9 of IfcCardsIgnoreEventsTable ignores "
                     "the events of this slot and OID"}));
}

TEST_F(DatabaseCheck, FindsValuesThatAreWrong)
{
    insert("IfcCardsConfigTable", {{-1, 17, 1}});
    insert("IfcCardsIgnoreEventsTable", {{1, 3, "one"}});
    EXPECT_EQ(findings(),
              (Texts{"IfcCardsConfigTable -1: Slot: -1 is outside 0 to 4294967295",
                     "IfcCardsIgnoreEventsTable 1: OID: 'one' is not an OID: write a decimal number from 0 to "
                     "4294967295 without leading zeros"}));
}

TEST_F(DatabaseCheck, FindsChangesOfUnknownTables)
{
    insert("NrOfRowsChangedTable", {{1, 7, "ComponentConfigTable", 1}, {2, 7, "componentconfigtable", 1}});
    EXPECT_EQ(
        findings(),
        Texts{"NrOfRowsChangedTable 2: TableOid: 'componentconfigtable' is not the name of a table that changes"});
}

TEST_F(DatabaseCheck, FindsWhatOthersAttachedToTheTables)
{
    sqlite(
        "CREATE TRIGGER greedy AFTER INSERT ON ComponentConfigTable BEGIN DELETE FROM SysCardAllowEventsTable; END;"
        "CREATE UNIQUE INDEX one ON IfcCardsAllowEventsTable (OID)");
    EXPECT_EQ(findings(), (Texts{" -: table 'ComponentConfigTable': the trigger 'greedy' should not be there",
                                 " -: table 'IfcCardsAllowEventsTable': the index 'one' should not be there"}));
}

TEST_F(DatabaseCheck, FindsDroppedConstraintsAndWhatTheyWouldHaveRefused)
{
    sqlite(
        "DROP TABLE ComponentConfigTable;"
        "CREATE TABLE ComponentConfigTable (ComponentID INTEGER NOT NULL PRIMARY KEY, EnableEvents BOOLEAN NOT NULL);"
        "INSERT INTO ComponentConfigTable VALUES (1, 7);"
        "DROP TABLE SysCardAllowEventsTable;"
        "CREATE TABLE SysCardAllowEventsTable (RowIndex INTEGER NOT NULL PRIMARY KEY, ComponentID INTEGER NOT NULL,"
        "                                      OID TEXT NOT NULL, Rule TEXT NOT NULL);"
        "INSERT INTO SysCardAllowEventsTable VALUES (1, 1.5, x'31', x'2f')");
    EXPECT_EQ(
        findings(),
        (Texts{"ComponentConfigTable -: its constraints are not those that 'brantel db init' gives it",
               "SysCardAllowEventsTable -: its constraints are not those that 'brantel db init' gives it",
               "ComponentConfigTable 1: EnableEvents: is neither true nor false",
               "SysCardAllowEventsTable 1: ComponentID: is not a number",
               "SysCardAllowEventsTable 1: OID: is not a text", "SysCardAllowEventsTable 1: Rule: is not a text"}));
}

TEST_F(DatabaseCheck, FindsTablesThatAreMissing)
{
    sql::Database other = sql::Database::create(m_directory.path() + "/other.db", EVENT_DATABASE_IDENTITY, {});
    Texts texts;
    checkDatabase(other, [&](const Finding& finding) { texts.push_back(finding.reason); });
    EXPECT_EQ(texts,
              (Texts{"table 'ComponentConfigTable' is missing", "table 'IfcCardsConfigTable' is missing",
                     "table 'SysCardAllowEventsTable' is missing", "table 'SysCardIgnoreEventsTable' is missing",
                     "table 'IfcCardsAllowEventsTable' is missing", "table 'IfcCardsIgnoreEventsTable' is missing",
                     "table 'NrOfRowsChangedTable' is missing"}));
}

}  // namespace

}  // namespace brantel
