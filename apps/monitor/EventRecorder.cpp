#include "monitor/EventRecorder.h"

#include <algorithm>

#include "common/CommandLine.h"
#include "common/ResultOutput.h"

namespace brantel {

EventRecorder::EventRecorder(const std::string& journalPath, const std::string& statePath) : m_journalPath(journalPath)
{
    if (!statePath.empty()) {
        m_state.emplace(statePath);
    }
    if (!journalPath.empty()) {
        m_pJournal = std::make_unique<Journal>(journalPath);
    }
}

void EventRecorder::restore(ConditionMonitor& monitor)
{
    const MonitorState state = m_state ? m_state->load() : MonitorState();
    if (m_state) {
        restoreMemory(state, m_state->path(), monitor);
    }
    const std::uint64_t lastInJournal = (m_pJournal != nullptr) ? m_pJournal->lastEvent() : 0;
    m_lastEvent = std::max(state.lastEvent, lastInJournal);
    m_lastAppended = lastInJournal;
    Events events;
    for (const WaitingEvents::Line& line : state.waiting.lines()) {
        m_waiting.add(line.number, line.text);
        if (line.number > lastInJournal) {
            events.push_back(*parseEvent(line.text));
        }
    }
    if (state.waiting.lost() && (state.waiting.lost()->last > lastInJournal)) {
        m_waiting.setLost(state.waiting.lost());
    }
    appendToJournal();
    report(events);
}

void EventRecorder::record(Events& events, const ConditionMonitor& monitor)
{
    if (m_waiting.lost() && m_waiting.lines().empty()) {
        addLostEvent(events);
    }
    // No limit applies to a single recording as long as the journal can be written.
    const bool isLimited = m_journalFailingSince.has_value();
    for (Event& event : events) {
        event.number = ++m_lastEvent;
        if (isLimited && m_waiting.isFull()) {
            m_waiting.lose(event.number);
        } else {
            m_waiting.add(event.number, eventJson(event));
        }
    }
    saveState(monitor);
    appendToJournal();
    report(events);
}

// The journal has taken everything that waited, so there is room for the events after the lost ones.
void EventRecorder::addLostEvent(Events& events)
{
    const EventRange lost = *m_waiting.lost();
    Event event;
    event.time = utcTimeNow();
    event.kind = EventKind::LOST;
    event.lost = lost;
    event.reason = counted(lost.count(), "event") + ", " + std::to_string(lost.first) + " to " +
                   std::to_string(lost.last) + ", found no room while the journal could not be written";
    events.insert(events.begin(), event);
    m_waiting.setLost(std::nullopt);
    m_lostBefore += lost.count();
}

void EventRecorder::finish(const ConditionMonitor& monitor)
{
    Events none;
    if ((m_waiting.count() > 0) || isLineCut()) {
        record(none, monitor);
    }
    if (m_waiting.lost() && m_waiting.lines().empty()) {
        record(none, monitor);  // only now is there room for the event about the lost ones
    }
    saveState(monitor);
    if ((m_waiting.count() > 0) || isLineCut()) {
        const std::size_t kept = (m_state && !m_stateFailingSince) ? m_waiting.lines().size() : 0;
        throw CommandError(counted(m_waiting.count() + std::uint64_t{isLineCut()}, "event") +
                           (isAnyUnsynchronised() ? " not safely in '" : " not in '") + m_journalPath + "'; " +
                           ((kept == 0) ? "no state holds them"
                                        : "the state holds " + std::to_string(kept) + " for the next monitor"));
    }
    if (m_stateFailingSince) {
        throw CommandError("'" + m_state->path() +
                           "' is not up to date: the next monitor may report events again, or miss some");
    }
}

void EventRecorder::saveState(const ConditionMonitor& monitor)
{
    if (!m_state) {
        return;
    }
    try {
        m_state->save(stateText(m_lastEvent, monitor, m_waiting));
        m_stateNotice.set("");
        m_stateFailingSince.reset();
    } catch (const CommandError& error) {
        m_stateNotice.set(error.what());
        m_stateFailingSince = m_stateFailingSince.value_or(Clock::now());
    }
}

void EventRecorder::appendToJournal()
{
    if (m_journalPath.empty()) {
        m_waiting.clear();
        return;
    }
    try {
        openJournal();
        appendWaiting();
        m_journalNotice.set("");
        m_journalFailingSince.reset();
    } catch (const CommandError& error) {
        m_journalNotice.set(error.what());
        m_journalFailingSince = m_journalFailingSince.value_or(Clock::now());
    }
}

// Opens the journal if it is not open or was released. A pipe is kept until it has the rest of its last line.
void EventRecorder::openJournal()
{
    if (m_pJournal != nullptr) {
        m_pJournal->completeLine();
    }
    if (m_isJournalReleased) {
        m_pJournal.reset();
    }
    if (m_pJournal == nullptr) {
        m_pJournal = std::make_unique<Journal>(m_journalPath);
        m_isJournalReleased = false;
        // The file may be the same as before and end with an event whose write failed at the line's end. The last event
        // of a different file says nothing about the waiting ones.
        m_lastAppended = m_waiting.has(m_pJournal->lastEvent()) ? m_pJournal->lastEvent() : 0;
    }
}

void EventRecorder::appendWaiting()
{
    try {
        for (const WaitingEvents::Line& line : m_waiting.lines()) {
            if (line.number > m_lastAppended) {
                m_pJournal->append(line.number, line.text);
                m_lastAppended = line.number;
            }
        }
    } catch (const CommandError&) {
        releaseAppended();
        throw;
    }
    releaseAppended();
}

// The state holds events until they are surely on disk.
void EventRecorder::releaseAppended()
{
    if (m_state && isAnyUnsynchronised()) {
        m_pJournal->synchronise();
    }
    while (isAnyUnsynchronised()) {
        m_waiting.removeFirst();
    }
}

bool EventRecorder::isAnyUnsynchronised() const
{
    return !m_waiting.lines().empty() && (m_waiting.lines().front().number <= m_lastAppended);
}

bool EventRecorder::isLineCut() const
{
    return (m_pJournal != nullptr) && !m_pJournal->isLineComplete();
}

void EventRecorder::report(const Events& events) const
{
    for (const Event& event : events) {
        for (const auto& pOutput : m_outputs) {
            pOutput->report(event);
        }
    }
}

}  // namespace brantel
