#include "monitor/Event.h"

#include <gtest/gtest.h>

#include "apps/monitor/Monitored.h"

namespace brantel {
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
        eventJson(raisedEvent()),
        R"json({"event":12,"time":"2026-09-12T12:00:00.123Z","kind":"raised","slot":3,"oid":196609,"object":"csv.1",)json"
        R"json("rule":"expr=signed(hyshigh(70,80) hyslow(10,20))","condition":"upper","value":92,"previous":60,)json"
        R"json("reason":"92 > 80: above the upper threshold"})json");
}

TEST(Event, OmitsFieldsWithoutAValue)
{
    Event failed;
    failed.number = 1;
    failed.time = NOON;
    failed.kind = EventKind::FAILED;
    failed.place = componentPlace(7);
    failed.reason = "no answer";

    EXPECT_EQ(
        eventJson(failed),
        R"json({"event":1,"time":"2026-09-12T12:00:00.123Z","kind":"failed","component":7,"reason":"no answer"})json");
}

TEST(Event, IsTheSameAfterBeingReadFromItsLine)
{
    Event refused;
    refused.number = MAX_EVENT_NUMBER;
    refused.time = UtcTime(std::chrono::milliseconds(5));
    refused.kind = EventKind::REFUSED;
    refused.reason = "a \"quoted\" \x01 text";

    Event lost;
    lost.number = 13;
    lost.kind = EventKind::LOST;
    lost.lost = EventRange{10, 12};

    for (const Event& event : {raisedEvent(), refused, lost}) {
        const std::optional<Event> again = parseEvent(eventJson(event));
        ASSERT_TRUE(again);
        EXPECT_EQ(eventJson(*again), eventJson(event));
        EXPECT_EQ(again->time, event.time);
    }
}

TEST(Event, IsNotReadFromAnythingElse)
{
    const std::string line = eventJson(raisedEvent());
    const std::string noEvents[] = {
        "",
        "{}",
        "[]",
        "12",
        "event",
        line.substr(0, line.size() - 1),
        line + "}",
        R"json({"event":1,"time":"yesterday","kind":"raised","reason":""})json",
        R"json({"event":1,"time":"2026-09-12T12:00:00.123Z","kind":"risen","reason":""})json",
        R"json({"event":"1","time":"2026-09-12T12:00:00.123Z","kind":"raised","reason":""})json",
        R"json({"event":1,"time":"2026-09-12T12:00:00.123Z","kind":"raised"})json",
        R"json({"event":0,"time":"2026-09-12T12:00:00.123Z","kind":"raised","reason":""})json",
        R"json({"event":-1,"time":"2026-09-12T12:00:00.123Z","kind":"raised","reason":""})json",
        R"json({"event":1.5,"time":"2026-09-12T12:00:00.123Z","kind":"raised","reason":""})json",
        R"json({"event":1000000000000001,"time":"2026-09-12T12:00:00.123Z","kind":"raised","reason":""})json",
        R"json({"event":1,"time":"2026-09-12T12:00:00.123Z","kind":"raised","slot":4294967296,"reason":""})json",
        R"json({"event":1,"time":"2026-09-12T12:00:00.123Z","kind":"raised","oid":-1,"reason":""})json",
        R"json({"event":1,"time":"2026-09-12T12:00:00.123Z","kind":"raised","value":1.5,"reason":""})json",
        R"json({"event":1,"time":"2026-09-12T12:00:00.123Z","kind":"lost","lost":1,"first":0,"last":1,"reason":""})json",
    };

    for (const std::string& text : noEvents) {
        EXPECT_FALSE(parseEvent(text)) << text;
    }
}

TEST(Event, IsOneLineForATerminalWhateverItsTexts)
{
    Event event = raisedEvent();
    event.reason = "two\nlines\x1b[2J";

    EXPECT_EQ(eventText(event), "slot 3 csv.1 upper raised: two?lines?[2J [expr=signed(hyshigh(70,80) hyslow(10,20))]");
}

}  // namespace

}  // namespace brantel
