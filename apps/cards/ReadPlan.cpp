#include "cards/ReadPlan.h"

#include <cstddef>

#include "cards/OidTable.h"
#include "message/OBresult.h"

namespace {

constexpr std::size_t COUNT_SIZE = 4;
constexpr std::size_t VALUE_HEADER_SIZE = 4 + 4 + 1;  // length, OID, type code
constexpr std::size_t LARGEST_NUMBER_SIZE = 4 + 6;    // a MAC address: length, bytes
constexpr std::size_t LIKELY_TEXT_SIZE = 4 + 64;

constexpr std::uint32_t LAST_CARD_RESULT = 0x00FFFFFF;

std::size_t likelyAnswerSize(std::uint32_t oid)
{
    const OidEntry* const pEntry = findOid(oid);
    const bool isText = (pEntry != nullptr) && ((pEntry->type == OID_TYPE_STRING) || (pEntry->type == OID_TYPE_BUFFER));
    return VALUE_HEADER_SIZE + (isText ? LIKELY_TEXT_SIZE : LARGEST_NUMBER_SIZE);
}

// Whether fewer objects in one request may fare better.
bool isWorthHalving(const ObjectIdContainer& request, std::int32_t result)
{
    const bool isCardResult = static_cast<std::uint32_t>(result) <= LAST_CARD_RESULT;
    return (request.size() > 1) && (isCardResult || (result == obResult::MESSAGE_TOO_LARGE));
}

}  // namespace

ReadPlan::ReadPlan(std::uint32_t slot, const ObjectIdContainer& oids) : m_slot(slot)
{
    std::size_t answerSize = 0;
    for (const std::uint32_t oid : oids) {
        answerSize += likelyAnswerSize(oid);
        if (m_requests.empty() || (answerSize > buffer_t::CAPACITY)) {
            m_requests.emplace_back();
            answerSize = COUNT_SIZE + likelyAnswerSize(oid);
        }
        m_requests.back().push_back(oid);
    }
}

void ReadPlan::takeAnswer(std::int32_t result, const buffer_t& tlvs)
{
    if (result == obResult::TIMEOUT) {
        failAll(result);
        return;
    }
    const ObjectIdContainer request = takeRequest();
    if (result == 0) {
        takeValues(request, tlvs);
    } else if (isWorthHalving(request, result)) {
        putHalvesBack(request);
    } else {
        fail(request, result);
    }
}

void ReadPlan::takeNoAnswer()
{
    failAll(NO_ANSWER);
}

ObjectIdContainer ReadPlan::takeRequest()
{
    ObjectIdContainer request = m_requests.front();
    m_requests.pop_front();
    return request;
}

void ReadPlan::takeValues(const ObjectIdContainer& request, const buffer_t& tlvs)
{
    OidTypeValueMap values;
    if (convertTlvsToOidTypeValueMap(m_slot, tlvs, values, &request)) {
        m_reading.values.merge(values);
    } else {
        fail(request, UNSOUND_ANSWER);
    }
}

void ReadPlan::putHalvesBack(const ObjectIdContainer& request)
{
    const auto middle = request.begin() + static_cast<std::ptrdiff_t>(request.size() / 2);
    m_requests.emplace_front(middle, request.end());
    m_requests.emplace_front(request.begin(), middle);
}

void ReadPlan::fail(const ObjectIdContainer& request, CallOutcome outcome)
{
    for (const std::uint32_t oid : request) {
        m_reading.failures[oid] = outcome;
    }
}

void ReadPlan::failAll(CallOutcome outcome)
{
    while (!isDone()) {
        fail(takeRequest(), outcome);
    }
}
