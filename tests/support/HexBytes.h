#ifndef TESTS_SUPPORT_HEX_BYTES_H
#define TESTS_SUPPORT_HEX_BYTES_H

// Buffers as tests write them down: two digits a byte, blanks wherever they help to read.

#include <cstddef>
#include <stdexcept>
#include <string>

#include "message/buffer_t.h"

inline std::string bytesOf(const std::string& hex)
{
    static const std::string digits = "0123456789ABCDEF";
    std::string bytes;
    std::size_t numberOfDigits = 0;
    for (const char character : hex) {
        if (character == ' ') {
            continue;
        }
        const std::size_t value = digits.find(character);
        if (value == std::string::npos) {
            throw std::invalid_argument("not a hexadecimal digit in '" + hex + "'");
        }
        if (numberOfDigits++ % 2 == 0) {
            bytes.push_back(static_cast<char>(value << 4));
        } else {
            bytes.back() = static_cast<char>(static_cast<unsigned char>(bytes.back()) | value);
        }
    }
    if (numberOfDigits % 2 != 0) {
        throw std::invalid_argument("half a byte in '" + hex + "'");
    }
    return bytes;
}

inline buffer_t bufferOf(const std::string& hex)
{
    const std::string bytes = bytesOf(hex);
    return buffer_t(bytes.data(), bytes.size());
}

/// Without blanks.
inline std::string hexOf(const void* bytes, std::size_t length)
{
    static const char digits[] = "0123456789ABCDEF";
    const auto* const pBytes = static_cast<const unsigned char*>(bytes);
    std::string hex;
    for (std::size_t i = 0; i < length; ++i) {
        hex.push_back(digits[pBytes[i] >> 4]);
        hex.push_back(digits[pBytes[i] & 0x0F]);
    }
    return hex;
}

inline std::string hexOf(const buffer_t& buffer)
{
    return hexOf(buffer.data(), buffer.size());
}

/// The same digits without the blanks, to compare with hexOf.
inline std::string withoutBlanks(const std::string& hex)
{
    const std::string bytes = bytesOf(hex);
    return hexOf(bytes.data(), bytes.size());
}

#endif
