#ifndef MESSAGE_OB_PROXY_H
#define MESSAGE_OB_PROXY_H

// The calling side of an interface. A component creates a proxy of the interface's own class (as in
// OBappsToICSC_1_0_P), subscribes it once to a service by name, and calls. A service need not be there yet, and may go
// and come back: the proxy finds it again.
//
// A proxy has one of two ways to call, chosen when it subscribes:
//
//     synchronous    a call returns when the answer is there or the reply wait time is over
//     asynchronous   a call never waits: it returns when the request is sent, or held because the service is not there.
//                    What is held is sent, in order, from the dispatch of the component once the service is there. The
//                    answer goes to the reply interface, from the dispatch, too. Each call is answered exactly once:
//                    with the result TIMEOUT if nothing came within the reply wait time
//
// A request is sent once, only to a service that is there, and not after the call's reply wait time. A call that failed
// may have been carried out nevertheless, if only the answer was lost. An answer that comes too late or belongs to no
// call is dropped and counted.

#include <cstdint>
#include <memory>
#include <string>

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

    /// Subscribes to the service `name`. Returns 0, or -1 after logging why it failed: an invalid name, an endpoint
    /// that is refused, or a proxy that is already subscribed.
    int subscribe_synchronous(const char* name);

    /// The same for asynchronous calls; `reply`, which must not be null, receives their answers.
    int subscribe_asynchronous(const char* name, OBproxyReplyInterface* reply);

    /// How long the service and its answer are waited for, in seconds; a proxy starts at 7. With 0 or less a
    /// synchronous call does not wait, and an asynchronous one is given up at the next dispatch.
    void setReplyWaitTime(int seconds) { m_replyWaitTime = seconds; }

    /// Whether the service is there: false before the first connection to it and while there is none.
    bool isConnected() const;

    /// Why the service is not there although it may be served, in words: why the subscription failed or, for a proxy
    /// for asynchronous calls, why the last attempt to connect failed (keys that are not admitted or do not match, an
    /// endpoint that does not answer). Empty if it is simply not served, and while it is there.
    std::string obstacle() const;

    /// Number of messages received that answered none of the calls under way.
    std::uint64_t droppedAnswers() const;

protected:
    explicit OBproxy(OBcomponent& component);

    /// Calls `operation` of `interface` with `payload`. Synchronous: returns 0 with the answer in `payload` and
    /// `result`; asynchronous: returns 0 at once, `payload` and `result` unchanged. Returns -1, both unchanged, if the
    /// proxy is not subscribed; synchronous: if the request could not be sent or nothing came back within the
    /// reply wait time; asynchronous: if 1000 calls are unanswered.
    int call(const OBinterface& interface, std::uint8_t operation, int timeout, buffer_t& payload, int& result);

private:
    class Subscription;
    class SynchronousSubscription;
    class AsynchronousSubscription;

    /// Subscribes asynchronously if there is a reply interface.
    int subscribe(const char* name, OBproxyReplyInterface* pReply);

    std::shared_ptr<obmessage::Dispatcher> m_pDispatcher;
    std::unique_ptr<Subscription> m_pSubscription;
    std::string m_subscriptionError = "the proxy is not subscribed";
    int m_replyWaitTime = 7;
};

#endif
