#include "message/OBproxy.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <utility>

#include "Dispatcher.h"
#include "Frame.h"
#include "Log.h"
#include "message/OBcomponent.h"
#include "message/OBresult.h"

using obmessage::Clock;

namespace {

// An asynchronous caller that is never answered is refused beyond this many requests.
constexpr std::size_t MAX_OUTSTANDING_REQUESTS = 1000;

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

bool sendRequest(obmessage::CallerSocket& socket, const Call& call, const buffer_t& payload,
                 Clock::time_point sendDeadline)
{
    const obmessage::FrameHeader header{
        obmessage::FrameKind::Request, call.sequenceNumber,         call.timeout,       call.operation,
        call.interface.majorVersion,   call.interface.minorVersion, call.interface.name};
    return socket.send(encodeHeader(header).view(), {payload.data(), payload.size()}, sendDeadline);
}

// An answer repeats what was called. One that cannot be understood counts if its sequence number is the call's.
bool isAnswerTo(const Call& call, const obmessage::DecodedFrame& frame)
{
    if ((frame.fault == obmessage::FrameFault::NotAMessage) || (frame.header.kind != obmessage::FrameKind::Answer) ||
        (frame.header.sequenceNumber != call.sequenceNumber)) {
        return false;
    }
    return (frame.fault != obmessage::FrameFault::None) ||
           (isOfInterface(frame.header, call.interface) && (frame.header.operation == call.operation));
}

int resultOf(const obmessage::DecodedFrame& answer)
{
    return (answer.fault == obmessage::FrameFault::None) ? answer.header.timeoutOrResult : resultOfFault(answer.fault);
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
    Subscription(const std::string& serviceName, const obmessage::Route& route)
        : m_pServiceName(std::make_shared<const std::string>(serviceName)), m_socket(route)
    {
    }
    virtual ~Subscription() = default;
    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;

    /// Like OBproxy::call.
    virtual int call(Call& call, buffer_t& payload, int& result) = 0;

    virtual bool isConnected() { return m_socket.isConnected(); }

    std::uint64_t droppedAnswers() const { return m_droppedAnswers; }

protected:
    std::uint64_t nextSequenceNumber() { return ++m_lastSequenceNumber; }

    void dropAnswer(const obmessage::DecodedFrame& frame)
    {
        ++m_droppedAnswers;
        if (frame.fault == obmessage::FrameFault::NotAMessage) {
            LOG_MESSAGE_WARNING("service %s: dropped what is not a message", m_pServiceName->c_str());
        } else {
            LOG_MESSAGE_WARNING("service %s: dropped a late or foreign answer, sequence number %llu",
                                m_pServiceName->c_str(), static_cast<unsigned long long>(frame.header.sequenceNumber));
        }
    }

    const std::shared_ptr<const std::string> m_pServiceName;
    obmessage::CallerSocket m_socket;

private:
    std::uint64_t m_lastSequenceNumber = 0;
    std::uint64_t m_droppedAnswers = 0;
};

class OBproxy::SynchronousSubscription : public Subscription {
public:
    using Subscription::Subscription;

    int call(Call& call, buffer_t& payload, int& result) override
    {
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

class OBproxy::AsynchronousSubscription : public Subscription, private obmessage::DispatchSource {
public:
    AsynchronousSubscription(std::shared_ptr<obmessage::Dispatcher> pDispatcher, const std::string& serviceName,
                             const obmessage::Route& route, OBproxyReplyInterface& reply)
        : Subscription(serviceName, route), m_pDispatcher(std::move(pDispatcher)), m_reply(reply)
    {
        m_pDispatcher->add(*this);
    }

    ~AsynchronousSubscription() override { m_pDispatcher->remove(*this); }

    int call(Call& call, buffer_t& payload, int&) override
    {
        if (m_outstanding.size() >= MAX_OUTSTANDING_REQUESTS) {
            return -1;
        }
        call.sequenceNumber = nextSequenceNumber();
        const bool isSent = sendRequest(m_socket, call, payload, call.deadline);
        if (isSent) {
            m_outstanding.emplace(call.sequenceNumber, call);
        }
        m_pDispatcher->lookAt(*this);
        return isSent ? 0 : -1;
    }

    bool isConnected() override
    {
        const bool isConnectedNow = Subscription::isConnected();
        m_pDispatcher->lookAt(*this);
        return isConnectedNow;
    }

private:
    using Outstanding = std::map<std::uint64_t, Call>;

    int descriptor() const override { return m_socket.descriptor(); }
    bool hasMessage() const override { return m_socket.hasMessage(); }

    bool handleMessage() override
    {
        if (!m_socket.receive(Clock::time_point::min())) {
            return false;
        }
        const obmessage::DecodedFrame frame = obmessage::decodeFrame(m_socket.message());
        const auto outstanding = m_outstanding.find(frame.header.sequenceNumber);
        if ((outstanding == m_outstanding.end()) || !isAnswerTo(outstanding->second, frame)) {
            dropAnswer(frame);
            return true;
        }
        deliver(outstanding, payloadOf(frame), resultOf(frame));
        return true;
    }

    std::optional<Clock::time_point> nextDeadline() const override
    {
        const auto first = firstToExpire();
        return (first == m_outstanding.end()) ? std::nullopt : std::optional(first->second.deadline);
    }

    bool handleDeadline(Clock::time_point now) override
    {
        const auto first = firstToExpire();
        if ((first == m_outstanding.end()) || (first->second.deadline > now)) {
            return false;
        }
        deliver(first, buffer_t(), obResult::TIMEOUT);
        return true;
    }

    Outstanding::const_iterator firstToExpire() const
    {
        return std::min_element(m_outstanding.begin(), m_outstanding.end(), [](const auto& left, const auto& right) {
            return left.second.deadline < right.second.deadline;
        });
    }

    // The handler may destroy this object.
    void deliver(Outstanding::const_iterator outstanding, const buffer_t& payload, int result)
    {
        const Call call = outstanding->second;
        m_outstanding.erase(outstanding);
        const OBmessage request(m_pServiceName, call.operation, call.sequenceNumber, call.timeout, 0);
        m_reply.replyReceived(request, payload, result);
    }

    const std::shared_ptr<obmessage::Dispatcher> m_pDispatcher;
    OBproxyReplyInterface& m_reply;
    Outstanding m_outstanding;
};

OBproxy::OBproxy(OBcomponent& component) : m_pDispatcher(component.m_pDispatcher) {}

OBproxy::~OBproxy() = default;

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
            throw std::runtime_error("the proxy is subscribed already");
        }
        const obmessage::Route route = m_pDispatcher->directory().routeTo(name);
        if (pReply == nullptr) {
            m_pSubscription = std::make_unique<SynchronousSubscription>(name, route);
        } else {
            m_pSubscription = std::make_unique<AsynchronousSubscription>(m_pDispatcher, name, route, *pReply);
        }
        return 0;
    } catch (const std::exception& error) {
        LOG_MESSAGE_ERROR("component %s: cannot subscribe to '%s': %s", m_pDispatcher->componentName().c_str(), name,
                          error.what());
        return -1;
    }
}

bool OBproxy::isConnected() const
{
    return (m_pSubscription != nullptr) && m_pSubscription->isConnected();
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
