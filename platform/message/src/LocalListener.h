#ifndef MESSAGE_LOCAL_LISTENER_H
#define MESSAGE_LOCAL_LISTENER_H

// The listening socket of a service on this host. ZeroMQ would bind over a socket that another process serves and, when
// a service ends, remove the path in the background, perhaps a successor's; so path and socket are made here, and
// ZeroMQ takes over the listening socket.
//
// A lock file next to the socket shows that the service is served; the lock is released when its process ends, in
// whatever way, and a socket left behind by a dead process is replaced. If the lock file was removed, a socket that is
// listened on is left alone, and a listener that lost its lock removes no socket.

#include <string>

#include "FileDescriptor.h"

namespace obmessage {

class LocalListener {
public:
    /// Listens on `path`, for this user alone. Throws std::runtime_error if the path is already served or is not a
    /// socket.
    explicit LocalListener(const std::string& path);

    /// Removes the path, if the lock is still there.
    ~LocalListener();
    LocalListener(const LocalListener&) = delete;
    LocalListener& operator=(const LocalListener&) = delete;

    /// Lets callers find the socket, or hides it from them; at first they find it.
    void setOpen(bool isOpen);

    /// The listening socket, and its release to a new owner.
    int socket() const { return m_socket.get(); }
    void releaseSocket() { m_socket.release(); }

private:
    std::string m_path;
    FileDescriptor m_lock;
    FileDescriptor m_socket;
};

/// Whether it is certain that no process listens on `path`. Throws std::runtime_error if that cannot be found out.
bool isAbsent(const std::string& path);

}  // namespace obmessage

#endif
