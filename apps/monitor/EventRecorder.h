#ifndef APPS_MONITOR_EVENT_RECORDER_H
#define APPS_MONITOR_EVENT_RECORDER_H

// Makes events durable, in an order that survives a kill at any moment (docs/decisions/0006):
//
//     1. the state file is replaced: it holds the monitor's memory after the events, and the events
//     2. the events are appended to the journal, which is synchronised; until that succeeds, the state holds them
//     3. the events are reported to the other outputs
//
// A monitor that starts from that state adds the events that the journal lacks. A reading that did not reach step 1
// counts as never made.
//
// While the journal cannot be written, events wait, up to a limit (WaitingEvents.h). Events beyond the limit are lost;
// once the journal can be written again, an event in it reports which.

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "common/Message.h"
#include "monitor/ConditionMonitor.h"
#include "monitor/EventOutput.h"
#include "monitor/Journal.h"
#include "monitor/StateFile.h"
#include "monitor/WaitingEvents.h"

namespace brantel {

class EventRecorder {
public:
    using Clock = std::chrono::steady_clock;

    /// Empty paths: no journal, no state. Throws CommandError if one of them cannot be used.
    EventRecorder(const std::string& journalPath, const std::string& statePath);

    void addOutput(std::unique_ptr<EventOutput> pOutput) { m_outputs.push_back(std::move(pOutput)); }

    /// Fills a monitor with the contents of the state, then records the events that the journal lacks. Once, before
    /// record.
    void restore(ConditionMonitor& monitor);

    /// Numbers and records events, with the memory of the monitor that they come from. A file that cannot be written
    /// is reported on standard error and in syslog, once until it can be written again; the events missing in the
    /// journal are appended with the next ones. An event about lost ones is added to `events`.
    void record(Events& events, const ConditionMonitor& monitor);

    /// Tries once more to append what waits, and leaves a state that needs no repair. Called last. Throws CommandError
    /// if events are not in the journal, or the state is not up to date.
    void finish(const ConditionMonitor& monitor);

    /// Closes the journal, which may have been moved away; the next recording opens it again. A pipe that has taken a
    /// part of a line stays open until it has taken the rest.
    void releaseJournal() { m_isJournalReleased = true; }

    std::uint64_t lastEvent() const { return m_lastEvent; }

    /// Events that the journal has not taken yet, or that may not be on disk in it.
    std::uint64_t waitingEvents() const { return m_waiting.lines().size(); }

    /// Events that the journal will never have.
    std::uint64_t lostEvents() const { return m_lostBefore + (m_waiting.lost() ? m_waiting.lost()->count() : 0); }

    /// For how long a file could not be written; zero if it can.
    Clock::duration journalFailing() const { return durationSince(m_journalFailingSince); }
    Clock::duration stateFailing() const { return durationSince(m_stateFailingSince); }

private:
    static Clock::duration durationSince(const std::optional<Clock::time_point>& time)
    {
        return time ? Clock::now() - *time : Clock::duration::zero();
    }

    void addLostEvent(Events& events);
    void saveState(const ConditionMonitor& monitor);
    void appendToJournal();
    void openJournal();
    void appendWaiting();
    void releaseAppended();
    bool isAnyUnsynchronised() const;
    bool isLineCut() const;
    void report(const Events& events) const;

    const std::string m_journalPath;
    std::optional<StateFile> m_state;
    std::unique_ptr<Journal> m_pJournal;
    std::vector<std::unique_ptr<EventOutput>> m_outputs;
    std::uint64_t m_lastEvent = 0;
    WaitingEvents m_waiting;           ///< recorded, but not in the journal, or maybe not on disk in it
    std::uint64_t m_lastAppended = 0;  ///< the last of them that the journal has; 0 if it has none
    bool m_isJournalReleased = false;
    std::uint64_t m_lostBefore = 0;  ///< lost events that the journal reports
    std::optional<Clock::time_point> m_stateFailingSince;
    std::optional<Clock::time_point> m_journalFailingSince;
    OperatorNotice m_stateNotice;
    OperatorNotice m_journalNotice;
};

}  // namespace brantel

#endif
