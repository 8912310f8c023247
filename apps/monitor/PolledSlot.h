#ifndef APPS_MONITOR_POLLED_SLOT_H
#define APPS_MONITOR_POLLED_SLOT_H

// A slot whose card is read again and again, without ever waiting for it. The library's client must exist, and must be
// destroyed before this.

#include <chrono>
#include <cstdint>
#include <optional>
#include <set>
#include <string>

#include "IcscClientProxy.h"
#include "cards/AsyncReader.h"
#include "message/OBcomponent.h"

namespace brantel {

class PolledSlot {
public:
    using Clock = std::chrono::steady_clock;

    /// Subscribes the slot for `component`. Throws std::runtime_error if the process may not open enough files.
    PolledSlot(std::uint32_t slot, OBcomponent& component);

    /// Whether the card's service is there.
    bool isConnected() const { return m_component.isConnected(m_service); }

    /// Why it is not, in words.
    std::string reasonOfAbsence() const;

    /// The objects to read from now on.
    void setOids(const ObjectIdContainer& oids);
    bool hasOids() const { return !m_oids.empty(); }

    /// Begins a reading; none is under way. Its requests go out one after the other, as answers come.
    void start(Clock::time_point now);

    /// A reading that was begun is under way until it is taken.
    bool isReading() const { return m_start.has_value(); }
    bool isComplete() const { return m_reader.isDone(); }

    /// Gives up what is still to come of the reading under way.
    void giveUp() { m_reader.giveUp(); }

    /// What the reading under way brought, which is over now.
    const Reading& takeReading();

    /// When the reading under way began.
    Clock::time_point startTime() const { return *m_start; }

    /// How many requests were made, and how long their answers took to decode, since construction.
    std::uint64_t requestsMade() const { return m_reader.requestsMade(); }
    std::chrono::nanoseconds decodingTime() const { return m_reader.decodingTime(); }

private:
    bool areAllRefused() const { return m_refused.size() == m_oids.size(); }
    void noteRefusals(const Reading& reading);
    ReadPlan nextPlan();

    const std::uint32_t m_slot;
    const OBcomponent& m_component;
    const std::string m_service;

    ObjectIdContainer m_oids;
    std::set<std::uint32_t> m_refused;  ///< those that the card refused when it was asked for them last
    std::uint32_t m_lastRetried = 0;
    std::optional<ReadPlan> m_planOfOthers;  ///< not yet begun

    std::optional<Clock::time_point> m_start;
    AsyncReader m_reader{[this](const ObjectIdContainer& request) {
        return IcscClientProxy::getInstance().getOidsAsync(m_slot, request);
    }};
};

}  // namespace brantel

#endif
