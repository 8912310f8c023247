#include "monitor/RuleSet.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "support/ErrorOf.h"
#include "support/TemporaryDirectory.h"

namespace brantel {

namespace {

const std::set<std::uint32_t> ALL_SLOTS{0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
constexpr const char* RULE = "expr=signed(value>90)";

class RuleSetTest : public testing::Test {
protected:
    std::string path() const { return m_directory.path() + "/events.db"; }
    EventDatabase& database() { return m_database; }

    // Past the checks of the commands.
    void insert(const EventTable& table, const sql::Row& row) { m_database.table(table).insert(row); }

    std::string rulesText(const std::set<std::uint32_t>& slots = ALL_SLOTS)
    {
        std::string text;
        for (const RuleKey& key : readRuleSet(m_database, slots).rules) {
            text += placeText(key.place) + " " + std::to_string(key.oid) + " " + key.rule + "\n";
        }
        return text;
    }

private:
    TemporaryDirectory m_directory;
    EventDatabase m_database = EventDatabase::create(path());
};

TEST_F(RuleSetTest, HoldsTheRulesOfEnabledPlaces)
{
    enableCard(database(), 3, 1, true);
    enableCard(database(), 4, 1, false);
    enableComponent(database(), 7, true);
    addToList(database(), EventTableKind::ALLOW, {{slotPlace(3), 5, RULE}});
    addToList(database(), EventTableKind::ALLOW, {{slotPlace(4), 5, RULE}});
    addToList(database(), EventTableKind::ALLOW, {{slotPlace(5), 5, RULE}});
    addToList(database(), EventTableKind::ALLOW, {{componentPlace(7), 4294967295, RULE}});
    addToList(database(), EventTableKind::ALLOW, {{componentPlace(8), 6, RULE}});

    EXPECT_EQ(rulesText(), "slot 3 5 expr=signed(value>90)\ncomponent 7 4294967295 expr=signed(value>90)\n");
}

TEST_F(RuleSetTest, LeavesOutIgnoredObjectsEmptyRulesAndComments)
{
    enableCard(database(), 3, 1, true);
    addToList(database(), EventTableKind::ALLOW, {{slotPlace(3), 5, RULE}});
    addToList(database(), EventTableKind::ALLOW, {{slotPlace(3), 6, RULE}});
    addToList(database(), EventTableKind::ALLOW, {{slotPlace(3), 7, "/ later"}});
    addToList(database(), EventTableKind::ALLOW, {{slotPlace(3), 8, ""}});
    addToList(database(), EventTableKind::IGNORE, {{slotPlace(3), 5, std::nullopt}});
    addToList(database(), EventTableKind::IGNORE, {{componentPlace(3), 6, std::nullopt}});

    EXPECT_EQ(rulesText(), "slot 3 6 expr=signed(value>90)\n");
}

TEST_F(RuleSetTest, HoldsWhatTheMonitorServes)
{
    for (const std::uint32_t slot : {3U, 4U}) {
        enableCard(database(), slot, 1, true);
        addToList(database(), EventTableKind::ALLOW, {{slotPlace(slot), 5, RULE}});
    }

    enableCard(database(), 5, 1, false);

    EXPECT_EQ(rulesText({4}), "slot 4 5 expr=signed(value>90)\n");
    const RuleSet ruleSet = readRuleSet(database(), {4});
    EXPECT_EQ(ruleSet.enabledPlaces, (std::set<Place>{slotPlace(4)}));
    EXPECT_EQ(ruleSet.unservedPlaces, (std::set<Place>{slotPlace(3)}));
}

TEST_F(RuleSetTest, RefusesOnlyTheRowsThatCannotBeFollowed)
{
    enableCard(database(), 3, 1, true);
    const EventTable& allow = tableFor(EventTableKind::ALLOW, Place::Kind::SLOT);
    insert(allow, {1, 3, "5", "expr=signed(value=<90)"});
    insert(allow, {2, 3, "five", RULE});
    insert(allow, {3, 3, "6", RULE});
    insert(allow, {4, 12, "6", RULE});
    insert(allow, {6, 3, "line\nbreak", RULE});
    insert(allow, {5, 3, "7", "expr=signed(value>1);expr=signed(value<0)"});

    std::string refused;
    for (const RefusedRow& row : readRuleSet(database(), ALL_SLOTS).refusedRows) {
        refused += row.table + " " + std::to_string(row.row) + " " + row.reason + "\n";
    }
    EXPECT_EQ(rulesText(), "slot 3 6 expr=signed(value>90)\n");
    EXPECT_EQ(
        refused,
        "IfcCardsAllowEventsTable 1 Rule: '=<' is not an operator\n"
        "IfcCardsAllowEventsTable 2 OID: 'five' is not an OID: write a decimal number from 0 to 4294967295 without "
        "leading zeros\n"
        "IfcCardsAllowEventsTable 4 slot 12 is out of reach: the slots are 0 to 9\n"
        "IfcCardsAllowEventsTable 5 Rule: a rule of several parts is never evaluated: make each part a rule of "
        "its own\n"
        "IfcCardsAllowEventsTable 6 OID: 'line?break' is not an OID: write a decimal number from 0 to 4294967295 "
        "without leading zeros\n");
}

TEST_F(RuleSetTest, ShortensAReasonThatQuotesALongText)
{
    insert(tableFor(EventTableKind::ALLOW, Place::Kind::SLOT), {1, 3, std::string(3'000'000, 'x'), RULE});

    const std::set<RefusedRow> refused = readRuleSet(database(), ALL_SLOTS).refusedRows;
    ASSERT_EQ(refused.size(), 1U);
    EXPECT_EQ(refused.begin()->reason,
              "OID: '" + std::string(80, 'x') +
                  "...' is not an OID: write a decimal number from 0 to 4294967295 without leading zeros");
}

TEST_F(RuleSetTest, RefusesRulesThatAreTooLongForALine)
{
    enableCard(database(), 3, 1, true);
    const std::string longest = RULE + std::string(65536 - std::string(RULE).size(), ' ');
    insert(tableFor(EventTableKind::ALLOW, Place::Kind::SLOT), {1, 3, "5", longest});
    insert(tableFor(EventTableKind::ALLOW, Place::Kind::SLOT), {2, 3, "6", longest + " "});

    EXPECT_EQ(rulesText(), "slot 3 5 " + longest + "\n");
    const std::set<RefusedRow> refused = readRuleSet(database(), ALL_SLOTS).refusedRows;
    ASSERT_EQ(refused.size(), 1U);
    EXPECT_EQ(refused.begin()->reason, "Rule: the rule is longer than 65536 bytes");
}

TEST_F(RuleSetTest, IsReadWhenTheDatabaseHasChanged)
{
    RuleSetWatcher watcher(path(), ALL_SLOTS);

    EXPECT_TRUE(watcher.readIfChanged());
    EXPECT_FALSE(watcher.readIfChanged());
    enableCard(database(), 3, 1, true);
    const std::optional<RuleSet> ruleSet = watcher.readIfChanged();
    ASSERT_TRUE(ruleSet);
    EXPECT_EQ(ruleSet->enabledPlaces, (std::set<Place>{slotPlace(3)}));
    EXPECT_FALSE(watcher.readIfChanged());
}

TEST_F(RuleSetTest, IsReadAgainOnRequestFromTheCurrentFile)
{
    RuleSetWatcher watcher(path(), ALL_SLOTS);
    static_cast<void>(watcher.readIfChanged());
    const EventTable& configuration = tableFor(EventTableKind::CONFIGURATION, Place::Kind::SLOT);
    insert(configuration, {3, 1, 1});  // without a row in the row-change table

    EXPECT_FALSE(watcher.readIfChanged());
    watcher.forget();
    EXPECT_EQ(watcher.readIfChanged()->enabledPlaces, (std::set<Place>{slotPlace(3)}));
}

TEST_F(RuleSetTest, IsReadFromAFileThatReplacesTheDatabase)
{
    RuleSetWatcher watcher(path(), ALL_SLOTS);
    EXPECT_TRUE(watcher.read().rules.empty());
    EXPECT_FALSE(watcher.readIfChanged());
    enableCard(database(), 5, 1, true);  // stays in the log, as the watcher has the file open
    EXPECT_TRUE(watcher.readIfChanged());
    {
        EventDatabase other = EventDatabase::create(path() + ".other");
        enableCard(other, 3, 1, true);
        addToList(other, EventTableKind::ALLOW, {{slotPlace(3), 5, RULE}});
    }
    std::filesystem::rename(path() + ".other", path());

    EXPECT_EQ(errorOf([&] { watcher.readIfChanged(); }),
              "'" + path() + "' was replaced, but '" + path() + "-wal' belongs to the file before: remove it");
    watcher.forget();
    EXPECT_NE(errorOf([&] { watcher.readIfChanged(); }), "") << "nor are both mixed on request";
    std::filesystem::remove(path() + "-wal");
    const std::optional<RuleSet> ruleSet = watcher.readIfChanged();
    ASSERT_TRUE(ruleSet);
    EXPECT_EQ(ruleSet->rules.size(), 1U);
    EXPECT_FALSE(watcher.readIfChanged());

    std::filesystem::remove(path());
    EXPECT_THROW(watcher.readIfChanged(), sql::Error);
}

TEST_F(RuleSetTest, IsReadAgainFromAFileThatWasAway)
{
    RuleSetWatcher watcher(path(), ALL_SLOTS);
    watcher.read();
    EXPECT_FALSE(watcher.readIfChanged());
    std::filesystem::rename(path(), path() + ".away");
    EXPECT_THROW(watcher.readIfChanged(), sql::Error);
    std::filesystem::rename(path() + ".away", path());
    EXPECT_TRUE(watcher.readIfChanged());
    EXPECT_FALSE(watcher.readIfChanged());
}

TEST(RuleSetWatcher, SaysThatTheDatabaseIsMissing)
{
    RuleSetWatcher watcher("/nowhere/events.db", ALL_SLOTS);

    EXPECT_THROW(static_cast<void>(watcher.readIfChanged()), sql::Error);
}

}  // namespace

}  // namespace brantel
