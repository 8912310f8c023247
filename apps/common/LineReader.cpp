#include "common/LineReader.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

#include "common/CommandLine.h"

namespace {

[[noreturn]] void throwCannotRead(const std::string& name, int error)
{
    throw CommandError("cannot read " + name + ": " + std::generic_category().message(error));
}

}  // namespace

LineReader::LineReader(const std::string& path) : m_name((path == "-") ? "standard input" : path)
{
    if (path != "-") {
        m_file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        if (m_file < 0) {
            throwCannotRead(m_name, errno);
        }
    }
}

LineReader::~LineReader()
{
    if (m_file != STDIN_FILENO) {
        close(m_file);
    }
}

std::optional<std::string> LineReader::next()
{
    std::size_t searchFrom = m_begin;
    for (;;) {
        const std::size_t posEnd = m_buffer.find('\n', searchFrom);
        const std::size_t length = std::min(posEnd, m_buffer.size()) - m_begin;
        if (length > MAX_LINE_LENGTH) {
            throw CommandError(m_name + ":" + std::to_string(m_lineNumber + 1) + ": the line is longer than " +
                               std::to_string(MAX_LINE_LENGTH) + " bytes");
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
    if (m_buffer.empty()) {
        return std::nullopt;
    }
    std::string line = takeLine(m_buffer.size());
    m_buffer.clear();
    return line;
}

// Appends what can be read now to the buffer; false at the end of the input.
bool LineReader::fill()
{
    char bytes[65536];
    ssize_t count = -1;
    do {
        count = read(m_file, bytes, sizeof bytes);
    } while ((count < 0) && (errno == EINTR));
    if (count < 0) {
        throwCannotRead(m_name, errno);
    }
    m_buffer.append(bytes, static_cast<std::size_t>(count));
    return count > 0;
}

std::string LineReader::takeLine(std::size_t length)
{
    std::string line = m_buffer.substr(m_begin, length);
    ++m_lineNumber;
    if (line.find('\0') != std::string::npos) {
        throw CommandError(m_name + ":" + std::to_string(m_lineNumber) + ": the line contains a NUL byte");
    }
    if (!line.empty() && (line.back() == '\r')) {
        line.pop_back();
    }
    constexpr const char* BYTE_ORDER_MARK = "\xEF\xBB\xBF";
    if ((m_lineNumber == 1) && (line.compare(0, 3, BYTE_ORDER_MARK) == 0)) {
        line.erase(0, 3);
    }
    return line;
}
