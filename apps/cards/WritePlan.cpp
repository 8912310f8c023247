#include "cards/WritePlan.h"

#include <cstddef>

#include "cards/Tlv.h"

namespace brantel {
bool fitsIntoRequest(const OidTypeValue& value)
{
    return tlv::COUNT_SIZE + elementSize(value) <= buffer_t::CAPACITY;
}

std::vector<OidTypeValueContainer> writeRequests(const OidTypeValueContainer& values)
{
    std::vector<OidTypeValueContainer> requests;
    std::size_t requestSize = 0;
    for (const OidTypeValue& value : values) {
        requestSize += elementSize(value);
        if (requests.empty() || (requestSize > buffer_t::CAPACITY)) {
            requests.emplace_back();
            requestSize = tlv::COUNT_SIZE + elementSize(value);
        }
        requests.back().push_back(value);
    }
    return requests;
}

}  // namespace brantel
