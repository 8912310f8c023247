#ifndef TESTS_LIBRARY_CARDS_SECOND_DECODER_H
#define TESTS_LIBRARY_CARDS_SECOND_DECODER_H

// A slow and obvious decoder of streams of values, to compare the library's with.

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "library/cards/ValueTexts.h"

namespace secondDecoder {

// Reads from a text of bytes; a read past its end yields no value.
class ByteReader {
public:
    explicit ByteReader(std::string bytes) : m_bytes(std::move(bytes)) {}

    std::optional<unsigned long long> number(std::size_t width)
    {
        const auto bytes = take(width);
        if (!bytes) {
            return std::nullopt;
        }
        unsigned long long value = 0;
        for (const char byte : *bytes) {
            value = value * 256 + static_cast<unsigned char>(byte);
        }
        return value;
    }

    std::optional<std::string> block()
    {
        const auto length = number(4);
        return length ? take(*length) : std::nullopt;
    }

private:
    std::optional<std::string> take(unsigned long long length)
    {
        if (length > m_bytes.size()) {
            return std::nullopt;
        }
        std::string taken = m_bytes.substr(0, static_cast<std::size_t>(length));
        m_bytes.erase(0, static_cast<std::size_t>(length));
        return taken;
    }

    std::string m_bytes;
};

template <typename T>
std::optional<boost::any> decodeNumber(ByteReader& element)
{
    const auto number = element.number(sizeof(T));
    return number ? std::make_optional(boost::any(static_cast<T>(*number))) : std::nullopt;
}

inline std::optional<boost::any> decodeValue(unsigned long long code, ByteReader& element)
{
    switch (code) {
        case 0: return decodeNumber<unsigned long long>(element);
        case 1: return decodeNumber<unsigned int>(element);
        case 2: return decodeNumber<unsigned short>(element);
        case 3: return decodeNumber<unsigned char>(element);
        case 4: return decodeNumber<long long>(element);
        case 5: return decodeNumber<int>(element);
        case 6: return decodeNumber<short>(element);
        case 7: return decodeNumber<signed char>(element);
        case 8: return decodeNumber<bool>(element);
        case 10: {
            const auto number = element.number(4);
            return number ? std::make_optional(boost::any(addressOf(static_cast<std::uint32_t>(*number))))
                          : std::nullopt;
        }
        default: break;
    }
    if ((code != 9) && (code != 12) && (code != 13)) {
        return std::nullopt;
    }
    auto block = element.block();
    if (!block) {
        return std::nullopt;
    }
    if (code == 9) {
        return boost::any(*block);
    }
    if (code == 12) {
        return boost::any(buffer_t(block->data(), block->size()));
    }
    block->resize(std::min<std::size_t>(block->size(), 6));
    block->resize(6, '\xEE');
    return boost::any(*ByteReader(*block).number(6));
}

// No value if the stream has a fault.
inline std::optional<OidTypeValueMap> decode(const std::string& bytes, const ObjectIdContainer* requestedOids)
{
    ByteReader stream(bytes);
    const auto count = stream.number(4);
    if (!count || ((requestedOids != nullptr) && (*count != requestedOids->size()))) {
        return std::nullopt;
    }
    OidTypeValueMap values;
    for (unsigned long long i = 0; i < *count; ++i) {
        const auto block = stream.block();
        if (!block) {
            return std::nullopt;
        }
        ByteReader element(*block);
        const auto oid = element.number(4);
        const auto code = element.number(1);
        if (!oid || !code) {
            return std::nullopt;
        }
        if ((requestedOids != nullptr) &&
            (std::count(requestedOids->begin(), requestedOids->end(), static_cast<std::uint32_t>(*oid)) == 0)) {
            return std::nullopt;
        }
        const auto value = decodeValue(*code, element);
        const TypeValueRecord record{static_cast<OidValueType>(*code), value.value_or(boost::any())};
        if (!value || !values.emplace(static_cast<std::uint32_t>(*oid), record).second) {
            return std::nullopt;
        }
    }
    return values;
}

template <typename T>
bool isSameNumber(const boost::any& left, const boost::any& right)
{
    return boost::any_cast<T>(left) == boost::any_cast<T>(right);
}

inline bool isSameValue(const TypeValueRecord& left, const TypeValueRecord& right)
{
    if ((left.type != right.type) || (left.value.type() != right.value.type())) {
        return false;
    }
    switch (left.type) {
        case OID_TYPE_UINT64: return isSameNumber<unsigned long long>(left.value, right.value);
        case OID_TYPE_UINT32: return isSameNumber<unsigned int>(left.value, right.value);
        case OID_TYPE_INT64: return isSameNumber<long long>(left.value, right.value);
        case OID_TYPE_INT32: return isSameNumber<int>(left.value, right.value);
        default: return valueText(left.value) == valueText(right.value);
    }
}

inline bool isSame(const OidTypeValueMap& left, const OidTypeValueMap& right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), [](const auto& one, const auto& other) {
        return (one.first == other.first) && isSameValue(one.second, other.second);
    });
}

}  // namespace secondDecoder

#endif
