#include "LocalListener.h"

#include <cstring>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include "SystemError.h"

namespace obmessage {
namespace {

constexpr int BACKLOG = 100;

FileDescriptor lockOf(const std::string& path)
{
    const std::string lockPath = path + ".lock";
    FileDescriptor lock(
        ::open(lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NOCTTY, S_IRUSR | S_IWUSR));
    if (!lock) {
        throwSystemError(lockPath);
    }
    if (::flock(lock.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK) {
            throw std::runtime_error(path + ": served by another connection already");
        }
        throwSystemError(lockPath);
    }
    return lock;
}

void removeStaleSocket(const std::string& path)
{
    struct stat status = {};
    if (::lstat(path.c_str(), &status) != 0) {
        return;
    }
    if (!S_ISSOCK(status.st_mode)) {
        throw std::runtime_error(path + ": there is something that is not a socket");
    }
    ::unlink(path.c_str());
}

FileDescriptor listenOn(const std::string& path)
{
    FileDescriptor listener(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!listener) {
        throwSystemError(path);
    }
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        throwSystemError(path, ENAMETOOLONG);
    }
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    // The mode is set before the socket listens: nobody else can connect in between.
    if ((::bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) ||
        (::chmod(path.c_str(), S_IRUSR | S_IWUSR) != 0) || (::listen(listener.get(), BACKLOG) != 0)) {
        throwSystemError(path);
    }
    return listener;
}

}  // namespace

LocalListener::LocalListener(const std::string& path) : m_path(path), m_lock(lockOf(path))
{
    removeStaleSocket(path);
    m_socket = listenOn(path);
}

LocalListener::~LocalListener()
{
    // Before the lock goes, so that it cannot be a successor's socket.
    ::unlink(m_path.c_str());
}

}  // namespace obmessage
