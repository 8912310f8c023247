#ifndef APPS_COMMANDS_CARD_SERVE_H
#define APPS_COMMANDS_CARD_SERVE_H

// "brantel card --slot N": serves a card until SIGINT or SIGTERM.

#include <cstdint>
#include <string>

#include "common/CommandLine.h"

namespace brantel {

struct CardServeOptions {
    std::uint32_t slot = 0;
    std::string source = "host";  ///< "host", "csv:FILE" or "wave:FILE"
    std::string timeColumn;
    double interval = 1;
    double speed = 1;
    bool isStepped = false;
    std::string faults;
};

/// Whether the source replays a recording, which some of the options are for.
bool isRecording(const CardServeOptions& options);

ExitCode serveCard(const CardServeOptions& options);

}  // namespace brantel

#endif
