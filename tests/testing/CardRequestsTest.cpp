#include "brantel/testing/CardRequests.h"

#include <gtest/gtest.h>

#include "library/cards/ValueTexts.h"
#include "support/Diagnostics.h"
#include "support/HexBytes.h"

namespace brantelTesting {
namespace {

class CardRequests : public DiagnosticsTest {};

// "OID: type code, held type and value" of each.
std::optional<RecordTexts> textsOfWrite(const std::string& hex)
{
    const std::optional<OidTypeValueContainer> values = parseWriteRequest(bufferOf(hex));
    if (!values) {
        return std::nullopt;
    }
    RecordTexts texts;
    for (const OidTypeValue& value : *values) {
        texts.push_back(std::to_string(value.oid) + ": " + std::to_string(value.type) + ", " + valueText(value.value));
    }
    return texts;
}

TEST_F(CardRequests, ToReadAreTheOidsInTheirOrder)
{
    EXPECT_EQ(parseReadRequest(bufferOf("00000000")), ObjectIdContainer{});
    EXPECT_EQ(parseReadRequest(bufferOf("00000003 00000004 00000009 00000004 00000001 00000004 00000009")),
              (ObjectIdContainer{9, 1, 9}));
}

TEST_F(CardRequests, ToReadAreNothingElse)
{
    for (const char* const hex : {"", "000000", "00000001", "00000001 00000004 000000", "00000001 00000003 000000",
                                  "00000000 00", "00000001 00000005 0000000100", "00000001 00000000",
                                  "FFFFFFFF 00000004 00000001", "00000001 00000004 00000001 00000004 00000002"}) {
        EXPECT_EQ(parseReadRequest(bufferOf(hex)), std::nullopt) << hex;
    }
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(CardRequests, ToWriteAreTheValuesInTheirOrder)
{
    EXPECT_EQ(textsOfWrite("00000000"), RecordTexts{});
    EXPECT_EQ(
        textsOfWrite("00000003 00000006 00000009 03 07 0000000B 00000001 09 00000002 6869 00000006 00000009 08 01"),
        (RecordTexts{"9: 3, unsigned char 7", "1: 9, string 'hi'", "9: 8, bool true"}));
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(CardRequests, ToWriteAreNothingElse)
{
    for (const char* const hex :
         {"", "00000001", "00000001 00000004 00000001", "00000001 00000006 00000001 0B 07", "00000000 00",
          "00000001 00000006 00000001 01 07", "00000001 00000007 00000001 03 0707",
          "00000001 00000006 00000001 03 07 00", "00000001 0000000C 00000001 0D 00000003 AABBCC"}) {
        EXPECT_EQ(textsOfWrite(hex), std::nullopt) << hex;
    }
}

}  // namespace

}  // namespace brantelTesting
