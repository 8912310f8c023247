#ifndef OTHER_OBAPPSTOICSC_1_0_P_H
#define OTHER_OBAPPSTOICSC_1_0_P_H

#include "message/OBcomponent.h"
#include "message/buffer_t.h"

class OBappsToICSC_1_0_P {
public:
    explicit OBappsToICSC_1_0_P(const char* component);

    void ICSCRead(int timeout, buffer_t& tlvs, int& result);
    int ICSCWrite(int timeout, buffer_t& tlvs, int& result);
};

#endif
