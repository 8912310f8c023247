#ifndef MESSAGE_BUFFER_T_H
#define MESSAGE_BUFFER_T_H

// The message framework's byte buffer: what a message carries, and what components and libraries write values into and
// read them from. Writes append; reads consume, in the order of the writes, from a separate read position:
//
//     buffer_t request;
//     request << std::uint32_t{1} << element;        // the writer
//
//     std::uint32_t count = 0;
//     request >> count >> element;                   // the reader
//
// On the wire:
//
//     integers      most significant byte first, in their own width
//     bool          one byte, 0 or 1; every other byte reads as true
//     std::string   32-bit length, then the characters
//     buffer_t      32-bit length, then the bytes: a buffer nested in this one
//
// The capacity is fixed and inline; nothing here allocates, except reading a std::string. Every length is checked
// against the bytes that are there before it is used. An operation that throws leaves this buffer, its read
// position included, and the value to be read as they were.
//
// The width of `long` and `unsigned long` depends on the machine: use the fixed-width types for what leaves the host.
// One thread at a time: reading moves the read position, of a const buffer too.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <type_traits>

#include <endian.h>

// Visible from everywhere, because programs and libraries pass one another buffers inside type-tagged values.
class __attribute__((visibility("default"))) buffer_t {
public:
    static constexpr std::size_t CAPACITY = 2048;

    // Only bytes in use are set.
    // NOLINTBEGIN(cppcoreguidelines-pro-type-member-init)

    // NOLINTNEXTLINE(modernize-use-equals-default): buffer_t{} would set every byte to zero
    buffer_t() noexcept {}

    /// Takes a copy of `length` bytes. Throws std::length_error if they are more than the capacity.
    buffer_t(const void* bytes, std::size_t length) { assign(bytes, length); }

    /// A copy holds the same bytes and reads on from the same position; both buffers are independent from then on.
    buffer_t(const buffer_t& other) noexcept { *this = other; }

    // NOLINTEND(cppcoreguidelines-pro-type-member-init)

    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment,cert-oop54-cpp): std::memmove takes care of it
    buffer_t& operator=(const buffer_t& other) noexcept
    {
        std::memmove(m_bytes, other.m_bytes, other.m_length);
        m_length = other.m_length;
        m_readPosition = other.m_readPosition;
        return *this;
    }

    ~buffer_t() = default;

    /// Number of bytes written, whatever has been read of them.
    std::size_t size() const noexcept { return m_length; }

    /// The bytes written, size() of them; valid until the buffer is written to or destroyed.
    const unsigned char* data() const noexcept { return m_bytes; }

    /// Empties the buffer: neither written nor read.
    void clear() noexcept
    {
        m_length = 0;
        m_readPosition = 0;
    }

    /// Appends a bool or an integer of 8 to 64 bits; an enumeration has to be cast, so that its width is seen where it
    /// is written. Throws std::length_error if it does not fit.
    template <typename Integer, std::enable_if_t<std::is_integral_v<Integer>, int> = 0>
    buffer_t& operator<<(Integer value)
    {
        requireRoom(sizeof(Wire<Integer>));
        storeAt(m_length, bigEndian(static_cast<Wire<Integer>>(value)));
        m_length += sizeof(Wire<Integer>);
        return *this;
    }

    /// Appends the length of `text` and its characters. Throws std::length_error if they do not fit.
    buffer_t& operator<<(const std::string& text)
    {
        unsigned char* const pRoom = appendLength(text.size());
        copyBytes(pRoom, reinterpret_cast<const unsigned char*>(text.data()), text.size());
        return *this;
    }

    buffer_t& operator<<(std::nullptr_t) = delete;

    /// Appends the length of `nested` and all of its bytes, those already read included; a buffer may be nested in
    /// itself. Throws std::length_error if they do not fit.
    buffer_t& operator<<(const buffer_t& nested)
    {
        const std::size_t length = nested.m_length;  // `nested` may be this buffer
        copyElement(appendLength(length), nested.m_bytes, length);
        return *this;
    }

    /// Reads a bool or an integer. Throws std::out_of_range if fewer bytes are left than it takes.
    template <typename Integer, std::enable_if_t<std::is_integral_v<Integer>, int> = 0>
    const buffer_t& operator>>(Integer& value) const
    {
        requireUnread(sizeof(Wire<Integer>));
        value = static_cast<Integer>(integerAt<Wire<Integer>>(m_readPosition));
        m_readPosition += sizeof(Wire<Integer>);
        return *this;
    }

    /// Reads a string. Throws std::out_of_range if fewer bytes are left than its length says.
    const buffer_t& operator>>(std::string& text) const
    {
        const std::size_t length = lengthOfNext();
        text.assign(reinterpret_cast<const char*>(m_bytes + m_readPosition + LENGTH_SIZE), length);
        m_readPosition += LENGTH_SIZE + length;
        return *this;
    }

    /// Reads a nested buffer: `nested` then holds exactly the bytes that were nested, none of them read. A buffer may
    /// be read into itself. Throws std::out_of_range if fewer bytes are left than its length says.
    const buffer_t& operator>>(buffer_t& nested) const
    {
        const std::size_t length = lengthOfNext();
        const unsigned char* const pNested = m_bytes + m_readPosition + LENGTH_SIZE;
        m_readPosition += LENGTH_SIZE + length;
        nested.assign(pNested, length);
        return *this;
    }

private:
    static constexpr std::size_t LENGTH_SIZE = sizeof(std::uint32_t);

    // The unsigned type that an integer type travels as.
    template <typename Integer>
    using Wire =
        std::conditional_t<sizeof(Integer) == 1, std::uint8_t,
                           std::conditional_t<sizeof(Integer) == 2, std::uint16_t,
                                              std::conditional_t<sizeof(Integer) == 4, std::uint32_t, std::uint64_t>>>;

    // From the machine's byte order to the wire's; the same operation leads back.
    static std::uint8_t bigEndian(std::uint8_t value) { return value; }
    static std::uint16_t bigEndian(std::uint16_t value) { return htobe16(value); }
    static std::uint32_t bigEndian(std::uint32_t value) { return htobe32(value); }
    static std::uint64_t bigEndian(std::uint64_t value) { return htobe64(value); }

    void requireRoom(std::size_t length) const
    {
        if (length > CAPACITY - m_length) {
            throwFull();
        }
    }

    void requireUnread(std::size_t length) const
    {
        if (length > m_length - m_readPosition) {
            throwPastEnd();
        }
    }

    // There is room for it.
    template <typename T>
    void storeAt(std::size_t position, T bigEndianValue)
    {
        std::memcpy(m_bytes + position, &bigEndianValue, sizeof bigEndianValue);
    }

    // Appends a length and makes room for as many bytes, which the caller has to fill.
    unsigned char* appendLength(std::size_t length)
    {
        requireRoom(LENGTH_SIZE + length);  // no overflow: nothing in memory is that long
        storeAt(m_length, bigEndian(static_cast<std::uint32_t>(length)));
        unsigned char* const pRoom = m_bytes + m_length + LENGTH_SIZE;
        m_length += LENGTH_SIZE + length;
        return pRoom;
    }

    template <typename Piece>
    static void copyPiece(unsigned char*& pTo, const unsigned char*& pFrom, std::size_t& length)
    {
        Piece piece;
        std::memcpy(&piece, pFrom, sizeof piece);
        std::memcpy(pTo, &piece, sizeof piece);
        pFrom += sizeof piece;
        pTo += sizeof piece;
        length -= sizeof piece;
    }

    // Few bytes go in one piece for each binary digit of their number.
    static void copyBytes(unsigned char* pTo, const unsigned char* pFrom, std::size_t length)
    {
        if (length >= 16) {
            std::memcpy(pTo, pFrom, length);
            return;
        }
        if ((length & 8U) != 0) {
            copyPiece<std::uint64_t>(pTo, pFrom, length);
        }
        if ((length & 4U) != 0) {
            copyPiece<std::uint32_t>(pTo, pFrom, length);
        }
        if ((length & 2U) != 0) {
            copyPiece<std::uint16_t>(pTo, pFrom, length);
        }
        if ((length & 1U) != 0) {
            copyPiece<std::uint8_t>(pTo, pFrom, length);
        }
    }

    // A nested buffer was mostly written right before. A read that spans several of those writes would have to wait for
    // them to reach the cache, so it is read in the pieces that an element of a stream is written in: a number and its
    // type, then another number, or a length and what is that long. Where the compiler knows the length, the nested
    // buffer dissolves altogether.
    static void copyElement(unsigned char* pTo, const unsigned char* pFrom, std::size_t length)
    {
        if (length >= sizeof(std::uint32_t)) {
            copyPiece<std::uint32_t>(pTo, pFrom, length);
            if (length >= sizeof(std::uint8_t)) {
                copyPiece<std::uint8_t>(pTo, pFrom, length);
                if (length >= sizeof(std::uint32_t)) {
                    copyPiece<std::uint32_t>(pTo, pFrom, length);
                }
            }
        }
        copyBytes(pTo, pFrom, length);
    }

    template <typename T>
    T integerAt(std::size_t position) const
    {
        T bigEndianValue;
        std::memcpy(&bigEndianValue, m_bytes + position, sizeof bigEndianValue);
        return bigEndian(bigEndianValue);
    }

    // Length of the string or nested buffer at the read position, all of which is there.
    std::size_t lengthOfNext() const
    {
        requireUnread(LENGTH_SIZE);
        const std::size_t length = integerAt<std::uint32_t>(m_readPosition);
        if (length > m_length - m_readPosition - LENGTH_SIZE) {
            throwPastEnd();
        }
        return length;
    }

    void assign(const void* bytes, std::size_t length)
    {
        if (length > CAPACITY) {
            throwFull();
        }
        if (length != 0) {
            std::memmove(m_bytes, bytes, length);  // the bytes may be this buffer's own
        }
        m_length = length;
        m_readPosition = 0;
    }

    // Out of line, to keep the fast path small.
    [[noreturn]] __attribute__((noinline, cold)) static void throwFull()
    {
        throw std::length_error("buffer_t: write beyond the capacity");
    }

    [[noreturn]] __attribute__((noinline, cold)) static void throwPastEnd()
    {
        throw std::out_of_range("buffer_t: read past the end");
    }

    unsigned char m_bytes[CAPACITY];
    std::size_t m_length = 0;
    mutable std::size_t m_readPosition = 0;
};

#endif
