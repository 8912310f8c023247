#include "monitor/RuleBook.h"

#include <gtest/gtest.h>

#include "support/TemporaryDirectory.h"

using namespace eventMgmt;

namespace {

const std::set<std::uint32_t> ALL_SLOTS{0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
constexpr const char* RULE = "expr=signed(value>90)";

class RuleBookTest : public testing::Test {
protected:
    std::string path() const { return m_directory.path() + "/events.db"; }
    EventDatabase& database() { return m_database; }

    // Past the checks of the commands.
    void insert(const EventTable& table, const sql::Row& row) { m_database.table(table).insert(row); }

    std::string rulesText(const std::set<std::uint32_t>& slots = ALL_SLOTS)
    {
        std::string text;
        for (const RuleKey& key : readRuleBook(m_database, slots).rules) {
            text += placeText(key.place) + " " + std::to_string(key.oid) + " " + key.rule + "\n";
        }
        return text;
    }

private:
    TemporaryDirectory m_directory;
    EventDatabase m_database = EventDatabase::create(path());
};

TEST_F(RuleBookTest, HoldsTheRulesOfEnabledPlaces)
{
    enableCard(database(), 3, 1, true);
    enableCard(database(), 4, 1, false);
    enableComponent(database(), 7, true);
    addToList(database(), IFC_CARDS_ALLOW_EVENTS_TABLE_ID, {3, "5", RULE});
    addToList(database(), IFC_CARDS_ALLOW_EVENTS_TABLE_ID, {4, "5", RULE});
    addToList(database(), IFC_CARDS_ALLOW_EVENTS_TABLE_ID, {5, "5", RULE});
    addToList(database(), SYS_CARD_ALLOW_EVENTS_TABLE_ID, {7, "4294967295", RULE});
    addToList(database(), SYS_CARD_ALLOW_EVENTS_TABLE_ID, {8, "6", RULE});

    EXPECT_EQ(rulesText(), "slot 3 5 expr=signed(value>90)\ncomponent 7 4294967295 expr=signed(value>90)\n");
}

TEST_F(RuleBookTest, LeavesOutIgnoredObjectsEmptyRulesAndComments)
{
    enableCard(database(), 3, 1, true);
    addToList(database(), IFC_CARDS_ALLOW_EVENTS_TABLE_ID, {3, "5", RULE});
    addToList(database(), IFC_CARDS_ALLOW_EVENTS_TABLE_ID, {3, "6", RULE});
    addToList(database(), IFC_CARDS_ALLOW_EVENTS_TABLE_ID, {3, "7", "/ later"});
    addToList(database(), IFC_CARDS_ALLOW_EVENTS_TABLE_ID, {3, "8", ""});
    addToList(database(), IFC_CARDS_IGNORE_EVENTS_TABLE_ID, {3, "5", std::nullopt});
    addToList(database(), SYS_CARD_IGNORE_EVENTS_TABLE_ID, {3, "6", std::nullopt});

    EXPECT_EQ(rulesText(), "slot 3 6 expr=signed(value>90)\n");
}

TEST_F(RuleBookTest, HoldsWhatTheMonitorServes)
{
    for (const std::int64_t slot : {3, 4}) {
        enableCard(database(), slot, 1, true);
        addToList(database(), IFC_CARDS_ALLOW_EVENTS_TABLE_ID, {slot, "5", RULE});
    }

    enableCard(database(), 5, 1, false);

    EXPECT_EQ(rulesText({4}), "slot 4 5 expr=signed(value>90)\n");
    const RuleBook book = readRuleBook(database(), {4});
    EXPECT_EQ(book.enabledPlaces, (std::set<Place>{slotPlace(4)}));
    EXPECT_EQ(book.unservedPlaces, (std::set<Place>{slotPlace(3)}));
}

TEST_F(RuleBookTest, RefusesRowsAloneThatCannotBeFollowed)
{
    enableCard(database(), 3, 1, true);
    const EventTable& allow = allowIgnoreTable(IFC_CARDS_ALLOW_EVENTS_TABLE_ID);
    insert(allow, {1, 3, "5", "expr=signed(value=<90)"});
    insert(allow, {2, 3, "five", RULE});
    insert(allow, {3, 3, "6", RULE});
    insert(allow, {4, 12, "6", RULE});
    insert(allow, {6, 3, "line\nbreak", RULE});
    insert(allow, {5, 3, "7", "expr=signed(value>1);expr=signed(value<0)"});

    std::string refused;
    for (const RefusedRow& row : readRuleBook(database(), ALL_SLOTS).refusedRows) {
        refused += row.table + " " + std::to_string(row.row) + " " + row.reason + "\n";
    }
    EXPECT_EQ(rulesText(), "slot 3 6 expr=signed(value>90)\n");
    EXPECT_EQ(refused,
              "IfcCardsAllowEventsTable 1 Rule: '=<' is not an operator\n"
              "IfcCardsAllowEventsTable 2 OID: 'five' is no OID: write a decimal number from 0 to 4294967295 without "
              "leading zeros\n"
              "IfcCardsAllowEventsTable 4 slot 12 is out of reach: the slots are 0 to 9\n"
              "IfcCardsAllowEventsTable 5 Rule: a rule of several parts is never evaluated: make each part a rule of "
              "its own\n"
              "IfcCardsAllowEventsTable 6 OID: 'line?break' is no OID: write a decimal number from 0 to 4294967295 "
              "without leading zeros\n");
}

TEST_F(RuleBookTest, CutsTheReasonShortThatQuotesALongText)
{
    insert(allowIgnoreTable(IFC_CARDS_ALLOW_EVENTS_TABLE_ID), {1, 3, std::string(3'000'000, 'x'), RULE});

    const std::set<RefusedRow> refused = readRuleBook(database(), ALL_SLOTS).refusedRows;
    ASSERT_EQ(refused.size(), 1U);
    EXPECT_EQ(refused.begin()->reason, "OID: '" + std::string(991, 'x') + "...");
}

TEST_F(RuleBookTest, RefusesRulesThatAreTooLongForALine)
{
    enableCard(database(), 3, 1, true);
    const std::string longest = RULE + std::string(65536 - std::string(RULE).size(), ' ');
    insert(allowIgnoreTable(IFC_CARDS_ALLOW_EVENTS_TABLE_ID), {1, 3, "5", longest});
    insert(allowIgnoreTable(IFC_CARDS_ALLOW_EVENTS_TABLE_ID), {2, 3, "6", longest + " "});

    EXPECT_EQ(rulesText(), "slot 3 5 " + longest + "\n");
    const std::set<RefusedRow> refused = readRuleBook(database(), ALL_SLOTS).refusedRows;
    ASSERT_EQ(refused.size(), 1U);
    EXPECT_EQ(refused.begin()->reason, "Rule: longer than 65536 characters");
}

TEST_F(RuleBookTest, IsToldOfWhenTheDatabaseHasChanged)
{
    RuleBookFollower follower(path(), ALL_SLOTS);

    EXPECT_TRUE(follower.bookIfChanged());
    EXPECT_FALSE(follower.bookIfChanged());
    enableCard(database(), 3, 1, true);
    const std::optional<RuleBook> book = follower.bookIfChanged();
    ASSERT_TRUE(book);
    EXPECT_EQ(book->enabledPlaces, (std::set<Place>{slotPlace(3)}));
    EXPECT_FALSE(follower.bookIfChanged());
}

TEST_F(RuleBookTest, IsReadAgainOnRequestFromTheFileThatIsThereNow)
{
    RuleBookFollower follower(path(), ALL_SLOTS);
    static_cast<void>(follower.bookIfChanged());
    insert(ifcCardsConfigTable(), {3, 1, 1});  // without a row in the row-change table

    EXPECT_FALSE(follower.bookIfChanged());
    follower.forget();
    EXPECT_EQ(follower.bookIfChanged()->enabledPlaces, (std::set<Place>{slotPlace(3)}));
}

TEST(RuleBookFollower, SaysThatTheDatabaseIsMissing)
{
    RuleBookFollower follower("/nowhere/events.db", ALL_SLOTS);

    EXPECT_THROW(static_cast<void>(follower.bookIfChanged()), sql::Error);
}

}  // namespace
