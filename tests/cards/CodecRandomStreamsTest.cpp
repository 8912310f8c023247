// A million streams that come back as they were encoded, and a million damaged ones, each decoded as a second, slow and
// obvious decoder decodes it.

#include <algorithm>
#include <optional>

#include "cards/RandomStreams.h"
#include "cards/ValueTexts.h"
#include "support/Diagnostics.h"

namespace {

constexpr int NUMBER_OF_SHARDS = 8;
constexpr int STREAMS_PER_SHARD = 1000000 / NUMBER_OF_SHARDS;

// Reads from a text of bytes; whoever reads past its end gets no value.
class ByteReader {
public:
    explicit ByteReader(std::string bytes) : m_bytes(std::move(bytes)) {}

    std::optional<unsigned long long> number(std::size_t width)
    {
        const auto bytes = take(width);
        if (!bytes) {
            return std::nullopt;
        }
        unsigned long long value = 0;
        for (const char byte : *bytes) {
            value = value * 256 + static_cast<unsigned char>(byte);
        }
        return value;
    }

    std::optional<std::string> block()
    {
        const auto length = number(4);
        return length ? take(*length) : std::nullopt;
    }

private:
    std::optional<std::string> take(unsigned long long length)
    {
        if (length > m_bytes.size()) {
            return std::nullopt;
        }
        std::string taken = m_bytes.substr(0, static_cast<std::size_t>(length));
        m_bytes.erase(0, static_cast<std::size_t>(length));
        return taken;
    }

    std::string m_bytes;
};

template <typename T>
std::optional<boost::any> expectedNumber(ByteReader& element)
{
    const auto number = element.number(sizeof(T));
    return number ? std::make_optional(boost::any(static_cast<T>(*number))) : std::nullopt;
}

std::optional<boost::any> expectedValue(unsigned long long code, ByteReader& element)
{
    switch (code) {
        case 0: return expectedNumber<unsigned long long>(element);
        case 1: return expectedNumber<unsigned int>(element);
        case 2: return expectedNumber<unsigned short>(element);
        case 3: return expectedNumber<unsigned char>(element);
        case 4: return expectedNumber<long long>(element);
        case 5: return expectedNumber<int>(element);
        case 6: return expectedNumber<short>(element);
        case 7: return expectedNumber<signed char>(element);
        case 8: return expectedNumber<bool>(element);
        case 10: {
            const auto number = element.number(4);
            return number ? std::make_optional(boost::any(addressOf(static_cast<std::uint32_t>(*number))))
                          : std::nullopt;
        }
        default: break;
    }
    if ((code != 9) && (code != 12) && (code != 13)) {
        return std::nullopt;
    }
    auto block = element.block();
    if (!block) {
        return std::nullopt;
    }
    if (code == 9) {
        return boost::any(*block);
    }
    if (code == 12) {
        return boost::any(buffer_t(block->data(), block->size()));
    }
    block->resize(std::min<std::size_t>(block->size(), 6));
    block->resize(6, '\xEE');
    return boost::any(*ByteReader(*block).number(6));
}

// No value if the stream has a fault.
std::optional<OidTypeValueMap> expectedMap(const std::string& bytes, const ObjectIdContainer* requestedOids)
{
    ByteReader stream(bytes);
    const auto count = stream.number(4);
    if (!count || ((requestedOids != nullptr) && (*count != requestedOids->size()))) {
        return std::nullopt;
    }
    OidTypeValueMap values;
    for (unsigned long long i = 0; i < *count; ++i) {
        const auto block = stream.block();
        if (!block) {
            return std::nullopt;
        }
        ByteReader element(*block);
        const auto oid = element.number(4);
        const auto code = element.number(1);
        if (!oid || !code) {
            return std::nullopt;
        }
        if ((requestedOids != nullptr) &&
            (std::count(requestedOids->begin(), requestedOids->end(), static_cast<std::uint32_t>(*oid)) == 0)) {
            return std::nullopt;
        }
        const auto value = expectedValue(*code, element);
        const TypeValueRecord record{static_cast<OidValueType>(*code), value.value_or(boost::any())};
        if (!value || !values.emplace(static_cast<std::uint32_t>(*oid), record).second) {
            return std::nullopt;
        }
    }
    return values;
}

template <typename T>
bool isSameNumber(const boost::any& left, const boost::any& right)
{
    return boost::any_cast<T>(left) == boost::any_cast<T>(right);
}

bool isSameValue(const TypeValueRecord& left, const TypeValueRecord& right)
{
    if ((left.type != right.type) || (left.value.type() != right.value.type())) {
        return false;
    }
    switch (left.type) {
        case OID_TYPE_UINT64: return isSameNumber<unsigned long long>(left.value, right.value);
        case OID_TYPE_UINT32: return isSameNumber<unsigned int>(left.value, right.value);
        case OID_TYPE_INT64: return isSameNumber<long long>(left.value, right.value);
        case OID_TYPE_INT32: return isSameNumber<int>(left.value, right.value);
        default: return valueText(left.value) == valueText(right.value);
    }
}

bool isSameMap(const OidTypeValueMap& left, const OidTypeValueMap& right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), [](const auto& one, const auto& other) {
        return (one.first == other.first) && isSameValue(one.second, other.second);
    });
}

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
        ASSERT_TRUE(isSameMap(decoded, expected)) << hexOf(tlvs);
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
        const auto expected = expectedMap(bytes, pRequestedOids);
        ASSERT_EQ(isDecoded, expected.has_value()) << hexOf(tlvs);
        ASSERT_TRUE(isSameMap(decoded, expected.value_or(OidTypeValueMap()))) << hexOf(tlvs);
        m_diagnostics.take();
    }
}

INSTANTIATE_TEST_SUITE_P(Codec, RandomStreamsOfShard, ::testing::Range(0, NUMBER_OF_SHARDS));

}  // namespace
