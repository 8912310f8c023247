#ifndef APPS_COMMON_SYSTEM_LOG_H
#define APPS_COMMON_SYSTEM_LOG_H

// The lines that the command and the shared libraries log: every call of syslog in the command's process comes here
// (apps/Syslog.cpp).

#include <functional>
#include <string>
#include <string_view>

namespace brantel {

/// Logs `text` in one line, made printable, so that the content of a rule or a card's name cannot forge a line.
void writeLog(int priority, std::string_view text);

/// Passes a line to the C library, which waits while the log accepts nothing.
void writeToSystemLog(int priority, const std::string& line);

/// Takes lines instead of the C library. It must not wait.
using LogWriter = std::function<void(int priority, const std::string& line)>;

/// Passes lines to `writer` from now on; to the C library again if it is empty.
void setLogWriter(LogWriter writer);

}  // namespace brantel

#endif
