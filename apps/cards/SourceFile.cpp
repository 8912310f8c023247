#include "cards/SourceFile.h"

#include <algorithm>
#include <cstdint>
#include <optional>

#include <sys/stat.h>

#include "common/CommandLine.h"
#include "common/LineReader.h"
#include "common/PrintableText.h"

namespace brantel {
namespace {

constexpr std::size_t MAX_TEXT_SIZE = std::size_t{1} << 20U;

bool isControl(char character)
{
    const auto byte = static_cast<unsigned char>(character);
    return ((byte < 0x20) && (character != '\t')) || (byte == 0x7F);
}

// Where the line has something that does not belong into a text.
std::optional<std::size_t> positionOfFault(const std::string& line)
{
    const auto control = std::find_if(line.begin(), line.end(), isControl);
    const auto fault = std::min(static_cast<std::size_t>(control - line.begin()), utf8Length(line));
    return (fault < line.size()) ? std::optional(fault) : std::nullopt;
}

}  // namespace

void checkSourceFile(const std::string& path, std::size_t maxSize)
{
    struct stat status = {};
    if ((path == "-") || (::stat(path.c_str(), &status) != 0) || S_ISDIR(status.st_mode)) {
        return;
    }
    if (!S_ISREG(status.st_mode)) {
        throw CommandError(path + ": not a regular file");
    }
    if (static_cast<std::uintmax_t>(status.st_size) > maxSize) {
        throw CommandError(path + ": larger than " + std::to_string(maxSize) + " bytes");
    }
}

std::string wholeText(const std::string& path)
{
    checkSourceFile(path, MAX_TEXT_SIZE);
    LineReader lines(path);
    std::string text;
    while (const std::optional<std::string> line = lines.next()) {
        if (const std::optional<std::size_t> fault = positionOfFault(*line)) {
            throw CommandError(path + ":" + std::to_string(lines.lineNumber()) + ":" +
                               std::to_string(characterCount(*line, *fault) + 1) +
                               ": a control character, or bytes that are not UTF-8");
        }
        text += *line + '\n';
    }
    return text;
}

}  // namespace brantel
