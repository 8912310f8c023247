// The monitor on a small node, through what can happen to it: changes of the database, cards that fail, signals,
// restarts.

#include <algorithm>
#include <csignal>
#include <sstream>

#include <gtest/gtest.h>

#include "system/TestNode.h"
#include "tables/EventDatabase.h"

namespace {

constexpr std::chrono::seconds LONG_ENOUGH{30};

// An object of a card that can be written: what the tests make the values of their rules.
constexpr const char* THRESHOLD = "0x0001000F";
const std::string CLOCK_OFFSET = "65552";

// A node with a card in slot 3 and the rule "value > 90" on an object of it.
class SmallNode : public TestNode {
public:
    SmallNode()
    {
        mustRun({"db", "card", "enable", "3", "--type", "1"});
        mustRun({"db", "allow", "add", "--slot", "3", THRESHOLD, "expr=signed(value>90)"});
        m_pCard = startCard(3, {});
    }

    void mustRun(const std::vector<std::string>& arguments) const
    {
        const CommandResult result = run(arguments);
        EXPECT_EQ(result.exitCode, 0) << result;
    }

    void setThreshold(int value) const { mustRun({"set", "3", THRESHOLD + ("=int32:" + std::to_string(value))}); }

    std::unique_ptr<ChildProcess>& card() { return m_pCard; }

    std::unique_ptr<ChildProcess> startMonitor(const std::vector<std::string>& more = {}) const
    {
        std::vector<std::string> arguments = {"monitor", "--interval",  "20ms",      "--journal",    path("journal"),
                                              "--state", path("state"), "--metrics", path("metrics")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return start(arguments, "monitor.out");
    }

    /// The sentences of the journal, in order.
    std::vector<std::string> sentences() const
    {
        std::vector<std::string> sentences;
        for (const Event& event : journal()) {
            sentences.push_back(sentenceOf(event));
        }
        return sentences;
    }

    /// Waits until the journal has so many events, then returns their sentences.
    std::vector<std::string> sentencesOnce(std::size_t count) const
    {
        waitUntil([&] { return sentences().size() >= count; }, LONG_ENOUGH);
        return sentences();
    }

    std::string output() const { return contentOf(path("monitor.out")); }

    /// Waits until the monitor has begun two more cycles.
    void waitForCycles() const
    {
        const double before = figure("cycles_total").value_or(0);
        EXPECT_TRUE(waitUntil([&] { return figure("cycles_total").value_or(0) >= before + 2; }, LONG_ENOUGH));
    }

private:
    std::unique_ptr<ChildProcess> m_pCard;
};

using Sentences = std::vector<std::string>;

const std::string RAISED = "slot 3 card.alarm-threshold raised: 91 > 90: above the limit [expr=signed(value>90)]";
const std::string CLEARED =
    "slot 3 card.alarm-threshold cleared: 5 <= 90: at or below the limit [expr=signed(value>90)]";

TEST(MonitorNode, TellsOfAConditionInJournalAndOutputAndEndsAsTold)
{
    for (const int signal : {SIGTERM, SIGINT}) {
        const SmallNode node;
        const auto pMonitor = node.startMonitor();
        node.setThreshold(91);
        EXPECT_EQ(node.sentencesOnce(1), (Sentences{RAISED}));
        node.setThreshold(5);
        EXPECT_EQ(node.sentencesOnce(2), (Sentences{RAISED, CLEARED}));
        pMonitor->send(signal);

        EXPECT_EQ(pMonitor->wait(), 0);
        std::istringstream lines(node.output());
        Sentences told;
        for (std::string line; std::getline(lines, line);) {
            told.push_back(line.substr(std::string("2026-09-12T12:00:00.123Z  ").size()));
        }
        EXPECT_EQ(told, (Sentences{RAISED, CLEARED}));
    }
}

// How long a monitor takes to end that is sent signals while it waits for the card in slot 3, which stays silent for
// seconds.
std::chrono::duration<double> timeToEnd(const SmallNode& node, const std::vector<int>& signals)
{
    const auto pMonitor = node.startMonitor();
    const auto isWaiting = [&] { return node.figure("skipped_readings_total{slot=\"3\"}").value_or(0) > 0; };
    EXPECT_TRUE(waitUntil(isWaiting, LONG_ENOUGH));
    const auto start = std::chrono::steady_clock::now();
    for (const int signal : signals) {
        pMonitor->send(signal);
    }
    EXPECT_EQ(pMonitor->wait(), 0);
    EXPECT_EQ(std::remove(node.path("metrics").c_str()), 0);
    return std::chrono::steady_clock::now() - start;
}

TEST(MonitorNode, GivesASilentCardASecondAfterASignalAndNoneAfterTwo)
{
    constexpr std::chrono::seconds GRACE{1};
    const SmallNode node;
    node.mustRun({"set", "3", "card.fault=string:silence"});

    EXPECT_GE(timeToEnd(node, {SIGTERM}), GRACE);
    const auto endsAtOnce = [&] { return timeToEnd(node, {SIGINT, SIGTERM}) < GRACE; };
    EXPECT_TRUE(endsAtOnce() || endsAtOnce() || endsAtOnce()) << "a busy machine may be late, but not each time";
}

TEST(MonitorNode, PrintsTheLinesOfTheJournalAsJson)
{
    const SmallNode node;
    node.setThreshold(91);
    const auto pMonitor = node.startMonitor({"--json", "--cycles", "3"});

    EXPECT_EQ(pMonitor->wait(), 0);
    EXPECT_EQ(node.sentences(), (Sentences{RAISED}));
    EXPECT_EQ(node.output(), contentOf(node.path("journal")));
}

TEST(MonitorNode, FollowsChangesOfTheDatabaseAndKeepsWhatDidNotChange)
{
    const SmallNode node;
    node.setThreshold(91);
    const auto pMonitor = node.startMonitor();
    EXPECT_EQ(node.sentencesOnce(1), (Sentences{RAISED}));

    node.mustRun({"db", "allow", "add", "--slot", "3", THRESHOLD, "expr=signed(hyshigh(10,50))"});
    EXPECT_EQ(node.sentencesOnce(2).back(),
              "slot 3 card.alarm-threshold raised: 91 > 50: above the upper threshold [expr=signed(hyshigh(10,50))]");
    node.mustRun({"db", "ignore", "add", "--slot", "3", THRESHOLD});
    EXPECT_EQ(node.sentencesOnce(4).size(), 4U);
    node.mustRun({"db", "ignore", "remove", "--slot", "3", THRESHOLD});
    EXPECT_EQ(node.sentencesOnce(6).size(), 6U);
    node.mustRun({"db", "card", "disable", "3"});
    EXPECT_EQ(node.sentencesOnce(8).back(),
              "slot 3 card.alarm-threshold cleared: events of slot 3 are not enabled any more "
              "[expr=signed(value>90)]");
    pMonitor->send(SIGTERM);

    EXPECT_EQ(pMonitor->wait(), 0);
}

TEST(MonitorNode, ReportsARuleThatBecameInvalidOnceByRowAndFollowsTheOthers)
{
    const SmallNode node;
    const auto pMonitor = node.startMonitor();
    node.waitForCycles();
    {
        EventDatabase database(node.path("events.db"), sql::Database::Access::WRITE);
        database.table(allowIgnoreTable(eventMgmt::IFC_CARDS_ALLOW_EVENTS_TABLE_ID))
            .insert({77, 3, CLOCK_OFFSET, "expr=signed(value=<90)"});
    }
    pMonitor->send(SIGHUP);
    EXPECT_EQ(node.sentencesOnce(1).size(), 1U);
    pMonitor->send(SIGHUP);
    node.waitForCycles();
    node.setThreshold(91);

    const Sentences sentences = node.sentencesOnce(2);
    pMonitor->send(SIGTERM);
    EXPECT_EQ(pMonitor->wait(), 0);
    ASSERT_EQ(sentences.size(), 2U);
    EXPECT_EQ(sentences[0].rfind("refused: IfcCardsAllowEventsTable, row 77: ", 0), 0U) << sentences[0];
    EXPECT_EQ(sentences[1], RAISED);
}

TEST(MonitorNode, OutlivesTheDatabaseAndTheCardAndTellsOfBoth)
{
    SmallNode node;
    node.setThreshold(91);
    const auto pMonitor = node.startMonitor();
    EXPECT_EQ(node.sentencesOnce(1), (Sentences{RAISED}));

    node.card().reset();
    EXPECT_EQ(node.sentencesOnce(2).back(), "slot 3 failed: nobody serves the slot");
    node.card() = node.startCard(3, {});
    const Sentences after = node.sentencesOnce(4);
    ASSERT_EQ(std::rename(node.path("events.db").c_str(), node.path("gone.db").c_str()), 0);
    pMonitor->send(SIGHUP);
    EXPECT_TRUE(waitUntil([&] { return node.output().find("events.db") != std::string::npos; }, LONG_ENOUGH));
    node.setThreshold(91);

    EXPECT_EQ(node.sentencesOnce(5).back(), RAISED) << "the rules stay as they are";
    pMonitor->send(SIGTERM);
    EXPECT_EQ(pMonitor->wait(), 0);
    ASSERT_EQ(after.size(), 4U);
    EXPECT_EQ(after[2], "slot 3 answers: again, after: nobody serves the slot");
    EXPECT_EQ(after[3], "slot 3 card.alarm-threshold cleared: 0 <= 90: at or below the limit [expr=signed(value>90)]");
}

TEST(MonitorNode, ReportsEachWayInWhichACardCanLieOnce)
{
    const SmallNode node;
    const auto pMonitor = node.startMonitor();
    node.waitForCycles();
    std::size_t count = 0;
    for (const char* const fault : {"duplicate-oid", "missing-oid", "foreign-oid", "wrong-count", "wrong-type",
                                    "truncated", "result=7", "result=33554432"}) {
        node.mustRun({"set", "3", std::string("card.fault=string:") + fault});
        EXPECT_EQ(node.sentencesOnce(++count).size(), count) << fault;
        node.mustRun({"set", "3", "card.fault=string:"});
        EXPECT_EQ(node.sentencesOnce(++count).size(), count) << fault;
    }
    pMonitor->send(SIGTERM);

    EXPECT_EQ(pMonitor->wait(), 0);
    for (const Event& event : node.journal()) {
        EXPECT_TRUE((event.kind == EventKind::FAILED) || (event.kind == EventKind::ANSWERS)) << sentenceOf(event);
    }
}

TEST(MonitorNode, ReadsOnWhatACardHasBesideWhatItHasNot)
{
    constexpr std::size_t N_MISSING = 100;
    const SmallNode node;
    std::string rules = "Slot,OID,Rule\n";
    for (std::size_t oid = 1; oid <= N_MISSING; ++oid) {
        rules += "3," + std::to_string(oid) + ",expr=signed(value>0)\n";
    }
    node.mustRun({"db", "import", node.write("rules.csv", rules)});
    const auto pMonitor = node.startMonitor();
    EXPECT_EQ(node.sentencesOnce(N_MISSING).size(), N_MISSING);
    node.waitForCycles();
    const double cyclesBefore = *node.figure("cycles_total");
    const double requestsBefore = *node.figure("requests_total");
    node.waitForCycles();
    const double requests = *node.figure("requests_total") - requestsBefore;
    const double cycles = *node.figure("cycles_total") - cyclesBefore;
    node.setThreshold(91);

    EXPECT_EQ(node.sentencesOnce(N_MISSING + 1).back(), RAISED);
    EXPECT_LE(requests, 17 * (cycles + 1)) << "one for what is there, 16 for what may be there again";
    pMonitor->send(SIGTERM);
    EXPECT_EQ(pMonitor->wait(), 0);
}

TEST(MonitorNode, RaisesNothingTwiceOverARestartAndLosesNothing)
{
    const SmallNode node;
    node.setThreshold(91);
    {
        const auto pMonitor = node.startMonitor();
        EXPECT_EQ(node.sentencesOnce(1), (Sentences{RAISED}));
        pMonitor->send(SIGTERM);
        EXPECT_EQ(pMonitor->wait(), 0);
    }
    {
        const auto pMonitor = node.startMonitor({"--cycles", "3"});
        EXPECT_EQ(pMonitor->wait(), 0);
        EXPECT_EQ(node.sentences(), (Sentences{RAISED}));
    }
    node.setThreshold(5);
    const auto pMonitor = node.startMonitor({"--cycles", "3"});
    EXPECT_EQ(pMonitor->wait(), 0);
    EXPECT_EQ(node.sentences(), (Sentences{RAISED, CLEARED})) << "changed while no monitor ran";
}

TEST(MonitorNode, ServesTheSlotsThatItIsGiven)
{
    const SmallNode node;
    node.setThreshold(91);

    EXPECT_EQ(node.startMonitor({"--cycles", "2", "--slots", "0-2,4-9"})->wait(), 0);
    EXPECT_EQ(node.sentences(), (Sentences{}));
    EXPECT_EQ(node.startMonitor({"--cycles", "2", "--slots", "3"})->wait(), 0);
    EXPECT_EQ(node.sentences(), (Sentences{RAISED}));
    EXPECT_EQ(node.startMonitor({"--cycles", "2", "--slots", "0-2,4-9"})->wait(), 0);
    EXPECT_EQ(
        node.sentences(),
        (Sentences{RAISED,
                   "slot 3 card.alarm-threshold cleared: slot 3 is not served any more [expr=signed(value>90)]"}));
}

TEST(MonitorNode, WatchesTheHostsOwnCountersForComponents)
{
    const SmallNode node;
    node.mustRun({"db", "component", "enable", "7"});
    node.mustRun({"db", "allow", "add", "--component", "7", "0x00020101", "expr=unsigned(value>=1)"});
    node.mustRun({"db", "allow", "add", "--component", "8", "0x00020101", "expr=unsigned(value>=1)"});

    EXPECT_EQ(node.startMonitor({"--cycles", "2"})->wait(), 0);
    ASSERT_EQ(node.sentences().size(), 1U);
    EXPECT_EQ(node.sentences()[0].rfind("component 7 cpu.count raised: ", 0), 0U);
}

TEST(MonitorNode, PrintsItsFiguresOnSigusr1AndWritesThemToAFile)
{
    const SmallNode node;
    const auto pMonitor = node.startMonitor();
    node.waitForCycles();
    pMonitor->send(SIGUSR1);

    EXPECT_TRUE(
        waitUntil([&] { return node.output().find("brantel_monitor_rules 1\n") != std::string::npos; }, LONG_ENOUGH));
    EXPECT_EQ(node.figure("rules"), 1);
    pMonitor->send(SIGTERM);
    EXPECT_EQ(pMonitor->wait(), 0);
}

TEST(MonitorNode, OpensTheJournalAgainOnSighup)
{
    const SmallNode node;
    node.setThreshold(91);
    const auto pMonitor = node.startMonitor();
    EXPECT_EQ(node.sentencesOnce(1), (Sentences{RAISED}));
    ASSERT_EQ(std::rename(node.path("journal").c_str(), node.path("journal.1").c_str()), 0);
    pMonitor->send(SIGHUP);
    node.waitForCycles();
    node.setThreshold(5);

    EXPECT_EQ(node.sentencesOnce(1), (Sentences{CLEARED}));
    pMonitor->send(SIGTERM);
    EXPECT_EQ(pMonitor->wait(), 0);
    EXPECT_EQ(node.journal().front().number, 2U);
}

TEST(MonitorNode, DrawsALiveViewOnATerminal)
{
    const SmallNode node;
    node.setThreshold(91);
    const CommandResult result = runProgram(
        "/usr/bin/script", {"-qec", std::string(BRANTEL_COMMAND) + " monitor --cycles 3 --interval 20ms", "/dev/null"},
        {"", "", node.path(""), {"BRANTEL_DB=" + node.path("events.db"), "XDG_RUNTIME_DIR=" + node.path("")}});

    EXPECT_EQ(result.exitCode, 0) << result;
    const std::string texts[] = {"brantel monitor: cycle 3", "slot 3: answers, 1 object,",
                                 "slot 3  card.alarm-threshold     91  RAISED  expr=signed(value>90)",
                                 RAISED.substr(0, 40)};
    for (const std::string& text : texts) {
        EXPECT_NE(result.out.find(text), std::string::npos) << text << "\n" << result.out;
    }
}

TEST(MonitorNode, RefusesWhatItCannotUse)
{
    const SmallNode node;
    const std::string foreign = node.write("foreign", "root:x:0:0\n");
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"monitor", "--db", node.path("none.db")}, "none.db"},
        {{"monitor", "--journal", foreign}, "foreign' is no journal"},
        {{"monitor", "--state", foreign}, "foreign:1: this is no state"},
        {{"monitor", "--slots", "3-12"}, "'3-12' is neither a slot"},
        {{"monitor", "--slots", "5-3"}, "'5-3' is neither a slot"},
        {{"monitor", "--slots", ""}, "--slots"},
        {{"monitor", "--interval", "0"}, "'0' is no time"},
        {{"monitor", "--interval", "1h"}, "'1h' is no time"},
        {{"monitor", "--interval", "nan"}, "'nan' is no time"},
        {{"monitor", "--cycles", "0"}, "--cycles"},
    };

    for (const auto& [arguments, text] : cases) {
        const CommandResult result = node.run(arguments);
        EXPECT_EQ(result.exitCode, 2) << text << "\n" << result;
        EXPECT_NE((result.err + result.out).find(text), std::string::npos) << text << "\n" << result;
    }
    EXPECT_EQ(contentOf(foreign), "root:x:0:0\n");
}

}  // namespace
