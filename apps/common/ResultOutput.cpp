#include "common/ResultOutput.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

#include "common/CommandLine.h"

namespace brantel {
namespace {

bool isRegularFile(int file)
{
    struct stat status = {};
    return (::fstat(file, &status) == 0) && S_ISREG(status.st_mode);
}

bool isSet(const char* variable)
{
    const char* const value = std::getenv(variable);
    return (value != nullptr) && (*value != '\0');
}

bool isColourTerminal(int file)
{
    const char* const terminal = std::getenv("TERM");
    return (isatty(file) != 0) && !isSet("NO_COLOR") && (terminal != nullptr) && (std::string(terminal) != "dumb");
}

void throwUnless(bool isWritten)
{
    if (!isWritten) {
        throw CommandError("cannot write to standard output: " + std::generic_category().message(errno));
    }
}

}  // namespace

ResultOutput::ResultOutput() : m_isFile(isRegularFile(STDOUT_FILENO)), m_isColoured(isColourTerminal(STDOUT_FILENO)) {}

void ResultOutput::writeText(const std::string& text)
{
    throwUnless(std::fwrite(text.data(), 1, text.size(), stdout) == text.size());
}

void ResultOutput::writeLine(const std::string& text)
{
    writeText(text);
    throwUnless(std::fputc('\n', stdout) != EOF);
    if (!m_isFile) {
        finish();
    }
}

void ResultOutput::finish()
{
    throwUnless(std::fflush(stdout) == 0);
}

std::string ResultOutput::coloured(Colour colour, const std::string& text) const
{
    if (!m_isColoured) {
        return text;
    }
    const char* start = "\x1b[2m";
    switch (colour) {
        case Colour::GREEN: start = "\x1b[32m"; break;
        case Colour::RED: start = "\x1b[31m"; break;
        case Colour::DIM: break;
    }
    return start + text + "\x1b[0m";
}

std::string counted(std::uint64_t count, const std::string& noun)
{
    return std::to_string(count) + " " + noun + ((count == 1) ? "" : "s");
}

}  // namespace brantel
