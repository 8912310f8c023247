#include "message/OBconnection.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "Dispatcher.h"
#include "EventSource.h"
#include "Frame.h"
#include "Log.h"
#include "OutstandingRequests.h"
#include "message/OBcomponent.h"

using obmessage::Clock;

class OBconnection::Service : private obmessage::DispatchSource {
public:
    Service(std::shared_ptr<obmessage::Dispatcher> pDispatcher, const char* serviceName, const OBinterface& interface,
            OBconnection& connection)
        : m_pServiceName(std::make_shared<const std::string>(serviceName)),
          m_interface(interface),
          m_connection(connection),
          m_pDispatcher(std::move(pDispatcher)),
          m_socket(m_pDispatcher->directory().routeTo(serviceName), serviceName),
          m_connections(*m_pDispatcher, m_socket.connections())
    {
        m_pDispatcher->add(*this);
    }

    ~Service() override { m_pDispatcher->remove(*this); }
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    const std::string& name() const { return *m_pServiceName; }
    std::string endpoint() const { return m_socket.endpoint(); }
    std::uint64_t droppedMessages() const { return m_droppedMessages; }

    bool reply(std::uint64_t ticket, const buffer_t& payload, int result)
    {
        const std::optional<OpenRequest> request = m_openRequests.take(ticket);
        if (!request) {
            return false;
        }
        return answer(request->sender,
                      {obmessage::FrameKind::ANSWER, request->sequenceNumber, result, request->operation,
                       m_interface.majorVersion, m_interface.minorVersion, m_interface.name},
                      {payload.data(), payload.size()});
    }

    void giveUp(std::uint64_t ticket) { m_openRequests.take(ticket); }

private:
    struct OpenRequest {
        std::string sender;
        std::uint64_t sequenceNumber;
        std::uint8_t operation;
        Clock::time_point deadline;
    };

    int descriptor() const override { return m_socket.descriptor(); }
    bool hasWork() const override { return m_socket.hasMessage(); }

    bool handleMessage() override
    {
        if (!m_socket.receive()) {
            return false;
        }
        const obmessage::DecodedFrame frame = obmessage::decodeFrame(m_socket.message());
        if ((frame.fault == obmessage::FrameFault::NOT_A_MESSAGE) ||
            (frame.header.kind != obmessage::FrameKind::REQUEST)) {
            ++m_droppedMessages;
            LOG_MESSAGE_WARNING("service %s: dropped what is not a request", name().c_str());
        } else if (frame.fault != obmessage::FrameFault::NONE) {
            refuseBroken(frame.header, resultOfFault(frame.fault));
        } else if (!isOfInterface(frame.header, m_interface)) {
            refuse(frame.header, obResult::GENERAL_ERROR, "another interface or version");
        } else if (m_openRequests.isFull()) {
            refuse(frame.header, obResult::INTERNAL_ERROR, "too many open requests");
        } else {
            handleRequest(frame);
        }
        return true;
    }

    // The handler may destroy this object.
    void handleRequest(const obmessage::DecodedFrame& frame)
    {
        const std::uint64_t ticket = ++m_lastTicket;
        const int timeout = frame.header.timeoutOrResult;
        m_openRequests.add(ticket, {m_socket.sender(), frame.header.sequenceNumber, frame.header.operation,
                                    Clock::now() + std::chrono::seconds(std::max(timeout, 0))});
        const OBmessage request(m_pServiceName, frame.header.operation, frame.header.sequenceNumber, timeout, ticket);
        try {
            m_connection.requestReceived(request, buffer_t(frame.payload.pBytes, frame.payload.length));
        } catch (const std::exception& error) {
            LOG_MESSAGE_ERROR("service %s: a request failed: %s", name().c_str(), error.what());
            reply(ticket, buffer_t(), obResult::INTERNAL_ERROR);
        }
    }

    // The answer repeats the header of the request.
    void refuse(obmessage::FrameHeader header, int result, const char* reason)
    {
        LOG_MESSAGE_WARNING("service %s: refused a request: %s", name().c_str(), reason);
        header.kind = obmessage::FrameKind::ANSWER;
        header.timeoutOrResult = result;
        answer(m_socket.sender(), header, {nullptr, 0});
    }

    void refuseBroken(obmessage::FrameHeader header, int result)
    {
        header.operation = 0;
        header.majorVersion = m_interface.majorVersion;
        header.minorVersion = m_interface.minorVersion;
        header.interfaceName = m_interface.name;
        refuse(header, result, "not understood, too long or too short");
    }

    bool answer(const std::string& sender, const obmessage::FrameHeader& header, obmessage::ByteView payload)
    {
        const bool isSent = m_socket.send(sender, encodeHeader(header).view(), payload);
        if (!isSent) {
            LOG_MESSAGE_WARNING("service %s: the caller of request %llu is gone", name().c_str(),
                                static_cast<unsigned long long>(header.sequenceNumber));
        }
        m_pDispatcher->lookAt(*this);
        return isSent;
    }

    std::optional<Clock::time_point> nextDeadline() const override { return m_openRequests.nextDeadline(); }

    bool handleDeadline(Clock::time_point now) override
    {
        const auto ticket = m_openRequests.expiredAt(now);
        if (ticket) {
            reply(*ticket, buffer_t(), obResult::TIMEOUT);
        }
        return ticket.has_value();
    }

    const std::shared_ptr<const std::string> m_pServiceName;
    const OBinterface m_interface;
    OBconnection& m_connection;
    const std::shared_ptr<obmessage::Dispatcher> m_pDispatcher;
    obmessage::ServiceSocket m_socket;
    obmessage::EventSource m_connections;
    obmessage::OutstandingRequests<OpenRequest> m_openRequests;  // by ticket
    std::uint64_t m_lastTicket = 0;
    std::uint64_t m_droppedMessages = 0;
};

OBconnection::OBconnection(OBcomponent& component, const char* serviceName, const OBinterface& interface)
    : m_pService(std::make_unique<Service>(component.m_pDispatcher, serviceName, interface, *this))
{
}

OBconnection::~OBconnection() = default;

const std::string& OBconnection::serviceName() const
{
    return m_pService->name();
}

std::string OBconnection::endpoint() const
{
    return m_pService->endpoint();
}

bool OBconnection::reply(const OBmessage& request, const buffer_t& payload, int result)
{
    return m_pService->reply(request.ticket(), payload, result);
}

void OBconnection::giveUp(const OBmessage& request)
{
    m_pService->giveUp(request.ticket());
}

std::uint64_t OBconnection::droppedMessages() const
{
    return m_pService->droppedMessages();
}

void OBconnection::requestReceived(const OBmessage& request, const buffer_t&)
{
    LOG_NEVER_CALLED();
    reply(request, buffer_t(), obResult::INTERNAL_ERROR);
}
