#include "brantel/testing/Diagnostics.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <iterator>
#include <mutex>
#include <string_view>
#include <utility>

#include <syslog.h>

namespace brantelTesting {
namespace {

// What every line of the library starts with, after its tag.
constexpr std::string_view PREFIX = " %s:%d (%s) - ";

std::mutex capturedMutex;
Diagnostics captured;

void capture(std::string text)
{
    const std::lock_guard<std::mutex> lock(capturedMutex);
    captured.push_back(std::move(text));
}

std::string formatted(const char* format, va_list arguments)
{
    char text[4096];
    static_cast<void>(std::vsnprintf(text, sizeof text, format, arguments));
    return text;
}

void captureReport(const char* condition, const char* file, int line, const char* function)
{
    capture((line > 0) ? assertReport(condition, file, function) : "assertion report without a line");
}

std::string taggedText(const std::string& tag, const std::string& file, const std::string& function,
                       const std::string& message)
{
    return tag + " " + file + ":# (" + function + ") - " + message;
}

std::string capturedLine(int priority, const std::string& format, const std::string& text)
{
    return std::to_string(priority) + " " + format + " => " + text;
}

std::string taggedLine(int priority, const std::string& tag, const std::string& file, const std::string& function,
                       const std::string& format, const std::string& message)
{
    return capturedLine(priority, tag + std::string(PREFIX) + format, taggedText(tag, file, function, message));
}

bool startsWith(const std::string& text, const std::string& start)
{
    return text.compare(0, start.size(), start) == 0;
}

// A call of syslog. Lines of the library are recorded without their source line.
void captureLine(int priority, const char* format, va_list arguments)
{
    const std::string formatText = format;
    const std::size_t posPrefix = formatText.find(PREFIX);
    std::string text;
    if (posPrefix == std::string::npos) {
        text = formatted(format, arguments);
    } else {
        const char* const file = va_arg(arguments, const char*);
        const int line = va_arg(arguments, int);
        const char* const function = va_arg(arguments, const char*);
        const std::string message = formatted(format + posPrefix + PREFIX.size(), arguments);
        text = (line > 0) ? taggedText(formatText.substr(0, posPrefix), file, function, message)
                          : "line without a source line";
    }
    capture(capturedLine(priority, formatText, text));
}

}  // namespace

std::string errorLine(const std::string& file, const std::string& function, const std::string& format,
                      const std::string& message)
{
    return taggedLine(LOG_ERR, "[ERROR]", file, function, format, message);
}

std::string warningLine(const std::string& file, const std::string& function, const std::string& format,
                        const std::string& message)
{
    return taggedLine(LOG_WARNING, "[WARNING]", file, function, format, message);
}

std::string debugLine(const std::string& file, const std::string& function, const std::string& format,
                      const std::string& message)
{
    return taggedLine(LOG_DEBUG, "[DEBUG3]", file, function, format, message);
}

std::string assertReport(const std::string& condition, const std::string& file, const std::string& function)
{
    return "assert " + condition + " @ " + file + " in " + function;
}

std::string SourceLines::error(const char* function, const char* format, ...) const
{
    va_list arguments;
    va_start(arguments, format);
    const std::string message = formatted(format, arguments);
    va_end(arguments);
    return errorLine(m_file, function, format, message);
}

std::string SourceLines::debug(const char* function, const char* format, ...) const
{
    va_list arguments;
    va_start(arguments, format);
    const std::string message = formatted(format, arguments);
    va_end(arguments);
    return debugLine(m_file, function, format, message);
}

Diagnostics operator+(Diagnostics first, const Diagnostics& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

Diagnostics writtenAt(std::int32_t traceLevel, const Diagnostics& all)
{
    Diagnostics written;
    std::copy_if(all.begin(), all.end(), std::back_inserter(written), [traceLevel](const std::string& text) {
        const bool isError = startsWith(text, "3 [ERROR]");
        const bool isWarning = startsWith(text, "4 [WARNING]");
        const bool isDebug = startsWith(text, "7 [DEBUG3]");
        return isError ? (traceLevel > 2) : isWarning ? (traceLevel > 3) : isDebug ? (traceLevel > 8) : true;
    });
    return written;
}

DiagnosticsCapture::DiagnosticsCapture(std::int32_t traceLevel)
    : m_trace(traceLevel), m_pTraceBefore(g_traceObject), m_handlerBefore(setAssertFailedHandler(captureReport))
{
    g_traceObject = &m_trace;
    take();
}

DiagnosticsCapture::~DiagnosticsCapture()
{
    setAssertFailedHandler(m_handlerBefore);
    g_traceObject = m_pTraceBefore;
}

Diagnostics DiagnosticsCapture::take()
{
    const std::lock_guard<std::mutex> lock(capturedMutex);
    return std::exchange(captured, {});
}

}  // namespace brantelTesting

// Replaces the C library's in the whole test program.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" __attribute__((visibility("default"))) void syslog(int priority, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    brantelTesting::captureLine(priority, format, arguments);
    va_end(arguments);
}

// What calls of syslog become where they are compiled with _FORTIFY_SOURCE.
// NOLINTNEXTLINE: the name and its parameters are the C library's
extern "C" __attribute__((visibility("default"), format(printf, 3, 4))) void __syslog_chk(int priority, int /*flag*/,
                                                                                          const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    brantelTesting::captureLine(priority, format, arguments);
    va_end(arguments);
}
