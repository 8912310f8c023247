#ifndef FOREIGN_MESSAGE_BUFFER_T_H
#define FOREIGN_MESSAGE_BUFFER_T_H

// A byte buffer of another framework, as different from ours as possible: least significant byte first, nested buffers
// behind their length in one byte, strings before a zero, a capacity of 64 bytes on the heap, and exceptions that
// tests choose.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

class buffer_t {
public:
    buffer_t() = default;
    buffer_t(const void* bytes, std::size_t length)
        : m_bytes(static_cast<const unsigned char*>(bytes), static_cast<const unsigned char*>(bytes) + length)
    {
    }

    std::size_t size() const { return m_bytes.size(); }
    const unsigned char* data() const { return m_bytes.data(); }
    void clear() { *this = buffer_t(); }

    template <typename Integer, std::enable_if_t<std::is_integral_v<Integer>, int> = 0>
    buffer_t& operator<<(Integer value)
    {
        for (std::size_t i = 0; i < sizeof value; ++i) {
            append(static_cast<unsigned char>(static_cast<unsigned long long>(value) >> (8 * i)));
        }
        return *this;
    }

    buffer_t& operator<<(const std::string& text)
    {
        appendBytes(text.c_str(), text.size() + 1);
        return *this;
    }

    buffer_t& operator<<(const buffer_t& nested)
    {
        append(static_cast<unsigned char>(nested.size()));
        appendBytes(nested.data(), nested.size());
        return *this;
    }

    template <typename Integer, std::enable_if_t<std::is_integral_v<Integer>, int> = 0>
    const buffer_t& operator>>(Integer& value) const
    {
        unsigned long long number = 0;
        for (std::size_t i = 0; i < sizeof value; ++i) {
            number |= static_cast<unsigned long long>(next()) << (8 * i);
        }
        value = static_cast<Integer>(number);
        return *this;
    }

    const buffer_t& operator>>(std::string& text) const
    {
        text.clear();
        for (unsigned char character = next(); character != 0; character = next()) {
            text += static_cast<char>(character);
        }
        return *this;
    }

    const buffer_t& operator>>(buffer_t& nested) const
    {
        nested.clear();
        for (unsigned char length = next(); length > 0; --length) {
            nested.append(next());
        }
        return *this;
    }

    /// Called where a write does not fit and a read finds nothing left; must throw.
    static inline std::function<void()> fail;

private:
    void append(unsigned char byte)
    {
        if (m_bytes.size() == 64) {
            fail();
        }
        m_bytes.push_back(byte);
    }

    void appendBytes(const void* bytes, std::size_t length)
    {
        for (std::size_t i = 0; i < length; ++i) {
            append(static_cast<const unsigned char*>(bytes)[i]);
        }
    }

    unsigned char next() const
    {
        if (m_readPosition == m_bytes.size()) {
            fail();
        }
        return m_bytes[m_readPosition++];
    }

    std::vector<unsigned char> m_bytes;
    mutable std::size_t m_readPosition = 0;
};

#endif
