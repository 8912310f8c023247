#ifndef MESSAGE_EVENT_SOURCE_H
#define MESSAGE_EVENT_SOURCE_H

// Takes the events of a socket's connections, from dispatch, as they come. They do not count as messages.

#include "Dispatcher.h"
#include "SocketEvents.h"

namespace obmessage {

class EventSource : public DispatchSource {
public:
    /// Both must outlive this.
    EventSource(Dispatcher& dispatcher, SocketEvents& events) : m_dispatcher(dispatcher), m_events(events)
    {
        m_dispatcher.add(*this);
    }
    ~EventSource() override { m_dispatcher.remove(*this); }
    EventSource(const EventSource&) = delete;
    EventSource& operator=(const EventSource&) = delete;

protected:
    std::optional<Clock::time_point> nextDeadline() const override { return std::nullopt; }
    bool handleDeadline(Clock::time_point) override { return false; }

private:
    int descriptor() const override { return m_events.descriptor(); }
    bool hasWork() const override { return m_events.hasEvents(); }

    bool handleMessage() override
    {
        m_events.takeEvents();
        return false;
    }

    Dispatcher& m_dispatcher;
    SocketEvents& m_events;
};

}  // namespace obmessage

#endif
