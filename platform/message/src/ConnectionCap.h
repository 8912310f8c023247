#ifndef MESSAGE_CONNECTION_CAP_H
#define MESSAGE_CONNECTION_CAP_H

// Keeps the number of a service's connections below what its process has descriptors for. ZeroMQ accepts every
// connection, and without a descriptor for one it ends the process (ipc) or retries without a pause (tcp). So when
// there are many, the endpoint is hidden from new callers until some have gone; those that are connected are served.

#include <cstddef>
#include <set>
#include <string>

#include "LocalListener.h"
#include "SocketEvents.h"

namespace obmessage {

/// The most connections that a service accepts; fewer if the process may have less than eight times as many
/// descriptors.
constexpr std::size_t MAX_CONNECTIONS = 256;

class ConnectionCap : public SocketEvents {
public:
    /// For `socket`, which is to be bound afterwards; at `pListener`, or to tcp if that is null.
    ConnectionCap(zmq::context_t& context, zmq::socket_t& socket, const std::string& serviceName,
                  LocalListener* pListener);

private:
    void takeEvent(int event, int value) override;
    void setOpen(bool isOpen);

    const std::string m_serviceName;
    LocalListener* const m_pListener;
    const std::size_t m_cap;
    int m_tcpListener = -1;
    std::set<int> m_connections;  // descriptors
    bool m_isOpen = true;
};

}  // namespace obmessage

#endif
