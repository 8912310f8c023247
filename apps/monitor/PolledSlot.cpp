#include "monitor/PolledSlot.h"

#include <algorithm>
#include <string>

#include "message/OBmessage.h"

namespace {

// A proxy finds a service that came back within half a second; the client's may do so later than the one that is asked.
constexpr std::chrono::milliseconds RECONNECT_TIME{600};

constexpr std::size_t MAX_RETRIES = 16;

constexpr std::int32_t LAST_CARD_RESULT = 0x00FFFFFF;

}  // namespace

PolledSlot::PolledSlot(std::uint32_t slot, OBcomponent& component)
    : m_slot(slot), m_presence(component), m_plan(slot, {})
{
    IcscClientProxy::getInstance().subscribeInterface(slot, component);
    IcscClientProxy::getInstance().subscribeAsyncInterface(slot, component, *this);
    const std::string name = "ICSCClient" + std::to_string(slot) + ".ReadWriteAsync";
    m_presence.subscribe_asynchronous(name.c_str(), this);
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
        m_planOfOthers.reset();
    }
}

void PolledSlot::start(Clock::time_point now)
{
    m_start = now;
    m_plan = nextPlan();
    askNext();
}

void PolledSlot::askNext()
{
    if (m_plan.isDone()) {
        return;
    }
    ++m_calls;
    if (IcscClientProxy::getInstance().getOidsAsync(m_slot, m_plan.request())) {
        ++m_requestsSent;
    } else {
        m_plan.takeNoAnswer();
    }
}

void PolledSlot::ICSCReadReply(const OBmessage& message, const buffer_t& tlvs, int result)
{
    if (m_plan.isDone() || (message.sequenceNumber() != m_calls)) {
        return;  // of a reading that was given up
    }
    const Clock::time_point start = Clock::now();
    m_plan.takeAnswer(result, tlvs);
    m_decodingTime += Clock::now() - start;
    askNext();
}

const Reading& PolledSlot::take()
{
    m_start.reset();
    noteRefusals(m_plan.reading());
    return m_plan.reading();
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
    if (m_refused != refusedBefore) {
        m_planOfOthers.reset();
    }
}

// A card refuses a request for the sake of one object. So objects that it refused are asked for apart, some of them in
// turn in each reading; of a card that refuses all objects, one.
ReadPlan PolledSlot::nextPlan()
{
    if (!m_planOfOthers) {
        ObjectIdContainer others;
        for (const std::uint32_t oid : m_oids) {
            if (m_refused.count(oid) == 0) {
                others.push_back(oid);
            }
        }
        m_planOfOthers.emplace(m_slot, others);
    }
    ReadPlan plan = *m_planOfOthers;
    const std::size_t nRetries = std::min(m_refused.size(), areAllRefused() ? 1 : MAX_RETRIES);
    auto next = m_refused.upper_bound(m_lastRetried);
    for (std::size_t i = 0; i < nRetries; ++i) {
        if (next == m_refused.end()) {
            next = m_refused.begin();
        }
        m_lastRetried = *next++;
        plan.addApart(m_lastRetried);
    }
    return plan;
}
