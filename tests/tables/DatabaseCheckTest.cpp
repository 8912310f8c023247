#include "tables/DatabaseCheck.h"

#include "EventDatabaseTest.h"

namespace {

class DatabaseCheck : public EventDatabaseTest {
protected:
    // "table row: text" of each finding.
    std::vector<std::string> findings()
    {
        std::vector<std::string> texts;
        checkDatabase(m_database.database(), [&](const Finding& finding) {
            const std::string row = finding.row ? std::to_string(*finding.row) : "-";
            texts.push_back(finding.table + " " + row + ": " + finding.text);
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
    EXPECT_EQ(found.front().ruleFault->span.begin, 17U);
}

TEST_F(DatabaseCheck, FindsRulesThatAreNeverEvaluated)
{
    insert("SysCardAllowEventsTable", {{1, 7, "1", "expr=signed(value>1);expr=signed(hyshigh(1,2))"}});
    EXPECT_EQ(findings(),
              Texts{"SysCardAllowEventsTable 1: Rule: a rule of several parts is never evaluated: make each "
                    "part a rule of its own"});
}

TEST_F(DatabaseCheck, FindsEntriesThatStandTwice)
{
    insert("SysCardAllowEventsTable", {{1, 7, "1", ""}, {4, 7, "1", ""}, {9, 7, "1", ""}});
    insert("SysCardIgnoreEventsTable", {{2, 8, "1"}, {3, 8, "1"}});
    EXPECT_EQ(findings(), (Texts{"SysCardAllowEventsTable 4: says the same as row 1",
                                 "SysCardAllowEventsTable 9: says the same as row 1",
                                 "SysCardIgnoreEventsTable 3: says the same as row 2"}));
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
    EXPECT_EQ(findings(), (Texts{"IfcCardsConfigTable -1: Slot: -1 is outside 0 to 4294967295",
                                 "IfcCardsIgnoreEventsTable 1: OID: 'one' is no OID: write a decimal number from 0 to "
                                 "4294967295 without leading zeros"}));
}

TEST_F(DatabaseCheck, FindsTablesThatAreMissing)
{
    sql::Database other = sql::Database::create(m_directory.path() + "/other.db", EVENT_DATABASE_IDENTITY, {});
    Texts texts;
    checkDatabase(other, [&](const Finding& finding) { texts.push_back(finding.text); });
    EXPECT_EQ(texts,
              (Texts{"table 'ComponentConfigTable' is missing", "table 'IfcCardsConfigTable' is missing",
                     "table 'SysCardAllowEventsTable' is missing", "table 'SysCardIgnoreEventsTable' is missing",
                     "table 'IfcCardsAllowEventsTable' is missing", "table 'IfcCardsIgnoreEventsTable' is missing",
                     "table 'NrOfRowsChangedTable' is missing"}));
}

}  // namespace
