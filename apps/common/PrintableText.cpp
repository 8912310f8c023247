#include "common/PrintableText.h"

#include <algorithm>
#include <cstdio>
#include <optional>

namespace brantel {
namespace {

struct Character {
    std::optional<char32_t> codePoint;  ///< none: the bytes are not UTF-8
    std::size_t length = 1;             ///< in bytes, at least one
};

struct ByteRange {
    unsigned char first;
    unsigned char last;
};

// What the first byte of a character defines. The range of the second byte is narrower for some first bytes, which
// excludes overlong forms, surrogates and code points beyond U+10FFFF.
struct LeadByte {
    std::size_t length;
    ByteRange second;
};

std::optional<LeadByte> leadByteOf(unsigned char byte)
{
    if (byte < 0x80) {
        return LeadByte{1, {0, 0}};
    }
    if ((byte >= 0xC2) && (byte <= 0xDF)) {
        return LeadByte{2, {0x80, 0xBF}};
    }
    if ((byte >= 0xE0) && (byte <= 0xEF)) {
        const unsigned char first = (byte == 0xE0) ? 0xA0 : 0x80;
        const unsigned char last = (byte == 0xED) ? 0x9F : 0xBF;
        return LeadByte{3, {first, last}};
    }
    if ((byte >= 0xF0) && (byte <= 0xF4)) {
        const unsigned char first = (byte == 0xF0) ? 0x90 : 0x80;
        const unsigned char last = (byte == 0xF4) ? 0x8F : 0xBF;
        return LeadByte{4, {first, last}};
    }
    return std::nullopt;
}

// The character at the start of a text that is not empty; of a broken one, the bytes before the first that is wrong.
Character firstCharacter(std::string_view text)
{
    const auto byteAt = [&](std::size_t position) { return static_cast<unsigned char>(text[position]); };
    const std::optional<LeadByte> lead = leadByteOf(byteAt(0));
    if (!lead) {
        return {std::nullopt, 1};
    }
    constexpr unsigned int PAYLOAD_BITS = 6;
    char32_t codePoint = (lead->length == 1) ? byteAt(0) : byteAt(0) & (0x7FU >> lead->length);
    for (std::size_t i = 1; i < lead->length; ++i) {
        const ByteRange range = (i == 1) ? lead->second : ByteRange{0x80, 0xBF};
        if ((i >= text.size()) || (byteAt(i) < range.first) || (byteAt(i) > range.last)) {
            return {std::nullopt, i};
        }
        codePoint = (codePoint << PAYLOAD_BITS) | (byteAt(i) & 0x3FU);
    }
    return {codePoint, lead->length};
}

bool isIn(char32_t codePoint, char32_t first, char32_t last)
{
    return (codePoint >= first) && (codePoint <= last);
}

bool isControl(char32_t codePoint)
{
    return (codePoint < 0x20) || isIn(codePoint, 0x7F, 0x9F);
}

bool isLineSeparatorOrBidirectionalMark(char32_t codePoint)
{
    return (codePoint == 0x061C) || isIn(codePoint, 0x200E, 0x200F) || isIn(codePoint, 0x2028, 0x202E) ||
           isIn(codePoint, 0x2066, 0x2069);
}

bool isShown(char32_t codePoint)
{
    return !isControl(codePoint) && !isLineSeparatorOrBidirectionalMark(codePoint);
}

}  // namespace

std::string printable(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        const Character character = firstCharacter(text);
        if (!character.codePoint) {
            result += "\xEF\xBF\xBD";
        } else if (*character.codePoint == U'\t') {
            result += ' ';
        } else if (!isShown(*character.codePoint)) {
            result += '?';
        } else {
            result += text.substr(0, character.length);
        }
        text.remove_prefix(character.length);
    }
    return result;
}

std::string printableJson(std::string_view json)
{
    std::string result;
    while (!json.empty()) {
        const Character character = firstCharacter(json);
        if (character.codePoint && !isShown(*character.codePoint)) {
            char escaped[sizeof "\\uFFFF"];
            static_cast<void>(
                std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned int>(*character.codePoint)));
            result += escaped;
        } else {
            result += json.substr(0, character.length);
        }
        json.remove_prefix(character.length);
    }
    return result;
}

std::size_t utf8Length(std::string_view text)
{
    std::size_t length = 0;
    while (length < text.size()) {
        const Character character = firstCharacter(text.substr(length));
        if (!character.codePoint) {
            break;
        }
        length += character.length;
    }
    return length;
}

std::size_t characterCount(std::string_view text, std::size_t length)
{
    const std::size_t end = std::min(length, text.size());
    std::size_t count = 0;
    for (std::size_t position = 0; position < end; ++count) {
        position += firstCharacter(text.substr(position)).length;
    }
    return count;
}

std::string shortened(std::string_view text)
{
    constexpr std::size_t LONGEST = 80;
    std::size_t length = 0;
    for (std::size_t count = 0; (count < LONGEST) && (length < text.size()); ++count) {
        length += firstCharacter(text.substr(length)).length;
    }
    return std::string(text.substr(0, length)) + ((length < text.size()) ? "..." : "");
}

std::string inQuotes(std::string_view text)
{
    return "'" + shortened(text) + "'";
}

}  // namespace brantel
