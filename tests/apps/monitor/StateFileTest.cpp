#include "monitor/StateFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "apps/monitor/Monitored.h"
#include "common/CommandLine.h"
#include "support/ErrorOf.h"
#include "support/TemporaryDirectory.h"

namespace brantel {
namespace {

const std::string EVENT_LINE =
    R"({"event":5,"time":"2026-09-12T12:00:00.123Z","kind":"failed","slot":3,"reason":"no answer"})";

const std::string STATE =
    "brantel monitor state 3\n"
    "last-event 9\n"
    "lost 6 9\n"
    "failure slot 3 - no answer\n"
    "rule slot 3 4294967295 -7 0 1 expr=signed(hyshigh(70,80) hyslow(10,20))\n"
    "rule component 7 6 - 0 0 expr=signed(value>90)\n"
    "failure component 7 6 its value is not a number\n"
    "refused IfcCardsAllowEventsTable -9 Rule: '=<' is not an operator\n"
    "event " +
    EVENT_LINE + "\nend 9 0f9caff3\n";

void restore(const MonitorState& state, ConditionMonitor& monitor)
{
    for (const RememberedRule& rule : state.rules) {
        EXPECT_TRUE(monitor.restoreRule(rule.key, rule.memory));
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
    monitor.restoreRule({slotPlace(3), 4294967295, DOUBLE_HYSTERESIS_RULE}, {-7, false, true});
    monitor.restoreRule({componentPlace(7), 6, ABOVE_90}, {});
    monitor.restoreFailure(slotPlace(3), std::nullopt, "no answer");
    monitor.restoreFailure(componentPlace(7), 6, "its value is not a number");
    monitor.restoreRefusal({"IfcCardsAllowEventsTable", -9, "Rule: '=<' is not an operator"});

    WaitingEvents waiting;
    waiting.add(5, EVENT_LINE);
    waiting.setLost(EventRange{6, 9});

    EXPECT_EQ(stateText(9, monitor, waiting), STATE);
}

TEST(StateFile, IsLoadedAsItWasSaved)
{
    const TemporaryDirectory directory;
    const StateFile file(directory.path() + "/state");
    file.save(stateText(1, ConditionMonitor(), {}));
    file.save(STATE);

    const MonitorState state = file.load();
    ConditionMonitor monitor;
    restore(state, monitor);

    EXPECT_EQ(stateText(state.lastEvent, monitor, state.waiting), STATE);
}

TEST(StateFile, IsEmptyIfThereIsNoFile)
{
    const TemporaryDirectory directory;
    const MonitorState state = StateFile(directory.path() + "/state").load();

    EXPECT_EQ(stateText(state.lastEvent, ConditionMonitor(), state.waiting),
              "brantel monitor state 3\nlast-event 0\nend 2 bb7e8e31\n");
}

std::string loadFault(const std::string& text)
{
    static const TemporaryDirectory directory;
    directory.write("state", text);
    try {
        static_cast<void>(StateFile(directory.path() + "/state").load());
    } catch (const CommandError& error) {
        return std::string(error.what()).substr(directory.path().size() + 1);
    }
    return "";
}

const std::string REMEDY = "; put back a copy of the state, or remove it to start anew";

TEST(StateFile, IsRefusedWithTheLineThatIsWrong)
{
    const std::string first = "brantel monitor state 3\n";
    const auto notALine = [](int line, const std::string& text) {
        return "state:" + std::to_string(line) + ": '" + text + "' is not a line of a state" + REMEDY;
    };
    const std::pair<std::string, std::string> cases[] = {
        {"", "state:1: this is not a state of this version, which begins with 'brantel monitor state 3'" + REMEDY},
        {"brantel monitor state 1\nend 1\n",
         "state:1: this is not a state of this version, which begins with 'brantel monitor state 3'" + REMEDY},
        {first, "state:2: the end of the state is missing" + REMEDY},
        {first + "last-event 5\nend", "state:3: the end of the state is missing" + REMEDY},
        {sealedState(first + "last-event x\n"), notALine(2, "last-event x")},
        {sealedState(first + "last-event 1000000000000001\n"), notALine(2, "last-event 1000000000000001")},
        {sealedState(first + "last-event 18446744073709551615\n"), notALine(2, "last-event 18446744073709551615")},
        {sealedState(first + "last-event 5\nlost 4 6\n"), notALine(3, "lost 4 6")},
        {sealedState(first + "rule slot 3 5 7 0\n"), notALine(2, "rule slot 3 5 7 0")},
        {sealedState(first + "rule shelf 3 5 7 0 0 expr\n"), notALine(2, "rule shelf 3 5 7 0 0 expr")},
        {sealedState(first + "failure slot 3 x y\n"), notALine(2, "failure slot 3 x y")},
        {sealedState(first + "refused SomeTable nine y\n"), notALine(2, "refused SomeTable nine y")},
        {sealedState(first + "event {}\n"), notALine(2, "event {}")},
        {sealedState(first + "weather fine\n"), notALine(2, "weather fine")},
        {first + "last-event 5\nend 2 00000000\n",
         "state:3: the state is damaged: its checksum is not that of its lines" + REMEDY},
    };

    for (const auto& [text, fault] : cases) {
        EXPECT_EQ(loadFault(text), fault);
    }
}

TEST(StateFile, IsRefusedWhicheverByteIsChangedRemovedOrAdded)
{
    ASSERT_EQ(loadFault(STATE), "");
    for (std::size_t i = 0; i < STATE.size(); ++i) {
        std::string changed = STATE;
        changed[i] = static_cast<char>(static_cast<unsigned char>(changed[i]) ^ (1U << (i % 8)));
        std::string shorter = STATE;
        shorter.erase(i, 1);
        std::string longer = STATE;
        longer.insert(i, 1, (i % 2 == 0) ? '\0' : '\r');

        EXPECT_NE(loadFault(changed), "") << "changed at " << i;
        EXPECT_NE(loadFault(shorter), "") << "removed at " << i;
        EXPECT_NE(loadFault(longer), "") << "added at " << i;
        EXPECT_NE(loadFault(STATE.substr(0, i)), "") << "cut off at " << i;
    }
    for (const std::string& more : {std::string("\n"), std::string(1, '\0'), STATE}) {
        EXPECT_NE(loadFault(STATE + more), "");
    }
}

TEST(StateFile, IsRefusedIfItIsAnotherKindOfFile)
{
    const TemporaryDirectory directory;
    directory.write("notes", "milk\n");
    const auto fault = [&](const std::string& name) {
        return errorOf([&] { static_cast<void>(loadState(directory.path() + "/" + name)); });
    };
    ASSERT_EQ(::mkfifo((directory.path() + "/pipe").c_str(), 0600), 0);

    EXPECT_EQ(fault("notes"), "'" + directory.path() +
                                  "/notes' is not replaced, because it does not begin with "
                                  "'brantel monitor state ': name another file, or remove it");
    EXPECT_EQ(fault("pipe"),
              "'" + directory.path() + "/pipe' is not a regular file, and is not replaced: name another one");
    EXPECT_EQ(fault(""), "'" + directory.path() + "/' is not a regular file, and is not replaced: name another one");
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

TEST(StateFile, BelongsToOneMonitorWhicheverLinkLeadsToIt)
{
    const TemporaryDirectory directory;
    const std::string path = directory.path() + "/state";
    const std::string link = directory.path() + "/link";
    ASSERT_EQ(::symlink("state", link.c_str()), 0);
    const std::string inUse = "'" + path + "' is in use by another monitor";
    {
        const StateFile file(path);
        EXPECT_EQ(errorOf([&] { StateFile second(link); }), inUse);
    }
    const StateFile file(link);
    EXPECT_EQ(errorOf([&] { StateFile second(path); }), inUse);
}

TEST(StateFile, IsSavedWhereItsLinkLedWhenItWasOpened)
{
    const TemporaryDirectory directory;
    const std::string link = directory.path() + "/link";
    ASSERT_EQ(::symlink("state", link.c_str()), 0);
    const StateFile file(link);
    ASSERT_EQ(::unlink(link.c_str()), 0);
    ASSERT_EQ(::symlink("other", link.c_str()), 0);
    file.save(STATE);

    EXPECT_EQ(contentOf(directory.path() + "/state"), STATE);
    EXPECT_NE(::access((directory.path() + "/other").c_str(), F_OK), 0) << "which another monitor may have locked";
}

TEST(StateFile, IsRefusedInAShortMessageHoweverLongItsLines)
{
    const std::string first = "brantel monitor state 3\n";
    const std::string shown = std::string(80, 'x') + "...";

    EXPECT_EQ(loadFault(sealedState(first + std::string(65'536, 'x') + "\n")),
              "state:2: '" + shown + "' is not a line of a state" + REMEDY);

    MonitorState state;
    state.rules.push_back({{slotPlace(3), 5, std::string(65'536, 'x')}, {}, 2});
    ConditionMonitor monitor;
    EXPECT_EQ(errorOf([&] { restoreMemory(state, "state", monitor); }),
              "state:2: '" + shown + "' is not a rule that can be evaluated" + REMEDY);
}

TEST(StateFile, SaysWhyItCannotBeRead)
{
    // A regular file whose first byte cannot be read, as of a disk with a bad block.
    EXPECT_EQ(errorOf([] { static_cast<void>(loadState("/proc/self/mem")); }),
              "cannot read '/proc/self/mem': Input/output error");
}

TEST(StateFile, SaysThatItCannotBeWritten)
{
    EXPECT_THROW(StateFile("/nowhere/state"), CommandError);
}

}  // namespace

}  // namespace brantel
