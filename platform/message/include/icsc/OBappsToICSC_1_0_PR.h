#ifndef ICSC_OB_APPS_TO_ICSC_1_0_PR_H
#define ICSC_OB_APPS_TO_ICSC_1_0_PR_H

// The ICSC interface, version 1.0: the answers of asynchronous calls. A component derives from this class, overrides
// the operations that it calls, and subscribes its proxies (OBappsToICSC_1_0_P) with it; one object may serve several
// proxies, and distinguishes them by the request's service name.

#include "message/OBproxy.h"

class MESSAGE_EXPORT OBappsToICSC_1_0_PR : public OBproxyReplyInterface {
public:
    OBappsToICSC_1_0_PR() = default;
    ~OBappsToICSC_1_0_PR() override;

    /// Answers of reads: the stream of values, and the ICSC result code (TIMEOUT, with no stream, if nothing came).
    /// The default logs that it should never be called.
    virtual void ICSCReadReply(const OBmessage& request, const buffer_t& tlvs, int result);

    /// Answers of writes, likewise.
    virtual void ICSCWriteReply(const OBmessage& request, int result);

    void replyReceived(const OBmessage& request, const buffer_t& payload, int result) override;
};

#endif
