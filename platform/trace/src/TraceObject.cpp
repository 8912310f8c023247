#include "trace/TraceObject.h"

// Weak, so that the address sanitizer accepts a program with both libraries that have it, libbrantel_trace and
// libbrantel_rules; the first one counts.
__attribute__((weak)) TraceObject* g_traceObject = nullptr;
