#ifndef APPS_CARDS_CARD_CLIENT_H
#define APPS_CARDS_CARD_CLIENT_H

// The command's way to the card in one slot: the library's client with a component for it. One at a time.

#include <chrono>
#include <cstdint>
#include <string>

#include "IcscClientProxy.h"
#include "cards/ReadPlan.h"
#include "message/OBcomponent.h"

class OBappsToICSC_1_0_PR;

namespace brantel {

class CardClient {
public:
    /// Subscribes the slot for calls that wait.
    explicit CardClient(std::uint32_t slot);

    /// Subscribes the slot for calls that are answered to `replies`, from the component's dispatch.
    CardClient(std::uint32_t slot, OBappsToICSC_1_0_PR& replies);

    ~CardClient();
    CardClient(const CardClient&) = delete;
    CardClient& operator=(const CardClient&) = delete;

    OBcomponent& component() { return m_component; }

    /// How long a card that is about to start is waited for.
    static constexpr std::chrono::milliseconds STARTING_TIME{500};

    /// False if certainly no card is serving the slot, and none starts within `patience`.
    bool mayBeServed(std::chrono::milliseconds patience);

    /// Whether the slot's service is there.
    bool isConnected() const { return m_component.isConnected(m_service); }

    /// Why it is not, in words; empty if nothing is known but that no card is serving the slot. Subscribed for calls
    /// that wait, the client knows little: printObstacleOfSlot() finds out more.
    std::string obstacle() const { return m_component.obstacle(m_service); }

    /// In as many requests as it takes, each of which the card may take `timeout` seconds for; in none where
    /// certainly no card is.
    Reading read(const ObjectIdContainer& oids, std::int32_t timeout);

    /// Sends one request to read; false if it could not be sent.
    bool startReading(const ObjectIdContainer& request);

    /// Writes values that fit into one request. Returns the result code, NO_ANSWER or NOT_SERVED.
    CallOutcome write(const OidTypeValueContainer& values, std::int32_t timeout);

private:
    const std::uint32_t m_slot;
    const std::string m_service;
    OBcomponent m_component{"brantel"};
};

}  // namespace brantel

#endif
