#include "cards/TlvElements.h"

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <utility>

std::optional<std::vector<buffer_t>> elementsOf(const buffer_t& tlvs)
{
    constexpr std::size_t LENGTH_SIZE = sizeof(std::uint32_t);
    const buffer_t stream(tlvs.data(), tlvs.size());  // to be read from its start
    std::vector<buffer_t> elements;
    std::size_t length = LENGTH_SIZE;
    try {
        std::uint32_t count = 0;
        stream >> count;
        for (std::uint32_t i = 0; i < count; ++i) {
            stream >> elements.emplace_back();
            length += LENGTH_SIZE + elements.back().size();
        }
    } catch (const std::out_of_range&) {
        return std::nullopt;
    }
    return (length == stream.size()) ? std::optional(std::move(elements)) : std::nullopt;
}
