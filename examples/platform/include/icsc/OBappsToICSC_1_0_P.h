#ifndef MINIMAL_OB_APPS_TO_ICSC_1_0_P_H
#define MINIMAL_OB_APPS_TO_ICSC_1_0_P_H

#include "message/OBcomponent.h"
#include "message/OBproxy.h"
#include "message/buffer_t.h"

class OBappsToICSC_1_0_P : public OBproxy {
public:
    explicit OBappsToICSC_1_0_P(OBcomponent&) {}

    int ICSCRead(int timeout, buffer_t& tlvs, int& result);
    int ICSCWrite(int timeout, buffer_t tlvs, int& result);
};

#endif
