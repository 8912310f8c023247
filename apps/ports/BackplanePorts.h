#ifndef APPS_PORTS_BACKPLANE_PORTS_H
#define APPS_PORTS_BACKPLANE_PORTS_H

// What the library answers for each slot and link of a backplane, of whatever type the node's own is.

#include <cstdint>
#include <optional>
#include <vector>

/// What an NPU port gives to the link that it serves.
struct LinkPort {
    std::uint32_t npuPort;  ///< 0: a placeholder
    std::uint32_t maxBandwidth;
    std::uint32_t dcnVlan;
};

/// A backplane link; without a value, it has no NPU port.
using BackplaneLink = std::optional<LinkPort>;

/// The links of each slot.
using BackplanePorts = std::vector<std::vector<BackplaneLink>>;

/// `type` is 0 to 4.
BackplanePorts portsOfBackplaneType(std::uint32_t type);

#endif
