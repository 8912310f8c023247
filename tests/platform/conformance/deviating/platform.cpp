#include "Deviation.h"
#include "icsc/OBappsToICSC_1_0_P.h"
#include "trace/TraceObject.h"
#include "trace/logAssertFailed.h"

namespace {

TraceObject trace;

}  // namespace

TraceObject* g_traceObject = &trace;

std::int32_t TraceObject::getTraceLevel() const
{
    if (deviates("trace level is not available")) {
        std::exit(3);
    }
    return 0;
}

void logAssertFailed(const char*, const char*, int, const char*)
{
    if (deviates("logAssertFailed aborts")) {
        std::abort();
    }
}

int OBappsToICSC_1_0_P::ICSCRead(int, buffer_t&, int&)
{
    return -1;
}

int OBappsToICSC_1_0_P::ICSCWrite(int, buffer_t, int&)
{
    return -1;
}
