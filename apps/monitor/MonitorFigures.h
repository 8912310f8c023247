#ifndef APPS_MONITOR_MONITOR_FIGURES_H
#define APPS_MONITOR_MONITOR_FIGURES_H

// The monitor's figures about itself, for operators, in Prometheus' text format (docs/monitor.md lists them).

#include <array>
#include <chrono>
#include <cstdint>
#include <map>
#include <string>

#include "monitor/ConditionMonitor.h"

/// What a cycle's time goes into. All but WAIT is the monitor's own.
enum class CyclePart {
    DATABASE,  ///< to look for changes, and to follow them
    SEND,      ///< to begin readings: to encode and send the first requests
    WAIT,      ///< for answers
    RECEIVE,   ///< to take answers from the framework and to send further requests, decoding left out
    DECODE,    ///< to decode them
    HOST,      ///< to read the host's own counters
    EVALUATE,  ///< to evaluate rules
    RECORD     ///< to write state and journal and tell of events
};
constexpr std::size_t N_CYCLE_PARTS = 8;

struct MonitorFigures {
    using Seconds = std::chrono::duration<double>;

    std::uint64_t cycles = 0;
    Seconds cycleTime{0};  ///< of all cycles: from the start of each to the last reading that was recorded
    Seconds lastCycle{0};
    Seconds longestCycle{0};
    std::array<Seconds, N_CYCLE_PARTS> parts{};
    std::uint64_t lateCycles = 0;  ///< that began later than their time
    std::uint64_t requests = 0;
    std::uint64_t evaluations = 0;
    std::array<std::uint64_t, 5> events{};  ///< by EventKind

    struct PlaceFigures {
        std::uint64_t readings = 0;
        std::uint64_t failures = 0;  ///< readings that brought nothing
        std::uint64_t skipped = 0;   ///< readings not begun, because the one before was still under way
        Seconds lastReading{0};
    };
    std::map<Place, PlaceFigures> places;

    void addTo(CyclePart part, std::chrono::nanoseconds time) { parts[static_cast<std::size_t>(part)] += time; }
};

std::string prometheusText(const MonitorFigures& figures, const ConditionMonitor& monitor);

#endif
