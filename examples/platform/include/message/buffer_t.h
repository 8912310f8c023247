#ifndef MINIMAL_BUFFER_T_H
#define MINIMAL_BUFFER_T_H

// Values as they are in memory; before a string or a nested buffer its length.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <type_traits>

class buffer_t {
public:
    buffer_t() = default;
    buffer_t(const void* bytes, std::size_t length) { append(bytes, length); }

    std::size_t size() const { return m_bytes.size(); }
    const unsigned char* data() const { return reinterpret_cast<const unsigned char*>(m_bytes.data()); }
    void clear() { *this = buffer_t(); }

    template <typename Number, std::enable_if_t<std::is_integral_v<Number>, int> = 0>
    buffer_t& operator<<(Number number)
    {
        append(&number, sizeof number);
        return *this;
    }

    buffer_t& operator<<(const std::string& text)
    {
        *this << static_cast<std::uint32_t>(text.size());
        append(text.data(), text.size());
        return *this;
    }

    buffer_t& operator<<(const buffer_t& nested) { return *this << nested.m_bytes; }

    template <typename Number, std::enable_if_t<std::is_integral_v<Number>, int> = 0>
    const buffer_t& operator>>(Number& number) const
    {
        std::memcpy(&number, next(sizeof number), sizeof number);
        return *this;
    }

    const buffer_t& operator>>(std::string& text) const
    {
        std::uint32_t length = 0;
        *this >> length;
        text.assign(next(length), length);
        return *this;
    }

    const buffer_t& operator>>(buffer_t& nested) const
    {
        std::string bytes;
        *this >> bytes;
        nested = buffer_t(bytes.data(), bytes.size());
        return *this;
    }

private:
    void append(const void* bytes, std::size_t length)
    {
        if (length > 2048 - m_bytes.size()) {
            throw std::length_error("the buffer is full");
        }
        m_bytes.append(static_cast<const char*>(bytes), length);
    }

    const char* next(std::size_t length) const
    {
        if (length > m_bytes.size() - m_nRead) {
            throw std::out_of_range("the buffer ends here");
        }
        m_nRead += length;
        return m_bytes.data() + m_nRead - length;
    }

    std::string m_bytes;
    mutable std::size_t m_nRead = 0;
};

#endif
