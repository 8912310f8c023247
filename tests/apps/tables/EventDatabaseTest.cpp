#include "EventDatabaseTest.h"

namespace brantel {
namespace {

using Results = std::vector<ChangeResult>;

class EventDatabaseChanges : public EventDatabaseTest {
protected:
    // What a monitor that saw row `lastRow` learns: the rows after it, without their numbers.
    Rows changesAfter(std::size_t lastRow)
    {
        Rows news;
        const Rows rows = rowsOf("NrOfRowsChangedTable");
        for (std::size_t i = lastRow; i < rows.size(); ++i) {
            EXPECT_EQ(rows[i].front(), sql::Value(i + 1));
            news.push_back({rows[i][1], rows[i][2], rows[i][3]});
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
    EXPECT_EQ(enableCard(m_database, 3, std::nullopt, true).result, ChangeResult::NOT_FOUND) << "of which type is it?";
    EXPECT_EQ(enableCard(m_database, 3, 17, true).result, ChangeResult::CHANGED);
    EXPECT_EQ(enableCard(m_database, 3, std::nullopt, false).result, ChangeResult::CHANGED);
    EXPECT_EQ(rowsOf("IfcCardsConfigTable"), (Rows{{3, 17, 0}})) << "the type stays";
    EXPECT_EQ(enableCard(m_database, 3, 18, false).result, ChangeResult::CHANGED);
    EXPECT_EQ(rowsOf("IfcCardsConfigTable"), (Rows{{3, 18, 0}}));
    EXPECT_EQ(changesAfter(0),
              (Rows{{3, "IfcCardsConfigTable", 1}, {3, "IfcCardsConfigTable", 0}, {3, "IfcCardsConfigTable", 0}}));
}

TEST_F(EventDatabaseChanges, ThatChangeNothingAreNotNoted)
{
    enableComponent(m_database, 7, true);
    enableCard(m_database, 3, 17, true);
    addToList(m_database, EventTableKind::ALLOW, {{componentPlace(7), 1, "expr=signed(value>1)"}});
    EXPECT_EQ(enableComponent(m_database, 7, true), ChangeResult::UNCHANGED);
    EXPECT_EQ(enableCard(m_database, 3, 17, true).result, ChangeResult::UNCHANGED);
    EXPECT_EQ(enableCard(m_database, 3, std::nullopt, true).result, ChangeResult::UNCHANGED);
    EXPECT_EQ(addToList(m_database, EventTableKind::ALLOW, {{componentPlace(7), 1, "expr=signed(value>1)"}}),
              Results{ChangeResult::UNCHANGED});
    EXPECT_EQ(removeFromList(m_database, EventTableKind::ALLOW, {{componentPlace(7), 2, std::nullopt}}),
              Results{ChangeResult::NOT_FOUND});
    EXPECT_EQ(changesAfter(3), Rows{});
}

TEST_F(EventDatabaseChanges, AddToTheLists)
{
    addToList(m_database, EventTableKind::ALLOW, {{componentPlace(7), 1, "expr=signed(value>1)"}});
    addToList(m_database, EventTableKind::ALLOW, {{componentPlace(7), 1, ""}});
    addToList(m_database, EventTableKind::IGNORE, {{componentPlace(7), 2, std::nullopt}});
    addToList(m_database, EventTableKind::ALLOW, {{slotPlace(3), 4, "expr=signed(value>1)"}});
    addToList(m_database, EventTableKind::IGNORE, {{slotPlace(3), 5, std::nullopt}});
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
    EXPECT_EQ(removeFromList(m_database, EventTableKind::ALLOW, {{componentPlace(7), 1, "b"}}),
              Results{ChangeResult::CHANGED});
    EXPECT_EQ(rowsOf("SysCardAllowEventsTable"), (Rows{{1, 7, "1", "a"}, {3, 8, "1", "b"}, {4, 7, "2", "b"}}));
    EXPECT_EQ(removeFromList(m_database, EventTableKind::ALLOW, {{componentPlace(7), 1, std::nullopt}}),
              Results{ChangeResult::CHANGED});
    EXPECT_EQ(rowsOf("SysCardAllowEventsTable"), (Rows{{3, 8, "1", "b"}, {4, 7, "2", "b"}}));
    EXPECT_EQ(removeFromList(m_database, EventTableKind::IGNORE, {{slotPlace(3), 5, std::nullopt}}),
              Results{ChangeResult::CHANGED});
    EXPECT_EQ(rowsOf("IfcCardsIgnoreEventsTable"), (Rows{{2, 4, "5"}}));
    EXPECT_EQ(changesAfter(0), (Rows{{7, "SysCardAllowEventsTable", 0},
                                     {7, "SysCardAllowEventsTable", 0},
                                     {3, "IfcCardsIgnoreEventsTable", 1}}));
}

TEST_F(EventDatabaseChanges, AddWhatIsMissingOfSeveralEntries)
{
    insert("IfcCardsAllowEventsTable", {{1, 2, "5", "a"}, {2, 3, "5", "b"}});
    EXPECT_EQ(addToList(m_database, EventTableKind::ALLOW,
                        {{slotPlace(1), 5, "a"}, {slotPlace(2), 5, "a"}, {slotPlace(3), 5, "a"}}),
              (Results{ChangeResult::CHANGED, ChangeResult::UNCHANGED, ChangeResult::CHANGED}));
    EXPECT_EQ(rowsOf("IfcCardsAllowEventsTable"),
              (Rows{{1, 2, "5", "a"}, {2, 3, "5", "b"}, {3, 1, "5", "a"}, {4, 3, "5", "a"}}));
    EXPECT_EQ(changesAfter(0), (Rows{{1, "IfcCardsAllowEventsTable", 1}, {3, "IfcCardsAllowEventsTable", 1}}));
}

TEST_F(EventDatabaseChanges, RemoveAllOfSeveralEntriesOrNone)
{
    insert("IfcCardsAllowEventsTable", {{1, 1, "5", "a"}, {2, 3, "5", "a"}});
    const ListEntry inSlot1{slotPlace(1), 5, std::nullopt};
    const ListEntry inSlot2{slotPlace(2), 5, std::nullopt};
    const ListEntry inSlot3{slotPlace(3), 5, std::nullopt};
    EXPECT_EQ(removeFromList(m_database, EventTableKind::ALLOW, {inSlot1, inSlot2, inSlot3}),
              (Results{ChangeResult::UNCHANGED, ChangeResult::NOT_FOUND, ChangeResult::UNCHANGED}));
    EXPECT_EQ(rowsOf("IfcCardsAllowEventsTable"), (Rows{{1, 1, "5", "a"}, {2, 3, "5", "a"}}));
    EXPECT_EQ(changesAfter(0), Rows{});
    EXPECT_EQ(removeFromList(m_database, EventTableKind::ALLOW, {inSlot1, inSlot3}),
              (Results{ChangeResult::CHANGED, ChangeResult::CHANGED}));
    EXPECT_EQ(rowsOf("IfcCardsAllowEventsTable"), Rows{});
    EXPECT_EQ(changesAfter(0), (Rows{{1, "IfcCardsAllowEventsTable", 0}, {3, "IfcCardsAllowEventsTable", 0}}));
}

TEST_F(EventDatabaseChanges, OfManyRowsAreNotedOnceForEachPlace)
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

TEST_F(EventDatabaseChanges, RemoveAComponentOrACardWithItsEntries)
{
    insert("ComponentConfigTable", {{3, 1}, {4, 0}});
    insert("IfcCardsConfigTable", {{3, 17, 0}});
    insert("SysCardAllowEventsTable", {{1, 3, "1", ""}, {2, 4, "1", ""}});
    insert("SysCardIgnoreEventsTable", {{1, 3, "2"}, {2, 3, "4"}});
    insert("IfcCardsIgnoreEventsTable", {{1, 3, "2"}});
    EXPECT_EQ(removePlace(m_database, componentPlace(3)), 4);
    EXPECT_EQ(rowsOf("ComponentConfigTable"), (Rows{{4, 0}}));
    EXPECT_EQ(rowsOf("SysCardAllowEventsTable"), (Rows{{2, 4, "1", ""}}));
    EXPECT_EQ(rowsOf("SysCardIgnoreEventsTable"), Rows{});
    EXPECT_EQ(rowsOf("IfcCardsConfigTable"), (Rows{{3, 17, 0}})) << "a slot is not a component";
    EXPECT_EQ(removePlace(m_database, slotPlace(3)), 2);
    EXPECT_EQ(removePlace(m_database, slotPlace(3)), 0);
    EXPECT_EQ(changesAfter(0), (Rows{{3, "ComponentConfigTable", 0},
                                     {3, "SysCardAllowEventsTable", 0},
                                     {3, "SysCardIgnoreEventsTable", 1},
                                     {3, "IfcCardsConfigTable", 0},
                                     {3, "IfcCardsIgnoreEventsTable", 1}}));
}

TEST_F(EventDatabaseChanges, ArePrunedButForTheLastNumbers)
{
    for (std::uint32_t number = 1; number <= 5; ++number) {
        enableComponent(m_database, number, true);
    }
    EXPECT_EQ(pruneChanges(m_database, 10), 0);
    EXPECT_EQ(pruneChanges(m_database, 2), 3);
    EXPECT_EQ(rowsOf("NrOfRowsChangedTable"),
              (Rows{{4, 4, "ComponentConfigTable", 1}, {5, 5, "ComponentConfigTable", 1}}));
    EXPECT_EQ(pruneChanges(m_database, 1), 1);
    enableComponent(m_database, 6, true);
    EXPECT_EQ(rowsOf("NrOfRowsChangedTable").back().front(), sql::Value(6)) << "the count continues";
}

TEST_F(EventDatabaseChanges, AreNotMadeWhereTriggersOfOthersWouldMakeMore)
{
    sqlite("CREATE TRIGGER greedy AFTER INSERT ON ComponentConfigTable BEGIN DELETE FROM SysCardAllowEventsTable; END");
    try {
        const EventDatabase database(m_path, sql::Database::Access::WRITE);
        FAIL() << "opened";
    } catch (const sql::Error& error) {
        EXPECT_EQ(std::string(error.what()),
                  "'" + m_path +
                      "': table 'ComponentConfigTable': the trigger 'greedy' should not be there; remove it first "
                      "('brantel db check' lists all)");
    }
    EXPECT_NO_THROW(EventDatabase(m_path, sql::Database::Access::READ)) << "reading changes nothing";
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

}  // namespace brantel
