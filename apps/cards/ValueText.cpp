#include "cards/ValueText.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace {

struct TypeName {
    OidValueType type;
    const char* name;
};

constexpr TypeName TYPE_NAMES[] = {
    {OID_TYPE_UINT64, "uint64"},   {OID_TYPE_UINT32, "uint32"}, {OID_TYPE_UINT16, "uint16"},
    {OID_TYPE_UINT8, "uint8"},     {OID_TYPE_INT64, "int64"},   {OID_TYPE_INT32, "int32"},
    {OID_TYPE_INT16, "int16"},     {OID_TYPE_INT8, "int8"},     {OID_TYPE_BOOL, "bool"},
    {OID_TYPE_STRING, "string"},   {OID_TYPE_BUFFER, "buffer"}, {OID_TYPE_IPV4_ADDRESS, "ipv4"},
    {OID_TYPE_MAC_ADDRESS, "mac"},
};

constexpr int MAC_BYTES = 6;

template <typename Integer>
std::optional<Integer> integerOf(const std::string& text)
{
    const bool isHexadecimal = (text.compare(0, 2, "0x") == 0) && (text.size() > 2) && (text[2] != '-');
    const char* const pBegin = text.data() + (isHexadecimal ? 2 : 0);
    const char* const pEnd = text.data() + text.size();
    Integer value = 0;
    const std::from_chars_result result = std::from_chars(pBegin, pEnd, value, isHexadecimal ? 16 : 10);
    return ((result.ec == std::errc()) && (result.ptr == pEnd)) ? std::optional(value) : std::nullopt;
}

template <typename Value>
std::optional<boost::any> anyOf(const std::optional<Value>& value)
{
    return value ? std::optional<boost::any>(*value) : std::nullopt;
}

std::optional<bool> boolOf(const std::string& text)
{
    if ((text == "true") || (text == "1")) {
        return true;
    }
    return ((text == "false") || (text == "0")) ? std::optional(false) : std::nullopt;
}

std::optional<in_addr> addressOf(const std::string& text)
{
    in_addr address = {};
    return (inet_pton(AF_INET, text.c_str(), &address) == 1) ? std::optional(address) : std::nullopt;
}

std::optional<unsigned char> byteOf(const std::string& twoDigits)
{
    unsigned int byte = 0;
    const char* const pEnd = twoDigits.data() + 2;
    const bool isByte = (twoDigits.size() == 2) && (std::from_chars(twoDigits.data(), pEnd, byte, 16).ptr == pEnd);
    return isByte ? std::optional(static_cast<unsigned char>(byte)) : std::nullopt;
}

std::optional<buffer_t> bufferOf(const std::string& hex)
{
    buffer_t buffer;
    if (hex.size() > 2 * buffer_t::CAPACITY) {
        return std::nullopt;
    }
    for (std::size_t i = 0; i < hex.size(); i += 2) {
        const std::optional<unsigned char> byte = byteOf(hex.substr(i, 2));
        if (!byte) {
            return std::nullopt;
        }
        buffer << *byte;
    }
    return buffer;
}

std::optional<unsigned long long> macOf(const std::string& text)
{
    if (text.size() != 3 * MAC_BYTES - 1) {
        return std::nullopt;
    }
    unsigned long long mac = 0;
    for (std::size_t i = 0; i < text.size(); i += 3) {
        const std::optional<unsigned char> byte = byteOf(text.substr(i, 2));
        if (!byte || ((i > 0) && (text[i - 1] != ':'))) {
            return std::nullopt;
        }
        mac = (mac << 8U) | *byte;
    }
    return mac;
}

std::string twoDigitsOf(unsigned long long byte)
{
    static const char digits[] = "0123456789abcdef";
    return {digits[(byte >> 4U) & 0xFU], digits[byte & 0xFU]};
}

std::string textOfAddress(const in_addr& address)
{
    char text[INET_ADDRSTRLEN] = "";
    inet_ntop(AF_INET, &address, text, sizeof text);
    return text;
}

std::string textOfBuffer(const buffer_t& buffer)
{
    std::string text;
    for (std::size_t i = 0; i < buffer.size(); ++i) {
        text += twoDigitsOf(buffer.data()[i]);
    }
    return text;
}

std::string textOfMac(unsigned long long mac)
{
    std::string text;
    for (int i = MAC_BYTES - 1; i >= 0; --i) {
        text += twoDigitsOf(mac >> (8 * i)) + ((i > 0) ? ":" : "");
    }
    return text;
}

template <typename Integer>
std::string textOfInteger(const boost::any& value)
{
    return std::to_string(boost::any_cast<Integer>(value));
}

}  // namespace

std::string nameOfType(OidValueType type)
{
    const auto* const pEntry = std::find_if(std::begin(TYPE_NAMES), std::end(TYPE_NAMES),
                                            [type](const TypeName& t) { return t.type == type; });
    return (pEntry == std::end(TYPE_NAMES)) ? "type " + std::to_string(type) : pEntry->name;
}

std::string namesOfTypes()
{
    std::string names;
    for (const TypeName& entry : TYPE_NAMES) {
        names += (names.empty() ? "" : " ") + std::string(entry.name);
    }
    return names;
}

std::optional<OidValueType> typeOfName(const std::string& name)
{
    const auto* const pEntry = std::find_if(std::begin(TYPE_NAMES), std::end(TYPE_NAMES),
                                            [&name](const TypeName& t) { return t.name == name; });
    return (pEntry == std::end(TYPE_NAMES)) ? std::nullopt : std::optional(pEntry->type);
}

std::optional<boost::any> valueOfText(OidValueType type, const std::string& text)
{
    switch (type) {
        case OID_TYPE_UINT64: return anyOf(integerOf<unsigned long long>(text));
        case OID_TYPE_UINT32: return anyOf(integerOf<unsigned int>(text));
        case OID_TYPE_UINT16: return anyOf(integerOf<unsigned short>(text));
        case OID_TYPE_UINT8: return anyOf(integerOf<unsigned char>(text));
        case OID_TYPE_INT64: return anyOf(integerOf<long long>(text));
        case OID_TYPE_INT32: return anyOf(integerOf<int>(text));
        case OID_TYPE_INT16: return anyOf(integerOf<short>(text));
        case OID_TYPE_INT8: return anyOf(integerOf<signed char>(text));
        case OID_TYPE_BOOL: return anyOf(boolOf(text));
        case OID_TYPE_STRING: return boost::any(text);
        case OID_TYPE_IPV4_ADDRESS: return anyOf(addressOf(text));
        case OID_TYPE_BUFFER: return anyOf(bufferOf(text));
        case OID_TYPE_MAC_ADDRESS: return anyOf(macOf(text));
    }
    return std::nullopt;
}

std::string textOfValue(OidValueType type, const boost::any& value)
{
    switch (type) {
        case OID_TYPE_UINT64: return textOfInteger<unsigned long long>(value);
        case OID_TYPE_UINT32: return textOfInteger<unsigned int>(value);
        case OID_TYPE_UINT16: return textOfInteger<unsigned short>(value);
        case OID_TYPE_UINT8: return textOfInteger<unsigned char>(value);
        case OID_TYPE_INT64: return textOfInteger<long long>(value);
        case OID_TYPE_INT32: return textOfInteger<int>(value);
        case OID_TYPE_INT16: return textOfInteger<short>(value);
        case OID_TYPE_INT8: return textOfInteger<signed char>(value);
        case OID_TYPE_BOOL: return boost::any_cast<bool>(value) ? "true" : "false";
        case OID_TYPE_STRING: return boost::any_cast<std::string>(value);
        case OID_TYPE_IPV4_ADDRESS: return textOfAddress(boost::any_cast<in_addr>(value));
        case OID_TYPE_BUFFER: return textOfBuffer(boost::any_cast<buffer_t>(value));
        case OID_TYPE_MAC_ADDRESS: return textOfMac(boost::any_cast<unsigned long long>(value));
    }
    return "";
}

std::optional<std::uint32_t> numberOfText(const std::string& text)
{
    return integerOf<std::uint32_t>(text);
}
