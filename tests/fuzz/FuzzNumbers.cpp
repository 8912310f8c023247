// Numbers as people might write them: whole and real numbers, values of objects, faults of a card. What is read is what
// a reader digit by digit reads, and what was read is the same after it is written. A card corrupts any answer by any
// list of faults.
//
// Input: any text.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <optional>

#include "cards/Faults.h"
#include "cards/ValueText.h"
#include "common/Numbers.h"
#include "fuzz/Fuzz.h"

namespace brantel {
namespace {

// Room for any number of 64 bits, and more.
__extension__ typedef __int128 Wide;  // NOLINT(modernize-use-using): __extension__ is for declarations

int digitOf(char c, int base)
{
    const std::string digits = "0123456789abcdef";
    const char lower = ((c >= 'A') && (c <= 'F')) ? static_cast<char>(c - 'A' + 'a') : c;
    const std::size_t digit = digits.substr(0, static_cast<std::size_t>(base)).find(lower);
    return (digit == std::string::npos) ? -1 : static_cast<int>(digit);
}

// Digit by digit, and no further than any number of 64 bits.
std::optional<Wide> slowInteger(std::string text)
{
    const bool isNegative = (text.substr(0, 1) == "-");
    const std::string prefix = text.substr(0, 2);
    const int base = ((prefix == "0x") || (prefix == "0X")) ? 16 : 10;
    text.erase(0, (base == 16) ? 2 : (isNegative ? 1 : 0));
    constexpr Wide TOO_LARGE = Wide{1} << 100;
    Wide number = 0;
    for (const char c : text) {
        const int digit = digitOf(c, base);
        if (digit < 0) {
            return std::nullopt;
        }
        number = std::min(number * base + digit, TOO_LARGE);
    }
    return text.empty() ? std::nullopt : std::optional(isNegative ? -number : number);
}

template <typename Integer>
void requireIntegers(const std::string& text, Integer lowest, Integer highest)
{
    const std::optional<Integer> number = parseInteger<Integer>(text, lowest, highest);
    std::optional<Wide> expected = slowInteger(text);
    const bool isRefusedSign = std::is_unsigned_v<Integer> && (text.substr(0, 1) == "-");
    if (expected && (isRefusedSign || (*expected < lowest) || (*expected > highest))) {
        expected.reset();
    }
    require(number.has_value() == expected.has_value());
    if (number) {
        require(*number == *expected);
        require(parseInteger<Integer>(std::to_string(*number)) == number);
    }
}

void requireReals(const std::string& text)
{
    const std::optional<double> number = parseReal(text, -1e300, 1e300);
    if (!number) {
        return;
    }
    require((*number >= -1e300) && (*number <= 1e300));
    require(text.find_first_not_of("0123456789+-.eE") == std::string::npos);
    require(text.front() != '+');
    char written[64];
    require(std::snprintf(written, sizeof written, "%.17g", *number) > 0);
    require(parseReal(written, -1e300, 1e300) == number);
    require(!parseReal(text, std::nextafter(*number, 1e301), 1e301));
}

void requireValues(const std::string& text)
{
    for (int code = OID_TYPE_UINT64; code <= OID_TYPE_MAC_ADDRESS; ++code) {
        const auto type = static_cast<OidValueType>(code);
        if (parseType(typeText(type)) != type) {
            continue;
        }
        const std::optional<boost::any> value = parseValue(type, text);
        if (value) {
            const std::string written = valueText(type, *value);
            const std::optional<boost::any> again = parseValue(type, written);
            require(again && (valueText(type, *again) == written));
        }
    }
}

// A card's answer with `nValues` values.
buffer_t answerOf(std::uint32_t nValues)
{
    OidTypeValueContainer values;
    for (std::uint32_t oid = 1; oid <= nValues; ++oid) {
        values.push_back({oid, OID_TYPE_UINT32, oid});
    }
    buffer_t tlvs;
    require(convertOidTypeValueContainerToTlvs(values, tlvs));
    return tlvs;
}

void requireFaults(const std::string& text)
{
    const std::optional<Faults> faults = parseFaults(text);
    require(faults.has_value() == reasonAgainstFaults(text).empty());
    if (!faults) {
        return;
    }
    require(faults->text == text);
    require(!faults->delay || ((*faults->delay >= 0) && (*faults->delay <= 3600)));
    require(!faults->result || (*faults->result != 0));
    for (const std::uint32_t nValues : {0U, 1U, 2U, 3U}) {
        const std::optional<buffer_t> spoilt = corruptedStream(*faults, answerOf(nValues));
        require(!spoilt || (spoilt->size() <= buffer_t::CAPACITY));
    }
}

}  // namespace

FUZZ_TARGET(pData, size)
{
    const std::string text = textOf(pData, size);
    requireIntegers<std::int64_t>(text, INT64_MIN, INT64_MAX);
    requireIntegers<std::uint64_t>(text, 0, UINT64_MAX);
    requireIntegers<std::int32_t>(text, -5, 70000);
    requireIntegers<std::uint32_t>(text, 1, UINT32_MAX);
    requireIntegers<unsigned char>(text, 0, UINT8_MAX);
    requireReals(text);
    requireValues(text);
    requireFaults(text);
    return 0;
}

}  // namespace brantel
