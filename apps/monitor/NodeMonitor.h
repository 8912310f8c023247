#ifndef APPS_MONITOR_NODE_MONITOR_H
#define APPS_MONITOR_NODE_MONITOR_H

// The monitor as a program: walks the road of the monitored values, from the database's rules over the cards and the
// host's counters to the events, cycle after cycle, until it is told to end.
//
// All happens on one thread that waits for answers, signals and the time of the next cycle at once. Nothing is read
// again before what was read before is recorded.

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "cards/CardObjects.h"
#include "monitor/ConditionMonitor.h"
#include "monitor/EventRecorder.h"
#include "monitor/LiveView.h"
#include "monitor/MonitorFigures.h"
#include "monitor/OperatorNotice.h"
#include "monitor/PolledSlot.h"
#include "monitor/RuleBook.h"
#include "monitor/Signals.h"

struct NodeMonitorOptions {
    std::string database;
    std::set<std::uint32_t> slots;
    double interval = 1.0;  ///< seconds
    std::string stateFile;
    std::string journal;
    std::string metricsFile;
    std::uint64_t cycles = 0;  ///< 0: until a signal
    bool isJson = false;
};

class NodeMonitor {
public:
    /// Reads the database and the state, and subscribes the slots. Throws CommandError and sql::Error.
    explicit NodeMonitor(const NodeMonitorOptions& options);
    ~NodeMonitor();
    NodeMonitor(const NodeMonitor&) = delete;
    NodeMonitor& operator=(const NodeMonitor&) = delete;

    /// Until SIGINT or SIGTERM, or for as many cycles as the options say.
    void run();

private:
    using Clock = std::chrono::steady_clock;

    void addOutputs();
    void waitForCards();
    void waitForSomething();
    void handleSignals();
    void handle(int signal);
    void handleAnswers();

    void startCycle();
    void followDatabase();
    void updateSlots();
    void poll(const Place& place, PolledSlot& slot);
    void readHost(const Place& place);
    void takeCompleteReadings();
    void takeReading(const Place& place, PolledSlot& slot);
    bool isAnySlotReading() const;

    void recordWhenDue();
    void record();
    void endCycle();
    void writeMetrics();
    Clock::time_point nextWakeUp() const;
    bool isOver() const;

    const NodeMonitorOptions m_options;
    const Clock::duration m_interval;
    const Signals m_signals;  // before all that starts threads
    RuleBookFollower m_follower;
    ConditionMonitor m_monitor;
    EventRecorder m_recorder;
    LiveView* m_pView = nullptr;
    CardObjects m_hostObjects;
    OBcomponent m_component{"monitor"};
    std::map<std::uint32_t, PolledSlot> m_slots;
    MonitorFigures m_figures;
    OperatorNotice m_metricsNotice;
    OperatorNotice m_databaseNotice;

    ConditionMonitor::Events m_events;  ///< not recorded yet
    Clock::time_point m_cycleStart;
    std::optional<Clock::time_point> m_unrecordedSince;
    std::optional<Clock::time_point> m_lastRecord;  ///< of this cycle
    std::optional<Clock::time_point> m_endBy;       ///< set when it was told to end
};

#endif
