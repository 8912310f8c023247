// The monitor on a small node: changes of the database, failing cards, signals, restarts.

#include <algorithm>
#include <csignal>
#include <sstream>

#include <unistd.h>

#include <gtest/gtest.h>

#include "IfcCardStatusAndControl.h"
#include "system/TestNode.h"
#include "tables/EventDatabase.h"

namespace brantel {
namespace {

constexpr std::chrono::seconds LONG_ENOUGH{30};

// A writable object, whose values the tests choose.
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
            sentences.push_back(eventText(event));
        }
        return sentences;
    }

    /// Waits until the journal has `count` events, then returns their sentences.
    std::vector<std::string> sentencesOnce(std::size_t count) const
    {
        waitUntil([&] { return sentences().size() >= count; }, LONG_ENOUGH);
        return sentences();
    }

    std::string output() const { return contentOf(path("monitor.out")); }

    /// Waits until the monitor has begun two more cycles.
    void waitForCycles() const
    {
        const double before = metric("cycles_total").value_or(0);
        EXPECT_TRUE(waitUntil([&] { return metric("cycles_total").value_or(0) >= before + 2; }, LONG_ENOUGH));
    }

private:
    std::unique_ptr<ChildProcess> m_pCard;
};

using Sentences = std::vector<std::string>;

const std::string RAISED = "slot 3 card.alarm-threshold raised: 91 > 90: above the limit [expr=signed(value>90)]";
const std::string CLEARED =
    "slot 3 card.alarm-threshold cleared: 5 <= 90: at or below the limit [expr=signed(value>90)]";

TEST(MonitorNode, ReportsAConditionInJournalAndOutputAndStopsOnRequest)
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
        Sentences reported;
        for (std::string line; std::getline(lines, line);) {
            reported.push_back(line.substr(std::string("2026-09-12T12:00:00.123Z  ").size()));
        }
        EXPECT_EQ(reported, (Sentences{RAISED, CLEARED}));
    }
}

// How long a monitor takes to end that gets signals while it waits for the card in slot 3, which stays silent for
// seconds.
std::chrono::duration<double> timeToEnd(const SmallNode& node, const std::vector<int>& signals)
{
    const auto pMonitor = node.startMonitor();
    const auto isWaiting = [&] { return node.metric("skipped_readings_total{slot=\"3\"}").value_or(0) > 0; };
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
              "slot 3 card.alarm-threshold cleared: events of slot 3 are no longer enabled "
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
        database.table(tableFor(EventTableKind::ALLOW, Place::Kind::SLOT))
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

TEST(MonitorNode, SurvivesTheLossOfDatabaseAndCardAndReportsBoth)
{
    SmallNode node;
    node.setThreshold(91);
    const auto pMonitor = node.startMonitor();
    EXPECT_EQ(node.sentencesOnce(1), (Sentences{RAISED}));

    node.card().reset();  // while the monitor waits for an answer, or between two readings
    const std::string failure = node.sentencesOnce(2).back();
    EXPECT_TRUE((failure == "slot 3 failed: no card is serving the slot") ||
                (failure == "slot 3 failed: no answer: no card is serving the slot, or nothing came back in time"))
        << failure;
    node.card() = node.startCard(3, {});
    const Sentences after = node.sentencesOnce(4);
    ASSERT_EQ(std::rename(node.path("events.db").c_str(), node.path("gone.db").c_str()), 0);
    pMonitor->send(SIGHUP);
    EXPECT_TRUE(waitUntil([&] { return node.output().find("events.db") != std::string::npos; }, LONG_ENOUGH));
    node.setThreshold(91);

    EXPECT_EQ(node.sentencesOnce(5).back(), RAISED) << "the rules do not change";
    pMonitor->send(SIGTERM);
    EXPECT_EQ(pMonitor->wait(), 0);
    ASSERT_EQ(after.size(), 4U);
    EXPECT_EQ(after[2].rfind("slot 3 recovered: after: ", 0), 0U) << after[2];
    EXPECT_EQ(after[3], "slot 3 card.alarm-threshold cleared: 0 <= 90: at or below the limit [expr=signed(value>90)]");
}

TEST(MonitorNode, ReportsEachCorruptAnswerOfACardOnce)
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
        EXPECT_TRUE((event.kind == EventKind::FAILED) || (event.kind == EventKind::RECOVERED)) << eventText(event);
    }
}

TEST(MonitorNode, MakesNoEventOfAValueOfAnotherTypeOrLength)
{
    const SmallNode node;
    node.mustRun({"db", "allow", "add", "--slot", "3", THRESHOLD, "expr=signed(delta>=1)"});
    node.setThreshold(91);
    const auto pMonitor = node.startMonitor();
    std::size_t count = 1;
    EXPECT_EQ(node.sentencesOnce(count), (Sentences{RAISED}));
    std::vector<std::string> faults = {"wrong-length=0", "wrong-length=1", "wrong-length=3", "wrong-length=5"};
    for (int code = 0; code <= 14; ++code) {
        if (code != OID_TYPE_INT32) {
            faults.push_back("wrong-type=" + std::to_string(code));
        }
    }
    Sentences expected = {RAISED};
    const std::string malformed =
        "malformed value: the value does not have the type of the object, or the length of its type";
    for (const std::string& fault : faults) {
        node.mustRun({"set", "3", "card.fault=string:" + fault});
        expected.push_back("slot 3 failed: " + malformed);
        EXPECT_EQ(node.sentencesOnce(++count).size(), count) << fault;
        node.mustRun({"set", "3", "card.fault=string:"});
        expected.push_back("slot 3 recovered: after: " + malformed);
        EXPECT_EQ(node.sentencesOnce(++count).size(), count) << fault;
    }
    node.setThreshold(5);
    node.sentencesOnce(count + 2);
    pMonitor->send(SIGTERM);

    EXPECT_EQ(pMonitor->wait(), 0);
    const Sentences sentences = node.sentences();
    expected.insert(expected.end(), {"slot 3 card.alarm-threshold raised: |5 - 91| = 86 >= 1: at or above the limit "
                                     "[expr=signed(delta>=1)]",
                                     CLEARED});
    ASSERT_GE(sentences.size(), expected.size());
    EXPECT_EQ(Sentences(sentences.begin(), sentences.begin() + static_cast<std::ptrdiff_t>(expected.size())), expected);
}

TEST(MonitorNode, KeepsReadingExistingObjectsNextToMissingOnes)
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
    const double cyclesBefore = *node.metric("cycles_total");
    const double requestsBefore = *node.metric("requests_total");
    node.waitForCycles();
    const double requests = *node.metric("requests_total") - requestsBefore;
    const double cycles = *node.metric("cycles_total") - cyclesBefore;
    node.setThreshold(91);

    EXPECT_EQ(node.sentencesOnce(N_MISSING + 1).back(), RAISED);
    EXPECT_LE(requests, 17 * (cycles + 1)) << "one for what is there, 16 for what may be there again";
    pMonitor->send(SIGTERM);
    EXPECT_EQ(pMonitor->wait(), 0);
}

TEST(MonitorNode, RaisesNothingTwiceAcrossARestartAndLosesNothing)
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
        (Sentences{RAISED, "slot 3 card.alarm-threshold cleared: slot 3 is no longer served [expr=signed(value>90)]"}));
}

TEST(MonitorNode, WatchesTheHostsCountersForComponents)
{
    const SmallNode node;
    node.mustRun({"db", "component", "enable", "7"});
    node.mustRun({"db", "allow", "add", "--component", "7", "0x00020101", "expr=unsigned(value>=1)"});
    node.mustRun({"db", "allow", "add", "--component", "8", "0x00020101", "expr=unsigned(value>=1)"});

    EXPECT_EQ(node.startMonitor({"--cycles", "2"})->wait(), 0);
    ASSERT_EQ(node.sentences().size(), 1U);
    EXPECT_EQ(node.sentences()[0].rfind("component 7 cpu.count raised: ", 0), 0U);
}

TEST(MonitorNode, PrintsItsMetricsOnSigusr1AndWritesThemToAFile)
{
    const SmallNode node;
    const auto pMonitor = node.startMonitor();
    node.waitForCycles();
    pMonitor->send(SIGUSR1);

    EXPECT_TRUE(
        waitUntil([&] { return node.output().find("brantel_monitor_rules 1\n") != std::string::npos; }, LONG_ENOUGH));
    EXPECT_EQ(node.metric("rules"), 1);
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
    const std::string texts[] = {"brantel monitor: cycle 3", "slot 3: ok, 1 object,",
                                 "slot 3  card.alarm-threshold     91  RAISED  expr=signed(value>90)",
                                 RAISED.substr(0, 40)};
    for (const std::string& text : texts) {
        EXPECT_NE(result.out.find(text), std::string::npos) << text << "\n" << result.out;
    }
}

TEST(MonitorNode, ChecksWhatItWouldUseAndChangesNothing)
{
    const SmallNode node;
    node.setThreshold(91);
    const std::vector<std::string> check = {"monitor", "--check",          "--journal", node.path("journal"),
                                            "--state", node.path("state"), "--metrics", node.path("metrics")};
    EXPECT_EQ(node.run(check), (CommandResult{0,
                                              "1 rule on slot 3\nstate: 0 rules, last event 0\n"
                                              "journal: last event 0\n",
                                              ""}));
    for (const char* const name : {"journal", "state", "state.lock", "metrics"}) {
        EXPECT_NE(::access(node.path(name).c_str(), F_OK), 0) << name;
    }
    {
        const auto pMonitor = node.startMonitor();
        EXPECT_EQ(node.sentencesOnce(1), (Sentences{RAISED}));
        EXPECT_EQ(node.run(check), (CommandResult{0,
                                                  "1 rule on slot 3\nstate: 1 rule, last event 1\n"
                                                  "journal: last event 1\n",
                                                  ""}))
            << "while a monitor runs";
        pMonitor->send(SIGTERM);
        EXPECT_EQ(pMonitor->wait(), 0);
    }
    EventDatabase(node.path("events.db"), sql::Database::Access::WRITE)
        .table(tableFor(EventTableKind::ALLOW, Place::Kind::SLOT))
        .insert({77, 3, CLOCK_OFFSET, "expr=signed(value=<90)"});
    const CommandResult refused = node.run(check);
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_NE(refused.out.find("refused: IfcCardsAllowEventsTable, row 77: Rule: "), std::string::npos) << refused;
    node.write("state", contentOf(node.path("state")) + "\n");
    EXPECT_EQ(node.run(check).exitCode, 2);
}

TEST(MonitorNode, ChecksWhetherItsFilesCanBeWritten)
{
    const SmallNode node;
    const auto check = [&](const std::string& option, const std::string& path) {
        return node.run({"monitor", "--check", option, path});
    };
    const auto noFolder = [](const std::string& path) {
        return CommandResult{2, "", "brantel: cannot write '" + path + "': No such file or directory\n"};
    };
    for (const char* const option : {"--journal", "--state", "--metrics"}) {
        const std::string path = node.path("missing/file");
        EXPECT_EQ(check(option, path), noFolder(path)) << option;
    }
    const std::string folder = node.path("");
    EXPECT_EQ(check("--journal", folder),
              (CommandResult{2, "", "brantel: cannot open '" + folder + "': it is a directory\n"}));
}

TEST(MonitorNode, ReplacesNoFileThatIsNotItsOwn)
{
    const SmallNode node;
    const std::string database = node.path("events.db");
    const std::string before = contentOf(database);
    const std::string notes = node.write("notes", "milk\n");
    const std::string journal = node.path("journal");
    const std::string state = node.path("state");
    ASSERT_EQ(::link(database.c_str(), node.path("twin").c_str()), 0);
    const std::string link = node.path("link");
    ASSERT_EQ(::symlink("target", link.c_str()), 0);
    const std::string target = node.path("target");
    const std::string databaseLink = node.path("database");
    ASSERT_EQ(::symlink("events.db", databaseLink.c_str()), 0);
    const auto sameFiles = [](const std::string& one, const std::string& other) {
        return "brantel: " + one + " and " + other + " are the same file: give each a file of its own\n";
    };
    const auto notReplaced = [](const std::string& path, const std::string& start) {
        return "brantel: '" + path + "' is not replaced, because it does not begin with '" + start +
               "': name another file, or remove it\n";
    };
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"--metrics", notes}, notReplaced(notes, "# HELP brantel_monitor_")},
        {{"--metrics", database}, notReplaced(database, "# HELP brantel_monitor_")},
        {{"--metrics", node.path("twin")}, notReplaced(node.path("twin"), "# HELP brantel_monitor_")},
        {{"--state", notes}, notReplaced(notes, "brantel monitor state ")},
        {{"--journal", journal, "--metrics", journal},
         sameFiles("--journal '" + journal + "'", "--metrics '" + journal + "'")},
        {{"--journal", journal, "--state", node.path("./journal")},
         sameFiles("--journal '" + journal + "'", "--state '" + node.path("./journal") + "'")},
        {{"--state", state, "--metrics", state + ".lock"},
         sameFiles("the lock of --state '" + state + ".lock'", "--metrics '" + state + ".lock'")},
        {{"--state", state, "--journal", state + ".new"},
         sameFiles("--journal '" + state + ".new'", "the new file of --state '" + state + ".new'")},
        {{"--state", link, "--journal", target + ".new"},
         sameFiles("--journal '" + target + ".new'", "the new file of --state '" + target + ".new'")},
        {{"--state", link, "--journal", target + ".lock"},
         sameFiles("--journal '" + target + ".lock'", "the lock of --state '" + target + ".lock'")},
        {{"--metrics", link, "--journal", target + ".new"},
         sameFiles("--journal '" + target + ".new'", "the new file of --metrics '" + target + ".new'")},
        {{"--journal", node.path("twin")},
         sameFiles("--db '" + database + "'", "--journal '" + node.path("twin") + "'")},
        {{"--journal", database + "-journal"},
         sameFiles("the rollback journal of --db '" + database + "-journal'", "--journal '" + database + "-journal'")},
        {{"--state", database + "-wal"},
         sameFiles("the log of --db '" + database + "-wal'", "--state '" + database + "-wal'")},
    };

    for (const auto& [options, message] : cases) {
        std::vector<std::string> arguments = {"monitor", "--db", database, "--cycles", "1"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        EXPECT_EQ(node.run(arguments), (CommandResult{2, "", message}));
    }
    EXPECT_EQ(node.run({"monitor", "--db", databaseLink, "--journal", database + "-wal"}),
              (CommandResult{2, "",
                             sameFiles("the log of --db '" + database + "-wal'", "--journal '" + database + "-wal'")}));
    EXPECT_EQ(contentOf(database), before);
    EXPECT_EQ(contentOf(notes), "milk\n");
}

TEST(MonitorNode, EndsWithAnErrorIfEventsAreNotRecorded)
{
    const SmallNode node;
    node.setThreshold(91);

    const CommandResult result = node.run({"monitor", "--interval", "20ms", "--cycles", "3", "--journal", "/dev/full"});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.err,
              "brantel: cannot write '/dev/full': No space left on device\n"
              "brantel: 1 event not in '/dev/full'; no state holds them\n");
}

TEST(MonitorNode, RefusesWhatItCannotUse)
{
    const SmallNode node;
    const std::string foreign = node.write("foreign", "root:x:0:0\n");
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"monitor", "--db", node.path("none.db")}, "none.db"},
        {{"monitor", "--journal", foreign}, "foreign' is not a journal"},
        {{"monitor", "--state", foreign}, "foreign' is not replaced"},
        {{"monitor", "--slots", "3-12"}, "invalid list '3-12': expected numbers and ranges from 0 to 9"},
        {{"monitor", "--slots", "5-3"}, "invalid list '5-3'"},
        {{"monitor", "--slots", ""}, "--slots"},
        {{"monitor", "--interval", "0"}, "invalid interval '0': expected 1ms to 86400s"},
        {{"monitor", "--interval", "1h"}, "invalid interval '1h': expected 1ms to 86400s"},
        {{"monitor", "--interval", "nan"}, "invalid interval 'nan': expected 1ms to 86400s"},
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

}  // namespace brantel
