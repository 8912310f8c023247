#ifndef APPS_COMMANDS_PORTS_COMMANDS_H
#define APPS_COMMANDS_PORTS_COMMANDS_H

#include <CLI/CLI.hpp>

#include "common/CommandLine.h"

/// Adds "ports" and "backplane" with its subcommands.
void addPortsCommands(CLI::App& app, Invocation& invocation);

#endif
