#ifndef TESTS_SYSTEM_CHILD_PROCESS_H
#define TESTS_SYSTEM_CHILD_PROCESS_H

// A program that runs in the background and can be sent signals.

#include <string>
#include <vector>

#include <sys/types.h>

namespace brantel {

class ChildProcess {
public:
    /// `environment` is NAME=VALUE, added to the test's. Output and diagnostics are appended to the file `output`.
    ChildProcess(const std::string& program, const std::vector<std::string>& arguments,
                 const std::vector<std::string>& environment, const std::string& output);

    /// Kills it, if it still runs.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    void send(int signal) const;

    /// Waits for its end. The exit code, or the negative number of the signal that ended it.
    int wait();

    pid_t id() const { return m_process; }

    /// Seconds of processor time that it used; once it has ended.
    double processorTime() const { return m_processorTime; }

private:
    pid_t m_process = -1;
    bool m_isRunning = true;
    double m_processorTime = 0;
};

}  // namespace brantel

#endif
