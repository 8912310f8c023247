#ifndef APPS_CARDS_READ_PLAN_H
#define APPS_CARDS_READ_PLAN_H

// Reading many objects with requests and answers of 2048 bytes: as few requests as the bytes of their answers allow, as
// far as these are known; a request is smaller than its answer. A card refuses a request as a whole; one that it
// refuses for an answer too large, or for an object, is halved until what fails is alone.
//
//     ReadPlan plan(slot, oids);
//     while (!plan.isDone()) {
//         ...                              // request plan.request()
//         plan.takeAnswer(result, tlvs);   // or plan.takeNoAnswer()
//     }

#include <cstdint>
#include <deque>
#include <map>
#include <vector>

#include "IfcCardStatusAndControl.h"
#include "cards/ResultText.h"
#include "cards/Tlv.h"

namespace brantel {

/// Results for the requested objects: each is in one of the two.
struct Reading {
    OidTypeValueMap values;
    std::map<std::uint32_t, CallOutcome> failures;
};

/// Whether a call failed without an answer.
bool isUnanswered(const Reading& reading);

class ReadPlan {
public:
    /// `oids` must not hold an OID twice.
    ReadPlan(std::uint32_t slot, const ObjectIdContainer& oids);

    /// Adds an object, which the plan does not have, as a separate request: one that the card may refuse.
    void addApart(std::uint32_t oid) { m_requests.push_back({oid}); }

    bool isDone() const { return m_requests.empty(); }

    /// What to request next; not if all is done.
    const ObjectIdContainer& request() const { return m_requests.front(); }

    /// The answer to request(). After the result TIMEOUT nothing more is requested.
    void takeAnswer(std::int32_t result, const buffer_t& tlvs);

    /// The call failed, or was not made: nothing more is requested.
    void takeNoAnswer(CallOutcome outcome = NO_ANSWER);

    /// Complete when all is done.
    const Reading& reading() const { return m_reading; }

private:
    ObjectIdContainer takeRequest();
    void takeValues(ObjectIdContainer request, const buffer_t& tlvs);
    buffer_t takeOutMalformedValues(const std::vector<TlvElement>& elements, ObjectIdContainer& request);
    void putHalvesBack(const ObjectIdContainer& request);
    void fail(const ObjectIdContainer& request, CallOutcome outcome);
    void failAll(CallOutcome outcome);

    std::uint32_t m_slot;
    std::deque<ObjectIdContainer> m_requests;
    Reading m_reading;
};

}  // namespace brantel

#endif
