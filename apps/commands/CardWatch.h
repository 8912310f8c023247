#ifndef APPS_COMMANDS_CARD_WATCH_H
#define APPS_COMMANDS_CARD_WATCH_H

// "brantel watch SLOT OID...": reads objects repeatedly, with asynchronous calls, until SIGINT or SIGTERM.

#include <cstdint>
#include <string>
#include <vector>

#include "common/CommandLine.h"

namespace brantel {

struct CardWatchOptions {
    std::uint32_t slot = 0;
    std::vector<std::string> oids;
    double interval = 1;      ///< seconds from one reading to the next
    std::uint64_t count = 0;  ///< how many readings; 0: no end
    bool isJson = false;
};

/// EXIT_NEGATIVE_ANSWER if an object could not be read the last time, or if no reading was completed.
ExitCode watchObjects(const CardWatchOptions& options);

}  // namespace brantel

#endif
