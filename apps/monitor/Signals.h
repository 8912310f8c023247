#ifndef APPS_MONITOR_SIGNALS_H
#define APPS_MONITOR_SIGNALS_H

// Signals as something to wait for beside other descriptors. Create it before anything that starts threads: they must
// not take the signals.

#include <csignal>
#include <optional>

class Signals {
public:
    /// Takes SIGINT, SIGTERM, SIGHUP and SIGUSR1 from now on. Throws CommandError.
    Signals();
    ~Signals();
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

    /// Readable when next has one.
    int descriptor() const { return m_file; }

    /// A signal that came, without waiting.
    std::optional<int> next() const;

private:
    sigset_t m_before{};
    int m_file;
};

#endif
