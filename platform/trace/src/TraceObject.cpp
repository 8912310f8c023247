#include "trace/TraceObject.h"

TraceObject* g_traceObject = nullptr;
