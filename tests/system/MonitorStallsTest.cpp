// Readers of a monitor that may stall, one test for each row of the table in docs/monitor.md ("What may wait"): cycles
// continue, nothing recorded is lost, and a signal ends the monitor.

#include <array>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "system/TestNode.h"

namespace brantel {
namespace {

constexpr std::chrono::seconds LONG_ENOUGH{30};

// A named pipe that is full until it is read.
class FullPipe {
public:
    explicit FullPipe(const std::string& path)
    {
        EXPECT_EQ(::mkfifo(path.c_str(), 0600), 0);
        m_file = ::open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
        std::array<char, 4096> page{};
        while (::write(m_file, page.data(), page.size()) > 0) {
            m_filled += page.size();
        }
        EXPECT_EQ(errno, EAGAIN);
    }
    ~FullPipe() { ::close(m_file); }
    FullPipe(const FullPipe&) = delete;
    FullPipe& operator=(const FullPipe&) = delete;

    /// Reads until `isDone`. Returns what was written after the pipe was filled.
    std::string readUntil(const std::function<bool(const std::string&)>& isDone)
    {
        std::string all;
        waitUntil(
            [&] {
                std::array<char, 4096> part{};
                ssize_t count = 0;
                while ((count = ::read(m_file, part.data(), part.size())) > 0) {
                    all.append(part.data(), static_cast<std::size_t>(count));
                }
                return (all.size() > m_filled) && isDone(all.substr(m_filled));
            },
            LONG_ENOUGH);
        return all.substr(std::min(m_filled, all.size()));
    }

private:
    int m_file = -1;
    std::size_t m_filled = 0;
};

std::size_t countOf(const std::string& text, const std::string& part)
{
    std::size_t count = 0;
    for (std::size_t pos = text.find(part); pos != std::string::npos; pos = text.find(part, pos + 1)) {
        ++count;
    }
    return count;
}

// A node with a component whose rules are so long that some twenty events fill every buffer on the way to a reader.
class LoudNode : public TestNode {
public:
    static constexpr std::size_t N_RULES = 25;

    LoudNode()
    {
        std::string rules = "ComponentID,OID,Rule\n";
        for (std::size_t i = 0; i < N_RULES; ++i) {
            rules += "7,131329,expr=unsigned(value>0" + std::string(50'000 + i, ' ') + ")\n";  // cpu.count
        }
        EXPECT_EQ(run({"db", "component", "enable", "7"}).exitCode, 0);
        const CommandResult imported = run({"db", "import", write("rules.csv", rules)});
        EXPECT_EQ(imported.exitCode, 0) << imported;
    }

    std::unique_ptr<ChildProcess> startMonitor(const std::vector<std::string>& more = {}) const
    {
        std::vector<std::string> arguments = {"--log-stderr", "monitor",      "--interval", "20ms",
                                              "--state",      path("state"),  "--journal",  path("journal"),
                                              "--metrics",    path("metrics")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return start(arguments, "monitor.out");
    }

    void waitForCycles(int count = 2) const
    {
        const double before = metric("cycles_total").value_or(0);
        EXPECT_TRUE(waitUntil([&] { return metric("cycles_total").value_or(0) >= before + count; }, LONG_ENOUGH));
    }

    /// Causes an event for each rule: they are raised, or cleared because their component is disabled.
    void makeEvents(bool areAllowed) const
    {
        EXPECT_EQ(run({"db", "component", areAllowed ? "enable" : "disable", "7"}).exitCode, 0);
    }

    /// Waits until the journal has that many lines, which are too long to be parsed again and again.
    bool hasEvents(std::size_t count) const
    {
        return waitUntil([&] { return countOf(contentOf(path("journal")), "\n") >= count; }, LONG_ENOUGH);
    }
};

// Standard output, standard error and, by --log-stderr, the log: all three are blocked.
TEST(MonitorStalls, StalledReadersOfOutputErrorsAndLogStopNoCycleAndNoSignal)
{
    const LoudNode node;
    FullPipe pipe(node.path("monitor.out"));
    const auto pMonitor = node.startMonitor();
    EXPECT_TRUE(node.hasEvents(LoudNode::N_RULES));
    node.makeEvents(false);
    EXPECT_TRUE(node.hasEvents(2 * LoudNode::N_RULES));
    node.waitForCycles();
    pMonitor->send(SIGUSR1);
    node.waitForCycles();
    pMonitor->send(SIGTERM);

    EXPECT_EQ(pMonitor->wait(), 0);
}

TEST(MonitorStalls, AReturningReaderLearnsHowManyEventsItMissed)
{
    const LoudNode node;
    FullPipe pipe(node.path("monitor.out"));
    const auto pMonitor = node.startMonitor({"--json"});
    EXPECT_TRUE(node.hasEvents(LoudNode::N_RULES));
    node.makeEvents(false);
    EXPECT_TRUE(node.hasEvents(2 * LoudNode::N_RULES));
    node.waitForCycles();
    const std::string notice = R"(,"reason":"standard output was not read"})";
    const std::string output =
        pipe.readUntil([&](const std::string& text) { return text.find(notice) != std::string::npos; });
    pMonitor->send(SIGTERM);

    EXPECT_EQ(pMonitor->wait(), 0);
    const std::string count = R"({"omitted":)";
    const std::size_t posCount = output.find(count);
    ASSERT_NE(posCount, std::string::npos);
    const std::size_t omitted = std::stoul(output.substr(posCount + count.size()));
    EXPECT_GT(omitted, 0U);
    EXPECT_EQ(countOf(output, R"({"event":)") + omitted, 2 * LoudNode::N_RULES);
}

TEST(MonitorStalls, AStalledTerminalStopsNoCycleOfTheLiveView)
{
    const LoudNode node;
    LiveCommand monitor(BRANTEL_COMMAND,
                        {"monitor", "--db", node.path("events.db"), "--interval", "20ms", "--journal",
                         node.path("journal"), "--metrics", node.path("metrics")},
                        LiveCommand::Output::TERMINAL);
    EXPECT_TRUE(node.hasEvents(LoudNode::N_RULES));
    node.waitForCycles(20);
    node.makeEvents(false);

    EXPECT_TRUE(node.hasEvents(2 * LoudNode::N_RULES));
    EXPECT_EQ(monitor.endWith(SIGTERM), 0);
}

// Of the two kinds of stalled journal, a pipe and a full device, only the pipe could block.
TEST(MonitorStalls, AStalledJournalStopsNoCycleAndGetsEveryEventLater)
{
    const LoudNode node;
    FullPipe pipe(node.path("journal"));
    const auto pMonitor = node.startMonitor();
    node.waitForCycles();
    EXPECT_TRUE(waitUntil([&] { return node.metric("waiting_events").value_or(0) == LoudNode::N_RULES; }, LONG_ENOUGH));
    EXPECT_GT(node.metric("unwritable_seconds{file=\"journal\"}").value_or(0), 0);
    node.waitForCycles();
    const std::string lastEvent = R"({"event":25,)";
    const std::string journal = pipe.readUntil(
        [&](const std::string& text) { return (text.find(lastEvent) != std::string::npos) && (text.back() == '\n'); });
    EXPECT_TRUE(waitUntil([&] { return node.metric("waiting_events").value_or(1) == 0; }, LONG_ENOUGH));
    pMonitor->send(SIGTERM);

    EXPECT_EQ(pMonitor->wait(), 0) << contentOf(node.path("monitor.out")).substr(0, 1000);
    EXPECT_EQ(countOf(journal, R"({"event":)"), LoudNode::N_RULES);
}

TEST(MonitorStalls, ALockedDatabaseKeepsItsRulesAndStopsNoCycle)
{
    const LoudNode node;
    sqlite3* pDatabase = nullptr;
    ASSERT_EQ(::sqlite3_open(node.path("events.db").c_str(), &pDatabase), SQLITE_OK);
    ::sqlite3_busy_timeout(pDatabase, 30'000);
    const auto execute = [&](const char* statement) {
        EXPECT_EQ(::sqlite3_exec(pDatabase, statement, nullptr, nullptr, nullptr), SQLITE_OK) << statement;
    };
    execute("PRAGMA journal_mode = DELETE");  // so that others can be locked out
    const auto pMonitor = node.startMonitor();
    EXPECT_TRUE(node.hasEvents(LoudNode::N_RULES));
    execute("BEGIN EXCLUSIVE");
    node.waitForCycles(20);  // too many for the time limit if each waited two seconds for the lock
    const std::string notice = "brantel: '" + node.path("events.db") + "' is locked by another program, try again";
    EXPECT_EQ(countOf(contentOf(node.path("monitor.out")), notice), 1U);
    execute("COMMIT");
    ::sqlite3_close(pDatabase);
    node.makeEvents(false);
    EXPECT_TRUE(node.hasEvents(2 * LoudNode::N_RULES));
    pMonitor->send(SIGTERM);

    EXPECT_EQ(pMonitor->wait(), 0);
}

TEST(MonitorStalls, AReaderThatIsGoneEndsTheMonitorOnceItsEventsAreRecorded)
{
    const LoudNode node;
    {
        const auto pMonitor = std::make_unique<LiveCommand>(
            BRANTEL_COMMAND,
            std::vector<std::string>{"monitor", "--db", node.path("events.db"), "--interval", "20ms", "--journal",
                                     node.path("journal")},
            LiveCommand::Output::PIPE);
        EXPECT_TRUE(node.hasEvents(1));
        pMonitor->closeOutput();
        EXPECT_TRUE(node.hasEvents(LoudNode::N_RULES));
        EXPECT_EQ(pMonitor->wait(), 2);
    }
    const CommandResult full =
        runProgram(BRANTEL_COMMAND, {"monitor", "--cycles", "1"}, {"", "/dev/full", node.path(""), {}});
    EXPECT_EQ(full.exitCode, 2);
    EXPECT_EQ(full.err, "brantel: cannot write to standard output: No space left on device\n");
}

}  // namespace

}  // namespace brantel
