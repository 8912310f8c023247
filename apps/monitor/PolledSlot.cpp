#include "monitor/PolledSlot.h"

#include <algorithm>
#include <string>

#include "cards/ReadPlan.h"

namespace {

// A proxy finds a service that came back within half a second; the client's may do so later than the one that is asked.
constexpr std::chrono::milliseconds RECONNECT_TIME{600};

constexpr std::size_t MAX_RETRIES = 32;

constexpr std::int32_t LAST_CARD_RESULT = 0x00FFFFFF;

}  // namespace

PolledSlot::PolledSlot(std::uint32_t slot, OBcomponent& component) : m_reading(slot), m_presence(component)
{
    IcscClientProxy::getInstance().subscribeInterface(slot, component);
    IcscClientProxy::getInstance().subscribeAsyncInterface(slot, component, m_reading);
    const std::string name = "ICSCClient" + std::to_string(slot) + ".ReadWriteAsync";
    m_presence.subscribe_asynchronous(name.c_str(), &m_reading);
}

bool PolledSlot::isReachable(Clock::time_point now)
{
    if (!isConnected()) {
        m_wasAbsent = true;
        m_reachableSince.reset();
        return false;
    }
    if (!m_reachableSince) {
        m_reachableSince = m_wasAbsent ? now + RECONNECT_TIME : now;
    }
    return now >= *m_reachableSince;
}

void PolledSlot::setOids(const ObjectIdContainer& oids)
{
    if (m_oids != oids) {
        m_oids = oids;
        m_refused.clear();
        m_isPlanned = false;
    }
}

void PolledSlot::start(Clock::time_point now)
{
    m_start = now;
    m_reading.start(nextRequests());
}

const Reading& PolledSlot::take()
{
    m_start.reset();
    noteRefusals(m_reading.reading());
    return m_reading.reading();
}

void PolledSlot::noteRefusals(const Reading& reading)
{
    const std::set<std::uint32_t> refusedBefore = m_refused;
    for (const auto& [oid, result] : reading.failures) {
        if ((result > 0) && (result <= LAST_CARD_RESULT)) {
            m_refused.insert(oid);
        }
    }
    if (areAllRefused() && !reading.values.empty()) {
        m_refused.clear();  // the card is in order again
    }
    for (const auto& [oid, value] : reading.values) {
        m_refused.erase(oid);
    }
    m_isPlanned = m_isPlanned && (m_refused == refusedBefore);
}

// A card refuses a request for the sake of one object. So objects that it refused are asked for apart, some in each
// reading; of a card that refuses all of them, one.
std::vector<ObjectIdContainer> PolledSlot::nextRequests()
{
    if (!m_isPlanned) {
        ObjectIdContainer together;
        for (const std::uint32_t oid : m_oids) {
            if (m_refused.count(oid) == 0) {
                together.push_back(oid);
            }
        }
        m_requests = requestsFor(together);
        m_isPlanned = true;
    }
    std::vector<ObjectIdContainer> requests = m_requests;
    for (const std::uint32_t oid : nextRetries(areAllRefused() ? 1 : MAX_RETRIES)) {
        requests.push_back({oid});
    }
    return requests;
}

// The next refused objects in turn, `count` at most.
ObjectIdContainer PolledSlot::nextRetries(std::size_t count)
{
    ObjectIdContainer retries;
    auto next = m_refused.upper_bound(m_lastRetried);
    for (std::size_t i = 0; i < std::min(m_refused.size(), count); ++i) {
        if (next == m_refused.end()) {
            next = m_refused.begin();
        }
        m_lastRetried = *next++;
        retries.push_back(m_lastRetried);
    }
    return retries;
}
