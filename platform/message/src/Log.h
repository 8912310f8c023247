#ifndef MESSAGE_LOG_H
#define MESSAGE_LOG_H

// The framework's log lines: one syslog call each, "[ERROR] %s:%d (%s) - " and the text, when the trace level is above
// 2 for errors and above 3 for warnings. Arguments are evaluated only if the line is written.

#include <cstdint>
#include <cstdio>
#include <cstring>

#include <syslog.h>

#include "trace/TraceObject.h"

namespace obmessage {

constexpr std::int32_t ERROR_THRESHOLD = 2;
constexpr std::int32_t WARNING_THRESHOLD = 3;

inline bool isTraceLevelAbove(std::int32_t threshold)
{
    return (g_traceObject != nullptr) && (g_traceObject->getTraceLevel() > threshold);
}

template <typename... Args>
void writeLine(int priority, const char* path, int line, const char* function, const char* format, Args... args)
{
    syslog(priority, format, std::strrchr(path, '/') + 1, line, function, args...);
}

}  // namespace obmessage

// The unevaluated printf makes the compiler check the format against the arguments.
#define MESSAGE_LOG_LINE(threshold, priority, tag, ...)                                                     \
    do {                                                                                                    \
        if (obmessage::isTraceLevelAbove(threshold)) {                                                      \
            static_cast<void>(sizeof(std::printf(__VA_ARGS__)));                                            \
            obmessage::writeLine(priority, __FILE__, __LINE__, __func__, tag " %s:%d (%s) - " __VA_ARGS__); \
        }                                                                                                   \
    } while (false)

#define LOG_MESSAGE_ERROR(...) MESSAGE_LOG_LINE(obmessage::ERROR_THRESHOLD, LOG_ERR, "[ERROR]", __VA_ARGS__)
#define LOG_MESSAGE_WARNING(...) MESSAGE_LOG_LINE(obmessage::WARNING_THRESHOLD, LOG_WARNING, "[WARNING]", __VA_ARGS__)

// Logged by the default of a handler that a derived class should have overridden.
#define LOG_NEVER_CALLED() LOG_MESSAGE_ERROR("Error, this function should never be called [%s]]", __PRETTY_FUNCTION__)

#endif
