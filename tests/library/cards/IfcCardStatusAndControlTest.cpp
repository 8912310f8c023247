#include "IfcCardStatusAndControl.h"

#include <limits>
#include <stdexcept>
#include <string>

#include "library/cards/ValueTexts.h"
#include "support/Diagnostics.h"
#include "support/HexBytes.h"

namespace {

const std::string SOURCE = "IfcCardStatusAndControl.cpp";
const std::string SOURCE_PATH = "components/common/brantel/src/IfcCardStatusAndControl.cpp";

std::string encoderLine(const std::string& format, const std::string& message)
{
    return errorLine(SOURCE, "convertOidTypeValueContainerToTlvs", format, message);
}

std::string encoderReport(const std::string& condition)
{
    return assertReport(condition, SOURCE_PATH,
                        "bool convertOidTypeValueContainerToTlvs(const OidTypeValueContainer&, buffer_t&)");
}

std::string decoderLine(const std::string& format, const std::string& message)
{
    return errorLine(SOURCE, "convertTlvsToOidTypeValueMap", format, message);
}

const std::string BAD_CAST = "boost::bad_any_cast: failed conversion using boost::any_cast";

// One value of each type and its bytes in an element, after OID and type code.
struct TypeCase {
    OidValueType type;
    boost::any value;
    std::string hex;
};

std::vector<TypeCase> typeCases()
{
    return {
        {OID_TYPE_UINT64, 0x0102030405060708ULL, "0102030405060708"},
        {OID_TYPE_UINT64, 0xFFFFFFFFFFFFFFFFULL, "FFFFFFFFFFFFFFFF"},
        {OID_TYPE_UINT32, 0x01020304U, "01020304"},
        {OID_TYPE_UINT32, 0xFFFFFFFFU, "FFFFFFFF"},
        {OID_TYPE_UINT16, static_cast<unsigned short>(0x0102), "0102"},
        {OID_TYPE_UINT16, static_cast<unsigned short>(0xFFFF), "FFFF"},
        {OID_TYPE_UINT8, static_cast<unsigned char>(0x01), "01"},
        {OID_TYPE_UINT8, static_cast<unsigned char>(0xFF), "FF"},
        {OID_TYPE_INT64, -2LL, "FFFFFFFFFFFFFFFE"},
        {OID_TYPE_INT64, std::numeric_limits<long long>::min(), "8000000000000000"},
        {OID_TYPE_INT32, -2, "FFFFFFFE"},
        {OID_TYPE_INT32, std::numeric_limits<int>::min(), "80000000"},
        {OID_TYPE_INT16, static_cast<short>(-2), "FFFE"},
        {OID_TYPE_INT16, std::numeric_limits<short>::min(), "8000"},
        {OID_TYPE_INT8, static_cast<signed char>(-2), "FE"},
        {OID_TYPE_INT8, std::numeric_limits<signed char>::min(), "80"},
        {OID_TYPE_BOOL, false, "00"},
        {OID_TYPE_BOOL, true, "01"},
        {OID_TYPE_STRING, std::string(), "00000000"},
        {OID_TYPE_STRING, std::string("laser"), "00000005 6C61736572"},
        {OID_TYPE_IPV4_ADDRESS, addressOf(0x0A000001), "0A000001"},
        {OID_TYPE_BUFFER, buffer_t(), "00000000"},
        {OID_TYPE_BUFFER, bufferOf("AABBCC"), "00000003 AABBCC"},
        {OID_TYPE_MAC_ADDRESS, 0x0000AABBCCDDEEFFULL, "00000006 AABBCCDDEEFF"},
        {OID_TYPE_MAC_ADDRESS, 0ULL, "00000006 000000000000"},
    };
}

std::string hexOf32(std::uint32_t number)
{
    buffer_t buffer;
    buffer << number;
    return hexOf(buffer);
}

std::string elementHex(std::uint32_t oid, int code, const std::string& valueHex)
{
    const std::string value = withoutBlanks(valueHex);
    buffer_t codeByte;
    codeByte << static_cast<std::uint8_t>(code);
    return hexOf32(static_cast<std::uint32_t>(5 + value.size() / 2)) + hexOf32(oid) + hexOf(codeByte) + value;
}

// An element that holds an unsigned char.
std::string byteElementHex(std::uint32_t oid, const std::string& valueHex)
{
    return elementHex(oid, OID_TYPE_UINT8, valueHex);
}

OidTypeValue byteValue(std::uint32_t oid, unsigned char value)
{
    return {oid, OID_TYPE_UINT8, value};
}

class EncodeOids : public DiagnosticsTest {};

TEST_F(EncodeOids, AnEmptyListIsTheCountAlone)
{
    buffer_t tlvs;
    convertObjectIdContainerToTlvs({}, tlvs);
    EXPECT_EQ(hexOf(tlvs), "00000000");
}

TEST_F(EncodeOids, AppendsTheCountAndOneElementPerOidInTheirOrder)
{
    buffer_t tlvs = bufferOf("AA");
    convertObjectIdContainerToTlvs({0x10, 0xDEADBEEF, 0x10}, tlvs);
    EXPECT_EQ(hexOf(tlvs), withoutBlanks("AA 00000003  00000004 00000010  00000004 DEADBEEF  00000004 00000010"));
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(EncodeOids, TakesAsManyAsTheBufferHoldsAndThrowsForMore)
{
    buffer_t tlvs;
    convertObjectIdContainerToTlvs(ObjectIdContainer(255), tlvs);
    EXPECT_EQ(tlvs.size(), 4U + 255 * 8);

    tlvs.clear();
    EXPECT_THROW(convertObjectIdContainerToTlvs(ObjectIdContainer(256), tlvs), std::length_error);
    EXPECT_EQ(tlvs.size(), 4U + 255 * 8);
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

class EncodeValues : public DiagnosticsTest {};

TEST_F(EncodeValues, AnEmptyContainerIsTheCountAlone)
{
    buffer_t tlvs;
    EXPECT_TRUE(convertOidTypeValueContainerToTlvs({}, tlvs));
    EXPECT_EQ(hexOf(tlvs), "00000000");
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(EncodeValues, WritesEachTypeAsItsBytes)
{
    for (const TypeCase& typeCase : typeCases()) {
        buffer_t tlvs;
        EXPECT_TRUE(convertOidTypeValueContainerToTlvs({{0x01020304, typeCase.type, typeCase.value}}, tlvs));
        EXPECT_EQ(hexOf(tlvs), "00000001" + elementHex(0x01020304, typeCase.type, typeCase.hex));
    }
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(EncodeValues, AppendsTheCountAndOneElementPerEntryInTheirOrder)
{
    buffer_t tlvs = bufferOf("AA");
    EXPECT_TRUE(convertOidTypeValueContainerToTlvs({{2, OID_TYPE_INT32, -3}, {1, OID_TYPE_BOOL, true}}, tlvs));
    EXPECT_EQ(hexOf(tlvs), withoutBlanks("AA 00000002  00000009 00000002 05 FFFFFFFD  00000006 00000001 08 01"));
}

TEST_F(EncodeValues, DropsTheUpper16BitsOfAMacAddress)
{
    buffer_t tlvs;
    EXPECT_TRUE(convertOidTypeValueContainerToTlvs({{1, OID_TYPE_MAC_ADDRESS, 0x1122AABBCCDDEEFFULL}}, tlvs));
    EXPECT_EQ(hexOf(tlvs), withoutBlanks("00000001  0000000F 00000001 0D 00000006 AABBCCDDEEFF"));
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(EncodeValues, WritesAllOfABufferWhateverWasReadOfIt)
{
    const buffer_t value = bufferOf("AABB");
    unsigned char byte = 0;
    value >> byte;
    buffer_t tlvs;
    EXPECT_TRUE(convertOidTypeValueContainerToTlvs({{1, OID_TYPE_BUFFER, value}}, tlvs));
    EXPECT_EQ(hexOf(tlvs), withoutBlanks("00000001  0000000B 00000001 0C 00000002 AABB"));
}

TEST_F(EncodeValues, ReportsAnUnknownTypeAndKeepsTheEarlierElements)
{
    const struct {
        int type;
        std::string text;
    } cases[] = {{11, "11"}, {14, "14"}, {255, "255"}, {256, "256"}, {0x10005, "65541"}, {-1, "-1"}};
    for (const auto& unknown : cases) {
        buffer_t tlvs = bufferOf("AA");
        EXPECT_FALSE(convertOidTypeValueContainerToTlvs(
            {byteValue(1, 7), {0xABCDEF, static_cast<OidValueType>(unknown.type), 5}, byteValue(2, 8)}, tlvs));
        EXPECT_EQ(hexOf(tlvs), "AA00000003" + byteElementHex(1, "07"));
        EXPECT_EQ(
            m_diagnostics.take(),
            (Diagnostics{encoderLine("invalid or not yet implemented type  (%d) for oid=0x%x",
                                     "invalid or not yet implemented type  (" + unknown.text + ") for oid=0xabcdef"),
                         encoderReport("false")}));
    }
}

TEST_F(EncodeValues, EmptiesTheStreamWhenAValueHoldsAnotherTypeThanItsCodeNames)
{
    const struct {
        OidValueType type;
        boost::any value;
        Diagnostics reportsBefore;
    } cases[] = {
        {OID_TYPE_UINT64, 1UL, {}},
        {OID_TYPE_UINT32, 1, {}},
        {OID_TYPE_UINT16, static_cast<short>(1), {}},
        {OID_TYPE_UINT8, 'a', {}},
        {OID_TYPE_INT64, 1L, {}},
        {OID_TYPE_INT32, 1U, {}},
        {OID_TYPE_INT16, 1, {}},
        {OID_TYPE_INT8, 'a', {}},
        {OID_TYPE_BOOL, 1, {}},
        {OID_TYPE_STRING, static_cast<const char*>("text"), {}},
        {OID_TYPE_IPV4_ADDRESS, 1U, {encoderReport("isIPv4Address(values[i].value)")}},
        {OID_TYPE_IPV4_ADDRESS, boost::any(), {encoderReport("isIPv4Address(values[i].value)")}},
        {OID_TYPE_BUFFER, std::string("text"), {}},
        {OID_TYPE_MAC_ADDRESS, 1LL, {encoderReport("isUInt64(values[i].value)")}},
        {OID_TYPE_MAC_ADDRESS, boost::any(), {encoderReport("isUInt64(values[i].value)")}},
        {OID_TYPE_UINT8, boost::any(), {}},
    };
    for (const auto& mismatch : cases) {
        buffer_t tlvs = bufferOf("AA");
        EXPECT_FALSE(convertOidTypeValueContainerToTlvs({byteValue(1, 7), {2, mismatch.type, mismatch.value}}, tlvs));
        EXPECT_EQ(tlvs.size(), 0U);

        Diagnostics expected = mismatch.reportsBefore;
        expected.push_back(
            encoderLine("boost::bad_any_cast occurred: %s", "boost::bad_any_cast occurred: " + BAD_CAST));
        expected.push_back(encoderReport("false"));
        EXPECT_EQ(m_diagnostics.take(), expected) << "type " << mismatch.type;
    }
}

TEST_F(EncodeValues, FillsTheBufferToTheLastByte)
{
    // 4 count, 4 length of the element, 4 OID, 1 type code, 4 length of the string
    const std::string longest(2048 - 17, 'x');
    buffer_t tlvs;
    EXPECT_TRUE(convertOidTypeValueContainerToTlvs({{1, OID_TYPE_STRING, longest}}, tlvs));
    EXPECT_EQ(tlvs.size(), 2048U);
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(EncodeValues, EmptiesTheStreamWhenAValueDoesNotFit)
{
    const OidTypeValueContainer cases[] = {
        {{1, OID_TYPE_STRING, std::string(2048 - 16, 'x')}},                   // into the stream
        {{1, OID_TYPE_STRING, std::string(2048, 'x')}},                        // into its element
        {{1, OID_TYPE_STRING, std::string(2048 - 17, 'x')}, byteValue(2, 8)},  // behind the one before
        OidTypeValueContainer(300, byteValue(1, 7)),
    };
    for (const OidTypeValueContainer& values : cases) {
        buffer_t tlvs;
        EXPECT_FALSE(convertOidTypeValueContainerToTlvs(values, tlvs));
        EXPECT_EQ(tlvs.size(), 0U);
        EXPECT_EQ(m_diagnostics.take(),
                  (Diagnostics{encoderLine("An exception occurred", "An exception occurred"), encoderReport("false")}));
    }
}

TEST_F(EncodeValues, EmptiesTheStreamWhenThereIsNoRoomForTheCount)
{
    const std::string bytes(2045, 'x');
    buffer_t tlvs(bytes.data(), bytes.size());
    EXPECT_FALSE(convertOidTypeValueContainerToTlvs({}, tlvs));
    EXPECT_EQ(tlvs.size(), 0U);
    EXPECT_EQ(m_diagnostics.take(),
              (Diagnostics{encoderLine("An exception occurred", "An exception occurred"), encoderReport("false")}));
}

TEST_F(EncodeValues, ReportsWithoutALineBelowTheErrorLevel)
{
    m_diagnostics.setTraceLevel(2);
    buffer_t tlvs;
    EXPECT_FALSE(convertOidTypeValueContainerToTlvs({{1, OID_TYPE_INT32, 1U}}, tlvs));
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{encoderReport("false")});

    m_diagnostics.removeTraceObject();
    EXPECT_FALSE(convertOidTypeValueContainerToTlvs({{1, static_cast<OidValueType>(11), 1U}}, tlvs));
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{encoderReport("false")});
}

class PeekAtStream : public DiagnosticsTest {
protected:
    static std::string line(const std::string& format, const std::string& message)
    {
        return errorLine(SOURCE, "extractFirstOidFromTlvs", format, message);
    }

    std::uint32_t m_oid = 77;
};

TEST_F(PeekAtStream, FindsTheFirstOidOfValuesAndOfOids)
{
    EXPECT_TRUE(extractFirstOidFromTlvs(3, bufferOf("00000001 00000006 00ABCDEF 08 01"), m_oid));
    EXPECT_EQ(m_oid, 0xABCDEFU);
    EXPECT_TRUE(extractFirstOidFromTlvs(3, bufferOf("00000002 00000004 00000010 00000004 00000011"), m_oid));
    EXPECT_EQ(m_oid, 0x10U);
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(PeekAtStream, LooksNeitherAtTypeNorAtValue)
{
    EXPECT_TRUE(extractFirstOidFromTlvs(3, bufferOf("FFFFFFFF 00000005 00000010 0B"), m_oid));
    EXPECT_EQ(m_oid, 0x10U);
}

TEST_F(PeekAtStream, ConsumesTheCountAndTheFirstElement)
{
    const buffer_t tlvs = bufferOf("00000002 00000004 00000010 00000004 00000011");
    EXPECT_TRUE(extractFirstOidFromTlvs(3, tlvs, m_oid));
    buffer_t next;
    tlvs >> next;
    EXPECT_EQ(hexOf(next), "00000011");
}

TEST_F(PeekAtStream, RefusesAnEmptyStream)
{
    EXPECT_FALSE(extractFirstOidFromTlvs(3, buffer_t(), m_oid));
    EXPECT_EQ(m_oid, 77U);
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{line("slot=%d: tlvs are empty", "slot=3: tlvs are empty")});
}

TEST_F(PeekAtStream, RefusesACountOf0)
{
    EXPECT_FALSE(extractFirstOidFromTlvs(3, bufferOf("00000000"), m_oid));
    EXPECT_EQ(m_oid, 77U);
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{line("slot=%d: no tlvs", "slot=3: no tlvs")});
}

TEST_F(PeekAtStream, PassesOnWhatTheBufferThrowsWhenTheStreamEndsTooEarly)
{
    for (const char* const hex : {"000000", "00000001", "00000001 000000", "00000001 00000004 000000",
                                  "00000001 00000003 000010", "00000001 00000000", "00000001 FFFFFFFF 00000010"}) {
        EXPECT_THROW(extractFirstOidFromTlvs(3, bufferOf(hex), m_oid), std::out_of_range) << hex;
        EXPECT_EQ(m_oid, 77U) << hex;
    }
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

class DecodeValues : public DiagnosticsTest {
protected:
    // Decodes into a map that has a record already, and returns whether that went well.
    bool decode(const std::string& hex)
    {
        m_values = {{99, {OID_TYPE_BOOL, true}}};
        return convertTlvsToOidTypeValueMap(3, bufferOf(hex), m_values, nullptr);
    }

    bool decode(const std::string& hex, const ObjectIdContainer& requestedOids)
    {
        m_values = {{99, {OID_TYPE_BOOL, true}}};
        return convertTlvsToOidTypeValueMap(3, bufferOf(hex), m_values, &requestedOids);
    }

    OidTypeValueMap m_values;
};

const RecordTexts EARLIER_RECORD{"99: 8, bool true"};
const RecordTexts NO_RECORDS;

TEST_F(DecodeValues, ReadsEachTypeFromItsBytes)
{
    for (const TypeCase& typeCase : typeCases()) {
        EXPECT_TRUE(decode("00000001" + elementHex(1, typeCase.type, typeCase.hex)));
        EXPECT_EQ(recordTexts(m_values),
                  (RecordTexts{"1: " + std::to_string(typeCase.type) + ", " + valueText(typeCase.value),
                               "99: 8, bool true"}));
    }
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(DecodeValues, AddsTheValuesToThoseAlreadyThere)
{
    EXPECT_TRUE(decode("00000002" + byteElementHex(200, "07") + byteElementHex(5, "08")));
    EXPECT_EQ(recordTexts(m_values),
              (RecordTexts{"5: 3, unsigned char 8", "99: 8, bool true", "200: 3, unsigned char 7"}));
}

TEST_F(DecodeValues, AcceptsAnyOidsWithoutARequest)
{
    EXPECT_TRUE(decode("00000002" + byteElementHex(0, "07") + byteElementHex(0xFFFFFFFF, "08")));
    EXPECT_EQ(recordTexts(m_values),
              (RecordTexts{"0: 3, unsigned char 7", "99: 8, bool true", "4294967295: 3, unsigned char 8"}));
}

TEST_F(DecodeValues, AcceptsTheRequestedOidsInAnyOrder)
{
    EXPECT_TRUE(decode("00000002" + byteElementHex(2, "07") + byteElementHex(1, "08"), {1, 2}));
    EXPECT_EQ(recordTexts(m_values),
              (RecordTexts{"1: 3, unsigned char 8", "2: 3, unsigned char 7", "99: 8, bool true"}));
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(DecodeValues, IgnoresWhatFollowsAValueInItsElementAndTheLastElementInTheStream)
{
    EXPECT_TRUE(decode("00000001" + elementHex(1, OID_TYPE_UINT8, "07 AABB") + byteElementHex(2, "08")));
    EXPECT_EQ(recordTexts(m_values), (RecordTexts{"1: 3, unsigned char 7", "99: 8, bool true"}));
}

TEST_F(DecodeValues, ReadsAStreamThatFillsTheBuffer)
{
    const std::string text(2048 - 17, 'x');
    buffer_t tlvs;
    convertOidTypeValueContainerToTlvs({{1, OID_TYPE_STRING, text}}, tlvs);
    ASSERT_EQ(tlvs.size(), 2048U);
    EXPECT_TRUE(convertTlvsToOidTypeValueMap(3, tlvs, m_values, nullptr));
    EXPECT_EQ(recordTexts(m_values), RecordTexts{"1: 9, string '" + text + "'"});
}

TEST_F(DecodeValues, RefusesAnEmptyStreamAndLeavesTheMapUnchanged)
{
    EXPECT_FALSE(decode("", {1}));
    EXPECT_EQ(recordTexts(m_values), EARLIER_RECORD);
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{decoderLine("slot=%d: tlvs are empty", "slot=3: tlvs are empty")});
}

TEST_F(DecodeValues, TakesACountOf0AsNoValues)
{
    EXPECT_TRUE(decode("00000000"));
    EXPECT_EQ(recordTexts(m_values), EARLIER_RECORD);
    EXPECT_TRUE(decode("00000000", {}));
    EXPECT_EQ(recordTexts(m_values), EARLIER_RECORD);
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(DecodeValues, RefusesAnotherCountThanRequestedAndLeavesTheMapUnchanged)
{
    const struct {
        std::string hex;
        ObjectIdContainer requestedOids;
        std::string numbers;
    } cases[] = {
        {"00000000", {1}, "[1] != nr of OIDs returned by IFC card [0]"},
        {"00000001" + byteElementHex(1, "07"), {}, "[0] != nr of OIDs returned by IFC card [1]"},
        {"00000001" + byteElementHex(1, "07"), {1, 2}, "[2] != nr of OIDs returned by IFC card [1]"},
        {"FFFFFFFF" + byteElementHex(1, "07"), {1}, "[1] != nr of OIDs returned by IFC card [-1]"},
    };
    for (const auto& mismatch : cases) {
        EXPECT_FALSE(decode(mismatch.hex, mismatch.requestedOids));
        EXPECT_EQ(recordTexts(m_values), EARLIER_RECORD);
        EXPECT_EQ(m_diagnostics.take(),
                  Diagnostics{decoderLine("slot=%d: nr of requested OIDs [%d] != nr of OIDs returned by IFC card [%d]",
                                          "slot=3: nr of requested OIDs " + mismatch.numbers)});
    }
}

TEST_F(DecodeValues, RefusesAnOidThatWasNotRequested)
{
    // The element's type is unknown, too, which no longer matters.
    EXPECT_FALSE(decode("00000002" + byteElementHex(1, "07") + elementHex(0xABC, 11, ""), {1, 2}));
    EXPECT_EQ(recordTexts(m_values), NO_RECORDS);
    EXPECT_EQ(
        m_diagnostics.take(),
        Diagnostics{decoderLine("slot=%d: card returned value for oid=0x%x but component did not request this oid",
                                "slot=3: card returned value for oid=0xabc but component did not request this oid")});
}

TEST_F(DecodeValues, RefusesAnUnknownType)
{
    for (const int code : {11, 14, 128, 255}) {
        // The map has a record for the OID, too, which no longer matters.
        EXPECT_FALSE(decode("00000002" + byteElementHex(1, "07") + elementHex(99, code, "01020304")));
        EXPECT_EQ(recordTexts(m_values), NO_RECORDS);
        EXPECT_EQ(m_diagnostics.take(),
                  Diagnostics{decoderLine(
                      "slot=%d: invalid or not yet implemented type  (%d) for oid=0x%x",
                      "slot=3: invalid or not yet implemented type  (" + std::to_string(code) + ") for oid=0x63")});
    }
}

TEST_F(DecodeValues, RefusesAnOidThatTheStreamCarriesTwiceOrTheMapHas)
{
    const struct {
        std::string hex;
        std::string oidText;
    } cases[] = {
        {"00000003" + byteElementHex(0x1F, "07") + byteElementHex(2, "07") + byteElementHex(0x1F, "07"), "0x1f"},
        {"00000002" + byteElementHex(1, "07") + byteElementHex(99, "07"), "0x63"},
    };
    for (const auto& duplicate : cases) {
        EXPECT_FALSE(decode(duplicate.hex));
        EXPECT_EQ(recordTexts(m_values), NO_RECORDS);
        EXPECT_EQ(m_diagnostics.take(),
                  Diagnostics{decoderLine("slot=%d: more than 1 value for oid=0x%x",
                                          "slot=3: more than 1 value for oid=" + duplicate.oidText)});
    }
}

TEST_F(DecodeValues, TreatsAnOidThatWasRequestedTwiceAsADuplicate)
{
    EXPECT_FALSE(decode("00000002" + byteElementHex(1, "07") + byteElementHex(1, "07"), {1, 1}));
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{decoderLine("slot=%d: more than 1 value for oid=0x%x",
                                                            "slot=3: more than 1 value for oid=0x1")});
}

TEST_F(DecodeValues, EmptiesTheMapWhenTheStreamIsCutAnywhere)
{
    OidTypeValueContainer values;
    for (const TypeCase& typeCase : typeCases()) {
        values.push_back({static_cast<std::uint32_t>(values.size()), typeCase.type, typeCase.value});
    }
    buffer_t whole;
    ASSERT_TRUE(convertOidTypeValueContainerToTlvs(values, whole));
    for (std::size_t length = 1; length < whole.size(); ++length) {
        m_values = {{99, {OID_TYPE_BOOL, true}}};
        EXPECT_FALSE(convertTlvsToOidTypeValueMap(3, buffer_t(whole.data(), length), m_values, nullptr)) << length;
        EXPECT_EQ(recordTexts(m_values), NO_RECORDS) << length;
        EXPECT_EQ(m_diagnostics.take(),
                  Diagnostics{decoderLine("slot=%d: an exception occurred", "slot=3: an exception occurred")})
            << length;
    }
}

TEST_F(DecodeValues, EmptiesTheMapWhenAnElementIsCutAnywhere)
{
    for (const TypeCase& typeCase : typeCases()) {
        buffer_t whole;
        bufferOf(elementHex(1, typeCase.type, typeCase.hex)) >> whole;
        for (std::size_t length = 0; length < whole.size(); ++length) {
            buffer_t tlvs;
            tlvs << std::uint32_t{1} << buffer_t(whole.data(), length);
            m_values = {{99, {OID_TYPE_BOOL, true}}};
            EXPECT_FALSE(convertTlvsToOidTypeValueMap(3, tlvs, m_values, nullptr));
            EXPECT_EQ(recordTexts(m_values), NO_RECORDS);
            EXPECT_EQ(m_diagnostics.take(),
                      Diagnostics{decoderLine("slot=%d: an exception occurred", "slot=3: an exception occurred")});
        }
    }
}

TEST_F(DecodeValues, TrustsNoCountAndNoLength)
{
    const std::string cases[] = {
        "FFFFFFFF" + byteElementHex(1, "07"),
        "00000002" + byteElementHex(1, "07"),
        "FFFFFFFF 00000000 00000000",
        "00000001 FFFFFFFF 00000001 03 07",
        "00000001 00000007 00000001 03 07",
        "00000001 00000005 00000001 03 07",
        "00000001" + elementHex(1, OID_TYPE_STRING, "FFFFFFFF 61"),
        "00000001" + elementHex(1, OID_TYPE_STRING, "00000002 61"),
        "00000001" + elementHex(1, OID_TYPE_BUFFER, "7FFFFFFF 61"),
        "00000001" + elementHex(1, OID_TYPE_MAC_ADDRESS, "00000006 AABBCCDDEE"),
    };
    for (const std::string& hex : cases) {
        EXPECT_FALSE(decode(hex)) << hex;
        EXPECT_EQ(recordTexts(m_values), NO_RECORDS) << hex;
        EXPECT_EQ(m_diagnostics.take(),
                  Diagnostics{decoderLine("slot=%d: an exception occurred", "slot=3: an exception occurred")})
            << hex;
    }
}

TEST_F(DecodeValues, TakesAMacAddressOfAnyLength)
{
    const Diagnostics wrongLength{
        assertReport("macAddress.size() == 6", SOURCE_PATH,
                     "bool convertTlvsToOidTypeValueMap(uint32_t, const buffer_t&, OidTypeValueMap&, "
                     "const ObjectIdContainer*)")};
    const struct {
        std::string hex;
        unsigned long long number;
        Diagnostics diagnostics;
    } cases[] = {
        {"00000006 AABBCCDDEEFF", 0xAABBCCDDEEFF, {}},
        {"00000000", 0xEEEEEEEEEEEE, wrongLength},
        {"00000004 AABBCCDD", 0xAABBCCDDEEEE, wrongLength},
        {"00000005 AABBCCDD00", 0xAABBCCDD00EE, wrongLength},
        {"00000007 AABBCCDDEEFF11", 0xAABBCCDDEEFF, wrongLength},
    };
    for (const auto& mac : cases) {
        EXPECT_TRUE(decode("00000001" + elementHex(1, OID_TYPE_MAC_ADDRESS, mac.hex))) << mac.hex;
        EXPECT_EQ(recordTexts(m_values),
                  (RecordTexts{"1: 13, unsigned long long " + std::to_string(mac.number), "99: 8, bool true"}));
        EXPECT_EQ(m_diagnostics.take(), mac.diagnostics) << mac.hex;
    }
}

TEST_F(DecodeValues, LogsAMacAddressAtDebugLevel)
{
    const std::string hex = "00000001" + elementHex(1, OID_TYPE_MAC_ADDRESS, "00000006 0ABBCCDDEEFF");
    m_diagnostics.setTraceLevel(8);
    EXPECT_TRUE(decode(hex));
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});

    m_diagnostics.setTraceLevel(9);
    EXPECT_TRUE(decode(hex));
    EXPECT_EQ(m_diagnostics.take(),
              Diagnostics{debugLine(SOURCE, "convertTlvsToOidTypeValueMap", "macAddress=0x  %08X %08X",
                                    "macAddress=0x  00000ABB CCDDEEFF")});
}

TEST_F(DecodeValues, IsSilentBelowTheErrorLevel)
{
    m_diagnostics.setTraceLevel(2);
    EXPECT_FALSE(decode(""));
    EXPECT_FALSE(decode("000000"));
    EXPECT_FALSE(decode("00000001" + elementHex(1, 11, "")));
    m_diagnostics.removeTraceObject();
    EXPECT_FALSE(decode(""));
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(DecodeValues, NamesTheSlotWhateverItIs)
{
    EXPECT_FALSE(convertTlvsToOidTypeValueMap(12, buffer_t(), m_values, nullptr));
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{decoderLine("slot=%d: tlvs are empty", "slot=12: tlvs are empty")});
}

TEST(HeldType, IsIPv4AddressForAnInAddrOnly)
{
    EXPECT_TRUE(isIPv4Address(addressOf(1)));
    EXPECT_FALSE(isIPv4Address(1U));
    EXPECT_FALSE(isIPv4Address(boost::any()));
}

TEST(HeldType, IsUInt64ForAnUnsignedLongLongOnly)
{
    EXPECT_TRUE(isUInt64(1ULL));
    EXPECT_FALSE(isUInt64(1UL));
    EXPECT_FALSE(isUInt64(1LL));
    EXPECT_FALSE(isUInt64(boost::any()));
}

}  // namespace
