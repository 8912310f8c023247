#ifndef TESTS_SUPPORT_DIAGNOSTICS_H
#define TESTS_SUPPORT_DIAGNOSTICS_H

// Captures what the library writes to syslog and reports through logAssertFailed, as one list of texts in the order in
// which it happened. Lines show priority, format and formatted text; "#" stands for the source line.

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "trace/TraceObject.h"
#include "trace/logAssertFailed.h"

using Diagnostics = std::vector<std::string>;

// Expected texts of lines: the message's own format, and the message as a reader sees it.
std::string errorLine(const std::string& file, const std::string& function, const std::string& format,
                      const std::string& message);
std::string warningLine(const std::string& file, const std::string& function, const std::string& format,
                        const std::string& message);
std::string debugLine(const std::string& file, const std::string& function, const std::string& format,
                      const std::string& message);
std::string assertReport(const std::string& condition, const std::string& file, const std::string& function);

// While one lives, syslog lines and assertion reports are captured and the trace level is the one given.
class DiagnosticsCapture {
public:
    explicit DiagnosticsCapture(std::int32_t traceLevel);
    ~DiagnosticsCapture();
    DiagnosticsCapture(const DiagnosticsCapture&) = delete;
    DiagnosticsCapture& operator=(const DiagnosticsCapture&) = delete;

    void setTraceLevel(std::int32_t traceLevel) { m_trace.setTraceLevel(traceLevel); }
    void removeTraceObject() { g_traceObject = nullptr; }

    /// What was captured since the last call.
    Diagnostics take();

private:
    TraceObject m_trace;
    TraceObject* m_pTraceBefore;
    AssertFailedHandler m_handlerBefore;
};

class DiagnosticsTest : public ::testing::Test {
protected:
    static constexpr std::int32_t ERRORS_ONLY = 3;
    static constexpr std::int32_t EVERYTHING = 9;

    DiagnosticsCapture m_diagnostics{ERRORS_ONLY};
};

#endif
