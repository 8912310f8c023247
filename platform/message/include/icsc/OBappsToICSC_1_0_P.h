#ifndef ICSC_OB_APPS_TO_ICSC_1_0_P_H
#define ICSC_OB_APPS_TO_ICSC_1_0_P_H

// The ICSC interface, version 1.0, calling side: how applications read and write objects on an interface card through
// the card's status-and-control service. Construct, subscribe (OBproxy), call.

#include "message/OBproxy.h"

class MESSAGE_EXPORT OBappsToICSC_1_0_P : public OBproxy {
public:
    explicit OBappsToICSC_1_0_P(OBcomponent& component);
    ~OBappsToICSC_1_0_P() override;

    /// Reads the objects that `tlvs` lists; the card may take `timeout` seconds. Synchronous: the answer's stream
    /// replaces the request in `tlvs`, and `result` receives the ICSC result code. Asynchronous: `tlvs` and `result`
    /// are left unchanged, the answer goes to OBappsToICSC_1_0_PR. Returns 0, or -1 if the call failed (OBproxy::call).
    int ICSCRead(int timeout, buffer_t& tlvs, int& result);

    /// Writes the values that `tlvs` lists; otherwise like ICSCRead, with no stream in the answer.
    int ICSCWrite(int timeout, buffer_t tlvs, int& result);
};

#endif
