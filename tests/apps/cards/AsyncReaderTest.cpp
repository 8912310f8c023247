// Readings that go on from answer to answer.

#include "cards/AsyncReader.h"

#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "apps/cards/CardValues.h"

namespace brantel {
namespace {

class AsyncReaderTest : public testing::Test {
protected:
    // The framework's answer to the request with this number, with a value for each object.
    void answer(std::uint64_t sequenceNumber, const ObjectIdContainer& oids)
    {
        constexpr std::uint8_t ICSC_READ = 1;
        OidTypeValueContainer values;
        for (const std::uint32_t oid : oids) {
            values.push_back({oid, OID_TYPE_UINT32, 1U});
        }
        buffer_t tlvs;
        convertOidTypeValueContainerToTlvs(values, tlvs);
        const OBmessage message(std::make_shared<const std::string>("service"), ICSC_READ, sequenceNumber, 5, 0);
        static_cast<OBproxyReplyInterface&>(m_reader).replyReceived(message, tlvs, icsc::RESULT_OK);
    }

    static ReadPlan planOf(const ObjectIdContainer& oids)
    {
        ReadPlan plan(3, {});
        for (const std::uint32_t oid : oids) {
            plan.addApart(oid);
        }
        return plan;
    }

    bool m_canSend = true;
    std::vector<ObjectIdContainer> m_sent;
    AsyncReader m_reader{[this](const ObjectIdContainer& request) {
        m_sent.push_back(request);
        return m_canSend;
    }};
};

TEST_F(AsyncReaderTest, SendsTheNextRequestWhenOneIsAnswered)
{
    EXPECT_TRUE(m_reader.isDone());
    m_reader.start(planOf({1, 2}));
    EXPECT_EQ(m_sent, (std::vector<ObjectIdContainer>{{1}}));
    answer(1, {1});
    EXPECT_EQ(m_sent, (std::vector<ObjectIdContainer>{{1}, {2}}));
    EXPECT_FALSE(m_reader.isDone());
    answer(2, {2});
    EXPECT_TRUE(m_reader.isDone());
    EXPECT_EQ(textsOf(m_reader.reading().values), (ValueTexts{{1, "uint32 1"}, {2, "uint32 1"}}));
    EXPECT_EQ(m_reader.requestsMade(), 2U);
}

TEST_F(AsyncReaderTest, IgnoresAnswersOfAReadingThatWasGivenUp)
{
    m_reader.start(planOf({1, 2}));
    m_reader.giveUp();
    EXPECT_TRUE(m_reader.isDone());
    EXPECT_EQ(m_reader.reading().failures, (std::map<std::uint32_t, CallOutcome>{{1, NO_ANSWER}, {2, NO_ANSWER}}));
    answer(1, {1});
    EXPECT_TRUE(m_reader.reading().values.empty());

    m_reader.start(planOf({1}));
    answer(1, {1});
    EXPECT_FALSE(m_reader.isDone());
    answer(2, {1});
    EXPECT_TRUE(m_reader.isDone());
    EXPECT_EQ(textsOf(m_reader.reading().values), (ValueTexts{{1, "uint32 1"}}));
}

TEST_F(AsyncReaderTest, FailsWhenARequestCannotBeSent)
{
    m_canSend = false;
    m_reader.start(planOf({1, 2}));
    EXPECT_TRUE(m_reader.isDone());
    EXPECT_EQ(m_reader.reading().failures, (std::map<std::uint32_t, CallOutcome>{{1, NO_ANSWER}, {2, NO_ANSWER}}));
    EXPECT_EQ(m_reader.requestsMade(), 0U);
}

}  // namespace
}  // namespace brantel
