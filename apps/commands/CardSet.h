#ifndef APPS_COMMANDS_CARD_SET_H
#define APPS_COMMANDS_CARD_SET_H

// "brantel set SLOT OID=TYPE:VALUE...": writes objects, and prints the outcome of each request.

#include <cstdint>
#include <string>
#include <vector>

#include "common/CommandLine.h"

namespace brantel {

struct CardSetOptions {
    std::uint32_t slot = 0;
    std::vector<std::string> assignments;
    std::int32_t timeout = 5;  ///< seconds
    bool isJson = false;
};

/// EXIT_NEGATIVE_ANSWER if a request was refused or not answered; those after it are not sent then.
ExitCode setObjects(const CardSetOptions& options);

}  // namespace brantel

#endif
