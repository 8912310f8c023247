#ifndef MESSAGE_OB_MESSAGE_H
#define MESSAGE_OB_MESSAGE_H

// What a handler learns about a message: which service and operation it belongs to, and what its sender put on the
// envelope. A connection's handler keeps a copy to answer the request later; a reply handler sees the
// envelope of the request that is answered.

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

/// An interface that proxies call and connections serve; both ends must agree on all of it.
struct OBinterface {
    const char* name;  // 1 to 32 characters
    std::uint8_t majorVersion;
    std::uint8_t minorVersion;
};

class OBmessage {
public:
    OBmessage(std::shared_ptr<const std::string> pServiceName, std::uint8_t operation, std::uint64_t sequenceNumber,
              int timeout, std::uint64_t ticket)
        : m_pServiceName(std::move(pServiceName)),
          m_sequenceNumber(sequenceNumber),
          m_ticket(ticket),
          m_timeout(timeout),
          m_operation(operation)
    {
    }

    /// The name by which the service is reached, as in ICSCClient3.ReadWriteSync.
    const std::string& serviceName() const { return *m_pServiceName; }

    /// Which of the interface's operations is called or answered.
    std::uint8_t operation() const { return m_operation; }

    /// Counts the calls of one component to one service, from 1 (OBcomponent::lastSequenceNumber).
    std::uint64_t sequenceNumber() const { return m_sequenceNumber; }

    /// How long the service may take to answer, in seconds, as the caller gave it: it may be zero or negative.
    int timeout() const { return m_timeout; }

    /// Identifies an open request of a connection, whoever sent it; 0 in a reply.
    std::uint64_t ticket() const { return m_ticket; }

private:
    std::shared_ptr<const std::string> m_pServiceName;
    std::uint64_t m_sequenceNumber;
    std::uint64_t m_ticket;
    int m_timeout;
    std::uint8_t m_operation;
};

#endif
