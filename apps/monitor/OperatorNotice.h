#ifndef APPS_MONITOR_OPERATOR_NOTICE_H
#define APPS_MONITOR_OPERATOR_NOTICE_H

// A fault of the monitor's own surroundings (a file, the database) that comes and goes: told on standard error and in
// syslog when it comes or changes, not again and again.

#include <string>

class OperatorNotice {
public:
    /// There is this fault now; empty: there is none.
    void set(const std::string& fault);

private:
    std::string m_fault;
};

#endif
