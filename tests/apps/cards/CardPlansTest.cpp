// Many objects in requests of 2048 bytes, both ways.

#include <algorithm>
#include <functional>
#include <numeric>

#include <gtest/gtest.h>

#include "apps/cards/CardValues.h"
#include "cards/ReadPlan.h"
#include "cards/ResultText.h"
#include "cards/WritePlan.h"
#include "message/OBresult.h"
#include "support/Diagnostics.h"
#include "support/HexBytes.h"

namespace brantel {

using namespace oids;

namespace {

constexpr std::uint32_t SLOT = 3;

ObjectIdContainer numbered(std::uint32_t first, std::size_t count)
{
    ObjectIdContainer oids(count);
    std::iota(oids.begin(), oids.end(), first);
    return oids;
}

// A slot whose card answers each request by `answer`, and the requests that it got.
class ReadPlanTest : public DiagnosticsTest {
protected:
    using Answer = std::function<CallOutcome(const ObjectIdContainer&, buffer_t& tlvs)>;

    Reading readAll(const ObjectIdContainer& oids, const Answer& answer)
    {
        ReadPlan plan(SLOT, oids);
        while (!plan.isDone()) {
            m_requests.push_back(plan.request());
            buffer_t tlvs;
            const CallOutcome outcome = answer(plan.request(), tlvs);
            if (outcome == NO_ANSWER) {
                plan.takeNoAnswer();
            } else {
                plan.takeAnswer(static_cast<std::int32_t>(outcome), tlvs);
            }
        }
        return plan.reading();
    }

    // Every value is its OID.
    static int answerAll(const ObjectIdContainer& oids, buffer_t& tlvs)
    {
        OidTypeValueContainer values;
        for (const std::uint32_t oid : oids) {
            values.push_back({oid, OID_TYPE_UINT32, static_cast<unsigned int>(oid)});
        }
        return convertOidTypeValueContainerToTlvs(values, tlvs) ? icsc::RESULT_OK : obResult::MESSAGE_TOO_LARGE;
    }

    std::vector<std::size_t> requestSizes() const
    {
        std::vector<std::size_t> sizes;
        for (const ObjectIdContainer& request : m_requests) {
            sizes.push_back(request.size());
        }
        return sizes;
    }

    std::vector<ObjectIdContainer> m_requests;
};

TEST_F(ReadPlanTest, AsksForNothingOnce)
{
    EXPECT_TRUE(ReadPlan(SLOT, {}).isDone());
}

TEST_F(ReadPlanTest, AsksForFewObjectsInOneRequest)
{
    const Reading reading = readAll({CARD_UPTIME, 7}, answerAll);
    EXPECT_EQ(m_requests, (std::vector<ObjectIdContainer>{{CARD_UPTIME, 7}}));
    EXPECT_EQ(textsOf(reading.values), (ValueTexts{{7, "uint32 7"}, {CARD_UPTIME, "uint32 65540"}}));
    EXPECT_TRUE(reading.failures.empty());
}

TEST_F(ReadPlanTest, SplitsByTheSizeOfTheAnswer)
{
    const Reading reading = readAll(numbered(0x01000000, 300), answerAll);
    EXPECT_EQ(reading.values.size(), 300U);
    EXPECT_EQ(requestSizes(), (std::vector<std::size_t>{107, 107, 86}));  // 19 bytes each, and a count of 4
}

TEST_F(ReadPlanTest, ExpectsLongerAnswersOfTexts)
{
    readAll(numbered(WAVE_LABEL, 30), answerAll);
    EXPECT_EQ(requestSizes(), (std::vector<std::size_t>{26, 4}));  // 77 bytes each
}

TEST_F(ReadPlanTest, HalvesWhatIsTooLarge)
{
    const auto takesTwo = [](const ObjectIdContainer& oids, buffer_t& tlvs) {
        return (oids.size() > 2) ? int{obResult::MESSAGE_TOO_LARGE} : answerAll(oids, tlvs);
    };
    const Reading reading = readAll(numbered(1, 5), takesTwo);
    EXPECT_EQ(m_requests, (std::vector<ObjectIdContainer>{{1, 2, 3, 4, 5}, {1, 2}, {3, 4, 5}, {3}, {4, 5}}));
    EXPECT_EQ(reading.values.size(), 5U);
    EXPECT_TRUE(reading.failures.empty());
}

TEST_F(ReadPlanTest, FindsTheObjectsThatAreRefused)
{
    const auto refusesThree = [](const ObjectIdContainer& oids, buffer_t& tlvs) {
        const bool hasThree = std::find(oids.begin(), oids.end(), 3U) != oids.end();
        return hasThree ? int{icsc::RESULT_WRONG_OID} : answerAll(oids, tlvs);
    };
    const Reading reading = readAll(numbered(1, 4), refusesThree);
    EXPECT_EQ(textsOf(reading.values), (ValueTexts{{1, "uint32 1"}, {2, "uint32 2"}, {4, "uint32 4"}}));
    EXPECT_EQ(reading.failures, (std::map<std::uint32_t, CallOutcome>{{3, icsc::RESULT_WRONG_OID}}));
}

TEST_F(ReadPlanTest, DoesNotHalveWhatTheServiceRefuses)
{
    const int serviceResult = obResult::GENERAL_ERROR;
    const Reading reading = readAll({1, 2}, [&](const ObjectIdContainer&, buffer_t&) { return serviceResult; });
    EXPECT_EQ(m_requests.size(), 1U);
    EXPECT_EQ(reading.failures, (std::map<std::uint32_t, CallOutcome>{{1, serviceResult}, {2, serviceResult}}));
}

TEST_F(ReadPlanTest, DetectsMalformedAnswers)
{
    const Reading reading =
        readAll({1, 2}, [](const ObjectIdContainer& oids, buffer_t& tlvs) { return answerAll({oids.front()}, tlvs); });
    EXPECT_EQ(reading.failures, (std::map<std::uint32_t, CallOutcome>{{1, MALFORMED_ANSWER}, {2, MALFORMED_ANSWER}}));
}

TEST_F(ReadPlanTest, RefusesAnswersWithMoreOrFewerBytesThanTheySay)
{
    for (const char* const bytes : {"", "000000", "00000001", "00000001 00000009 00000001 01 00000001 00",
                                    "00000001 0000000A 00000001 01 00000001", "FFFFFFFF 00000009 00000001 01 00000001",
                                    "00000001 00000003 000000"}) {
        const Reading reading = readAll({1}, [&](const ObjectIdContainer&, buffer_t& tlvs) {
            tlvs = bufferOf(bytes);
            return icsc::RESULT_OK;
        });
        EXPECT_EQ(reading.failures, (std::map<std::uint32_t, CallOutcome>{{1, MALFORMED_ANSWER}})) << bytes;
    }
}

// An element of object 1 or 2 with a value of this type code.
struct Element {
    const char* bytes;
    bool isWellFormed;
};

TEST_F(ReadPlanTest, RefusesValuesWhoseBytesAreNotThoseOfTheirType)
{
    const Element elements[] = {
        {"00000001 00 0000000000000007", true},
        {"00000001 00 00000007", false},
        {"00000001 00 000000000000000700", false},
        {"00000001 01 00000007", true},
        {"00000001 01 0007", false},
        {"00000001 01 0000000700", false},
        {"00000001 02 0007", true},
        {"00000001 02 07", false},
        {"00000001 02 00000007", false},
        {"00000001 03 07", true},
        {"00000001 03", false},
        {"00000001 03 0000005F", false},
        {"00000001 04 0000000000000007", true},
        {"00000001 04 00000007", false},
        {"00000001 05 00000007", true},
        {"00000001 05 0000000007", false},
        {"00000001 06 0007", true},
        {"00000001 06 00000007", false},
        {"00000001 07 07", true},
        {"00000001 07 0007", false},
        {"00000001 08 00", true},
        {"00000001 08 01", true},
        {"00000001 08 02", false},
        {"00000001 08 0001", false},
        {"00000001 09 00000000", true},
        {"00000001 09 00000002 4142", true},
        {"00000001 09 00000003 4142", false},
        {"00000001 09 00000001 4142", false},
        {"00000001 09 FFFFFFFF 41", false},
        {"00000001 09 000000", false},
        {"00000001 0A C0000201", true},
        {"00000001 0A C00002", false},
        {"00000001 0B 01", false},
        {"00000001 0C 00000000", true},
        {"00000001 0C 00000001 41", true},
        {"00000001 0C 00000001 4142", false},
        {"00000001 0C 00000002 41", false},
        {"00000001 0D 00000006 020000000003", true},
        {"00000001 0D 00000005 0200000000", false},
        {"00000001 0D 00000007 02000000000300", false},
        {"00000001 0D 00000005 020000000003", false},
        {"00000001 0E 01", false},
        {"00000001 FF 01", false},
        {"00000001", false},
    };
    for (const Element& element : elements) {
        const Reading reading = readAll({1, 2}, [&](const ObjectIdContainer&, buffer_t& tlvs) {
            tlvs << std::uint32_t{2} << bufferOf(element.bytes) << bufferOf("00000002 03 05");
            return icsc::RESULT_OK;
        });
        EXPECT_EQ(reading.values.count(1) == 1, element.isWellFormed) << element.bytes;
        const std::map<std::uint32_t, CallOutcome> malformed = {{1, MALFORMED_VALUE}};
        EXPECT_EQ(reading.failures, element.isWellFormed ? (std::map<std::uint32_t, CallOutcome>{}) : malformed)
            << element.bytes;
        EXPECT_EQ(textsOf(reading.values)[2], "uint8 5") << element.bytes;
    }
}

TEST_F(ReadPlanTest, RefusesATypeOtherThanTheTables)
{
    const Reading reading = readAll({CARD_LED, CARD_VLAN, WAVE_SIGNAL}, [](const ObjectIdContainer&, buffer_t& tlvs) {
        tlvs = bufferOf("00000003  00000006 0001000B 08 01  00000007 0001000C 06 0001  00000006 00040001 07 01");
        return icsc::RESULT_OK;
    });
    EXPECT_EQ(reading.failures,
              (std::map<std::uint32_t, CallOutcome>{{CARD_LED, MALFORMED_VALUE}, {CARD_VLAN, MALFORMED_VALUE}}));
    EXPECT_EQ(textsOf(reading.values), (ValueTexts{{WAVE_SIGNAL, "int8 1"}})) << "its type depends on the source";
}

TEST_F(ReadPlanTest, RefusesMalformedValuesThatWereNotAskedForOrCameTwice)
{
    const struct {
        const char* bytes;
        std::map<std::uint32_t, CallOutcome> failures;
    } cases[] = {
        {"00000002  00000006 00000001 01 05  00000006 00000003 03 05", {{1, MALFORMED_VALUE}, {2, MALFORMED_ANSWER}}},
        {"00000002  00000006 00000003 01 05  00000006 00000002 03 05", {{1, MALFORMED_ANSWER}, {2, MALFORMED_ANSWER}}},
        {"00000002  00000006 00000001 01 05  00000006 00000001 01 05", {{1, MALFORMED_VALUE}, {2, MALFORMED_ANSWER}}},
        {"00000002  00000006 00000001 01 05  00000006 00000001 03 05", {{1, MALFORMED_VALUE}, {2, MALFORMED_ANSWER}}},
        {"00000003  00000006 00000001 01 05  00000006 00000001 01 05  00000006 00000002 03 05",
         {{1, MALFORMED_ANSWER}, {2, MALFORMED_ANSWER}}},
    };
    for (const auto& each : cases) {
        const Reading reading = readAll({1, 2}, [&](const ObjectIdContainer&, buffer_t& tlvs) {
            tlvs = bufferOf(each.bytes);
            return icsc::RESULT_OK;
        });
        EXPECT_EQ(reading.failures, each.failures) << each.bytes;
        EXPECT_TRUE(reading.values.empty()) << each.bytes;
    }
}

// Every type code and every short length in place of the own one, on an object of every type.
TEST_F(ReadPlanTest, TakesNoValueOfACardThatLiesAboutTypeOrLength)
{
    Card card(SLOT, "test", {});
    for (const std::uint32_t oid :
         {CARD_SLOT, CARD_NAME, CARD_UPTIME, CARD_READS, CARD_ADDRESS, CARD_MAC, CARD_LOCATION, CARD_ENABLED, CARD_LED,
          CARD_VLAN, CARD_ALTITUDE, CARD_TEMPERATURE_OFFSET, CARD_ALARM_THRESHOLD, CARD_CLOCK_OFFSET}) {
        const std::size_t ownLength = card.read(readRequest({oid})).tlvs.size() - std::size_t{4 + 4 + 4 + 1};
        std::vector<std::string> faults;
        for (int code = 0; code <= 255; ++code) {
            if (code != findOid(oid)->type) {
                faults.push_back("wrong-type=" + std::to_string(code));
            }
        }
        for (std::size_t length = 0; length <= 20; ++length) {
            if (length != ownLength) {
                faults.push_back("wrong-length=" + std::to_string(length));
            }
        }
        for (const std::string& fault : faults) {
            const Reading reading = readAll({oid}, [&](const ObjectIdContainer& oids, buffer_t& tlvs) {
                tlvs = corruptedStream(parseFaults(fault).value(), card.read(readRequest(oids)).tlvs).value();
                return icsc::RESULT_OK;
            });
            EXPECT_EQ(reading.failures, (std::map<std::uint32_t, CallOutcome>{{oid, MALFORMED_VALUE}}))
                << objectName(oid) << " " << fault;
            EXPECT_TRUE(reading.values.empty()) << objectName(oid) << " " << fault;
        }
    }
}

TEST_F(ReadPlanTest, AsksNoMoreWhenThereIsNoAnswer)
{
    for (const CallOutcome outcome : {NO_ANSWER, CallOutcome{obResult::TIMEOUT}}) {
        m_requests.clear();
        const Reading reading =
            readAll(numbered(0x01000000, 300), [&](const ObjectIdContainer&, buffer_t&) { return outcome; });
        EXPECT_EQ(m_requests.size(), 1U);
        ASSERT_EQ(reading.failures.size(), 300U);
        EXPECT_EQ(reading.failures.rbegin()->second, outcome);
    }
}

TEST(WritePlan, FillsRequestsToTheLastByte)
{
    // 4 bytes of count; a string has 13 before its characters: element length, OID, type and length.
    const OidTypeValue first = written(1, OID_TYPE_STRING, std::string(1000, 'a'));
    const OidTypeValue fits = written(2, OID_TYPE_STRING, std::string(1018, 'b'));
    const OidTypeValue doesNot = written(2, OID_TYPE_STRING, std::string(1019, 'b'));
    EXPECT_EQ(writeRequests({first, fits}).size(), 1U);
    EXPECT_EQ(writeRequests({first, doesNot}).size(), 2U);
    EXPECT_EQ(writeRequest({first, fits}).size(), 2048U);
}

TEST(WritePlan, KeepsTheOrder)
{
    OidTypeValueContainer values;
    for (std::uint32_t oid = 1; oid <= 300; ++oid) {
        values.push_back(written(oid, OID_TYPE_UINT8, "1"));
    }
    std::vector<std::uint32_t> oids;
    for (const OidTypeValueContainer& request : writeRequests(values)) {
        for (const OidTypeValue& value : request) {
            oids.push_back(value.oid);
        }
    }
    EXPECT_EQ(oids, numbered(1, 300));
}

TEST(WritePlan, KnowsTheSizeOfEveryType)
{
    const OidTypeValue values[] = {
        written(1, OID_TYPE_UINT64, "1"),
        written(1, OID_TYPE_UINT32, "1"),
        written(1, OID_TYPE_UINT16, "1"),
        written(1, OID_TYPE_UINT8, "1"),
        written(1, OID_TYPE_INT64, "1"),
        written(1, OID_TYPE_INT32, "1"),
        written(1, OID_TYPE_INT16, "1"),
        written(1, OID_TYPE_INT8, "1"),
        written(1, OID_TYPE_BOOL, "1"),
        written(1, OID_TYPE_STRING, "abc"),
        written(1, OID_TYPE_IPV4_ADDRESS, "192.0.2.1"),
        written(1, OID_TYPE_BUFFER, "0011"),
        written(1, OID_TYPE_MAC_ADDRESS, "02:00:00:00:00:01"),
    };
    for (const OidTypeValue& value : values) {
        const std::size_t size = writeRequest({value}).size();
        const std::size_t count = (2048 - 4) / (size - 4);
        EXPECT_EQ(writeRequests(OidTypeValueContainer(count, value)).size(), 1U) << typeText(value.type);
        EXPECT_EQ(writeRequests(OidTypeValueContainer(count + 1, value)).size(), 2U) << typeText(value.type);
    }
}

TEST(WritePlan, KnowsValuesThatFitIntoNoRequest)
{
    EXPECT_TRUE(fitsIntoRequest(written(1, OID_TYPE_STRING, std::string(2031, 'a'))));
    EXPECT_FALSE(fitsIntoRequest(written(1, OID_TYPE_STRING, std::string(2032, 'a'))));
    EXPECT_FALSE(fitsIntoRequest(written(1, OID_TYPE_BUFFER, std::string(4096, 'a'))));
}

}  // namespace

}  // namespace brantel
