#ifndef APPS_COMMON_SIGNALS_H
#define APPS_COMMON_SIGNALS_H

// Signals as something to act on or to wait for. Of each class one object lives at a time.

#include <csignal>
#include <functional>
#include <optional>

#include "common/FileDescriptor.h"

namespace brantel {

/// While one lives, the first SIGINT or SIGTERM calls a function, and the next of its kind ends the process: what the
/// function stops may be waiting in a call.
class StopOnSignals {
public:
    /// `stop` is called in the signal handler.
    explicit StopOnSignals(std::function<void()> stop);
    ~StopOnSignals();
    StopOnSignals(const StopOnSignals&) = delete;
    StopOnSignals& operator=(const StopOnSignals&) = delete;
};

/// SIGINT and SIGTERM as something to wait for along with an input. While one lives, the first of them is only noted,
/// so that the results up to then can be summed up; the next of its kind ends the process. A signal that the caller
/// ignores stays ignored.
class StopNotice {
public:
    /// Throws CommandError.
    StopNotice();
    ~StopNotice();
    StopNotice(const StopNotice&) = delete;
    StopNotice& operator=(const StopNotice&) = delete;

    /// Readable once a signal came.
    int descriptor() const { return m_readEnd.number(); }

private:
    FileDescriptor m_readEnd;
    FileDescriptor m_writeEnd;
};

/// SIGINT, SIGTERM, SIGHUP and SIGUSR1 as a queue. Create it before any thread: threads must not take the signals.
class SignalQueue {
public:
    /// Throws CommandError.
    SignalQueue();
    ~SignalQueue();
    SignalQueue(const SignalQueue&) = delete;
    SignalQueue& operator=(const SignalQueue&) = delete;

    /// Readable when next has a signal.
    int descriptor() const { return m_file.number(); }

    /// The next signal, without waiting.
    std::optional<int> next() const;

private:
    sigset_t m_before{};
    FileDescriptor m_file;
};

}  // namespace brantel

#endif
