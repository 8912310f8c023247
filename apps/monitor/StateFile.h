#ifndef APPS_MONITOR_STATE_FILE_H
#define APPS_MONITOR_STATE_FILE_H

// What a monitor keeps across restarts and kills: the memory of its rules, the failures and refused rows that it
// reported, and the events of its last cycle, which the journal may lack. One text file, replaced as a whole:
//
//     brantel monitor state 3
//     last-event 456                                       the number of the last event
//     lost 440 450                                         lost events, if any
//     rule slot 3 196609 92 1 0 expr=signed(value>90)      place, OID, previous sample (- if none), states, rule
//     failure slot 4 - no answer                     place, OID (- for the whole place), failure
//     refused SysCardAllowEventsTable 9 Rule: ...          table, key of the row, reason
//     event {"event":456,...}                              as in the journal
//     end 7 0a1b2c3d                                       the number of lines above, and their CRC-32

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "common/FileDescriptor.h"
#include "monitor/ConditionMonitor.h"
#include "monitor/WaitingEvents.h"

namespace brantel {

struct RememberedFailure {
    Place place;
    std::optional<std::uint32_t> oid;
    std::string failure;
};

struct RememberedRule {
    RuleKey key;
    RuleMemory memory;
    std::size_t line = 0;  ///< of the file, for messages
};

struct MonitorState {
    std::uint64_t lastEvent = 0;
    std::vector<RememberedRule> rules;
    std::vector<RememberedFailure> failures;
    std::vector<RefusedRow> refusedRows;
    WaitingEvents waiting;
};

std::string stateText(std::uint64_t lastEvent, const ConditionMonitor& monitor, const WaitingEvents& waiting);

/// `lines` with the last line of a state appended.
std::string sealedState(const std::string& lines);

/// The state in a file; an empty one if there is no file. Throws CommandError for a state that is not exactly as it was
/// saved, with the invalid line if one can be named.
MonitorState loadState(const std::string& path);

/// The end of a message about a refused state.
constexpr const char* STATE_REMEDY = "; put back a copy of the state, or remove it to start anew";

/// Fills a monitor with the contents of a state from the file `path`. Throws CommandError.
void restoreMemory(const MonitorState& state, const std::string& path, ConditionMonitor& monitor);

class StateFile {
public:
    /// Keeps other monitors from the file during its lifetime, by a lock on `path`.lock next to it. Links are followed
    /// once, here: their target is locked, loaded and saved. Throws CommandError.
    explicit StateFile(const std::string& path);

    MonitorState load() const { return loadState(m_path); }
    const std::string& path() const { return m_path; }  ///< without links

    /// Replaces it; on disk when this returns. Throws CommandError.
    void save(const std::string& text) const;

private:
    const std::string m_path;
    FileDescriptor m_lock;
};

}  // namespace brantel

#endif
