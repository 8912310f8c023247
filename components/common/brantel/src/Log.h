#ifndef BRANTEL_LOG_H
#define BRANTEL_LOG_H

// The library's one way to log and to report violated invariants. Private.
//
//     LOG_ERROR("No = sign in expression '%s'", part.c_str());
//     ASSERT_OR_REPORT(slot < 10);
//
// A line is exactly one syslog call: "[ERROR] %s:%d (%s) - " and the text, with the base name of the file, the line and
// the name of the writing function before the text's own arguments. The trace level is tested before any of them is
// evaluated.

#include <cstdint>
#include <cstdio>

#include <syslog.h>

#include "trace/TraceObject.h"
#include "trace/logAssertFailed.h"

namespace brantelLog {

// A line is written when the trace level is above its threshold.
constexpr std::int32_t ERROR_THRESHOLD = 2;
constexpr std::int32_t WARNING_THRESHOLD = 3;
constexpr std::int32_t DEBUG3_THRESHOLD = 8;

inline bool isTraceLevelAbove(std::int32_t threshold)
{
    return (g_traceObject != nullptr) && (g_traceObject->getTraceLevel() > threshold);
}

constexpr const char* baseName(const char* path)
{
    const char* name = path;
    for (const char* pChar = path; *pChar != '\0'; ++pChar) {
        if (*pChar == '/') {
            name = pChar + 1;
        }
    }
    return name;
}

// Puts the arguments that every line starts with before its own. A template and not a variadic macro, because
// C++17 cannot drop the comma before an empty __VA_ARGS__.
template <typename... Args>
void writeLine(int priority, const char* file, int line, const char* function, const char* format, Args... args)
{
    syslog(priority, format, file, line, function, args...);
}

// True if the invariant holds; otherwise it is reported, whatever the trace level.
inline bool holdsOrIsReported(bool holds, const char* condition, const char* file, int line, const char* function)
{
    if (!holds) {
        logAssertFailed(condition, file, line, function);
    }
    return holds;
}

}  // namespace brantelLog

// The unevaluated printf makes the compiler check the format against the arguments.
#define BRANTEL_LOG_LINE(threshold, priority, tag, function, ...)                                           \
    do {                                                                                                    \
        if (brantelLog::isTraceLevelAbove(threshold)) {                                                     \
            static_cast<void>(sizeof(std::printf(__VA_ARGS__)));                                            \
            constexpr const char* logFile = brantelLog::baseName(__FILE__);                                 \
            brantelLog::writeLine(priority, logFile, __LINE__, function, tag " %s:%d (%s) - " __VA_ARGS__); \
        }                                                                                                   \
    } while (false)

#define LOG_ERROR(...) LOG_ERROR_OF(__func__, __VA_ARGS__)
// Not LOG_WARNING, which is syslog's priority.
#define LOG_WARN(...) BRANTEL_LOG_LINE(brantelLog::WARNING_THRESHOLD, LOG_WARNING, "[WARNING]", __func__, __VA_ARGS__)
#define LOG_DEBUG3(...) LOG_DEBUG3_OF(__func__, __VA_ARGS__)

// For a helper that writes a line in the name of its caller.
#define LOG_ERROR_OF(function, ...) \
    BRANTEL_LOG_LINE(brantelLog::ERROR_THRESHOLD, LOG_ERR, "[ERROR]", function, __VA_ARGS__)
#define LOG_DEBUG3_OF(function, ...) \
    BRANTEL_LOG_LINE(brantelLog::DEBUG3_THRESHOLD, LOG_DEBUG, "[DEBUG3]", function, __VA_ARGS__)

// Does not hand the condition on to ASSERT_OR_REPORT_AS: macros in it would be expanded before it becomes text.
#define ASSERT_OR_REPORT(condition) \
    brantelLog::holdsOrIsReported((condition), #condition, __FILE__, __LINE__, __PRETTY_FUNCTION__)

// For a report whose function text is fixed, byte for byte: compilers spell signatures differently.
#define ASSERT_OR_REPORT_AS(condition, functionText) \
    brantelLog::holdsOrIsReported((condition), #condition, __FILE__, __LINE__, functionText)

// For a report whose line is fixed too, wherever the check is in the file.
#define ASSERT_OR_REPORT_AT(condition, line, functionText) \
    brantelLog::holdsOrIsReported((condition), #condition, __FILE__, line, functionText)

#endif
