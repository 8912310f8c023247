// Texts of any bytes: made printable, they are one line of valid UTF-8 without anything that a terminal obeys, with as
// many characters, and do not change when made printable again.

#include <algorithm>
#include <cstdint>
#include <vector>

#include "common/PrintableText.h"
#include "fuzz/Fuzz.h"

namespace brantel {
namespace {

// The code points of a text that must be UTF-8.
std::vector<std::uint32_t> codePointsOf(const std::string& text)
{
    std::vector<std::uint32_t> codePoints;
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const std::size_t length = (lead < 0x80) ? 1 : (lead < 0xE0) ? 2 : (lead < 0xF0) ? 3 : 4;
        require((lead < 0x80) || ((lead >= 0xC2) && (lead <= 0xF4)));
        require(i + length <= text.size());
        std::uint32_t codePoint = (length == 1) ? lead : lead & (0xFFU >> (length + 1));
        for (std::size_t k = 1; k < length; ++k) {
            const auto byte = static_cast<unsigned char>(text[i + k]);
            require((byte & 0xC0U) == 0x80);
            codePoint = (codePoint << 6U) | (byte & 0x3FU);
        }
        require((length < 3) || (codePoint >= ((length == 3) ? 0x800U : 0x10000U)));
        require((codePoint <= 0x10FFFF) && ((codePoint < 0xD800) || (codePoint > 0xDFFF)));
        codePoints.push_back(codePoint);
        i += length;
    }
    return codePoints;
}

bool isObeyed(std::uint32_t codePoint)
{
    const bool isControl = (codePoint < 0x20) || ((codePoint >= 0x7F) && (codePoint <= 0x9F));
    const bool isDirection = (codePoint == 0x61C) || (codePoint == 0x200E) || (codePoint == 0x200F) ||
                             ((codePoint >= 0x202A) && (codePoint <= 0x202E)) ||
                             ((codePoint >= 0x2066) && (codePoint <= 0x2069));
    return isControl || isDirection || (codePoint == 0x2028) || (codePoint == 0x2029);
}

}  // namespace

FUZZ_TARGET(pData, size)
{
    const std::string text = textOf(pData, size);
    const std::string shown = printable(text);
    const std::vector<std::uint32_t> codePoints = codePointsOf(shown);
    for (const std::uint32_t codePoint : codePoints) {
        require(!isObeyed(codePoint));
    }
    require(characterCount(text, text.size()) == codePoints.size());
    require(printable(shown) == shown);
    constexpr std::size_t ENOUGH = 64;
    for (std::size_t length = 1; length <= std::min(text.size(), ENOUGH); ++length) {
        const std::size_t more = characterCount(text, length) - characterCount(text, length - 1);
        require(more <= 1);
    }
    return 0;
}

}  // namespace brantel
