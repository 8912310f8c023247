#ifndef APPS_BACKPLANE_BACKPLANE_PORTS_H
#define APPS_BACKPLANE_BACKPLANE_PORTS_H

// The port values of each slot and link of a backplane, whatever the type of the node's own.

#include <cstdint>
#include <optional>
#include <vector>

namespace brantel {

/// The values that an NPU port gives to the link that it serves.
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

}  // namespace brantel

#endif
