#ifndef APPS_COMMANDS_COMMANDS_H
#define APPS_COMMANDS_COMMANDS_H

// The groups of subcommands. Each function adds its group to the command line; the subcommand that the user chooses
// puts its work into the invocation.

#include <CLI/CLI.hpp>

#include "common/CommandLine.h"

namespace brantel {

/// "rule check" and "rule eval"
void addRuleCommands(CLI::App& app, Invocation& invocation);

/// "card" with its subcommands, "get", "set" and "watch"
void addCardCommands(CLI::App& app, Invocation& invocation);

/// "db" with its subcommands
void addDbCommands(CLI::App& app, Invocation& invocation);

/// "monitor"
void addMonitorCommand(CLI::App& app, Invocation& invocation);

/// "ports", and "backplane" with its subcommands
void addPortsCommands(CLI::App& app, Invocation& invocation);

}  // namespace brantel

#endif
