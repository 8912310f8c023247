#include "Log.h"
#include "icsc/OBappsToICSC_1_0_C.h"
#include "icsc/OBappsToICSC_1_0_P.h"
#include "icsc/OBappsToICSC_1_0_PR.h"

namespace {

constexpr OBinterface APPS_TO_ICSC_1_0 = {"appsToICSC", 1, 0};

constexpr std::uint8_t ICSC_READ = 1;
constexpr std::uint8_t ICSC_WRITE = 2;

}  // namespace

OBappsToICSC_1_0_P::OBappsToICSC_1_0_P(OBcomponent& component) : OBproxy(component) {}

OBappsToICSC_1_0_P::~OBappsToICSC_1_0_P() = default;

int OBappsToICSC_1_0_P::ICSCRead(int timeout, buffer_t& tlvs, int& result)
{
    return call(APPS_TO_ICSC_1_0, ICSC_READ, timeout, tlvs, result);
}

int OBappsToICSC_1_0_P::ICSCWrite(int timeout, buffer_t tlvs, int& result)
{
    return call(APPS_TO_ICSC_1_0, ICSC_WRITE, timeout, tlvs, result);
}

OBappsToICSC_1_0_PR::~OBappsToICSC_1_0_PR() = default;

void OBappsToICSC_1_0_PR::replyReceived(const OBmessage& request, const buffer_t& payload, int result)
{
    if (request.operation() == ICSC_READ) {
        ICSCReadReply(request, payload, result);
    } else {
        ICSCWriteReply(request, result);
    }
}

void OBappsToICSC_1_0_PR::ICSCReadReply(const OBmessage&, const buffer_t&, int)
{
    LOG_NEVER_CALLED();
}

void OBappsToICSC_1_0_PR::ICSCWriteReply(const OBmessage&, int)
{
    LOG_NEVER_CALLED();
}

OBappsToICSC_1_0_C::OBappsToICSC_1_0_C(OBcomponent& component, const char* serviceName)
    : OBconnection(component, serviceName, APPS_TO_ICSC_1_0)
{
}

OBappsToICSC_1_0_C::~OBappsToICSC_1_0_C() = default;

void OBappsToICSC_1_0_C::requestReceived(const OBmessage& request, const buffer_t& payload)
{
    switch (request.operation()) {
        case ICSC_READ: ICSCRead(request, request.timeout(), payload); return;
        case ICSC_WRITE: ICSCWrite(request, request.timeout(), payload); return;
        default: break;
    }
    LOG_MESSAGE_WARNING("service %s: refused a request: no operation %d", serviceName().c_str(), request.operation());
    reply(request, buffer_t(), obResult::GENERAL_ERROR);
}

void OBappsToICSC_1_0_C::ICSCRead(const OBmessage& request, int, const buffer_t&)
{
    LOG_NEVER_CALLED();
    reply(request, buffer_t(), obResult::INTERNAL_ERROR);
}

void OBappsToICSC_1_0_C::ICSCWrite(const OBmessage& request, int, const buffer_t&)
{
    LOG_NEVER_CALLED();
    reply(request, buffer_t(), obResult::INTERNAL_ERROR);
}
