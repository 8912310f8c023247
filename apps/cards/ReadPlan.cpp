#include "cards/ReadPlan.h"

#include <cstddef>

#include "cards/OidTable.h"
#include "message/OBresult.h"

namespace {

constexpr std::size_t COUNT_SIZE = 4;
constexpr std::size_t OID_ELEMENT_SIZE = 4 + 4;       // length, OID
constexpr std::size_t VALUE_HEADER_SIZE = 4 + 4 + 1;  // length, OID, type code
constexpr std::size_t LARGEST_INTEGER_SIZE = 8;
constexpr std::size_t LIKELY_TEXT_SIZE = 4 + 64;

constexpr std::uint32_t LAST_CARD_RESULT = 0x00FFFFFF;

std::size_t likelyAnswerSize(std::uint32_t oid)
{
    const OidEntry* const pEntry = findOid(oid);
    const bool isText = (pEntry != nullptr) && ((pEntry->type == OID_TYPE_STRING) || (pEntry->type == OID_TYPE_BUFFER));
    return VALUE_HEADER_SIZE + (isText ? LIKELY_TEXT_SIZE : LARGEST_INTEGER_SIZE);
}

std::size_t encodedSize(const OidTypeValueContainer& values)
{
    buffer_t tlvs;
    return convertOidTypeValueContainerToTlvs(values, tlvs) ? tlvs.size() : buffer_t::CAPACITY;
}

}  // namespace

std::vector<ObjectIdContainer> requestsFor(const ObjectIdContainer& oids)
{
    std::vector<ObjectIdContainer> requests;
    std::size_t requestSize = 0;
    std::size_t answerSize = 0;
    for (const std::uint32_t oid : oids) {
        requestSize += OID_ELEMENT_SIZE;
        answerSize += likelyAnswerSize(oid);
        if (requests.empty() || (requestSize > buffer_t::CAPACITY) || (answerSize > buffer_t::CAPACITY)) {
            requests.emplace_back();
            requestSize = COUNT_SIZE + OID_ELEMENT_SIZE;
            answerSize = COUNT_SIZE + likelyAnswerSize(oid);
        }
        requests.back().push_back(oid);
    }
    return requests;
}

std::optional<std::pair<ObjectIdContainer, ObjectIdContainer>> halvesOf(const ObjectIdContainer& request,
                                                                        std::int32_t result)
{
    const bool isCardResult = static_cast<std::uint32_t>(result) <= LAST_CARD_RESULT;
    if ((request.size() < 2) || (!isCardResult && (result != obResult::MESSAGE_TOO_LARGE))) {
        return std::nullopt;
    }
    const auto middle = request.begin() + static_cast<std::ptrdiff_t>(request.size() / 2);
    return std::make_pair(ObjectIdContainer(request.begin(), middle), ObjectIdContainer(middle, request.end()));
}

std::vector<OidTypeValueContainer> requestsFor(const OidTypeValueContainer& values)
{
    std::vector<OidTypeValueContainer> requests;
    std::size_t requestSize = 0;
    for (const OidTypeValue& value : values) {
        const std::size_t size = encodedSize({value}) - COUNT_SIZE;
        requestSize += size;
        if (requests.empty() || (requestSize > buffer_t::CAPACITY)) {
            requests.emplace_back();
            requestSize = COUNT_SIZE + size;
        }
        requests.back().push_back(value);
    }
    return requests;
}
