// The same call over every transport, and who may call over which.

#include <memory>
#include <string>

#include <sys/stat.h>

#include <gtest/gtest.h>

#include "MessageTest.h"
#include "TestCard.h"
#include "message/OBkeys.h"

namespace {

class Transport : public MessageTest {
protected:
    std::string callThrough(const std::string& directoryLine, int replyWaitTime = 7)
    {
        OBcomponent component("caller", m_folder.write("caller-directory", directoryLine + "\n"));
        OBappsToICSC_1_0_P proxy(component);
        proxy.subscribe_synchronous(SERVICE);
        proxy.setReplyWaitTime(replyWaitTime);
        return read(proxy, "request");
    }

    std::string serviceDirectory(const std::string& line) const
    {
        return m_folder.write("service-directory", line + "\n");
    }

    static std::string line(const std::string& rest) { return std::string(SERVICE) + " " + rest; }

    static constexpr const char* ANSWERED = "returned 0, result 0, 'read request 5'";
    static constexpr const char* FAILED = "returned -1, result 99, 'request'";
};

TEST_F(Transport, ReachesAServiceInTheSameProcess)
{
    const std::string directory = line("inproc://here");
    const ServedCard card(SERVICE, nullptr, serviceDirectory(directory));
    EXPECT_EQ(callThrough(directory), ANSWERED);
}

TEST_F(Transport, ReachesAServiceAtItsOwnSocket)
{
    const std::string directory = line("ipc://" + m_folder.path() + "/own-socket");
    const ServedCard card(SERVICE, nullptr, serviceDirectory(directory));
    EXPECT_EQ(callThrough(directory), ANSWERED);
}

TEST_F(Transport, ReachesAServiceOverTcp)
{
    for (const std::string host : {"127.0.0.1", "[::1]"}) {
        const ServedCard card(SERVICE, nullptr, serviceDirectory(line("tcp://" + host + ":*")));
        EXPECT_EQ(callThrough(line(card.endpoint())), ANSWERED) << host;
    }
}

TEST_F(Transport, FindsAServiceOverTcpAgain)
{
    auto pCard = std::make_unique<ServedCard>(SERVICE, nullptr, serviceDirectory(line("tcp://127.0.0.1:*")));
    const std::string directory = line(pCard->endpoint());
    OBcomponent component("caller", m_folder.write("caller-directory", directory));
    OBappsToICSC_1_0_P proxy(component);
    proxy.subscribe_synchronous(SERVICE);
    EXPECT_EQ(read(proxy, "request"), ANSWERED);
    pCard.reset();
    pCard = std::make_unique<ServedCard>(SERVICE, nullptr, serviceDirectory(directory));
    EXPECT_EQ(readUntilAnswered(proxy, "request"), ANSWERED);
}

// A service with keys on this host, which admits one caller.
class TransportWithKeys : public Transport {
protected:
    TransportWithKeys()
    {
        m_folder.write("clients", "client " + createKeyFile(file("caller.key")) + " the caller\n");
        m_card = std::make_unique<ServedCard>(
            SERVICE, nullptr, serviceDirectory(line("tcp://127.0.0.1:* own-key=service.key clients=clients")));
    }

    std::string file(const std::string& name) const { return m_folder.path() + "/" + name; }

    std::string m_serviceKey = createKeyFile(file("service.key"));
    std::unique_ptr<ServedCard> m_card;
};

TEST_F(TransportWithKeys, AnswersACallerThatIsAdmitted)
{
    EXPECT_EQ(callThrough(line(m_card->endpoint() + " own-key=caller.key service-key=" + m_serviceKey)), ANSWERED);
    EXPECT_EQ(m_diagnostics.take(), Diagnostics());
}

TEST_F(TransportWithKeys, RefusesACallerThatIsNot)
{
    const std::string strangerKey = createKeyFile(file("stranger.key"));
    EXPECT_EQ(callThrough(line(m_card->endpoint() + " own-key=stranger.key service-key=" + m_serviceKey), 1), FAILED);
    const Diagnostics lines = m_diagnostics.take();
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.front(),
              warningLine("ClientGate.cpp", "answerQuestions", "%s: refused a caller at %s with key '%s'",
                          "ICSCClient3.ReadWriteSync: refused a caller at 127.0.0.1 with key '" + strangerKey + "'"));
}

TEST_F(TransportWithKeys, RefusesACallerWithoutKeys)
{
    EXPECT_EQ(callThrough(line(m_card->endpoint()), 1), FAILED);
}

TEST_F(TransportWithKeys, IsNotReachedWithAnotherServicesKey)
{
    const std::string otherKey = createKeyFile(file("other.key"));
    EXPECT_EQ(callThrough(line(m_card->endpoint() + " own-key=caller.key service-key=" + otherKey), 1), FAILED);
}

TEST_F(TransportWithKeys, LetsACallerLearnWhyItIsRefused)
{
    const std::string endpoint = m_card->endpoint();
    createKeyFile(file("stranger.key"));
    createKeyFile(file("open.key"));
    ASSERT_EQ(::chmod(file("open.key").c_str(), 0644), 0);
    const std::string otherKey = createKeyFile(file("other.key"));
    const struct {
        std::string options;
        std::string obstacle;
    } cases[] = {
        {" own-key=stranger.key service-key=" + m_serviceKey,
         "'" + endpoint + "' does not admit the key of " + file("stranger.key") +
             ": its public key must be in the service's list of clients"},
        {" own-key=caller.key service-key=" + otherKey,
         "'" + endpoint + "' breaks the connection off: its key is not service-key=, or it has none"},
        {"", "'" + endpoint + "' breaks the connection off: it wants keys or is not a service"},
        {" own-key=open.key service-key=" + m_serviceKey,
         file("open.key") + ": open to other users; its mode must be 0600"},
        {" own-key=none.key service-key=" + m_serviceKey, file("none.key") + ": No such file or directory"},
    };
    for (const auto& c : cases) {
        OBcomponent component("caller", m_folder.write("caller-directory", line(endpoint + c.options) + "\n"));
        Answers answers;
        OBappsToICSC_1_0_P proxy(component);
        proxy.subscribe_asynchronous(SERVICE, &answers);
        EXPECT_TRUE(dispatchUntil(component, [&] { return proxy.obstacle() == c.obstacle; })) << proxy.obstacle();
        EXPECT_FALSE(proxy.isConnected());
    }
}

TEST_F(TransportWithKeys, FindsAServiceThatAdmitsTheCallerLater)
{
    const std::string endpoint = m_card->endpoint();
    const std::string strangerKey = createKeyFile(file("stranger.key"));
    const std::string directory =
        m_folder.write("caller-directory", line(endpoint + " own-key=stranger.key service-key=" + m_serviceKey) + "\n");
    OBcomponent component("caller", directory);
    Answers answers;
    OBappsToICSC_1_0_P asynchronous(component);
    asynchronous.subscribe_asynchronous(SERVICE, &answers);
    OBappsToICSC_1_0_P synchronous(component);
    synchronous.subscribe_synchronous(SERVICE);
    ASSERT_TRUE(dispatchUntil(component, [&] { return !asynchronous.obstacle().empty(); }));
    synchronous.setReplyWaitTime(0);
    EXPECT_EQ(read(synchronous, "request"), FAILED);

    m_card.reset();
    m_folder.write("clients", "client " + strangerKey + "\n");
    m_card = std::make_unique<ServedCard>(SERVICE, nullptr,
                                          serviceDirectory(line(endpoint + " own-key=service.key clients=clients")));
    EXPECT_TRUE(dispatchUntil(component, [&] { return asynchronous.isConnected(); }));
    EXPECT_EQ(asynchronous.obstacle(), "");
    synchronous.setReplyWaitTime(7);
    EXPECT_EQ(readUntilAnswered(synchronous, "request"), ANSWERED);
}

TEST_F(TransportWithKeys, NeedsTheKeysOfBothSides)
{
    const std::string forServicesOnly = line("tcp://127.0.0.1:1 own-key=caller.key clients=clients");
    EXPECT_EQ(callThrough(forServicesOnly), FAILED);
    EXPECT_EQ(m_diagnostics.take().front(),
              errorLine("OBproxy.cpp", "subscribe", "component %s: cannot subscribe to '%s': %s",
                        "component caller: cannot subscribe to 'ICSCClient3.ReadWriteSync': the directory gives no "
                        "service-key= to call 'tcp://127.0.0.1:1' with"));
    const std::string forCallersOnly = line("tcp://127.0.0.1:* own-key=service.key service-key=" + m_serviceKey);
    EXPECT_EQ(errorOf([&] { const ServedCard card(SERVICE, nullptr, serviceDirectory(forCallersOnly)); }),
              "the directory gives no clients= to serve 'tcp://127.0.0.1:*' to");
}

}  // namespace
