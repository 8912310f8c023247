#include "monitor/EventRecorder.h"

#include <algorithm>

#include "common/CommandLine.h"

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
    for (const auto& [key, memory] : state.rules) {
        if (!monitor.restoreRule(key, memory)) {
            throw CommandError("the state holds '" + key.rule + "', which is no rule that can be evaluated");
        }
    }
    for (const RememberedFailure& failure : state.failures) {
        monitor.restoreFailure(failure.place, failure.oid, failure.failure);
    }
    for (const RefusedRow& row : state.refusedRows) {
        monitor.restoreRefusal(row);
    }
    const std::uint64_t lastInJournal = (m_pJournal != nullptr) ? m_pJournal->lastEvent() : 0;
    m_lastEvent = std::max(state.lastEvent, lastInJournal);
    for (const std::string& line : state.eventLines) {
        const std::optional<Event> event = eventOfJsonLine(line);
        if (event && (event->number > lastInJournal)) {
            m_waiting.push_back(*event);
            m_waitingLines.push_back(line);
        }
    }
    const ConditionMonitor::Events events = m_waiting;
    const std::vector<std::string> lines = m_waitingLines;
    appendToJournal();
    tell(events, lines);
}

void EventRecorder::record(ConditionMonitor::Events& events, const ConditionMonitor& monitor)
{
    const std::size_t before = m_waiting.size();
    for (Event& event : events) {
        event.number = ++m_lastEvent;
        m_waiting.push_back(event);
        m_waitingLines.push_back(jsonLineOf(event));
    }
    const std::vector<std::string> lines(m_waitingLines.begin() + static_cast<std::ptrdiff_t>(before),
                                         m_waitingLines.end());
    saveState(monitor);
    appendToJournal();
    tell(events, lines);
}

void EventRecorder::saveState(const ConditionMonitor& monitor)
{
    if (!m_state) {
        return;
    }
    try {
        m_state->save(stateText(m_lastEvent, monitor, m_waitingLines));
        m_stateNotice.set("");
    } catch (const CommandError& error) {
        m_stateNotice.set(error.what());
    }
}

void EventRecorder::appendToJournal()
{
    if (m_journalPath.empty()) {
        m_waiting.clear();
        m_waitingLines.clear();
        return;
    }
    std::size_t appended = 0;
    try {
        if (m_pJournal == nullptr) {
            m_pJournal = std::make_unique<Journal>(m_journalPath);
        }
        for (; appended < m_waiting.size(); ++appended) {
            m_pJournal->append(m_waiting[appended].number, m_waitingLines[appended]);
        }
        if (m_state && (appended > 0)) {
            m_pJournal->synchronise();  // the next state will not hold these events any more
        }
        m_journalNotice.set("");
    } catch (const CommandError& error) {
        m_journalNotice.set(error.what());
    }
    m_waiting.erase(m_waiting.begin(), m_waiting.begin() + static_cast<std::ptrdiff_t>(appended));
    m_waitingLines.erase(m_waitingLines.begin(), m_waitingLines.begin() + static_cast<std::ptrdiff_t>(appended));
}

void EventRecorder::tell(const ConditionMonitor::Events& events, const std::vector<std::string>& lines) const
{
    for (std::size_t i = 0; i < events.size(); ++i) {
        for (const auto& pOutput : m_outputs) {
            pOutput->tell(events[i], lines[i]);
        }
    }
}
