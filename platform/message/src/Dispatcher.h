#ifndef MESSAGE_DISPATCHER_H
#define MESSAGE_DISPATCHER_H

// The dispatch loop of one component, and what its proxies and connections share: the component's name, the directory
// and the services that are called. It waits on one epoll set: the sources' descriptors, a timer for the earliest
// deadline, and an event that wakes it for what no descriptor announces.
//
// A ZeroMQ descriptor reports changes only, and any use of the socket may swallow one: a source that became readable
// counts as ready until it was found empty, and one that is used outside its own handling must be looked at again
// (lookAt).

#include <atomic>
#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "CalledServices.h"
#include "Directory.h"
#include "FileDescriptor.h"
#include "Sockets.h"

namespace obmessage {

/// Something that messages arrive at and that may wait for time to pass. Handling ends with the handler of the
/// component, which may destroy the source: nothing touches the source after it.
class DispatchSource {
public:
    virtual ~DispatchSource() = default;

    virtual int descriptor() const = 0;
    /// Whether there is something to do for handleMessage().
    virtual bool hasWork() const = 0;

    /// Sends what was held and can leave now, and handles one message; false if there was none.
    virtual bool handleMessage() = 0;

    virtual std::optional<Clock::time_point> nextDeadline() const = 0;

    /// Handles one deadline that is over at `now`; false if there was none.
    virtual bool handleDeadline(Clock::time_point now) = 0;
};

class Dispatcher {
public:
    Dispatcher(const std::string& componentName, Directory directory);
    Dispatcher(const Dispatcher&) = delete;
    Dispatcher& operator=(const Dispatcher&) = delete;

    const std::string& componentName() const { return m_componentName; }
    const Directory& directory() const { return m_directory; }
    CalledServices& calledServices() { return m_calledServices; }

    void add(DispatchSource& source);
    void remove(DispatchSource& source);

    /// To be called when `source` was used outside its own handling: messages may wait at it, or a deadline.
    void lookAt(DispatchSource& source);

    // What OBcomponent offers.
    std::size_t dispatch(std::chrono::milliseconds timeout);
    void run();
    void stop() noexcept;
    bool isStopping() const noexcept { return m_isStopping.load(); }
    int descriptor() const noexcept { return m_epoll.get(); }

private:
    using SourceId = std::uint64_t;

    struct Registration {
        DispatchSource* pSource;
        bool isReady;
    };

    std::map<SourceId, Registration>::iterator registrationOf(const DispatchSource& source);
    bool isAnySourceReady() const;
    void wake() noexcept;
    void watch(int descriptor, SourceId id);
    void waitForEvents(Clock::time_point deadline);
    std::size_t handleReadySources();
    std::size_t handleMessagesOf(SourceId id);
    std::size_t handleDeadlines();
    bool mustCatchUp(Clock::time_point now);
    std::optional<Clock::time_point> earliestDeadline() const;
    void setTimer();

    std::string m_componentName;
    Directory m_directory;
    CalledServices m_calledServices;
    FileDescriptor m_epoll;
    FileDescriptor m_wakeEvent;
    FileDescriptor m_timer;
    std::map<SourceId, Registration> m_sources;  // handlers may add and remove while it is walked
    SourceId m_lastId;
    SourceId m_idBeingHandled = 0;
    std::optional<Clock::time_point> m_timerDeadline;
    std::optional<Clock::time_point> m_catchUpEnd;  // until then deadlines wait
    std::atomic<bool> m_isStopping{false};
    bool m_isDispatching = false;
};

}  // namespace obmessage

#endif
