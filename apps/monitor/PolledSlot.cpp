#include "monitor/PolledSlot.h"

#include <algorithm>

namespace brantel {
namespace {

constexpr std::size_t MAX_RETRIES = 16;

}  // namespace

PolledSlot::PolledSlot(std::uint32_t slot, OBcomponent& component)
    : m_slot(slot), m_component(component), m_service(icsc::serviceName(slot, icsc::Interface::ASYNC))
{
    OBcomponent::requireRoomFor(1);
    IcscClientProxy::getInstance().subscribeAsyncInterface(slot, component, m_reader);
}

std::string PolledSlot::reasonOfAbsence() const
{
    const std::string obstacle = m_component.obstacle(m_service);
    return obstacle.empty() ? "no card is serving the slot" : obstacle;
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
    m_reader.start(nextPlan());
}

const Reading& PolledSlot::takeReading()
{
    m_start.reset();
    noteRefusals(m_reader.reading());
    return m_reader.reading();
}

void PolledSlot::noteRefusals(const Reading& reading)
{
    const std::set<std::uint32_t> refusedBefore = m_refused;
    for (const auto& [oid, outcome] : reading.failures) {
        if (isRefusalByCard(outcome)) {
            m_refused.insert(oid);
        }
    }
    if (areAllRefused() && !reading.values.empty()) {
        m_refused.clear();  // the card has recovered
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

}  // namespace brantel
