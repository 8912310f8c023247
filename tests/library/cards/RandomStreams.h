#ifndef TESTS_LIBRARY_CARDS_RANDOM_STREAMS_H
#define TESTS_LIBRARY_CARDS_RANDOM_STREAMS_H

// Values and streams for tests that try many of them; the same ones on every machine, for each seed.

#include <algorithm>
#include <random>
#include <string>
#include <utility>

#include "IfcCardStatusAndControl.h"

class RandomStreams {
public:
    explicit RandomStreams(std::uint32_t seed) : m_generator(seed) {}

    /// 0 to `limit` - 1. Not std::uniform_int_distribution, whose numbers differ between libraries.
    std::uint32_t below(std::uint32_t limit) { return bits32() % limit; }

    /// Up to 15 values of all types, no OID twice; any number of them fits into a stream.
    OidTypeValueContainer values()
    {
        OidTypeValueContainer container;
        std::uint32_t oid = 0;
        for (std::uint32_t count = below(16); count > 0; --count) {
            oid += 1 + below((oid < 0x10000000) ? 0x10000000 : 3);
            container.push_back(value(oid));
        }
        if (!container.empty()) {  // not always in ascending order
            std::swap(container[below(static_cast<std::uint32_t>(container.size()))].oid, container[0].oid);
        }
        return container;
    }

    /// The same bytes with one to three faults: other bytes, a cut, doubled or missing bytes, a wrong length.
    std::string mutated(std::string bytes)
    {
        for (std::uint32_t faults = 1 + below(3); faults > 0; --faults) {
            mutate(bytes);
        }
        bytes.resize(std::min(bytes.size(), buffer_t::CAPACITY));
        return bytes;
    }

    /// Random bytes, often after a small count so that decoding goes beyond it.
    std::string junk()
    {
        std::string bytes = (below(2) == 0) ? std::string("\0\0\0\1", 4) : std::string();
        for (std::uint32_t length = below(64); length > 0; --length) {
            bytes.push_back((below(2) == 0) ? '\0' : anyByte());
        }
        return bytes;
    }

private:
    std::uint32_t bits32() { return static_cast<std::uint32_t>(m_generator()); }

    char anyByte() { return static_cast<char>(below(256)); }

    // Mostly small, sometimes with every bit in play.
    unsigned long long number()
    {
        const unsigned long long high = bits32();
        const unsigned long long bits = (high << 32) | bits32();
        return bits >> below(64);
    }

    std::string text()
    {
        std::string characters;
        for (std::uint32_t length = below(40); length > 0; --length) {
            characters.push_back(anyByte());
        }
        return characters;
    }

    OidTypeValue value(std::uint32_t oid)
    {
        switch (below(13)) {
            case 0: return {oid, OID_TYPE_UINT64, number()};
            case 1: return {oid, OID_TYPE_UINT32, static_cast<unsigned int>(number())};
            case 2: return {oid, OID_TYPE_UINT16, static_cast<unsigned short>(number())};
            case 3: return {oid, OID_TYPE_UINT8, static_cast<unsigned char>(number())};
            case 4: return {oid, OID_TYPE_INT64, static_cast<long long>(number())};
            case 5: return {oid, OID_TYPE_INT32, static_cast<int>(number())};
            case 6: return {oid, OID_TYPE_INT16, static_cast<short>(number())};
            case 7: return {oid, OID_TYPE_INT8, static_cast<signed char>(number())};
            case 8: return {oid, OID_TYPE_BOOL, below(2) == 0};
            case 9: return {oid, OID_TYPE_STRING, text()};
            case 10: {
                in_addr address{};
                address.s_addr = bits32();
                return {oid, OID_TYPE_IPV4_ADDRESS, address};
            }
            case 11: {
                const std::string bytes = text();
                return {oid, OID_TYPE_BUFFER, buffer_t(bytes.data(), bytes.size())};
            }
            default: return {oid, OID_TYPE_MAC_ADDRESS, number() & 0xFFFFFFFFFFFF};
        }
    }

    void mutate(std::string& bytes)
    {
        if (bytes.empty()) {
            bytes.push_back(anyByte());
            return;
        }
        const std::size_t position = below(static_cast<std::uint32_t>(bytes.size()));
        const std::size_t length = below(12);
        switch (below(6)) {
            case 0: bytes[position] = anyByte(); break;
            case 1:
                bytes[position] = static_cast<char>(static_cast<unsigned char>(bytes[position]) ^ (1U << below(8)));
                break;
            case 2: bytes.resize(position); break;
            case 3: bytes.erase(position, length); break;
            case 4: bytes.insert(position, bytes.substr(position, length)); break;
            default: bytes.replace(position, 4, (below(2) == 0) ? "\xFF\xFF\xFF\xFF" : "\x7F\xFF\xFF\xFF"); break;
        }
    }

    std::mt19937 m_generator;
};

#endif
