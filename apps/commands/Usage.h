#ifndef APPS_COMMANDS_USAGE_H
#define APPS_COMMANDS_USAGE_H

// What applies to the whole command line, whatever a subcommand adds to it: the layout of --help, the values that no
// option takes, and the explanation of wrong arguments.

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace brantel {

/// Help for a subcommand that also lists the options of the commands above it, which it takes too.
class HelpFormatter : public CLI::Formatter {
public:
    std::string make_subcommands(const CLI::App* app, CLI::AppFormatMode mode) const override;
};

/// Makes every option and argument refuse an empty value, as from an unset variable of a script, and every option a
/// value that is an option itself. Call it after all subcommands are added.
void refuseMissingValues(CLI::App& app);

/// "--name=" without a value would take the next argument as its value. Throws CLI::ValidationError.
void refuseEmptyAssignments(const std::vector<std::string>& arguments);

/// Why `app` refused `arguments`, in one line.
std::string explainMisuse(const CLI::App& app, const std::vector<std::string>& arguments, const CLI::ParseError& error);

}  // namespace brantel

#endif
