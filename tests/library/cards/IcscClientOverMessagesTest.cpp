// What a component sees of the client on the stand-alone edition's messages. Component and cards share a thread here:
// nothing waits for anything.

#include <memory>
#include <string>
#include <vector>

#include <sys/stat.h>

#include "IcscClientProxy.h"
#include "platform/message/MessageTest.h"
#include "platform/message/TestCard.h"
#include "support/HexBytes.h"

namespace {

using Texts = std::vector<std::string>;

constexpr std::uint32_t SLOT = 4;
const std::string NAME = icsc::serviceName(SLOT, icsc::Interface::ASYNC);

// The first OID of each answer's request, as the card repeats it, in the order of their arrival.
class Replies : public OBappsToICSC_1_0_PR {
public:
    void ICSCReadReply(const OBmessage& request, const buffer_t& tlvs, int result) override
    {
        m_texts.push_back(request.serviceName() + " " + std::to_string(request.sequenceNumber()) + ": " +
                          icsc::resultName(result) + (tlvs.size() == 0 ? "" : " " + oidText(tlvs)));
    }

    static std::string oidText(const buffer_t& tlvs)
    {
        std::uint32_t oid = 0;
        extractFirstOidFromTlvs(SLOT, tlvs, oid);
        return "oid " + std::to_string(oid);
    }

    std::size_t count() const { return m_texts.size(); }
    Texts take() { return std::exchange(m_texts, {}); }

private:
    Texts m_texts;
};

class IcscClientOverMessages : public MessageTest {
protected:
    IcscClientOverMessages() { IcscClientProxy::createInstance(); }
    ~IcscClientOverMessages() override { IcscClientProxy::deleteInstance(); }

    static IcscClientProxy& client() { return IcscClientProxy::getInstance(); }

    void subscribe() { client().subscribeAsyncInterface(SLOT, m_component, m_replies); }

    // A card that notes the OID of each request and answers it, or keeps it.
    std::unique_ptr<TestCard> card(bool isAnswering = true)
    {
        return std::make_unique<TestCard>(
            m_component, NAME.c_str(),
            [this, isAnswering](TestCard& self, const OBmessage& request, const buffer_t& tlvs) {
                m_seen.push_back(Replies::oidText(tlvs));
                if (isAnswering) {
                    self.reply(request, tlvs, 0);
                } else {
                    m_kept.push_back(request);
                }
            });
    }

    template <typename Condition>
    bool dispatchUntil(Condition isDone)
    {
        return ::dispatchUntil(m_component, isDone);
    }

    OBcomponent m_component{"component"};
    Replies m_replies;
    Texts m_seen;
    std::vector<OBmessage> m_kept;
};

TEST_F(IcscClientOverMessages, ReadsAnEmptySlotWithoutWaitingAndAnswersTimeoutFromDispatch)
{
    subscribe();
    const Stopwatch watch;
    EXPECT_TRUE(client().getOidsAsync(SLOT, {1}));
    EXPECT_TRUE(client().getOidsAsync(SLOT, {2}));
    EXPECT_LT(watch.seconds(), 5.0) << "a wait for the service takes 7 seconds";
    EXPECT_EQ(m_replies.take(), Texts()) << "not from the calls themselves";
    EXPECT_TRUE(dispatchUntil([&] { return m_replies.count() == 2; }));
    EXPECT_GE(watch.seconds(), 7.0);
    EXPECT_EQ(m_replies.take(), (Texts{NAME + " 1: TIMEOUT", NAME + " 2: TIMEOUT"}));
    EXPECT_EQ(m_diagnostics.take(), Diagnostics());
}

TEST_F(IcscClientOverMessages, RefusesToHoldMoreThanAThousandReads)
{
    subscribe();
    for (std::uint32_t oid = 1; oid <= 1000; ++oid) {
        ASSERT_TRUE(client().getOidsAsync(SLOT, {oid}));
    }
    EXPECT_FALSE(client().getOidsAsync(SLOT, {1001}));
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{errorLine("IcscClientProxy.cpp", "getOidsAsync",
                                                          "slot=%d: ICSCRead() failed", "slot=4: ICSCRead() failed")});
    EXPECT_EQ(m_component.lastSequenceNumber(NAME), 1000U);
}

TEST_F(IcscClientOverMessages, SendsWhatItHoldsOnceAndInOrderWhenTheCardComes)
{
    subscribe();
    for (const std::uint32_t oid : {3U, 1U, 2U}) {
        client().getOidsAsync(SLOT, {oid});
    }
    m_component.dispatch(std::chrono::milliseconds(0));
    const auto pCard = card();
    client().getOidsAsync(SLOT, {9});
    EXPECT_TRUE(dispatchUntil([&] { return m_replies.count() == 4; }));
    EXPECT_EQ(m_seen, (Texts{"oid 3", "oid 1", "oid 2", "oid 9"}));
    EXPECT_EQ(m_replies.take(), (Texts{NAME + " 1: RESULT OK oid 3", NAME + " 2: RESULT OK oid 1",
                                       NAME + " 3: RESULT OK oid 2", NAME + " 4: RESULT OK oid 9"}));
}

TEST_F(IcscClientOverMessages, DoesNotRepeatAReadForACardThatComesBack)
{
    subscribe();
    auto pCard = card(false);
    ASSERT_TRUE(dispatchUntil([&] { return m_component.isConnected(NAME); }));
    client().getOidsAsync(SLOT, {1});
    ASSERT_TRUE(dispatchUntil([&] { return m_seen.size() == 1; }));
    pCard.reset();
    ASSERT_TRUE(dispatchUntil([&] { return !m_component.isConnected(NAME); }));
    client().getOidsAsync(SLOT, {2});
    pCard = card();
    EXPECT_TRUE(dispatchUntil([&] { return m_replies.count() == 2; }));
    EXPECT_EQ(m_seen, (Texts{"oid 1", "oid 2"}));
    EXPECT_EQ(m_replies.take(), (Texts{NAME + " 2: RESULT OK oid 2", NAME + " 1: TIMEOUT"}));
}

TEST_F(IcscClientOverMessages, GetsTheNumberOfEachReadBackWithItsAnswer)
{
    subscribe();
    const auto pCard = card(false);
    Texts expected;
    for (const std::uint32_t oid : {7U, 8U}) {
        client().getOidsAsync(SLOT, {oid});
        expected.insert(expected.begin(),
                        NAME + " " + std::to_string(m_component.lastSequenceNumber(NAME)) + ": RESULT READ ONLY");
    }
    ASSERT_TRUE(dispatchUntil([&] { return m_kept.size() == 2; }));
    pCard->reply(m_kept[1], buffer_t(), icsc::RESULT_READ_ONLY);
    pCard->reply(m_kept[0], buffer_t(), icsc::RESULT_READ_ONLY);
    EXPECT_TRUE(dispatchUntil([&] { return m_replies.count() == 2; }));
    EXPECT_EQ(m_replies.take(), expected);
    EXPECT_NE(expected[0], expected[1]);
}

TEST_F(IcscClientOverMessages, LetsItsComponentAskWhetherTheCardIsThere)
{
    EXPECT_EQ(m_component.obstacle(NAME), "the component has no proxy to the service");
    subscribe();
    EXPECT_FALSE(m_component.isConnected(NAME));
    EXPECT_EQ(m_component.obstacle(NAME), "");
    auto pCard = card();
    EXPECT_TRUE(dispatchUntil([&] { return m_component.isConnected(NAME); }));
    pCard.reset();
    EXPECT_TRUE(dispatchUntil([&] { return !m_component.isConnected(NAME); }));
}

TEST_F(IcscClientOverMessages, LetsItsComponentAskWhyTheCardIsNotReached)
{
    const std::string directory = m_folder.path() + "/brantel";
    ASSERT_EQ(::mkdir(directory.c_str(), 0755), 0);
    subscribe();
    EXPECT_FALSE(m_component.isConnected(NAME));
    EXPECT_NE(m_component.obstacle(NAME).find(directory + ": open to other users; its mode must be 0700"),
              std::string::npos)
        << m_component.obstacle(NAME);
}

}  // namespace
