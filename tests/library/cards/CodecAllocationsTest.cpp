// What the codec allocates: nothing to encode values, only the map and its type-tagged values to decode them, and never
// what a card's count or length demands.

#include "library/cards/ValueTexts.h"
#include "support/Allocations.h"
#include "support/Diagnostics.h"

namespace {

OidTypeValueContainer valuesOfAllTypes()
{
    return {
        {1, OID_TYPE_UINT64, 1ULL},
        {2, OID_TYPE_UINT32, 1U},
        {3, OID_TYPE_UINT16, static_cast<unsigned short>(1)},
        {4, OID_TYPE_UINT8, static_cast<unsigned char>(1)},
        {5, OID_TYPE_INT64, 1LL},
        {6, OID_TYPE_INT32, 1},
        {7, OID_TYPE_INT16, static_cast<short>(1)},
        {8, OID_TYPE_INT8, static_cast<signed char>(1)},
        {9, OID_TYPE_BOOL, true},
        {10, OID_TYPE_STRING, std::string(100, 'x')},
        {11, OID_TYPE_IPV4_ADDRESS, addressOf(1)},
        {12, OID_TYPE_BUFFER, bufferOf("AABBCC")},
        {13, OID_TYPE_MAC_ADDRESS, 1ULL},
    };
}

template <typename Operation>
std::size_t allocationsOf(Operation operation)
{
    const std::size_t before = allocationTotals().count;
    operation();
    return allocationTotals().count - before;
}

class CodecAllocations : public DiagnosticsTest {};

TEST_F(CodecAllocations, AreNoneWhenEncoding)
{
    const OidTypeValueContainer values = valuesOfAllTypes();
    const ObjectIdContainer oids(100);
    EXPECT_EQ(allocationsOf([&] {
                  buffer_t tlvs;
                  convertOidTypeValueContainerToTlvs(values, tlvs);
                  tlvs.clear();
                  convertObjectIdContainerToTlvs(oids, tlvs);
              }),
              0U);
}

TEST_F(CodecAllocations, AreNoneWhenPeeking)
{
    buffer_t tlvs;
    convertOidTypeValueContainerToTlvs(valuesOfAllTypes(), tlvs);
    EXPECT_EQ(allocationsOf([&] {
                  std::uint32_t oid = 0;
                  extractFirstOidFromTlvs(1, tlvs, oid);
              }),
              0U);
}

TEST_F(CodecAllocations, AreOneForTheRecordAndOneForTheHeldValueWhenDecoding)
{
    buffer_t tlvs;
    convertOidTypeValueContainerToTlvs(valuesOfAllTypes(), tlvs);
    const std::size_t charactersOfTheString = 1;
    EXPECT_EQ(allocationsOf([&] {
                  OidTypeValueMap values;
                  convertTlvsToOidTypeValueMap(1, tlvs, values, nullptr);
              }),
              std::size_t{13} * 2 + charactersOfTheString);
}

TEST_F(CodecAllocations, AreNotSizedByTheCard)
{
    m_diagnostics.removeTraceObject();
    for (const char* const hex : {
             "FFFFFFFF 00000006 00000001 08 01",           // the count
             "00000001 FFFFFFFF 00000001 08 01",           // the length of an element
             "00000001 0000000A 00000001 09 FFFFFFFF 61",  // the length of a string
             "00000001 0000000A 00000001 09 7FFFFFF0 61",  // likewise
             "00000001 0000000A 00000001 0C FFFFFFFF 61",  // the length of a buffer
         }) {
        const buffer_t tlvs = bufferOf(hex);
        OidTypeValueMap values;
        const std::size_t before = allocationTotals().bytes;
        EXPECT_FALSE(convertTlvsToOidTypeValueMap(1, tlvs, values, nullptr)) << hex;
        EXPECT_LT(allocationTotals().bytes - before, 1024U) << hex;
    }
}

}  // namespace
