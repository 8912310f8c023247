#include "monitor/NodeMonitor.h"

#include <algorithm>
#include <cstdio>

#include <poll.h>
#include <unistd.h>

#include "IcscClientProxy.h"
#include "common/CommandLine.h"
#include "common/ReplacedFile.h"
#include "common/ResultOutput.h"

namespace {

// How long the first cycle waits for cards that are there to be connected.
constexpr std::chrono::milliseconds CONNECT_TIME{250};

// How long events wait for the readings of other slots, to be recorded together.
constexpr std::chrono::milliseconds RECORD_DELAY{50};

// How long readings that are under way may take when the monitor ends: after a signal, and after the last cycle.
constexpr std::chrono::seconds SIGNAL_GRACE{1};
constexpr std::chrono::seconds LAST_CYCLE_GRACE{10};

// Adds the time that its life takes to a part of the cycle.
class PartTimer {
public:
    PartTimer(MonitorFigures& figures, CyclePart part) : m_figures(figures), m_part(part) {}
    ~PartTimer() { m_figures.addTo(m_part, std::chrono::steady_clock::now() - m_start); }
    PartTimer(const PartTimer&) = delete;
    PartTimer& operator=(const PartTimer&) = delete;

private:
    MonitorFigures& m_figures;
    const CyclePart m_part;
    const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

}  // namespace

NodeMonitor::NodeMonitor(const NodeMonitorOptions& options)
    : m_options(options),
      m_interval(std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(options.interval))),
      m_follower(options.database, options.slots),
      m_recorder(options.journal, options.stateFile)
{
    IcscClientProxy::createInstance();
    try {
        addHostObjects(m_hostObjects);
        addOutputs();
        m_recorder.restore(m_monitor);
        m_monitor.follow(*m_follower.bookIfChanged(), eventTimeNow(), m_events);
        updateSlots();
    } catch (...) {
        IcscClientProxy::deleteInstance();
        throw;
    }
}

NodeMonitor::~NodeMonitor()
{
    IcscClientProxy::deleteInstance();
}

void NodeMonitor::addOutputs()
{
    m_recorder.addOutput(std::make_unique<SyslogOutput>());
    if (!m_options.isJson && (::isatty(STDOUT_FILENO) != 0)) {
        auto pView = std::make_unique<LiveView>();
        m_pView = pView.get();
        m_recorder.addOutput(std::move(pView));
    } else {
        m_recorder.addOutput(std::make_unique<LineOutput>(m_options.isJson));
    }
}

void NodeMonitor::run()
{
    waitForCards();
    startCycle();
    while (!isOver()) {
        waitForSomething();
        handleSignals();
        handleAnswers();
        takeCompleteReadings();
        recordWhenDue();
        if (!m_endBy && (Clock::now() >= m_cycleStart + m_interval)) {
            startCycle();
        }
    }
    endCycle();  // what is still under way counts as never read
    m_recorder.finish(m_monitor);
}

void NodeMonitor::waitForCards()
{
    const Clock::time_point deadline = Clock::now() + CONNECT_TIME;
    const auto isAnyMissing = [&] {
        return std::any_of(m_slots.begin(), m_slots.end(),
                           [](const auto& entry) { return entry.second.hasOids() && !entry.second.isConnected(); });
    };
    while (isAnyMissing() && (Clock::now() < deadline)) {
        m_component.dispatch(std::chrono::milliseconds(5));
    }
}

void NodeMonitor::waitForSomething()
{
    pollfd descriptors[] = {{m_component.fileDescriptor(), POLLIN, 0}, {m_signals.descriptor(), POLLIN, 0}};
    const auto wait = std::max<Clock::duration>(nextWakeUp() - Clock::now(), Clock::duration::zero());
    const auto nanoseconds = std::chrono::duration_cast<std::chrono::nanoseconds>(wait).count();
    timespec timeout = {};
    timeout.tv_sec = static_cast<time_t>(nanoseconds / 1'000'000'000);
    timeout.tv_nsec = static_cast<long>(nanoseconds % 1'000'000'000);
    const bool isForAnswers = isAnySlotReading();
    const Clock::time_point start = Clock::now();
    static_cast<void>(::ppoll(descriptors, 2, &timeout, nullptr));
    if (isForAnswers) {
        m_figures.addTo(CyclePart::WAIT, Clock::now() - start);
    }
}

NodeMonitor::Clock::time_point NodeMonitor::nextWakeUp() const
{
    Clock::time_point next = m_endBy ? *m_endBy : m_cycleStart + m_interval;
    if (m_unrecordedSince) {
        next = std::min(next, *m_unrecordedSince + RECORD_DELAY);
    }
    return next;
}

void NodeMonitor::handleSignals()
{
    while (const std::optional<int> signal = m_signals.next()) {
        handle(*signal);
    }
}

void NodeMonitor::handle(int signal)
{
    switch (signal) {
        case SIGHUP:
            m_follower.forget();
            m_recorder.releaseJournal();
            break;
        case SIGUSR1: static_cast<void>(std::fputs(prometheusText(m_figures, m_monitor).c_str(), stderr)); break;
        default: m_endBy = m_endBy ? Clock::now() : Clock::now() + SIGNAL_GRACE; break;
    }
}

void NodeMonitor::handleAnswers()
{
    const auto decodingTime = [&] {
        std::chrono::nanoseconds time{0};
        for (const auto& [number, slot] : m_slots) {
            time += slot.decodingTime();
        }
        return time;
    };
    const Clock::time_point start = Clock::now();
    const std::chrono::nanoseconds decodedBefore = decodingTime();
    m_component.dispatch(std::chrono::milliseconds(0));
    const std::chrono::nanoseconds decoding = decodingTime() - decodedBefore;
    m_figures.addTo(CyclePart::DECODE, decoding);
    m_figures.addTo(CyclePart::RECEIVE, Clock::now() - start - decoding);
}

void NodeMonitor::startCycle()
{
    endCycle();
    const Clock::time_point now = Clock::now();
    const bool isLate = (m_figures.cycles > 0) && (now >= m_cycleStart + 2 * m_interval);
    m_figures.lateCycles += std::uint64_t{isLate};
    m_cycleStart = ((m_figures.cycles > 0) && !isLate) ? m_cycleStart + m_interval : now;
    ++m_figures.cycles;
    followDatabase();
    for (const auto& [place, watched] : m_monitor.places()) {
        if (place.kind == Place::Kind::SLOT) {
            poll(place, m_slots.at(place.number));
        } else {
            readHost(place);
        }
    }
    if (m_figures.cycles == m_options.cycles) {
        m_endBy = Clock::now() + LAST_CYCLE_GRACE;
    }
}

void NodeMonitor::followDatabase()
{
    const PartTimer timer(m_figures, CyclePart::DATABASE);
    try {
        if (const std::optional<RuleBook> book = m_follower.bookIfChanged()) {
            m_monitor.follow(*book, eventTimeNow(), m_events);
            updateSlots();
        }
        m_databaseNotice.set("");
    } catch (const sql::Error& error) {
        m_databaseNotice.set(error.what() + std::string("; the rules stay as they are"));
    }
}

// Once subscribed a slot stays so until the client is deleted, also without objects to read.
void NodeMonitor::updateSlots()
{
    for (const auto& [place, watched] : m_monitor.places()) {
        if (place.kind == Place::Kind::SLOT) {
            m_slots.try_emplace(place.number, place.number, m_component);
        }
    }
    for (auto& [number, slot] : m_slots) {
        slot.setOids(m_monitor.oidsOf(slotPlace(number)));
    }
}

void NodeMonitor::poll(const Place& place, PolledSlot& slot)
{
    const PartTimer timer(m_figures, CyclePart::SEND);
    const Clock::time_point now = Clock::now();
    MonitorFigures::PlaceFigures& figures = m_figures.places[place];
    if (slot.isReading()) {
        ++figures.skipped;
    } else if (slot.isReachable(now)) {
        slot.start(now);
    } else {
        ++figures.failures;
        m_monitor.takeFailure(place, "nobody serves the slot", eventTimeNow(), m_events);
        m_unrecordedSince = m_unrecordedSince.value_or(now);
    }
}

void NodeMonitor::readHost(const Place& place)
{
    Reading reading;
    const Clock::time_point start = Clock::now();
    {
        const PartTimer timer(m_figures, CyclePart::HOST);
        for (const std::uint32_t oid : m_monitor.oidsOf(place)) {
            const auto object = m_hostObjects.find(oid);
            if (object == m_hostObjects.end()) {
                reading.failures[oid] = RESULT_WRONG_OID;
            } else {
                reading.values[oid] = {object->second.type, object->second.read()};
            }
        }
    }
    MonitorFigures::PlaceFigures& figures = m_figures.places[place];
    ++figures.readings;
    figures.lastReading = Clock::now() - start;
    const PartTimer timer(m_figures, CyclePart::EVALUATE);
    m_monitor.takeReading(place, reading, eventTimeNow(), m_events);
    m_unrecordedSince = m_unrecordedSince.value_or(start);
}

void NodeMonitor::takeCompleteReadings()
{
    for (auto& [number, slot] : m_slots) {
        if (slot.isReading() && !slot.isComplete() && !slot.isConnected()) {
            slot.giveUp();
        }
        if (slot.isReading() && slot.isComplete()) {
            takeReading(slotPlace(number), slot);
        }
    }
}

void NodeMonitor::takeReading(const Place& place, PolledSlot& slot)
{
    const Clock::time_point now = Clock::now();
    MonitorFigures::PlaceFigures& figures = m_figures.places[place];
    figures.lastReading = now - slot.startTime();
    const Reading& reading = slot.take();
    ++figures.readings;
    figures.failures += std::uint64_t{reading.values.empty()};
    const PartTimer timer(m_figures, CyclePart::EVALUATE);
    m_monitor.takeReading(place, reading, eventTimeNow(), m_events);
    m_unrecordedSince = m_unrecordedSince.value_or(now);
}

bool NodeMonitor::isAnySlotReading() const
{
    return std::any_of(m_slots.begin(), m_slots.end(), [](const auto& entry) { return entry.second.isReading(); });
}

void NodeMonitor::recordWhenDue()
{
    if (m_unrecordedSince && (!isAnySlotReading() || (Clock::now() >= *m_unrecordedSince + RECORD_DELAY))) {
        record();
    }
}

void NodeMonitor::record()
{
    const PartTimer timer(m_figures, CyclePart::RECORD);
    m_recorder.record(m_events, m_monitor);
    for (const Event& event : m_events) {
        ++m_figures.events[static_cast<std::size_t>(event.kind)];
    }
    m_events.clear();
    m_unrecordedSince.reset();
    m_lastRecord = Clock::now();
}

// Records what is left, so that nothing is read again before, and counts the cycle.
void NodeMonitor::endCycle()
{
    takeCompleteReadings();
    if (m_unrecordedSince || !m_events.empty()) {
        record();
    }
    if (m_lastRecord && (m_figures.cycles > 0)) {
        m_figures.lastCycle = *m_lastRecord - m_cycleStart;
        m_figures.longestCycle = std::max(m_figures.longestCycle, m_figures.lastCycle);
        m_figures.cycleTime += m_figures.lastCycle;
        m_lastRecord.reset();
    }
    m_figures.evaluations = m_monitor.evaluations();
    m_figures.requests = 0;
    for (const auto& [number, slot] : m_slots) {
        m_figures.requests += slot.requestsSent();
    }
    writeMetrics();
    if ((m_pView != nullptr) && (m_figures.cycles > 0)) {
        m_pView->draw(m_monitor, m_figures);
    }
}

void NodeMonitor::writeMetrics()
{
    if (m_options.metricsFile.empty()) {
        return;
    }
    try {
        replaceFile(m_options.metricsFile, prometheusText(m_figures, m_monitor), Durability::UNTIL_CRASH);
        m_metricsNotice.set("");
    } catch (const CommandError& error) {
        m_metricsNotice.set(error.what());
    }
}

bool NodeMonitor::isOver() const
{
    return m_endBy && (!isAnySlotReading() || (Clock::now() >= *m_endBy));
}
