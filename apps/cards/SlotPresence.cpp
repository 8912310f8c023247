#include "cards/SlotPresence.h"

#include <chrono>

#include "common/Message.h"

namespace brantel {
namespace {

// Long enough to see that a service does not answer.
constexpr std::chrono::milliseconds PATIENCE{1000};

}  // namespace

void printObstacleOfSlot(std::uint32_t slot, icsc::Interface interface)
{
    OBcomponent component("brantel");
    const SlotPresence presence(slot, interface, component);
    const auto deadline = std::chrono::steady_clock::now() + PATIENCE;
    while (presence.obstacle().empty() && !presence.isConnected() && (std::chrono::steady_clock::now() < deadline)) {
        component.dispatch(std::chrono::milliseconds(20));
    }
    const std::string obstacle = presence.obstacle();
    if (!obstacle.empty()) {
        printMessage("slot " + std::to_string(slot) + ": " + obstacle);
    }
}

}  // namespace brantel
