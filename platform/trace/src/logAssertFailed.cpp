#include "trace/logAssertFailed.h"

#include <atomic>

#include <syslog.h>

namespace {

std::atomic<AssertFailedHandler> installedHandler{nullptr};

}  // namespace

void logAssertFailed(const char* condition, const char* file, int line, const char* function)
{
    const AssertFailedHandler handler = installedHandler.load();
    if (handler != nullptr) {
        handler(condition, file, line, function);
        return;
    }
    syslog(LOG_ERR, "Assertion '%s' failed: %s:%d (%s)", condition, file, line, function);
}

AssertFailedHandler setAssertFailedHandler(AssertFailedHandler handler)
{
    return installedHandler.exchange(handler);
}
