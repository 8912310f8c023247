#ifndef APPS_COMMANDS_CARD_COMMANDS_H
#define APPS_COMMANDS_CARD_COMMANDS_H

#include <CLI/CLI.hpp>

#include "common/CommandLine.h"

/// Adds "card" with "card list", "card objects" and "card keys", and "get", "set" and "watch".
void addCardCommands(CLI::App& app, Invocation& invocation);

#endif
