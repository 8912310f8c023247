// Streams as a card might send them: the library decodes what the second decoder decodes, and what was decoded comes
// back the same when it is encoded again.
//
// Input: one byte, the number of OIDs that are requested (0 to 15: numbers from 0; 16 and more: any), and the stream.

#include "fuzz/Fuzz.h"
#include "library/cards/SecondDecoder.h"

namespace {

buffer_t encoded(const OidTypeValueMap& values)
{
    OidTypeValueContainer container;
    for (const auto& [oid, record] : values) {
        container.push_back({oid, record.type, record.value});
    }
    buffer_t tlvs;
    require(convertOidTypeValueContainerToTlvs(container, tlvs));
    return tlvs;
}

}  // namespace

FUZZ_TARGET(pData, size)
{
    if ((size == 0) || (size > 1 + buffer_t::CAPACITY)) {
        return 0;
    }
    ObjectIdContainer oids;
    for (std::uint32_t oid = 0; oid < pData[0] % 16U; ++oid) {
        oids.push_back(oid);
    }
    const ObjectIdContainer* const pRequestedOids = (pData[0] < 16) ? &oids : nullptr;
    const std::string bytes = textOf(pData + 1, size - 1);

    OidTypeValueMap values;
    const bool isDecoded =
        convertTlvsToOidTypeValueMap(0, buffer_t(bytes.data(), bytes.size()), values, pRequestedOids);
    const auto expected = secondDecoder::decode(bytes, pRequestedOids);
    require(isDecoded == expected.has_value());
    require(secondDecoder::isSame(values, expected.value_or(OidTypeValueMap())));

    // A MAC address of less than 6 bytes is longer when it is encoded again: only then may it not fit.
    if (isDecoded && (size <= buffer_t::CAPACITY / 2)) {
        OidTypeValueMap again;
        require(convertTlvsToOidTypeValueMap(0, encoded(values), again, nullptr));
        require(secondDecoder::isSame(values, again));
    }
    return 0;
}
