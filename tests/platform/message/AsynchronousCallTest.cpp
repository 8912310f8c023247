// Calls whose answers arrive later, from the component's dispatch. Caller and service share one component here: nothing
// waits for anything.

#include <memory>
#include <string>
#include <vector>

#include <poll.h>

#include <gtest/gtest.h>

#include "MessageTest.h"
#include "TestCard.h"

namespace {

using std::chrono::milliseconds;
using Texts = std::vector<std::string>;

const std::string ASYNC_SERVICE = "ICSCClient3.ReadWriteAsync";

class AsynchronousCall : public MessageTest {
protected:
    AsynchronousCall() { m_pProxy->subscribe_asynchronous(ASYNC_SERVICE.c_str(), &m_answers); }

    std::size_t dispatchUntilAnswers(std::size_t count)
    {
        dispatchUntil(m_component, [&] { return m_answers.count() >= count; });
        return m_answers.count();
    }

    static bool isReadable(const OBcomponent& component, milliseconds timeout)
    {
        pollfd descriptor = {component.fileDescriptor(), POLLIN, 0};
        return ::poll(&descriptor, 1, static_cast<int>(timeout.count())) == 1;
    }

    OBcomponent m_component{"both"};
    Answers m_answers;
    std::unique_ptr<OBappsToICSC_1_0_P> m_pProxy = std::make_unique<OBappsToICSC_1_0_P>(m_component);
};

TEST_F(AsynchronousCall, ReturnsAtOnceAndIsAnsweredFromDispatch)
{
    const TestCard card(m_component, ASYNC_SERVICE.c_str());
    EXPECT_EQ(read(*m_pProxy, "a", 3), "returned 0, result 99, 'a'");
    EXPECT_EQ(write(*m_pProxy, "b"), "returned 0, result 99, 'b'");
    EXPECT_EQ(m_answers.take(), Texts());
    dispatchUntilAnswers(2);
    EXPECT_EQ(m_answers.take(),
              (Texts{ASYNC_SERVICE + " read 1: result 0, 'read a 3'", ASYNC_SERVICE + " write 2: result 42"}));
    EXPECT_EQ(m_component.dispatch(milliseconds(0)), 0U);
    EXPECT_EQ(m_diagnostics.take(), Diagnostics());
}

TEST_F(AsynchronousCall, IsAnsweredInWhateverOrderTheServiceAnswers)
{
    std::vector<OBmessage> requests;
    TestCard card(m_component, ASYNC_SERVICE.c_str(),
                  [&requests](TestCard&, const OBmessage& request, const buffer_t&) { requests.push_back(request); });
    read(*m_pProxy, "first");
    read(*m_pProxy, "second");
    ASSERT_TRUE(dispatchUntil(m_component, [&] { return requests.size() == 2; }));
    EXPECT_TRUE(card.reply(requests[1], payloadOf("two"), 2));
    EXPECT_TRUE(card.reply(requests[0], payloadOf("one"), 1));
    dispatchUntilAnswers(2);
    EXPECT_EQ(m_answers.take(),
              (Texts{ASYNC_SERVICE + " read 2: result 2, 'two'", ASYNC_SERVICE + " read 1: result 1, 'one'"}));
}

TEST_F(AsynchronousCall, IsAnsweredTimeoutOnceWhenNothingComesInTime)
{
    std::vector<OBmessage> requests;
    TestCard card(m_component, ASYNC_SERVICE.c_str(),
                  [&requests](TestCard&, const OBmessage& request, const buffer_t&) { requests.push_back(request); });
    read(*m_pProxy, "connects");
    ASSERT_TRUE(dispatchUntil(m_component, [&] { return requests.size() == 1; }));
    m_pProxy->setReplyWaitTime(0);
    EXPECT_EQ(read(*m_pProxy, "late"), "returned 0, result 99, 'late'");
    ASSERT_TRUE(dispatchUntil(m_component, [&] { return requests.size() == 2; }));
    dispatchUntilAnswers(1);
    EXPECT_EQ(m_answers.take(), Texts{ASYNC_SERVICE + " read 2: result 33554432, ''"});

    EXPECT_TRUE(card.reply(requests[1], payloadOf("too late"), 0));
    EXPECT_TRUE(dispatchUntil(m_component, [&] { return m_pProxy->droppedAnswers() == 1; }));
    EXPECT_EQ(m_answers.take(), Texts());
}

TEST_F(AsynchronousCall, IsAnsweredTimeoutOnceWithoutAService)
{
    m_pProxy->setReplyWaitTime(0);
    EXPECT_EQ(read(*m_pProxy, "request"), "returned 0, result 99, 'request'");
    EXPECT_EQ(m_answers.take(), Texts()) << "not from the call itself";
    EXPECT_EQ(m_component.dispatch(milliseconds(1000)), 1U);
    EXPECT_EQ(m_answers.take(), Texts{ASYNC_SERVICE + " read 1: result 33554432, ''"});
    EXPECT_EQ(m_component.dispatch(milliseconds(0)), 0U);
    EXPECT_EQ(m_answers.take(), Texts());
}

// Notes what it reads, and answers it.
class NotingCard : public TestCard {
public:
    NotingCard(OBcomponent& component, Texts& seen)
        : TestCard(component, ASYNC_SERVICE.c_str(),
                   [&seen](TestCard& self, const OBmessage& request, const buffer_t& tlvs) {
                       seen.push_back(textOf(tlvs));
                       self.reply(request, tlvs, 0);
                   })
    {
    }
};

TEST_F(AsynchronousCall, IsHeldForAServiceThatComesInTimeAndSentOnceInOrder)
{
    for (const char* const text : {"a", "b", "c"}) {
        EXPECT_EQ(read(*m_pProxy, text), std::string("returned 0, result 99, '") + text + "'");
    }
    m_component.dispatch(milliseconds(0));
    Texts seen;
    const NotingCard card(m_component, seen);
    read(*m_pProxy, "d");
    EXPECT_EQ(dispatchUntilAnswers(4), 4U);
    EXPECT_EQ(seen, (Texts{"a", "b", "c", "d"}));
    EXPECT_EQ(m_answers.take(),
              (Texts{ASYNC_SERVICE + " read 1: result 0, 'a'", ASYNC_SERVICE + " read 2: result 0, 'b'",
                     ASYNC_SERVICE + " read 3: result 0, 'c'", ASYNC_SERVICE + " read 4: result 0, 'd'"}));
    EXPECT_EQ(m_component.dispatch(milliseconds(0)), 0U);
    EXPECT_EQ(m_pProxy->droppedAnswers(), 0U);
}

TEST_F(AsynchronousCall, IsNotCarriedOutByAServiceThatComesAfterItsTime)
{
    m_pProxy->setReplyWaitTime(0);
    read(*m_pProxy, "given up");
    Texts seen;
    const NotingCard card(m_component, seen);
    m_pProxy->setReplyWaitTime(7);
    read(*m_pProxy, "in time");
    EXPECT_EQ(dispatchUntilAnswers(2), 2U);
    EXPECT_EQ(seen, Texts{"in time"});
    EXPECT_EQ(m_answers.take(),
              (Texts{ASYNC_SERVICE + " read 1: result 33554432, ''", ASYNC_SERVICE + " read 2: result 0, 'in time'"}));
}

TEST_F(AsynchronousCall, IsAnsweredTimeoutAfterItsWaitTimeWithoutAService)
{
    m_pProxy->setReplyWaitTime(1);
    const Stopwatch watch;
    read(*m_pProxy, "request");
    EXPECT_LT(watch.seconds(), 1.0);
    EXPECT_EQ(dispatchUntilAnswers(1), 1U);
    EXPECT_GE(watch.seconds(), 1.0);
    EXPECT_EQ(m_answers.take(), Texts{ASYNC_SERVICE + " read 1: result 33554432, ''"});
}

TEST_F(AsynchronousCall, IsNotSentAgainToAServiceThatGoesAndComesBack)
{
    Texts seen;
    m_pProxy->setReplyWaitTime(2);
    {
        const TestCard silent(
            m_component, ASYNC_SERVICE.c_str(),
            [&seen](TestCard&, const OBmessage&, const buffer_t& tlvs) { seen.push_back(textOf(tlvs)); });
        ASSERT_TRUE(dispatchUntil(m_component, [&] { return m_pProxy->isConnected(); }));
        read(*m_pProxy, "lost");
        ASSERT_TRUE(dispatchUntil(m_component, [&] { return seen.size() == 1; }));
    }
    ASSERT_TRUE(dispatchUntil(m_component, [&] { return !m_pProxy->isConnected(); }));
    read(*m_pProxy, "held");
    const NotingCard card(m_component, seen);
    EXPECT_EQ(dispatchUntilAnswers(2), 2U);
    EXPECT_EQ(seen, (Texts{"lost", "held"}));
    EXPECT_EQ(m_answers.take(),
              (Texts{ASYNC_SERVICE + " read 2: result 0, 'held'", ASYNC_SERVICE + " read 1: result 33554432, ''"}));
    EXPECT_EQ(m_pProxy->droppedAnswers(), 0U);
}

TEST_F(AsynchronousCall, MakesTheFileDescriptorReadableWhenWhatIsHeldCanLeave)
{
    read(*m_pProxy, "held");
    m_component.dispatch(milliseconds(0));
    const ServedCard card(ASYNC_SERVICE);
    while (m_answers.count() == 0) {
        ASSERT_TRUE(isReadable(m_component, milliseconds(10000)));
        m_component.dispatch(milliseconds(0));
    }
    EXPECT_EQ(m_answers.take(), Texts{ASYNC_SERVICE + " read 1: result 0, 'read held 5'"});
}

TEST_F(AsynchronousCall, FailsBeyondAThousandHeldRequests)
{
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(read(*m_pProxy, "r"), "returned 0, result 99, 'r'") << i;
    }
    EXPECT_EQ(read(*m_pProxy, "r"), "returned -1, result 99, 'r'");
    EXPECT_EQ(m_component.lastSequenceNumber(ASYNC_SERVICE), 1000U);
}

TEST_F(AsynchronousCall, FailsBeyondAThousandUnansweredRequests)
{
    const TestCard card(m_component, ASYNC_SERVICE.c_str(), [](TestCard&, const OBmessage&, const buffer_t&) {});
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(read(*m_pProxy, "r"), "returned 0, result 99, 'r'") << i;
        m_component.dispatch(milliseconds(0));
    }
    EXPECT_EQ(read(*m_pProxy, "r"), "returned -1, result 99, 'r'");
}

TEST_F(AsynchronousCall, NeedsAReplyInterface)
{
    OBappsToICSC_1_0_P proxy(m_component);
    EXPECT_EQ(proxy.subscribe_asynchronous("A", nullptr), -1);
    EXPECT_EQ(m_diagnostics.take(),
              Diagnostics{errorLine("OBproxy.cpp", "subscribe_asynchronous",
                                    "component %s: cannot subscribe to '%s': no reply interface",
                                    "component both: cannot subscribe to 'A': no reply interface")});
}

TEST_F(AsynchronousCall, LogsAnAnswerWithoutAHandler)
{
    const TestCard card(m_component, "A");
    OBappsToICSC_1_0_PR unhandled;
    OBappsToICSC_1_0_P proxy(m_component);
    proxy.subscribe_asynchronous("A", &unhandled);
    const auto neverCalled = [](const std::string& function, const std::string& signature) {
        return Diagnostics{errorLine("OBappsToICSC_1_0.cpp", function,
                                     "Error, this function should never be called [%s]]",
                                     "Error, this function should never be called [" + signature + "]]")};
    };
    read(proxy, "request");
    EXPECT_EQ(dispatchMessages(m_component, 2), 2U);
    EXPECT_EQ(m_diagnostics.take(),
              neverCalled("ICSCReadReply",
                          "virtual void OBappsToICSC_1_0_PR::ICSCReadReply(const OBmessage&, const buffer_t&, int)"));
    write(proxy, "request");
    EXPECT_EQ(dispatchMessages(m_component, 2), 2U);
    EXPECT_EQ(m_diagnostics.take(),
              neverCalled("ICSCWriteReply", "virtual void OBappsToICSC_1_0_PR::ICSCWriteReply(const OBmessage&, int)"));
}

TEST_F(AsynchronousCall, LetsTheReplyHandlerDestroyTheProxy)
{
    const TestCard card(m_component, ASYNC_SERVICE.c_str());
    m_answers.onAnswer = [&] { m_pProxy.reset(); };
    read(*m_pProxy, "request");
    EXPECT_EQ(dispatchUntilAnswers(1), 1U);
    EXPECT_EQ(m_component.dispatch(milliseconds(0)), 0U);
}

TEST_F(AsynchronousCall, LetsTheReplyHandlerDestroyTheProxyAfterATimeout)
{
    const TestCard card(m_component, ASYNC_SERVICE.c_str(), [](TestCard&, const OBmessage&, const buffer_t&) {});
    m_answers.onAnswer = [&] { m_pProxy.reset(); };
    m_pProxy->setReplyWaitTime(1);
    read(*m_pProxy, "first");
    read(*m_pProxy, "second");
    EXPECT_EQ(dispatchUntilAnswers(1), 1U);
    EXPECT_EQ(m_component.dispatch(milliseconds(0)), 0U);
}

TEST_F(AsynchronousCall, LetsTheReplyHandlerCallAgain)
{
    const TestCard card(m_component, ASYNC_SERVICE.c_str());
    m_answers.onAnswer = [&] {
        if (m_answers.count() < 200) {
            read(*m_pProxy, "again");
        }
    };
    read(*m_pProxy, "start");
    EXPECT_EQ(dispatchUntilAnswers(200), 200U);
}

TEST_F(AsynchronousCall, LetsWhatTheReplyHandlerThrowsReachTheDispatcher)
{
    const TestCard card(m_component, ASYNC_SERVICE.c_str());
    m_answers.onAnswer = [] { throw std::runtime_error("thrown by the handler"); };
    read(*m_pProxy, "request");
    EXPECT_EQ(errorOf([&] { dispatchUntilAnswers(1); }), "thrown by the handler");
    m_answers.onAnswer = nullptr;
    read(*m_pProxy, "request");
    EXPECT_EQ(dispatchUntilAnswers(2), 2U);
}

TEST_F(AsynchronousCall, MakesTheFileDescriptorReadableWhenItsAnswerIsThere)
{
    const ServedCard card(ASYNC_SERVICE);
    read(*m_pProxy, "request");
    while (m_answers.count() == 0) {
        ASSERT_TRUE(isReadable(m_component, milliseconds(10000)));
        m_component.dispatch(milliseconds(0));
    }
    EXPECT_EQ(m_answers.take(), Texts{ASYNC_SERVICE + " read 1: result 0, 'read request 5'"});
}

TEST_F(AsynchronousCall, KeepsTheFileDescriptorReadableWhenASendNoticesTheAnswer)
{
    const ServedCard card(ASYNC_SERVICE);
    for (std::size_t round = 1; round <= 200; ++round) {
        read(*m_pProxy, "first");
        ASSERT_TRUE(isReadable(m_component, milliseconds(10000)));
        read(*m_pProxy, "second");
        while (m_answers.count() < 2 * round) {
            ASSERT_TRUE(isReadable(m_component, milliseconds(10000)));
            m_component.dispatch(milliseconds(0));
        }
    }
}

TEST_F(AsynchronousCall, MakesTheFileDescriptorReadableWhenItsTimeIsOver)
{
    std::vector<OBmessage> requests;
    const TestCard card(
        m_component, ASYNC_SERVICE.c_str(),
        [&requests](TestCard&, const OBmessage& request, const buffer_t&) { requests.push_back(request); });
    m_pProxy->setReplyWaitTime(1);
    read(*m_pProxy, "request");
    ASSERT_TRUE(dispatchUntil(m_component, [&] { return requests.size() == 1; }));
    const Stopwatch watch;
    while (m_answers.count() == 0) {
        ASSERT_TRUE(isReadable(m_component, milliseconds(10000)));
        m_component.dispatch(milliseconds(0));
    }
    EXPECT_LT(watch.seconds(), 5.0);
    EXPECT_EQ(m_answers.take(), Texts{ASYNC_SERVICE + " read 1: result 33554432, ''"});
}

}  // namespace
