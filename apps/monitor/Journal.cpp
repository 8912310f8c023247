#include "monitor/Journal.h"

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "common/CommandLine.h"
#include "common/ReplacedFile.h"
#include "monitor/Event.h"

namespace brantel {
namespace {

constexpr std::size_t FIRST_TAIL_SIZE = 65536;

// How every line starts.
constexpr std::string_view LINE_START = "{\"event\":";

// A pipe or a device must neither block the monitor nor become its terminal.
constexpr int OPEN_FLAGS = O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

[[noreturn]] void throwCannotDo(const std::string& verb, const std::string& path)
{
    const std::string reason =
        (errno == EAGAIN) ? "it is full, and its reader does not keep up" : std::generic_category().message(errno);
    throw CommandError("cannot " + verb + " '" + path + "': " + reason);
}

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

bool isRegularFile(int file)
{
    struct stat status = {};
    return (::fstat(file, &status) == 0) && S_ISREG(status.st_mode);
}

bool isDevice(int file)
{
    struct stat status = {};
    return (::fstat(file, &status) == 0) && S_ISCHR(status.st_mode);
}

// The end of the file: whole lines up to `wholeSize`, then a part to be removed or a line to be ended.
struct JournalEnd {
    std::size_t size;                   ///< of the file
    std::size_t wholeSize;              ///< of its whole lines
    std::size_t lineSize;               ///< of the complete line without a line end after them; 0: there is none
    std::optional<Event> lastEvent;     ///< of the whole lines
    std::optional<Event> unendedEvent;  ///< of the line without an end
};

// Reads the end of a journal, from as far back as needed to find a whole line.
class EndReader {
public:
    EndReader(int file, const std::string& path) : m_file(file), m_path(path), m_size(sizeOf(file)) {}

    JournalEnd read()
    {
        for (std::size_t tailSize = FIRST_TAIL_SIZE; !isEnough(); tailSize *= 2) {
            m_tailSize = std::min(m_size, tailSize);
            m_text = tail();
            // A power failure may leave NULs in place of the last blocks.
            m_text.erase(m_text.find_last_not_of('\0') + 1);
        }
        const std::size_t posTorn = m_text.rfind('\n') + 1;  // 0 if there is no line end
        const std::string torn = m_text.substr(posTorn);
        std::string lastLine = m_text.substr(0, posTorn);
        if (!lastLine.empty()) {
            lastLine.pop_back();
            lastLine.erase(0, lastLine.rfind('\n') + 1);
        }
        JournalEnd end{m_size, m_size - m_tailSize + posTorn, 0, parseEvent(lastLine), parseEvent(torn)};
        end.lineSize = end.unendedEvent ? torn.size() : 0;
        const bool isAllNul = (m_tailSize > 0) && m_text.empty();
        if (((posTorn > 0) && !end.lastEvent) || !isStartOfLine(torn) || isAllNul) {
            throw CommandError("'" + m_path +
                               "' is not a journal, because its last line is not an event with a number "
                               "from 1 to " +
                               std::to_string(MAX_EVENT_NUMBER) + ": name another file, or move this one away");
        }
        return end;
    }

private:
    bool isEnough() const
    {
        const std::size_t posLastEnd = m_text.rfind('\n');
        const bool hasWholeLine = (posLastEnd != std::string::npos) && (posLastEnd > 0) &&
                                  (m_text.rfind('\n', posLastEnd - 1) != std::string::npos);
        return (m_tailSize == m_size) || hasWholeLine;
    }

    std::string tail() const
    {
        std::string text(m_tailSize, '\0');
        std::size_t done = 0;
        while (done < m_tailSize) {
            const ssize_t count =
                ::pread(m_file, &text[done], m_tailSize - done, static_cast<off_t>(m_size - m_tailSize + done));
            if ((count < 0) && (errno == EINTR)) {
                continue;
            }
            if (count <= 0) {
                throwCannotDo("read", m_path);
            }
            done += static_cast<std::size_t>(count);
        }
        return text;
    }

    const int m_file;
    const std::string& m_path;
    const std::size_t m_size;
    std::size_t m_tailSize = 0;
    std::string m_text;
};

}  // namespace

Journal::Journal(const std::string& path)
    : m_path(path), m_file(::open(path.c_str(), O_RDWR | O_APPEND | O_CREAT | OPEN_FLAGS, 0644))
{
    if (m_file.number() < 0) {
        throwCannot("open");
    }
    // A device such as /dev/null is shared.
    if (!isDevice(m_file.number()) && (::flock(m_file.number(), LOCK_EX | LOCK_NB) != 0)) {
        throw CommandError("'" + path + "' is in use by another monitor");
    }
    m_isRegular = isRegularFile(m_file.number());
    if (m_isRegular) {
        repair();
    }
}

std::uint64_t Journal::inspect(const std::string& path)
{
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | OPEN_FLAGS));
    if ((file.number() < 0) && (errno != ENOENT)) {
        throwCannotDo("open", path);
    }
    if (!isRegularFile(file.number())) {
        return 0;
    }
    const JournalEnd end = EndReader(file.number(), path).read();
    const std::optional<Event>& last = end.unendedEvent ? end.unendedEvent : end.lastEvent;
    return last ? last->number : 0;
}

// Ends or removes an incomplete last line; finds the number of the last event.
void Journal::repair()
{
    const JournalEnd end = EndReader(m_file.number(), m_path).read();
    const std::size_t keptSize = end.wholeSize + end.lineSize;
    if ((keptSize < end.size) && (::ftruncate(m_file.number(), static_cast<off_t>(keptSize)) != 0)) {
        throwCannot("repair");
    }
    m_lastEvent = end.lastEvent ? end.lastEvent->number : 0;
    if (end.unendedEvent) {
        append(end.unendedEvent->number, "");
    }
}

void Journal::append(std::uint64_t number, const std::string& line)
{
    const std::string text = line + "\n";
    if (m_isRegular) {
        appendToFile(text);
    } else {
        completeLine();
        const ssize_t written = ::write(m_file.number(), text.data(), text.size());
        if (written <= 0) {
            throwCannot("write");
        }
        m_rest = text.substr(static_cast<std::size_t>(written));
    }
    m_lastEvent = number;
}

void Journal::appendToFile(const std::string& text)
{
    const std::size_t size = m_tornAt.value_or(sizeOf(m_file.number()));
    if (m_tornAt && (::ftruncate(m_file.number(), static_cast<off_t>(size)) != 0)) {
        throwCannot("repair");
    }
    m_tornAt.reset();
    if (const int error = writeAll(m_file.number(), text)) {
        if (::ftruncate(m_file.number(), static_cast<off_t>(size)) != 0) {
            m_tornAt = size;
        }
        errno = error;
        throwCannot("write");
    }
}

void Journal::completeLine()
{
    while (!m_rest.empty()) {
        const ssize_t written = ::write(m_file.number(), m_rest.data(), m_rest.size());
        if (written <= 0) {
            throwCannot("write");
        }
        m_rest.erase(0, static_cast<std::size_t>(written));
    }
}

void Journal::synchronise()
{
    // EINVAL: a pipe or a device, which cannot be synchronised.
    if ((::fdatasync(m_file.number()) != 0) && (errno != EINVAL)) {
        throwCannot("synchronise");
    }
}

void Journal::throwCannot(const std::string& verb) const
{
    throwCannotDo(verb, m_path);
}

}  // namespace brantel
