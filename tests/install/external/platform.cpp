#include "foreign_platform.h"

#include "IfcCardStatusAndControl.h"
#include "icsc/OBappsToICSC_1_0_P.h"

int foreignPlatform::levelQuestions = 0;
int foreignPlatform::assertionReports = 0;
std::string foreignPlatform::subscribedService;

TraceObject* g_traceObject = nullptr;

TraceObject::~TraceObject() = default;

std::int32_t TraceObject::getTraceLevel() const
{
    ++foreignPlatform::levelQuestions;
    return m_level;
}

void logAssertFailed(const char*, const char*, int, const char*)
{
    ++foreignPlatform::assertionReports;
}

bool OBproxy::subscribe_synchronous(const char* name)
{
    foreignPlatform::subscribedService = name;
    return true;
}

bool OBproxy::subscribe_asynchronous(const char* name, OBproxyReplyInterface*)
{
    return subscribe_synchronous(name);
}

OBappsToICSC_1_0_P::OBappsToICSC_1_0_P(OBcomponent&) {}

// Answers every request with the integer 42 for OID 7.
int OBappsToICSC_1_0_P::ICSCRead(int, buffer_t& tlvs, int& result)
{
    buffer_t element;
    element << 7u << static_cast<unsigned char>(OID_TYPE_INT32) << 42;
    tlvs.clear();
    tlvs << 1u << element;
    result = 0;
    return 0;
}

int OBappsToICSC_1_0_P::ICSCWrite(int, buffer_t, int&)
{
    return -1;
}
