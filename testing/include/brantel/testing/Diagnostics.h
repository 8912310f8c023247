#ifndef BRANTEL_TESTING_DIAGNOSTICS_H
#define BRANTEL_TESTING_DIAGNOSTICS_H

// Records what a test writes to syslog and reports through logAssertFailed: one list of texts, in the order in which it
// happened. For any test framework:
//
//     DiagnosticsCapture diagnostics(3);  // the trace level: errors
//     EXPECT_FALSE(vemorRules::isValidRule("expr=signed(value>5"));
//     EXPECT_EQ(diagnostics.take(),
//               Diagnostics{errorLine("EventMgmtRulesParsing.cpp", "parseExpression",
//                                     "Failed to find ')' character in expression = '%s'",
//                                     "Failed to find ')' character in expression = 'expr=signed(value>5'")});
//
//     text of a log line    priority, format and formatted text: "3 Fan %d => Fan 2"; in lines of the library "#" takes
//                           the place of the source line
//     text of a report      "assert CONDITION @ FILE in FUNCTION"
//
// A program that uses this replaces syslog for itself and for the shared libraries that it loads, from its start to its
// end: none of its lines reaches the system's log. Any thread may write. Lines are cut after 4095 bytes.
//
// The ports (NpuDataPortsConfiguration.h) write two lines a call unless the node's backplane segment exists:
// "brantel backplane publish" makes one, and docs/ports.md describes it.
//
// Link brantel::testing, and the library under test. It is for the stand-alone platform, whose assertion handler it
// installs; a vendor's platform need not have one.

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "trace/TraceObject.h"
#include "trace/logAssertFailed.h"

namespace brantelTesting {

using Diagnostics = std::vector<std::string>;

/// The texts of lines that the library writes at priority error, warning and debug: the base name of the source file,
/// the writing function, the message's own format, and the message as a reader sees it.
std::string errorLine(const std::string& file, const std::string& function, const std::string& format,
                      const std::string& message);
std::string warningLine(const std::string& file, const std::string& function, const std::string& format,
                        const std::string& message);
std::string debugLine(const std::string& file, const std::string& function, const std::string& format,
                      const std::string& message);

/// The text of a report: the condition that does not hold, the path of the source file in its tree, and the reporting
/// function with its signature.
std::string assertReport(const std::string& condition, const std::string& file, const std::string& function);

/// The lines of one source file, from the message's own format and arguments.
class SourceLines {
public:
    explicit SourceLines(std::string file) : m_file(std::move(file)) {}

    std::string error(const char* function, const char* format, ...) const __attribute__((format(printf, 3, 4)));
    std::string debug(const char* function, const char* format, ...) const __attribute__((format(printf, 3, 4)));

private:
    std::string m_file;
};

/// Both in order.
Diagnostics operator+(Diagnostics first, const Diagnostics& second);

/// What of `all` is written at `traceLevel`: the library's error lines above 2, warnings above 3 and debug lines above
/// 8; everything else always.
Diagnostics writtenAt(std::int32_t traceLevel, const Diagnostics& all);

/// While one lives, the trace level is the one given, and reports are recorded. At most one at a time; afterwards the
/// trace object and the handler of reports are those of before.
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

    /// As in a program that never created one: only reports are written.
    void removeTraceObject() { g_traceObject = nullptr; }

    /// What was recorded since the last call.
    Diagnostics take();

private:
    TraceObject m_trace;
    TraceObject* m_pTraceBefore;
    AssertFailedHandler m_handlerBefore;
};

}  // namespace brantelTesting

#endif
