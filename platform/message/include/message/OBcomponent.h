#ifndef MESSAGE_OB_COMPONENT_H
#define MESSAGE_OB_COMPONENT_H

// A component: a named part of the node that calls services through proxies (OBproxy) and serves requests through
// connections (OBconnection). Both are bound to the component at their construction, and everything that arrives for
// them is handled on the component's own thread, from its dispatch loop:
//
//     OBcomponent component("EventManager");
//     ...                                       // create proxies and connections
//     component.run();                          // until component.stop() is called
//
// A program with its own loop waits for fileDescriptor() to become readable and then calls dispatch(0ms).
//
// A component, its proxies and its connections are used on one thread; several components may live on several threads.
// A component may be destroyed before its proxies and connections; calls still work then, dispatching ends.
// The framework runs threads in the background, so fork before the first component is created, not after.

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "message/MessageExport.h"

namespace obmessage {
class Dispatcher;
}

class MESSAGE_EXPORT OBcomponent {
public:
    /// `name` appears in log lines. Services are found through the directory file that the environment variable
    /// BRANTEL_MESSAGE_DIRECTORY names, if it is set, and in the runtime directory otherwise (docs/messages.md).
    /// Throws std::runtime_error if the directory file cannot be used.
    explicit OBcomponent(const std::string& name);

    /// The same with a directory file of the caller's choice; the environment variable is ignored.
    OBcomponent(const std::string& name, const std::string& directoryFile);

    ~OBcomponent();
    OBcomponent(const OBcomponent&) = delete;
    OBcomponent& operator=(const OBcomponent&) = delete;

    /// To be called before `nProxies` are made: throws std::runtime_error, which names the limit, if the process may
    /// not open as many files as they and their connections need, has no memory for them, or cannot start the
    /// framework's threads. A proxy without enough is not subscribed, or takes its service for absent.
    static void requireRoomFor(std::size_t nProxies);

    const std::string& name() const;

    /// Whether it is certain that no one serves the service now: its endpoint is a socket of this host that no process
    /// listens on.
    bool isServiceAbsent(const std::string& serviceName) const;

    /// Whether a proxy of this component is connected to the service: what that proxy sends now leaves at once. True
    /// if one of several is. An asynchronous proxy connects while the component dispatches. False for a service that
    /// this component has no proxy to.
    bool isConnected(const std::string& serviceName) const;

    /// Why no proxy of this component is connected to the service, in words (OBproxy::obstacle): of several, what the
    /// oldest one that knows a reason says. Empty if one is connected, or if the service is simply not served.
    std::string obstacle(const std::string& serviceName) const;

    /// The number of the last request that this component made to the service, through whichever of its proxies; the
    /// answer brings it back as OBmessage::sequenceNumber(). Right after a call that succeeded it is the number of that
    /// call. The count starts at 1, and again once all proxies to the service are gone; 0 before the first request.
    std::uint64_t lastSequenceNumber(const std::string& serviceName) const;

    /// Waits up to `timeout` for something to do, handles everything due, and returns how many messages and expired
    /// waits it handled: 0 after a timeout, or at once when the component is stopping. Must not be called from a
    /// handler; it then returns 0 and logs an error. What a reply handler throws reaches the caller.
    std::size_t dispatch(std::chrono::milliseconds timeout);

    /// Dispatches until stop() is called; a stop() before run() counts.
    void run();

    /// Makes run() return, now or when it is next called. May be called on any thread and from signal handlers.
    void stop() noexcept;

    /// Whether stop() was called and no run() has returned since.
    bool isStopping() const noexcept;

    /// Becomes readable when dispatch() has something to do, and may do so when it has not. It belongs to the
    /// component and is for waiting only (poll, epoll).
    int fileDescriptor() const noexcept;

private:
    friend class OBproxy;
    friend class OBconnection;

    std::shared_ptr<obmessage::Dispatcher> m_pDispatcher;
};

#endif
