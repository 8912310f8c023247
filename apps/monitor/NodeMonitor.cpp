#include "monitor/NodeMonitor.h"

#include <algorithm>
#include <stdexcept>

#include <poll.h>
#include <unistd.h>

#include "IcscClientProxy.h"
#include "common/CommandLine.h"
#include "common/ReplacedFile.h"
#include "common/ResultOutput.h"

namespace brantel {
namespace {

// How long the first cycle waits for the cards to connect.
constexpr std::chrono::milliseconds CONNECT_TIME{250};

// How long events wait for the readings of other slots, so that they are recorded together.
constexpr std::chrono::milliseconds RECORD_DELAY{50};

// How long outstanding readings may take when the monitor ends: after a signal, and after the last cycle.
constexpr std::chrono::seconds SIGNAL_GRACE{1};
constexpr std::chrono::seconds LAST_CYCLE_GRACE{10};

// Adds its lifetime to a part of the cycle.
class PartTimer {
public:
    PartTimer(MonitorMetrics& metrics, CyclePart part) : m_metrics(metrics), m_part(part) {}
    ~PartTimer() { m_metrics.addTo(m_part, std::chrono::steady_clock::now() - m_start); }
    PartTimer(const PartTimer&) = delete;
    PartTimer& operator=(const PartTimer&) = delete;

private:
    MonitorMetrics& m_metrics;
    const CyclePart m_part;
    const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

}  // namespace

NodeMonitor::NodeMonitor(const NodeMonitorOptions& options, MonitorStreams& streams)
    : m_options(options),
      m_streams(streams),
      m_interval(std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(options.interval))),
      m_watcher(options.database, options.slots),
      m_recorder(options.journal, options.stateFile)
{
    IcscClientProxy::createInstance();
    try {
        addHostObjects(m_hostObjects);
        addOutputs();
        m_recorder.restore(m_monitor);
        m_monitor.follow(m_watcher.read(), {utcTimeNow(), m_events});
        subscribeSlots();
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
        auto pView = std::make_unique<LiveView>(m_streams.output());
        m_pView = pView.get();
        m_recorder.addOutput(std::move(pView));
    } else {
        m_recorder.addOutput(std::make_unique<LineOutput>(m_streams.output(), m_options.isJson));
    }
}

void NodeMonitor::run()
{
    waitForCards();
    startCycle();
    while (!isOver()) {
        waitForInput();
        handleSignals();
        handleAnswers();
        takeCompleteReadings();
        recordWhenDue();
        if (!m_endBy && (Clock::now() >= m_cycleStart + m_interval)) {
            startCycle();
        }
    }
    endCycle();  // outstanding readings count as never made
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

void NodeMonitor::waitForInput()
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
        m_metrics.addTo(CyclePart::WAIT, Clock::now() - start);
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
            m_watcher.forget();
            m_recorder.releaseJournal();
            break;
        case SIGUSR1: m_streams.diagnostics().put({prometheusText(m_metrics, m_monitor)}); break;
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
    m_metrics.addTo(CyclePart::DECODE, decoding);
    m_metrics.addTo(CyclePart::RECEIVE, Clock::now() - start - decoding);
}

void NodeMonitor::startCycle()
{
    endCycle();
    const Clock::time_point now = Clock::now();
    const bool isLate = (m_metrics.cycles > 0) && (now >= m_cycleStart + 2 * m_interval);
    m_metrics.lateCycles += std::uint64_t{isLate};
    m_cycleStart = ((m_metrics.cycles > 0) && !isLate) ? m_cycleStart + m_interval : now;
    ++m_metrics.cycles;
    followDatabase();
    const std::string fault = subscriptionFault();
    for (const auto& [place, watched] : m_monitor.places()) {
        const auto slot = m_slots.find(place.number);
        if (place.kind != Place::Kind::SLOT) {
            readHost(place);
        } else if (slot == m_slots.end()) {
            takeFailure(place, fault);
        } else {
            poll(place, slot->second);
        }
    }
    if (m_metrics.cycles == m_options.cycles) {
        m_endBy = Clock::now() + LAST_CYCLE_GRACE;
    }
}

void NodeMonitor::followDatabase()
{
    const PartTimer timer(m_metrics, CyclePart::DATABASE);
    try {
        if (const std::optional<RuleSet> ruleSet = m_watcher.readIfChanged()) {
            m_monitor.follow(*ruleSet, {utcTimeNow(), m_events});
            updateOids();
        }
        m_databaseNotice.set("");
    } catch (const sql::Error& error) {
        m_databaseNotice.set(error.what() + std::string("; the rules do not change"));
    }
}

// A slot stays subscribed until the client is deleted, even without objects to read. Throws std::system_error if there
// are too few descriptors.
void NodeMonitor::subscribeSlots()
{
    for (const auto& [place, watched] : m_monitor.places()) {
        if ((place.kind == Place::Kind::SLOT) && (m_slots.count(place.number) == 0)) {
            m_slots.try_emplace(place.number, place.number, m_component);
            updateOids();
        }
    }
}

// Why not all slots are subscribed; empty if they are. Each cycle tries the others again.
std::string NodeMonitor::subscriptionFault()
{
    try {
        subscribeSlots();
        return "";
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

void NodeMonitor::updateOids()
{
    for (auto& [number, slot] : m_slots) {
        slot.setOids(m_monitor.oidsOf(slotPlace(number)));
    }
}

void NodeMonitor::takeFailure(const Place& place, const std::string& reason)
{
    ++m_metrics.places[place].failures;
    m_monitor.takeFailure(place, reason, {utcTimeNow(), m_events});
    m_unrecordedSince = m_unrecordedSince.value_or(Clock::now());
}

void NodeMonitor::poll(const Place& place, PolledSlot& slot)
{
    const PartTimer timer(m_metrics, CyclePart::SEND);
    const Clock::time_point now = Clock::now();
    if (slot.isReading()) {
        ++m_metrics.places[place].skipped;
    } else if (slot.isConnected()) {
        slot.start(now);
    } else {
        takeFailure(place, slot.reasonOfAbsence());
    }
}

void NodeMonitor::readHost(const Place& place)
{
    Reading reading;
    const Clock::time_point start = Clock::now();
    {
        const PartTimer timer(m_metrics, CyclePart::HOST);
        for (const std::uint32_t oid : m_monitor.oidsOf(place)) {
            const auto object = m_hostObjects.find(oid);
            if (object == m_hostObjects.end()) {
                reading.failures[oid] = icsc::RESULT_WRONG_OID;
            } else {
                reading.values[oid] = {object->second.type, object->second.read()};
            }
        }
    }
    MonitorMetrics::PlaceMetrics& metrics = m_metrics.places[place];
    ++metrics.readings;
    metrics.lastReading = Clock::now() - start;
    const PartTimer timer(m_metrics, CyclePart::EVALUATE);
    m_monitor.takeReading(place, reading, {utcTimeNow(), m_events});
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
    MonitorMetrics::PlaceMetrics& metrics = m_metrics.places[place];
    metrics.lastReading = now - slot.startTime();
    const Reading& reading = slot.takeReading();
    ++metrics.readings;
    metrics.failures += std::uint64_t{reading.values.empty()};
    const PartTimer timer(m_metrics, CyclePart::EVALUATE);
    m_monitor.takeReading(place, reading, {utcTimeNow(), m_events});
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
    const PartTimer timer(m_metrics, CyclePart::RECORD);
    m_recorder.record(m_events, m_monitor);
    for (const Event& event : m_events) {
        ++m_metrics.events[static_cast<std::size_t>(event.kind)];
    }
    m_events.clear();
    m_unrecordedSince.reset();
    m_lastRecord = Clock::now();
}

// Records the rest, before anything is read again, and counts the cycle.
void NodeMonitor::endCycle()
{
    takeCompleteReadings();
    if (m_unrecordedSince || !m_events.empty()) {
        record();
    }
    if (m_lastRecord && (m_metrics.cycles > 0)) {
        m_metrics.lastCycle = *m_lastRecord - m_cycleStart;
        m_metrics.longestCycle = std::max(m_metrics.longestCycle, m_metrics.lastCycle);
        m_metrics.cycleTime += m_metrics.lastCycle;
        m_lastRecord.reset();
    }
    m_metrics.evaluations = m_monitor.evaluations();
    m_metrics.requests = 0;
    for (const auto& [number, slot] : m_slots) {
        m_metrics.requests += slot.requestsMade();
    }
    m_metrics.waitingEvents = m_recorder.waitingEvents();
    m_metrics.lostEvents = m_recorder.lostEvents();
    m_metrics.journalFailing = m_recorder.journalFailing();
    m_metrics.stateFailing = m_recorder.stateFailing();
    writeMetrics();
    if ((m_pView != nullptr) && (m_metrics.cycles > 0)) {
        m_pView->draw(m_monitor, m_metrics);
    }
    m_streams.requireOutput();
}

void NodeMonitor::writeMetrics()
{
    if (m_options.metricsFile.empty()) {
        return;
    }
    try {
        replaceFile(m_options.metricsFile, METRICS_START, prometheusText(m_metrics, m_monitor),
                    Durability::UNTIL_CRASH);
        m_metricsNotice.set("");
    } catch (const CommandError& error) {
        m_metricsNotice.set(error.what());
    }
}

bool NodeMonitor::isOver() const
{
    return m_endBy && (!isAnySlotReading() || (Clock::now() >= *m_endBy));
}

}  // namespace brantel
