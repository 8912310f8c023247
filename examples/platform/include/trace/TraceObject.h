#ifndef MINIMAL_TRACE_OBJECT_H
#define MINIMAL_TRACE_OBJECT_H

#include <cstdint>

class TraceObject {
public:
    explicit TraceObject(std::int32_t level) : m_level(level) {}

    std::int32_t getTraceLevel() const { return m_level; }

private:
    std::int32_t m_level;
};

extern TraceObject* g_traceObject;

#endif
