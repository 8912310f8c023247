#include "monitor/SampleOfValue.h"

#include <limits>

#include <gtest/gtest.h>

namespace brantel {
namespace {

TEST(SampleOfValue, IsTheNumberThatAValueIs)
{
    const std::pair<TypeValueRecord, SampleValue> cases[] = {
        {{OID_TYPE_UINT64, 5000000000ULL}, 5000000000},
        {{OID_TYPE_UINT64, std::numeric_limits<unsigned long long>::max()}, std::numeric_limits<SampleValue>::max()},
        {{OID_TYPE_UINT32, 4294967295U}, 4294967295},
        {{OID_TYPE_UINT16, static_cast<unsigned short>(65535)}, 65535},
        {{OID_TYPE_UINT8, static_cast<unsigned char>(255)}, 255},
        {{OID_TYPE_INT64, -5000000000LL}, -5000000000},
        {{OID_TYPE_INT32, -7}, -7},
        {{OID_TYPE_INT16, static_cast<short>(-300)}, -300},
        {{OID_TYPE_INT8, static_cast<signed char>(-128)}, -128},
        {{OID_TYPE_BOOL, true}, 1},
        {{OID_TYPE_BOOL, false}, 0},
    };

    for (const auto& [record, sample] : cases) {
        EXPECT_EQ(sampleOfValue(record), sample) << "type " << record.type;
    }
}

TEST(SampleOfValue, IsNothingForTextsAddressesAndBytes)
{
    const TypeValueRecord cases[] = {
        {OID_TYPE_STRING, std::string("7")},
        {OID_TYPE_IPV4_ADDRESS, in_addr{7}},
        {OID_TYPE_BUFFER, buffer_t("7", 1)},
        {OID_TYPE_MAC_ADDRESS, 7ULL},
    };

    for (const TypeValueRecord& record : cases) {
        EXPECT_EQ(sampleOfValue(record), std::nullopt) << "type " << record.type;
    }
}

}  // namespace

}  // namespace brantel
