#include "monitor/PolledSlot.h"

#include <algorithm>
#include <string>

#include "cards/ReadPlan.h"

namespace {

// A proxy finds a service that came back within half a second; the client's may do so later than the one that is asked.
constexpr std::chrono::milliseconds RECONNECT_TIME{600};

constexpr std::size_t MAX_RETRIES = 32;

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
        m_failing.clear();
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
    const Reading& reading = m_reading.reading();
    for (const auto& [oid, result] : reading.failures) {
        m_isPlanned = m_failing.insert(oid).second ? false : m_isPlanned;
    }
    const std::set<std::uint32_t> failing = m_failing;
    for (const std::uint32_t oid : failing) {
        if (reading.values.count(oid) != 0) {
            m_failing.erase(oid);
            m_isPlanned = false;
        }
    }
    return reading;
}

// A card refuses a request for the sake of one object, so objects that failed are asked for apart, some in each
// reading, unless all of them failed.
std::vector<ObjectIdContainer> PolledSlot::nextRequests()
{
    const bool doAllFail = (m_failing.size() == m_oids.size());
    if (!m_isPlanned) {
        ObjectIdContainer together;
        for (const std::uint32_t oid : m_oids) {
            if (doAllFail || (m_failing.count(oid) == 0)) {
                together.push_back(oid);
            }
        }
        m_requests = requestsFor(together);
        m_isPlanned = true;
    }
    std::vector<ObjectIdContainer> requests = m_requests;
    if (!doAllFail) {
        for (const std::uint32_t oid : nextRetries()) {
            requests.push_back({oid});
        }
    }
    return requests;
}

// The next failing objects in turn.
ObjectIdContainer PolledSlot::nextRetries()
{
    ObjectIdContainer retries;
    auto next = m_failing.upper_bound(m_lastRetried);
    for (std::size_t i = 0; i < std::min(m_failing.size(), MAX_RETRIES); ++i) {
        if (next == m_failing.end()) {
            next = m_failing.begin();
        }
        m_lastRetried = *next++;
        retries.push_back(m_lastRetried);
    }
    return retries;
}
