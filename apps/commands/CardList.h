#ifndef APPS_COMMANDS_CARD_LIST_H
#define APPS_COMMANDS_CARD_LIST_H

// "brantel card list": which slots are served, and by what. "brantel card objects": the table of objects.

#include "common/CommandLine.h"

namespace brantel {

/// EXIT_NEGATIVE_ANSWER if no slot is served.
ExitCode listCards(bool isJson);

ExitCode listObjects(bool isJson);

}  // namespace brantel

#endif
