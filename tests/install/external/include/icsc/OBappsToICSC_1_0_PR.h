#ifndef FOREIGN_OBAPPSTOICSC_1_0_PR_H
#define FOREIGN_OBAPPSTOICSC_1_0_PR_H

#include "message/OBproxy.h"

class OBappsToICSC_1_0_PR : public OBproxyReplyInterface {};

#endif
