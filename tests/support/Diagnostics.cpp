#include "support/Diagnostics.h"

#include <cstdarg>
#include <cstdio>
#include <utility>

#include <syslog.h>

namespace {

Diagnostics captured;

std::string formatted(const char* format, va_list arguments)
{
    char text[4096];
    std::vsnprintf(text, sizeof text, format, arguments);
    return text;
}

// "[TAG] file.cpp:123 (function) ..." with "#" in place of the number; other texts stay as they are.
std::string withoutLineNumber(const std::string& text)
{
    const std::size_t posColon = text.find(':');
    const std::size_t posBracket = text.find(" (", posColon);
    if ((text.compare(0, 1, "[") != 0) || (posColon == std::string::npos) || (posBracket == std::string::npos)) {
        return text;
    }
    const std::string number = text.substr(posColon + 1, posBracket - posColon - 1);
    const bool isLineNumber =
        !number.empty() && (number[0] != '0') && (number.find_first_not_of("0123456789") == std::string::npos);
    return isLineNumber ? text.substr(0, posColon + 1) + "#" + text.substr(posBracket) : text;
}

void captureReport(const char* condition, const char* file, int line, const char* function)
{
    captured.push_back((line > 0) ? assertReport(condition, file, function) : "assertion report without a line");
}

std::string taggedLine(int priority, const std::string& tag, const std::string& file, const std::string& function,
                       const std::string& format, const std::string& message)
{
    return std::to_string(priority) + " " + tag + " %s:%d (%s) - " + format + " => " + tag + " " + file + ":# (" +
           function + ") - " + message;
}

}  // namespace

// Takes the place of the C library's for the whole test program.
extern "C" __attribute__((visibility("default"))) void syslog(int priority, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string text = withoutLineNumber(formatted(format, arguments));
    va_end(arguments);
    captured.push_back(std::to_string(priority) + " " + format + " => " + text);
}

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

DiagnosticsCapture::DiagnosticsCapture(std::int32_t traceLevel)
    : m_trace(traceLevel), m_pTraceBefore(g_traceObject), m_handlerBefore(setAssertFailedHandler(captureReport))
{
    g_traceObject = &m_trace;
    captured.clear();
}

DiagnosticsCapture::~DiagnosticsCapture()
{
    setAssertFailedHandler(m_handlerBefore);
    g_traceObject = m_pTraceBefore;
}

Diagnostics DiagnosticsCapture::take()
{
    return std::exchange(captured, {});
}
