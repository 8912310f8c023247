// Ten cards of a thousand objects with a rule each: the cost of a cycle, and the effect of a silent card on the others.
// Each test prints its figures.

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "system/TestNode.h"

namespace brantel {
namespace {

constexpr std::size_t N_CARDS = 10;

// The address sanitizer returns memory late.
#ifdef __SANITIZE_ADDRESS__
constexpr bool HOLDS_FREED_MEMORY = true;
#else
constexpr bool HOLDS_FREED_MEMORY = false;
#endif

// What a card reports of its readings; the gaps between their starts, in milliseconds.
struct CardReadings {
    std::size_t count = 0;
    double meanGap = 0;
    double longestGap = 0;
};

// A node with a rule for each of the objects of its cards.
class LoadedNode : public TestNode {
public:
    LoadedNode(std::size_t nObjects, const std::vector<std::string>& cardsArguments)
        : m_pCards(startProgram(SIMPLE_CARDS, cardsArguments, "cards.out"))
    {
        const auto isReady = [&] { return contentOf(path("cards.out")) == "ready\n"; };
        EXPECT_TRUE(waitUntil(isReady, std::chrono::seconds(30)));
        std::ostringstream rules;
        rules << "Slot,OID,Rule\n";
        for (std::size_t slot = 0; slot < N_CARDS; ++slot) {
            run({"db", "card", "enable", std::to_string(slot), "--type", "1"});
            for (std::size_t i = 0; i < nObjects; ++i) {
                rules << slot << ',' << i << ",\"" << RULES[i % 4] << "\"\n";
            }
        }
        const CommandResult imported = run({"db", "import", write("rules.csv", rules.str())});
        EXPECT_EQ(imported.exitCode, 0) << imported;
    }

    /// Ends the cards. Returns what each reports of its readings, by slot.
    std::vector<CardReadings> endCards()
    {
        m_pCards->send(SIGTERM);
        m_pCards->wait();
        std::istringstream lines(contentOf(path("cards.out")).substr(std::string("ready\n").size()));
        std::vector<CardReadings> readings(N_CARDS);
        for (std::size_t slot = 0; lines >> slot;) {
            lines >> readings.at(slot).count >> readings.at(slot).meanGap >> readings.at(slot).longestGap;
        }
        return readings;
    }

    std::unique_ptr<ChildProcess> startMonitor(const std::string& interval, bool hasState) const
    {
        std::vector<std::string> arguments = {"monitor",       "--interval", interval,       "--journal",
                                              path("journal"), "--metrics",  path("metrics")};
        if (hasState) {
            arguments.insert(arguments.end(), {"--state", path("state")});
        }
        return start(arguments, "monitor.out");
    }

    bool hasDone(std::size_t cycles) const { return metric("cycles_total").value_or(0) >= static_cast<double>(cycles); }

    double part(const std::string& name) const
    {
        return metric("part_seconds_total{part=\"" + name + "\"}").value_or(0);
    }

private:
    static constexpr const char* RULES[] = {"expr=unsigned(value>3000000000)", "expr=signed(delta>1000000)",
                                            "expr=unsigned(hyshigh(70,80))", "expr=signed(hyshigh(70,80)hyslow(5,10))"};

    std::unique_ptr<ChildProcess> m_pCards;
};

// Memory of a process in KiB, as the system counts it.
long residentKib(pid_t process)
{
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("VmRSS:", 0) == 0) {
            return std::stol(line.substr(6));
        }
    }
    return 0;
}

void print(const std::string& text)
{
    std::printf("    %s\n", text.c_str());
    static_cast<void>(std::fflush(stdout));
}

void printParts(const LoadedNode& node)
{
    const double cycles = *node.metric("cycles_total");
    for (const char* const part : {"database", "send", "wait", "receive", "decode", "evaluate", "record"}) {
        print(part + std::string(": ") + std::to_string(1000 * node.part(part) / cycles) + " ms a cycle");
    }
}

TEST(MonitorLoad, CyclesOfTenThousandObjectsNeitherGrowNorSlowDown)
{
    const std::size_t nObjects = amount("MONITOR_OBJECTS", 1000);
    const std::size_t early = amount("MONITOR_CYCLES", 150) / 10;
    const std::size_t late = 10 * early;
    LoadedNode node(nObjects, {std::to_string(N_CARDS)});

    const auto pMonitor = node.startMonitor("50ms", amount("MONITOR_WITH_STATE", 0) != 0);
    ASSERT_TRUE(waitUntil([&] { return node.hasDone(early); }, std::chrono::seconds(600)));
    const long earlyMemory = residentKib(pMonitor->id());
    ASSERT_TRUE(waitUntil([&] { return node.hasDone(late); }, std::chrono::seconds(3600)));
    const long lateMemory = residentKib(pMonitor->id());
    pMonitor->send(SIGTERM);

    EXPECT_EQ(pMonitor->wait(), 0);
    const double cycles = *node.metric("cycles_total");
    print("cycle: " + std::to_string(1000 * *node.metric("cycle_seconds_total") / cycles) + " ms");
    printParts(node);
    print("processor time of the monitor: " + std::to_string(1000 * pMonitor->processorTime() / cycles) +
          " ms a cycle");
    print("memory after " + std::to_string(early) + " cycles: " + std::to_string(earlyMemory) + " KiB, after " +
          std::to_string(late) + ": " + std::to_string(lateMemory) + " KiB");
    for (std::size_t slot = 0; slot < N_CARDS; ++slot) {
        const std::string label = "{slot=\"" + std::to_string(slot) + "\"}";
        EXPECT_EQ(node.metric("failed_readings_total" + label), 0) << "slot " << slot;
        EXPECT_GT(node.metric("readings_total" + label).value_or(0), 0) << "slot " << slot;
    }
    if (!HOLDS_FREED_MEMORY) {
        EXPECT_LE(lateMemory, earlyMemory + earlyMemory / 20);
    }
}

TEST(MonitorLoad, ACardThatNeverAnswersDelaysNoOther)
{
    const std::size_t nCycles = amount("MONITOR_CYCLES_BESIDE_SILENCE", 80);
    constexpr std::size_t SILENT_SLOT = 4;
    LoadedNode node(50, {std::to_string(N_CARDS), std::to_string(SILENT_SLOT)});

    const auto pMonitor = node.startMonitor("100ms", true);
    ASSERT_TRUE(waitUntil([&] { return node.hasDone(nCycles + 1); }, std::chrono::seconds(600)));
    pMonitor->send(SIGTERM);

    EXPECT_EQ(pMonitor->wait(), 0);
    const std::vector<CardReadings> readings = node.endCards();
    for (std::size_t slot = 0; slot < N_CARDS; ++slot) {
        const CardReadings& each = readings[slot];
        print("slot " + std::to_string(slot) + ": " + std::to_string(each.count) + " readings, one every " +
              std::to_string(each.meanGap) + " ms, longest gap " + std::to_string(each.longestGap) + " ms");
        if (slot != SILENT_SLOT) {
            EXPECT_GE(each.count, nCycles);
            EXPECT_LT(each.meanGap, 150) << "100, on a machine that has nothing else to do";
        }
    }
    const std::vector<Event> events = node.journal();
    const auto isFailure = [](const Event& event) { return event.kind == EventKind::FAILED; };
    const auto nFailures = std::count_if(events.begin(), events.end(), isFailure);
    EXPECT_EQ(nFailures, 1);
}

}  // namespace

}  // namespace brantel
