#ifndef APPS_COMMON_RESULT_OUTPUT_H
#define APPS_COMMON_RESULT_OUTPUT_H

// Results on standard output, line by line. Anything but a file gets each line at once, for readers of live pipes.

#include <cstdint>
#include <string>

namespace brantel {

enum class Colour { GREEN, RED, DIM };

class ResultOutput {
public:
    ResultOutput();

    /// Writes `text` and a line end. Throws CommandError.
    void writeLine(const std::string& text);

    /// Writes `text` as it is, for a terminal. Throws CommandError.
    void writeText(const std::string& text);

    /// Writes what is still buffered. Call it last. Throws CommandError.
    void finish();

    /// `text` in a colour, if standard output is a terminal with colours and NO_COLOR is not set.
    std::string coloured(Colour colour, const std::string& text) const;

private:
    bool m_isFile;
    bool m_isColoured;
};

/// "1 sample", "2 samples".
std::string counted(std::uint64_t count, const std::string& noun);

}  // namespace brantel

#endif
