// Many objects in requests of 2048 bytes, both ways.

#include <algorithm>
#include <functional>
#include <numeric>

#include <gtest/gtest.h>

#include "apps/CardValues.h"
#include "cards/ReadPlan.h"
#include "cards/ResultText.h"
#include "cards/WritePlan.h"
#include "message/OBresult.h"
#include "support/Diagnostics.h"

using namespace oids;

namespace {

constexpr std::uint32_t SLOT = 3;

ObjectIdContainer numbered(std::uint32_t first, std::size_t count)
{
    ObjectIdContainer oids(count);
    std::iota(oids.begin(), oids.end(), first);
    return oids;
}

// A slot whose card answers each request by `answer`, and what of it was asked for.
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
        return convertOidTypeValueContainerToTlvs(values, tlvs) ? RESULT_OK : obResult::MESSAGE_TOO_LARGE;
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
    const Reading reading = readAll({CARD_SLOT, 7}, answerAll);
    EXPECT_EQ(m_requests, (std::vector<ObjectIdContainer>{{CARD_SLOT, 7}}));
    EXPECT_EQ(textsOf(reading.values), (ValueTexts{{7, "uint32 7"}, {CARD_SLOT, "uint32 65537"}}));
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
        return hasThree ? int{RESULT_WRONG_OID} : answerAll(oids, tlvs);
    };
    const Reading reading = readAll(numbered(1, 4), refusesThree);
    EXPECT_EQ(textsOf(reading.values), (ValueTexts{{1, "uint32 1"}, {2, "uint32 2"}, {4, "uint32 4"}}));
    EXPECT_EQ(reading.failures, (std::map<std::uint32_t, CallOutcome>{{3, RESULT_WRONG_OID}}));
}

TEST_F(ReadPlanTest, DoesNotHalveWhatTheServiceRefuses)
{
    const int serviceResult = obResult::GENERAL_ERROR;
    const Reading reading = readAll({1, 2}, [&](const ObjectIdContainer&, buffer_t&) { return serviceResult; });
    EXPECT_EQ(m_requests.size(), 1U);
    EXPECT_EQ(reading.failures, (std::map<std::uint32_t, CallOutcome>{{1, serviceResult}, {2, serviceResult}}));
}

TEST_F(ReadPlanTest, TellsUnsoundAnswers)
{
    const Reading reading =
        readAll({1, 2}, [](const ObjectIdContainer& oids, buffer_t& tlvs) { return answerAll({oids.front()}, tlvs); });
    EXPECT_EQ(reading.failures, (std::map<std::uint32_t, CallOutcome>{{1, UNSOUND_ANSWER}, {2, UNSOUND_ANSWER}}));
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
        EXPECT_EQ(writeRequests(OidTypeValueContainer(count, value)).size(), 1U) << nameOfType(value.type);
        EXPECT_EQ(writeRequests(OidTypeValueContainer(count + 1, value)).size(), 2U) << nameOfType(value.type);
    }
}

TEST(WritePlan, KnowsValuesThatFitIntoNoRequest)
{
    EXPECT_TRUE(fitsIntoRequest(written(1, OID_TYPE_STRING, std::string(2031, 'a'))));
    EXPECT_FALSE(fitsIntoRequest(written(1, OID_TYPE_STRING, std::string(2032, 'a'))));
    EXPECT_FALSE(fitsIntoRequest(written(1, OID_TYPE_BUFFER, std::string(4096, 'a'))));
}

}  // namespace
