// A component that uses all four services: it reads rules from the event database, evaluates them on the values of a
// card, writes to the card, and asks for the ports that lead to it. The database and the card are its own, so it runs
// anywhere; in a real component the lines about them are not there.

#include <chrono>
#include <exception>
#include <iostream>
#include <string>

#include <NpuDataPortsConfiguration.h>
#include <OidValue.h>
#include <brantel/testing/CardDouble.h>
#include <brantel/testing/TemporaryDirectory.h>
#include <message/OBcomponent.h>
#include <trace/TraceObject.h>

#include "SlotWatch.h"

namespace {

constexpr std::uint32_t SLOT = 3;
constexpr std::uint32_t NAME = 1;
constexpr std::uint32_t LED = 2;
constexpr std::uint32_t TEMPERATURE = 3;

/// The client, from construction to destruction.
struct Client {
    Client() { IcscClientProxy::createInstance(); }
    ~Client() { IcscClientProxy::deleteInstance(); }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;
};

void printPorts()
{
    const DefaultKatanaDataPortsConfig ports;
    std::cout << "slot " << SLOT << ": VLANs";
    for (std::uint32_t link = 0; ports.hasNpuPortForSlotLink(SLOT, link); ++link) {
        std::cout << ' ' << ports.getDcnVlanNumber(SLOT, link);
    }
    std::cout << '\n';
}

void printName(IcscClientProxy& client)
{
    OidTypeValueMap values;
    const std::int32_t result = icsc::readOids(client, SLOT, {NAME}, values);
    if (result == icsc::RESULT_OK) {
        std::cout << "slot " << SLOT << ": " << boost::any_cast<const std::string&>(values.at(NAME).value) << '\n';
    }
}

void fillDatabase(const std::string& path, const sql::Identity& identity)
{
    using eventMgmt::EvmDatabase;
    sql::Database database = sql::Database::create(path, identity, eventMgmt::tableDefinitions<sql::TableDefinition>());
    sql::Table rules(database, {EvmDatabase::IFC_CARDS_ALLOW_EVENTS_TABLE_NAME,
                                EvmDatabase::getIfcCardAllowEventsTableDefinition()});
    const std::string oid = std::to_string(TEMPERATURE);
    rules.insert({1, SLOT, oid, "expr=unsigned(hyshigh(70,80))"});
    rules.insert({2, SLOT, oid, "expr=unsigned(delta>=20)"});
    rules.insert({3, SLOT, oid, "expr=unsigned(value>high)"});
}

void run()
{
    const brantelTesting::RuntimeDirectory directory;  // where components and cards find one another
    brantelTesting::CardThread card(SLOT);
    card->setValue(makeOidValue(NAME, "uplink"));
    card->setValue(makeOidValue(LED, std::uint8_t{0}));
    const std::string path = directory.path() + "/events.db";
    const sql::Identity identity{eventMgmt::DATABASE_APPLICATION_ID, eventMgmt::DATABASE_SCHEMA_VERSION};
    fillDatabase(path, identity);

    OBcomponent component("services");
    SlotWatch watch(SLOT);
    const Client instance;  // ends before the component and the replies that it uses
    IcscClientProxy& client = IcscClientProxy::getInstance();
    client.subscribeInterface(SLOT, component);
    client.subscribeAsyncInterface(SLOT, component, watch);

    printPorts();
    printName(client);
    sql::Database database(path, identity, sql::Database::Access::READ);
    watch.loadRules(database);
    for (const unsigned int temperature : {65U, 85U, 75U, 70U}) {
        card->setValue(makeOidValue(TEMPERATURE, temperature));
        watch.poll();
        while (watch.isWaiting()) {
            component.dispatch(std::chrono::milliseconds(100));
        }
    }
    if (client.setOids(SLOT, {makeOidValue(LED, std::uint8_t{2})}, 5)) {
        std::cout << "slot " << SLOT << ": the LED is set\n";
    }
}

}  // namespace

int main()
{
    TraceObject trace(3);  // errors go to syslog
    g_traceObject = &trace;
    try {
        run();
    } catch (const std::exception& error) {  // of messages and tables; the rest of the library throws no errors
        std::cerr << "services: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
