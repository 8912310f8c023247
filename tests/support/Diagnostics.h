#ifndef TESTS_SUPPORT_DIAGNOSTICS_H
#define TESTS_SUPPORT_DIAGNOSTICS_H

// Captures what the library writes to syslog and reports through logAssertFailed, as one list of texts in the order in
// which it happened. Lines show priority, format and formatted text; "#" replaces the source line. Any thread may
// write.

#include <cstdint>
#include <string>
#include <utility>
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

// The lines of one source file, expected with the message's own format and arguments.
class SourceLines {
public:
    explicit SourceLines(std::string file) : m_file(std::move(file)) {}

    std::string error(const char* function, const char* format, ...) const __attribute__((format(printf, 3, 4)));
    std::string debug(const char* function, const char* format, ...) const __attribute__((format(printf, 3, 4)));

private:
    std::string m_file;
};

// Both in order.
Diagnostics operator+(Diagnostics first, const Diagnostics& second);

// What of `all` is written at `traceLevel`: error lines above 2, warnings above 3, debug lines above 8, reports always.
Diagnostics writtenAt(std::int32_t traceLevel, const Diagnostics& all);

// While one lives, syslog lines and assertion reports are captured and the trace level is the one given.
class DiagnosticsCapture {
public:
    explicit DiagnosticsCapture(std::int32_t traceLevel);
    ~DiagnosticsCapture();
    DiagnosticsCapture(const DiagnosticsCapture&) = delete;
    DiagnosticsCapture& operator=(const DiagnosticsCapture&) = delete;

    void setTraceLevel(std::int32_t traceLevel)
    {
        m_trace.setTraceLevel(traceLevel);
        g_traceObject = &m_trace;
    }
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

    // Acts once without a trace object and once at a trace level on either side of every threshold. Each time the
    // outcome must be `outcome` and the diagnostics those of `all` that the level lets through. Ends at ERRORS_ONLY.
    template <typename Action, typename Outcome>
    void expectAtEveryTraceLevel(Action act, const Outcome& outcome, const Diagnostics& all)
    {
        m_diagnostics.take();
        {
            SCOPED_TRACE("no trace object");
            m_diagnostics.removeTraceObject();
            EXPECT_EQ(act(), outcome);
            EXPECT_EQ(m_diagnostics.take(), writtenAt(0, all));
        }
        for (const std::int32_t level : {INT32_MIN, 0, 2, 3, 4, 8, 9, INT32_MAX}) {
            SCOPED_TRACE("trace level " + std::to_string(level));
            m_diagnostics.setTraceLevel(level);
            EXPECT_EQ(act(), outcome);
            EXPECT_EQ(m_diagnostics.take(), writtenAt(level, all));
        }
        m_diagnostics.setTraceLevel(ERRORS_ONLY);
    }

    DiagnosticsCapture m_diagnostics{ERRORS_ONLY};
};

#endif
