#ifndef APPS_COMMANDS_CARD_GET_H
#define APPS_COMMANDS_CARD_GET_H

// "brantel get SLOT OID...": reads objects once and prints their values.

#include <cstdint>
#include <string>
#include <vector>

#include "common/CommandLine.h"

struct CardGetOptions {
    std::uint32_t slot = 0;
    std::vector<std::string> oids;
    std::int32_t timeout = 5;  ///< seconds
    bool isJson = false;
};

/// EXIT_NEGATIVE_ANSWER if an object could not be read.
ExitCode getObjects(const CardGetOptions& options);

#endif
