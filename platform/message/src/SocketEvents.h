#ifndef MESSAGE_SOCKET_EVENTS_H
#define MESSAGE_SOCKET_EVENTS_H

// What ZeroMQ reports about a socket's connections.

#include <string>

#include <zmq.hpp>

namespace obmessage {

class SocketEvents {
public:
    /// Reports the events of `socket` in this mask (ZMQ_EVENT_...) from now on. The socket must outlive this. Events
    /// that are not taken pile up. Throws std::runtime_error if that is not possible.
    SocketEvents(zmq::context_t& context, zmq::socket_t& socket, int mask);
    virtual ~SocketEvents();
    SocketEvents(const SocketEvents&) = delete;
    SocketEvents& operator=(const SocketEvents&) = delete;

    /// Becomes readable when there is something for takeEvents().
    int descriptor() const { return m_events.get(zmq::sockopt::fd); }
    bool hasEvents() const { return (m_events.get(zmq::sockopt::events) & ZMQ_POLLIN) != 0; }
    void takeEvents();

protected:
    /// `value` is the connection's descriptor, an error or nothing, depending on the event.
    virtual void takeEvent(int event, int value) = 0;

private:
    zmq::socket_t& m_socket;
    zmq::socket_t m_events;
};

}  // namespace obmessage

#endif
