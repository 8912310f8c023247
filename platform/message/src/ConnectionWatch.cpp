#include "ConnectionWatch.h"

namespace obmessage {
namespace {

// A healthy service answers at once.
constexpr std::chrono::milliseconds HANDSHAKE_PATIENCE{500};

constexpr std::chrono::seconds RETRY_INTERVAL{1};

// After these ZeroMQ does not connect again.
constexpr int REFUSALS = ZMQ_EVENT_HANDSHAKE_FAILED_PROTOCOL | ZMQ_EVENT_HANDSHAKE_FAILED_AUTH;

constexpr int ALL = REFUSALS | ZMQ_EVENT_CONNECTED | ZMQ_EVENT_CLOSED | ZMQ_EVENT_HANDSHAKE_SUCCEEDED |
                    ZMQ_EVENT_HANDSHAKE_FAILED_NO_DETAIL;

}  // namespace

ConnectionWatch::ConnectionWatch(zmq::context_t& context, zmq::socket_t& socket, const Route& route, Events events)
    : SocketEvents(context, socket, (events == Events::ALL) ? ALL : REFUSALS), m_route(route), m_socket(socket)
{
}

void ConnectionWatch::takeEvent(int event, int)
{
    switch (event) {
        case ZMQ_EVENT_CONNECTED: m_handshakeSince = Clock::now(); return;
        case ZMQ_EVENT_HANDSHAKE_FAILED_NO_DETAIL:
            m_obstacle = isHandshakeOverdue() ? reasonOfNoHandshake() : reasonOfBrokenHandshake();
            break;
        case ZMQ_EVENT_HANDSHAKE_FAILED_PROTOCOL:
            m_obstacle = reasonOfBrokenHandshake();
            m_retryTime = Clock::now() + RETRY_INTERVAL;
            break;
        case ZMQ_EVENT_HANDSHAKE_FAILED_AUTH:
            m_obstacle = "'" + m_route.endpoint + "' does not admit the key of " + m_route.ownKeyFile +
                         ": its public key must be in the service's list of clients";
            m_retryTime = Clock::now() + RETRY_INTERVAL;
            break;
        default: m_obstacle.clear(); break;  // connected, or not accepted
    }
    m_handshakeSince.reset();
}

bool ConnectionWatch::isHandshakeOverdue() const
{
    return m_handshakeSince && (Clock::now() >= *m_handshakeSince + HANDSHAKE_PATIENCE);
}

std::string ConnectionWatch::obstacle() const
{
    return isHandshakeOverdue() ? reasonOfNoHandshake() : m_obstacle;
}

std::string ConnectionWatch::reasonOfNoHandshake() const
{
    return "'" + m_route.endpoint + "' takes the connection but does not answer";
}

std::string ConnectionWatch::reasonOfBrokenHandshake() const
{
    const std::string endpoint = "'" + m_route.endpoint + "'";
    return m_route.ownKeyFile.empty()
               ? endpoint + " breaks the connection off: it wants keys or is not a service"
               : endpoint + " breaks the connection off: its key is not service-key=, or it has none";
}

void ConnectionWatch::retryWhenDue(Clock::time_point now)
{
    if (!m_retryTime || (*m_retryTime > now)) {
        return;
    }
    m_retryTime.reset();
    zmq_disconnect(m_socket.handle(), m_route.endpoint.c_str());
    m_socket.connect(m_route.endpoint);
}

}  // namespace obmessage
