#ifndef ICSC_OB_APPS_TO_ICSC_1_0_C_H
#define ICSC_OB_APPS_TO_ICSC_1_0_C_H

// The ICSC interface, version 1.0, serving side: between the applications and one interface card. Derive,
// override both operations, and construct one object per service name ("ICSCClient3.ReadWriteSync").

#include "message/OBconnection.h"

class MESSAGE_EXPORT OBappsToICSC_1_0_C : public OBconnection {
public:
    /// Serves `serviceName` until destroyed. Throws std::runtime_error like OBconnection.
    OBappsToICSC_1_0_C(OBcomponent& component, const char* serviceName);
    ~OBappsToICSC_1_0_C() override;

protected:
    /// A read: answer with reply(request, values, result), now or within `timeout` seconds. `tlvs` is valid during the
    /// call. The default logs that it should never be called, and answers INTERNAL_ERROR.
    virtual void ICSCRead(const OBmessage& request, int timeout, const buffer_t& tlvs);

    /// A write: answer with reply(request, buffer_t(), result); otherwise like ICSCRead.
    virtual void ICSCWrite(const OBmessage& request, int timeout, const buffer_t& tlvs);

    void requestReceived(const OBmessage& request, const buffer_t& payload) override;
};

#endif
