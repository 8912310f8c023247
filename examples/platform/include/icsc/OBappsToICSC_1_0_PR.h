#ifndef MINIMAL_OB_APPS_TO_ICSC_1_0_PR_H
#define MINIMAL_OB_APPS_TO_ICSC_1_0_PR_H

#include "message/OBproxy.h"

class OBappsToICSC_1_0_PR : public OBproxyReplyInterface {};

#endif
