#include "RuleSample.h"

#include <limits>
#include <type_traits>

namespace icsc {
namespace {

template <typename Integer, typename Take>
bool takeHeld(const boost::any& value, const Take& take)
{
    const auto* const pNumber = boost::any_cast<Integer>(&value);
    if (pNumber == nullptr) {
        return false;
    }
    take(*pNumber);
    return true;
}

// Calls `take` with the number that the record holds; false if it does not hold one.
template <typename Take>
bool takeNumber(const TypeValueRecord& record, const Take& take)
{
    switch (record.type) {
        case OID_TYPE_UINT64: return takeHeld<unsigned long long>(record.value, take);
        case OID_TYPE_UINT32: return takeHeld<unsigned int>(record.value, take);
        case OID_TYPE_UINT16: return takeHeld<unsigned short>(record.value, take);
        case OID_TYPE_UINT8: return takeHeld<unsigned char>(record.value, take);
        case OID_TYPE_INT64: return takeHeld<long long>(record.value, take);
        case OID_TYPE_INT32: return takeHeld<int>(record.value, take);
        case OID_TYPE_INT16: return takeHeld<short>(record.value, take);
        case OID_TYPE_INT8: return takeHeld<signed char>(record.value, take);
        case OID_TYPE_BOOL: return takeHeld<bool>(record.value, take);
        case OID_TYPE_STRING:
        case OID_TYPE_IPV4_ADDRESS:
        case OID_TYPE_BUFFER:
        case OID_TYPE_MAC_ADDRESS: break;
    }
    return false;
}

template <typename T, typename Number>
bool isInRange(Number number)
{
    if constexpr (std::is_signed_v<Number>) {
        const long long wide = number;  // NOLINT(bugprone-signed-char-misuse): it is a number
        return (wide >= std::numeric_limits<T>::min()) && (wide <= std::numeric_limits<T>::max());
    } else {
        const unsigned long long wide = number;
        return wide <= static_cast<unsigned long long>(std::numeric_limits<T>::max());
    }
}

template <typename T>
std::string rangeText()
{
    return std::to_string(std::numeric_limits<T>::min()) + " to " + std::to_string(std::numeric_limits<T>::max()) +
           (std::is_signed_v<T> ? ", the range of a signed rule" : ", the range of an unsigned rule");
}

// What a value is that is not a number.
const char* kindText(OidValueType type)
{
    switch (type) {
        case OID_TYPE_STRING: return "the value is a text, not a number";
        case OID_TYPE_IPV4_ADDRESS: return "the value is an IPv4 address, not a number";
        case OID_TYPE_BUFFER: return "the value is a sequence of bytes, not a number";
        case OID_TYPE_MAC_ADDRESS: return "the value is a MAC address, not a number";
        default: return "the value is not of the type that its record names";
    }
}

}  // namespace

bool isNumericType(OidValueType type)
{
    return (type >= OID_TYPE_UINT64) && (type <= OID_TYPE_BOOL);
}

template <typename T>
std::optional<T> sampleOf(const TypeValueRecord& record)
{
    std::optional<T> sample;
    takeNumber(record, [&sample](auto number) {
        if (isInRange<T>(number)) {
            sample = static_cast<T>(number);
        }
    });
    return sample;
}

template <typename T>
std::string reasonAgainstSample(const TypeValueRecord& record)
{
    std::string reason;
    const auto compareWithRange = [&reason](auto number) {
        if (!isInRange<T>(number)) {
            reason = std::to_string(number) + " is outside " + rangeText<T>();
        }
    };
    return takeNumber(record, compareWithRange) ? reason : kindText(record.type);
}

template BRANTEL_EXPORT std::optional<int> sampleOf<int>(const TypeValueRecord&);
template BRANTEL_EXPORT std::optional<unsigned int> sampleOf<unsigned int>(const TypeValueRecord&);
template BRANTEL_EXPORT std::string reasonAgainstSample<int>(const TypeValueRecord&);
template BRANTEL_EXPORT std::string reasonAgainstSample<unsigned int>(const TypeValueRecord&);

}  // namespace icsc
