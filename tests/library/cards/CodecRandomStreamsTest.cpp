// A million streams that come back as they were encoded, and a million damaged ones, each decoded as a second, slow and
// obvious decoder decodes it.

#include "library/cards/RandomStreams.h"
#include "library/cards/SecondDecoder.h"
#include "support/Diagnostics.h"

namespace {

constexpr int NUMBER_OF_SHARDS = 8;
constexpr int STREAMS_PER_SHARD = 1000000 / NUMBER_OF_SHARDS;

ObjectIdContainer oidsOf(const OidTypeValueContainer& values)
{
    ObjectIdContainer oids;
    for (const OidTypeValue& value : values) {
        oids.push_back(value.oid);
    }
    return oids;
}

class RandomStreamsOfShard : public ::testing::TestWithParam<int> {
protected:
    RandomStreamsOfShard() { m_diagnostics.removeTraceObject(); }

    DiagnosticsCapture m_diagnostics{0};
    RandomStreams m_streams{static_cast<std::uint32_t>(GetParam())};
};

TEST_P(RandomStreamsOfShard, ComeBackAsTheyWereEncoded)
{
    for (int i = 0; i < STREAMS_PER_SHARD; ++i) {
        const OidTypeValueContainer values = m_streams.values();
        const ObjectIdContainer oids = oidsOf(values);
        OidTypeValueMap expected;
        for (const OidTypeValue& value : values) {
            expected[value.oid] = {value.type, value.value};
        }

        buffer_t tlvs;
        OidTypeValueMap decoded;
        ASSERT_TRUE(convertOidTypeValueContainerToTlvs(values, tlvs));
        ASSERT_TRUE(convertTlvsToOidTypeValueMap(0, tlvs, decoded, &oids)) << hexOf(tlvs);
        ASSERT_TRUE(secondDecoder::isSame(decoded, expected)) << hexOf(tlvs);
    }
}

TEST_P(RandomStreamsOfShard, AreDecodedLikeTheSecondDecoderDoesWhenTheyAreDamaged)
{
    for (int i = 0; i < STREAMS_PER_SHARD; ++i) {
        const OidTypeValueContainer values = m_streams.values();
        const ObjectIdContainer oids = oidsOf(values);
        const ObjectIdContainer* const pRequestedOids = (m_streams.below(2) == 0) ? &oids : nullptr;
        buffer_t whole;
        ASSERT_TRUE(convertOidTypeValueContainerToTlvs(values, whole));
        const std::string bytes =
            (m_streams.below(4) == 0)
                ? m_streams.junk()
                : m_streams.mutated(std::string(reinterpret_cast<const char*>(whole.data()), whole.size()));

        const buffer_t tlvs(bytes.data(), bytes.size());
        OidTypeValueMap decoded;
        const bool isDecoded = convertTlvsToOidTypeValueMap(0, tlvs, decoded, pRequestedOids);
        const auto expected = secondDecoder::decode(bytes, pRequestedOids);
        ASSERT_EQ(isDecoded, expected.has_value()) << hexOf(tlvs);
        ASSERT_TRUE(secondDecoder::isSame(decoded, expected.value_or(OidTypeValueMap()))) << hexOf(tlvs);
        m_diagnostics.take();
    }
}

INSTANTIATE_TEST_SUITE_P(Codec, RandomStreamsOfShard, ::testing::Range(0, NUMBER_OF_SHARDS));

}  // namespace
