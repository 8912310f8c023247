#include "Dispatcher.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>

#include "Log.h"
#include "SystemError.h"

namespace obmessage {
namespace {

// The epoll set's own members; sources are numbered after them.
constexpr std::uint64_t NO_ID = 0;
constexpr std::uint64_t WAKE_EVENT_ID = 1;
constexpr std::uint64_t TIMER_ID = 2;

// A source that never runs dry leaves the others their turn after this many messages.
constexpr int MAX_MESSAGES_PER_TURN = 64;

// A deadline that is noticed this late passed while the process was stopped. The answers that it waited for may have
// arrived, so they are taken first, for as long as CATCH_UP_TIME.
constexpr std::chrono::seconds LATE(1);
constexpr std::chrono::seconds CATCH_UP_TIME(1);

FileDescriptor required(int descriptor, const char* what)
{
    if (descriptor < 0) {
        throwSystemError(what);
    }
    return FileDescriptor(descriptor);
}

Clock::time_point later(std::chrono::milliseconds timeout)
{
    const Clock::time_point now = Clock::now();
    const auto longest = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::time_point::max() - now);
    return (timeout < longest) ? now + timeout : Clock::time_point::max();
}

int epollTimeout(Clock::time_point deadline)
{
    const Clock::time_point now = Clock::now();
    if (deadline <= now) {
        return 0;
    }
    const auto remaining = std::chrono::ceil<std::chrono::milliseconds>(deadline - now).count();
    return static_cast<int>(std::min<std::int64_t>(remaining, std::numeric_limits<int>::max()));
}

void empty(const FileDescriptor& counter)
{
    std::uint64_t count = 0;
    static_cast<void>(::read(counter.get(), &count, sizeof count));
}

timespec timespecOf(Clock::time_point time)
{
    const std::int64_t nanoseconds =
        std::chrono::duration_cast<std::chrono::nanoseconds>(time.time_since_epoch()).count();
    timespec spec = {};
    spec.tv_sec = static_cast<std::time_t>(nanoseconds / 1'000'000'000);
    spec.tv_nsec = static_cast<decltype(spec.tv_nsec)>(nanoseconds % 1'000'000'000);
    return spec;
}

}  // namespace

Dispatcher::Dispatcher(const std::string& componentName, Directory directory)
    : m_componentName(componentName),
      m_directory(std::move(directory)),
      m_epoll(required(::epoll_create1(EPOLL_CLOEXEC), "epoll")),
      m_wakeEvent(required(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK), "eventfd")),
      m_timer(required(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK), "timerfd")),
      m_lastId(TIMER_ID)
{
    watch(m_wakeEvent.get(), WAKE_EVENT_ID);
    watch(m_timer.get(), TIMER_ID);
}

void Dispatcher::watch(int descriptor, SourceId id)
{
    epoll_event event = {};
    event.events = EPOLLIN;
    event.data.u64 = id;
    if (::epoll_ctl(m_epoll.get(), EPOLL_CTL_ADD, descriptor, &event) != 0) {
        throwSystemError("epoll");
    }
}

void Dispatcher::add(DispatchSource& source)
{
    watch(source.descriptor(), ++m_lastId);
    m_sources.emplace(m_lastId, Registration{&source, false});
    lookAt(source);
}

void Dispatcher::remove(DispatchSource& source)
{
    ::epoll_ctl(m_epoll.get(), EPOLL_CTL_DEL, source.descriptor(), nullptr);
    m_sources.erase(registrationOf(source));
}

std::map<Dispatcher::SourceId, Dispatcher::Registration>::iterator Dispatcher::registrationOf(
    const DispatchSource& source)
{
    return std::find_if(m_sources.begin(), m_sources.end(),
                        [&source](const auto& entry) { return entry.second.pSource == &source; });
}

void Dispatcher::lookAt(DispatchSource& source)
{
    const auto entry = registrationOf(source);
    const bool isBeingHandled = entry->first == m_idBeingHandled;  // then it is handled until it is empty anyway
    if (!isBeingHandled && source.hasWork()) {
        entry->second.isReady = true;
        wake();
    }
    const std::optional<Clock::time_point> deadline = source.nextDeadline();
    if (deadline && (!m_timerDeadline || (*deadline < *m_timerDeadline))) {
        setTimer();
    }
}

void Dispatcher::wake() noexcept
{
    const std::uint64_t one = 1;
    static_cast<void>(::write(m_wakeEvent.get(), &one, sizeof one));
}

std::size_t Dispatcher::dispatch(std::chrono::milliseconds timeout)
{
    if (m_isDispatching) {
        LOG_MESSAGE_ERROR("component %s: dispatch called from a handler", m_componentName.c_str());
        return 0;
    }
    m_isDispatching = true;
    struct Leave {
        Dispatcher& dispatcher;
        ~Leave()
        {
            dispatcher.m_isDispatching = false;
            dispatcher.m_idBeingHandled = NO_ID;
            dispatcher.setTimer();
            // The descriptor must stay readable while there is something to do.
            if (dispatcher.isAnySourceReady() || dispatcher.isStopping()) {
                dispatcher.wake();
            }
        }
    } const leave{*this};

    const Clock::time_point deadline = later(timeout);
    std::size_t handled = 0;
    do {
        waitForEvents(deadline);
        handled += handleReadySources();
        handled += handleDeadlines();
    } while ((handled == 0) && !isStopping() && (Clock::now() < deadline));
    return handled;
}

bool Dispatcher::isAnySourceReady() const
{
    return std::any_of(m_sources.begin(), m_sources.end(), [](const auto& entry) { return entry.second.isReady; });
}

// Marks the sources whose descriptors are readable. Does not wait if there is something to do already.
void Dispatcher::waitForEvents(Clock::time_point deadline)
{
    std::array<epoll_event, 32> events{};
    int count = 0;
    setTimer();
    do {
        const bool mayWait = !isAnySourceReady() && !isStopping();
        count = ::epoll_wait(m_epoll.get(), events.data(), static_cast<int>(events.size()),
                             mayWait ? epollTimeout(deadline) : 0);
    } while ((count < 0) && (errno == EINTR));
    for (int i = 0; i < count; ++i) {
        const SourceId id = events[static_cast<std::size_t>(i)].data.u64;
        if (id == WAKE_EVENT_ID) {
            empty(m_wakeEvent);
        } else if (id == TIMER_ID) {
            empty(m_timer);
            m_timerDeadline.reset();
        } else {
            m_sources.at(id).isReady = true;
        }
    }
}

std::size_t Dispatcher::handleReadySources()
{
    std::size_t handled = 0;
    for (auto entry = m_sources.begin(); entry != m_sources.end();) {
        const SourceId id = entry->first;
        if (entry->second.isReady) {
            handled += handleMessagesOf(id);
        }
        entry = m_sources.upper_bound(id);
    }
    return handled;
}

std::size_t Dispatcher::handleMessagesOf(SourceId id)
{
    std::size_t handled = 0;
    for (int turn = 0; turn < MAX_MESSAGES_PER_TURN; ++turn) {
        const auto entry = m_sources.find(id);
        if (entry == m_sources.end()) {
            break;
        }
        m_idBeingHandled = id;
        if (!entry->second.pSource->handleMessage()) {
            entry->second.isReady = false;
            break;
        }
        ++handled;
    }
    m_idBeingHandled = NO_ID;
    return handled;
}

std::size_t Dispatcher::handleDeadlines()
{
    const Clock::time_point now = Clock::now();
    if (mustCatchUp(now)) {
        return 0;
    }
    std::size_t handled = 0;
    for (auto entry = m_sources.begin(); entry != m_sources.end();) {
        const SourceId id = entry->first;
        if (entry->second.pSource->handleDeadline(now)) {
            ++handled;
            entry = m_sources.lower_bound(id);  // the same again, if it is still there
        } else {
            entry = m_sources.upper_bound(id);
        }
    }
    m_catchUpEnd.reset();
    return handled;
}

bool Dispatcher::mustCatchUp(Clock::time_point now)
{
    const std::optional<Clock::time_point> earliest = earliestDeadline();
    if (!earliest || (*earliest + LATE > now)) {
        m_catchUpEnd.reset();
    } else if (!m_catchUpEnd) {
        m_catchUpEnd = now + CATCH_UP_TIME;
    }
    return m_catchUpEnd && (now < *m_catchUpEnd);
}

std::optional<Clock::time_point> Dispatcher::earliestDeadline() const
{
    std::optional<Clock::time_point> earliest;
    for (const auto& entry : m_sources) {
        const std::optional<Clock::time_point> deadline = entry.second.pSource->nextDeadline();
        if (deadline && (!earliest || (*deadline < *earliest))) {
            earliest = deadline;
        }
    }
    return earliest;
}

// Sets the timer to when the next deadline is to be handled, if it is not set to it already.
void Dispatcher::setTimer()
{
    std::optional<Clock::time_point> next = earliestDeadline();
    if (next && m_catchUpEnd) {
        next = std::max(*next, *m_catchUpEnd);
    }
    if (next == m_timerDeadline) {
        return;
    }
    itimerspec setting = {};
    if (next) {
        setting.it_value = timespecOf(*next);
    }
    ::timerfd_settime(m_timer.get(), TFD_TIMER_ABSTIME, &setting, nullptr);
    m_timerDeadline = next;
}

void Dispatcher::run()
{
    while (!isStopping()) {
        dispatch(std::chrono::milliseconds::max());
    }
    m_isStopping = false;
}

void Dispatcher::stop() noexcept
{
    m_isStopping = true;
    wake();
}

}  // namespace obmessage
