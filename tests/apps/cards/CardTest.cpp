// The card: what it serves, what it takes, and what it refuses with which result.

#include <fstream>
#include <set>

#include <gtest/gtest.h>

#include "apps/cards/CardValues.h"
#include "message/OBresult.h"
#include "support/Diagnostics.h"
#include "support/HexBytes.h"

namespace brantel {

using namespace oids;

namespace {

constexpr std::uint32_t SLOT = 3;
constexpr int INVALID_NR_OF_TLVS = 0x06000000;

class CardTest : public DiagnosticsTest {
protected:
    Card m_card{SLOT, "test", {}};
};

TEST_F(CardTest, StartsWithTheseValues)
{
    const ValueTexts expected = {{CARD_SLOT, "uint8 3"},
                                 {CARD_NAME, "string card 3"},
                                 {CARD_SOURCE, "string test"},
                                 {CARD_UPTIME, "uint32 0"},
                                 {CARD_READS, "uint64 1"},
                                 {CARD_WRITES, "uint64 0"},
                                 {CARD_ADDRESS, "ipv4 192.0.2.13"},
                                 {CARD_MAC, "mac 02:00:00:00:00:03"},
                                 {CARD_LOCATION, "buffer "},
                                 {CARD_ENABLED, "bool true"},
                                 {CARD_LED, "uint8 1"},
                                 {CARD_VLAN, "uint16 1"},
                                 {CARD_ALTITUDE, "int16 0"},
                                 {CARD_TEMPERATURE_OFFSET, "int8 0"},
                                 {CARD_ALARM_THRESHOLD, "int32 0"},
                                 {CARD_CLOCK_OFFSET, "int64 0"},
                                 {CARD_SELF_TEST, "bool false"},
                                 {CARD_FAULT, "string "}};
    ObjectIdContainer oids;
    for (const auto& [oid, text] : expected) {
        oids.push_back(oid);
    }
    EXPECT_EQ(readTexts(m_card, oids), expected);
}

TEST_F(CardTest, HasTheObjectsOfTheTable)
{
    std::set<OidValueType> types;
    for (const OidEntry& entry : oidTable()) {
        if (entry.oid > CARD_FAULT) {
            break;  // what comes from a source
        }
        OidTypeValueMap values;
        EXPECT_TRUE(convertTlvsToOidTypeValueMap(SLOT, m_card.read(readRequest({entry.oid})).tlvs, values, nullptr));
        EXPECT_EQ(values[entry.oid].type, entry.type) << entry.name;
        const int result = m_card.write(writeRequest({{entry.oid, *entry.type, values[entry.oid].value}}));
        EXPECT_EQ(result, entry.isWritable ? icsc::RESULT_OK : icsc::RESULT_READ_ONLY) << entry.name;
        types.insert(values[entry.oid].type);
    }
    EXPECT_EQ(types.size(), 13U) << "a card serves every type";
}

TEST_F(CardTest, AnswersInTheOrderOfTheRequest)
{
    const Card::Answer answer = m_card.read(bufferOf("00000002  00000004 0001000B  00000004 00010001"));
    EXPECT_EQ(answer.result, icsc::RESULT_OK);
    EXPECT_EQ(hexOf(answer.tlvs), withoutBlanks("00000002  00000006 0001000B 03 01  00000006 00010001 03 03"));
}

TEST_F(CardTest, AnswersARequestForNothingWithNothing)
{
    const Card::Answer answer = m_card.read(bufferOf("00000000"));
    EXPECT_EQ(answer.result, icsc::RESULT_OK);
    EXPECT_EQ(hexOf(answer.tlvs), "00000000");
}

struct Request {
    const char* bytes;
    int result;
};

TEST_F(CardTest, RefusesReadsAsAWhole)
{
    const Request requests[] = {
        {"", INVALID_NR_OF_TLVS},
        {"000001", INVALID_NR_OF_TLVS},
        {"00000001", INVALID_NR_OF_TLVS},
        {"FFFFFFFF 00000004 00010001", INVALID_NR_OF_TLVS},
        {"00000001 00000005 00010001", INVALID_NR_OF_TLVS},
        {"00000001 00000004 00010001 00", INVALID_NR_OF_TLVS},
        {"00000001 00000003 000100", icsc::RESULT_WRONG_LEN},
        {"00000001 00000005 0001000100", icsc::RESULT_WRONG_LEN},
        {"00000002 00000004 00010001 00000004 00020001", icsc::RESULT_WRONG_OID},
    };
    for (const Request& request : requests) {
        const Card::Answer answer = m_card.read(bufferOf(request.bytes));
        EXPECT_EQ(answer.result, request.result) << request.bytes;
        EXPECT_EQ(answer.tlvs.size(), 0U) << request.bytes;
    }
}

TEST_F(CardTest, RefusesAReadWhoseAnswerDoesNotFit)
{
    // An element of card.slot is 10 bytes: 204 of them and the count are 2044.
    EXPECT_EQ(m_card.read(readRequest(ObjectIdContainer(204, CARD_SLOT))).tlvs.size(), 2044U);
    EXPECT_EQ(m_card.read(readRequest(ObjectIdContainer(205, CARD_SLOT))).result, obResult::MESSAGE_TOO_LARGE);
}

TEST_F(CardTest, TakesEveryWritableType)
{
    const OidTypeValueContainer values = {
        written(CARD_NAME, OID_TYPE_STRING, std::string(32, 'n')),
        written(CARD_ADDRESS, OID_TYPE_IPV4_ADDRESS, "198.51.100.7"),
        written(CARD_LOCATION, OID_TYPE_BUFFER, std::string(128, '7')),
        written(CARD_ENABLED, OID_TYPE_BOOL, "false"),
        written(CARD_LED, OID_TYPE_UINT8, "3"),
        written(CARD_VLAN, OID_TYPE_UINT16, "4094"),
        written(CARD_ALTITUDE, OID_TYPE_INT16, "-500"),
        written(CARD_TEMPERATURE_OFFSET, OID_TYPE_INT8, "-20"),
        written(CARD_ALARM_THRESHOLD, OID_TYPE_INT32, "-2147483648"),
        written(CARD_CLOCK_OFFSET, OID_TYPE_INT64, "-9223372036854775808"),
        written(CARD_FAULT, OID_TYPE_STRING, "delay=0.5,truncated"),
    };
    EXPECT_EQ(m_card.write(writeRequest(values)), icsc::RESULT_OK);

    ObjectIdContainer oids;
    ValueTexts expected;
    for (const OidTypeValue& value : values) {
        oids.push_back(value.oid);
        expected[value.oid] = typedText(value.type, value.value);
    }
    EXPECT_EQ(readTexts(m_card, oids), expected);
}

struct RefusedValue {
    std::uint32_t oid;
    OidValueType type;
    std::string text;
    int result;
};

TEST_F(CardTest, RefusesValues)
{
    const RefusedValue values[] = {
        {0x00010013, OID_TYPE_UINT8, "1", icsc::RESULT_WRONG_OID},
        {CARD_SLOT, OID_TYPE_UINT8, "4", icsc::RESULT_READ_ONLY},
        {CARD_SLOT, OID_TYPE_STRING, "4", icsc::RESULT_READ_ONLY},
        {CARD_LED, OID_TYPE_UINT16, "1", icsc::RESULT_WRONG_TYPE},
        {CARD_LED, OID_TYPE_INT8, "1", icsc::RESULT_WRONG_TYPE},
        {CARD_LED, OID_TYPE_UINT8, "4", icsc::RESULT_WRONG_VALUE},
        {CARD_VLAN, OID_TYPE_UINT16, "0", icsc::RESULT_WRONG_VALUE},
        {CARD_VLAN, OID_TYPE_UINT16, "4095", icsc::RESULT_WRONG_VALUE},
        {CARD_ALTITUDE, OID_TYPE_INT16, "-501", icsc::RESULT_WRONG_VALUE},
        {CARD_ALTITUDE, OID_TYPE_INT16, "9001", icsc::RESULT_WRONG_VALUE},
        {CARD_TEMPERATURE_OFFSET, OID_TYPE_INT8, "-21", icsc::RESULT_WRONG_VALUE},
        {CARD_TEMPERATURE_OFFSET, OID_TYPE_INT8, "21", icsc::RESULT_WRONG_VALUE},
        {CARD_NAME, OID_TYPE_STRING, std::string(33, 'n'), icsc::RESULT_TOO_LONG},
        {CARD_LOCATION, OID_TYPE_BUFFER, std::string(130, '7'), icsc::RESULT_TOO_LONG},
        {CARD_FAULT, OID_TYPE_STRING, "noise", icsc::RESULT_WRONG_VALUE},
        {CARD_FAULT, OID_TYPE_STRING, "result=" + std::string(250, '0'), icsc::RESULT_TOO_LONG},
    };
    for (const RefusedValue& value : values) {
        EXPECT_EQ(m_card.write(writeRequest({written(value.oid, value.type, value.text)})), value.result)
            << value.oid << " " << value.text;
    }
}

TEST_F(CardTest, CountsTheCharactersOfItsName)
{
    std::string name;
    for (int i = 0; i < 32; ++i) {
        name += "\xC3\xBC";
    }
    EXPECT_EQ(m_card.write(writeRequest({written(CARD_NAME, OID_TYPE_STRING, name)})), icsc::RESULT_OK);
    EXPECT_EQ(m_card.write(writeRequest({written(CARD_NAME, OID_TYPE_STRING, name + "u")})), icsc::RESULT_TOO_LONG);
    EXPECT_EQ(m_card.write(writeRequest({written(CARD_NAME, OID_TYPE_STRING, "\xC3")})), icsc::RESULT_WRONG_VALUE);
}

TEST_F(CardTest, RefusesValuesOfAnotherLength)
{
    const char* const requests[] = {
        "00000001 00000003 000100",                     // no OID
        "00000001 00000004 0001000B",                   // no type
        "00000001 00000005 0001000B 03",                // no value
        "00000001 00000007 0001000B 03 0102",           // more than the value
        "00000001 00000006 0001000C 02 00",             // half a value
        "00000001 00000009 00010002 09 00000001",       // a string whose length lies
        "00000001 0000000B 00010002 09 00000001 4142",  // a string and more
        "00000001 0000000A 00010009 0C 00000002 41",    // a buffer whose length lies
        "00000001 0000000A 00010007 0A C0000201 00",    // an address and more
    };
    for (const char* const request : requests) {
        EXPECT_EQ(m_card.write(bufferOf(request)), icsc::RESULT_WRONG_LEN) << request;
    }
}

TEST_F(CardTest, RefusesWritesThatAreNoElements)
{
    for (const char* const request : {"", "00000001", "00000002 00000006 0001000B 03 02"}) {
        EXPECT_EQ(m_card.write(bufferOf(request)), INVALID_NR_OF_TLVS) << request;
    }
}

TEST_F(CardTest, WritesAllValuesOrNone)
{
    EXPECT_EQ(
        m_card.write(writeRequest({written(CARD_LED, OID_TYPE_UINT8, "2"), written(CARD_VLAN, OID_TYPE_UINT16, "0")})),
        icsc::RESULT_WRONG_VALUE);
    EXPECT_EQ(readTexts(m_card, {CARD_LED}), (ValueTexts{{CARD_LED, "uint8 1"}}));
}

TEST_F(CardTest, TestsItselfOnlyWhileEnabled)
{
    const buffer_t selfTest = writeRequest({written(CARD_SELF_TEST, OID_TYPE_BOOL, "true")});
    EXPECT_EQ(m_card.write(selfTest), icsc::RESULT_OK);
    EXPECT_EQ(m_card.write(writeRequest({written(CARD_ENABLED, OID_TYPE_BOOL, "false")})), icsc::RESULT_OK);
    EXPECT_EQ(m_card.write(selfTest), icsc::RESULT_CANNOT_EXEC);
}

TEST_F(CardTest, CountsRequests)
{
    m_card.read(readRequest({CARD_LED}));
    m_card.read(readRequest({0}));
    m_card.write(writeRequest({written(CARD_LED, OID_TYPE_UINT8, "9")}));
    EXPECT_EQ(readTexts(m_card, {CARD_READS, CARD_WRITES}),
              (ValueTexts{{CARD_READS, "uint64 3"}, {CARD_WRITES, "uint64 1"}}));
}

TEST_F(CardTest, KeepsItsFaults)
{
    m_card.write(writeRequest({written(CARD_FAULT, OID_TYPE_STRING, "silence")}));
    EXPECT_TRUE(m_card.faults().isSilent);
    m_card.write(writeRequest({written(CARD_FAULT, OID_TYPE_STRING, "")}));
    EXPECT_FALSE(m_card.faults().isSilent);
}

TEST_F(CardTest, KnowsRequestsAboutItsFaultsOnly)
{
    EXPECT_TRUE(Card::isAboutFaultsOnly(readRequest({CARD_FAULT})));
    EXPECT_TRUE(Card::isAboutFaultsOnly(writeRequest({written(CARD_FAULT, OID_TYPE_STRING, "")})));
    EXPECT_FALSE(Card::isAboutFaultsOnly(readRequest({CARD_NAME})));
    EXPECT_FALSE(Card::isAboutFaultsOnly(readRequest({CARD_FAULT, CARD_NAME})));
    EXPECT_FALSE(Card::isAboutFaultsOnly(readRequest({})));
    EXPECT_FALSE(Card::isAboutFaultsOnly(bufferOf("00000001 00000003 000100")));
    EXPECT_FALSE(Card::isAboutFaultsOnly(bufferOf("00")));
}

TEST(OidTable, IsOrderedAndHasEachNameOnce)
{
    std::set<std::string> names;
    std::uint32_t last = 0;
    for (const OidEntry& entry : oidTable()) {
        EXPECT_GT(entry.oid, last) << entry.name;
        last = entry.oid;
        names.insert(entry.name);
    }
    EXPECT_EQ(names.size(), oidTable().size());
}

TEST(OidTable, IsSearchedByNumberAndByName)
{
    EXPECT_EQ(findOid(MEMORY_TOTAL)->name, "mem.total");
    EXPECT_EQ(findOid("mem.total")->oid, MEMORY_TOTAL);
    EXPECT_EQ(findOid("wave.64.label")->oid, WAVE_LABEL + 63);
    EXPECT_EQ(findOid(7), nullptr);
    EXPECT_EQ(findOid("mem"), nullptr);
}

TEST(OidTable, IsDocumented)
{
    std::ifstream file(DOCS_DIR "/cards.md");
    std::set<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        lines.insert(line);
    }
    ASSERT_FALSE(lines.empty());
    for (const OidEntry& entry : oidTable()) {
        const bool isNumbered = entry.name.find_first_of("123456789") != std::string::npos;
        const std::string row = "| " + oidText(entry.oid) + " | `" + entry.name + "` | " + typeText(*entry.type) +
                                " | " + (entry.isWritable ? "writable" : "read only") + " | " + entry.meaning + " |";
        EXPECT_TRUE(isNumbered || (lines.count(row) == 1)) << row;
    }
}

}  // namespace

}  // namespace brantel
