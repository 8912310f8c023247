// Callers and services among peers that break the rules.

#include <memory>
#include <string>
#include <vector>

#include <sys/resource.h>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "MessageTest.h"
#include "TestCard.h"
#include "support/FakeClient.h"
#include "support/FakeService.h"

namespace {

using std::chrono::milliseconds;
using Texts = std::vector<std::string>;

constexpr const char* HOSTILE = "Hostile";
constexpr const char* SOUND = "Sound";

class HostilePeers : public MessageTest {
protected:
    HostilePeers() { ::mkdir((m_folder.path() + "/brantel").c_str(), 0700); }

    std::string path(const std::string& service) const { return m_folder.path() + "/brantel/" + service; }

    OBcomponent m_component{"caller"};
};

FakeService::Answers echo(const std::string& request)
{
    return {{answerTo(request, 0, payloadOfMessage(request))}};
}

class HostileService : public HostilePeers {
protected:
    HostileService() { m_proxy.subscribe_asynchronous(HOSTILE, &m_answers); }

    Texts answers(std::size_t count)
    {
        dispatchUntil(m_component, [&] { return m_answers.count() >= count; });
        return m_answers.take();
    }

    Answers m_answers;
    OBappsToICSC_1_0_P m_proxy{m_component};
};

TEST_F(HostileService, ThatStarvesItsConnectionHoldsUpNoOtherCall)
{
    const FakeService hostile(path(HOSTILE), echo, [](unsigned) { return false; });
    const ServedCard sound(SOUND);
    OBappsToICSC_1_0_P proxy(m_component);
    proxy.subscribe_asynchronous(SOUND, &m_answers);
    m_proxy.setReplyWaitTime(1);

    EXPECT_EQ(read(m_proxy, "starved"), "returned 0, result 99, 'starved'");
    EXPECT_EQ(read(proxy, "request"), "returned 0, result 99, 'request'");
    EXPECT_EQ(answers(2), (Texts{"Sound read 1: result 0, 'read request 5'", "Hostile read 1: result 33554432, ''"}));
    EXPECT_EQ(hostile.requests(), 0U);
}

TEST_F(HostileService, ThatServesTheSecondConnectionOnlyIsSentEachRequestOnce)
{
    const FakeService hostile(path(HOSTILE), echo, [](unsigned number) { return number == 2; });
    ASSERT_TRUE(dispatchUntil(m_component, [&] { return hostile.connections() == 1; }));
    OBappsToICSC_1_0_P second(m_component);
    second.subscribe_asynchronous(HOSTILE, &m_answers);
    m_proxy.setReplyWaitTime(1);

    read(m_proxy, "starved");
    read(second, "served");
    EXPECT_EQ(answers(2), (Texts{"Hostile read 2: result 0, 'served'", "Hostile read 1: result 33554432, ''"}));
    EXPECT_EQ(hostile.requests(), 1U);
}

TEST_F(HostileService, ThatServesOneOfTwoProxiesIsThereForTheComponent)
{
    const FakeService hostile(path(HOSTILE), echo, [](unsigned number) { return number == 2; });
    ASSERT_TRUE(dispatchUntil(m_component, [&] { return !m_proxy.obstacle().empty(); }));
    EXPECT_FALSE(m_component.isConnected(HOSTILE));
    EXPECT_EQ(m_component.obstacle(HOSTILE), m_proxy.obstacle());

    OBappsToICSC_1_0_P second(m_component);
    second.subscribe_asynchronous(HOSTILE, &m_answers);
    EXPECT_TRUE(dispatchUntil(m_component, [&] { return m_component.isConnected(HOSTILE); }));
    EXPECT_EQ(m_component.obstacle(HOSTILE), "");
    EXPECT_FALSE(m_proxy.isConnected());
    EXPECT_NE(m_proxy.obstacle(), "");
}

TEST_F(HostileService, IsTheObstacleThatTheOldestProxyKnows)
{
    OBappsToICSC_1_0_P oldest(m_component);
    OBappsToICSC_1_0_P asynchronous(m_component);
    OBappsToICSC_1_0_P youngest(m_component);
    oldest.subscribe_synchronous(SOUND);
    asynchronous.subscribe_asynchronous(SOUND, &m_answers);
    youngest.subscribe_synchronous(SOUND);
    const FakeService hostile(path(SOUND), echo, [](unsigned) { return false; });
    const std::string obstacle = "'ipc://" + path(SOUND) + "' takes the connection but does not answer";
    EXPECT_TRUE(dispatchUntil(m_component, [&] { return m_component.obstacle(SOUND) == obstacle; }));
    EXPECT_EQ(oldest.obstacle() + youngest.obstacle(), "");
}

TEST_F(HostileService, CausesNoMoreThanOneAnswerACall)
{
    const std::string tooLong(2049, 'p');
    const struct {
        const char* description;
        FakeService::Handler handler;
        std::string answer;
        std::uint64_t dropped;
    } cases[] = {
        {"answers twice",
         [](const std::string& request) {
             return FakeService::Answers{{answerTo(request, 0, "one")}, {answerTo(request, 0, "two")}};
         },
         "result 0, 'one'", 1},
        {"answers another call first",
         [](const std::string& request) {
             const std::string answer = answerTo(request, 0, "own");
             return FakeService::Answers{{withSequenceNumber(answer, sequenceNumberOf(request) + 1)}, {answer}};
         },
         "result 0, 'own'", 1},
        {"repeats the request, then junk, then the answer",
         [](const std::string& request) {
             return FakeService::Answers{{request}, {"junk"}, {""}, {answerTo(request, 0, "own")}};
         },
         "result 0, 'own'", 3},
        {"answers too much",
         [tooLong](const std::string& request) { return FakeService::Answers{{answerTo(request, 0, tooLong)}}; },
         "result 117440512, ''", 0},
        {"answers half",
         [](const std::string& request) { return FakeService::Answers{{answerTo(request, 0, "").substr(0, 18)}}; },
         "result 134217728, ''", 0},
        {"never answers", [](const std::string&) { return FakeService::Answers(); }, "result 33554432, ''", 0},
        {"answers late",
         [](const std::string& request) {
             return FakeService::Answers{{answerTo(request, 0, "late"), milliseconds(1500)}};
         },
         "result 33554432, ''", 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.description);
        const FakeService hostile(path(HOSTILE), c.handler);
        OBappsToICSC_1_0_P proxy(m_component);
        proxy.subscribe_asynchronous(HOSTILE, &m_answers);
        proxy.setReplyWaitTime((c.answer == "result 33554432, ''") ? 1 : 7);
        read(proxy, "request");
        EXPECT_EQ(answers(1),
                  Texts{"Hostile read " + std::to_string(m_component.lastSequenceNumber(HOSTILE)) + ": " + c.answer});
        EXPECT_TRUE(dispatchUntil(m_component, [&] { return proxy.droppedAnswers() == c.dropped; }));
        EXPECT_EQ(answers(0), Texts());
        EXPECT_EQ(hostile.requests(), 1U);
    }
}

TEST_F(HostileService, ThatDoesNotAnswerAConnectionIsNamedAsTheObstacle)
{
    EXPECT_EQ(m_proxy.obstacle(), "") << "it is not served";
    const FakeService hostile(path(HOSTILE), echo, [](unsigned) { return false; });
    const std::string obstacle = "'ipc://" + path(HOSTILE) + "' takes the connection but does not answer";
    EXPECT_TRUE(dispatchUntil(m_component, [&] { return m_proxy.obstacle() == obstacle; })) << m_proxy.obstacle();
}

TEST_F(HostileService, IsFoundAgainOnceItIsHealthy)
{
    {
        // It wants a password, which ends ZeroMQ's own attempts.
        zmq::context_t context;
        zmq::socket_t hostile(context, zmq::socket_type::router);
        hostile.set(zmq::sockopt::plain_server, true);
        hostile.bind("ipc://" + path(HOSTILE));
        ASSERT_TRUE(dispatchUntil(m_component, [&] { return m_proxy.obstacle().find("breaks") != std::string::npos; }));
    }
    const ServedCard sound(HOSTILE);
    read(m_proxy, "request");
    EXPECT_EQ(answers(1), Texts{"Hostile read 1: result 0, 'read request 5'"});
}

class HostileCaller : public HostilePeers {
protected:
    std::string endpoint() const { return "ipc://" + path(SOUND); }
};

TEST_F(HostileCaller, DoesNotDisturbTheOthers)
{
    const ServedCard card(SOUND);
    const std::string saying[] = {
        "",                                                                 // nothing at all
        "GET / HTTP/1.1\r\n\r\n",                                           // another protocol
        connectionGreeting().substr(0, 40),                                 // half a greeting
        connectionGreeting() + messageHeader(100) + "half of",              // half a message
        connectionGreeting() + wireMessage("junk"),                         // no request
        connectionGreeting() + messageHeader(16385),                        // more than a message may have
        connectionGreeting() + messageHeader(static_cast<std::size_t>(-1))  // more than can be sent
    };
    for (const std::string& bytes : saying) {
        FakeClient hostile(endpoint());
        ASSERT_EQ(hostile.open(3), 3U);
        hostile.send(bytes);
        OBappsToICSC_1_0_P proxy(m_component);
        proxy.subscribe_synchronous(SOUND);
        EXPECT_EQ(read(proxy, "request"), "returned 0, result 0, 'read request 5'");
    }
}

// A process that may open few files, with a service that callers flood with connections.
class FloodedService : public HostilePeers {
protected:
    static constexpr std::size_t MOST_FILES = 1024;
    static constexpr std::size_t CAP = MOST_FILES / 8;
    static constexpr std::size_t MORE = 400;

    FloodedService()
    {
        ::getrlimit(RLIMIT_NOFILE, &m_limit);
        rlimit limit = m_limit;
        limit.rlim_cur = MOST_FILES;
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }
    ~FloodedService() override { ::setrlimit(RLIMIT_NOFILE, &m_limit); }

    void expectThatOthersAreServed(const std::string& directoryLine, const std::string& placeOfCallers)
    {
        const std::string file = m_folder.write("directory", directoryLine);
        auto pCard = std::make_unique<ServedCard>(SOUND, nullptr, file);
        const std::string endpoint = placeOfCallers.empty() ? pCard->endpoint() : placeOfCallers;
        OBcomponent component("caller", m_folder.write("callers", std::string(SOUND) + " " + endpoint + "\n"));
        OBappsToICSC_1_0_P before(component);
        before.subscribe_synchronous(SOUND);
        EXPECT_EQ(read(before, "before"), "returned 0, result 0, 'read before 5'");
        OBappsToICSC_1_0_P after(component);
        {
            FakeClient flood(endpoint);
            const std::size_t opened = flood.open(MORE);
            EXPECT_GE(opened, CAP - 1);
            EXPECT_LT(opened, MORE) << "further ones are kept out";
            EXPECT_EQ(read(before, "during"), "returned 0, result 0, 'read during 5'");
        }
        after.subscribe_synchronous(SOUND);
        EXPECT_EQ(read(after, "after"), "returned 0, result 0, 'read after 5'");
        pCard.reset();  // ends the thread that logs
        EXPECT_EQ(m_diagnostics.take(),
                  (Diagnostics{warningLine("ConnectionCap.cpp", "takeEvent",
                                           "service %s: no more than its %zu connections are taken",
                                           "service Sound: no more than its 128 connections are taken"),
                               warningLine("ConnectionCap.cpp", "takeEvent", "service %s: connections are taken again",
                                           "service Sound: connections are taken again")}));
    }

private:
    rlimit m_limit = {};
};

TEST_F(FloodedService, ServesConnectedCallersAndOthersLaterOnThisHost)
{
    expectThatOthersAreServed(std::string(SOUND) + " ipc://" + path(SOUND) + "\n", "ipc://" + path(SOUND));
}

TEST_F(FloodedService, ServesConnectedCallersAndOthersLaterOverTcp)
{
    expectThatOthersAreServed(std::string(SOUND) + " tcp://127.0.0.1:*\n", "");
}

}  // namespace
