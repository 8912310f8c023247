#ifndef APPS_COMMON_COMMAND_LINE_H
#define APPS_COMMON_COMMAND_LINE_H

// The seam between the command and its groups of subcommands: a group adds its subcommands to the command line, and the
// one that the user names puts what it does into the Invocation. main runs it once the trace is set up.

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

/// What the shell sees.
enum ExitCode : int {
    EXIT_FINE = 0,
    EXIT_NEGATIVE_ANSWER = 1,  ///< what was asked about is refused
    EXIT_UNUSABLE = 2          ///< misuse, or input or output that can not be used
};

struct Invocation {
    std::vector<std::string> arguments;  ///< as the shell gave them
    std::function<ExitCode()> run;
};

/// Ends a subcommand with EXIT_UNUSABLE; the text says to the user what is wrong with the input, output or arguments.
class CommandError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

#endif
