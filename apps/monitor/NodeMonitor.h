#ifndef APPS_MONITOR_NODE_MONITOR_H
#define APPS_MONITOR_NODE_MONITOR_H

// The monitor as a program: reads the objects that have rules from the cards and the host's counters, and records the
// events, cycle after cycle, until it is asked to stop.
//
// A single thread waits for answers, signals and the next cycle. A place is read again only after its previous reading
// is recorded.

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "cards/CardObjects.h"
#include "common/CommandLine.h"
#include "common/Message.h"
#include "common/Signals.h"
#include "monitor/ConditionMonitor.h"
#include "monitor/EventRecorder.h"
#include "monitor/LiveView.h"
#include "monitor/MonitorMetrics.h"
#include "monitor/MonitorStreams.h"
#include "monitor/PolledSlot.h"
#include "monitor/RuleSet.h"

namespace brantel {

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
    NodeMonitor(const NodeMonitorOptions& options, MonitorStreams& streams);
    ~NodeMonitor();
    NodeMonitor(const NodeMonitor&) = delete;
    NodeMonitor& operator=(const NodeMonitor&) = delete;

    /// Until SIGINT or SIGTERM, or for as many cycles as the options say.
    void run();

private:
    using Clock = std::chrono::steady_clock;

    void addOutputs();
    void waitForCards();
    void waitForInput();
    void handleSignals();
    void handle(int signal);
    void handleAnswers();

    void startCycle();
    void followDatabase();
    void subscribeSlots();
    std::string subscriptionFault();
    void updateOids();
    void takeFailure(const Place& place, const std::string& reason);
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
    MonitorStreams& m_streams;
    const Clock::duration m_interval;
    const SignalQueue m_signals;  // before anything that starts threads
    RuleSetWatcher m_watcher;
    ConditionMonitor m_monitor;
    EventRecorder m_recorder;
    LiveView* m_pView = nullptr;
    CardObjects m_hostObjects;
    OBcomponent m_component{"monitor"};
    std::map<std::uint32_t, PolledSlot> m_slots;
    MonitorMetrics m_metrics;
    OperatorNotice m_metricsNotice;
    OperatorNotice m_databaseNotice;

    Events m_events;  ///< not recorded yet
    Clock::time_point m_cycleStart;
    std::optional<Clock::time_point> m_unrecordedSince;
    std::optional<Clock::time_point> m_lastRecord;  ///< of this cycle
    std::optional<Clock::time_point> m_endBy;       ///< set when it was asked to stop
};

}  // namespace brantel

#endif
