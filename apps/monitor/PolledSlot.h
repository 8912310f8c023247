#ifndef APPS_MONITOR_POLLED_SLOT_H
#define APPS_MONITOR_POLLED_SLOT_H

// A slot whose card is read again and again, without ever waiting for it. The library's client must exist, and must be
// destroyed before this.

#include <chrono>
#include <cstdint>
#include <optional>
#include <set>
#include <vector>

#include "cards/SlotReading.h"
#include "icsc/OBappsToICSC_1_0_P.h"
#include "message/OBcomponent.h"

class PolledSlot {
public:
    using Clock = std::chrono::steady_clock;

    /// Subscribes the slot.
    PolledSlot(std::uint32_t slot, OBcomponent& component);

    /// Whether the card's service is there.
    bool isConnected() const { return m_presence.isConnected(); }

    /// Whether a reading would not have to wait: the service is there, and not only just back.
    bool isReachable(Clock::time_point now);

    /// The objects to read from now on.
    void setOids(const ObjectIdContainer& oids);
    bool hasOids() const { return !m_oids.empty(); }

    /// Begins a reading; none is under way.
    void start(Clock::time_point now);

    /// A reading that was begun is under way until it is taken.
    bool isReading() const { return m_start.has_value(); }
    bool isComplete() const { return m_reading.isComplete(); }

    /// Gives up what is still to come of the reading under way.
    void giveUp() { m_reading.giveUp(); }

    /// What the reading under way brought, which is over now.
    const Reading& take();

    /// When the reading under way began.
    Clock::time_point startTime() const { return *m_start; }

    const SlotReading& slotReading() const { return m_reading; }

private:
    bool areAllRefused() const { return m_refused.size() == m_oids.size(); }
    void noteRefusals(const Reading& reading);
    std::vector<ObjectIdContainer> nextRequests();
    ObjectIdContainer nextRetries(std::size_t count);

    SlotReading m_reading;
    OBappsToICSC_1_0_P m_presence;  ///< never called: the client does not tell whether the card is there
    bool m_wasAbsent = false;
    std::optional<Clock::time_point> m_reachableSince;
    ObjectIdContainer m_oids;
    std::set<std::uint32_t> m_refused;  ///< those that the card refused when it was asked for them last
    std::uint32_t m_lastRetried = 0;
    std::vector<ObjectIdContainer> m_requests;  ///< for the others
    bool m_isPlanned = false;
    std::optional<Clock::time_point> m_start;
};

#endif
