#ifndef APPS_COMMON_LINE_READER_H
#define APPS_COMMON_LINE_READER_H

// Reads a file or standard input line by line, each line as soon as it is there, so that a live pipe works.

#include <cstddef>
#include <optional>
#include <string>

class LineReader {
public:
    /// The longest line that is read, in bytes.
    static constexpr std::size_t MAX_LINE_LENGTH = std::size_t{1} << 20U;

    /// Opens `path`; "-" is standard input. Throws CommandError.
    explicit LineReader(const std::string& path);
    ~LineReader();
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    /// The next line without its end, LF or CRLF; nothing after the last one. A byte order mark before the first line
    /// is left out. Throws CommandError when reading fails, for a line that is too long and for a NUL byte.
    std::optional<std::string> next();

    /// The number of the line that next returned last, from 1.
    std::size_t lineNumber() const { return m_lineNumber; }

    /// What to call the input in messages.
    const std::string& name() const { return m_name; }

private:
    bool fill();
    std::string takeLine(std::size_t length);

    int m_file = 0;  ///< standard input, unless a file is opened
    std::string m_name;
    std::string m_buffer;
    std::size_t m_begin = 0;  ///< of what is still to be taken from the buffer
    std::size_t m_lineNumber = 0;
};

#endif
