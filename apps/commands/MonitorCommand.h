#ifndef APPS_COMMANDS_MONITOR_COMMAND_H
#define APPS_COMMANDS_MONITOR_COMMAND_H

#include <CLI/CLI.hpp>

#include "common/CommandLine.h"

/// Adds 'monitor' to the command line.
void addMonitorCommand(CLI::App& app, Invocation& invocation);

#endif
