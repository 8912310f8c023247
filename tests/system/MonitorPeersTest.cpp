// The monitor with misbehaving services.

#include <csignal>

#include <gtest/gtest.h>

#include "support/FakeService.h"
#include "system/TestNode.h"

namespace brantel {
namespace {

constexpr std::chrono::seconds LONG_ENOUGH{60};

// A node with a card in slot 3, and a slot 8 that is enabled, both with a rule that no value meets.
class NodeWithPeer : public TestNode {
public:
    NodeWithPeer()
    {
        m_pCard = startCard(3, {});
        for (const char* const slot : {"3", "8"}) {
            mustRun({"db", "card", "enable", slot, "--type", "1"});
            mustRun({"db", "allow", "add", "--slot", slot, "0x0001000F", "expr=signed(value>90)"});
        }
    }

    void mustRun(const std::vector<std::string>& arguments) const
    {
        const CommandResult result = run(arguments);
        EXPECT_EQ(result.exitCode, 0) << result;
    }

    std::string socketOfSlot8() const { return path("brantel/ICSCClient8.ReadWriteAsync"); }

    std::unique_ptr<ChildProcess> startMonitor() const
    {
        return start({"monitor", "--interval", "20ms", "--journal", path("journal"), "--metrics", path("metrics")},
                     "monitor.out");
    }

    const ChildProcess& card() const { return *m_pCard; }

    /// A metric of a slot.
    double count(const std::string& name, int slot) const
    {
        return metric(name + "{slot=\"" + std::to_string(slot) + "\"}").value_or(0);
    }

    std::vector<std::string> sentences() const
    {
        std::vector<std::string> sentences;
        for (const Event& event : journal()) {
            sentences.push_back(eventText(event));
        }
        return sentences;
    }

private:
    std::unique_ptr<ChildProcess> m_pCard;
};

using Sentences = std::vector<std::string>;

const std::string SILENT = "33554432=0x2000000=TIMEOUT: the card did not answer in time";

// A node in whose slot 8 a service never answers; it takes requests, or not even connections.
class SilentNode : public NodeWithPeer {
public:
    explicit SilentNode(bool isServing)
        : m_service(
              socketOfSlot8(), [](const std::string&) { return FakeService::Answers(); },
              [isServing](unsigned) { return isServing; }),
          m_pMonitor(startMonitor())
    {
    }

    const FakeService& service() const { return m_service; }

    void expectOneFailure()
    {
        const auto isDone = [&] {
            return (count("failed_readings_total", 8) >= 1) && (metric("cycles_total").value_or(0) >= 400);
        };
        EXPECT_TRUE(waitUntil(isDone, LONG_ENOUGH));
        m_pMonitor->send(SIGTERM);

        EXPECT_EQ(m_pMonitor->wait(), 0);
        ASSERT_EQ(sentences().size(), 1U);
        EXPECT_EQ(sentences()[0].rfind("slot 8 failed: ", 0), 0U) << sentences()[0];
        const double cycles = metric("cycles_total").value_or(0);
        EXPECT_GE(count("readings_total", 3) + count("skipped_readings_total", 3), cycles - 2);
        EXPECT_LE(count("skipped_readings_total", 3), cycles / 2);
    }

private:
    const FakeService m_service;
    const std::unique_ptr<ChildProcess> m_pMonitor;
};

TEST(MonitorPeers, AServiceThatStarvesItsConnectionCostsItsOwnSlotOneFailure)
{
    SilentNode node(false);
    node.expectOneFailure();
    EXPECT_EQ(node.service().requests(), 0U);
}

TEST(MonitorPeers, AServiceThatNeverAnswersCostsItsOwnSlotOneFailureAndHasOneConnection)
{
    SilentNode node(true);
    node.expectOneFailure();
    EXPECT_GE(node.service().requests(), 1U);
    EXPECT_EQ(node.service().connections(), 1U);
}

TEST(MonitorPeers, AStoppedAndContinuedCardCausesNoFalseEvent)
{
    const NodeWithPeer node;
    node.mustRun({"db", "card", "disable", "8"});
    node.mustRun({"set", "3", "card.alarm-threshold=int32:91"});
    const auto pMonitor = node.startMonitor();
    ASSERT_TRUE(waitUntil([&] { return node.sentences().size() == 1; }, LONG_ENOUGH));
    node.card().send(SIGSTOP);
    EXPECT_TRUE(waitUntil([&] { return node.sentences().size() == 2; }, LONG_ENOUGH));
    node.card().send(SIGCONT);
    EXPECT_TRUE(waitUntil([&] { return node.sentences().size() == 3; }, LONG_ENOUGH));
    const double readings = node.count("readings_total", 3);
    EXPECT_TRUE(waitUntil([&] { return node.count("readings_total", 3) >= readings + 10; }, LONG_ENOUGH));
    pMonitor->send(SIGTERM);

    EXPECT_EQ(pMonitor->wait(), 0);
    EXPECT_EQ(node.sentences(),
              (Sentences{"slot 3 card.alarm-threshold raised: 91 > 90: above the limit [expr=signed(value>90)]",
                         "slot 3 failed: " + SILENT, "slot 3 recovered: after: " + SILENT}));
}

TEST(MonitorPeers, AStoppedAndContinuedMonitorReportsNothing)
{
    const NodeWithPeer node;
    node.mustRun({"db", "card", "disable", "8"});
    const FakeService silent(node.path("brantel/ICSCClient8.ReadWriteSync"),
                             [](const std::string&) { return FakeService::Answers(); });
    const auto pMonitor = node.startMonitor();
    ASSERT_TRUE(waitUntil([&] { return node.count("readings_total", 3) >= 10; }, LONG_ENOUGH));
    pMonitor->send(SIGSTOP);
    // Once a request that is made now has expired, so have all requests of the stopped monitor. The second one takes as
    // long again, so that the monitor notices them more than a second late, which is how it knows that it was stopped.
    EXPECT_EQ(node.run({"get", "8", "1"}).exitCode, 1);
    EXPECT_EQ(node.run({"get", "8", "1"}).exitCode, 1);
    EXPECT_GE(silent.requests(), 2U);
    pMonitor->send(SIGCONT);
    const double readings = node.count("readings_total", 3);
    EXPECT_TRUE(waitUntil([&] { return node.count("readings_total", 3) >= readings + 10; }, LONG_ENOUGH));
    pMonitor->send(SIGTERM);

    EXPECT_EQ(pMonitor->wait(), 0);
    EXPECT_EQ(node.sentences(), Sentences());
}

}  // namespace

}  // namespace brantel
