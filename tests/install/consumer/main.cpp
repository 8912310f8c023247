// Uses each service of the library, and the tables on disk: succeeds if all answer.

#include <cstdio>
#include <string>

#include <BrantelVersion.h>
#include <EventMgmtRulesParsing.h>
#include <EvmDatabase.h>
#include <IcscClientProxy.h>
#include <IfcCardStatusAndControl.h>
#include <NpuDataPortsConfiguration.h>
#include <sql/Database.h>

namespace {

bool decodesWhatItEncodes()
{
    buffer_t tlvs;
    OidTypeValueMap values;
    return convertOidTypeValueContainerToTlvs({{7, OID_TYPE_INT32, 42}}, tlvs) &&
           convertTlvsToOidTypeValueMap(3, tlvs, values, nullptr) && (boost::any_cast<int>(values.at(7).value) == 42);
}

bool createsTables(const std::string& path)
{
    std::remove(path.c_str());
    sql::Database::create(path, {1, 1},
                          {{eventMgmt::EvmDatabase::COMPONENT_CONFIG_TABLE_NAME,
                            eventMgmt::EvmDatabase::getComponentConfigTableDefinition()}});
    return std::remove(path.c_str()) == 0;
}

}  // namespace

int main(int, char** arguments)
{
    IcscClientProxy::createInstance();
    IcscClientProxy::deleteInstance();
    const bool isRight = vemorRules::isValidRule("expr=unsigned(value>1)") && decodesWhatItEncodes() &&
                         (DefaultKatanaDataPortsConfig().getNrOfNpuDataPorts() > 0) &&
                         createsTables(std::string(arguments[0]) + ".db");
    return (isRight && (brantelVersion() == std::string(PACKAGE_VERSION))) ? 0 : 1;
}
