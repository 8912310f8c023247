#ifndef APPS_MONITOR_STATE_FILE_H
#define APPS_MONITOR_STATE_FILE_H

// What a monitor keeps over its end, however that comes: the memory of its rules, the failures and refused rows that it
// told, and the events of its last cycle, which the journal may lack. One text file, replaced as a whole:
//
//     brantel monitor state 1
//     last-event 456                                       the number of the last event
//     rule slot 3 196609 92 1 0 expr=signed(value>90)      place, OID, previous sample (- if none), states, rule
//     failure slot 4 - no sound answer                     place, OID (- for the whole place), failure
//     refused SysCardAllowEventsTable 9 Rule: no rule      table, key of the row, reason
//     event {"event":456,...}                              as in the journal
//     end 6                                                the number of lines before

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "monitor/ConditionMonitor.h"

struct RememberedFailure {
    Place place;
    std::optional<std::uint32_t> oid;
    std::string failure;
};

struct MonitorState {
    std::uint64_t lastEvent = 0;
    std::vector<std::pair<RuleKey, RuleMemory>> rules;
    std::vector<RememberedFailure> failures;
    std::vector<RefusedRow> refusedRows;
    std::vector<std::string> eventLines;
};

/// The text of a state; `eventLines` are JSON lines without line ends.
std::string stateText(std::uint64_t lastEvent, const ConditionMonitor& monitor,
                      const std::vector<std::string>& eventLines);

class StateFile {
public:
    /// Keeps other monitors from the file while this lives, by a lock on a file beside it, `path`.lock. Throws
    /// CommandError.
    explicit StateFile(const std::string& path);
    ~StateFile();
    StateFile(const StateFile&) = delete;
    StateFile& operator=(const StateFile&) = delete;

    /// The state that is there; an empty one if the file does not exist. Throws CommandError, with the line that is
    /// wrong.
    MonitorState load() const;

    /// Replaces it; on disk when this returns. Throws CommandError.
    void save(const std::string& text) const;

private:
    const std::string m_path;
    int m_lock;
};

#endif
