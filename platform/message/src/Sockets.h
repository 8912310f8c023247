#ifndef MESSAGE_SOCKETS_H
#define MESSAGE_SOCKETS_H

// ZeroMQ, behind a few ownership types; nothing else in the framework knows it. A caller's socket (DEALER) talks to one
// service; a service's socket (ROUTER) to any number of callers. Messages are single-part: anything else is handed over
// as a message of no bytes.
//
// All sockets of the process share one context, so that inproc endpoints meet. A socket is used on one thread.

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>

#include "Frame.h"

namespace obmessage {

using Clock = std::chrono::steady_clock;

struct Route;

struct KeyPair {
    std::string publicKey;
    std::string secretKey;
};

/// Keys are text of 40 characters each.
KeyPair createKeyPair();
bool isKey(const std::string& text);

class CallerSocket {
public:
    /// Starts to connect, now and whenever the connection is lost. Throws std::runtime_error if the route cannot be
    /// taken.
    explicit CallerSocket(const Route& route);
    ~CallerSocket();

    /// Sends one message, header and payload. Waits for the service to be there until `deadline` at most; false if it
    /// is not.
    bool send(ByteView header, ByteView payload, Clock::time_point deadline);

    /// Receives one message into message(). Waits until `deadline` at most, or until the connection is lost and with it
    /// whatever was under way; false if none came.
    bool receive(Clock::time_point deadline);

    /// Whether a message could be sent at once.
    bool isConnected() const;

    /// The message received last.
    ByteView message() const;

    /// Becomes readable when a message may have arrived since receive() last returned false.
    int descriptor() const;

    /// Whether a message has arrived: it may have done so without the descriptor being readable, after a send.
    bool hasMessage() const;

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

    /// Whom and what was received last. A sender's name is the socket's own and good for answers only.
    std::string sender() const;
    ByteView message() const;

    /// Sends one message to a sender, without waiting; false if it is no longer there or takes no more.
    bool send(const std::string& receiver, ByteView header, ByteView payload);

    /// Where the socket is bound: a wildcard port is the one that it got.
    std::string endpoint() const;

    int descriptor() const;
    bool hasMessage() const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_pImpl;
};

}  // namespace obmessage

#endif
