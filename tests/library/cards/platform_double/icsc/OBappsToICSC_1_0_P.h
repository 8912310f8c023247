#ifndef DOUBLE_ICSC_OB_APPS_TO_ICSC_1_0_P_H
#define DOUBLE_ICSC_OB_APPS_TO_ICSC_1_0_P_H

#include "message/OBproxy.h"
#include "support/HexBytes.h"

class OBappsToICSC_1_0_P : public OBproxy {
public:
    explicit OBappsToICSC_1_0_P(OBcomponent& component) : OBproxy(component) {}

    int ICSCRead(int timeout, buffer_t& tlvs, int& result) { return call("ICSCRead", timeout, tlvs, result); }
    int ICSCWrite(int timeout, buffer_t tlvs, int& result) { return call("ICSCWrite", timeout, tlvs, result); }

private:
    int call(const std::string& operation, int timeout, buffer_t& tlvs, int& result)
    {
        note(operation + " timeout " + std::to_string(timeout) + " tlvs " + hexOf(tlvs) + " result " +
             std::to_string(result));
        return platformDouble::answer(tlvs, result);
    }
};

#endif
