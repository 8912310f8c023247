#include "monitor/ConditionMonitor.h"

#include <gtest/gtest.h>

#include "apps/monitor/Monitored.h"
#include "cards/CardObjects.h"

namespace brantel {
namespace {

using Sentences = TestedMonitor::Sentences;

const Place SLOT_3 = slotPlace(3);
const Place COMPONENT_7 = componentPlace(7);

TEST(ConditionMonitor, RaisesAndClearsOnTheChangeOfAConditionOnly)
{
    TestedMonitor monitor;
    monitor.follow(ruleSetOf({{SLOT_3, 5, ABOVE_90}}));

    EXPECT_EQ(monitor.take(SLOT_3, readingOf({{5, 90}})), (Sentences{}));
    EXPECT_EQ(monitor.take(SLOT_3, readingOf({{5, 92}})),
              (Sentences{"slot 3 0x00000005 raised: 92 > 90: above the limit [expr=signed(value>90)]"}));
    EXPECT_EQ(monitor.take(SLOT_3, readingOf({{5, 95}})), (Sentences{}));
    EXPECT_EQ(monitor.take(SLOT_3, readingOf({{5, 90}})),
              (Sentences{"slot 3 0x00000005 cleared: 90 <= 90: at or below the limit [expr=signed(value>90)]"}));
}

TEST(ConditionMonitor, ReportsTheValueAndThePreviousOne)
{
    ConditionMonitor monitor;
    std::vector<Event> events;
    monitor.follow(ruleSetOf({{SLOT_3, 5, CHANGE_ABOVE_5}}), {NOON, events});
    monitor.takeReading(SLOT_3, readingOf({{5, 10}}), {NOON, events});
    monitor.takeReading(SLOT_3, readingOf({{5, 20}}), {NOON, events});

    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(eventJson(events[0]),
              R"json({"event":0,"time":"2026-09-12T12:00:00.123Z","kind":"raised","slot":3,"oid":5,)json"
              R"json("object":"0x00000005","rule":"expr=unsigned(delta>5)","value":20,"previous":10,)json"
              R"json("reason":"|20 - 10| = 10 > 5: above the limit"})json");
}

TEST(ConditionMonitor, DistinguishesTheConditionsOfADoubleHysteresis)
{
    TestedMonitor monitor;
    monitor.follow(ruleSetOf({{COMPONENT_7, 5, DOUBLE_HYSTERESIS_RULE}}));
    monitor.take(COMPONENT_7, readingOf({{5, 81}}));

    EXPECT_EQ(monitor.take(COMPONENT_7, readingOf({{5, 9}})),
              (Sentences{"component 7 0x00000005 upper cleared: 9 <= 70: at or below the lower threshold "
                         "[expr=signed(hyshigh(70,80) hyslow(10,20))]",
                         "component 7 0x00000005 lower raised: 9 < 10: below the lower threshold "
                         "[expr=signed(hyshigh(70,80) hyslow(10,20))]"}));
}

TEST(ConditionMonitor, KeepsTheMemoryOfRulesThatStayInTheRuleSet)
{
    TestedMonitor monitor;
    monitor.follow(ruleSetOf({{SLOT_3, 5, HYSTERESIS}}));
    monitor.take(SLOT_3, readingOf({{5, 81}}));

    EXPECT_EQ(monitor.follow(ruleSetOf({{SLOT_3, 5, HYSTERESIS}, {SLOT_3, 6, ABOVE_90}})), (Sentences{}));
    EXPECT_EQ(monitor.take(SLOT_3, readingOf({{5, 75}, {6, 0}})), (Sentences{}));
    EXPECT_EQ(monitor.monitor().oidsOf(SLOT_3), (ObjectIdContainer{5, 6}));
}

TEST(ConditionMonitor, FollowsSeveralRulesOnOneObject)
{
    TestedMonitor monitor;
    monitor.follow(ruleSetOf({{SLOT_3, 5, ABOVE_90}, {SLOT_3, 5, HYSTERESIS}}));

    EXPECT_EQ(monitor.take(SLOT_3, readingOf({{5, 95}})).size(), 2U);
    EXPECT_EQ(monitor.follow(ruleSetOf({{SLOT_3, 5, HYSTERESIS}})),
              (Sentences{"slot 3 0x00000005 cleared: the rule is no longer in the database "
                         "[expr=signed(value>90)]"}));
}

TEST(ConditionMonitor, KeepsOneRuleThatIsRestoredTwice)
{
    TestedMonitor monitor;
    EXPECT_TRUE(monitor.monitor().restoreRule({SLOT_3, 5, ABOVE_90}, {75, false, false}));
    EXPECT_TRUE(monitor.monitor().restoreRule({SLOT_3, 5, ABOVE_90}, {95, true, false}));

    EXPECT_EQ(monitor.take(SLOT_3, readingOf({{5, 90}})),
              (Sentences{"slot 3 0x00000005 cleared: 90 <= 90: at or below the limit [expr=signed(value>90)]"}));
}

TEST(ConditionMonitor, ClearsARaisedConditionWhenItsRuleGoesAndSaysWhy)
{
    const RuleSet ruleSet = ruleSetOf({{SLOT_3, 5, ABOVE_90}});
    RuleSet removed = ruleSet;
    removed.rules.clear();
    RuleSet ignored = removed;
    ignored.ignored.insert({SLOT_3, 5});
    const RuleSet disabled;
    RuleSet unserved;
    unserved.unservedPlaces.insert(SLOT_3);
    const std::pair<RuleSet, std::string> cases[] = {
        {removed, "the rule is no longer in the database"},
        {ignored, "the object's events are now ignored"},
        {disabled, "events of slot 3 are no longer enabled"},
        {unserved, "slot 3 is no longer served"},
    };

    for (const auto& [next, reason] : cases) {
        TestedMonitor monitor;
        monitor.follow(ruleSet);
        monitor.take(SLOT_3, readingOf({{5, 91}}));

        EXPECT_EQ(monitor.follow(next),
                  (Sentences{"slot 3 0x00000005 cleared: " + reason + " [expr=signed(value>90)]"}));
        EXPECT_EQ(monitor.take(SLOT_3, readingOf({{5, 95}})), (Sentences{}));
    }
}

TEST(ConditionMonitor, ReportsNothingWhenAClearedRuleGoes)
{
    TestedMonitor monitor;
    monitor.follow(ruleSetOf({{SLOT_3, 5, ABOVE_90}}));
    monitor.take(SLOT_3, readingOf({{5, 1}}));

    EXPECT_EQ(monitor.follow(RuleSet()), (Sentences{}));
}

TEST(ConditionMonitor, ReportsTheFailureAndTheRecoveryOfAPlaceOnce)
{
    TestedMonitor monitor;
    monitor.follow(ruleSetOf({{SLOT_3, 5, HYSTERESIS}}));
    monitor.take(SLOT_3, readingOf({{5, 81}}));
    Reading timeout;
    timeout.failures = {{5, 0x02000000}};

    EXPECT_EQ(monitor.take(SLOT_3, timeout), (Sentences{"slot 3 failed: 33554432=0x2000000=TIMEOUT: the card did not "
                                                        "answer in time"}));
    EXPECT_EQ(monitor.take(SLOT_3, timeout), (Sentences{}));
    EXPECT_EQ(monitor.fail(SLOT_3, "no card is serving the slot"), (Sentences{}));
    EXPECT_EQ(monitor.take(SLOT_3, readingOf({{5, 75}})),
              (Sentences{"slot 3 recovered: after: no card is serving the slot"}));
    EXPECT_EQ(monitor.take(SLOT_3, readingOf({{5, 70}})).size(), 1U) << "it was raised all the time";
}

TEST(ConditionMonitor, ReportsTheFailureOfOneObjectAndEvaluatesTheOthers)
{
    TestedMonitor monitor;
    monitor.follow(ruleSetOf({{SLOT_3, 5, ABOVE_90}, {SLOT_3, 6, ABOVE_90}}));
    Reading reading = readingOf({{6, 91}});
    reading.failures = {{5, icsc::RESULT_WRONG_OID}};

    EXPECT_EQ(monitor.take(SLOT_3, reading),
              (Sentences{"slot 3 0x00000005 failed: 7=0x7=RESULT WRONG OID: the card has no such object",
                         "slot 3 0x00000006 raised: 91 > 90: above the limit [expr=signed(value>90)]"}));
    EXPECT_EQ(monitor.take(SLOT_3, readingOf({{6, 91}})), (Sentences{})) << "not asked for, so still failing";
    EXPECT_EQ(monitor.take(SLOT_3, readingOf({{5, 1}, {6, 91}})),
              (Sentences{"slot 3 0x00000005 recovered: after: 7=0x7=RESULT WRONG OID: the card has no such object"}));
}

TEST(ConditionMonitor, EvaluatesNoValueOutsideTheRangeOfARule)
{
    TestedMonitor monitor;
    monitor.follow(ruleSetOf({{SLOT_3, 5, CHANGE_ABOVE_5}}));
    Reading text;
    text.values[5] = {OID_TYPE_STRING, std::string("7")};

    EXPECT_EQ(monitor.take(SLOT_3, readingOf({{5, 10}})), (Sentences{}));
    EXPECT_EQ(monitor.take(SLOT_3, readingOf({{5, -1}})),
              (Sentences{"slot 3 0x00000005 failed: its value is outside 0 to 4294967295, the range of "
                         "'expr=unsigned(delta>5)'"}));
    EXPECT_EQ(monitor.take(SLOT_3, readingOf({{5, -2}})), (Sentences{}));
    EXPECT_EQ(monitor.take(SLOT_3, text), (Sentences{}));
    EXPECT_EQ(monitor.take(SLOT_3, readingOf({{5, 15}})),
              (Sentences{"slot 3 0x00000005 recovered: after: its value is not a number"}));
    EXPECT_EQ(monitor.monitor().evaluations(), 2U);
}

TEST(ConditionMonitor, ReportsARefusedRowOnce)
{
    TestedMonitor monitor;
    RuleSet ruleSet = ruleSetOf({{SLOT_3, 5, ABOVE_90}});
    ruleSet.refusedRows.insert({"IfcCardsAllowEventsTable", 9, "Rule: '=<' is not an operator"});

    EXPECT_EQ(monitor.follow(ruleSet),
              (Sentences{"refused: IfcCardsAllowEventsTable, row 9: Rule: '=<' is not an operator"}));
    EXPECT_EQ(monitor.follow(ruleSet), (Sentences{}));
    EXPECT_EQ(monitor.follow(ruleSetOf({{SLOT_3, 5, ABOVE_90}})), (Sentences{}));
    EXPECT_EQ(monitor.follow(ruleSet).size(), 1U) << "it was put right in between";
}

TEST(ConditionMonitor, ContinuesFromTheRestoredMemory)
{
    TestedMonitor monitor;
    EXPECT_TRUE(monitor.monitor().restoreRule({SLOT_3, 5, HYSTERESIS}, {75, true, false}));
    EXPECT_TRUE(monitor.monitor().restoreRule({SLOT_3, 6, CHANGE_ABOVE_5}, {100, false, false}));
    EXPECT_TRUE(monitor.monitor().restoreRule({SLOT_3, 7, ABOVE_90}, {99, true, false}));
    EXPECT_FALSE(monitor.monitor().restoreRule({SLOT_3, 8, "expr=signed(value=<90)"}, {}));
    monitor.monitor().restoreFailure(SLOT_3, std::nullopt, "no answer");

    EXPECT_EQ(monitor.follow(ruleSetOf({{SLOT_3, 5, HYSTERESIS}, {SLOT_3, 6, CHANGE_ABOVE_5}})),
              (Sentences{"slot 3 0x00000007 cleared: the rule is no longer in the database "
                         "[expr=signed(value>90)]"}));
    EXPECT_EQ(monitor.take(SLOT_3, readingOf({{5, 76}, {6, 110}})),
              (Sentences{"slot 3 recovered: after: no answer",
                         "slot 3 0x00000006 raised: |110 - 100| = 10 > 5: above the limit [expr=unsigned(delta>5)]"}));
}

}  // namespace

}  // namespace brantel
