#include "cards/WritePlan.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace {

constexpr std::size_t COUNT_SIZE = 4;
constexpr std::size_t VALUE_HEADER_SIZE = 4 + 4 + 1;  // length, OID, type code
constexpr std::size_t LENGTH_SIZE = 4;
constexpr std::size_t MAC_SIZE = 6;

std::size_t valueSize(const OidTypeValue& value)
{
    switch (value.type) {
        case OID_TYPE_UINT64:
        case OID_TYPE_INT64: return sizeof(std::uint64_t);
        case OID_TYPE_UINT32:
        case OID_TYPE_INT32:
        case OID_TYPE_IPV4_ADDRESS: return sizeof(std::uint32_t);
        case OID_TYPE_UINT16:
        case OID_TYPE_INT16: return sizeof(std::uint16_t);
        case OID_TYPE_UINT8:
        case OID_TYPE_INT8:
        case OID_TYPE_BOOL: return sizeof(std::uint8_t);
        case OID_TYPE_STRING: return LENGTH_SIZE + boost::any_cast<const std::string&>(value.value).size();
        case OID_TYPE_BUFFER: return LENGTH_SIZE + boost::any_cast<const buffer_t&>(value.value).size();
        case OID_TYPE_MAC_ADDRESS: return LENGTH_SIZE + MAC_SIZE;
    }
    return 0;
}

std::size_t elementSize(const OidTypeValue& value)
{
    return VALUE_HEADER_SIZE + valueSize(value);
}

}  // namespace

bool fitsIntoRequest(const OidTypeValue& value)
{
    return COUNT_SIZE + elementSize(value) <= buffer_t::CAPACITY;
}

std::vector<OidTypeValueContainer> writeRequests(const OidTypeValueContainer& values)
{
    std::vector<OidTypeValueContainer> requests;
    std::size_t requestSize = 0;
    for (const OidTypeValue& value : values) {
        requestSize += elementSize(value);
        if (requests.empty() || (requestSize > buffer_t::CAPACITY)) {
            requests.emplace_back();
            requestSize = COUNT_SIZE + elementSize(value);
        }
        requests.back().push_back(value);
    }
    return requests;
}
