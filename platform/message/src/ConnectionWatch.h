#ifndef MESSAGE_CONNECTION_WATCH_H
#define MESSAGE_CONNECTION_WATCH_H

// Watches a caller's attempts to connect. ZeroMQ makes them in the background, again and again, and reports each; after
// some failures it gives up, and a new attempt must be started.

#include <chrono>
#include <optional>
#include <string>

#include <zmq.hpp>

#include "Directory.h"
#include "SocketEvents.h"

namespace obmessage {

class ConnectionWatch : public SocketEvents {
public:
    using Clock = std::chrono::steady_clock;

    /// REFUSALS: at most one event until the next attempt, for a caller that does not dispatch.
    enum class Events { REFUSALS, ALL };

    /// Watches `socket`, which is to be connected to `route` afterwards.
    ConnectionWatch(zmq::context_t& context, zmq::socket_t& socket, const Route& route, Events events);

    /// Why the last attempt failed although the endpoint is served, in words; empty otherwise.
    std::string obstacle() const;

    /// When to start a new attempt, because ZeroMQ has given up.
    std::optional<Clock::time_point> retryTime() const { return m_retryTime; }
    void retryWhenDue(Clock::time_point now);

private:
    void takeEvent(int event, int value) override;
    bool isHandshakeOverdue() const;
    std::string reasonOfNoHandshake() const;
    std::string reasonOfBrokenHandshake() const;

    const Route m_route;
    zmq::socket_t& m_socket;
    std::optional<Clock::time_point> m_handshakeSince;
    std::optional<Clock::time_point> m_retryTime;
    std::string m_obstacle;
};

}  // namespace obmessage

#endif
