#ifndef OTHER_OBAPPSTOICSC_1_0_PR_H
#define OTHER_OBAPPSTOICSC_1_0_PR_H

class OBappsToICSC_1_0_PR {};

#endif
