#include "monitor/OperatorNotice.h"

#include <cstdio>

#include <syslog.h>

void OperatorNotice::set(const std::string& fault)
{
    if (!fault.empty() && (fault != m_fault)) {
        static_cast<void>(std::fprintf(stderr, "brantel: %s\n", fault.c_str()));
        syslog(LOG_ERR, "%s", fault.c_str());
    }
    m_fault = fault;
}
