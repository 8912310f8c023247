#ifndef APPS_COMMON_RESULT_OUTPUT_H
#define APPS_COMMON_RESULT_OUTPUT_H

// Results on standard output, line by line. What goes into anything but a file is written at once, so that a reader of
// a pipe sees each line when it happens.

#include <cstddef>
#include <cstdint>
#include <string>

enum class Colour { GREEN, RED, DIM };

class ResultOutput {
public:
    ResultOutput();

    /// Writes `text` and a line end. Throws CommandError.
    void writeLine(const std::string& text);

    /// Writes `text` as it is, for a terminal. Throws CommandError.
    void writeText(const std::string& text);

    /// Writes what is still buffered; before anything else is written, and last. Throws CommandError.
    void finish();

    /// `text` in a colour, if results are read by a person: standard output is a terminal that knows colours, and
    /// NO_COLOR is not set.
    std::string coloured(Colour colour, const std::string& text) const;

private:
    bool m_isFile;
    bool m_isColoured;
};

/// A text of unknown origin, fit for a terminal: every control character is shown as one visible character.
std::string printable(const std::string& text);

/// "1 sample", "2 samples".
std::string counted(std::uint64_t count, const std::string& noun);

/// How many characters the first `length` bytes of a UTF-8 text are.
std::size_t characterCount(const std::string& text, std::size_t length);

#endif
