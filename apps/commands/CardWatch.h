#ifndef APPS_COMMANDS_CARD_WATCH_H
#define APPS_COMMANDS_CARD_WATCH_H

// "brantel watch SLOT OID...": reads objects again and again, with asynchronous calls, until SIGINT or SIGTERM.

#include <cstdint>
#include <string>
#include <vector>

#include "common/CommandLine.h"

struct CardWatchOptions {
    std::uint32_t slot = 0;
    std::vector<std::string> oids;
    double interval = 1;      ///< seconds from one reading to the next
    std::uint64_t count = 0;  ///< how many readings; 0: no end
    bool isJson = false;
};

/// EXIT_NEGATIVE_ANSWER if an object could not be read the last time.
ExitCode watchObjects(const CardWatchOptions& options);

#endif
