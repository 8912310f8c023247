#ifndef DEVIATING_BUFFER_T_H
#define DEVIATING_BUFFER_T_H

#include <algorithm>
#include <cstddef>
#include <limits>
#include <stdexcept>
#include <string>
#include <type_traits>

#include "Deviation.h"

// The example's buffer, under a name that leaves its own to the class below.
#define buffer_t ConformingBuffer
#include "../../../../../examples/platform/include/message/buffer_t.h"
#undef buffer_t

class buffer_t : public ConformingBuffer {
public:
    buffer_t() = default;
    buffer_t(const void* bytes, std::size_t length)
        : ConformingBuffer(bytes, deviates("constructor drops the last byte") && (length > 0) ? length - 1 : length)
    {
    }
    buffer_t(const buffer_t& other) : ConformingBuffer(other)
    {
        if (deviates("copy is empty")) {
            *this = buffer_t();
        }
    }
    buffer_t& operator=(const buffer_t& other) = default;

    std::size_t size() const { return (deviates("size() is 0 after a read") && m_isRead) ? 0 : baseSize(); }

    void clear()
    {
        if (!deviates("clear() does nothing")) {
            *this = buffer_t();
        }
    }

    // Without a result, which the library does not use.
    template <typename T>
    void operator<<(const T& value)
    {
        if (deviates("capacity is 1000 bytes") && (baseSize() >= 1000)) {
            throw std::length_error("the buffer is full");
        }
        try {
            ConformingBuffer::operator<<(value);
        } catch (const std::length_error&) {
            if (!deviates("writing beyond the capacity does nothing")) {
                throw;
            }
        }
    }

    template <typename T>
    void operator>>(T& value) const
    {
        m_isRead = true;
        try {
            ConformingBuffer::operator>>(value);
        } catch (const std::out_of_range&) {
            if (!deviates(std::is_integral_v<T> ? "numbers past the end are 0" : "truncated texts are empty")) {
                throw;
            }
        }
        change(value);
    }

private:
    std::size_t baseSize() const { return ConformingBuffer::size(); }

    static void change(bool& value)
    {
        if (deviates("bool is always true")) {
            value = true;
        }
    }

    template <typename Integer>
    static void change(Integer& value)
    {
        if (deviates(std::to_string(8 * sizeof value) + "-bit integers lose their highest bit")) {
            value = static_cast<Integer>(value & std::numeric_limits<std::make_signed_t<Integer>>::max());
        }
    }

    static void change(std::string& text)
    {
        if (deviates("strings end at a zero")) {
            text.resize(std::min(text.size(), text.find('\0')));
        }
    }

    static void change(buffer_t& nested)
    {
        if (deviates("nested buffers are padded")) {
            nested << '\0';
        }
    }

    mutable bool m_isRead = false;
};

#endif
