// What a service does with requests and with other messages. The other side is a bare ZeroMQ socket; both are on one
// thread.

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <zmq.hpp>

#include "MessageTest.h"
#include "TestCard.h"
#include "support/HexBytes.h"

namespace {

using std::chrono::milliseconds;

const std::string NAME = "0A 61707073546F49435343";  // appsToICSC

// A request of ICSCRead with the sequence number 7 and the timeout 5.
const std::string READ = "4F42 01 01 0000000000000007 00000005 01 01 00 " + NAME;

// Its answer, from the result on.
std::string answerOf(const std::string& result, const std::string& operation = "01")
{
    return withoutBlanks("4F42 01 02 0000000000000007" + result + operation + "01 00" + NAME);
}

class BareCaller {
public:
    explicit BareCaller(const std::string& endpoint) : m_socket(m_context, zmq::socket_type::dealer)
    {
        m_socket.set(zmq::sockopt::linger, 0);
        m_socket.connect(endpoint);
    }

    void send(const std::string& bytes, zmq::send_flags flags = zmq::send_flags::none)
    {
        m_socket.send(zmq::buffer(bytes), flags);
    }

    /// In hexadecimal; empty if nothing comes.
    std::string receive(milliseconds timeout = milliseconds(10000))
    {
        m_socket.set(zmq::sockopt::rcvtimeo, static_cast<int>(timeout.count()));
        zmq::message_t message;
        return m_socket.recv(message) ? hexOf(message.data(), message.size()) : "";
    }

private:
    zmq::context_t m_context;
    zmq::socket_t m_socket;
};

class Service : public MessageTest {
protected:
    std::string endpoint() const { return std::string("ipc://") + m_folder.path() + "/brantel/" + SERVICE; }

    static Diagnostics refusal(const std::string& reason)
    {
        return {warningLine("OBconnection.cpp", "refuse", "service %s: refused a request: %s",
                            "service ICSCClient3.ReadWriteSync: refused a request: " + reason)};
    }

    static Diagnostics neverCalled(const std::string& file, const std::string& function, const std::string& signature)
    {
        return {errorLine(file, function, "Error, this function should never be called [%s]]",
                          "Error, this function should never be called [" + signature + "]]")};
    }

    OBcomponent m_component{"service"};
};

TEST_F(Service, AnswersARequestByteByByte)
{
    const TestCard card(m_component, SERVICE);
    BareCaller caller(endpoint());
    caller.send(bytesOf(READ + "4142"));
    EXPECT_EQ(dispatchMessages(m_component, 1), 1U);
    EXPECT_EQ(caller.receive(), answerOf("00000000") +
                                    "72656164204142"
                                    "2035");  // "read AB 5"
}

TEST_F(Service, AnswersWhatItRefuses)
{
    const TestCard card(m_component, SERVICE);
    BareCaller caller(endpoint());
    const std::string ownName = NAME;
    const struct {
        std::string request;
        std::string answer;
        std::string reason;
    } cases[] = {
        {bytesOf("4F42 02 01 0000000000000007 00000005"), answerOf("03000000", "00"),
         "not understood, too long or too short"},
        {bytesOf(READ).substr(0, 19), answerOf("08000000", "00"), "not understood, too long or too short"},
        {bytesOf(READ).substr(0, 25), answerOf("08000000", "00"), "not understood, too long or too short"},
        {bytesOf(READ) + std::string(2049, 'p'), answerOf("07000000", "00"), "not understood, too long or too short"},
        {bytesOf("4F42 01 01 0000000000000007 00000005 01 02 00" + NAME),
         withoutBlanks("4F42 01 02 0000000000000007 01000000 01 02 00" + NAME), "another interface or version"},
        {bytesOf("4F42 01 01 0000000000000007 00000005 01 01 01" + NAME),
         withoutBlanks("4F42 01 02 0000000000000007 01000000 01 01 01" + NAME), "another interface or version"},
        {bytesOf("4F42 01 01 0000000000000007 00000005 01 01 00 01 78"),
         withoutBlanks("4F42 01 02 0000000000000007 01000000 01 01 00 01 78"), "another interface or version"},
    };
    for (const auto& c : cases) {
        caller.send(c.request);
        EXPECT_EQ(dispatchMessages(m_component, 1), 1U);
        EXPECT_EQ(caller.receive(), c.answer);
        EXPECT_EQ(m_diagnostics.take(), refusal(c.reason));
    }
    EXPECT_EQ(card.droppedMessages(), 0U);
}

TEST_F(Service, RefusesAnOperationThatItsInterfaceDoesNotHave)
{
    const TestCard card(m_component, SERVICE);
    BareCaller caller(endpoint());
    caller.send(bytesOf("4F42 01 01 0000000000000007 00000005 03 01 00" + NAME));
    EXPECT_EQ(dispatchMessages(m_component, 1), 1U);
    EXPECT_EQ(caller.receive(), answerOf("01000000", "03"));
    EXPECT_EQ(m_diagnostics.take(),
              Diagnostics{warningLine("OBappsToICSC_1_0.cpp", "requestReceived",
                                      "service %s: refused a request: no operation %d",
                                      "service ICSCClient3.ReadWriteSync: refused a request: no operation 3")});
}

TEST_F(Service, DropsWhatIsNotARequest)
{
    const TestCard card(m_component, SERVICE);
    BareCaller caller(endpoint());
    const std::string cases[] = {
        "", "junk", std::string(15, '\0'),
        bytesOf("4F42 01 02 0000000000000007 00000000 01 01 00" + NAME),  // an answer
    };
    const std::string text = "service ICSCClient3.ReadWriteSync: dropped what is not a request";
    const Diagnostics dropped = {
        warningLine("OBconnection.cpp", "handleMessage", "service %s: dropped what is not a request", text)};
    std::uint64_t droppedMessages = 0;
    for (const std::string& bytes : cases) {
        caller.send(bytes);
        EXPECT_EQ(dispatchMessages(m_component, 1), 1U);
        EXPECT_EQ(m_diagnostics.take(), dropped) << hexOf(bytes.data(), bytes.size());
        EXPECT_EQ(card.droppedMessages(), ++droppedMessages);
    }

    caller.send(bytesOf(READ), zmq::send_flags::sndmore);
    caller.send("a second part", zmq::send_flags::sndmore);
    caller.send("and a third");
    EXPECT_EQ(dispatchMessages(m_component, 1), 1U);
    EXPECT_EQ(m_diagnostics.take(), dropped);

    caller.send(bytesOf(READ));
    EXPECT_EQ(dispatchMessages(m_component, 1), 1U);
    EXPECT_EQ(caller.receive(), answerOf("00000000") +
                                    "72656164"
                                    "20"
                                    "20"
                                    "35")
        << "the next request is answered";
}

TEST_F(Service, DisconnectsACallerThatAnnouncesMoreThanAnyMessage)
{
    const TestCard card(m_component, SERVICE);
    BareCaller caller(endpoint());
    caller.send(std::string(16385, 'x'));
    EXPECT_EQ(m_component.dispatch(milliseconds(100)), 0U);
    caller.send(bytesOf(READ));
    EXPECT_EQ(dispatchMessages(m_component, 1), 1U);
    EXPECT_EQ(caller.receive(), answerOf("00000000") +
                                    "72656164"
                                    "20"
                                    "20"
                                    "35");
}

TEST_F(Service, AnswersInternalErrorForAHandlerThatThrows)
{
    const TestCard card(m_component, SERVICE, [](TestCard&, const OBmessage&, const buffer_t& tlvs) {
        std::uint32_t count = 0;
        tlvs >> count;
    });
    BareCaller caller(endpoint());
    caller.send(bytesOf(READ + "00"));
    EXPECT_EQ(dispatchMessages(m_component, 1), 1U);
    EXPECT_EQ(caller.receive(), answerOf("04000000"));
    EXPECT_EQ(m_diagnostics.take(),
              Diagnostics{errorLine("OBconnection.cpp", "handleRequest", "service %s: a request failed: %s",
                                    "service ICSCClient3.ReadWriteSync: a request failed: buffer_t: read past the "
                                    "end")});
}

TEST_F(Service, LogsAndAnswersWhatNoClassOverrides)
{
    const OBappsToICSC_1_0_C card(m_component, SERVICE);
    BareCaller caller(endpoint());
    caller.send(bytesOf(READ));
    EXPECT_EQ(dispatchMessages(m_component, 1), 1U);
    EXPECT_EQ(caller.receive(), answerOf("04000000"));
    EXPECT_EQ(m_diagnostics.take(),
              neverCalled("OBappsToICSC_1_0.cpp", "ICSCRead",
                          "virtual void OBappsToICSC_1_0_C::ICSCRead(const OBmessage&, int, const buffer_t&)"));
    caller.send(bytesOf("4F42 01 01 0000000000000007 00000005 02 01 00" + NAME));
    EXPECT_EQ(dispatchMessages(m_component, 1), 1U);
    EXPECT_EQ(caller.receive(), answerOf("04000000", "02"));
    EXPECT_EQ(m_diagnostics.take(),
              neverCalled("OBappsToICSC_1_0.cpp", "ICSCWrite",
                          "virtual void OBappsToICSC_1_0_C::ICSCWrite(const OBmessage&, int, const buffer_t&)"));
}

class BareConnection : public OBconnection {
public:
    explicit BareConnection(OBcomponent& component) : OBconnection(component, SERVICE, {"appsToICSC", 1, 0}) {}
};

TEST_F(Service, LogsAndAnswersWhatNoInterfaceClassOverrides)
{
    const BareConnection connection(m_component);
    BareCaller caller(endpoint());
    caller.send(bytesOf(READ));
    EXPECT_EQ(dispatchMessages(m_component, 1), 1U);
    EXPECT_EQ(caller.receive(), answerOf("04000000"));
    EXPECT_EQ(m_diagnostics.take(),
              neverCalled("OBconnection.cpp", "requestReceived",
                          "virtual void OBconnection::requestReceived(const OBmessage&, const buffer_t&)"));
}

TEST_F(Service, AnswersARequestOnce)
{
    std::optional<OBmessage> request;
    TestCard card(m_component, SERVICE, [&request](TestCard& self, const OBmessage& received, const buffer_t&) {
        request = received;
        EXPECT_TRUE(self.reply(received, buffer_t(), 1));
        EXPECT_FALSE(self.reply(received, buffer_t(), 2));
    });
    BareCaller caller(endpoint());
    caller.send(bytesOf(READ));
    EXPECT_EQ(dispatchMessages(m_component, 1), 1U);
    EXPECT_FALSE(card.reply(*request, buffer_t(), 3));
    EXPECT_EQ(caller.receive(), answerOf("00000001"));
    EXPECT_EQ(caller.receive(milliseconds(0)), "");
}

TEST_F(Service, AnswersLaterUntilTheTimeIsOver)
{
    std::vector<OBmessage> requests;
    TestCard card(m_component, SERVICE,
                  [&requests](TestCard&, const OBmessage& request, const buffer_t&) { requests.push_back(request); });
    BareCaller caller(endpoint());
    caller.send(bytesOf(READ));
    ASSERT_EQ(dispatchMessages(m_component, 1), 1U);
    EXPECT_TRUE(card.reply(requests[0], buffer_t(), 1));
    EXPECT_EQ(caller.receive(), answerOf("00000001"));

    caller.send(bytesOf("4F42 01 01 0000000000000007 00000000 01 01 00 " + NAME));
    ASSERT_EQ(dispatchMessages(m_component, 2), 2U);
    EXPECT_FALSE(card.reply(requests[1], buffer_t(), 1));
    EXPECT_EQ(caller.receive(), answerOf("02000000"));
}

TEST_F(Service, RefusesRequestsBeyondAThousandOpenOnes)
{
    const TestCard card(m_component, SERVICE, [](TestCard&, const OBmessage&, const buffer_t&) {});
    BareCaller caller(endpoint());
    for (int i = 0; i < 1001; ++i) {
        caller.send(bytesOf("4F42 01 01 0000000000000007 7FFFFFFF 01 01 00 " + NAME));
    }
    ASSERT_EQ(dispatchMessages(m_component, 1001), 1001U);
    EXPECT_EQ(caller.receive(), answerOf("04000000"));
    EXPECT_EQ(m_diagnostics.take(), refusal("too many open requests"));
}

TEST_F(Service, LogsThatTheCallerIsGone)
{
    std::optional<OBmessage> request;
    TestCard card(m_component, SERVICE,
                  [&request](TestCard&, const OBmessage& received, const buffer_t&) { request = received; });
    {
        BareCaller caller(endpoint());
        caller.send(bytesOf(READ));
        ASSERT_EQ(dispatchMessages(m_component, 1), 1U);
    }
    m_component.dispatch(milliseconds(100));  // the disconnection arrives
    EXPECT_FALSE(card.reply(*request, buffer_t(), 1));
    EXPECT_EQ(m_diagnostics.take(),
              Diagnostics{warningLine("OBconnection.cpp", "answer", "service %s: the caller of request %llu is gone",
                                      "service ICSCClient3.ReadWriteSync: the caller of request 7 is gone")});
}

TEST_F(Service, MayBeDestroyedByItsOwnHandler)
{
    std::unique_ptr<TestCard> pCard;
    pCard = std::make_unique<TestCard>(m_component, SERVICE,
                                       [&pCard](TestCard& self, const OBmessage& request, const buffer_t&) {
                                           self.reply(request, buffer_t(), 1);
                                           const std::unique_ptr<TestCard> last = std::move(pCard);
                                       });
    BareCaller caller(endpoint());
    caller.send(bytesOf(READ));
    ASSERT_EQ(dispatchMessages(m_component, 1), 1U);
    EXPECT_EQ(caller.receive(), answerOf("00000001")) << "an answer given is still delivered";
}

TEST_F(Service, IsServedOnceAtATime)
{
    const std::string path = m_folder.path() + "/brantel/" + SERVICE;
    auto pFirst = std::make_unique<TestCard>(m_component, SERVICE);
    EXPECT_EQ(errorOf([&] { const TestCard second(m_component, SERVICE); }),
              path + ": already served by another connection");
    pFirst.reset();
    EXPECT_EQ(errorOf([&] { const TestCard second(m_component, SERVICE); }), "");
}

TEST_F(Service, NeedsANameAndAnEndpointThatCanBeBound)
{
    EXPECT_EQ(errorOf([&] { const TestCard card(m_component, "no name"); }), "'no name' is not a service name");
    const std::string directory = m_folder.write("directory", "A tcp://192.0.2.1:5000 plain\n");
    OBcomponent component("service", directory);
    EXPECT_EQ(errorOf([&] { const TestCard card(component, "A"); }),
              "'tcp://192.0.2.1:5000' cannot be served: Cannot assign requested address");
}

TEST_F(Service, ReportsThePortThatItGot)
{
    OBcomponent component("service", m_folder.write("directory", "A tcp://127.0.0.1:*\n"));
    const TestCard card(component, "A");
    const std::string start = "tcp://127.0.0.1:";
    EXPECT_EQ(card.endpoint().substr(0, start.size()), start);
    EXPECT_GT(std::stoi(card.endpoint().substr(start.size())), 0);
}

// An answering socket that sends what the test wants.
class BareService {
public:
    explicit BareService(const std::string& endpoint) : m_socket(m_context, zmq::socket_type::router)
    {
        m_socket.set(zmq::sockopt::linger, 0);
        m_socket.bind(endpoint);
    }

    void answerNext(const std::vector<std::string>& messages)
    {
        zmq::message_t caller;
        zmq::message_t request;
        static_cast<void>(m_socket.recv(caller));
        static_cast<void>(m_socket.recv(request));
        for (const std::string& message : messages) {
            m_socket.send(zmq::buffer(caller.data(), caller.size()), zmq::send_flags::sndmore);
            m_socket.send(zmq::buffer(message), zmq::send_flags::none);
        }
    }

private:
    zmq::context_t m_context;
    zmq::socket_t m_socket;
};

class ForeignAnswers : public Service {
protected:
    ForeignAnswers()
    {
        ::mkdir((m_folder.path() + "/brantel").c_str(), 0700);
        m_service.emplace(endpoint());
    }

    // The outcome of a call that is answered with these messages.
    std::string callAnsweredWith(const std::vector<std::string>& hexMessages)
    {
        std::vector<std::string> messages;
        std::transform(hexMessages.begin(), hexMessages.end(), std::back_inserter(messages), bytesOf);
        OBappsToICSC_1_0_P proxy(m_component);
        proxy.subscribe_synchronous(SERVICE);
        std::thread answering([&] { m_service->answerNext(messages); });
        std::string outcome = read(proxy, "request");
        answering.join();
        m_dropped = proxy.droppedAnswers();
        return outcome;
    }

    std::optional<BareService> m_service;
    std::uint64_t m_dropped = 0;
};

TEST_F(ForeignAnswers, AreDroppedAndCounted)
{
    const std::string own = "4F42 01 02 0000000000000001 00000000 01 01 00" + NAME + "6F6B";
    const std::string foreign[] = {
        "",
        "6A756E6B",
        "4F42 01 02 0000000000000002 00000000 01 01 00" + NAME + "6F6B",  // another call's
        "4F42 01 01 0000000000000001 00000000 01 01 00" + NAME + "6F6B",  // a request
        "4F42 01 02 0000000000000001 00000000 02 01 00" + NAME + "6F6B",  // another operation's
        "4F42 01 02 0000000000000001 00000000 01 01 01" + NAME + "6F6B",  // another version's
        "4F42 01 02 0000000000000001 00000000 01 01 00 01 78 6F6B",       // another interface's
    };
    for (const std::string& message : foreign) {
        EXPECT_EQ(callAnsweredWith({message, own}), "returned 0, result 0, 'ok'") << message;
        EXPECT_EQ(m_dropped, 1U) << message;
    }
}

TEST_F(ForeignAnswers, ThatAreBrokenEndTheCallWithAResult)
{
    const std::string full(std::size_t{2} * 2049, '0');
    EXPECT_EQ(callAnsweredWith({"4F42 02 02 0000000000000001 00000000"}), "returned 0, result 50331648, ''");
    EXPECT_EQ(callAnsweredWith({"4F42 01 02 0000000000000001 00000000 01"}), "returned 0, result 134217728, ''");
    EXPECT_EQ(callAnsweredWith({"4F42 01 02 0000000000000001 00000000 01 01 00" + NAME + full}),
              "returned 0, result 117440512, ''");
    EXPECT_EQ(m_dropped, 0U);
}

}  // namespace
