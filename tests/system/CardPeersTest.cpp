// Cards with misbehaving callers, and commands that may open few files or have little memory.

#include <algorithm>
#include <csignal>
#include <set>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "message/OBkeys.h"
#include "support/FakeClient.h"
#include "system/TestNode.h"

namespace brantel {
namespace {

constexpr std::chrono::seconds LONG_ENOUGH{30};

// The sanitizer opens pipes to find out which addresses it may read, and takes a refusal for a broken object.
#ifdef __SANITIZE_ADDRESS__
constexpr bool IS_SANITIZED = true;
#else
constexpr bool IS_SANITIZED = false;
#endif

// The command with a limit of open files, as started by a shell.
std::vector<std::string> withFiles(std::size_t files, const std::string& arguments)
{
    return {"-c", "ulimit -n " + std::to_string(files) + "; exec " + BRANTEL_COMMAND + " " + arguments};
}

// The command with a limit of memory, in KiB, and with stacks of a size that does not depend on the caller's.
std::vector<std::string> withMemory(std::size_t kilobytes, const std::string& arguments)
{
    return {"-c",
            "ulimit -s 8192; ulimit -v " + std::to_string(kilobytes) + "; exec " + BRANTEL_COMMAND + " " + arguments};
}

class CardPeers : public testing::Test {
protected:
    CommandResult shell(const std::vector<std::string>& arguments) const
    {
        return runProgram("/bin/sh", arguments, {"", "", "", m_environment});
    }

    std::unique_ptr<ChildProcess> startCard(std::size_t files) const
    {
        const std::string output = m_node.path("limited.out");
        auto pCard = m_node.startProgram("/bin/sh", withFiles(files, "-v 4 --log-stderr card --slot 7"), "limited.out");
        EXPECT_TRUE(
            waitUntil([&] { return contentOf(output).find("ReadWriteAsync at") != std::string::npos; }, LONG_ENOUGH));
        return pCard;
    }

    std::string socketOf(int slot, const char* interface) const
    {
        return "ipc://" + m_node.path("brantel/ICSCClient") + std::to_string(slot) + "." + interface;
    }

    const TestNode m_node;
    const std::vector<std::string> m_environment = {"BRANTEL_DB=" + m_node.path("events.db"),
                                                    "XDG_RUNTIME_DIR=" + m_node.path("")};
};

TEST_F(CardPeers, ACardSurvivesMoreConnectionsThanItMayOpenFiles)
{
    const auto pCard = startCard(1024);
    {
        FakeClient flood(socketOf(7, "ReadWriteSync"));
        EXPECT_LT(flood.open(1100), 1100U);
        flood.send(connectionGreeting());
        EXPECT_EQ(m_node.run({"get", "7", "card.led", "--timeout", "1"}).exitCode, 1) << "there is no room for it";
        EXPECT_EQ(flood.open(1), 0U);
    }
    EXPECT_EQ(m_node.run({"get", "7", "card.led"}).exitCode, 0);
    pCard->send(SIGTERM);
    EXPECT_EQ(pCard->wait(), 0);
    const std::string log = contentOf(m_node.path("limited.out"));
    const std::string full = "no more than its 128 connections are taken";
    EXPECT_NE(log.find(full), std::string::npos) << log;
    EXPECT_EQ(log.find(full), log.rfind(full)) << log;
}

TEST_F(CardPeers, WithFewFilesACommandSaysSoOrDoesAllOfItsWork)
{
    if (IS_SANITIZED) {
        GTEST_SKIP() << "the sanitizer itself needs files";
    }
    const auto pCard = m_node.startCard(3, {});
    m_node.run({"db", "card", "enable", "3", "--type", "1"});
    m_node.run({"db", "card", "enable", "4", "--type", "1"});
    m_node.run({"db", "allow", "add", "--slot", "3", "0x0001000F", "expr=signed(value>90)"});
    m_node.run({"db", "allow", "add", "--slot", "4", "0x0001000F", "expr=signed(value>90)"});
    // What is not the same each time: times, and the width of their columns.
    const auto withoutTimes = [](std::string text) {
        const auto varies = [](char c) { return (c == ' ') || ((c >= '0') && (c <= '9')); };
        text.erase(std::remove_if(text.begin(), text.end(), varies), text.end());
        return text;
    };
    for (const char* const arguments : {"get 3 card.led", "set 3 card.led=uint8:1", "watch 3 card.led --count 1",
                                        "card list", "monitor --cycles 3 --interval 50ms"}) {
        const CommandResult whole = shell({"-c", std::string("exec ") + BRANTEL_COMMAND + " " + arguments});
        std::size_t refused = 0;
        std::size_t files = 5;
        for (; files < 120; files += 7) {
            const CommandResult result = shell(withFiles(files, arguments));
            if (result.exitCode == whole.exitCode) {
                EXPECT_EQ(withoutTimes(result.out), withoutTimes(whole.out)) << arguments << ", files: " << files;
                continue;
            }
            ++refused;
            EXPECT_EQ(result.exitCode, 2) << arguments << ", files: " << files << "\n" << result;
            EXPECT_EQ(result.out, "") << arguments << ", files: " << files;
        }
        EXPECT_GT(refused, 1U) << arguments;
        for (files = 5; files < 20; ++files) {
            const CommandResult message = shell(withFiles(files, arguments));
            EXPECT_NE(message.err.find("oo many open files"), std::string::npos)
                << arguments << ", files: " << files << "\n"
                << message;
        }
    }
}

// Below the least memory that it works with, a command is not loaded, or ends as an error.
TEST_F(CardPeers, WithLittleMemoryACommandSaysSoOrDoesItsWork)
{
    if (IS_SANITIZED) {
        GTEST_SKIP() << "the sanitizer itself needs memory";
    }
    constexpr int NOT_LOADED = 127;
    constexpr std::size_t ENOUGH = 400000;
    const auto pCard = m_node.startCard(3, {});
    m_node.run({"db", "card", "enable", "3", "--type", "1"});
    m_node.run({"db", "allow", "add", "--slot", "3", "0x0001000F", "expr=signed(value>90)"});
    for (const char* const arguments : {"get 3 card.led", "watch 3 card.led --count 1", "card list", "card --slot 3",
                                        "monitor --cycles 1 --interval 50ms"}) {
        std::set<std::string> messages;
        CommandResult result = {NOT_LOADED, "", ""};
        const auto isDone = [&] {
            return (result.exitCode == 0) || (result.err.find("already served") != std::string::npos);
        };
        for (std::size_t kilobytes = 24000; !isDone() && (kilobytes < ENOUGH); kilobytes += 1000) {
            result = shell(withMemory(kilobytes, arguments));
            if (!isDone() && (result.exitCode != NOT_LOADED)) {
                EXPECT_EQ(result.exitCode, 2) << arguments << ", KiB: " << kilobytes << "\n" << result;
                EXPECT_EQ(result.out, "") << arguments << ", KiB: " << kilobytes;
                messages.insert(result.err);
            }
        }
        EXPECT_TRUE(isDone()) << arguments << "\n" << result;
        EXPECT_EQ(messages.count("brantel: cannot start the threads of the message framework: Resource temporarily "
                                 "unavailable\n"),
                  1U)
            << arguments;
        EXPECT_EQ(messages.count("brantel: there is no memory for the message framework: Cannot allocate memory\n"), 1U)
            << arguments;
    }
}

TEST_F(CardPeers, AMonitorThatRunsOutOfFilesKeepsTheSlotsThatItHas)
{
    if (IS_SANITIZED) {
        GTEST_SKIP() << "the sanitizer itself needs files";
    }
    const auto pCard = m_node.startCard(3, {});
    const auto pOtherCard = m_node.startCard(4, {});
    const auto watch = [&](const std::string& slot) {
        m_node.run({"db", "card", "enable", slot, "--type", "1"});
        m_node.run({"db", "allow", "add", "--slot", slot, "0x0001000F", "expr=signed(value>90)"});
    };
    watch("3");
    const auto pMonitor = m_node.start(
        {"monitor", "--interval", "20ms", "--journal", m_node.path("journal"), "--db", m_node.path("events.db")},
        "monitor.out");
    m_node.run({"set", "3", "card.alarm-threshold=int32:91"});
    const auto kinds = [&] {
        std::string text;
        for (const Event& event : m_node.journal()) {
            text += placeText(*event.place) + " " + eventKindText(event.kind) + "\n";
        }
        return text;
    };
    ASSERT_TRUE(waitUntil([&] { return kinds() == "slot 3 raised\n"; }, LONG_ENOUGH)) << kinds();

    rlimit before = {};
    ASSERT_EQ(::prlimit(pMonitor->id(), RLIMIT_NOFILE, nullptr, &before), 0);
    const rlimit few = {20, before.rlim_max};
    ASSERT_EQ(::prlimit(pMonitor->id(), RLIMIT_NOFILE, &few, nullptr), 0);
    watch("4");
    ASSERT_TRUE(waitUntil([&] { return kinds() == "slot 3 raised\nslot 4 failed\n"; }, LONG_ENOUGH)) << kinds();
    EXPECT_NE(m_node.journal().back().reason.find("too many open files"), std::string::npos)
        << m_node.journal().back().reason;

    ASSERT_EQ(::prlimit(pMonitor->id(), RLIMIT_NOFILE, &before, nullptr), 0);
    const std::string all = "slot 3 raised\nslot 4 failed\nslot 4 recovered\n";
    EXPECT_TRUE(waitUntil([&] { return kinds() == all; }, LONG_ENOUGH)) << kinds();
    pMonitor->send(SIGTERM);
    EXPECT_EQ(pMonitor->wait(), 0);
    EXPECT_EQ(kinds(), all);
}

// Why a slot is not reached, as reported by every command that looks for it.
class Obstacles : public CardPeers {
protected:
    void expectEverywhere(const std::string& obstacle) const
    {
        m_node.run({"db", "card", "enable", "3", "--type", "1"});
        m_node.run({"db", "allow", "add", "--slot", "3", "0x0001000F", "expr=signed(value>90)"});
        const std::string message = "brantel: slot 3: " + obstacle + "\n";
        EXPECT_EQ(m_node.run({"get", "3", "card.led", "--timeout", "1"}).err, message);
        EXPECT_EQ(m_node.run({"set", "3", "card.led=uint8:1", "--timeout", "1"}).err, message);
        EXPECT_EQ(m_node.run({"watch", "3", "card.led", "--count", "1"}).err, message);
        EXPECT_EQ(m_node.run({"card", "list"}).err, "brantel: " + obstacle + "\n");
        const std::string events = m_node.run({"monitor", "--cycles", "2"}).out;
        EXPECT_NE(events.find("slot 3 failed: " + obstacle + "\n"), std::string::npos) << events;
    }
};

TEST_F(Obstacles, AreARuntimeDirectoryThatOthersMayEnter)
{
    const std::string folder = m_node.path("brantel");
    ASSERT_EQ(::mkdir(folder.c_str(), 0755), 0);
    expectEverywhere(folder + ": open to other users; its mode must be 0700");
}

TEST_F(Obstacles, AreARuntimeDirectoryBehindALink)
{
    const std::string folder = m_node.path("brantel");
    ASSERT_EQ(::symlink("/tmp", folder.c_str()), 0);
    expectEverywhere(folder + ": Not a directory");
}

TEST_F(Obstacles, AreKeysThatCannotBeUsed)
{
    const std::string key = m_node.path("caller.key");
    const std::string serviceKey = createKeyFile(m_node.path("service.key"));
    std::string lines;
    for (const char* const interface : {"ReadWriteSync", "ReadWriteAsync"}) {
        lines += std::string("ICSCClient3.") + interface +
                 " tcp://127.0.0.1:9 own-key=caller.key service-key=" + serviceKey + "\n";
    }
    ::setenv("BRANTEL_MESSAGE_DIRECTORY", m_node.write("directory", lines).c_str(),
             1);  // NOLINT(concurrency-mt-unsafe)
    expectEverywhere(key + ": No such file or directory");
    createKeyFile(key);
    ASSERT_EQ(::chmod(key.c_str(), 0644), 0);
    expectEverywhere(key + ": open to other users; its mode must be 0600");
    ::unsetenv("BRANTEL_MESSAGE_DIRECTORY");  // NOLINT(concurrency-mt-unsafe)
}

TEST_F(Obstacles, AreACardThatIsStopped)
{
    const auto pCard = m_node.startCard(3, {});
    pCard->send(SIGSTOP);
    const CommandResult list = m_node.run({"card", "list"});
    EXPECT_EQ(list.err, "brantel: '" + socketOf(3, "ReadWriteAsync") + "' takes the connection but does not answer\n");
    const CommandResult get = m_node.run({"get", "3", "card.led", "--timeout", "1"});
    EXPECT_EQ(get.err,
              "brantel: slot 3: '" + socketOf(3, "ReadWriteSync") + "' takes the connection but does not answer\n");
    pCard->send(SIGCONT);
    EXPECT_EQ(m_node.run({"get", "3", "card.led"}).exitCode, 0);
}

}  // namespace

}  // namespace brantel
