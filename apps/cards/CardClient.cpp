#include "cards/CardClient.h"

#include <algorithm>
#include <optional>

#include "cards/OidTable.h"
#include "cards/ValueText.h"
#include "common/CommandLine.h"

CardClient::CardClient(std::uint32_t slot) : m_slot(slot)
{
    IcscClientProxy::createInstance();
    IcscClientProxy::getInstance().subscribeInterface(slot, m_component);
}

CardClient::CardClient(std::uint32_t slot, OBappsToICSC_1_0_PR& replies) : m_slot(slot)
{
    IcscClientProxy::createInstance();
    IcscClientProxy::getInstance().subscribeAsyncInterface(slot, m_component, replies);
}

CardClient::~CardClient()
{
    IcscClientProxy::deleteInstance();
}

// IcscClientProxy::getOidsSync would not tell a call that failed from an answer that is unsound.
Reading CardClient::read(const ObjectIdContainer& oids, std::int32_t timeout)
{
    ReadPlan plan(m_slot, oids);
    while (!plan.isDone()) {
        buffer_t tlvs;
        std::int32_t result = 0;
        convertObjectIdContainerToTlvs(plan.request(), tlvs);
        if (IcscClientProxy::getInstance().getSetOidsCommon(true, m_slot, timeout, tlvs, result)) {
            plan.takeAnswer(result, tlvs);
        } else {
            plan.takeNoAnswer();
        }
    }
    return plan.reading();
}

bool CardClient::startReading(const ObjectIdContainer& request)
{
    return IcscClientProxy::getInstance().getOidsAsync(m_slot, request);
}

CallOutcome CardClient::write(const OidTypeValueContainer& values, std::int32_t timeout)
{
    buffer_t tlvs;
    std::int32_t result = 0;
    convertOidTypeValueContainerToTlvs(values, tlvs);
    const bool isAnswered = IcscClientProxy::getInstance().getSetOidsCommon(false, m_slot, timeout, tlvs, result);
    return isAnswered ? result : NO_ANSWER;
}

ObjectIdContainer oidsOfArguments(const std::vector<std::string>& arguments)
{
    ObjectIdContainer oids;
    for (const std::string& argument : arguments) {
        const std::uint32_t oid = oidOfArgument(argument);
        if (std::find(oids.begin(), oids.end(), oid) == oids.end()) {
            oids.push_back(oid);
        }
    }
    return oids;
}

std::uint32_t oidOfArgument(const std::string& argument)
{
    if (const std::optional<std::uint32_t> number = numberOfText(argument)) {
        return *number;
    }
    const OidEntry* const pEntry = findOid(argument);
    if (pEntry == nullptr) {
        throw CommandError("'" + argument + "' is neither a number nor the name of an object (brantel card objects)");
    }
    return pEntry->oid;
}
