#ifndef MESSAGE_OB_PROXY_H
#define MESSAGE_OB_PROXY_H

// The calling side of an interface. A component creates a proxy of the interface's own class (as in
// OBappsToICSC_1_0_P), subscribes it once to a service by name, and calls. A service need not be there yet, and may go
// and come back: the proxy finds it again by itself.
//
// A proxy has one of two ways to call, chosen when it subscribes:
//
//     synchronous    a call returns when the answer is there or the reply wait time is over
//     asynchronous   a call returns when the request is sent; the answer goes to the reply interface, from the
//                    dispatch of the component. Each request that was sent is answered exactly once: with the result
//                    TIMEOUT if nothing came within the reply wait time
//
// A request is sent once, and only to a service that is there: it is not kept for one that may come later. A call that
// failed may have been carried out nevertheless, if it was the answer that got lost. An answer that comes too late or
// belongs to no call is dropped and counted.

#include <cstdint>
#include <memory>

#include "message/MessageExport.h"
#include "message/OBmessage.h"
#include "message/buffer_t.h"

class OBcomponent;

namespace obmessage {
class Dispatcher;
}

/// Receives the answers of asynchronous calls. Must outlive the proxies that it is subscribed with.
class MESSAGE_EXPORT OBproxyReplyInterface {
public:
    OBproxyReplyInterface() = default;
    virtual ~OBproxyReplyInterface();
    OBproxyReplyInterface(const OBproxyReplyInterface&) = delete;
    OBproxyReplyInterface& operator=(const OBproxyReplyInterface&) = delete;

    /// Called for each answer, on the component's thread. It may call, create and destroy proxies, the one that is
    /// answered included. The default logs that it should never be called.
    virtual void replyReceived(const OBmessage& request, const buffer_t& payload, int result);
};

class MESSAGE_EXPORT OBproxy {
public:
    virtual ~OBproxy();
    OBproxy(const OBproxy&) = delete;
    OBproxy& operator=(const OBproxy&) = delete;

    /// Subscribes to the service `name`. Returns 0, or -1 after logging why it failed: a name that is none, an endpoint
    /// that is refused, or a proxy that is subscribed already.
    int subscribe_synchronous(const char* name);

    /// The same for asynchronous calls; `reply`, which must not be null, receives their answers.
    int subscribe_asynchronous(const char* name, OBproxyReplyInterface* reply);

    /// How long a call waits for its answer, in seconds; a proxy starts at 7. With 0 or less a call does not wait.
    void setReplyWaitTime(int seconds) { m_replyWaitTime = seconds; }

    /// Whether the service is there: false before the first connection to it and while there is none. A call that finds
    /// it false waits for the service first.
    bool isConnected() const;

    /// Number of messages received that answered none of the calls under way.
    std::uint64_t droppedAnswers() const;

protected:
    explicit OBproxy(OBcomponent& component);

    /// Calls `operation` of `interface` with `payload`. Synchronous: returns 0 with the answer in `payload` and
    /// `result`; asynchronous: returns 0 when the request is sent, `payload` and `result` as they were. Returns -1,
    /// both as they were, if the request could not be sent or nothing came back within the reply wait time.
    int call(const OBinterface& interface, std::uint8_t operation, int timeout, buffer_t& payload, int& result);

private:
    class Subscription;
    class SynchronousSubscription;
    class AsynchronousSubscription;

    int subscribe(const char* name, OBproxyReplyInterface* pReply);

    std::shared_ptr<obmessage::Dispatcher> m_pDispatcher;
    std::unique_ptr<Subscription> m_pSubscription;
    int m_replyWaitTime = 7;
};

#endif
