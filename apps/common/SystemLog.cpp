#include "common/SystemLog.h"

#include <cstdarg>
#include <utility>

#include <syslog.h>

#include "common/PrintableText.h"

namespace brantel {
namespace {

LogWriter& logWriter()
{
    static LogWriter writer;
    return writer;
}

// vsyslog, because syslog is the command's own, which leads here.
__attribute__((format(printf, 2, 3))) void callSystemLog(int priority, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    vsyslog(priority, format, arguments);
    va_end(arguments);
}

}  // namespace

void writeLog(int priority, std::string_view text)
{
    if (!text.empty() && (text.back() == '\n')) {
        text.remove_suffix(1);
    }
    const std::string line = printable(text);
    if (logWriter()) {
        logWriter()(priority, line);
    } else {
        writeToSystemLog(priority, line);
    }
}

void writeToSystemLog(int priority, const std::string& line)
{
    callSystemLog(priority, "%s", line.c_str());
}

void setLogWriter(LogWriter writer)
{
    logWriter() = std::move(writer);
}

}  // namespace brantel
