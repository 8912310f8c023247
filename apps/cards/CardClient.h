#ifndef APPS_CARDS_CARD_CLIENT_H
#define APPS_CARDS_CARD_CLIENT_H

// The command's way to the card in one slot: the library's client with a component for it, and the OIDs of the command
// line. One at a time.

#include <cstdint>
#include <string>
#include <vector>

#include "IcscClientProxy.h"
#include "cards/ReadPlan.h"
#include "message/OBcomponent.h"

class OBappsToICSC_1_0_PR;

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

    /// In as many requests as it takes, each of which the card may take `timeout` seconds for.
    Reading read(const ObjectIdContainer& oids, std::int32_t timeout);

    /// Sends one request to read; false if it could not be sent.
    bool startReading(const ObjectIdContainer& request);

    /// Writes values that fit into one request. Returns the result code, or NO_ANSWER.
    CallOutcome write(const OidTypeValueContainer& values, std::int32_t timeout);

private:
    const std::uint32_t m_slot;
    OBcomponent m_component{"brantel"};
};

/// The OIDs that the command line names, by number or by name, each once. Throws CommandError.
ObjectIdContainer oidsOfArguments(const std::vector<std::string>& arguments);
std::uint32_t oidOfArgument(const std::string& argument);

#endif
