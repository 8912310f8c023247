#ifndef OID_VALUE_H
#define OID_VALUE_H

// Values to be written whose type code and held type agree: the code follows from the C++ type. Header only.
//
//     const OidTypeValueContainer values{
//         makeOidValue(0x00010011, std::uint8_t{2}),  // OID_TYPE_UINT8, holding an unsigned char
//         makeOidValue(0x00010001, "uplink"),         // OID_TYPE_STRING, holding a std::string
//     };
//     client.setOids(3, values, 5);
//
//     makeOidValue(0x00010012, 2.5);  // does not compile: no code stands for a fraction
//     makeOidMacAddress(0x00010008, 0x1000000000000);  // throws std::out_of_range: 49 bits
//
// A type that is not in the table below does not compile: fractions, single characters, enumerators, pointers, nullptr.
// What leaves the host should have a fixed width: `long` has 32 bits on the node and 64 on a workstation, and gets the
// code of its width.

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>

#include <netinet/in.h>

#include "IfcCardStatusAndControl.h"
#include "message/buffer_t.h"

namespace oidValue {

template <OidValueType TYPE, typename HeldType>
struct TypeAndHeld {
    static constexpr OidValueType CODE = TYPE;
    using Held = HeldType;
};

/// What an integer of this many bytes is held as.
template <std::size_t SIZE, bool IS_SIGNED>
struct OfInteger {
};

// clang-format off
template <> struct OfInteger<8, false> : TypeAndHeld<OID_TYPE_UINT64, unsigned long long> {};
template <> struct OfInteger<4, false> : TypeAndHeld<OID_TYPE_UINT32, unsigned int> {};
template <> struct OfInteger<2, false> : TypeAndHeld<OID_TYPE_UINT16, unsigned short> {};
template <> struct OfInteger<1, false> : TypeAndHeld<OID_TYPE_UINT8, unsigned char> {};
template <> struct OfInteger<8, true> : TypeAndHeld<OID_TYPE_INT64, long long> {};
template <> struct OfInteger<4, true> : TypeAndHeld<OID_TYPE_INT32, int> {};
template <> struct OfInteger<2, true> : TypeAndHeld<OID_TYPE_INT16, short> {};
template <> struct OfInteger<1, true> : TypeAndHeld<OID_TYPE_INT8, signed char> {};
// clang-format on

/// What a value of type T is held as, and its code: `Held` and `CODE`. Neither is there for a type without a code.
template <typename T, typename = void>
struct Of {
};

template <typename T>
struct Of<T, std::enable_if_t<std::is_integral_v<T>>> : OfInteger<sizeof(T), std::is_signed_v<T>> {
};

// clang-format off
template <> struct Of<char> {};
template <> struct Of<wchar_t> {};
template <> struct Of<char16_t> {};
template <> struct Of<char32_t> {};
template <> struct Of<bool> : TypeAndHeld<OID_TYPE_BOOL, bool> {};
template <> struct Of<char*> : TypeAndHeld<OID_TYPE_STRING, std::string> {};
template <> struct Of<const char*> : TypeAndHeld<OID_TYPE_STRING, std::string> {};
template <> struct Of<std::string_view> : TypeAndHeld<OID_TYPE_STRING, std::string> {};
template <> struct Of<std::string> : TypeAndHeld<OID_TYPE_STRING, std::string> {};
template <> struct Of<in_addr> : TypeAndHeld<OID_TYPE_IPV4_ADDRESS, in_addr> {};
template <> struct Of<buffer_t> : TypeAndHeld<OID_TYPE_BUFFER, buffer_t> {};
// clang-format on

}  // namespace oidValue

/// `value` for the object `oid`, with the code of its type. A text from a pointer ends at its first zero byte.
template <typename T, typename Held = typename oidValue::Of<std::decay_t<T>>::Held>
OidTypeValue makeOidValue(std::uint32_t oid, const T& value)
{
    return {oid, oidValue::Of<std::decay_t<T>>::CODE, static_cast<Held>(value)};
}

/// A MAC address for the object `oid`: six bytes, the first one highest, as in 0x001B19000001. Its own function,
/// because it is held like an OID_TYPE_UINT64. Throws std::out_of_range for more than 48 bits.
template <typename Integer, std::enable_if_t<std::is_integral_v<Integer> && !std::is_same_v<Integer, bool>, int> = 0>
OidTypeValue makeOidMacAddress(std::uint32_t oid, Integer address)
{
    const auto number = static_cast<unsigned long long>(address);
    if ((number >> 48U) != 0) {
        throw std::out_of_range("a MAC address has 48 bits");
    }
    return {oid, OID_TYPE_MAC_ADDRESS, number};
}

#endif
