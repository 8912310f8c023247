#ifndef DEVIATING_TRACE_OBJECT_H
#define DEVIATING_TRACE_OBJECT_H

#include <cstdint>

class TraceObject {
public:
    std::int32_t getTraceLevel() const;
};

extern TraceObject* g_traceObject;

#endif
