#ifndef APPS_CARDS_SLOT_PRESENCE_H
#define APPS_CARDS_SLOT_PRESENCE_H

// Whether the card of a slot is there, and if not, why: the library's client does not say. It connects to one of the
// slot's services and never calls it.

#include <cstdint>
#include <string>

#include "Icsc.h"
#include "icsc/OBappsToICSC_1_0_P.h"
#include "icsc/OBappsToICSC_1_0_PR.h"
#include "message/OBcomponent.h"

namespace brantel {

class SlotPresence : private OBappsToICSC_1_0_PR {
public:
    /// Throws std::runtime_error if the process may not open enough files.
    SlotPresence(std::uint32_t slot, icsc::Interface interface, OBcomponent& component) : m_proxy(component)
    {
        OBcomponent::requireRoomFor(1);
        m_proxy.subscribe_asynchronous(icsc::serviceName(slot, interface).c_str(), this);
    }

    bool isConnected() const { return m_proxy.isConnected(); }

    /// Why it is not connected, in words; empty if it is, or if nothing is known but that no card is serving the slot.
    std::string obstacle() const { return m_proxy.obstacle(); }

private:
    OBappsToICSC_1_0_P m_proxy;
};

/// Looks for the slot's service for a moment, and reports on standard error why it is not reached, as far as known.
void printObstacleOfSlot(std::uint32_t slot, icsc::Interface interface);

}  // namespace brantel

#endif
