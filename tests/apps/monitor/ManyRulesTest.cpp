// The monitor with very many rules, on one object and on many: what it costs grows little faster than the number of
// rules. The cost of a search is counted in comparisons of texts: this program has its own memcmp,
// which all of them go through, those of the C++ library included.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include <gtest/gtest.h>

#include "apps/monitor/Monitored.h"
#include "monitor/RuleSet.h"
#include "support/TemporaryDirectory.h"

namespace brantel {
namespace {

std::size_t comparisons = 0;

}  // namespace

extern "C" __attribute__((visibility("default"), no_sanitize("address", "undefined"))) int memcmp(const void* left,
                                                                                                  const void* right,
                                                                                                  std::size_t length)
{
    ++comparisons;
    const auto* pLeft = static_cast<const unsigned char*>(left);
    const auto* pRight = static_cast<const unsigned char*>(right);
    for (; length > 0; --length, ++pLeft, ++pRight) {
        if (*pLeft != *pRight) {
            return *pLeft - *pRight;
        }
    }
    return 0;
}

namespace {

const Place SLOT_3 = slotPlace(3);

enum class On { ONE_OBJECT, AN_OBJECT_EACH };

RuleKey ruleOf(int i, On on)
{
    const std::uint32_t oid = 5 + ((on == On::ONE_OBJECT) ? 0U : static_cast<std::uint32_t>(i));
    return {SLOT_3, oid, "expr=signed(value>" + std::to_string(i) + ")"};
}

RuleSet ruleSetOfMany(int nRules, On on)
{
    RuleSet ruleSet;
    ruleSet.enabledPlaces.insert(SLOT_3);
    for (int i = 0; i < nRules; ++i) {
        ruleSet.rules.insert(ruleOf(i, on));
    }
    return ruleSet;
}

Reading readingThatRaises(const RuleSet& ruleSet)
{
    std::map<std::uint32_t, int> values;
    for (const RuleKey& key : ruleSet.rules) {
        values[key.oid] = static_cast<int>(ruleSet.rules.size());
    }
    return readingOf(values);
}

std::size_t comparisonsOf(const std::function<void()>& act)
{
    const std::size_t before = comparisons;
    act();
    return comparisons - before;
}

// A database with these rules, past the checks of the commands.
std::size_t costOfReading(int nRules, On on)
{
    const TemporaryDirectory directory;
    EventDatabase database = EventDatabase::create(directory.path() + "/events.db");
    enableCard(database, SLOT_3.number, 1, true);
    {
        sql::Transaction oneChange(database.database());
        sql::Table allow = database.table(tableFor(EventTableKind::ALLOW, Place::Kind::SLOT));
        for (int i = 0; i < nRules; ++i) {
            const RuleKey key = ruleOf(i, on);
            allow.insert({i + 1, SLOT_3.number, std::to_string(key.oid), key.rule});
        }
        oneChange.commit();
    }
    RuleSet ruleSet;
    const std::size_t cost = comparisonsOf([&] { ruleSet = readRuleSet(database, {SLOT_3.number}); });
    EXPECT_EQ(ruleSet.rules.size(), static_cast<std::size_t>(nRules));
    return cost;
}

struct Costs {
    std::size_t readingTheDatabase;
    std::size_t firstRuleSet;
    std::size_t sameRuleSet;
    std::size_t reading;
    std::size_t emptyRuleSet;
    std::size_t restoring;
};

// All rules are raised by the reading, and cleared by the empty rule set.
Costs costsOf(int nRules, On on)
{
    const RuleSet ruleSet = ruleSetOfMany(nRules, on);
    const Reading reading = readingThatRaises(ruleSet);
    ConditionMonitor monitor;
    ConditionMonitor restored;
    std::vector<Event> events;
    Costs costs{};
    costs.readingTheDatabase = costOfReading(nRules, on);
    costs.firstRuleSet = comparisonsOf([&] { monitor.follow(ruleSet, {NOON, events}); });
    costs.sameRuleSet = comparisonsOf([&] { monitor.follow(ruleSet, {NOON, events}); });
    costs.reading = comparisonsOf([&] { monitor.takeReading(SLOT_3, reading, {NOON, events}); });
    EXPECT_EQ(events.size(), static_cast<std::size_t>(nRules));
    costs.emptyRuleSet = comparisonsOf([&] { monitor.follow(RuleSet(), {NOON, events}); });
    EXPECT_EQ(events.size(), 2 * static_cast<std::size_t>(nRules));
    costs.restoring = comparisonsOf([&] {
        for (const RuleKey& key : ruleSet.rules) {
            restored.restoreRule(key, {1, true, false});
        }
    });
    return costs;
}

class ManyRules : public testing::TestWithParam<On> {};

TEST_P(ManyRules, CostLittleMoreThanTheirNumber)
{
    const Costs few = costsOf(1'000, GetParam());
    const Costs many = costsOf(8'000, GetParam());

    // Eight times the rules: in a tree, ten to eleven times the comparisons; in a list, 64 times.
    ASSERT_GT(few.readingTheDatabase, 1'000U) << "they are counted";
    EXPECT_LE(many.readingTheDatabase, 14 * few.readingTheDatabase);
    EXPECT_LE(many.firstRuleSet, 14 * few.firstRuleSet);
    EXPECT_LE(many.sameRuleSet, 14 * few.sameRuleSet);
    EXPECT_LE(many.reading, 14 * few.reading);
    EXPECT_LE(many.emptyRuleSet, 14 * few.emptyRuleSet);
    EXPECT_LE(many.restoring, 14 * few.restoring);
}

INSTANTIATE_TEST_SUITE_P(On, ManyRules, testing::Values(On::ONE_OBJECT, On::AN_OBJECT_EACH));

}  // namespace

}  // namespace brantel
