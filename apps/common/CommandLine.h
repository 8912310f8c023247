#ifndef APPS_COMMON_COMMAND_LINE_H
#define APPS_COMMON_COMMAND_LINE_H

// The seam between the command and its groups of subcommands: a group adds its subcommands to the command line, and the
// one that the user chooses puts its work into the Invocation. main runs it after the trace is set up.

#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace brantel {

enum ExitCode : int {
    EXIT_FINE = 0,
    EXIT_NEGATIVE_ANSWER = 1,  ///< refused, not found or not done
    EXIT_UNUSABLE = 2          ///< misuse, or input or output that cannot be used
};

struct Invocation {
    std::vector<std::string> arguments;  ///< as passed by the shell
    std::function<ExitCode()> run;
};

/// Ends a subcommand with EXIT_UNUSABLE. The reason is one line about what is wrong with the input, output or
/// arguments; the details are further lines.
class CommandError : public std::runtime_error {
public:
    explicit CommandError(const std::string& reason, std::vector<std::string> details = {})
        : std::runtime_error(reason), m_details(std::move(details))
    {
    }

    const std::vector<std::string>& details() const { return m_details; }

private:
    std::vector<std::string> m_details;
};

}  // namespace brantel

#endif
