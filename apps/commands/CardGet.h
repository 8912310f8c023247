#ifndef APPS_COMMANDS_CARD_GET_H
#define APPS_COMMANDS_CARD_GET_H

// "brantel get SLOT OID...": reads objects once and prints their values.
//
// A prefix of names, as in "net.", means all objects of that group that the card has.

#include <cstdint>
#include <string>
#include <vector>

#include "common/CommandLine.h"

namespace brantel {

struct CardGetOptions {
    std::uint32_t slot = 0;
    std::vector<std::string> oids;
    bool isAll = false;        ///< all objects that the card has and the table knows
    std::int32_t timeout = 5;  ///< seconds
    bool isJson = false;
};

/// EXIT_NEGATIVE_ANSWER if an object could not be read, or if the card has none of them.
ExitCode getObjects(const CardGetOptions& options);

}  // namespace brantel

#endif
