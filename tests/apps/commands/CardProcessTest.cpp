// The library's client and a card in another process: over the sockets of this host, and over TCP with keys.

#include <cstdlib>
#include <memory>

#include <gtest/gtest.h>

#include "IcscClientProxy.h"
#include "apps/cards/CardValues.h"
#include "apps/commands/CardProcess.h"
#include "cards/ResultText.h"
#include "icsc/OBappsToICSC_1_0_PR.h"
#include "message/OBcomponent.h"
#include "message/OBkeys.h"
#include "message/OBresult.h"
#include "support/Diagnostics.h"
#include "support/TemporaryDirectory.h"

namespace brantel {

using namespace oids;

namespace {

constexpr std::uint32_t SLOT = 3;

enum class Transport { LOCAL, TCP_WITH_KEYS };

std::ostream& operator<<(std::ostream& stream, Transport transport)
{
    return stream << ((transport == Transport::LOCAL) ? "local" : "TCP with keys");
}

class Replies : public OBappsToICSC_1_0_PR {
public:
    std::vector<std::string> texts;

private:
    void ICSCReadReply(const OBmessage& request, const buffer_t& tlvs, int result) override
    {
        OidTypeValueMap values;
        std::string text = request.serviceName() + " result " + std::to_string(result);
        if ((result == 0) && convertTlvsToOidTypeValueMap(SLOT, tlvs, values, nullptr)) {
            text += " " + testing::PrintToString(textsOf(values));
        }
        texts.push_back(text);
    }
};

class ClientOfACard : public testing::TestWithParam<Transport> {
protected:
    ClientOfACard()
    {
        setenv("XDG_RUNTIME_DIR", m_directory.path().c_str(), 1);  // NOLINT(concurrency-mt-unsafe): there is one thread
        m_card =
            std::make_unique<CardProcess>(std::vector<std::string>{"--slot", "3"},
                                          std::vector<std::string>{"BRANTEL_MESSAGE_DIRECTORY=" + serviceDirectory(),
                                                                   "XDG_RUNTIME_DIR=" + m_directory.path()});
        m_component = std::make_unique<OBcomponent>("caller", callerDirectory());
        IcscClientProxy::createInstance();
        client().subscribeInterface(SLOT, *m_component);
        client().subscribeAsyncInterface(SLOT, *m_component, m_replies);
    }

    ~ClientOfACard() override { IcscClientProxy::deleteInstance(); }

    static IcscClientProxy& client() { return IcscClientProxy::getInstance(); }

    static void setFault(const std::string& text)
    {
        ASSERT_TRUE(client().setOids(SLOT, {written(CARD_FAULT, OID_TYPE_STRING, text)}, 0));
    }

    static std::string outcomeOfReading(const ObjectIdContainer& oids)
    {
        OidTypeValueMap values;
        const std::int32_t result = client().getOidsSync(SLOT, oids, values);
        return std::to_string(result) + " " + testing::PrintToString(textsOf(values));
    }

    const TemporaryDirectory m_directory;
    Replies m_replies;
    std::unique_ptr<CardProcess> m_card;
    std::unique_ptr<OBcomponent> m_component;
    DiagnosticsCapture m_diagnostics{0};

private:
    std::string serviceDirectory()
    {
        if (GetParam() == Transport::LOCAL) {
            return "";
        }
        m_serviceKey = createKeyFile(m_directory.path() + "/service.key");
        m_directory.write("clients", "client " + createKeyFile(m_directory.path() + "/caller.key") + " the caller\n");
        const std::string options = " tcp://127.0.0.1:* own-key=service.key clients=clients\n";
        return m_directory.write("service-directory",
                                 "ICSCClient3.ReadWriteSync" + options + "ICSCClient3.ReadWriteAsync" + options);
    }

    std::string callerDirectory() const
    {
        const std::string options = "own-key=caller.key service-key=" + m_serviceKey;
        const bool isLocal = GetParam() == Transport::LOCAL;
        return m_directory.write("caller-directory", isLocal ? "" : m_card->directoryLines(options));
    }

    std::string m_serviceKey;
};

TEST_P(ClientOfACard, ReadsAndWrites)
{
    EXPECT_EQ(outcomeOfReading({CARD_SLOT, CARD_LED}), R"(0 { (65537, "uint8 3"), (65547, "uint8 1") })");
    EXPECT_TRUE(client().setOids(SLOT, {written(CARD_LED, OID_TYPE_UINT8, "2")}, 0));
    EXPECT_EQ(outcomeOfReading({CARD_LED}), "0 { (65547, \"uint8 2\") }");
    EXPECT_FALSE(client().setOids(SLOT, {written(CARD_LED, OID_TYPE_UINT8, "9")}, 0));
}

TEST_P(ClientOfACard, ReadsWithoutWaiting)
{
    EXPECT_TRUE(client().getOidsAsync(SLOT, {CARD_LED}));
    EXPECT_TRUE(client().getOidsAsync(SLOT, {7}));
    while (m_replies.texts.size() < 2) {
        m_component->dispatch(std::chrono::seconds(1));
    }
    EXPECT_EQ(m_replies.texts, (std::vector<std::string>{"ICSCClient3.ReadWriteAsync result 0 { (65547, \"uint8 1\") }",
                                                         "ICSCClient3.ReadWriteAsync result 7"}));
}

TEST_P(ClientOfACard, ReportsWhatIsWrongWithAnswers)
{
    const struct {
        const char* fault;
        const char* outcome;
    } cases[] = {
        {"result=5", "5 {}"},       {"result=0x05000000", "83886080 {}"},
        {"duplicate-oid", "-1 {}"}, {"missing-oid", "-1 {}"},
        {"foreign-oid", "-1 {}"},   {"wrong-count", "-1 {}"},
        {"wrong-type", "-1 {}"},    {"wrong-type=13", "-1 {}"},
        {"truncated", "-1 {}"},     {"delay=0.05", R"(0 { (65537, "uint8 3"), (65547, "uint8 1") })"},
    };
    for (const auto& each : cases) {
        setFault(each.fault);
        EXPECT_EQ(outcomeOfReading({CARD_SLOT, CARD_LED}), each.outcome) << each.fault;
    }
    setFault("");
    EXPECT_EQ(outcomeOfReading({CARD_LED}), "0 { (65547, \"uint8 1\") }");
}

TEST_P(ClientOfACard, IsAnsweredForACardThatIsSilent)
{
    setFault("silence");
    buffer_t tlvs = readRequest({CARD_LED});
    std::int32_t result = 0;
    EXPECT_TRUE(client().getSetOidsCommon(true, SLOT, 1, tlvs, result));
    EXPECT_EQ(result, obResult::TIMEOUT);
}

INSTANTIATE_TEST_SUITE_P(Over, ClientOfACard, testing::Values(Transport::LOCAL, Transport::TCP_WITH_KEYS));

}  // namespace

}  // namespace brantel
