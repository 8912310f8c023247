#include "cards/ReadPlan.h"

#include <algorithm>
#include <cstddef>
#include <optional>

#include "cards/OidTable.h"
#include "message/OBresult.h"

namespace brantel {
namespace {

constexpr std::size_t LARGEST_NUMBER_SIZE = tlv::LENGTH_SIZE + tlv::MAC_SIZE;
constexpr std::size_t LIKELY_TEXT_SIZE = tlv::LENGTH_SIZE + 64;

std::size_t likelyAnswerSize(std::uint32_t oid)
{
    const OidEntry* const pEntry = findOid(oid);
    const bool isText = (pEntry != nullptr) && ((pEntry->type == OID_TYPE_STRING) || (pEntry->type == OID_TYPE_BUFFER));
    return tlv::LENGTH_SIZE + tlv::POS_VALUE + (isText ? LIKELY_TEXT_SIZE : LARGEST_NUMBER_SIZE);
}

// Whether a smaller request may succeed.
bool isWorthHalving(const ObjectIdContainer& request, std::int32_t result)
{
    return (request.size() > 1) && (isRefusalByCard(result) || (result == obResult::MESSAGE_TOO_LARGE));
}

}  // namespace

bool isUnanswered(const Reading& reading)
{
    return std::any_of(reading.failures.begin(), reading.failures.end(),
                       [](const auto& failure) { return failure.second == NO_ANSWER; });
}

ReadPlan::ReadPlan(std::uint32_t slot, const ObjectIdContainer& oids) : m_slot(slot)
{
    std::size_t answerSize = 0;
    for (const std::uint32_t oid : oids) {
        answerSize += likelyAnswerSize(oid);
        if (m_requests.empty() || (answerSize > buffer_t::CAPACITY)) {
            m_requests.emplace_back();
            answerSize = tlv::COUNT_SIZE + likelyAnswerSize(oid);
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
    if (result == icsc::RESULT_OK) {
        takeValues(request, tlvs);
    } else if (isWorthHalving(request, result)) {
        putHalvesBack(request);
    } else {
        fail(request, result);
    }
}

void ReadPlan::takeNoAnswer(CallOutcome outcome)
{
    failAll(outcome);
}

ObjectIdContainer ReadPlan::takeRequest()
{
    ObjectIdContainer request = m_requests.front();
    m_requests.pop_front();
    return request;
}

void ReadPlan::takeValues(ObjectIdContainer request, const buffer_t& tlvs)
{
    const std::optional<std::vector<TlvElement>> elements = elementsIn(tlvs);
    const bool isComplete = elements && (elements->size() == request.size());
    const buffer_t stream = isComplete ? takeOutMalformedValues(*elements, request) : tlvs;
    OidTypeValueMap values;
    if (convertTlvsToOidTypeValueMap(m_slot, stream, values, &request) && isComplete) {
        m_reading.values.merge(values);
    } else {
        fail(request, MALFORMED_ANSWER);
    }
}

// Makes their objects fail, takes these out of the request and returns the stream of the other values.
buffer_t ReadPlan::takeOutMalformedValues(const std::vector<TlvElement>& elements, ObjectIdContainer& request)
{
    std::vector<TlvElement> others;
    for (const TlvElement& element : elements) {
        const auto asked = isWellFormedValue(element)
                               ? request.end()
                               : std::find(request.begin(), request.end(), oidOfElement(element));
        if (asked == request.end()) {
            others.push_back(element);
        } else {
            fail({*asked}, MALFORMED_VALUE);
            request.erase(asked);
        }
    }
    buffer_t stream;
    stream << static_cast<std::uint32_t>(others.size());
    for (const TlvElement& element : others) {
        stream << buffer_t(element.bytes, element.length);
    }
    return stream;
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

}  // namespace brantel
