#include "monitor/Event.h"

#include <gtest/gtest.h>

#include "monitor/Monitored.h"

namespace {

Event raisedEvent()
{
    return {12,
            NOON,
            EventKind::RAISED,
            slotPlace(3),
            0x00030001,
            DOUBLE_HYSTERESIS_RULE,
            "upper",
            92,
            60,
            "92 > 80: above the upper threshold"};
}

TEST(Event, IsOneJsonObjectInALine)
{
    EXPECT_EQ(
        jsonLineOf(raisedEvent()),
        R"json({"event":12,"time":"2026-09-12T12:00:00.123Z","kind":"raised","slot":3,"oid":196609,"object":"csv.1",)json"
        R"json("rule":"expr=signed(hyshigh(70,80) hyslow(10,20))","condition":"upper","value":92,"previous":60,)json"
        R"json("why":"92 > 80: above the upper threshold"})json");
}

TEST(Event, HasNoFieldForWhatItDoesNotHave)
{
    Event failed;
    failed.number = 1;
    failed.time = NOON;
    failed.kind = EventKind::FAILED;
    failed.place = componentPlace(7);
    failed.why = "no sound answer";

    EXPECT_EQ(
        jsonLineOf(failed),
        R"json({"event":1,"time":"2026-09-12T12:00:00.123Z","kind":"failed","component":7,"why":"no sound answer"})json");
}

TEST(Event, IsTheSameAfterBeingReadFromItsLine)
{
    Event refused;
    refused.number = 18446744073709551615U;
    refused.time = EventTime(std::chrono::milliseconds(5));
    refused.kind = EventKind::REFUSED;
    refused.why = "a \"quoted\" \x01 text";

    for (const Event& event : {raisedEvent(), refused}) {
        const std::optional<Event> again = eventOfJsonLine(jsonLineOf(event));
        ASSERT_TRUE(again);
        EXPECT_EQ(jsonLineOf(*again), jsonLineOf(event));
        EXPECT_EQ(again->time, event.time);
    }
}

TEST(Event, IsNotReadFromAnythingElse)
{
    const std::string line = jsonLineOf(raisedEvent());
    const std::string noEvents[] = {
        "",
        "{}",
        "[]",
        "12",
        "event",
        line.substr(0, line.size() - 1),
        line + "}",
        R"json({"event":1,"time":"yesterday","kind":"raised","why":""})json",
        R"json({"event":1,"time":"2026-09-12T12:00:00.123Z","kind":"risen","why":""})json",
        R"json({"event":"1","time":"2026-09-12T12:00:00.123Z","kind":"raised","why":""})json",
        R"json({"event":1,"time":"2026-09-12T12:00:00.123Z","kind":"raised"})json",
    };

    for (const std::string& text : noEvents) {
        EXPECT_FALSE(eventOfJsonLine(text)) << text;
    }
}

TEST(Event, IsOneLineForATerminalWhateverItsTexts)
{
    Event event = raisedEvent();
    event.why = "two\nlines\x1b[2J";

    EXPECT_EQ(sentenceOf(event),
              "slot 3 csv.1 upper raised: two?lines?[2J [expr=signed(hyshigh(70,80) hyslow(10,20))]");
}

}  // namespace
