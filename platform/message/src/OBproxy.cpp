#include "message/OBproxy.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <utility>

#include "Dispatcher.h"
#include "EventSource.h"
#include "Frame.h"
#include "Log.h"
#include "OutstandingRequests.h"
#include "message/OBcomponent.h"
#include "message/OBresult.h"

using obmessage::Clock;
using obmessage::ConnectionWatch;

namespace {

// A call under way.
struct Call {
    OBinterface interface;
    std::uint8_t operation;
    std::uint64_t sequenceNumber;
    int timeout;
    Clock::time_point deadline;
};

Clock::time_point afterSeconds(int seconds)
{
    return Clock::now() + std::chrono::seconds(std::max(seconds, 0));
}

// Waits for the service until `sendDeadline`; one in the past means not to wait.
bool sendRequest(obmessage::CallerSocket& socket, const Call& call, const buffer_t& payload,
                 Clock::time_point sendDeadline)
{
    const obmessage::FrameHeader header{
        obmessage::FrameKind::REQUEST, call.sequenceNumber,         call.timeout,       call.operation,
        call.interface.majorVersion,   call.interface.minorVersion, call.interface.name};
    return socket.send(encodeHeader(header).view(), {payload.data(), payload.size()}, sendDeadline);
}

// An answer repeats what was called. One that cannot be understood counts if its sequence number is the call's.
bool isAnswerTo(const Call& call, const obmessage::DecodedFrame& frame)
{
    if ((frame.fault == obmessage::FrameFault::NOT_A_MESSAGE) || (frame.header.kind != obmessage::FrameKind::ANSWER) ||
        (frame.header.sequenceNumber != call.sequenceNumber)) {
        return false;
    }
    return (frame.fault != obmessage::FrameFault::NONE) ||
           (isOfInterface(frame.header, call.interface) && (frame.header.operation == call.operation));
}

int resultOf(const obmessage::DecodedFrame& answer)
{
    return (answer.fault == obmessage::FrameFault::NONE) ? answer.header.timeoutOrResult : resultOfFault(answer.fault);
}

buffer_t payloadOf(const obmessage::DecodedFrame& answer)
{
    return buffer_t(answer.payload.pBytes, answer.payload.length);
}

}  // namespace

OBproxyReplyInterface::~OBproxyReplyInterface() = default;

void OBproxyReplyInterface::replyReceived(const OBmessage&, const buffer_t&, int)
{
    LOG_NEVER_CALLED();
}

class OBproxy::Subscription {
public:
    Subscription(const std::string& serviceName, obmessage::CalledService& service, const obmessage::Route& route,
                 ConnectionWatch::Events events)
        : m_pServiceName(std::make_shared<const std::string>(serviceName)), m_socket(route, events), m_service(service)
    {
    }
    virtual ~Subscription() = default;
    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;

    /// Like OBproxy::call.
    virtual int call(Call& call, buffer_t& payload, int& result) = 0;

    virtual bool isConnected() { return m_socket.isConnected(); }

    std::string obstacle() const { return m_socket.watch().obstacle(); }

    std::uint64_t droppedAnswers() const { return m_droppedAnswers; }

protected:
    std::uint64_t nextSequenceNumber() { return ++m_service.lastSequenceNumber; }

    void dropAnswer(const obmessage::DecodedFrame& frame)
    {
        ++m_droppedAnswers;
        if (frame.fault == obmessage::FrameFault::NOT_A_MESSAGE) {
            LOG_MESSAGE_WARNING("service %s: dropped what is not a message", m_pServiceName->c_str());
        } else {
            LOG_MESSAGE_WARNING("service %s: dropped a late or foreign answer, sequence number %llu",
                                m_pServiceName->c_str(), static_cast<unsigned long long>(frame.header.sequenceNumber));
        }
    }

    const std::shared_ptr<const std::string> m_pServiceName;
    obmessage::CallerSocket m_socket;

private:
    obmessage::CalledService& m_service;
    std::uint64_t m_droppedAnswers = 0;
};

class OBproxy::SynchronousSubscription : public Subscription {
public:
    SynchronousSubscription(const std::string& serviceName, obmessage::CalledService& service,
                            const obmessage::Route& route)
        : Subscription(serviceName, service, route, ConnectionWatch::Events::REFUSALS)
    {
    }

    int call(Call& call, buffer_t& payload, int& result) override
    {
        m_socket.watch().takeEvents();
        m_socket.watch().retryWhenDue(Clock::now());
        call.sequenceNumber = nextSequenceNumber();
        if (!sendRequest(m_socket, call, payload, call.deadline)) {
            return -1;
        }
        while (m_socket.receive(call.deadline)) {
            const obmessage::DecodedFrame frame = obmessage::decodeFrame(m_socket.message());
            if (isAnswerTo(call, frame)) {
                payload = payloadOf(frame);
                result = resultOf(frame);
                return 0;
            }
            dropAnswer(frame);
        }
        return -1;
    }
};

// Watches the attempts to connect, and starts new ones.
class ConnectingSource : public obmessage::EventSource {
public:
    ConnectingSource(obmessage::Dispatcher& dispatcher, ConnectionWatch& watch)
        : EventSource(dispatcher, watch), m_watch(watch)
    {
    }

private:
    std::optional<Clock::time_point> nextDeadline() const override { return m_watch.retryTime(); }

    bool handleDeadline(Clock::time_point now) override
    {
        m_watch.retryWhenDue(now);
        return false;
    }

    ConnectionWatch& m_watch;
};

class OBproxy::AsynchronousSubscription : public Subscription, private obmessage::DispatchSource {
public:
    AsynchronousSubscription(std::shared_ptr<obmessage::Dispatcher> pDispatcher, const std::string& serviceName,
                             obmessage::CalledService& service, const obmessage::Route& route,
                             OBproxyReplyInterface& reply)
        : Subscription(serviceName, service, route, ConnectionWatch::Events::ALL),
          m_pDispatcher(std::move(pDispatcher)),
          m_reply(reply),
          m_connecting(*m_pDispatcher, m_socket.watch())
    {
        m_pDispatcher->add(*this);
    }

    ~AsynchronousSubscription() override { m_pDispatcher->remove(*this); }

    int call(Call& call, buffer_t& payload, int&) override
    {
        if (m_outstanding.isFull()) {
            return -1;
        }
        call.sequenceNumber = nextSequenceNumber();
        m_outstanding.add(call.sequenceNumber, call);
        if (!m_held.empty() || !sendNow(call, payload)) {
            m_held.emplace(call.sequenceNumber, payload);
        }
        m_pDispatcher->lookAt(*this);
        return 0;
    }

    bool isConnected() override
    {
        const bool isConnectedNow = Subscription::isConnected();
        m_pDispatcher->lookAt(*this);
        return isConnectedNow;
    }

private:
    bool sendNow(const Call& call, const buffer_t& payload)
    {
        return sendRequest(m_socket, call, payload, Clock::time_point::min());
    }

    // A request is not sent after its caller has given it up.
    void sendHeld()
    {
        const Clock::time_point now = Clock::now();
        for (auto held = m_held.begin(); held != m_held.end(); held = m_held.erase(held)) {
            const Call& call = *m_outstanding.find(held->first);
            if ((call.deadline > now) && !sendNow(call, held->second)) {
                return;
            }
        }
    }

    int descriptor() const override { return m_socket.descriptor(); }
    bool hasWork() const override { return m_socket.hasWork(!m_held.empty()); }

    bool handleMessage() override
    {
        sendHeld();
        while (!m_socket.receive(Clock::time_point::min())) {
            // Receiving may have noticed a connection, for which the descriptor does not become readable again.
            if (!hasWork()) {
                return false;
            }
            sendHeld();
        }
        const obmessage::DecodedFrame frame = obmessage::decodeFrame(m_socket.message());
        const Call* const pCall = m_outstanding.find(frame.header.sequenceNumber);
        if ((pCall == nullptr) || !isAnswerTo(*pCall, frame)) {
            dropAnswer(frame);
            return true;
        }
        deliver(pCall->sequenceNumber, payloadOf(frame), resultOf(frame));
        return true;
    }

    std::optional<Clock::time_point> nextDeadline() const override { return m_outstanding.nextDeadline(); }

    bool handleDeadline(Clock::time_point now) override
    {
        const auto sequenceNumber = m_outstanding.expiredAt(now);
        if (sequenceNumber) {
            deliver(*sequenceNumber, buffer_t(), obResult::TIMEOUT);
        }
        return sequenceNumber.has_value();
    }

    // The handler may destroy this object.
    void deliver(std::uint64_t sequenceNumber, const buffer_t& payload, int result)
    {
        const std::optional<Call> call = m_outstanding.take(sequenceNumber);
        m_held.erase(sequenceNumber);
        const OBmessage request(m_pServiceName, call->operation, sequenceNumber, call->timeout, 0);
        m_reply.replyReceived(request, payload, result);
    }

    const std::shared_ptr<obmessage::Dispatcher> m_pDispatcher;
    OBproxyReplyInterface& m_reply;
    ConnectingSource m_connecting;
    obmessage::OutstandingRequests<Call> m_outstanding;  // by sequence number
    std::map<std::uint64_t, buffer_t> m_held;            // the payloads of those not sent yet
};

OBproxy::OBproxy(OBcomponent& component) : m_pDispatcher(component.m_pDispatcher) {}

OBproxy::~OBproxy()
{
    m_pSubscription.reset();  // it counts its calls among those to the service
    m_pDispatcher->calledServices().remove(*this);
}

int OBproxy::subscribe_synchronous(const char* name)
{
    return subscribe(name, nullptr);
}

int OBproxy::subscribe_asynchronous(const char* name, OBproxyReplyInterface* reply)
{
    if (reply == nullptr) {
        LOG_MESSAGE_ERROR("component %s: cannot subscribe to '%s': no reply interface",
                          m_pDispatcher->componentName().c_str(), name);
        return -1;
    }
    return subscribe(name, reply);
}

int OBproxy::subscribe(const char* name, OBproxyReplyInterface* pReply)
{
    try {
        if (m_pSubscription != nullptr) {
            throw std::runtime_error("the proxy is already subscribed");
        }
        obmessage::CalledService& service = m_pDispatcher->calledServices().add(name, *this);
        const obmessage::Route route = m_pDispatcher->directory().routeTo(name);
        if (pReply == nullptr) {
            m_pSubscription = std::make_unique<SynchronousSubscription>(name, service, route);
        } else {
            m_pSubscription = std::make_unique<AsynchronousSubscription>(m_pDispatcher, name, service, route, *pReply);
        }
        return 0;
    } catch (const std::exception& error) {
        m_subscriptionError = error.what();
        LOG_MESSAGE_ERROR("component %s: cannot subscribe to '%s': %s", m_pDispatcher->componentName().c_str(), name,
                          error.what());
        return -1;
    }
}

bool OBproxy::isConnected() const
{
    return (m_pSubscription != nullptr) && m_pSubscription->isConnected();
}

std::string OBproxy::obstacle() const
{
    if (m_pSubscription == nullptr) {
        return m_subscriptionError;
    }
    return isConnected() ? "" : m_pSubscription->obstacle();
}

std::uint64_t OBproxy::droppedAnswers() const
{
    return (m_pSubscription == nullptr) ? 0 : m_pSubscription->droppedAnswers();
}

int OBproxy::call(const OBinterface& interface, std::uint8_t operation, int timeout, buffer_t& payload, int& result)
{
    if (m_pSubscription == nullptr) {
        LOG_MESSAGE_ERROR("component %s: a call of a proxy that is not subscribed",
                          m_pDispatcher->componentName().c_str());
        return -1;
    }
    Call call{interface, operation, 0, timeout, afterSeconds(m_replyWaitTime)};
    return m_pSubscription->call(call, payload, result);
}
