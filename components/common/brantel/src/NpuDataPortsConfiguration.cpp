#include "NpuDataPortsConfiguration.h"

#include <optional>

#include "Log.h"
#include "customer/phy_otnCommon.h"

namespace {

// The texts and lines in the reports of wrong ports and VLANs are fixed, whatever the compiler makes of the functions
// below.
constexpr char CHECK_NPU_PORT[] = "virtual bool DefaultKatanaDataPortsConfig::checkNpuPort(uint32_t) const";
constexpr char CHECK_DCN_VLAN[] = "virtual bool DefaultKatanaDataPortsConfig::checkDcnVlan(uint32_t) const";
constexpr int NPU_PORT_LINE = 31;
constexpr int DCN_VLAN_MIN_LINE = 37;
constexpr int DCN_VLAN_MAX_LINE = 38;

// Ports of the faster kind; all others have the normal bandwidth.
constexpr std::uint32_t FIRST_FAST_PORT = 25;
constexpr std::uint32_t LAST_FAST_PORT = 28;
constexpr std::uint32_t FAST_BANDWIDTH = 10000000;
constexpr std::uint32_t NORMAL_BANDWIDTH = 1000000;

constexpr std::uint32_t FIRST_PORT = 1;

}  // namespace

INpuDataPortsConfiguration::~INpuDataPortsConfiguration() = default;

DefaultKatanaDataPortsConfig::~DefaultKatanaDataPortsConfig() = default;

std::uint32_t DefaultKatanaDataPortsConfig::getNrOfNpuDataPorts() const
{
    return N_KATANA_DATA_PORTS;
}

bool DefaultKatanaDataPortsConfig::checkNpuPort(std::uint32_t port) const
{
    return ASSERT_OR_REPORT_AT(((port != 0) && (port <= N_KATANA_DATA_PORTS)), NPU_PORT_LINE, CHECK_NPU_PORT);
}

bool DefaultKatanaDataPortsConfig::checkDcnVlan(std::uint32_t vlan) const
{
    return ASSERT_OR_REPORT_AT(DCN_VLAN_NUMBER_MIN <= vlan, DCN_VLAN_MIN_LINE, CHECK_DCN_VLAN) &&
           ASSERT_OR_REPORT_AT(DCN_VLAN_NUMBER_MAX >= vlan, DCN_VLAN_MAX_LINE, CHECK_DCN_VLAN);
}

bool DefaultKatanaDataPortsConfig::checkDcnMpls(std::uint32_t label) const
{
    return label == DCN_MPLS_LABEL_VALUE;
}

bool DefaultKatanaDataPortsConfig::hasNpuPortForSlotLink(std::uint32_t slot, std::uint32_t link) const
{
    if (!phy_getNpuPortForSlotBpPort(slot, link)) {
        return false;
    }
    // The result is not needed, but others can see how often an operation attaches the segment.
    phy_otnCommon::readBackplaneType();
    return true;
}

std::uint32_t DefaultKatanaDataPortsConfig::getMaxBandwidth(std::uint32_t slot, std::uint32_t link) const
{
    const std::optional<std::uint32_t> port = phy_getNpuPortForSlotBpPort(slot, link);
    return port ? maxBandwidthOfPort(*port) : 0;
}

std::uint32_t DefaultKatanaDataPortsConfig::getDcnMplsLabel(std::uint32_t, std::uint32_t) const
{
    return DCN_MPLS_LABEL_VALUE;
}

std::uint32_t DefaultKatanaDataPortsConfig::getDcnVlanNumber(std::uint32_t slot, std::uint32_t link) const
{
    const std::optional<std::uint32_t> port = phy_getNpuPortForSlotBpPort(slot, link);
    return port ? dcnVlanOfPort(*port) : 0;
}

std::uint32_t DefaultKatanaDataPortsConfig::maxBandwidthOfPort(std::uint32_t port)
{
    const bool isFast = (port >= FIRST_FAST_PORT) && (port <= LAST_FAST_PORT);
    return isFast ? FAST_BANDWIDTH : NORMAL_BANDWIDTH;
}

std::uint32_t DefaultKatanaDataPortsConfig::dcnVlanOfPort(std::uint32_t port)
{
    return DCN_VLAN_NUMBER_MIN - FIRST_PORT + port;
}
