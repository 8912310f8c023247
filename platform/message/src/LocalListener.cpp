#include "LocalListener.h"

#include <cstring>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include "SystemError.h"

namespace obmessage {
namespace {

// Few, because callers in the queue get connected even after the socket is hidden.
constexpr int BACKLOG = 16;

// Where a hidden socket is.
std::string hiddenPathOf(const std::string& path)
{
    return path + ".full";
}

[[noreturn]] void throwServed(const std::string& path)
{
    throw std::runtime_error(path + ": already served by another connection");
}

std::string lockPathOf(const std::string& path)
{
    return path + ".lock";
}

// Whether `path` still leads to the open file.
bool isAt(const FileDescriptor& file, const std::string& path)
{
    struct stat own = {};
    struct stat there = {};
    return (::fstat(file.get(), &own) == 0) && (::lstat(path.c_str(), &there) == 0) && (own.st_ino == there.st_ino) &&
           (own.st_dev == there.st_dev);
}

// No value if the lock file was removed while it was locked.
FileDescriptor tryToLock(const std::string& path)
{
    const std::string lockPath = lockPathOf(path);
    FileDescriptor lock(
        ::open(lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NOCTTY, S_IRUSR | S_IWUSR));
    if (!lock) {
        throwSystemError(lockPath);
    }
    if (::flock(lock.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK) {
            throwServed(path);
        }
        throwSystemError(lockPath);
    }
    return isAt(lock, lockPath) ? std::move(lock) : FileDescriptor();
}

FileDescriptor lockOf(const std::string& path)
{
    FileDescriptor lock;
    while (!lock) {
        lock = tryToLock(path);
    }
    // The sticky bit keeps programs that clean runtime directories up away from the file.
    ::fchmod(lock.get(), S_IRUSR | S_IWUSR | S_ISVTX);
    return lock;
}

FileDescriptor unixSocket(const std::string& path, int flags)
{
    FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | flags, 0));
    if (!socket) {
        throwSystemError(path);
    }
    return socket;
}

sockaddr_un addressOf(const std::string& path)
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        throwSystemError(path, ENAMETOOLONG);
    }
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    return address;
}

// 0 if the socket takes the connection.
int errorOfConnecting(const std::string& path)
{
    const FileDescriptor socket = unixSocket(path, SOCK_NONBLOCK);
    const sockaddr_un address = addressOf(path);
    return (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) ? 0 : errno;
}

// While a process listens, its socket takes connections or has a full queue of them.
bool isListenedOn(const std::string& path)
{
    const int error = errorOfConnecting(path);
    return (error == 0) || (error == EAGAIN);
}

// The path may be served although the lock is free: the lock file may have been removed.
void removeStaleSocket(const std::string& path)
{
    struct stat status = {};
    if (::lstat(path.c_str(), &status) != 0) {
        return;
    }
    if (!S_ISSOCK(status.st_mode)) {
        throw std::runtime_error(path + ": not a socket");
    }
    if (isListenedOn(path)) {
        throwServed(path);
    }
    ::unlink(path.c_str());
}

FileDescriptor listenOn(const std::string& path)
{
    FileDescriptor listener = unixSocket(path, 0);
    const sockaddr_un address = addressOf(path);
    // The mode is set before the socket listens: no other user can connect in between.
    if ((::bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) ||
        (::chmod(path.c_str(), S_IRUSR | S_IWUSR) != 0) || (::listen(listener.get(), BACKLOG) != 0)) {
        throwSystemError(path);
    }
    return listener;
}

}  // namespace

bool isAbsent(const std::string& path)
{
    const int error = errorOfConnecting(path);
    struct stat status = {};
    return ((error == ENOENT) || (error == ECONNREFUSED)) && (::lstat(hiddenPathOf(path).c_str(), &status) != 0);
}

LocalListener::LocalListener(const std::string& path) : m_path(path), m_lock(lockOf(path))
{
    removeStaleSocket(hiddenPathOf(path));
    removeStaleSocket(path);
    m_socket = listenOn(path);
}

LocalListener::~LocalListener()
{
    // Before the lock is released: after that it may be a successor's socket.
    if (isAt(m_lock, lockPathOf(m_path))) {
        ::unlink(m_path.c_str());
        ::unlink(hiddenPathOf(m_path).c_str());
    }
}

void LocalListener::setOpen(bool isOpen)
{
    const std::string hiddenPath = hiddenPathOf(m_path);
    if (isAt(m_lock, lockPathOf(m_path))) {
        static_cast<void>(::rename((isOpen ? hiddenPath : m_path).c_str(), (isOpen ? m_path : hiddenPath).c_str()));
    }
}

}  // namespace obmessage
