#ifndef APPS_COMMANDS_RULE_COMMANDS_H
#define APPS_COMMANDS_RULE_COMMANDS_H

#include <CLI/CLI.hpp>

#include "common/CommandLine.h"

/// Adds "rule check" and "rule eval".
void addRuleCommands(CLI::App& app, Invocation& invocation);

#endif
