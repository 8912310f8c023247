#include "monitor/StateFile.h"

#include <gtest/gtest.h>

#include "common/CommandLine.h"
#include "monitor/Monitored.h"
#include "support/TemporaryDirectory.h"

namespace {

const std::string EVENT_LINE =
    R"({"event":5,"time":"2026-09-12T12:00:00.123Z","kind":"failed","slot":3,"why":"no sound answer"})";

const std::string STATE =
    "brantel monitor state 1\n"
    "last-event 5\n"
    "failure slot 3 - no sound answer\n"
    "rule slot 3 4294967295 -7 0 1 expr=signed(hyshigh(70,80) hyslow(10,20))\n"
    "rule component 7 6 - 0 0 expr=signed(value>90)\n"
    "failure component 7 6 its value is not a number\n"
    "refused IfcCardsAllowEventsTable -9 Rule: '=<' is not an operator\n"
    "event " +
    EVENT_LINE + "\nend 8\n";

void restore(const MonitorState& state, ConditionMonitor& monitor)
{
    for (const auto& [key, memory] : state.rules) {
        EXPECT_TRUE(monitor.restoreRule(key, memory));
    }
    for (const RememberedFailure& failure : state.failures) {
        monitor.restoreFailure(failure.place, failure.oid, failure.failure);
    }
    for (const RefusedRow& row : state.refusedRows) {
        monitor.restoreRefusal(row);
    }
}

TEST(StateFile, HoldsRulesFailuresRefusedRowsAndEventsAsLines)
{
    ConditionMonitor monitor;
    monitor.restoreRule({slotPlace(3), 4294967295, DOUBLE_HYSTERESIS_RULE}, {-7, {false, true}});
    monitor.restoreRule({componentPlace(7), 6, ABOVE_90}, {});
    monitor.restoreFailure(slotPlace(3), std::nullopt, "no sound answer");
    monitor.restoreFailure(componentPlace(7), 6, "its value is not a number");
    monitor.restoreRefusal({"IfcCardsAllowEventsTable", -9, "Rule: '=<' is not an operator"});

    EXPECT_EQ(stateText(5, monitor, {EVENT_LINE}), STATE);
}

TEST(StateFile, IsLoadedAsItWasSaved)
{
    const TemporaryDirectory directory;
    const StateFile file(directory.path() + "/state");
    file.save("to be replaced");
    file.save(STATE);

    const MonitorState state = file.load();
    ConditionMonitor monitor;
    restore(state, monitor);

    EXPECT_EQ(stateText(state.lastEvent, monitor, state.eventLines), STATE);
}

TEST(StateFile, IsEmptyWhereThereIsNone)
{
    const TemporaryDirectory directory;
    const MonitorState state = StateFile(directory.path() + "/state").load();

    EXPECT_EQ(stateText(state.lastEvent, ConditionMonitor(), state.eventLines),
              "brantel monitor state 1\nlast-event 0\nend 2\n");
}

std::string loadFault(const std::string& text)
{
    const TemporaryDirectory directory;
    directory.write("state", text);
    try {
        static_cast<void>(StateFile(directory.path() + "/state").load());
    } catch (const CommandError& error) {
        return std::string(error.what()).substr(directory.path().size() + 1);
    }
    return "";
}

TEST(StateFile, IsRefusedWithTheLineThatIsWrong)
{
    const std::string first = "brantel monitor state 1\n";
    const std::pair<std::string, std::string> cases[] = {
        {"", "state:0: this is no state of a monitor, or one of another version"},
        {"brantel monitor state 2\nend 1\n", "state:1: this is no state of a monitor, or one of another version"},
        {first, "state:1: the end of the state is missing"},
        {first + "last-event 5\nend 1\n", "state:3: 'end 1' is no line of a state"},
        {first + "last-event x\n", "state:2: 'last-event x' is no line of a state"},
        {first + "rule slot 3 5 7 0\n", "state:2: 'rule slot 3 5 7 0' is no line of a state"},
        {first + "rule shelf 3 5 7 0 0 expr\n", "state:2: 'rule shelf 3 5 7 0 0 expr' is no line of a state"},
        {first + "failure slot 3 x y\n", "state:2: 'failure slot 3 x y' is no line of a state"},
        {first + "refused SomeTable nine y\n", "state:2: 'refused SomeTable nine y' is no line of a state"},
        {first + "event {}\n", "state:2: 'event {}' is no line of a state"},
        {first + "weather fine\n", "state:2: 'weather fine' is no line of a state"},
    };

    for (const auto& [text, fault] : cases) {
        EXPECT_EQ(loadFault(text), fault);
    }
}

TEST(StateFile, BelongsToOneMonitorAtATime)
{
    const TemporaryDirectory directory;
    const std::string path = directory.path() + "/state";
    {
        const StateFile first(path);
        EXPECT_THROW(StateFile second(path), CommandError);
    }
    EXPECT_NO_THROW(StateFile third(path));
}

TEST(StateFile, SaysThatItCannotBeWritten)
{
    EXPECT_THROW(StateFile("/nowhere/state"), CommandError);
}

}  // namespace
