#ifndef FOREIGN_BUFFER_T_H
#define FOREIGN_BUFFER_T_H

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

// Grows without limit, unlike the tree's own.
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

    buffer_t& operator<<(bool value) { return append(value ? 1u : 0u, 1); }
    buffer_t& operator<<(signed char value) { return append(static_cast<std::uint64_t>(value), 1); }
    buffer_t& operator<<(unsigned char value) { return append(value, 1); }
    buffer_t& operator<<(short value) { return append(static_cast<std::uint64_t>(value), 2); }
    buffer_t& operator<<(unsigned short value) { return append(value, 2); }
    buffer_t& operator<<(int value) { return append(static_cast<std::uint64_t>(value), 4); }
    buffer_t& operator<<(unsigned int value) { return append(value, 4); }
    buffer_t& operator<<(long value) { return append(static_cast<std::uint64_t>(value), sizeof value); }
    buffer_t& operator<<(unsigned long value) { return append(value, sizeof value); }
    buffer_t& operator<<(long long value) { return append(static_cast<std::uint64_t>(value), 8); }
    buffer_t& operator<<(unsigned long long value) { return append(value, 8); }
    buffer_t& operator<<(const std::string& text) { return appendBytes(text.begin(), text.end()); }
    buffer_t& operator<<(const buffer_t& nested) { return appendBytes(nested.m_bytes.begin(), nested.m_bytes.end()); }

    const buffer_t& operator>>(bool& value) const { return read(value, 1); }
    const buffer_t& operator>>(signed char& value) const { return read(value, 1); }
    const buffer_t& operator>>(unsigned char& value) const { return read(value, 1); }
    const buffer_t& operator>>(short& value) const { return read(value, 2); }
    const buffer_t& operator>>(unsigned short& value) const { return read(value, 2); }
    const buffer_t& operator>>(int& value) const { return read(value, 4); }
    const buffer_t& operator>>(unsigned int& value) const { return read(value, 4); }
    const buffer_t& operator>>(long& value) const { return read(value, sizeof value); }
    const buffer_t& operator>>(unsigned long& value) const { return read(value, sizeof value); }
    const buffer_t& operator>>(long long& value) const { return read(value, 8); }
    const buffer_t& operator>>(unsigned long long& value) const { return read(value, 8); }
    const buffer_t& operator>>(std::string& text) const
    {
        const std::vector<unsigned char> bytes = readBytes();
        text.assign(bytes.begin(), bytes.end());
        return *this;
    }
    const buffer_t& operator>>(buffer_t& nested) const
    {
        const std::vector<unsigned char> bytes = readBytes();
        nested = buffer_t(bytes.data(), bytes.size());
        return *this;
    }

private:
    buffer_t& append(std::uint64_t value, std::size_t width)
    {
        for (std::size_t shift = 8 * width; shift > 0; shift -= 8) {
            m_bytes.push_back(static_cast<unsigned char>(value >> (shift - 8)));
        }
        return *this;
    }

    template <typename Iterator>
    buffer_t& appendBytes(Iterator begin, Iterator end)
    {
        append(static_cast<std::uint64_t>(end - begin), 4);
        m_bytes.insert(m_bytes.end(), begin, end);
        return *this;
    }

    template <typename T>
    const buffer_t& read(T& value, std::size_t width) const
    {
        if (width > m_bytes.size() - m_position) {
            throw std::runtime_error("foreign buffer_t: nothing left");
        }
        std::uint64_t bits = 0;
        for (std::size_t i = 0; i < width; ++i) {
            bits = (bits << 8) | m_bytes[m_position++];
        }
        value = static_cast<T>(bits);
        return *this;
    }

    std::vector<unsigned char> readBytes() const
    {
        const std::size_t start = m_position;
        unsigned int length = 0;
        *this >> length;
        if (length > m_bytes.size() - m_position) {
            m_position = start;
            throw std::runtime_error("foreign buffer_t: nothing left");
        }
        const unsigned char* const pFirst = m_bytes.data() + m_position;
        m_position += length;
        return {pFirst, pFirst + length};
    }

    std::vector<unsigned char> m_bytes;
    mutable std::size_t m_position = 0;
};

#endif
