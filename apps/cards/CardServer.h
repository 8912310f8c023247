#ifndef APPS_CARDS_CARD_SERVER_H
#define APPS_CARDS_CARD_SERVER_H

// Serves one card on both interfaces of its slot, and applies the card's faults to its answers.

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "cards/Card.h"
#include "message/OBcomponent.h"
#include "message/OBmessage.h"

namespace brantel {

class CardServer {
public:
    /// Throws std::runtime_error if the slot's services cannot be served.
    CardServer(OBcomponent& component, std::uint32_t slot, Card& card);
    ~CardServer();

    /// Where both interfaces are served, "NAME at ENDPOINT" each.
    std::vector<std::string> endpoints() const;

    /// Dispatches until the component is stopped.
    void run();

private:
    class Connection;

    struct DelayedAnswer {
        Connection& connection;
        OBmessage request;
        Card::Answer answer;
    };

    using Clock = std::chrono::steady_clock;

    void answerRead(Connection& connection, const OBmessage& request, const buffer_t& tlvs);
    void answerWrite(Connection& connection, const OBmessage& request, const buffer_t& tlvs);
    Faults faultsFor(const buffer_t& tlvs) const;
    void give(Connection& connection, const OBmessage& request, const Card::Answer& answer, const Faults& faults);
    void giveDueAnswers();
    std::chrono::milliseconds timeToNextAnswer() const;

    OBcomponent& m_component;
    Card& m_card;
    std::multimap<Clock::time_point, DelayedAnswer> m_delayedAnswers;
    std::vector<std::unique_ptr<Connection>> m_connections;
};

}  // namespace brantel

#endif
