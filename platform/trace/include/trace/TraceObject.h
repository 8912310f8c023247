#ifndef TRACE_TRACE_OBJECT_H
#define TRACE_TRACE_OBJECT_H

// The process's trace level: what the node's components and libraries write to syslog.
//
//     above 2   errors
//     above 3   warnings
//     above 8   debug lines
//
// A program creates one TraceObject at start-up and points g_traceObject at it; until then only assertion reports
// (logAssertFailed) are written. The object must outlive every thread that may log.
//
// Of a node's own platform the libraries take getTraceLevel and g_traceObject, no more: how its TraceObject is made is
// between the program and that platform.

#include <atomic>
#include <cstdint>

class TraceObject {
public:
    explicit TraceObject(std::int32_t traceLevel) : m_traceLevel(traceLevel) {}

    /// The current level. May be called on any thread.
    std::int32_t getTraceLevel() const { return m_traceLevel.load(std::memory_order_relaxed); }

    /// Takes effect at once, on every thread. Any number is a level; a negative one silences like 0.
    void setTraceLevel(std::int32_t traceLevel) { m_traceLevel.store(traceLevel, std::memory_order_relaxed); }

private:
    std::atomic<std::int32_t> m_traceLevel;
};

/// The process's trace object; null until the program sets it.
__attribute__((visibility("default"))) extern TraceObject* g_traceObject;

#endif
