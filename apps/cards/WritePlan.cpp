#include "cards/WritePlan.h"

#include <cstddef>
#include <string>

namespace {

constexpr std::size_t COUNT_SIZE = 4;
constexpr std::size_t VALUE_HEADER_SIZE = 4 + 4 + 1;  // length, OID, type code
constexpr std::size_t LENGTH_SIZE = 4;
constexpr std::size_t LARGEST_INTEGER_SIZE = 8;
constexpr std::size_t MAC_SIZE = 6;

// At most what the value's element takes.
std::size_t elementSize(const OidTypeValue& value)
{
    switch (value.type) {
        case OID_TYPE_STRING:
            return VALUE_HEADER_SIZE + LENGTH_SIZE + boost::any_cast<const std::string&>(value.value).size();
        case OID_TYPE_BUFFER:
            return VALUE_HEADER_SIZE + LENGTH_SIZE + boost::any_cast<const buffer_t&>(value.value).size();
        case OID_TYPE_MAC_ADDRESS: return VALUE_HEADER_SIZE + LENGTH_SIZE + MAC_SIZE;
        default: return VALUE_HEADER_SIZE + LARGEST_INTEGER_SIZE;
    }
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
