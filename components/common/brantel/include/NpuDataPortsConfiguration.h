#ifndef NPU_DATA_PORTS_CONFIGURATION_H
#define NPU_DATA_PORTS_CONFIGURATION_H

// The data ports of the node's network processing unit (NPU), and the VLANs and label of the data communication network
// (DCN) on them.
//
// A component creates the implementation for the NPU's chip and asks it through the interface, in any order:
//
//     const std::unique_ptr<INpuDataPortsConfiguration> pPorts = std::make_unique<DefaultKatanaDataPortsConfig>();
//     if (pPorts->hasNpuPortForSlotLink(slot, link)) {
//         joinVlan(pPorts->getDcnVlanNumber(slot, link));
//     }
//
// Slots and backplane links are counted from 0. Which of them exist depends on the node's backplane type, which another
// process publishes in shared memory; hasNpuPortForSlotLink, getMaxBandwidth and getDcnVlanNumber read it afresh, more
// than once a call. While it is unknown they write two lines to syslog at priority error, whatever the trace level, and
// answer as for type 0.
//
// The objects have no state: everything may run on any thread.

#include <cstdint>

#include "BrantelExport.h"

class BRANTEL_EXPORT INpuDataPortsConfiguration {
public:
    virtual ~INpuDataPortsConfiguration();

    /// How many data ports the NPU has; they are numbered from 1.
    virtual std::uint32_t getNrOfNpuDataPorts() const = 0;

    /// True if `port` is the number of a data port; any other is reported as a violated invariant.
    virtual bool checkNpuPort(std::uint32_t port) const = 0;

    /// True if `vlan` belongs to the DCN; any other is reported as a violated invariant.
    virtual bool checkDcnVlan(std::uint32_t vlan) const = 0;

    /// True if `label` is the MPLS label of the DCN.
    virtual bool checkDcnMpls(std::uint32_t label) const = 0;

    /// True if an NPU port serves the link of the slot; false also for a slot or link that does not exist.
    virtual bool hasNpuPortForSlotLink(std::uint32_t slot, std::uint32_t link) const = 0;

    /// The highest bandwidth of the link of the slot, in the unit of the callers; 0 without an NPU port.
    virtual std::uint32_t getMaxBandwidth(std::uint32_t slot, std::uint32_t link) const = 0;

    /// The MPLS label of the DCN on the link of the slot.
    virtual std::uint32_t getDcnMplsLabel(std::uint32_t slot, std::uint32_t link) const = 0;

    /// The VLAN of the DCN on the link of the slot; 0 without an NPU port. On backplanes whose ports are placeholders
    /// it is one below the DCN's range.
    virtual std::uint32_t getDcnVlanNumber(std::uint32_t slot, std::uint32_t link) const = 0;
};

/// The data ports of the Katana chip.
class BRANTEL_EXPORT DefaultKatanaDataPortsConfig : public INpuDataPortsConfiguration {
public:
    static constexpr std::uint32_t N_KATANA_DATA_PORTS = 28;
    static constexpr std::uint32_t DCN_VLAN_NUMBER_MIN = 4032;
    static constexpr std::uint32_t DCN_VLAN_NUMBER_MAX = 4059;
    static constexpr std::uint32_t DCN_MPLS_LABEL_VALUE = 1000;

    ~DefaultKatanaDataPortsConfig() override;

    std::uint32_t getNrOfNpuDataPorts() const override;
    bool checkNpuPort(std::uint32_t port) const override;
    bool checkDcnVlan(std::uint32_t vlan) const override;
    bool checkDcnMpls(std::uint32_t label) const override;
    bool hasNpuPortForSlotLink(std::uint32_t slot, std::uint32_t link) const override;
    std::uint32_t getMaxBandwidth(std::uint32_t slot, std::uint32_t link) const override;
    std::uint32_t getDcnMplsLabel(std::uint32_t slot, std::uint32_t link) const override;
    std::uint32_t getDcnVlanNumber(std::uint32_t slot, std::uint32_t link) const override;

    /// What getMaxBandwidth and getDcnVlanNumber answer for a link that `port` serves. Nothing is checked: port 0
    /// is the placeholder of some backplanes.
    static std::uint32_t maxBandwidthOfPort(std::uint32_t port);
    static std::uint32_t dcnVlanOfPort(std::uint32_t port);
};

#endif
