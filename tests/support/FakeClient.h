#ifndef TESTS_SUPPORT_FAKE_CLIENT_H
#define TESTS_SUPPORT_FAKE_CLIENT_H

// A caller without manners: bare connections to a service, opened and held, on which it sends what the test wants, or
// nothing.

#include <cstddef>
#include <string>
#include <vector>

class FakeClient {
public:
    /// To the service at ipc://PATH or tcp://127.0.0.1:PORT.
    explicit FakeClient(const std::string& endpoint) : m_endpoint(endpoint) {}
    ~FakeClient();
    FakeClient(const FakeClient&) = delete;
    FakeClient& operator=(const FakeClient&) = delete;

    /// Opens up to `count` more connections, until one is refused or not taken within 1.5 seconds. Returns how many
    /// were opened.
    std::size_t open(std::size_t count);

    /// Sends bytes on each connection; those that the service has closed stay closed.
    void send(const std::string& bytes) const;

    /// How many connections the service has not closed.
    std::size_t openConnections() const;

    void closeAll();

private:
    const std::string m_endpoint;
    std::vector<int> m_connections;
};

/// What a caller's end of a connection begins with (ZMTP 3.0, no keys), and a message after that: its header, for a
/// message of `length` bytes, and its bytes.
std::string connectionGreeting();
std::string messageHeader(std::size_t length);
std::string wireMessage(const std::string& bytes);

#endif
