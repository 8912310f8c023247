#include "cards/CardServer.h"

#include <algorithm>

#include "icsc/OBappsToICSC_1_0_C.h"
#include "message/OBresult.h"

namespace brantel {
namespace {

constexpr std::chrono::milliseconds LONGEST_WAIT{60'000};

}  // namespace

class CardServer::Connection : public OBappsToICSC_1_0_C {
public:
    Connection(OBcomponent& component, const std::string& serviceName, CardServer& server)
        : OBappsToICSC_1_0_C(component, serviceName.c_str()), m_server(server)
    {
    }

protected:
    void ICSCRead(const OBmessage& request, int, const buffer_t& tlvs) override
    {
        m_server.answerRead(*this, request, tlvs);
    }

    void ICSCWrite(const OBmessage& request, int, const buffer_t& tlvs) override
    {
        m_server.answerWrite(*this, request, tlvs);
    }

private:
    CardServer& m_server;
};

CardServer::CardServer(OBcomponent& component, std::uint32_t slot, Card& card) : m_component(component), m_card(card)
{
    for (const icsc::Interface interface : {icsc::Interface::SYNC, icsc::Interface::ASYNC}) {
        m_connections.push_back(std::make_unique<Connection>(component, icsc::serviceName(slot, interface), *this));
    }
}

CardServer::~CardServer() = default;

std::vector<std::string> CardServer::endpoints() const
{
    std::vector<std::string> endpoints;
    for (const auto& pConnection : m_connections) {
        endpoints.push_back(pConnection->serviceName() + " at " + pConnection->endpoint());
    }
    return endpoints;
}

void CardServer::run()
{
    while (!m_component.isStopping()) {
        m_component.dispatch(timeToNextAnswer());
        giveDueAnswers();
    }
}

void CardServer::answerRead(Connection& connection, const OBmessage& request, const buffer_t& tlvs)
{
    const Faults faults = faultsFor(tlvs);
    Card::Answer answer = faults.result ? Card::Answer{*faults.result, buffer_t()} : m_card.read(tlvs);
    if (answer.result == icsc::RESULT_OK) {
        const std::optional<buffer_t> corrupted = corruptedStream(faults, answer.tlvs);
        answer = corrupted ? Card::Answer{icsc::RESULT_OK, *corrupted}
                           : Card::Answer{obResult::MESSAGE_TOO_LARGE, buffer_t()};
    }
    give(connection, request, answer, faults);
}

void CardServer::answerWrite(Connection& connection, const OBmessage& request, const buffer_t& tlvs)
{
    const Faults faults = faultsFor(tlvs);
    give(connection, request, {faults.result ? *faults.result : m_card.write(tlvs), buffer_t()}, faults);
}

Faults CardServer::faultsFor(const buffer_t& tlvs) const
{
    return Card::isAboutFaultsOnly(tlvs) ? Faults() : m_card.faults();
}

void CardServer::give(Connection& connection, const OBmessage& request, const Card::Answer& answer,
                      const Faults& faults)
{
    if (faults.isWithoutAnswer) {
        connection.giveUp(request);
    } else if (faults.isSilent) {
        return;
    } else if (faults.delay) {
        const auto delay = std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(*faults.delay));
        m_delayedAnswers.insert({Clock::now() + delay, {connection, request, answer}});
    } else {
        connection.reply(request, answer.tlvs, answer.result);
    }
}

void CardServer::giveDueAnswers()
{
    const Clock::time_point now = Clock::now();
    while (!m_delayedAnswers.empty() && (m_delayedAnswers.begin()->first <= now)) {
        const DelayedAnswer due = m_delayedAnswers.begin()->second;
        m_delayedAnswers.erase(m_delayedAnswers.begin());
        due.connection.reply(due.request, due.answer.tlvs, due.answer.result);
    }
}

std::chrono::milliseconds CardServer::timeToNextAnswer() const
{
    if (m_delayedAnswers.empty()) {
        return LONGEST_WAIT;
    }
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(m_delayedAnswers.begin()->first - Clock::now());
    return std::clamp(wait, std::chrono::milliseconds(0), LONGEST_WAIT);
}

}  // namespace brantel
