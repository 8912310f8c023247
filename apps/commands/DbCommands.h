#ifndef APPS_COMMANDS_DB_COMMANDS_H
#define APPS_COMMANDS_DB_COMMANDS_H

#include <CLI/CLI.hpp>

#include "common/CommandLine.h"

/// Adds "db" with its subcommands.
void addDbCommands(CLI::App& app, Invocation& invocation);

#endif
