#include "EventDatabaseTest.h"

using namespace eventMgmt;

namespace {

class EventDatabaseChanges : public EventDatabaseTest {
protected:
    // What a monitor that saw row `lastRow` learns: the rows after it, without their numbers.
    Rows changesAfter(std::size_t lastRow)
    {
        Rows news;
        const Rows rows = rowsOf("NrOfRowsChangedTable");
        for (std::size_t i = lastRow; i < rows.size(); ++i) {
            EXPECT_EQ(rows[i].front(), sql::Value(static_cast<std::int64_t>(i) + 1));
            news.emplace_back(rows[i].begin() + 1, rows[i].end());
        }
        return news;
    }
};

TEST_F(EventDatabaseChanges, EnableAndDisableAComponent)
{
    EXPECT_EQ(enableComponent(m_database, 7, true), ChangeResult::CHANGED);
    EXPECT_EQ(enableComponent(m_database, 8, false), ChangeResult::CHANGED);
    EXPECT_EQ(enableComponent(m_database, 7, false), ChangeResult::CHANGED);
    EXPECT_EQ(rowsOf("ComponentConfigTable"), (Rows{{7, 0}, {8, 0}}));
    EXPECT_EQ(changesAfter(0),
              (Rows{{7, "ComponentConfigTable", 1}, {8, "ComponentConfigTable", 0}, {7, "ComponentConfigTable", 0}}));
}

TEST_F(EventDatabaseChanges, EnableAndDisableACard)
{
    EXPECT_EQ(enableCard(m_database, 3, std::nullopt, true), ChangeResult::NOT_FOUND) << "of which type is it?";
    EXPECT_EQ(enableCard(m_database, 3, 17, true), ChangeResult::CHANGED);
    EXPECT_EQ(enableCard(m_database, 3, std::nullopt, false), ChangeResult::CHANGED);
    EXPECT_EQ(rowsOf("IfcCardsConfigTable"), (Rows{{3, 17, 0}})) << "the type stays";
    EXPECT_EQ(enableCard(m_database, 3, 18, false), ChangeResult::CHANGED);
    EXPECT_EQ(rowsOf("IfcCardsConfigTable"), (Rows{{3, 18, 0}}));
    EXPECT_EQ(changesAfter(0),
              (Rows{{3, "IfcCardsConfigTable", 1}, {3, "IfcCardsConfigTable", 0}, {3, "IfcCardsConfigTable", 0}}));
}

TEST_F(EventDatabaseChanges, ThatChangeNothingAreNotNoted)
{
    enableComponent(m_database, 7, true);
    enableCard(m_database, 3, 17, true);
    addToList(m_database, SYS_CARD_ALLOW_EVENTS_TABLE_ID, {7, "1", "expr=signed(value>1)"});
    EXPECT_EQ(enableComponent(m_database, 7, true), ChangeResult::UNCHANGED);
    EXPECT_EQ(enableCard(m_database, 3, 17, true), ChangeResult::UNCHANGED);
    EXPECT_EQ(enableCard(m_database, 3, std::nullopt, true), ChangeResult::UNCHANGED);
    EXPECT_EQ(addToList(m_database, SYS_CARD_ALLOW_EVENTS_TABLE_ID, {7, "1", "expr=signed(value>1)"}),
              ChangeResult::UNCHANGED);
    EXPECT_EQ(removeFromList(m_database, SYS_CARD_ALLOW_EVENTS_TABLE_ID, {7, "2", std::nullopt}),
              ChangeResult::NOT_FOUND);
    EXPECT_EQ(changesAfter(3), Rows{});
}

TEST_F(EventDatabaseChanges, AddToTheLists)
{
    addToList(m_database, SYS_CARD_ALLOW_EVENTS_TABLE_ID, {7, "1", "expr=signed(value>1)"});
    addToList(m_database, SYS_CARD_ALLOW_EVENTS_TABLE_ID, {7, "1", ""});
    addToList(m_database, SYS_CARD_IGNORE_EVENTS_TABLE_ID, {7, "2", std::nullopt});
    addToList(m_database, IFC_CARDS_ALLOW_EVENTS_TABLE_ID, {3, "4", "expr=signed(value>1)"});
    addToList(m_database, IFC_CARDS_IGNORE_EVENTS_TABLE_ID, {3, "5", std::nullopt});
    EXPECT_EQ(rowsOf("SysCardAllowEventsTable"), (Rows{{1, 7, "1", "expr=signed(value>1)"}, {2, 7, "1", ""}}));
    EXPECT_EQ(rowsOf("SysCardIgnoreEventsTable"), (Rows{{1, 7, "2"}}));
    EXPECT_EQ(rowsOf("IfcCardsAllowEventsTable"), (Rows{{1, 3, "4", "expr=signed(value>1)"}}));
    EXPECT_EQ(rowsOf("IfcCardsIgnoreEventsTable"), (Rows{{1, 3, "5"}}));
    EXPECT_EQ(changesAfter(0), (Rows{{7, "SysCardAllowEventsTable", 1},
                                     {7, "SysCardAllowEventsTable", 1},
                                     {7, "SysCardIgnoreEventsTable", 0},
                                     {3, "IfcCardsAllowEventsTable", 1},
                                     {3, "IfcCardsIgnoreEventsTable", 0}}));
}

TEST_F(EventDatabaseChanges, RemoveFromTheLists)
{
    insert("SysCardAllowEventsTable", {{1, 7, "1", "a"}, {2, 7, "1", "b"}, {3, 8, "1", "b"}, {4, 7, "2", "b"}});
    insert("IfcCardsIgnoreEventsTable", {{1, 3, "5"}, {2, 4, "5"}});
    EXPECT_EQ(removeFromList(m_database, SYS_CARD_ALLOW_EVENTS_TABLE_ID, {7, "1", "b"}), ChangeResult::CHANGED);
    EXPECT_EQ(rowsOf("SysCardAllowEventsTable"), (Rows{{1, 7, "1", "a"}, {3, 8, "1", "b"}, {4, 7, "2", "b"}}));
    EXPECT_EQ(removeFromList(m_database, SYS_CARD_ALLOW_EVENTS_TABLE_ID, {7, "1", std::nullopt}),
              ChangeResult::CHANGED);
    EXPECT_EQ(rowsOf("SysCardAllowEventsTable"), (Rows{{3, 8, "1", "b"}, {4, 7, "2", "b"}}));
    EXPECT_EQ(removeFromList(m_database, IFC_CARDS_IGNORE_EVENTS_TABLE_ID, {3, "5", std::nullopt}),
              ChangeResult::CHANGED);
    EXPECT_EQ(rowsOf("IfcCardsIgnoreEventsTable"), (Rows{{2, 4, "5"}}));
    EXPECT_EQ(changesAfter(0), (Rows{{7, "SysCardAllowEventsTable", 0},
                                     {7, "SysCardAllowEventsTable", 0},
                                     {3, "IfcCardsIgnoreEventsTable", 1}}));
}

TEST_F(EventDatabaseChanges, OfManyRowsAreNotedOnceForEachOwner)
{
    const EventTable& ignoreTable = *findEventTable("SysCardIgnoreEventsTable");
    ChangeRecord changes;
    changes.noteAdded(ignoreTable, {1, 7, "1"});
    changes.noteAdded(ignoreTable, {2, 7, "2"});
    changes.noteAdded(ignoreTable, {3, 8, "1"});
    changes.noteRemoved(ignoreTable, {4, 8, "4"});
    changes.write(m_database);
    EXPECT_EQ(changesAfter(0), (Rows{{7, "SysCardIgnoreEventsTable", 0},
                                     {8, "SysCardIgnoreEventsTable", 0},
                                     {8, "SysCardIgnoreEventsTable", 1}}));
}

TEST_F(EventDatabaseChanges, NeedTablesThatAreAsDefined)
{
    {
        const sql::Identity identity = EVENT_DATABASE_IDENTITY;
        sql::Database::create(m_directory.path() + "/other.db", identity, {});
    }
    try {
        const EventDatabase database(m_directory.path() + "/other.db", sql::Database::Access::READ);
        FAIL() << "opened";
    } catch (const sql::Error& error) {
        EXPECT_EQ(error.problem(), sql::Problem::DIFFERENT);
        EXPECT_EQ(std::string(error.what()),
                  "'" + m_directory.path() + "/other.db': table 'ComponentConfigTable' is missing");
    }
}

}  // namespace
