#ifndef APPS_CARDS_SLOT_READING_H
#define APPS_CARDS_SLOT_READING_H

// Reads objects of the card in one slot without waiting. The requests of a reading go out together, through the
// library's client, which has subscribed the slot with this object for the answers; they come from the component's
// dispatch. A reading is complete when each request was answered or given up. One reading at a time.

#include <chrono>
#include <cstdint>
#include <map>
#include <vector>

#include "cards/CardClient.h"
#include "icsc/OBappsToICSC_1_0_PR.h"

class SlotReading : public OBappsToICSC_1_0_PR {
public:
    explicit SlotReading(std::uint32_t slot) : m_slot(slot) {}

    /// Sends the requests. What could not be read of a reading before is forgotten.
    void start(const std::vector<ObjectIdContainer>& requests);

    bool isComplete() const { return m_requests.empty(); }

    /// Gives up what is not answered yet; answers that come later count for nothing.
    void giveUp();

    /// What has been read, and what could not be.
    const Reading& reading() const { return m_reading; }

    /// How many requests were sent, and how long their answers took to decode, since construction.
    std::uint64_t requestsSent() const { return m_requestsSent; }
    std::chrono::nanoseconds decodingTime() const { return m_decodingTime; }

private:
    void ICSCReadReply(const OBmessage& message, const buffer_t& tlvs, int result) override;
    void send(const ObjectIdContainer& request);
    bool take(const ObjectIdContainer& request, const buffer_t& tlvs);
    void failOrHalve(const ObjectIdContainer& request, std::int32_t result);
    void fail(const ObjectIdContainer& request, std::int32_t result);

    const std::uint32_t m_slot;
    std::map<std::uint64_t, ObjectIdContainer> m_requests;  ///< those under way, by sequence number
    std::uint64_t m_calls = 0;  ///< the sequence number of the last one: all calls of a proxy count, from 1
    Reading m_reading;
    std::uint64_t m_requestsSent = 0;
    std::chrono::nanoseconds m_decodingTime{0};
};

#endif
