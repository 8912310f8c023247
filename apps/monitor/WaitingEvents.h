#ifndef APPS_MONITOR_WAITING_EVENTS_H
#define APPS_MONITOR_WAITING_EVENTS_H

// The events that are not in the journal yet, as its lines, and the range of those that were lost for want of room.

#include <cstdint>
#include <deque>
#include <optional>
#include <string>

#include "monitor/Event.h"

namespace brantel {

class WaitingEvents {
public:
    /// The limits for a journal that cannot be written.
    static constexpr std::size_t MAX_EVENTS = 100'000;
    static constexpr std::size_t MAX_SIZE = std::size_t{32} << 20U;  ///< of the lines, in bytes

    struct Line {
        std::uint64_t number;
        std::string text;
    };

    void add(std::uint64_t number, const std::string& text);

    /// Counts an event as lost; its number follows that of the last lost one.
    void lose(std::uint64_t number);

    /// Sets the range of lost events.
    void setLost(std::optional<EventRange> lost) { m_lost = lost; }

    /// Whether the next event is lost: there is no room, or an earlier one is lost.
    bool isFull() const { return m_lost || (m_lines.size() >= MAX_EVENTS) || (m_size >= MAX_SIZE); }

    /// Removes the first line.
    void removeFirst();
    void clear();

    const std::deque<Line>& lines() const { return m_lines; }
    const std::optional<EventRange>& lost() const { return m_lost; }

    /// Whether the number is that of an event that waits.
    bool has(std::uint64_t number) const
    {
        return !m_lines.empty() && (m_lines.front().number <= number) && (number <= m_lines.back().number);
    }

    /// How many events are not in the journal.
    std::uint64_t count() const { return m_lines.size() + (m_lost ? m_lost->count() : 0); }

private:
    std::deque<Line> m_lines;
    std::size_t m_size = 0;
    std::optional<EventRange> m_lost;
};

}  // namespace brantel

#endif
