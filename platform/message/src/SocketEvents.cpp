#include "SocketEvents.h"

#include <atomic>
#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace obmessage {
namespace {

bool receive(zmq::socket_t& socket, zmq::message_t& part)
{
    return zmq_msg_recv(part.handle(), socket.handle(), ZMQ_DONTWAIT) >= 0;
}

}  // namespace

SocketEvents::SocketEvents(zmq::context_t& context, zmq::socket_t& socket, int mask)
    : m_socket(socket), m_events(context, zmq::socket_type::pair)
{
    // A name stays in use for a while after its socket is gone. 32 bits, since not every processor counts 64
    // atomically.
    static std::atomic<std::uint32_t> last{0};
    const std::string name = "inproc://events-" + std::to_string(++last);
    if (zmq_socket_monitor(socket.handle(), name.c_str(), mask) != 0) {
        throw std::runtime_error(std::string("no events of a socket: ") + zmq_strerror(zmq_errno()));
    }
    m_events.set(zmq::sockopt::linger, 0);
    m_events.set(zmq::sockopt::rcvhwm, 0);  // a queue that is full would stop ZeroMQ's thread
    m_events.connect(name);
}

SocketEvents::~SocketEvents()
{
    // First, because an event that has no receiver stops ZeroMQ's thread.
    zmq_socket_monitor(m_socket.handle(), nullptr, 0);
}

// An event is two parts: number and value, and an address.
void SocketEvents::takeEvents()
{
    zmq::message_t event;
    zmq::message_t address;
    while (receive(m_events, event) && receive(m_events, address)) {
        std::uint16_t number = 0;
        std::int32_t value = 0;
        std::memcpy(&number, event.data(), sizeof number);
        std::memcpy(&value, event.data<unsigned char>() + sizeof number, sizeof value);
        takeEvent(number, value);
    }
}

}  // namespace obmessage
