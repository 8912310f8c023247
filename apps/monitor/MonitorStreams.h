#ifndef APPS_MONITOR_MONITOR_STREAMS_H
#define APPS_MONITOR_MONITOR_STREAMS_H

// Standard output, standard error and the log of a monitor, whose cycles must not wait for a reader. While one lives,
// messages (common/Message.h) and log lines (common/SystemLog.h) go through it.

#include <chrono>
#include <optional>

#include "common/OutputQueue.h"

namespace brantel {

class MonitorStreams {
public:
    /// `isJson`: whether standard output is read as JSON.
    explicit MonitorStreams(bool isJson);

    /// Gives the readers of all streams one second to take the rest, counted from finishOutput if that was called.
    ~MonitorStreams();
    MonitorStreams(const MonitorStreams&) = delete;
    MonitorStreams& operator=(const MonitorStreams&) = delete;

    OutputQueue& output() { return m_output; }
    OutputQueue& diagnostics() { return m_diagnostics; }

    /// Throws CommandError if standard output could not be written.
    void requireOutput() const;

    /// Ends standard output, within that second. Throws CommandError if it could not be written.
    void finishOutput();

private:
    using Clock = std::chrono::steady_clock;

    OutputQueue m_output;
    OutputQueue m_diagnostics;
    OutputQueue m_log;
    std::optional<Clock::time_point> m_finishBy;
};

}  // namespace brantel

#endif
