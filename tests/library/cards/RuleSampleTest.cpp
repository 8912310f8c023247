#include "RuleSample.h"

#include <limits>
#include <string>

#include <gtest/gtest.h>

namespace icsc {
namespace {

constexpr const char* SIGNED = " is outside -2147483648 to 2147483647, the range of a signed rule";
constexpr const char* UNSIGNED = " is outside 0 to 4294967295, the range of an unsigned rule";

// "sample NUMBER", or the reason against one.
template <typename T>
std::string outcomeFor(const TypeValueRecord& record)
{
    const std::optional<T> sample = sampleOf<T>(record);
    const std::string reason = reasonAgainstSample<T>(record);
    EXPECT_EQ(sample.has_value(), reason.empty()) << reason;
    return sample ? "sample " + std::to_string(*sample) : reason;
}

struct SampleCase {
    TypeValueRecord record;
    std::string forSigned;
    std::string forUnsigned;
};

TEST(SampleOf, IsTheNumberIfItIsInTheRangeOfTheRule)
{
    const SampleCase cases[] = {
        {{OID_TYPE_UINT64, 18446744073709551615ULL},
         std::string("18446744073709551615") + SIGNED,
         std::string("18446744073709551615") + UNSIGNED},
        {{OID_TYPE_UINT64, 4294967296ULL}, std::string("4294967296") + SIGNED, std::string("4294967296") + UNSIGNED},
        {{OID_TYPE_UINT64, 4294967295ULL}, std::string("4294967295") + SIGNED, "sample 4294967295"},
        {{OID_TYPE_UINT64, 2147483647ULL}, "sample 2147483647", "sample 2147483647"},
        {{OID_TYPE_UINT32, 4294967295U}, std::string("4294967295") + SIGNED, "sample 4294967295"},
        {{OID_TYPE_UINT32, 2147483648U}, std::string("2147483648") + SIGNED, "sample 2147483648"},
        {{OID_TYPE_UINT16, static_cast<unsigned short>(65535)}, "sample 65535", "sample 65535"},
        {{OID_TYPE_UINT8, static_cast<unsigned char>(255)}, "sample 255", "sample 255"},
        {{OID_TYPE_INT64, std::numeric_limits<long long>::min()},
         std::string("-9223372036854775808") + SIGNED,
         std::string("-9223372036854775808") + UNSIGNED},
        {{OID_TYPE_INT64, -2147483649LL}, std::string("-2147483649") + SIGNED, std::string("-2147483649") + UNSIGNED},
        {{OID_TYPE_INT64, -2147483648LL}, "sample -2147483648", std::string("-2147483648") + UNSIGNED},
        {{OID_TYPE_INT64, 4294967295LL}, std::string("4294967295") + SIGNED, "sample 4294967295"},
        {{OID_TYPE_INT64, 4294967296LL}, std::string("4294967296") + SIGNED, std::string("4294967296") + UNSIGNED},
        {{OID_TYPE_INT32, std::numeric_limits<int>::min()},
         "sample -2147483648",
         std::string("-2147483648") + UNSIGNED},
        {{OID_TYPE_INT32, 7}, "sample 7", "sample 7"},
        {{OID_TYPE_INT16, static_cast<short>(-300)}, "sample -300", std::string("-300") + UNSIGNED},
        {{OID_TYPE_INT8, static_cast<signed char>(-128)}, "sample -128", std::string("-128") + UNSIGNED},
        {{OID_TYPE_BOOL, true}, "sample 1", "sample 1"},
        {{OID_TYPE_BOOL, false}, "sample 0", "sample 0"},
    };
    for (const SampleCase& each : cases) {
        EXPECT_TRUE(isNumericType(each.record.type)) << "type " << each.record.type;
        EXPECT_EQ(outcomeFor<int>(each.record), each.forSigned) << "type " << each.record.type;
        EXPECT_EQ(outcomeFor<unsigned int>(each.record), each.forUnsigned) << "type " << each.record.type;
    }
}

TEST(SampleOf, IsNothingForTextsAddressesAndBytes)
{
    const std::pair<TypeValueRecord, const char*> cases[] = {
        {{OID_TYPE_STRING, std::string("7")}, "the value is a text, not a number"},
        {{OID_TYPE_IPV4_ADDRESS, in_addr{7}}, "the value is an IPv4 address, not a number"},
        {{OID_TYPE_BUFFER, buffer_t("7", 1)}, "the value is a sequence of bytes, not a number"},
        {{OID_TYPE_MAC_ADDRESS, 7ULL}, "the value is a MAC address, not a number"},
    };
    for (const auto& [record, reason] : cases) {
        EXPECT_FALSE(isNumericType(record.type)) << "type " << record.type;
        EXPECT_EQ(outcomeFor<int>(record), reason);
        EXPECT_EQ(outcomeFor<unsigned int>(record), reason);
    }
}

TEST(SampleOf, IsNothingForARecordWhoseValueIsOfAnotherType)
{
    constexpr const char* REASON = "the value is not of the type that its record names";
    for (int type = -1; type <= 14; ++type) {
        const auto code = static_cast<OidValueType>(type);
        if ((code >= OID_TYPE_STRING) && (code <= OID_TYPE_MAC_ADDRESS) && (type != 11)) {
            continue;
        }
        for (const TypeValueRecord& record : {TypeValueRecord{code, 'x'}, TypeValueRecord{code, boost::any()}}) {
            EXPECT_EQ(outcomeFor<int>(record), REASON) << "type " << type;
            EXPECT_EQ(outcomeFor<unsigned int>(record), REASON) << "type " << type;
        }
    }
    EXPECT_FALSE(isNumericType(static_cast<OidValueType>(-1)));
    EXPECT_FALSE(isNumericType(static_cast<OidValueType>(14)));
}

}  // namespace

}  // namespace icsc
