// Streams as a card might send them: the first OID is found, or refused, and nothing else happens.

#include <optional>
#include <stdexcept>

#include "fuzz/Fuzz.h"
#include "library/cards/SecondDecoder.h"

namespace {

std::optional<std::uint32_t> firstOid(const std::string& bytes)
{
    secondDecoder::ByteReader stream(bytes);
    if (stream.number(4).value_or(0) == 0) {
        return std::nullopt;
    }
    const auto element = stream.block();
    const auto oid = element ? secondDecoder::ByteReader(*element).number(4) : std::nullopt;
    return oid ? std::make_optional(static_cast<std::uint32_t>(*oid)) : std::nullopt;
}

std::optional<std::uint32_t> extractedOid(const buffer_t& tlvs)
{
    constexpr std::uint32_t UNTOUCHED = 0x12345678;
    std::uint32_t oid = UNTOUCHED;
    try {
        if (extractFirstOidFromTlvs(0, tlvs, oid)) {
            return oid;
        }
    } catch (const std::out_of_range&) {
    }
    require(oid == UNTOUCHED);
    return std::nullopt;
}

}  // namespace

FUZZ_TARGET(pData, size)
{
    if (size > buffer_t::CAPACITY) {
        return 0;
    }
    const std::string bytes = textOf(pData, size);
    require(extractedOid(buffer_t(bytes.data(), bytes.size())) == firstOid(bytes));
    return 0;
}
