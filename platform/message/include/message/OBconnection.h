#ifndef MESSAGE_OB_CONNECTION_H
#define MESSAGE_OB_CONNECTION_H

// The serving side of an interface. A component creates a connection of the interface's own class (as in
// OBappsToICSC_1_0_C) under the name of the service; it serves from construction to destruction, from the dispatch of
// the component. A handler answers its request with reply(), at once or later, whenever the answer is there. A request
// that is not answered within the timeout that its caller gave is answered with the result TIMEOUT.
//
// A message that is not a request of this interface never reaches a handler: it is logged, and answered with the
// matching result if it can be answered.

#include <cstdint>
#include <memory>
#include <string>

#include "message/MessageExport.h"
#include "message/OBmessage.h"
#include "message/OBresult.h"
#include "message/buffer_t.h"

class OBcomponent;

class MESSAGE_EXPORT OBconnection {
public:
    virtual ~OBconnection();
    OBconnection(const OBconnection&) = delete;
    OBconnection& operator=(const OBconnection&) = delete;

    const std::string& serviceName() const;

    /// Where it serves, as in tcp://127.0.0.1:5601; with the port that it got in place of *.
    std::string endpoint() const;

    /// Answers a request, once, inside its handler or later. Returns false if it is not open: it was answered, given
    /// up, or its time is over; also if the caller is gone.
    bool reply(const OBmessage& request, const buffer_t& payload, int result);

    /// Gives up a request: its caller gets no answer at all, not even the result TIMEOUT.
    void giveUp(const OBmessage& request);

    /// Number of messages received that were not requests and could not be answered either.
    std::uint64_t droppedMessages() const;

protected:
    /// Starts to serve `interface` under `serviceName`. Throws std::runtime_error if that is not possible: an
    /// invalid name, an endpoint that is refused or taken by another connection, keys that cannot be used.
    OBconnection(OBcomponent& component, const char* serviceName, const OBinterface& interface);

    /// Called for each request of the interface, on the component's thread. It may destroy this connection as its last
    /// act. An exception is logged and answered with the result INTERNAL_ERROR. The default logs that it should never
    /// be called, and answers the same.
    virtual void requestReceived(const OBmessage& request, const buffer_t& payload);

private:
    class Service;

    std::unique_ptr<Service> m_pService;
};

#endif
