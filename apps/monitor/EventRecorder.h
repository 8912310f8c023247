#ifndef APPS_MONITOR_EVENT_RECORDER_H
#define APPS_MONITOR_EVENT_RECORDER_H

// Makes events last, in an order that a kill at any moment cannot spoil (docs/decisions/0006):
//
//     1. the state file is replaced: it holds the monitor's memory after the events, and the events
//     2. the events are appended to the journal, and it is made sure that they are on disk
//     3. the events are told to the other outputs
//
// A monitor that starts from that state adds the events that the journal lacks. What was read but did not get as far as
// 1 counts as never read.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "monitor/ConditionMonitor.h"
#include "monitor/EventOutput.h"
#include "monitor/Journal.h"
#include "monitor/OperatorNotice.h"
#include "monitor/StateFile.h"

class EventRecorder {
public:
    /// Empty paths: no journal, no state. Throws CommandError if one that is given cannot be used.
    EventRecorder(const std::string& journalPath, const std::string& statePath);

    void addOutput(std::unique_ptr<EventOutput> pOutput) { m_outputs.push_back(std::move(pOutput)); }

    /// Fills a monitor with what the state holds, then records the events that the journal lacks. Once, before record.
    void restore(ConditionMonitor& monitor);

    /// Records events, which get their numbers, with the memory of the monitor that they come from. A file that cannot
    /// be written is told of on standard error and in syslog, once until it can be written again; events that are not
    /// in the journal then are appended with the next ones.
    void record(ConditionMonitor::Events& events, const ConditionMonitor& monitor);

    /// Leaves a state that needs no repair. Last.
    void finish(const ConditionMonitor& monitor) { saveState(monitor); }

    /// Lets the journal go, which somebody may have moved away; the next recording opens it again.
    void releaseJournal() { m_pJournal.reset(); }

    std::uint64_t lastEvent() const { return m_lastEvent; }

private:
    void saveState(const ConditionMonitor& monitor);
    void appendToJournal();
    void tell(const ConditionMonitor::Events& events, const std::vector<std::string>& lines) const;

    const std::string m_journalPath;
    std::optional<StateFile> m_state;
    std::unique_ptr<Journal> m_pJournal;
    std::vector<std::unique_ptr<EventOutput>> m_outputs;
    std::uint64_t m_lastEvent = 0;
    ConditionMonitor::Events m_waiting;  ///< recorded, but not in the journal yet
    std::vector<std::string> m_waitingLines;
    OperatorNotice m_stateNotice;
    OperatorNotice m_journalNotice;
};

#endif
