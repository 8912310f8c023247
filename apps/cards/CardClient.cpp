#include "cards/CardClient.h"

namespace brantel {

CardClient::CardClient(std::uint32_t slot) : m_slot(slot), m_service(icsc::serviceName(slot, icsc::Interface::SYNC))
{
    OBcomponent::requireRoomFor(1);
    IcscClientProxy::createInstance();
    IcscClientProxy::getInstance().subscribeInterface(slot, m_component);
}

CardClient::CardClient(std::uint32_t slot, OBappsToICSC_1_0_PR& replies)
    : m_slot(slot), m_service(icsc::serviceName(slot, icsc::Interface::ASYNC))
{
    OBcomponent::requireRoomFor(1);
    IcscClientProxy::createInstance();
    IcscClientProxy::getInstance().subscribeAsyncInterface(slot, m_component, replies);
}

CardClient::~CardClient()
{
    IcscClientProxy::deleteInstance();
}

bool CardClient::mayBeServed(std::chrono::milliseconds patience)
{
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::milliseconds CHECK_INTERVAL{20};
    const Clock::time_point deadline = Clock::now() + patience;
    while (m_component.isServiceAbsent(m_service) && !m_component.isStopping()) {
        if (Clock::now() >= deadline) {
            return false;
        }
        m_component.dispatch(CHECK_INTERVAL);
    }
    return true;
}

// Not getOidsSync, which has the same result for a call that failed and for a malformed answer.
Reading CardClient::read(const ObjectIdContainer& oids, std::int32_t timeout)
{
    ReadPlan plan(m_slot, oids);
    if (!mayBeServed(STARTING_TIME)) {
        plan.takeNoAnswer(NOT_SERVED);
    }
    while (!plan.isDone()) {
        buffer_t tlvs;
        std::int32_t result = 0;
        convertObjectIdContainerToTlvs(plan.request(), tlvs);
        if (IcscClientProxy::getInstance().getSetOidsCommon(true, m_slot, timeout, tlvs, result)) {
            plan.takeAnswer(result, tlvs);
        } else {
            plan.takeNoAnswer();
        }
    }
    return plan.reading();
}

bool CardClient::startReading(const ObjectIdContainer& request)
{
    return IcscClientProxy::getInstance().getOidsAsync(m_slot, request);
}

CallOutcome CardClient::write(const OidTypeValueContainer& values, std::int32_t timeout)
{
    if (!mayBeServed(STARTING_TIME)) {
        return NOT_SERVED;
    }
    buffer_t tlvs;
    std::int32_t result = 0;
    convertOidTypeValueContainerToTlvs(values, tlvs);
    const bool isAnswered = IcscClientProxy::getInstance().getSetOidsCommon(false, m_slot, timeout, tlvs, result);
    return isAnswered ? result : NO_ANSWER;
}

}  // namespace brantel
