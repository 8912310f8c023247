#include "cards/ValueText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>

#include <arpa/inet.h>

#include "cards/Tlv.h"
#include "cards/ValueVisitor.h"
#include "common/Numbers.h"

namespace brantel {
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

template <typename Value>
std::optional<boost::any> anyOf(const std::optional<Value>& value)
{
    return value ? std::optional<boost::any>(*value) : std::nullopt;
}

std::optional<bool> parseBool(const std::string& text)
{
    if ((text == "true") || (text == "1")) {
        return true;
    }
    return ((text == "false") || (text == "0")) ? std::optional(false) : std::nullopt;
}

std::optional<in_addr> parseAddress(const std::string& text)
{
    in_addr address = {};
    return (inet_pton(AF_INET, text.c_str(), &address) == 1) ? std::optional(address) : std::nullopt;
}

std::optional<unsigned char> parseByte(const std::string& twoDigits)
{
    unsigned int byte = 0;
    const char* const pEnd = twoDigits.data() + 2;
    const bool isByte = (twoDigits.size() == 2) && (std::from_chars(twoDigits.data(), pEnd, byte, 16).ptr == pEnd);
    return isByte ? std::optional(static_cast<unsigned char>(byte)) : std::nullopt;
}

std::optional<buffer_t> parseBuffer(const std::string& hex)
{
    buffer_t buffer;
    if (hex.size() > 2 * buffer_t::CAPACITY) {
        return std::nullopt;
    }
    for (std::size_t i = 0; i < hex.size(); i += 2) {
        const std::optional<unsigned char> byte = parseByte(hex.substr(i, 2));
        if (!byte) {
            return std::nullopt;
        }
        buffer << *byte;
    }
    return buffer;
}

std::optional<unsigned long long> parseMac(const std::string& text)
{
    if (text.size() != 3 * tlv::MAC_SIZE - 1) {
        return std::nullopt;
    }
    unsigned long long mac = 0;
    for (std::size_t i = 0; i < text.size(); i += 3) {
        const std::optional<unsigned char> byte = parseByte(text.substr(i, 2));
        if (!byte || ((i > 0) && (text[i - 1] != ':'))) {
            return std::nullopt;
        }
        mac = (mac << 8U) | *byte;
    }
    return mac;
}

std::string twoDigitsText(unsigned long long byte)
{
    static const char digits[] = "0123456789abcdef";
    return {digits[(byte >> 4U) & 0xFU], digits[byte & 0xFU]};
}

std::string addressText(const in_addr& address)
{
    char text[INET_ADDRSTRLEN] = "";
    inet_ntop(AF_INET, &address, text, sizeof text);
    return text;
}

std::string bufferText(const buffer_t& buffer)
{
    std::string text;
    for (std::size_t i = 0; i < buffer.size(); ++i) {
        text += twoDigitsText(buffer.data()[i]);
    }
    return text;
}

std::string macText(unsigned long long mac)
{
    std::string text;
    for (std::size_t i = tlv::MAC_SIZE; i > 0; --i) {
        text += twoDigitsText(mac >> (8 * (i - 1))) + ((i > 1) ? ":" : "");
    }
    return text;
}

struct ValueParser {
    template <typename Integer>
    std::optional<boost::any> operator()(ValueTag<Integer>) const
    {
        return anyOf(parseInteger<Integer>(text));
    }
    std::optional<boost::any> operator()(ValueTag<bool>) const { return anyOf(parseBool(text)); }
    std::optional<boost::any> operator()(ValueTag<std::string>) const { return boost::any(text); }
    std::optional<boost::any> operator()(ValueTag<in_addr>) const { return anyOf(parseAddress(text)); }
    std::optional<boost::any> operator()(ValueTag<buffer_t>) const { return anyOf(parseBuffer(text)); }
    std::optional<boost::any> operator()(ValueTag<MacAddress>) const { return anyOf(parseMac(text)); }

    const std::string& text;
};

struct ValueWriter {
    template <typename Integer>
    std::string operator()(Integer number) const
    {
        return std::to_string(number);
    }
    std::string operator()(bool value) const { return value ? "true" : "false"; }
    std::string operator()(const std::string& text) const { return text; }
    std::string operator()(const in_addr& address) const { return addressText(address); }
    std::string operator()(const buffer_t& buffer) const { return bufferText(buffer); }
    std::string operator()(MacAddress address) const { return macText(address.number); }
};

}  // namespace

std::string typeText(OidValueType type)
{
    const auto* const pEntry = std::find_if(std::begin(TYPE_NAMES), std::end(TYPE_NAMES),
                                            [type](const TypeName& t) { return t.type == type; });
    return (pEntry == std::end(TYPE_NAMES)) ? "type " + std::to_string(type) : pEntry->name;
}

std::vector<std::string> typeTexts()
{
    std::vector<std::string> names;
    for (const TypeName& entry : TYPE_NAMES) {
        names.emplace_back(entry.name);
    }
    return names;
}

std::optional<OidValueType> parseType(const std::string& name)
{
    const auto* const pEntry = std::find_if(std::begin(TYPE_NAMES), std::end(TYPE_NAMES),
                                            [&name](const TypeName& t) { return t.name == name; });
    return (pEntry == std::end(TYPE_NAMES)) ? std::nullopt : std::optional(pEntry->type);
}

std::optional<boost::any> parseValue(OidValueType type, const std::string& text)
{
    return visitType(type, ValueParser{text});
}

std::string valueText(OidValueType type, const boost::any& value)
{
    return visitValue(type, value, ValueWriter());
}

}  // namespace brantel
