#include "cards/SlotReading.h"

#include "cards/ReadPlan.h"
#include "cards/ResultText.h"

void SlotReading::start(const std::vector<ObjectIdContainer>& requests)
{
    m_reading = Reading();
    for (const ObjectIdContainer& request : requests) {
        send(request);
    }
}

void SlotReading::giveUp()
{
    for (const auto& [sequenceNumber, request] : m_requests) {
        fail(request, NO_ANSWER);
    }
    m_requests.clear();
}

void SlotReading::send(const ObjectIdContainer& request)
{
    ++m_calls;
    if (IcscClientProxy::getInstance().getOidsAsync(m_slot, request)) {
        ++m_requestsSent;
        m_requests[m_calls] = request;
    } else {
        fail(request, NO_ANSWER);
    }
}

void SlotReading::ICSCReadReply(const OBmessage& message, const buffer_t& tlvs, int result)
{
    const auto found = m_requests.find(message.sequenceNumber());
    if (found == m_requests.end()) {
        return;
    }
    const ObjectIdContainer request = found->second;
    m_requests.erase(found);
    if (result != 0) {
        failOrHalve(request, result);
    } else if (!take(request, tlvs)) {
        fail(request, NO_ANSWER);
    }
}

bool SlotReading::take(const ObjectIdContainer& request, const buffer_t& tlvs)
{
    const auto start = std::chrono::steady_clock::now();
    OidTypeValueMap values;
    const bool isSound = convertTlvsToOidTypeValueMap(m_slot, tlvs, values, &request);
    m_reading.values.merge(values);
    m_decodingTime += std::chrono::steady_clock::now() - start;
    return isSound;
}

void SlotReading::failOrHalve(const ObjectIdContainer& request, std::int32_t result)
{
    if (const auto halves = halvesOf(request, result)) {
        send(halves->first);
        send(halves->second);
    } else {
        fail(request, result);
    }
}

void SlotReading::fail(const ObjectIdContainer& request, std::int32_t result)
{
    for (const std::uint32_t oid : request) {
        m_reading.failures[oid] = result;
    }
}
