#ifndef FOREIGN_TRACE_OBJECT_H
#define FOREIGN_TRACE_OBJECT_H

#include <cstdint>

class TraceObject {
public:
    virtual ~TraceObject();
    std::int32_t getTraceLevel() const;

private:
    std::int32_t m_level = 0;
};

extern TraceObject* g_traceObject;

#endif
