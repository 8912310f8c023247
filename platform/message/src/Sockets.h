#ifndef MESSAGE_SOCKETS_H
#define MESSAGE_SOCKETS_H

// ZeroMQ, behind a few ownership types; the rest of the framework does not know it, apart from the keys and what
// watches connections. A caller's socket (DEALER) talks to one service; a service's socket (ROUTER) to any number of
// callers. Messages are single-part: anything else is handed over as a message of no bytes.
//
// All sockets of the process share one context, so that inproc endpoints meet. A socket is used on one thread.

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>

#include "ConnectionWatch.h"
#include "Frame.h"

namespace obmessage {

using Clock = std::chrono::steady_clock;

/// Throws std::runtime_error if the process lacks descriptors or memory for `count` CallerSockets or, before its first
/// socket, cannot start ZeroMQ's threads.
void requireRoomForCallers(std::size_t count);

class CallerSocket {
public:
    /// Starts to connect, now and whenever the connection is lost. Throws std::runtime_error if the route cannot be
    /// taken.
    CallerSocket(const Route& route, ConnectionWatch::Events events);
    ~CallerSocket();

    /// Sends one message, header and payload. Waits for the service to be there until `deadline` at most; false if it
    /// is not.
    bool send(ByteView header, ByteView payload, Clock::time_point deadline);

    /// Receives one message into message(). Waits until `deadline` at most, or until the connection, and with it any
    /// message under way, is lost; false if none came.
    bool receive(Clock::time_point deadline);

    /// Whether a message could be sent at once.
    bool isConnected() const;

    /// The state of the attempts to connect.
    ConnectionWatch& watch();
    const ConnectionWatch& watch() const;

    /// The message received last.
    ByteView message() const;

    /// Becomes readable when a message may have arrived since receive() last returned false.
    int descriptor() const;

    /// Whether a message has arrived or, with `wantsToSend`, could be sent at once: that may be so without the
    /// descriptor being readable, after any use of the socket.
    bool hasWork(bool wantsToSend) const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_pImpl;
};

class ServiceSocket {
public:
    /// Binds. Throws std::runtime_error if that is not possible.
    ServiceSocket(const Route& route, const std::string& serviceName);
    ~ServiceSocket();

    /// Receives one message into sender() and message(), without waiting; false if there is none.
    bool receive();

    /// The sender and the message received last. A sender's name is the socket's own, for answers only.
    std::string sender() const;
    ByteView message() const;

    /// Sends one message to a sender, without waiting; false if it is gone or takes no more.
    bool send(const std::string& receiver, ByteView header, ByteView payload);

    /// Its events keep the number of connections within bounds: they must be taken as they come.
    SocketEvents& connections();

    /// Where the socket is bound, with the port that it got in place of a wildcard.
    std::string endpoint() const;

    int descriptor() const;
    bool hasMessage() const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_pImpl;
};

}  // namespace obmessage

#endif
