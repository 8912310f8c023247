// The least that the library builds and runs on. Behind each service is a card that answers a read with the values that
// were written last.

#include <cstdio>
#include <map>

#include "icsc/OBappsToICSC_1_0_P.h"
#include "trace/TraceObject.h"
#include "trace/logAssertFailed.h"

TraceObject* g_traceObject = nullptr;

void logAssertFailed(const char* condition, const char* file, int line, const char* function)
{
    std::fprintf(stderr, "%s:%d (%s): '%s' does not hold\n", file, line, function, condition);
}

namespace {

std::map<std::string, buffer_t> valuesByService;

}  // namespace

int OBappsToICSC_1_0_P::ICSCRead(int, buffer_t& tlvs, int& result)
{
    const auto values = valuesByService.find(m_service);
    if (values == valuesByService.end()) {
        return -1;
    }
    tlvs = values->second;
    result = 0;
    return 0;
}

int OBappsToICSC_1_0_P::ICSCWrite(int, buffer_t tlvs, int& result)
{
    if (m_service.empty()) {
        return -1;
    }
    valuesByService[m_service] = tlvs;
    result = 0;
    return 0;
}
