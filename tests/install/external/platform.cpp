#include "foreign_platform.h"

int foreignPlatform::levelQuestions = 0;
int foreignPlatform::assertionReports = 0;

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
