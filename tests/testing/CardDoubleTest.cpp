// The double of a card, called as components call cards: by the library's client.

#include "brantel/testing/CardDouble.h"

#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "IcscClientProxy.h"
#include "IcscReading.h"
#include "icsc/OBappsToICSC_1_0_P.h"
#include "icsc/OBappsToICSC_1_0_PR.h"
#include "library/cards/ValueTexts.h"
#include "message/OBmessage.h"
#include "message/OBresult.h"
#include "support/Diagnostics.h"
#include "support/TemporaryDirectory.h"

namespace brantelTesting {
namespace {

constexpr std::uint32_t SLOT = 3;
constexpr std::chrono::seconds LONG(60);

// "sync read 1 2, timeout 5", or "async write 1, timeout 5: 1: 3, unsigned char 7".
std::string textOf(const CardRequest& request)
{
    std::string text = (request.interface == icsc::Interface::SYNC) ? "sync" : "async";
    text += request.isWrite ? " write" : " read";
    for (const std::uint32_t oid : request.oids) {
        text += " " + std::to_string(oid);
    }
    text += ", timeout " + std::to_string(request.timeout);
    for (const OidTypeValue& value : request.values) {
        text += ": " + std::to_string(value.type) + ", " + valueText(value.value);
    }
    return text;
}

std::vector<std::string> textsOf(const std::vector<CardRequest>& requests)
{
    std::vector<std::string> texts;
    for (const CardRequest& request : requests) {
        texts.push_back(textOf(request));
    }
    return texts;
}

using Texts = std::vector<std::string>;

class CardInAThread : public DiagnosticsTest {
protected:
    CardInAThread()
    {
        m_card->setValue({1, OID_TYPE_UINT32, 85U});
        m_card->setValue({2, OID_TYPE_STRING, std::string("fan")});
        IcscClientProxy::createInstance();
        client().subscribeInterface(SLOT, m_component);
    }
    ~CardInAThread() override { IcscClientProxy::deleteInstance(); }

    static IcscClientProxy& client() { return IcscClientProxy::getInstance(); }

    // The result, and the values.
    static std::string read(const ObjectIdContainer& oids)
    {
        OidTypeValueMap values;
        std::string text = "result " + std::to_string(icsc::readOids(client(), SLOT, oids, values));
        for (const std::string& record : recordTexts(values)) {
            text += "; " + record;
        }
        return text;
    }

    RuntimeDirectory m_directory;
    CardThread m_card{SLOT};
    OBcomponent m_component{"test"};
};

TEST_F(CardInAThread, AnswersWithTheValuesThatItWasGiven)
{
    EXPECT_EQ(read({2, 1}), "result 0; 1: 1, unsigned int 85; 2: 9, string 'fan'");
    m_card->setValue({1, OID_TYPE_INT8, static_cast<signed char>(-1)});
    EXPECT_EQ(read({1}), "result 0; 1: 7, signed char -1");
    m_card->removeValue(1);
    EXPECT_EQ(read({2, 1}), "result 7");
    EXPECT_EQ(textsOf(m_card->takeRequests()),
              (Texts{"sync read 2 1, timeout 5", "sync read 1, timeout 5", "sync read 2 1, timeout 5"}));
    EXPECT_EQ(textsOf(m_card->takeRequests()), Texts{});
}

TEST_F(CardInAThread, TakesWrittenValuesAllOrNone)
{
    EXPECT_TRUE(client().setOids(SLOT, {{1, OID_TYPE_UINT32, 7U}}, 2));
    EXPECT_EQ(valueText(m_card->value(1)->value), "unsigned int 7");

    EXPECT_FALSE(client().setOids(SLOT, {{1, OID_TYPE_UINT32, 8U}, {2, OID_TYPE_UINT32, 9U}}, 2));
    EXPECT_FALSE(client().setOids(SLOT, {{1, OID_TYPE_UINT32, 8U}, {3, OID_TYPE_UINT32, 9U}}, 2));
    EXPECT_EQ(valueText(m_card->value(1)->value), "unsigned int 7");
    EXPECT_FALSE(m_card->value(3));

    EXPECT_EQ(textsOf(m_card->takeRequests()),
              (Texts{"sync write 1, timeout 2: 1, unsigned int 7",
                     "sync write 1 2, timeout 2: 1, unsigned int 8: 1, unsigned int 9",
                     "sync write 1 3, timeout 2: 1, unsigned int 8: 1, unsigned int 9"}));
    const SourceLines lines("IcscClientProxy.cpp");
    constexpr const char* FORMAT = "ICSCWrite() returned error: %d=0x%x=%s";
    EXPECT_EQ(m_diagnostics.take(), (Diagnostics{lines.error("setOids", FORMAT, 6, 6, "RESULT WRONG TYPE"),
                                                 lines.error("setOids", FORMAT, 7, 7, "RESULT WRONG OID")}));
}

TEST_F(CardInAThread, AnswersWithTheResultThatItWasTold)
{
    m_card->setResult(icsc::RESULT_GENERAL_ERROR);
    EXPECT_EQ(read({1}), "result 5");
    m_card->setResult(icsc::RESULT_OK);
    m_card->setResultOf(2, icsc::RESULT_CANNOT_EXEC);
    EXPECT_EQ(read({1}), "result 0; 1: 1, unsigned int 85");
    EXPECT_EQ(read({1, 2}), "result 12");
    m_card->setResultOf(2, icsc::RESULT_OK);
    EXPECT_EQ(read({2}), "result 0; 2: 9, string 'fan'");
    EXPECT_EQ(read({2, 99}), "result 7");
}

TEST_F(CardInAThread, RefusesAnAnswerThatIsTooLarge)
{
    m_card->setValue({2, OID_TYPE_STRING, std::string(1000, 'x')});
    m_card->setValue({4, OID_TYPE_STRING, std::string(1100, 'x')});
    EXPECT_EQ(read({2, 4}), "result " + std::to_string(obResult::MESSAGE_TOO_LARGE));
}

TEST_F(CardInAThread, RefusesWhatIsNotARequest)
{
    OBappsToICSC_1_0_P proxy(m_component);
    ASSERT_EQ(proxy.subscribe_synchronous("ICSCClient3.ReadWriteSync"), 0);
    buffer_t tlvs("?", 1);
    int result = 0;
    EXPECT_EQ(proxy.ICSCRead(60, tlvs, result), 0);
    EXPECT_EQ(result, icsc::RESULT_WRONG_LEN);
    result = 0;
    EXPECT_EQ(proxy.ICSCWrite(60, buffer_t("?", 1), result), 0);
    EXPECT_EQ(result, icsc::RESULT_WRONG_LEN);
    EXPECT_EQ(textsOf(m_card->takeRequests()), Texts{});
}

TEST_F(CardInAThread, RefusesAValueThatDoesNotHoldItsType)
{
    try {
        m_card->setValue({1, OID_TYPE_UINT8, 2});
        FAIL() << "no exception";
    } catch (const std::invalid_argument& error) {
        EXPECT_STREQ(error.what(), "CardDouble: the value of OID 1 does not hold what its type code, 3, names");
    }
    EXPECT_EQ(read({1}), "result 0; 1: 1, unsigned int 85");
}

TEST_F(CardInAThread, WaitsBeforeItAnswersAndStopsWaitingAtItsEnd)
{
    constexpr std::chrono::milliseconds DELAY(50);
    m_card->setDelay(DELAY);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(read({1}), "result 0; 1: 1, unsigned int 85");
    EXPECT_GE(std::chrono::steady_clock::now() - start, DELAY);

    m_card->setDelay(std::chrono::hours(1));
    OBappsToICSC_1_0_PR replies;
    client().subscribeAsyncInterface(SLOT, m_component, replies);
    EXPECT_TRUE(client().getOidsAsync(SLOT, {2}));
    while (m_component.dispatch(std::chrono::milliseconds(0)) == 0 &&
           !m_card->waitForRequests(2, std::chrono::milliseconds(10))) {
    }
    EXPECT_EQ(textsOf(m_card->takeRequests()), (Texts{"sync read 1, timeout 5", "async read 2, timeout 5"}));
}

class Replies : public OBappsToICSC_1_0_PR {
public:
    Texts texts;

private:
    void ICSCReadReply(const OBmessage& request, const buffer_t& tlvs, int result) override
    {
        OidTypeValueMap values{{99, {OID_TYPE_BOOL, true}}};
        const ObjectIdContainer oids{1};
        std::string text = request.serviceName() + " result " + std::to_string(result);
        if ((result == 0) && icsc::decodeAnswer(SLOT, tlvs, values, &oids)) {
            text += " " + recordTexts(values).at(0);
        }
        texts.push_back(text);
    }
};

class CardOnTheTestsThread : public DiagnosticsTest {
protected:
    CardOnTheTestsThread()
    {
        m_card.setValue({1, OID_TYPE_UINT32, 85U});
        IcscClientProxy::createInstance();
        IcscClientProxy::getInstance().subscribeAsyncInterface(SLOT, m_component, m_replies);
    }
    ~CardOnTheTestsThread() override { IcscClientProxy::deleteInstance(); }

    bool dispatchUntil(const std::function<bool()>& isDone)
    {
        const auto deadline = std::chrono::steady_clock::now() + LONG;
        while (!isDone() && (std::chrono::steady_clock::now() < deadline)) {
            m_component.dispatch(std::chrono::milliseconds(10));
        }
        return isDone();
    }

    RuntimeDirectory m_directory;
    OBcomponent m_component{"test"};
    Replies m_replies;
    CardDouble m_card{m_component, SLOT};
};

TEST_F(CardOnTheTestsThread, AnswersWhenItsComponentDispatches)
{
    EXPECT_TRUE(IcscClientProxy::getInstance().getOidsAsync(SLOT, {1}));
    EXPECT_TRUE(dispatchUntil([&] { return !m_replies.texts.empty(); }));
    EXPECT_EQ(m_replies.texts, (Texts{"ICSCClient3.ReadWriteAsync result 0 1: 1, unsigned int 85"}));
    EXPECT_TRUE(m_card.waitForRequests(1, std::chrono::milliseconds(0)));
    EXPECT_FALSE(m_card.waitForRequests(2, std::chrono::milliseconds(0)));
    EXPECT_EQ(textsOf(m_card.takeRequests()), (Texts{"async read 1, timeout 5"}));
}

TEST_F(CardOnTheTestsThread, AnswersNothingWhileItIsSilent)
{
    m_card.setSilent(true);
    EXPECT_TRUE(IcscClientProxy::getInstance().getOidsAsync(SLOT, {1}));
    EXPECT_TRUE(dispatchUntil([&] { return m_card.waitForRequests(1, std::chrono::milliseconds(0)); }));
    m_card.setSilent(false);
    EXPECT_TRUE(IcscClientProxy::getInstance().getOidsAsync(SLOT, {1}));
    EXPECT_TRUE(dispatchUntil([&] { return !m_replies.texts.empty(); }));
    EXPECT_EQ(m_replies.texts.size(), 1U) << "the answer to the second request";
}

TEST(CardDouble, IsNotServedInASlotThatHasACard)
{
    const RuntimeDirectory directory;
    const CardThread card(SLOT);
    EXPECT_THROW(CardThread{SLOT}, std::runtime_error);
}

}  // namespace

}  // namespace brantelTesting
