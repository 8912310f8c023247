#ifndef APPS_CARDS_ASYNC_READER_H
#define APPS_CARDS_ASYNC_READER_H

// Reads objects of one card with asynchronous calls: each answer sends the next request of the plan.
//
//     AsyncReader reader([&](const ObjectIdContainer& request) { return client.getOidsAsync(slot, request); });
//     client.subscribeAsyncInterface(slot, component, reader);
//     reader.start(ReadPlan(slot, oids));
//     while (!reader.isDone()) {
//         component.dispatch(...);
//     }

#include <chrono>
#include <cstdint>
#include <functional>

#include "cards/ReadPlan.h"
#include "icsc/OBappsToICSC_1_0_PR.h"

namespace brantel {

class AsyncReader : public OBappsToICSC_1_0_PR {
public:
    /// Sends a request to read these objects to a service that nothing else in the component calls; false if it could
    /// not be sent.
    using Send = std::function<bool(const ObjectIdContainer&)>;

    explicit AsyncReader(Send send);

    /// Begins a reading; what is still to come of the one before is given up.
    void start(ReadPlan plan);

    bool isDone() const { return m_plan.isDone(); }

    /// Makes what is still to come fail.
    void giveUp() { m_plan.takeNoAnswer(); }

    /// Complete when the reading is done.
    const Reading& reading() const { return m_plan.reading(); }

    /// How many requests were made, and how long their answers took to decode, since construction.
    std::uint64_t requestsMade() const { return m_requestsMade; }
    std::chrono::nanoseconds decodingTime() const { return m_decodingTime; }

private:
    void ICSCReadReply(const OBmessage& message, const buffer_t& tlvs, int result) override;
    void sendNext();

    const Send m_send;
    ReadPlan m_plan{0, {}};
    std::uint64_t m_requestsMade = 0;  ///< also the sequence number of the last one
    std::chrono::nanoseconds m_decodingTime{0};
};

}  // namespace brantel

#endif
