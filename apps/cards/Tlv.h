#ifndef APPS_CARDS_TLV_H
#define APPS_CARDS_TLV_H

// The bytes of requests and answers, where the library's codec is not enough: the elements of a stream, and which
// values in an answer are malformed. The library reads as many bytes of an element as the type code says, ignores the
// rest and does not know the type that an object has, so a value under the code of a shorter type would become another
// number.
//
//     stream     count, elements
//     element    length of the rest, OID; with a value also: type code, value
//     value      a number in its size; a string, buffer or MAC address as length and bytes

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "IfcCardStatusAndControl.h"
#include "message/buffer_t.h"

namespace brantel {

namespace tlv {

constexpr std::size_t COUNT_SIZE = 4;
constexpr std::size_t LENGTH_SIZE = 4;
constexpr std::size_t OID_SIZE = 4;
constexpr std::size_t TYPE_SIZE = 1;
constexpr std::size_t MAC_SIZE = 6;

constexpr std::size_t POS_TYPE = OID_SIZE;  // in an element
constexpr std::size_t POS_VALUE = POS_TYPE + TYPE_SIZE;

}  // namespace tlv

/// An element of a stream, in place: valid as long as the stream is.
struct TlvElement {
    const unsigned char* bytes;
    std::size_t length;
};

/// The elements of a stream; nothing if there are fewer or more bytes than its count and lengths say.
std::optional<std::vector<TlvElement>> elementsIn(const buffer_t& tlvs);

/// The same as buffers of their own.
std::optional<std::vector<buffer_t>> elementsOf(const buffer_t& tlvs);

/// The OID of the object that the element is about; nothing if it is too short to have one.
std::optional<std::uint32_t> oidOfElement(const TlvElement& element);

/// Whether the element holds one value of its type and nothing else, and the type is that of the object, if the table
/// of objects names one.
bool isWellFormedValue(const TlvElement& element);

/// How many bytes the value takes in a stream, its length included.
std::size_t elementSize(const OidTypeValue& value);

}  // namespace brantel

#endif
