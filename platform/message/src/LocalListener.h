#ifndef MESSAGE_LOCAL_LISTENER_H
#define MESSAGE_LOCAL_LISTENER_H

// The listening socket of a service on this host. ZeroMQ would bind over a socket that somebody else serves and, when a
// service goes, remove the path in the background, perhaps a successor's; so path and socket are made here, and ZeroMQ
// takes the listening socket over.
//
// A lock file beside the socket says that the service is served; it goes with the process that holds it, however that
// ends, and a socket left behind by a dead process is replaced.

#include <string>

#include "FileDescriptor.h"

namespace obmessage {

class LocalListener {
public:
    /// Listens on `path`, for this user alone. Throws std::runtime_error if the path is served already or is not a
    /// socket.
    explicit LocalListener(const std::string& path);

    /// Removes the path.
    ~LocalListener();
    LocalListener(const LocalListener&) = delete;
    LocalListener& operator=(const LocalListener&) = delete;

    /// The listening socket, and giving it up to a new owner.
    int socket() const { return m_socket.get(); }
    void releaseSocket() { m_socket.release(); }

private:
    std::string m_path;
    FileDescriptor m_lock;
    FileDescriptor m_socket;
};

}  // namespace obmessage

#endif
