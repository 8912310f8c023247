#include "cards/SlotObstacle.h"

#include <chrono>
#include <string>

#include "common/Message.h"
#include "icsc/OBappsToICSC_1_0_P.h"
#include "icsc/OBappsToICSC_1_0_PR.h"
#include "message/OBcomponent.h"

namespace brantel {
namespace {

// Long enough to see that a service does not answer.
constexpr std::chrono::milliseconds PATIENCE{1000};

}  // namespace

void printObstacleOfSlot(std::uint32_t slot, icsc::Interface interface)
{
    OBcomponent component("brantel");
    OBcomponent::requireRoomFor(1);
    OBappsToICSC_1_0_PR noReplies;
    OBappsToICSC_1_0_P proxy(component);
    proxy.subscribe_asynchronous(icsc::serviceName(slot, interface).c_str(), &noReplies);
    const auto deadline = std::chrono::steady_clock::now() + PATIENCE;
    while (proxy.obstacle().empty() && !proxy.isConnected() && (std::chrono::steady_clock::now() < deadline)) {
        component.dispatch(std::chrono::milliseconds(20));
    }
    const std::string obstacle = proxy.obstacle();
    if (!obstacle.empty()) {
        printMessage("slot " + std::to_string(slot) + ": " + obstacle);
    }
}

}  // namespace brantel
