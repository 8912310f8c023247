#include "Sockets.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <thread>

#include <zmq.hpp>

#include "ClientGate.h"
#include "ConnectionCap.h"
#include "Directory.h"
#include "Keys.h"
#include "LocalListener.h"
#include "Resources.h"

namespace obmessage {
namespace {

// Room for any message of ours and for some that are too long, so that those can be answered. A peer that announces
// more is disconnected before anything is allocated for it.
constexpr std::int64_t MAX_MESSAGE_LENGTH = 16384;

// A service that comes back is found again within this time.
constexpr int MIN_RECONNECT_INTERVAL_MS = 50;
constexpr int MAX_RECONNECT_INTERVAL_MS = 500;

// How often a waiting caller checks its connection: often enough to see that it was lost before it is made again.
constexpr int CONNECTION_CHECK_INTERVAL_MS = 20;

// Peers on other hosts can vanish without a word.
constexpr int HEARTBEAT_INTERVAL_MS = 2000;
constexpr int HEARTBEAT_TIMEOUT_MS = 6000;
constexpr int HANDSHAKE_TIMEOUT_MS = 5000;
constexpr int CONNECT_TIMEOUT_MS = 3000;

// How long answers may take to leave after their service is destroyed.
constexpr int SERVICE_LINGER_MS = 200;

constexpr std::chrono::milliseconds PORT_WAIT{1000};

constexpr int MAX_WAIT_MS = 3600 * 1000;  // longer waits are made of several

constexpr const char* IPC = "ipc://";

class Context {
public:
    /// With room for a socket and its connections, which need this many `descriptors`.
    static std::shared_ptr<Context> ofProcess(std::size_t descriptors)
    {
        const std::lock_guard<std::mutex> lock(existing().mutex);
        std::shared_ptr<Context> pContext = existing().pContext.lock();
        const bool isNew = pContext == nullptr;
        requireDescriptors(descriptors + (isNew ? DESCRIPTORS_OF_CONTEXT : 0));
        if (isNew) {
            requireThreads(THREADS);
        }
        requireMemory(MEMORY_OF_SOCKET + (isNew ? MEMORY_OF_CONTEXT : 0));
        if (isNew) {
            pContext = std::make_shared<Context>();
            existing().pContext = pContext;
        }
        return pContext;
    }

    /// Throws std::runtime_error if there is none yet and its threads cannot be started.
    static void requireThreadsIfNew()
    {
        const std::lock_guard<std::mutex> lock(existing().mutex);
        if (existing().pContext.expired()) {
            requireThreads(THREADS);
        }
    }

    ~Context() { m_context.shutdown(); }  // which ends the gate's thread

    zmq::context_t& zmq() { return m_context; }

    zmq::socket_t makeSocket(zmq::socket_type type) { return zmq::socket_t(m_context, type); }

    ClientGate& gate()
    {
        const std::lock_guard<std::mutex> lock(m_gateMutex);
        if (!m_gate) {
            m_gate.emplace(m_context);
        }
        return *m_gate;
    }

private:
    static constexpr int IO_THREADS = 1;
    static constexpr std::size_t THREADS = IO_THREADS + 1;  // ZeroMQ starts them with the first socket

    struct Existing {
        std::mutex mutex;
        std::weak_ptr<Context> pContext;
    };
    static Existing& existing()
    {
        static Existing context;
        return context;
    }

    zmq::context_t m_context{IO_THREADS};
    std::mutex m_gateMutex;
    std::optional<ClientGate> m_gate;
};

// Milliseconds from now to `deadline`, rounded up; 0 when it is over.
int waitUntil(Clock::time_point deadline)
{
    const Clock::time_point now = Clock::now();
    if (deadline <= now) {
        return 0;
    }
    const auto remaining = std::chrono::ceil<std::chrono::milliseconds>(deadline - now).count();
    return static_cast<int>(std::min<std::int64_t>(remaining, MAX_WAIT_MS));
}

zmq::message_t joined(ByteView header, ByteView payload)
{
    zmq::message_t message(header.length + payload.length);
    auto* const pBytes = message.data<unsigned char>();
    std::memcpy(pBytes, header.pBytes, header.length);
    if (payload.length != 0) {
        std::memcpy(pBytes + header.length, payload.pBytes, payload.length);
    }
    return message;
}

// zmq_msg_send and zmq_msg_recv, not cppzmq's, which throw for a signal that interrupts: usual here.
bool sendPart(zmq::socket_t& socket, zmq::message_t& part, int flags)
{
    return zmq_msg_send(part.handle(), socket.handle(), flags) >= 0;
}

bool receivePart(zmq::socket_t& socket, zmq::message_t& part, int flags)
{
    return zmq_msg_recv(part.handle(), socket.handle(), flags) >= 0;
}

bool isWorthAnotherTry(int error, int wait)
{
    return (error == EINTR) || ((error == EAGAIN) && (wait > 0));
}

bool sendPartNow(zmq::socket_t& socket, zmq::message_t& part, int flags)
{
    while (!sendPart(socket, part, flags | ZMQ_DONTWAIT)) {
        if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

bool receivePartNow(zmq::socket_t& socket, zmq::message_t& part)
{
    while (!receivePart(socket, part, ZMQ_DONTWAIT)) {
        if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

// Drops what follows the first part of a message that should have only one; the message then counts as empty.
void dropFurtherParts(zmq::socket_t& socket, zmq::message_t& message)
{
    if (!message.more()) {
        return;
    }
    while (message.more() && receivePartNow(socket, message)) {
    }
    message.rebuild();
}

ByteView viewOf(const zmq::message_t& message)
{
    return {message.data<unsigned char>(), message.size()};
}

void setCommonOptions(zmq::socket_t& socket, const std::string& endpoint)
{
    socket.set(zmq::sockopt::maxmsgsize, MAX_MESSAGE_LENGTH);
    socket.set(zmq::sockopt::handshake_ivl, HANDSHAKE_TIMEOUT_MS);
    if (endpoint.compare(0, 3, "tcp") == 0) {
        socket.set(zmq::sockopt::ipv6, endpoint.find('[') != std::string::npos);
        socket.set(zmq::sockopt::heartbeat_ivl, HEARTBEAT_INTERVAL_MS);
        socket.set(zmq::sockopt::heartbeat_timeout, HEARTBEAT_TIMEOUT_MS);
        socket.set(zmq::sockopt::connect_timeout, CONNECT_TIMEOUT_MS);
    }
}

void setOwnKeys(zmq::socket_t& socket, const std::string& keyFile)
{
    const KeyPair keys = readKeyPair(keyFile);
    socket.set(zmq::sockopt::curve_publickey, keys.publicKey);
    socket.set(zmq::sockopt::curve_secretkey, keys.secretKey);
}

// Waits for a predecessor in this process, which gives up its port in the background.
void bind(zmq::socket_t& socket, const std::string& endpoint)
{
    const Clock::time_point deadline = Clock::now() + PORT_WAIT;
    while (zmq_bind(socket.handle(), endpoint.c_str()) != 0) {
        if ((errno != EADDRINUSE) || (Clock::now() >= deadline)) {
            throw std::runtime_error("'" + endpoint + "' cannot be served: " + zmq_strerror(errno));
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

bool hasEvent(const zmq::socket_t& socket, int event)
{
    return (socket.get(zmq::sockopt::events) & event) != 0;
}

}  // namespace

void requireRoomForCallers(std::size_t count)
{
    requireDescriptors(DESCRIPTORS_OF_CONTEXT + count * DESCRIPTORS_OF_CALLER);
    Context::requireThreadsIfNew();
    requireMemory(MEMORY_OF_CONTEXT + count * MEMORY_OF_SOCKET);
}

struct CallerSocket::Impl {
    Impl(const Route& route, ConnectionWatch::Events events) : watch(pContext->zmq(), socket, route, events) {}

    std::shared_ptr<Context> pContext = Context::ofProcess(DESCRIPTORS_OF_CALLER);
    zmq::socket_t socket = pContext->makeSocket(zmq::socket_type::dealer);
    ConnectionWatch watch;
    zmq::message_t message;
};

CallerSocket::CallerSocket(const Route& route, ConnectionWatch::Events events)
    : m_pImpl(std::make_unique<Impl>(route, events))
{
    zmq::socket_t& socket = m_pImpl->socket;
    setCommonOptions(socket, route.endpoint);
    socket.set(zmq::sockopt::linger, 0);
    socket.set(zmq::sockopt::rcvtimeo, CONNECTION_CHECK_INTERVAL_MS);
    socket.set(zmq::sockopt::immediate, true);  // nothing is queued for a service that is not there
    socket.set(zmq::sockopt::reconnect_ivl, MIN_RECONNECT_INTERVAL_MS);
    socket.set(zmq::sockopt::reconnect_ivl_max, MAX_RECONNECT_INTERVAL_MS);
    if (!route.ownKeyFile.empty()) {
        if (route.serviceKey.empty()) {
            throw std::runtime_error("the directory gives no service-key= to call '" + route.endpoint + "' with");
        }
        setOwnKeys(socket, route.ownKeyFile);
        socket.set(zmq::sockopt::curve_serverkey, route.serviceKey);
    }
    try {
        socket.connect(route.endpoint);
    } catch (const zmq::error_t& error) {
        throw std::runtime_error("'" + route.endpoint + "' cannot be connected to: " + error.what());
    }
}

CallerSocket::~CallerSocket() = default;

bool CallerSocket::send(ByteView header, ByteView payload, Clock::time_point deadline)
{
    zmq::message_t message = joined(header, payload);
    if (sendPartNow(m_pImpl->socket, message, 0)) {
        return true;
    }
    int wait = 0;
    do {
        wait = waitUntil(deadline);
        m_pImpl->socket.set(zmq::sockopt::sndtimeo, wait);
        if (sendPart(m_pImpl->socket, message, 0)) {
            return true;
        }
    } while (isWorthAnotherTry(errno, wait));
    return false;
}

bool CallerSocket::receive(Clock::time_point deadline)
{
    zmq::socket_t& socket = m_pImpl->socket;
    int wait = waitUntil(deadline);
    while (!receivePart(socket, m_pImpl->message, (wait == 0) ? ZMQ_DONTWAIT : 0)) {
        if (!isWorthAnotherTry(errno, wait) || !isConnected()) {
            return false;
        }
        wait = waitUntil(deadline);
    }
    dropFurtherParts(socket, m_pImpl->message);
    return true;
}

bool CallerSocket::isConnected() const
{
    return hasEvent(m_pImpl->socket, ZMQ_POLLOUT);
}

ConnectionWatch& CallerSocket::watch()
{
    return m_pImpl->watch;
}

const ConnectionWatch& CallerSocket::watch() const
{
    return m_pImpl->watch;
}

ByteView CallerSocket::message() const
{
    return viewOf(m_pImpl->message);
}

int CallerSocket::descriptor() const
{
    return m_pImpl->socket.get(zmq::sockopt::fd);
}

bool CallerSocket::hasWork(bool wantsToSend) const
{
    return hasEvent(m_pImpl->socket, wantsToSend ? (ZMQ_POLLIN | ZMQ_POLLOUT) : ZMQ_POLLIN);
}

struct ServiceSocket::Impl {
    std::shared_ptr<Context> pContext = Context::ofProcess(DESCRIPTORS_OF_SERVICE);
    std::optional<LocalListener> listener;  // outlives the socket
    zmq::socket_t socket = pContext->makeSocket(zmq::socket_type::router);
    std::optional<ConnectionCap> cap;
    zmq::message_t sender;
    zmq::message_t message;
};

ServiceSocket::ServiceSocket(const Route& route, const std::string& serviceName) : m_pImpl(std::make_unique<Impl>())
{
    zmq::socket_t& socket = m_pImpl->socket;
    setCommonOptions(socket, route.endpoint);
    socket.set(zmq::sockopt::linger, SERVICE_LINGER_MS);
    socket.set(zmq::sockopt::router_mandatory, true);  // a caller that is gone is noticed
    if (!route.ownKeyFile.empty()) {
        if (route.clientsFile.empty()) {
            throw std::runtime_error("the directory gives no clients= to serve '" + route.endpoint + "' to");
        }
        m_pImpl->pContext->gate().setClients(serviceName, readPublicKeys(route.clientsFile));
        socket.set(zmq::sockopt::zap_domain, serviceName);
        socket.set(zmq::sockopt::curve_server, true);
        setOwnKeys(socket, route.ownKeyFile);
    }
    if (route.endpoint.compare(0, std::strlen(IPC), IPC) == 0) {
        m_pImpl->listener.emplace(route.endpoint.substr(std::strlen(IPC)));
        socket.set(zmq::sockopt::use_fd, m_pImpl->listener->socket());
    }
    m_pImpl->cap.emplace(m_pImpl->pContext->zmq(), socket, serviceName,
                         m_pImpl->listener ? &*m_pImpl->listener : nullptr);
    bind(socket, route.endpoint);
    if (m_pImpl->listener) {
        m_pImpl->listener->releaseSocket();
    }
}

ServiceSocket::~ServiceSocket() = default;

bool ServiceSocket::receive()
{
    if (!receivePartNow(m_pImpl->socket, m_pImpl->sender) || !receivePartNow(m_pImpl->socket, m_pImpl->message)) {
        return false;
    }
    dropFurtherParts(m_pImpl->socket, m_pImpl->message);
    return true;
}

SocketEvents& ServiceSocket::connections()
{
    return *m_pImpl->cap;
}

std::string ServiceSocket::sender() const
{
    return m_pImpl->sender.to_string();
}

ByteView ServiceSocket::message() const
{
    return viewOf(m_pImpl->message);
}

bool ServiceSocket::send(const std::string& receiver, ByteView header, ByteView payload)
{
    zmq::message_t receiverPart(receiver.data(), receiver.size());
    zmq::message_t message = joined(header, payload);
    return sendPartNow(m_pImpl->socket, receiverPart, ZMQ_SNDMORE) && sendPartNow(m_pImpl->socket, message, 0);
}

std::string ServiceSocket::endpoint() const
{
    return m_pImpl->socket.get(zmq::sockopt::last_endpoint);
}

int ServiceSocket::descriptor() const
{
    return m_pImpl->socket.get(zmq::sockopt::fd);
}

bool ServiceSocket::hasMessage() const
{
    return hasEvent(m_pImpl->socket, ZMQ_POLLIN);
}

}  // namespace obmessage
