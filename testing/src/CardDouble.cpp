#include "brantel/testing/CardDouble.h"

#include <algorithm>
#include <condition_variable>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

#include "brantel/testing/CardRequests.h"
#include "icsc/OBappsToICSC_1_0_C.h"
#include "message/OBresult.h"

namespace brantelTesting {
namespace {

struct Answer {
    std::int32_t result;
    buffer_t tlvs;
};

}  // namespace

struct CardDouble::State {
    explicit State(OBcomponent& cardComponent) : component(cardComponent) {}

    // Nothing: the bytes were not a request.
    Answer answer(const std::optional<CardRequest>& request);

    OBcomponent& component;
    mutable std::mutex mutex;
    mutable std::condition_variable requestCame;
    OidTypeValueMap values;
    std::int32_t result = icsc::RESULT_OK;
    std::map<std::uint32_t, std::int32_t> results;
    std::chrono::milliseconds delay{0};
    bool isSilent = false;
    std::vector<CardRequest> requests;

private:
    std::int32_t resultOf(const CardRequest& request) const;
    Answer read(const ObjectIdContainer& oids) const;
    Answer write(const OidTypeValueContainer& written);
};

Answer CardDouble::State::answer(const std::optional<CardRequest>& request)
{
    if (!request) {
        return {icsc::RESULT_WRONG_LEN, {}};
    }
    const std::lock_guard<std::mutex> lock(mutex);
    requests.push_back(*request);
    requestCame.notify_all();
    const std::int32_t refusal = resultOf(*request);
    if (refusal != icsc::RESULT_OK) {
        return {refusal, {}};
    }
    return request->isWrite ? write(request->values) : read(request->oids);
}

std::int32_t CardDouble::State::resultOf(const CardRequest& request) const
{
    if (result != icsc::RESULT_OK) {
        return result;
    }
    for (const std::uint32_t oid : request.oids) {
        const auto found = results.find(oid);
        if ((found != results.end()) && (found->second != icsc::RESULT_OK)) {
            return found->second;
        }
    }
    const bool hasAll = std::all_of(request.oids.begin(), request.oids.end(),
                                    [this](std::uint32_t oid) { return values.count(oid) != 0; });
    return hasAll ? icsc::RESULT_OK : icsc::RESULT_WRONG_OID;
}

Answer CardDouble::State::read(const ObjectIdContainer& oids) const
{
    OidTypeValueContainer answered;
    for (const std::uint32_t oid : oids) {
        const TypeValueRecord& record = values.at(oid);
        answered.push_back({oid, record.type, record.value});
    }
    Answer answer{icsc::RESULT_OK, {}};
    if (!convertOidTypeValueContainerToTlvs(answered, answer.tlvs)) {
        answer.result = obResult::MESSAGE_TOO_LARGE;
    }
    return answer;
}

Answer CardDouble::State::write(const OidTypeValueContainer& written)
{
    for (const OidTypeValue& value : written) {
        if (value.type != values.at(value.oid).type) {
            return {icsc::RESULT_WRONG_TYPE, {}};
        }
    }
    for (const OidTypeValue& value : written) {
        values[value.oid].value = value.value;
    }
    return {icsc::RESULT_OK, {}};
}

// Lives as long as the card's state.
class CardDouble::Connection : public OBappsToICSC_1_0_C {
public:
    Connection(State& state, std::uint32_t slot, icsc::Interface interface)
        : OBappsToICSC_1_0_C(state.component, icsc::serviceName(slot, interface).c_str()),
          m_state(state),
          m_interface(interface)
    {
    }

protected:
    void ICSCRead(const OBmessage& request, int timeout, const buffer_t& tlvs) override
    {
        const std::optional<ObjectIdContainer> oids = parseReadRequest(tlvs);
        answer(request, oids ? std::optional(CardRequest{m_interface, false, timeout, *oids, {}}) : std::nullopt);
    }

    void ICSCWrite(const OBmessage& request, int timeout, const buffer_t& tlvs) override
    {
        const std::optional<OidTypeValueContainer> values = parseWriteRequest(tlvs);
        if (!values) {
            answer(request, std::nullopt);
            return;
        }
        CardRequest write{m_interface, true, timeout, {}, *values};
        for (const OidTypeValue& value : *values) {
            write.oids.push_back(value.oid);
        }
        answer(request, write);
    }

private:
    void answer(const OBmessage& message, const std::optional<CardRequest>& request)
    {
        const Answer answer = m_state.answer(request);
        wait();
        if (isSilent()) {
            giveUp(message);
        } else {
            reply(message, answer.tlvs, answer.result);
        }
    }

    bool isSilent() const
    {
        const std::lock_guard<std::mutex> lock(m_state.mutex);
        return m_state.isSilent;
    }

    void wait() const
    {
        constexpr std::chrono::milliseconds STEP{5};
        const auto start = std::chrono::steady_clock::now();
        std::unique_lock<std::mutex> lock(m_state.mutex);
        const std::chrono::milliseconds delay = m_state.delay;
        lock.unlock();
        while ((std::chrono::steady_clock::now() - start < delay) && !m_state.component.isStopping()) {
            std::this_thread::sleep_for(STEP);
        }
    }

    State& m_state;
    const icsc::Interface m_interface;
};

CardDouble::CardDouble(OBcomponent& component, std::uint32_t slot) : m_pState(std::make_unique<State>(component))
{
    for (const icsc::Interface interface : {icsc::Interface::SYNC, icsc::Interface::ASYNC}) {
        m_connections.push_back(std::make_unique<Connection>(*m_pState, slot, interface));
    }
}

CardDouble::~CardDouble() = default;

void CardDouble::setValue(const OidTypeValue& value)
{
    buffer_t probe;
    if (!convertOidTypeValueContainerToTlvs({value}, probe)) {
        throw std::invalid_argument("CardDouble: the value of OID " + std::to_string(value.oid) +
                                    " does not hold what its type code, " + std::to_string(value.type) + ", names");
    }
    const std::lock_guard<std::mutex> lock(m_pState->mutex);
    m_pState->values[value.oid] = {value.type, value.value};
}

void CardDouble::removeValue(std::uint32_t oid)
{
    const std::lock_guard<std::mutex> lock(m_pState->mutex);
    m_pState->values.erase(oid);
}

std::optional<TypeValueRecord> CardDouble::value(std::uint32_t oid) const
{
    const std::lock_guard<std::mutex> lock(m_pState->mutex);
    const auto found = m_pState->values.find(oid);
    return (found != m_pState->values.end()) ? std::optional(found->second) : std::nullopt;
}

void CardDouble::setResult(std::int32_t result)
{
    const std::lock_guard<std::mutex> lock(m_pState->mutex);
    m_pState->result = result;
}

void CardDouble::setResultOf(std::uint32_t oid, std::int32_t result)
{
    const std::lock_guard<std::mutex> lock(m_pState->mutex);
    m_pState->results[oid] = result;
}

void CardDouble::setDelay(std::chrono::milliseconds delay)
{
    const std::lock_guard<std::mutex> lock(m_pState->mutex);
    m_pState->delay = delay;
}

void CardDouble::setSilent(bool isSilent)
{
    const std::lock_guard<std::mutex> lock(m_pState->mutex);
    m_pState->isSilent = isSilent;
}

std::vector<CardRequest> CardDouble::takeRequests()
{
    const std::lock_guard<std::mutex> lock(m_pState->mutex);
    return std::exchange(m_pState->requests, {});
}

bool CardDouble::waitForRequests(std::size_t count, std::chrono::milliseconds timeout) const
{
    std::unique_lock<std::mutex> lock(m_pState->mutex);
    return m_pState->requestCame.wait_for(lock, timeout, [&] { return m_pState->requests.size() >= count; });
}

CardThread::CardThread(std::uint32_t slot)
    : m_thread("card double", [this, slot](OBcomponent& component) {
          auto pCard = std::make_shared<CardDouble>(component, slot);
          m_pCard = pCard.get();
          return pCard;
      })
{
}

}  // namespace brantelTesting
