#include "common/LineReader.h"

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include "common/CommandLine.h"

namespace brantel {
namespace {

constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";

// The parts of the input that do not belong to a line.
constexpr std::size_t MAX_EXTRA_LENGTH = BYTE_ORDER_MARK.size() + std::string_view("\r").size();

std::string tooLong()
{
    return "the line is longer than " + std::to_string(LineReader::MAX_LINE_LENGTH) + " bytes";
}

[[noreturn]] void throwCannotRead(const std::string& name, int error)
{
    throw CommandError("cannot read " + name + ": " + std::generic_category().message(error));
}

}  // namespace

LineReader::LineReader(const std::string& path) : m_name((path == "-") ? "standard input" : path)
{
    if (path != "-") {
        m_opened = FileDescriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
        m_file = m_opened.number();
        if (m_file < 0) {
            throwCannotRead(m_name, errno);
        }
    }
}

LineReader::LineReader(int file, const std::string& name) : m_file(file), m_name(name) {}

std::optional<std::string> LineReader::next()
{
    std::size_t searchFrom = m_begin;
    for (;;) {
        const std::size_t posEnd = m_buffer.find('\n', searchFrom);
        const std::size_t length = std::min(posEnd, m_buffer.size()) - m_begin;
        if (length > MAX_LINE_LENGTH + MAX_EXTRA_LENGTH) {
            ++m_lineNumber;
            throwAtLine(tooLong());
        }
        if (posEnd != std::string::npos) {
            std::string line = takeLine(length);
            m_begin = posEnd + 1;
            return line;
        }
        m_buffer.erase(0, m_begin);
        m_begin = 0;
        searchFrom = m_buffer.size();
        if (!fill()) {
            break;
        }
    }
    if (m_buffer.empty() || m_wasEnded) {
        return std::nullopt;
    }
    std::string line = takeLine(m_buffer.size());
    m_buffer.clear();
    return line;
}

// Appends what can be read to the buffer; false at the end of the input.
bool LineReader::fill()
{
    char bytes[65536];
    ssize_t count = -1;
    do {
        if (isEndReached()) {
            m_wasEnded = true;
            return false;
        }
        count = ::read(m_file, bytes, sizeof bytes);
    } while ((count < 0) && (errno == EINTR));
    if (count < 0) {
        throwCannotRead(m_name, errno);
    }
    m_buffer.append(bytes, static_cast<std::size_t>(count));
    return count > 0;
}

// Waits until there is something to read, or a reason to end.
bool LineReader::isEndReached()
{
    if (m_endDescriptor < 0) {
        return false;
    }
    pollfd files[] = {{m_endDescriptor, POLLIN, 0}, {m_file, POLLIN, 0}};
    while ((::poll(files, 2, -1) < 0) && (errno == EINTR)) {
    }
    return files[0].revents != 0;
}

std::string LineReader::takeLine(std::size_t length)
{
    std::string line = m_buffer.substr(m_begin, length);
    ++m_lineNumber;
    if (line.find('\0') != std::string::npos) {
        throwAtLine("the line contains a NUL byte");
    }
    if (!line.empty() && (line.back() == '\r')) {
        line.pop_back();
    }
    if ((m_lineNumber == 1) && (line.compare(0, BYTE_ORDER_MARK.size(), BYTE_ORDER_MARK) == 0)) {
        line.erase(0, BYTE_ORDER_MARK.size());
    }
    if (line.size() > MAX_LINE_LENGTH) {
        throwAtLine(tooLong());
    }
    return line;
}

void LineReader::throwAtLine(const std::string& reason) const
{
    throw CommandError(m_name + ":" + std::to_string(m_lineNumber) + ": " + reason);
}

}  // namespace brantel
