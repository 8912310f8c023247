#include "brantel/testing/CardRequests.h"

#include <cstring>
#include <stdexcept>
#include <vector>

namespace brantelTesting {
namespace {

bool isSame(const buffer_t& one, const buffer_t& other)
{
    return (one.size() == other.size()) && (std::memcmp(one.data(), other.data(), one.size()) == 0);
}

// The elements of a stream; none if it ends early.
std::vector<buffer_t> elementsOf(const buffer_t& tlvs)
{
    std::vector<buffer_t> elements;
    try {
        std::uint32_t count = 0;
        tlvs >> count;
        for (std::uint32_t i = 0; i < count; ++i) {
            elements.emplace_back();
            tlvs >> elements.back();
        }
    } catch (const std::out_of_range&) {
        elements.clear();
    }
    return elements;
}

}  // namespace

// A stream is exactly a request if what was decoded is encoded as the same bytes.

std::optional<ObjectIdContainer> parseReadRequest(const buffer_t& tlvs)
{
    ObjectIdContainer oids;
    for (const buffer_t& element : elementsOf(tlvs)) {
        std::uint32_t oid = 0;
        if (element.size() >= sizeof oid) {
            element >> oid;
        }
        oids.push_back(oid);
    }
    buffer_t again;
    convertObjectIdContainerToTlvs(oids, again);
    return isSame(tlvs, again) ? std::optional(oids) : std::nullopt;
}

std::optional<OidTypeValueContainer> parseWriteRequest(const buffer_t& tlvs)
{
    OidTypeValueContainer values;
    for (const buffer_t& element : elementsOf(tlvs)) {
        buffer_t single;  // an OID may be in the request twice, in an answer it may not
        single << std::uint32_t{1} << element;
        OidTypeValueMap decoded;
        if (!convertTlvsToOidTypeValueMap(0, single, decoded, nullptr)) {
            return std::nullopt;
        }
        values.push_back({decoded.begin()->first, decoded.begin()->second.type, decoded.begin()->second.value});
    }
    buffer_t again;
    convertOidTypeValueContainerToTlvs(values, again);
    return isSame(tlvs, again) ? std::optional(values) : std::nullopt;
}

}  // namespace brantelTesting
