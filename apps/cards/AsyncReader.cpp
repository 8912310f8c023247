#include "cards/AsyncReader.h"

#include <utility>

#include "message/OBmessage.h"

namespace brantel {

AsyncReader::AsyncReader(Send send) : m_send(std::move(send)) {}

void AsyncReader::start(ReadPlan plan)
{
    m_plan = std::move(plan);
    sendNext();
}

void AsyncReader::sendNext()
{
    if (m_plan.isDone()) {
        return;
    }
    if (m_send(m_plan.request())) {
        ++m_requestsMade;
    } else {
        m_plan.takeNoAnswer();
    }
}

void AsyncReader::ICSCReadReply(const OBmessage& message, const buffer_t& tlvs, int result)
{
    if (m_plan.isDone() || (message.sequenceNumber() != m_requestsMade)) {
        return;  // of a reading that was given up
    }
    const auto start = std::chrono::steady_clock::now();
    m_plan.takeAnswer(result, tlvs);
    m_decodingTime += std::chrono::steady_clock::now() - start;
    sendNext();
}

}  // namespace brantel
