// Evaluates a rule, takes a table's definition and reads an object on the foreign platform: succeeds if all are right
// and the platform was asked for its level and got the report of a broken invariant.

#include "EventMgmtRulesParsing.h"
#include "EvmDatabase.h"
#include "IcscClientProxy.h"
#include "foreign_platform.h"
#include "message/OBcomponent.h"

int main()
{
    TraceObject trace;
    g_traceObject = &trace;

    vemorRules::RuleObject rule;
    const bool isRaised = vemorRules::parseRule("expr=unsigned(hyshigh(10,20))", &rule) &&
                          vemorRules::checkSingleHysteresisRule(rule, 21u, false) &&
                          !vemorRules::checkSingleHysteresisRule(rule, 10u, true);
    const bool isReported =
        (vemorRules::check<int>(vemorRules::ParamField()) == 0) && (foreignPlatform::assertionReports == 1);
    const std::vector<sql::Field> columns = eventMgmt::EvmDatabase::getComponentConfigTableDefinition();
    const bool isDefined = (columns.size() == 3) && (columns[1].m_text == "EnableEvents") &&
                           (columns[1].m_type == sql::field_type::BOOLEAN) && columns[2].m_text.empty();

    OBcomponent component;
    IcscClientProxy::createInstance();
    IcscClientProxy& client = IcscClientProxy::getInstance();
    client.subscribeInterface(3, component);
    OidTypeValueMap values;
    const bool isRead = (client.getOidsSync(3, {7}, values) == 0) && (boost::any_cast<int>(values.at(7).value) == 42) &&
                        (foreignPlatform::subscribedService == "ICSCClient3.ReadWriteSync");
    IcscClientProxy::deleteInstance();
    g_traceObject = nullptr;
    return (isRaised && isReported && isDefined && isRead && (foreignPlatform::levelQuestions > 0)) ? 0 : 1;
}
