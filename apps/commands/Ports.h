#ifndef APPS_COMMANDS_PORTS_H
#define APPS_COMMANDS_PORTS_H

// "brantel ports" and "brantel backplane": which NPU port serves which link, and the segment that names the backplane.

#include <cstdint>
#include <optional>

#include "common/CommandLine.h"

namespace brantel {

enum class PortsForm { TABLE, JSON, PICTURE };

/// Shows the ports of a backplane type (default: the node's own, or the one that is assumed for it).
ExitCode showPorts(std::optional<std::uint32_t> type, PortsForm form);

ExitCode publishBackplane(std::uint32_t type);

/// EXIT_NEGATIVE_ANSWER if there is no segment.
ExitCode clearBackplane();

/// EXIT_NEGATIVE_ANSWER if the segment names no type, EXIT_UNUSABLE if it is unusable.
ExitCode showBackplane(bool isJson);

}  // namespace brantel

#endif
