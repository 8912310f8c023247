// The command's syslog, which takes the place of the C library's for the shared libraries too: what they log is made
// printable, and a monitor does not wait for a log that accepts nothing. Part of the program, not of a library, because
// test programs have their own syslog.

#include <cstdarg>
#include <cstdio>
#include <string>

#include <syslog.h>

#include "common/SystemLog.h"

namespace {

std::string formatted(const char* format, va_list arguments)
{
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    std::string text((length > 0) ? static_cast<std::size_t>(length) : 0, '\0');
    static_cast<void>(std::vsnprintf(text.data(), text.size() + 1, format, again));
    va_end(again);
    return text;
}

}  // namespace

// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" __attribute__((visibility("default"))) void syslog(int priority, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string text = formatted(format, arguments);
    va_end(arguments);
    brantel::writeLog(priority, text);
}

// What calls of syslog become where they are compiled with _FORTIFY_SOURCE.
// NOLINTNEXTLINE: the name and its parameters are the C library's
extern "C" __attribute__((visibility("default"), format(printf, 3, 4))) void __syslog_chk(int priority, int /*flag*/,
                                                                                          const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string text = formatted(format, arguments);
    va_end(arguments);
    brantel::writeLog(priority, text);
}
