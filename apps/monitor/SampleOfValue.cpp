#include "monitor/SampleOfValue.h"

#include <algorithm>
#include <limits>

namespace {

template <typename Number>
SampleValue numberIn(const TypeValueRecord& record)
{
    return boost::any_cast<Number>(record.value);
}

SampleValue largestAtMost(unsigned long long number)
{
    constexpr unsigned long long largest = std::numeric_limits<SampleValue>::max();
    return static_cast<SampleValue>(std::min(number, largest));
}

}  // namespace

std::optional<SampleValue> sampleOfValue(const TypeValueRecord& record)
{
    switch (record.type) {
        case OID_TYPE_UINT64: return largestAtMost(boost::any_cast<unsigned long long>(record.value));
        case OID_TYPE_UINT32: return numberIn<unsigned int>(record);
        case OID_TYPE_UINT16: return numberIn<unsigned short>(record);
        case OID_TYPE_UINT8: return numberIn<unsigned char>(record);
        case OID_TYPE_INT64: return numberIn<long long>(record);
        case OID_TYPE_INT32: return numberIn<int>(record);
        case OID_TYPE_INT16: return numberIn<short>(record);
        case OID_TYPE_INT8: return numberIn<signed char>(record);
        case OID_TYPE_BOOL: return numberIn<bool>(record);
        case OID_TYPE_STRING:
        case OID_TYPE_IPV4_ADDRESS:
        case OID_TYPE_BUFFER:
        case OID_TYPE_MAC_ADDRESS: break;
    }
    return std::nullopt;
}
