#include "backplane/BackplanePorts.h"

#include "NpuDataPortsConfiguration.h"
#include "customer/phy_otnCommon.h"

namespace brantel {
namespace {

BackplaneLink linkOfPort(std::uint32_t npuPort)
{
    if (npuPort == phy_otnCommon::NO_PORT) {
        return std::nullopt;
    }
    return LinkPort{npuPort, DefaultKatanaDataPortsConfig::maxBandwidthOfPort(npuPort),
                    DefaultKatanaDataPortsConfig::dcnVlanOfPort(npuPort)};
}

}  // namespace

BackplanePorts portsOfBackplaneType(std::uint32_t type)
{
    const phy_otnCommon::Backplane& backplane = phy_otnCommon::BACKPLANES[type];
    BackplanePorts ports;
    for (std::uint32_t slot = 0; slot < backplane.nSlots; ++slot) {
        ports.emplace_back();
        for (std::uint32_t link = 0; link < backplane.slots[slot].nLinks; ++link) {
            ports.back().push_back(linkOfPort(backplane.slots[slot].npuPorts[link]));
        }
    }
    return ports;
}

}  // namespace brantel
