#include "monitor/MonitorStreams.h"

#include <system_error>

#include <syslog.h>
#include <unistd.h>

#include "common/CommandLine.h"
#include "common/FileDescriptor.h"
#include "common/Message.h"
#include "common/ResultOutput.h"
#include "common/SystemLog.h"

namespace brantel {
namespace {

// How many bytes may wait for the reader of a stream.
constexpr std::size_t QUEUE_SIZE = std::size_t{1} << 20U;

// How long readers may take for the rest when the monitor ends.
constexpr std::chrono::seconds FINISH_TIME{1};

OutputQueue::Write writerTo(int file)
{
    return [file](const OutputQueue::Item& item) { return writeAll(file, item.text); };
}

int writeToLog(const OutputQueue::Item& item)
{
    writeToSystemLog(item.priority, item.text);
    return 0;
}

OutputQueue::Item droppedEvents(std::uint64_t count)
{
    return {counted(count, "event") + " not shown: standard output was not read\n"};
}

OutputQueue::Item droppedEventsAsJson(std::uint64_t count)
{
    return {"{\"omitted\":" + std::to_string(count) + ",\"reason\":\"standard output was not read\"}\n"};
}

OutputQueue::Item droppedMessages(std::uint64_t count)
{
    return {messageLine(counted(count, "message") + " not shown: standard error was not read")};
}

OutputQueue::Item droppedLogLines(std::uint64_t count)
{
    return {counted(count, "line") + " not logged: the log was blocked", LOG_WARNING};
}

}  // namespace

MonitorStreams::MonitorStreams(bool isJson)
    : m_output(QUEUE_SIZE, writerTo(STDOUT_FILENO), isJson ? droppedEventsAsJson : droppedEvents),
      m_diagnostics(QUEUE_SIZE, writerTo(STDERR_FILENO), droppedMessages),
      m_log(QUEUE_SIZE, writeToLog, droppedLogLines)
{
    setMessageWriter([this](const std::string& line) { m_diagnostics.put({line}); });
    setLogWriter([this](int priority, const std::string& line) { m_log.put({line, priority}); });
}

MonitorStreams::~MonitorStreams()
{
    const Clock::time_point deadline = m_finishBy.value_or(Clock::now() + FINISH_TIME);
    m_output.finish(deadline);
    m_diagnostics.finish(deadline);
    m_log.finish(deadline);
    setMessageWriter({});
    setLogWriter({});
}

void MonitorStreams::requireOutput() const
{
    if (const int error = m_output.error()) {
        throw CommandError("cannot write to standard output: " + std::generic_category().message(error));
    }
}

void MonitorStreams::finishOutput()
{
    m_finishBy = Clock::now() + FINISH_TIME;
    m_output.finish(*m_finishBy);
    requireOutput();
}

}  // namespace brantel
