#include "IcscClientProxy.h"

#include <limits>
#include <string>
#include <vector>

#include "icsc/OBappsToICSC_1_0_P.h"
#include "icsc/OBappsToICSC_1_0_PR.h"
#include "library/cards/ValueTexts.h"
#include "message/OBcomponent.h"
#include "message/OBproxy.h"
#include "support/Diagnostics.h"
#include "support/WordBehind.h"

namespace {

using Journal = std::vector<std::string>;

const std::string SOURCE = "IcscClientProxy.cpp";

std::string report(const std::string& condition, const std::string& function)
{
    return assertReport(condition, "components/common/brantel/src/IcscClientProxy.cpp", function);
}

const std::string SUBSCRIBE = "void IcscClientProxy::subscribeInterface(uint32_t, OBcomponent&)";
const std::string SUBSCRIBE_ASYNC =
    "void IcscClientProxy::subscribeAsyncInterface(uint32_t, OBcomponent&, OBappsToICSC_1_0_PR&)";
const std::string GET_SYNC =
    "int32_t IcscClientProxy::getOidsSync(uint32_t, const ObjectIdContainer&, OidTypeValueMap&)";
const std::string GET_ASYNC = "bool IcscClientProxy::getOidsAsync(uint32_t, const ObjectIdContainer&)";
const std::string SET = "bool IcscClientProxy::setOids(uint32_t, const OidTypeValueContainer&, int32_t)";

// The request to read OID 1, an answer to it, and the request to write that value.
const std::string READ_REQUEST = "000000010000000400000001";
const std::string ANSWER = "00000001 00000006 00000001 03 07";
const std::string WRITE_REQUEST = "0000000100000006000000010307";
const ObjectIdContainer OIDS{1};
const OidTypeValueContainer VALUES{{1, OID_TYPE_UINT8, static_cast<unsigned char>(7)}};

class IcscClient : public DiagnosticsTest {
protected:
    IcscClient()
    {
        platformDouble::journal.clear();
        platformDouble::numberOfProxies = 0;
        platformDouble::isSubscribingImpossible = false;
        platformDouble::pLastReplyInterface = nullptr;
        platformDouble::answer = nullptr;
        IcscClientProxy::createInstance();
    }

    ~IcscClient() override { IcscClientProxy::deleteInstance(); }

    static IcscClientProxy& client() { return IcscClientProxy::getInstance(); }

    static Journal takeJournal() { return std::exchange(platformDouble::journal, {}); }

    void subscribe(std::uint32_t slot)
    {
        client().subscribeInterface(slot, m_component);
        takeJournal();
    }

    void subscribeAsync(std::uint32_t slot)
    {
        client().subscribeAsyncInterface(slot, m_component, m_replyInterface);
        takeJournal();
    }

    static void answerWith(const std::string& hex, int result)
    {
        platformDouble::answer = [hex, result](buffer_t& tlvs, int& resultCode) {
            tlvs = bufferOf(hex);
            resultCode = result;
            return 0;
        };
    }

    static void failCalls()
    {
        platformDouble::answer = [](buffer_t& /*tlvs*/, int& /*result*/) { return -1; };
    }

    OBcomponent m_component{"evm"};
    OBappsToICSC_1_0_PR m_replyInterface;
};

TEST_F(IcscClient, IsKeptWhenItIsCreatedTwice)
{
    const IcscClientProxy* const pBefore = &client();
    IcscClientProxy::createInstance();
    EXPECT_EQ(&client(), pBefore);
    EXPECT_EQ(m_diagnostics.take(),
              Diagnostics{report("m_pInstance == NULL", "static void IcscClientProxy::createInstance()")});
}

TEST_F(IcscClient, ReportsThatThereIsNoInstanceToGet)
{
    IcscClientProxy::deleteInstance();
    IcscClientProxy::getInstance();
    EXPECT_EQ(m_diagnostics.take(),
              Diagnostics{report("m_pInstance != NULL", "static IcscClientProxy& IcscClientProxy::getInstance()")});
}

TEST_F(IcscClient, MayBeDeletedTwiceAndCreatedAgain)
{
    IcscClientProxy::deleteInstance();
    IcscClientProxy::deleteInstance();
    IcscClientProxy::createInstance();
    subscribe(0);
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(IcscClient, SubscribesTheServiceOfEachSlotByItsName)
{
    client().subscribeInterface(0, m_component);
    client().subscribeAsyncInterface(3, m_component, m_replyInterface);
    client().subscribeInterface(9, m_component);
    EXPECT_EQ(takeJournal(), (Journal{"evm1 created", "evm1 subscribed synchronously to ICSCClient0.ReadWriteSync",
                                      "evm2 created", "evm2 subscribed asynchronously to ICSCClient3.ReadWriteAsync",
                                      "evm3 created", "evm3 subscribed synchronously to ICSCClient9.ReadWriteSync"}));
    EXPECT_EQ(platformDouble::pLastReplyInterface, &m_replyInterface);
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(IcscClient, KeepsTheFirstSubscriptionOfASlot)
{
    OBcomponent other{"other"};
    subscribe(3);
    subscribeAsync(3);
    client().subscribeInterface(3, other);
    client().subscribeAsyncInterface(3, other, m_replyInterface);
    EXPECT_EQ(takeJournal(), Journal{});
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(IcscClient, KeepsAProxyWhoseSubscriptionFailed)
{
    platformDouble::isSubscribingImpossible = true;
    EXPECT_THROW(client().subscribeInterface(3, m_component), std::runtime_error);
    EXPECT_THROW(client().subscribeAsyncInterface(3, m_component, m_replyInterface), std::runtime_error);
    takeJournal();
    client().subscribeInterface(3, m_component);
    client().subscribeAsyncInterface(3, m_component, m_replyInterface);
    EXPECT_EQ(takeJournal(), Journal{});
}

TEST_F(IcscClient, DestroysTheProxiesSlotBySlotTheSynchronousOneFirst)
{
    subscribeAsync(9);  // evm1
    subscribe(9);       // evm2
    subscribe(4);       // evm3
    subscribeAsync(0);  // evm4
    IcscClientProxy::deleteInstance();
    EXPECT_EQ(takeJournal(), (Journal{"evm4 destroyed", "evm3 destroyed", "evm2 destroyed", "evm1 destroyed"}));
}

TEST_F(IcscClient, DestroysNothingBehindItsLastSlot)
{
    auto* const pForeign = new OBappsToICSC_1_0_P(m_component);
    IcscClientProxy::deleteInstance();
    wordBehind::pNext = pForeign;
    IcscClientProxy::createInstance();
    wordBehind::pNext = nullptr;
    takeJournal();
    IcscClientProxy::deleteInstance();
    ASSERT_EQ(takeJournal(), Journal{});
    delete pForeign;
}

TEST_F(IcscClient, ReportsSlot10InEveryCall)
{
    OidTypeValueMap values;
    for (const std::uint32_t slot : {10U, 0xFFFFFFFFU}) {
        client().subscribeInterface(slot, m_component);
        client().subscribeAsyncInterface(slot, m_component, m_replyInterface);
        EXPECT_EQ(client().getOidsSync(slot, OIDS, values), 0);
        EXPECT_FALSE(client().getOidsAsync(slot, OIDS));
        EXPECT_FALSE(client().setOids(slot, VALUES, 5));
        EXPECT_EQ(
            m_diagnostics.take(),
            (Diagnostics{report("slot < 10", SUBSCRIBE), report("slot < 10", SUBSCRIBE_ASYNC),
                         report("slot < 10", GET_SYNC), report("slot < 10", GET_ASYNC), report("slot < 10", SET)}));
    }
    EXPECT_EQ(takeJournal(), Journal{});
}

TEST_F(IcscClient, ReportsAReadOfASlotThatIsNotSubscribedInThatWay)
{
    OidTypeValueMap values;
    subscribeAsync(3);
    EXPECT_EQ(client().getOidsSync(3, OIDS, values), 0);
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{report("m_pOBappsToICSC_sync[slot] != 0", GET_SYNC)});
    subscribe(4);
    EXPECT_FALSE(client().getOidsAsync(4, OIDS));
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{report("m_pOBappsToICSC_async[slot] != 0", GET_ASYNC)});
    EXPECT_EQ(takeJournal(), Journal{});
}

TEST_F(IcscClient, ReadsValuesWithinFiveSeconds)
{
    subscribe(3);
    answerWith(ANSWER, 0);
    OidTypeValueMap values;
    EXPECT_EQ(client().getOidsSync(3, OIDS, values), 0);
    EXPECT_EQ(recordTexts(values), RecordTexts{"1: 3, unsigned char 7"});
    EXPECT_EQ(takeJournal(), (Journal{"evm1 waits 7", "evm1 ICSCRead timeout 5 tlvs " + READ_REQUEST + " result 0"}));
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(IcscClient, AddsWhatItReadsToTheCallersMap)
{
    subscribe(3);
    answerWith(ANSWER, 0);
    OidTypeValueMap values{{99, {OID_TYPE_BOOL, true}}};
    EXPECT_EQ(client().getOidsSync(3, OIDS, values), 0);
    EXPECT_EQ(recordTexts(values), (RecordTexts{"1: 3, unsigned char 7", "99: 8, bool true"}));
}

TEST_F(IcscClient, FailsOnAnAnswerForAnOidThatTheCallersMapHas)
{
    subscribe(3);
    answerWith(ANSWER, 0);
    OidTypeValueMap values{{1, {OID_TYPE_BOOL, true}}};
    EXPECT_EQ(client().getOidsSync(3, OIDS, values), -1);
    EXPECT_EQ(recordTexts(values), RecordTexts{});
    EXPECT_EQ(m_diagnostics.take(),
              (Diagnostics{
                  errorLine("IfcCardStatusAndControl.cpp", "convertTlvsToOidTypeValueMap",
                            "slot=%d: more than 1 value for oid=0x%x", "slot=3: more than 1 value for oid=0x1"),
                  errorLine(SOURCE, "getOidsSync", "slot=%d: failed to extract values from tlvs returned by ICSCRead()",
                            "slot=3: failed to extract values from tlvs returned by ICSCRead()")}));
}

TEST_F(IcscClient, LogsACallThatFailed)
{
    subscribe(3);
    subscribeAsync(3);
    failCalls();
    OidTypeValueMap values{{99, {OID_TYPE_BOOL, true}}};
    expectAtEveryTraceLevel([&values] { return client().getOidsSync(3, OIDS, values); }, -1,
                            {errorLine(SOURCE, "getSetOidsCommon", "slot=%d: %s failed", "slot=3: ICSCRead failed")});
    expectAtEveryTraceLevel(
        [] { return client().getOidsAsync(3, OIDS); }, false,
        {errorLine(SOURCE, "getOidsAsync", "slot=%d: ICSCRead() failed", "slot=3: ICSCRead() failed")});
    expectAtEveryTraceLevel([] { return client().setOids(3, VALUES, 5); }, false,
                            {errorLine(SOURCE, "getSetOidsCommon", "slot=%d: %s failed", "slot=3: ICSCWrite failed")});
    EXPECT_EQ(recordTexts(values), RecordTexts{"99: 8, bool true"});
}

TEST_F(IcscClient, TakesOnlyMinusOneForACallThatFailed)
{
    subscribe(3);
    platformDouble::answer = [](buffer_t& tlvs, int& /*result*/) {
        tlvs = bufferOf(ANSWER);
        return -2;
    };
    OidTypeValueMap values;
    EXPECT_EQ(client().getOidsSync(3, OIDS, values), 0);
    EXPECT_TRUE(client().setOids(3, VALUES, 5));
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

// A result code other than 0, and how a line shows it.
struct ResultCase {
    std::int32_t result;
    std::string texts;
};

const ResultCase ERROR_RESULTS[] = {
    {0x01000000, "16777216=0x1000000=GENERAL_ERROR"},
    {0x02000000, "33554432=0x2000000=TIMEOUT"},
    {0x03000000, "50331648=0x3000000=INVALID_RESPONSE"},
    {0x04000000, "67108864=0x4000000=INTERNAL_ERROR"},
    {0x05000000, "83886080=0x5000000=SENDING_MSG_TO_IFC_CARD_FAILED"},
    {0x06000000, "100663296=0x6000000=INVALID_NR_OF_TLVS"},
    {0x07000000, "117440512=0x7000000=MESSAGE_TOO_LARGE"},
    {0x08000000, "134217728=0x8000000=MESSAGE_TOO_SHORT"},
    {0x02000007, "33554439=0x2000007=TIMEOUT"},  // the card's result does not count then
    {0x09000000, "150994944=0x9000000=unknown"},
    {-1, "-1=0xffffffff=unknown"},
    {std::numeric_limits<std::int32_t>::min(), "-2147483648=0x80000000=unknown"},
    {1, "1=0x1=RESULT PROTOCOL VERSION_MISMATCH"},
    {4, "4=0x4=RESULT INVALID ACTION"},
    {5, "5=0x5=RESULT GENERAL ERROR"},
    {6, "6=0x6=RESULT WRONG TYPE"},
    {7, "7=0x7=RESULT WRONG OID"},
    {8, "8=0x8=RESULT WRONG LEN"},
    {9, "9=0x9=RESULT WRONG VALUE"},
    {10, "10=0xa=RESULT READ ONLY"},
    {11, "11=0xb=RESULT TOO LONG"},
    {12, "12=0xc=RESULT CANNOT EXEC"},
    {13, "13=0xd=RESULT WRONG MAGIC"},
    {14, "14=0xe=RESULT NOT RECEIVED"},
    {15, "15=0xf=RESULT NOT SEND"},
    {16, "16=0x10=(null)"},
    {17, "17=0x11=(null)"},
    {18, "18=0x12=unknown"},
    {0x00FFFFFF, "16777215=0xffffff=unknown"},
};

const ResultCase WRITE_WARNINGS[] = {
    {2, "2=0x2=RESULT DUPLICATE MSG"},
    {3, "3=0x3=RESULT LOST MSG"},
};

class IcscClientOnResultCode : public IcscClient {
protected:
    // Reads in both ways from a card that answers with the result code.
    void expectFailureOfReads(const ResultCase& resultCase)
    {
        answerWith(ANSWER, resultCase.result);
        const std::string format = "slot=%d: ICSCRead() returned error: %d=0x%x=%s";
        const std::string message = "slot=3: ICSCRead() returned error: " + resultCase.texts;
        OidTypeValueMap values;
        expectAtEveryTraceLevel([&values] { return client().getOidsSync(3, OIDS, values); }, resultCase.result,
                                {errorLine(SOURCE, "getOidsSync", format, message)});
        expectAtEveryTraceLevel([] { return client().getOidsAsync(3, OIDS); }, false,
                                {errorLine(SOURCE, "getOidsAsync", format, message)});
        EXPECT_EQ(recordTexts(values), RecordTexts{});
    }
};

TEST_F(IcscClientOnResultCode, FailsAReadAndNamesIt)
{
    subscribe(3);
    subscribeAsync(3);
    for (const ResultCase& resultCase : ERROR_RESULTS) {
        expectFailureOfReads(resultCase);
    }
    for (const ResultCase& resultCase : WRITE_WARNINGS) {
        expectFailureOfReads(resultCase);
    }
}

TEST_F(IcscClientOnResultCode, FailsAWriteAndNamesIt)
{
    subscribe(3);
    for (const ResultCase& resultCase : ERROR_RESULTS) {
        answerWith("", resultCase.result);
        expectAtEveryTraceLevel([] { return client().setOids(3, VALUES, 5); }, false,
                                {errorLine(SOURCE, "setOids", "ICSCWrite() returned error: %d=0x%x=%s",
                                           "ICSCWrite() returned error: " + resultCase.texts)});
    }
}

TEST_F(IcscClientOnResultCode, OnlyWarnsOfADuplicateOrLostMessageInAWrite)
{
    subscribe(3);
    for (const ResultCase& resultCase : WRITE_WARNINGS) {
        answerWith("", resultCase.result);
        expectAtEveryTraceLevel([] { return client().setOids(3, VALUES, 5); }, true,
                                {warningLine(SOURCE, "setOids", "ICSCWrite() returned warning: %d=0x%x=%s",
                                             "ICSCWrite() returned warning: " + resultCase.texts)});
    }
}

TEST_F(IcscClient, WritesWithTheTimeoutOfTheCallerAndWaitsTwoSecondsMore)
{
    subscribe(3);
    answerWith("", 0);
    constexpr std::int32_t longest = std::numeric_limits<std::int32_t>::max();
    const struct {
        std::int32_t timeout;
        std::string waitTime;
        std::string sent;
    } cases[] = {
        {0, "7", "5"},   {12, "14", "12"},      {1, "3", "1"},
        {-1, "1", "-1"}, {-100, "-98", "-100"}, {longest, std::to_string(longest), std::to_string(longest)},
    };
    for (const auto& timeoutCase : cases) {
        EXPECT_TRUE(client().setOids(3, VALUES, timeoutCase.timeout));
        EXPECT_EQ(takeJournal(),
                  (Journal{"evm1 waits " + timeoutCase.waitTime,
                           "evm1 ICSCWrite timeout " + timeoutCase.sent + " tlvs " + WRITE_REQUEST + " result 0"}));
    }
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(IcscClient, SendsNothingWhenTheValuesCannotBeEncoded)
{
    subscribe(3);
    EXPECT_FALSE(client().setOids(3, {{1, static_cast<OidValueType>(11), 7}}, 5));
    EXPECT_EQ(takeJournal(), Journal{});
    EXPECT_EQ(
        m_diagnostics.take(),
        (Diagnostics{errorLine("IfcCardStatusAndControl.cpp", "convertOidTypeValueContainerToTlvs",
                               "invalid or not yet implemented type  (%d) for oid=0x%x",
                               "invalid or not yet implemented type  (11) for oid=0x1"),
                     assertReport("false", "components/common/brantel/src/IfcCardStatusAndControl.cpp",
                                  "bool convertOidTypeValueContainerToTlvs(const OidTypeValueContainer&, buffer_t&)"),
                     errorLine(SOURCE, "setOids", "slot=%d: failed to construct tlvs to be written to IFC card",
                               "slot=3: failed to construct tlvs to be written to IFC card")}));
}

TEST_F(IcscClient, SendsAnAsynchronousReadWithoutTouchingTheWaitTime)
{
    subscribeAsync(3);
    platformDouble::answer = [](buffer_t& /*tlvs*/, int& /*result*/) { return 0; };
    EXPECT_TRUE(client().getOidsAsync(3, OIDS));
    EXPECT_EQ(takeJournal(), Journal{"evm1 ICSCRead timeout 5 tlvs " + READ_REQUEST + " result 0"});
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(IcscClient, MakesTheCallThatReadsAndWritesShare)
{
    subscribe(3);
    answerWith("AABB", 7);
    buffer_t tlvs = bufferOf("01");
    std::int32_t result = 0;
    EXPECT_TRUE(client().getSetOidsCommon(false, 3, 1, tlvs, result));
    EXPECT_EQ(hexOf(tlvs) + " " + std::to_string(result), "01 7");  // a write gets a copy
    EXPECT_TRUE(client().getSetOidsCommon(true, 3, 2, tlvs, result));
    EXPECT_EQ(hexOf(tlvs) + " " + std::to_string(result), "AABB 7");
    EXPECT_EQ(takeJournal(), (Journal{"evm1 waits 3", "evm1 ICSCWrite timeout 1 tlvs 01 result 0", "evm1 waits 4",
                                      "evm1 ICSCRead timeout 2 tlvs 01 result 7"}));
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(IcscClient, LeavesARequestThatDoesNotFitToTheBuffer)
{
    subscribe(3);
    subscribeAsync(3);
    OidTypeValueMap values;
    EXPECT_THROW(client().getOidsSync(3, ObjectIdContainer(256), values), std::length_error);
    EXPECT_THROW(client().getOidsAsync(3, ObjectIdContainer(256)), std::length_error);
    EXPECT_EQ(takeJournal(), Journal{});
}

TEST_F(IcscClient, ChecksNothingAtRunTimeThatWasCheckedAtCompileTime)
{
    doIcscClientProxyCompileTimeAssertions();
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

}  // namespace
