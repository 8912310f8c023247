// Calls that wait for their answer, against real services.

#include <csignal>
#include <memory>
#include <optional>
#include <string>

#include <sys/time.h>

#include <gtest/gtest.h>

#include "MessageTest.h"
#include "TestCard.h"

namespace {

class SynchronousCall : public MessageTest {
protected:
    void subscribe() { ASSERT_EQ(m_proxy.subscribe_synchronous(SERVICE), 0); }

    OBcomponent m_component{"caller"};
    OBappsToICSC_1_0_P m_proxy{m_component};
};

TEST_F(SynchronousCall, BringsPayloadAndTimeoutThereAndPayloadAndResultBack)
{
    const ServedCard card(SERVICE);
    subscribe();
    EXPECT_EQ(read(m_proxy, "request", 5), "returned 0, result 0, 'read request 5'");
    EXPECT_EQ(read(m_proxy, "", -1), "returned 0, result 0, 'read  -1'");
    EXPECT_EQ(write(m_proxy, "values"), "returned 0, result 42, 'values'");
    EXPECT_EQ(m_diagnostics.take(), Diagnostics());
}

TEST_F(SynchronousCall, CarriesAFullBufferBothWays)
{
    const std::string full(buffer_t::CAPACITY, 'f');
    const ServedCard card(
        SERVICE, [](TestCard& self, const OBmessage& request, const buffer_t& tlvs) { self.reply(request, tlvs, 0); });
    subscribe();
    EXPECT_EQ(read(m_proxy, full), "returned 0, result 0, '" + full + "'");
}

TEST_F(SynchronousCall, FailsAfterItsWaitTimeWithoutAService)
{
    subscribe();
    m_proxy.setReplyWaitTime(1);
    const Stopwatch watch;
    EXPECT_EQ(read(m_proxy, "request"), "returned -1, result 99, 'request'");
    EXPECT_GE(watch.seconds(), 1.0);
    EXPECT_LT(watch.seconds(), 5.0);
}

TEST_F(SynchronousCall, DoesNotWaitWithoutWaitTime)
{
    subscribe();
    for (const int waitTime : {0, -1, -2147483647 - 1}) {
        m_proxy.setReplyWaitTime(waitTime);
        const Stopwatch watch;
        EXPECT_EQ(read(m_proxy, "request"), "returned -1, result 99, 'request'");
        EXPECT_LT(watch.seconds(), 1.0) << waitTime;
    }
}

TEST_F(SynchronousCall, WaitsForAServiceThatComesWhileItWaits)
{
    subscribe();
    std::optional<ServedCard> card;
    std::thread late([&card] { card.emplace(SERVICE); });
    EXPECT_EQ(read(m_proxy, "request"), "returned 0, result 0, 'read request 5'");
    late.join();
}

TEST_F(SynchronousCall, IsAnsweredTimeoutWhenTheCardStaysSilent)
{
    const ServedCard card(SERVICE, [](TestCard&, const OBmessage&, const buffer_t&) {});
    subscribe();
    const Stopwatch watch;
    EXPECT_EQ(read(m_proxy, "request", 1), "returned 0, result 33554432, ''");
    EXPECT_GE(watch.seconds(), 1.0);
    EXPECT_LT(watch.seconds(), 5.0);
    for (const int timeout : {0, -5}) {
        EXPECT_EQ(read(m_proxy, "request", timeout), "returned 0, result 33554432, ''");
    }
}

TEST_F(SynchronousCall, NeverTakesALateAnswerForItsOwn)
{
    std::optional<OBmessage> first;
    const ServedCard card(SERVICE, [&first](TestCard& self, const OBmessage& request, const buffer_t& tlvs) {
        if (textOf(tlvs) == "first") {
            first = request;
            return;
        }
        if (first) {
            self.reply(*first, payloadOf("late"), 0);
        }
        self.reply(request, payloadOf("in time"), 0);
    });
    subscribe();
    EXPECT_EQ(read(m_proxy, "connects"), "returned 0, result 0, 'in time'");
    m_proxy.setReplyWaitTime(0);
    EXPECT_EQ(read(m_proxy, "first"), "returned -1, result 99, 'first'");
    m_proxy.setReplyWaitTime(7);
    EXPECT_EQ(read(m_proxy, "second"), "returned 0, result 0, 'in time'");
    EXPECT_EQ(m_proxy.droppedAnswers(), 1U);
    EXPECT_EQ(m_diagnostics.take(),
              Diagnostics{warningLine("OBproxy.cpp", "dropAnswer",
                                      "service %s: dropped a late or foreign answer, sequence number %llu",
                                      "service ICSCClient3.ReadWriteSync: dropped a late or foreign answer, sequence "
                                      "number 2")});
}

TEST_F(SynchronousCall, ReachesAServiceThatWentAndCameBack)
{
    subscribe();
    for (int life = 0; life < 3; ++life) {
        const ServedCard card(SERVICE);
        EXPECT_EQ(readUntilAnswered(m_proxy, "request"), "returned 0, result 0, 'read request 5'") << life;
    }
}

TEST_F(SynchronousCall, FailsAtOnceWhenTheServiceDies)
{
    OBcomponent service("card");
    std::unique_ptr<TestCard> pCard;
    pCard = std::make_unique<TestCard>(service, SERVICE,
                                       [&pCard](TestCard&, const OBmessage&, const buffer_t&) { pCard.reset(); });
    std::thread dispatching([&service] { dispatchMessages(service, 1); });
    subscribe();
    m_proxy.setReplyWaitTime(60);
    const Stopwatch watch;
    EXPECT_EQ(read(m_proxy, "request"), "returned -1, result 99, 'request'");
    EXPECT_LT(watch.seconds(), 10.0);
    dispatching.join();
}

TEST_F(SynchronousCall, IsNotCarriedOutByAServiceThatComesLater)
{
    subscribe();
    m_proxy.setReplyWaitTime(0);
    EXPECT_EQ(read(m_proxy, "too early"), "returned -1, result 99, 'too early'");
    m_proxy.setReplyWaitTime(7);
    std::vector<std::string> seen;
    {
        const ServedCard card(SERVICE, [&seen](TestCard& self, const OBmessage& request, const buffer_t& tlvs) {
            seen.push_back(textOf(tlvs));
            self.reply(request, buffer_t(), 0);
        });
        EXPECT_EQ(read(m_proxy, "in time"), "returned 0, result 0, ''");
    }
    EXPECT_EQ(seen, std::vector<std::string>{"in time"});
}

TEST_F(SynchronousCall, FailsWhenTheServiceGivesTheRequestUp)
{
    const ServedCard card(SERVICE, [](TestCard& self, const OBmessage& request, const buffer_t&) {
        self.giveUp(request);
        EXPECT_FALSE(self.reply(request, buffer_t(), 0));
    });
    subscribe();
    m_proxy.setReplyWaitTime(1);
    EXPECT_EQ(read(m_proxy, "request", 0), "returned -1, result 99, 'request'");
}

// Interrupts the waiting thread again and again while it lives.
class Interruptions {
public:
    Interruptions()
    {
        struct sigaction action = {};
        action.sa_handler = [](int) {};
        ::sigaction(SIGALRM, &action, &m_before);
        const itimerval every10ms = {{0, 10000}, {0, 10000}};
        ::setitimer(ITIMER_REAL, &every10ms, nullptr);
    }
    ~Interruptions()
    {
        const itimerval never = {};
        ::setitimer(ITIMER_REAL, &never, nullptr);
        ::sigaction(SIGALRM, &m_before, nullptr);
    }
    Interruptions(const Interruptions&) = delete;
    Interruptions& operator=(const Interruptions&) = delete;

private:
    struct sigaction m_before = {};
};

TEST_F(SynchronousCall, WaitsItsTimeThroughSignals)
{
    const ServedCard card(SERVICE, [](TestCard& self, const OBmessage& request, const buffer_t& tlvs) {
        if (textOf(tlvs) == "answer") {
            self.reply(request, tlvs, 0);
        } else {
            self.giveUp(request);
        }
    });
    subscribe();
    m_proxy.setReplyWaitTime(1);
    const Interruptions interruptions;
    EXPECT_EQ(read(m_proxy, "answer"), "returned 0, result 0, 'answer'");
    const Stopwatch watch;
    EXPECT_EQ(read(m_proxy, "silence"), "returned -1, result 99, 'silence'");
    EXPECT_GE(watch.seconds(), 1.0);
    EXPECT_LT(watch.seconds(), 5.0);
}

TEST_F(SynchronousCall, WaitsForAServiceThroughSignals)
{
    subscribe();
    m_proxy.setReplyWaitTime(1);
    const Interruptions interruptions;
    const Stopwatch watch;
    EXPECT_EQ(read(m_proxy, "nobody"), "returned -1, result 99, 'nobody'");
    EXPECT_GE(watch.seconds(), 1.0);
    EXPECT_LT(watch.seconds(), 5.0);
}

TEST_F(SynchronousCall, NeedsASubscription)
{
    EXPECT_EQ(read(m_proxy, "request"), "returned -1, result 99, 'request'");
    EXPECT_EQ(m_proxy.droppedAnswers(), 0U);
    EXPECT_EQ(m_diagnostics.take(),
              Diagnostics{errorLine("OBproxy.cpp", "call", "component %s: a call of a proxy that is not subscribed",
                                    "component caller: a call of a proxy that is not "
                                    "subscribed")});
}

TEST_F(SynchronousCall, SubscribesOnceAndToServicesOnly)
{
    const auto refusal = [](const std::string& name, const std::string& reason) {
        return Diagnostics{errorLine("OBproxy.cpp", "subscribe", "component %s: cannot subscribe to '%s': %s",
                                     "component caller: cannot subscribe to '" + name + "': " + reason)};
    };
    EXPECT_EQ(m_proxy.subscribe_synchronous("no/name"), -1);
    EXPECT_EQ(m_diagnostics.take(), refusal("no/name", "'no/name' is not a service name"));
    EXPECT_EQ(m_proxy.subscribe_synchronous(SERVICE), 0);
    EXPECT_EQ(m_proxy.subscribe_synchronous(SERVICE), -1);
    EXPECT_EQ(m_diagnostics.take(), refusal(SERVICE, "the proxy is already subscribed"));
}

TEST_F(SynchronousCall, OutlivesItsComponent)
{
    const ServedCard card(SERVICE);
    auto pComponent = std::make_unique<OBcomponent>("short-lived");
    OBappsToICSC_1_0_P proxy(*pComponent);
    proxy.subscribe_synchronous(SERVICE);
    pComponent.reset();
    EXPECT_EQ(read(proxy, "request"), "returned 0, result 0, 'read request 5'");
}

}  // namespace
