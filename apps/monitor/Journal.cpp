#include "monitor/Journal.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "common/CommandLine.h"
#include "common/ReplacedFile.h"
#include "monitor/Event.h"

namespace {

constexpr std::size_t FIRST_TAIL_SIZE = 65536;

// How every line starts.
constexpr std::string_view LINE_START = "{\"event\":";

bool isStartOfLine(const std::string& text)
{
    const std::size_t length = std::min(text.size(), LINE_START.size());
    return text.compare(0, length, LINE_START, 0, length) == 0;
}

std::size_t sizeOf(int file)
{
    struct stat status = {};
    return (::fstat(file, &status) == 0) ? static_cast<std::size_t>(status.st_size) : 0;
}

}  // namespace

Journal::Journal(const std::string& path)
    : m_path(path), m_file(::open(path.c_str(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC, 0644))
{
    if (m_file < 0) {
        throwCannot("open");
    }
    try {
        if (::flock(m_file, LOCK_EX | LOCK_NB) != 0) {
            throw CommandError("'" + path + "' is in use by another monitor");
        }
        repair();
    } catch (const CommandError&) {
        ::close(m_file);
        throw;
    }
}

Journal::~Journal()
{
    ::close(m_file);
}

void Journal::append(std::uint64_t number, const std::string& line)
{
    const std::size_t size = sizeOf(m_file);
    if (!writeAll(m_file, line + "\n")) {
        const int error = errno;
        static_cast<void>(::ftruncate(m_file, static_cast<off_t>(size)));
        errno = error;
        throwCannot("write");
    }
    m_lastEvent = number;
}

void Journal::synchronise()
{
    // EINVAL: not a file that can be synchronised, but a pipe or a device.
    if ((::fdatasync(m_file) != 0) && (errno != EINVAL)) {
        throwCannot("synchronise");
    }
}

// Ends the last line, or takes it away if it is not whole; finds the number of the last event.
void Journal::repair()
{
    const std::size_t size = sizeOf(m_file);
    std::size_t tailSize = std::min(size, FIRST_TAIL_SIZE);
    std::string text = tail(tailSize);
    const auto hasWholeLine = [&] {
        const std::size_t posLastEnd = text.rfind('\n');
        return (tailSize == size) || ((posLastEnd != std::string::npos) && (posLastEnd > 0) &&
                                      (text.rfind('\n', posLastEnd - 1) != std::string::npos));
    };
    while (!hasWholeLine()) {
        tailSize = std::min(size, 2 * tailSize);
        text = tail(tailSize);
    }

    const std::size_t posTorn = text.rfind('\n') + 1;  // 0 if there is no line end
    const std::string torn = text.substr(posTorn);
    std::string lastLine = text.substr(0, posTorn);
    if (!lastLine.empty()) {
        lastLine.pop_back();
        lastLine.erase(0, lastLine.rfind('\n') + 1);
    }
    const std::optional<Event> lastEvent = eventOfJsonLine(lastLine);
    const std::optional<Event> unendedEvent = eventOfJsonLine(torn);
    if (((posTorn > 0) && !lastEvent) || !isStartOfLine(torn)) {
        throw CommandError("'" + m_path + "' is no journal: its last line is no event");
    }
    m_lastEvent = lastEvent ? lastEvent->number : 0;
    if (unendedEvent) {
        append(unendedEvent->number, "");
    } else if (!torn.empty() && (::ftruncate(m_file, static_cast<off_t>(size - torn.size())) != 0)) {
        throwCannot("repair");
    }
}

std::string Journal::tail(std::size_t size) const
{
    std::string text(size, '\0');
    const auto start = static_cast<off_t>(sizeOf(m_file) - size);
    std::size_t done = 0;
    while (done < size) {
        const ssize_t count = ::pread(m_file, &text[done], size - done, start + static_cast<off_t>(done));
        if ((count < 0) && (errno == EINTR)) {
            continue;
        }
        if (count <= 0) {
            throwCannot("read");
        }
        done += static_cast<std::size_t>(count);
    }
    return text;
}

void Journal::throwCannot(const std::string& verb) const
{
    throw CommandError("cannot " + verb + " '" + m_path + "': " + std::generic_category().message(errno));
}
