// Values and result codes as people write and read them.

#include <gtest/gtest.h>

#include "apps/cards/CardValues.h"
#include "cards/ResultText.h"

namespace brantel {
namespace {

struct ValueText {
    OidValueType type;
    const char* text;
    const char* again;  // as it is printed
};

TEST(ValueText, IsReadAndPrinted)
{
    const ValueText values[] = {
        {OID_TYPE_UINT64, "18446744073709551615", "18446744073709551615"},
        {OID_TYPE_UINT64, "0xFFFFFFFFFFFFFFFF", "18446744073709551615"},
        {OID_TYPE_UINT32, "4294967295", "4294967295"},
        {OID_TYPE_UINT16, "65535", "65535"},
        {OID_TYPE_UINT8, "255", "255"},
        {OID_TYPE_UINT8, "0x0f", "15"},
        {OID_TYPE_INT64, "-9223372036854775808", "-9223372036854775808"},
        {OID_TYPE_INT32, "-2147483648", "-2147483648"},
        {OID_TYPE_INT16, "-32768", "-32768"},
        {OID_TYPE_INT8, "-128", "-128"},
        {OID_TYPE_INT8, "127", "127"},
        {OID_TYPE_BOOL, "true", "true"},
        {OID_TYPE_BOOL, "1", "true"},
        {OID_TYPE_BOOL, "false", "false"},
        {OID_TYPE_BOOL, "0", "false"},
        {OID_TYPE_STRING, "", ""},
        {OID_TYPE_STRING, "a b=c:d", "a b=c:d"},
        {OID_TYPE_IPV4_ADDRESS, "192.0.2.1", "192.0.2.1"},
        {OID_TYPE_BUFFER, "", ""},
        {OID_TYPE_BUFFER, "00fFA5", "00ffa5"},
        {OID_TYPE_MAC_ADDRESS, "AA:bb:cc:DD:ee:0f", "aa:bb:cc:dd:ee:0f"},
    };
    for (const ValueText& value : values) {
        const std::optional<boost::any> any = parseValue(value.type, value.text);
        ASSERT_TRUE(any) << typeText(value.type) << " " << value.text;
        EXPECT_EQ(valueText(value.type, *any), value.again) << typeText(value.type) << " " << value.text;
    }
}

TEST(ValueText, IsRefusedIfItIsNoneOfTheType)
{
    const struct {
        OidValueType type;
        std::vector<const char*> texts;
    } refused[] = {
        {OID_TYPE_UINT64, {"", "-1", "18446744073709551616", "1.0", " 1", "1 ", "+1", "0x", "0x1g", "0x-1"}},
        {OID_TYPE_UINT32, {"4294967296", "-1"}},
        {OID_TYPE_UINT16, {"65536", "0x10000"}},
        {OID_TYPE_UINT8, {"256", "a"}},
        {OID_TYPE_INT64, {"9223372036854775808", "-9223372036854775809"}},
        {OID_TYPE_INT32, {"2147483648", "-2147483649", "--1"}},
        {OID_TYPE_INT16, {"32768", "-32769"}},
        {OID_TYPE_INT8, {"128", "-129", "0x-1"}},
        {OID_TYPE_BOOL, {"", "True", "yes", "2"}},
        {OID_TYPE_IPV4_ADDRESS, {"", "192.0.2", "192.0.2.256", "192.0.2.1 ", "::1"}},
        {OID_TYPE_BUFFER, {"0", "0x00", "zz", "0-", "00 11"}},
        {OID_TYPE_MAC_ADDRESS,
         {"", "02:00:00:00:00", "02:00:00:00:00:00:00", "02-00-00-00-00-00", "02:00:00:00:00:g0", "020000000000"}},
        {static_cast<OidValueType>(11), {"1"}},
    };
    for (const auto& [type, texts] : refused) {
        for (const char* const text : texts) {
            EXPECT_FALSE(parseValue(type, text)) << typeText(type) << " '" << text << "'";
        }
    }
    EXPECT_TRUE(parseValue(OID_TYPE_BUFFER, std::string(4096, '0')));
    EXPECT_FALSE(parseValue(OID_TYPE_BUFFER, std::string(4098, '0')));
}

TEST(ValueText, NamesTheTypes)
{
    EXPECT_EQ(typeTexts(), (std::vector<std::string>{"uint64", "uint32", "uint16", "uint8", "int64", "int32", "int16",
                                                     "int8", "bool", "string", "buffer", "ipv4", "mac"}));
    EXPECT_EQ(parseType("mac"), OID_TYPE_MAC_ADDRESS);
    EXPECT_EQ(parseType("MAC"), std::nullopt);
    EXPECT_EQ(typeText(OID_TYPE_INT8), "int8");
    EXPECT_EQ(typeText(static_cast<OidValueType>(11)), "type 11");
}

TEST(ValueText, TakesOidsAsNumbersAndNames)
{
    EXPECT_EQ(parseOid("65538"), 65538U);
    EXPECT_EQ(parseOid("0x00010002"), 65538U);
    EXPECT_EQ(parseOid("0xFFFFFFFF"), 0xFFFFFFFFU);
    EXPECT_EQ(parseOid("card.name"), 65538U);
    for (const char* const text : {"", "4294967296", "-1", "0x", "1e3", "card.nam"}) {
        EXPECT_EQ(parseOid(text), std::nullopt) << text;
    }
}

TEST(ResultText, HasNameAndMeaning)
{
    const struct {
        CallOutcome outcome;
        const char* text;
    } results[] = {
        {0, "0=0x0=RESULT OK: done"},
        {1, "1=0x1=RESULT PROTOCOL VERSION_MISMATCH: service and card speak different versions"},
        {2, "2=0x2=RESULT DUPLICATE MSG: the card had this message before"},
        {3, "3=0x3=RESULT LOST MSG: the card missed a message before this one"},
        {4, "4=0x4=RESULT INVALID ACTION: the card does not know the action"},
        {5, "5=0x5=RESULT GENERAL ERROR: the card failed"},
        {6, "6=0x6=RESULT WRONG TYPE: the object has another type"},
        {7, "7=0x7=RESULT WRONG OID: the card has no such object"},
        {8, "8=0x8=RESULT WRONG LEN: the value is longer or shorter than its type"},
        {9, "9=0x9=RESULT WRONG VALUE: the object does not take this value"},
        {10, "10=0xa=RESULT READ ONLY: the object cannot be written"},
        {11, "11=0xb=RESULT TOO LONG: the value is longer than the object takes"},
        {12, "12=0xc=RESULT CANNOT EXEC: the card cannot do this now"},
        {13, "13=0xd=RESULT WRONG MAGIC: the card did not recognise the message"},
        {14, "14=0xe=RESULT NOT RECEIVED: the card did not receive the message"},
        {15, "15=0xf=RESULT NOT SEND: the card could not send its answer"},
        {16, "16=0x10=unknown: a result code without a meaning"},
        {0x01000000,
         "16777216=0x1000000=GENERAL_ERROR: the service does not know this interface, version or operation"},
        {0x02000000, "33554432=0x2000000=TIMEOUT: the card did not answer in time"},
        {0x03000001, "50331649=0x3000001=INVALID_RESPONSE: the message could not be understood"},
        {0x04000000, "67108864=0x4000000=INTERNAL_ERROR: the service failed to handle the request"},
        {0x05000000, "83886080=0x5000000=SENDING_MSG_TO_IFC_CARD_FAILED: the service could not reach its card"},
        {0x06000000, "100663296=0x6000000=INVALID_NR_OF_TLVS: the request does not hold as many elements as it says"},
        {0x07000000, "117440512=0x7000000=MESSAGE_TOO_LARGE: request or answer do not fit into 2048 bytes"},
        {0x08000000, "134217728=0x8000000=MESSAGE_TOO_SHORT: the request is cut off"},
        {0x09000000, "150994944=0x9000000=unknown: a result code without a meaning"},
        {-1, "-1=0xffffffff=unknown: a result code without a meaning"},
        {-2, "-2=0xfffffffe=unknown: a result code without a meaning"},
        {NO_ANSWER, "no answer: no card is serving the slot, or nothing came back in time"},
        {MALFORMED_ANSWER, "malformed answer: the card sent something other than the requested values"},
        {MALFORMED_VALUE, "malformed value: the value does not have the type of the object, or the length of its type"},
    };
    for (const auto& [outcome, text] : results) {
        EXPECT_EQ(resultText(outcome), text);
    }
}

}  // namespace

}  // namespace brantel
