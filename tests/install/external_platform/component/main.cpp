// Uses everything of the library that meets the platform, and prints what comes of it.

#include <cstdarg>
#include <iostream>

#include <EventMgmtRulesParsing.h>
#include <EvmDatabase.h>
#include <IcscClientProxy.h>
#include <message/OBcomponent.h>
#include <syslog.h>
#include <trace/TraceObject.h>

namespace {

int nLines = 0;

int linesOfBadRule(std::int32_t traceLevel)
{
    TraceObject trace(traceLevel);
    g_traceObject = &trace;
    nLines = 0;
    vemorRules::isValidRule("expr");
    g_traceObject = nullptr;
    return nLines;
}

void printAnswer(IcscClientProxy& client, std::uint32_t slot)
{
    OidTypeValueMap values;
    std::cout << "slot " << slot << ": result " << client.getOidsSync(slot, {7}, values);
    for (const auto& [oid, record] : values) {
        std::cout << ", object " << oid << " is " << boost::any_cast<const std::string&>(record.value);
    }
    std::cout << std::endl;
}

}  // namespace

extern "C" void syslog(int, const char*, ...)
{
    ++nLines;
}

int main()
{
    std::cout << "lines at level 2: " << linesOfBadRule(2) << ", at level 3: " << linesOfBadRule(3) << std::endl;

    const auto columns = eventMgmt::EvmDatabase::getComponentConfigTableDefinition();
    std::cout << columns.size() - 1 << " columns" << std::endl;

    OBcomponent component;
    IcscClientProxy::createInstance();
    IcscClientProxy& client = IcscClientProxy::getInstance();
    client.subscribeInterface(3, component);
    client.subscribeInterface(4, component);
    client.setOids(3, {{7, OID_TYPE_STRING, std::string("on")}}, 5);
    printAnswer(client, 3);
    printAnswer(client, 4);
    printAnswer(client, 10);
    IcscClientProxy::deleteInstance();
    return 0;
}
