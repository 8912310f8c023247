#ifndef APPS_MONITOR_MONITOR_METRICS_H
#define APPS_MONITOR_MONITOR_METRICS_H

// The monitor's metrics, in Prometheus' text format (docs/monitor.md lists them).

#include <array>
#include <chrono>
#include <cstdint>
#include <map>
#include <string>

#include "monitor/ConditionMonitor.h"

namespace brantel {

/// What the time of a cycle is spent on.
enum class CyclePart {
    DATABASE,  ///< looking for changes, and following them
    SEND,      ///< beginning readings: encoding and sending the first requests
    WAIT,      ///< waiting for answers
    RECEIVE,   ///< taking answers from the framework and sending further requests, without decoding
    DECODE,    ///< decoding answers
    HOST,      ///< reading the host's counters
    EVALUATE,  ///< evaluating rules
    RECORD     ///< writing state and journal, and reporting events
};
constexpr std::size_t N_CYCLE_PARTS = 8;

struct MonitorMetrics {
    using Seconds = std::chrono::duration<double>;

    std::uint64_t cycles = 0;
    Seconds cycleTime{0};  ///< of all cycles, each from its start to its last recorded reading
    Seconds lastCycle{0};
    Seconds longestCycle{0};
    std::array<Seconds, N_CYCLE_PARTS> parts{};
    std::uint64_t lateCycles = 0;  ///< that began later than their time
    std::uint64_t requests = 0;
    std::uint64_t evaluations = 0;
    std::array<std::uint64_t, N_EVENT_KINDS> events{};  ///< by EventKind
    std::uint64_t waitingEvents = 0;                    ///< not in the journal yet, or not synchronised
    std::uint64_t lostEvents = 0;                       ///< that the journal will never have
    Seconds journalFailing{0};                          ///< since the last successful write
    Seconds stateFailing{0};

    struct PlaceMetrics {
        std::uint64_t readings = 0;
        std::uint64_t failures = 0;  ///< readings that brought nothing
        std::uint64_t skipped = 0;   ///< readings not begun, because the one before was still under way
        Seconds lastReading{0};
    };
    std::map<Place, PlaceMetrics> places;

    void addTo(CyclePart part, std::chrono::nanoseconds time) { parts[static_cast<std::size_t>(part)] += time; }
};

/// The beginning of the text, and of no other file.
constexpr const char* METRICS_START = "# HELP brantel_monitor_";

std::string prometheusText(const MonitorMetrics& metrics, const ConditionMonitor& monitor);

}  // namespace brantel

#endif
