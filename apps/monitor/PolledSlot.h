#ifndef APPS_MONITOR_POLLED_SLOT_H
#define APPS_MONITOR_POLLED_SLOT_H

// A slot whose card is read again and again, without ever waiting for it. The library's client must exist, and must be
// destroyed before this.

#include <chrono>
#include <cstdint>
#include <optional>
#include <set>

#include "IcscClientProxy.h"
#include "cards/ReadPlan.h"
#include "icsc/OBappsToICSC_1_0_P.h"
#include "icsc/OBappsToICSC_1_0_PR.h"
#include "message/OBcomponent.h"

class PolledSlot : private OBappsToICSC_1_0_PR {
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

    /// Begins a reading; none is under way. Its requests go out one after the other, as answers come.
    void start(Clock::time_point now);

    /// A reading that was begun is under way until it is taken.
    bool isReading() const { return m_start.has_value(); }
    bool isComplete() const { return m_plan.isDone(); }

    /// Gives up what is still to come of the reading under way.
    void giveUp() { m_plan.takeNoAnswer(); }

    /// What the reading under way brought, which is over now.
    const Reading& take();

    /// When the reading under way began.
    Clock::time_point startTime() const { return *m_start; }

    /// How many requests were sent, and how long their answers took to decode, since construction.
    std::uint64_t requestsSent() const { return m_requestsSent; }
    std::chrono::nanoseconds decodingTime() const { return m_decodingTime; }

private:
    void ICSCReadReply(const OBmessage& message, const buffer_t& tlvs, int result) override;
    void askNext();
    bool areAllRefused() const { return m_refused.size() == m_oids.size(); }
    void noteRefusals(const Reading& reading);
    ReadPlan nextPlan();

    const std::uint32_t m_slot;
    OBappsToICSC_1_0_P m_presence;  ///< never called: the client does not tell whether the card is there
    bool m_wasAbsent = false;
    std::optional<Clock::time_point> m_reachableSince;

    ObjectIdContainer m_oids;
    std::set<std::uint32_t> m_refused;  ///< those that the card refused when it was asked for them last
    std::uint32_t m_lastRetried = 0;
    std::optional<ReadPlan> m_planOfOthers;  ///< not yet begun

    std::optional<Clock::time_point> m_start;
    ReadPlan m_plan;            ///< of the reading under way
    std::uint64_t m_calls = 0;  ///< the sequence number of the last one: all calls of a proxy count, from 1
    std::uint64_t m_requestsSent = 0;
    std::chrono::nanoseconds m_decodingTime{0};
};

#endif
