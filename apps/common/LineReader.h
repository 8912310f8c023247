#ifndef APPS_COMMON_LINE_READER_H
#define APPS_COMMON_LINE_READER_H

// Reads a file or standard input line by line, each line as soon as it is complete, so that live pipes work.

#include <cstddef>
#include <optional>
#include <string>

#include <unistd.h>

#include "common/FileDescriptor.h"

namespace brantel {

class LineReader {
public:
    /// The longest line that is read, in bytes.
    static constexpr std::size_t MAX_LINE_LENGTH = std::size_t{1} << 20U;

    /// Opens `path`; "-" is standard input. Throws CommandError.
    explicit LineReader(const std::string& path);

    /// Reads from a descriptor, which stays open; `name` is the name of the input in messages.
    LineReader(int file, const std::string& name);

    /// Ends the input also when `descriptor` becomes readable; an incomplete line is dropped then.
    void endAt(int descriptor) { m_endDescriptor = descriptor; }

    /// Whether that has happened.
    bool wasEnded() const { return m_wasEnded; }

    /// The next line without its end, LF or CRLF; nothing after the last one. A byte order mark before the first line
    /// is skipped. Throws CommandError when reading fails, for a line that is too long and for a NUL byte.
    std::optional<std::string> next();

    /// The number of the line that next returned last, from 1.
    std::size_t lineNumber() const { return m_lineNumber; }

    /// The name of the input in messages.
    const std::string& name() const { return m_name; }

private:
    bool fill();
    bool isEndReached();
    std::string takeLine(std::size_t length);
    [[noreturn]] void throwAtLine(const std::string& reason) const;

    FileDescriptor m_opened;  ///< the file, if the reader has opened it
    int m_file = STDIN_FILENO;
    std::string m_name;
    std::string m_buffer;
    std::size_t m_begin = 0;  ///< of the unread part of the buffer
    std::size_t m_lineNumber = 0;
    int m_endDescriptor = -1;
    bool m_wasEnded = false;
};

}  // namespace brantel

#endif
