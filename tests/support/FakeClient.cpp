#include "support/FakeClient.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

using namespace std::string_literals;

// Connects, or waits for it: long enough for a second try of TCP's.
bool connectSoon(int socket, const sockaddr* pAddress, socklen_t length)
{
    const timeval patience = {1, 500'000};
    ::setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
    return ::connect(socket, pAddress, length) == 0;
}

int connectedSocket(const std::string& endpoint)
{
    const std::string rest = endpoint.substr(std::string("ipc://").size());
    const bool isLocal = endpoint.compare(0, 3, "ipc") == 0;
    const int socket = ::socket(isLocal ? AF_UNIX : AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    bool isConnected = false;
    if (isLocal) {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        rest.copy(address.sun_path, sizeof address.sun_path - 1);
        isConnected = connectSoon(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    } else {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(static_cast<in_port_t>(std::atoi(rest.substr(rest.rfind(':') + 1).c_str())));
        isConnected = connectSoon(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    }
    if (!isConnected) {
        ::close(socket);
        return -1;
    }
    return socket;
}

bool isOpen(int connection)
{
    char bytes[4096];
    for (;;) {
        const ssize_t length = ::recv(connection, bytes, sizeof bytes, MSG_DONTWAIT);
        if (length <= 0) {
            return (length < 0) && (errno == EAGAIN);
        }
    }
}

}  // namespace

FakeClient::~FakeClient()
{
    closeAll();
}

std::size_t FakeClient::open(std::size_t count)
{
    for (std::size_t opened = 0; opened < count; ++opened) {
        const int connection = connectedSocket(m_endpoint);
        if (connection < 0) {
            return opened;
        }
        m_connections.push_back(connection);
    }
    return count;
}

void FakeClient::send(const std::string& bytes) const
{
    for (const int connection : m_connections) {
        static_cast<void>(::send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT));
    }
}

std::size_t FakeClient::openConnections() const
{
    return static_cast<std::size_t>(std::count_if(m_connections.begin(), m_connections.end(), isOpen));
}

void FakeClient::closeAll()
{
    for (const int connection : m_connections) {
        ::close(connection);
    }
    m_connections.clear();
}

std::string connectionGreeting()
{
    const std::string signature = "\xFF\0\0\0\0\0\0\0\1\x7F"s;
    const std::string mechanism = "NULL" + std::string(16, '\0');
    const std::string ready = "\5READY\13Socket-Type\0\0\0\6DEALER"s;
    return signature + "\3\0"s + mechanism + std::string(32, '\0') + "\4" + static_cast<char>(ready.size()) + ready;
}

std::string messageHeader(std::size_t length)
{
    if (length <= 255) {
        return "\0"s + static_cast<char>(length);
    }
    std::string header = "\2"s + std::string(8, '\0');
    for (std::size_t i = 0; i < 8; ++i) {
        header[8 - i] = static_cast<char>((static_cast<unsigned long long>(length) >> (8 * i)) & 0xFF);
    }
    return header;
}

std::string wireMessage(const std::string& bytes)
{
    return messageHeader(bytes.size()) + bytes;
}
