#include "ConnectionCap.h"

#include <algorithm>

#include <linux/filter.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include "Log.h"

namespace obmessage {
namespace {

constexpr int EVENTS = ZMQ_EVENT_LISTENING | ZMQ_EVENT_ACCEPTED | ZMQ_EVENT_DISCONNECTED;

// The rest is for other services, and for connections that are made before they are counted.
constexpr rlim_t SHARE_OF_DESCRIPTORS = 8;

std::size_t capOfProcess()
{
    rlimit limit = {};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    return static_cast<std::size_t>(
        std::clamp<rlim_t>(limit.rlim_cur / SHARE_OF_DESCRIPTORS, 1, static_cast<rlim_t>(MAX_CONNECTIONS)));
}

// A listening socket whose filter lets nothing through makes no connections. To open it, a filter that lets everything
// through takes its place: emulators of other processors support attaching only.
void setFilter(int listener, bool isOpen)
{
    constexpr unsigned int NOTHING = 0;
    constexpr unsigned int EVERYTHING = 0xFFFFFFFF;
    sock_filter keep = {BPF_RET | BPF_K, 0, 0, isOpen ? EVERYTHING : NOTHING};
    const sock_fprog program = {1, &keep};
    ::setsockopt(listener, SOL_SOCKET, SO_ATTACH_FILTER, &program, sizeof program);
}

}  // namespace

ConnectionCap::ConnectionCap(zmq::context_t& context, zmq::socket_t& socket, const std::string& serviceName,
                             LocalListener* pListener)
    : SocketEvents(context, socket, EVENTS), m_serviceName(serviceName), m_pListener(pListener), m_cap(capOfProcess())
{
}

void ConnectionCap::takeEvent(int event, int value)
{
    switch (event) {
        case ZMQ_EVENT_LISTENING: m_tcpListener = value; break;
        case ZMQ_EVENT_ACCEPTED: m_connections.insert(value); break;
        default: m_connections.erase(value); break;
    }
    if (m_isOpen && (m_connections.size() >= m_cap)) {
        LOG_MESSAGE_WARNING("service %s: no more than its %zu connections are taken", m_serviceName.c_str(), m_cap);
        setOpen(false);
    } else if (!m_isOpen && (m_connections.size() <= m_cap - m_cap / 4 - 1)) {
        LOG_MESSAGE_WARNING("service %s: connections are taken again", m_serviceName.c_str());
        setOpen(true);
    }
}

void ConnectionCap::setOpen(bool isOpen)
{
    m_isOpen = isOpen;
    if (m_pListener != nullptr) {
        m_pListener->setOpen(isOpen);
    } else {
        setFilter(m_tcpListener, isOpen);
    }
}

}  // namespace obmessage
