// Evaluates a rule, and asks the client for a slot without a card: succeeds if both do what they should.

#include <EventMgmtRulesParsing.h>
#include <IcscClientProxy.h>
#include <message/OBcomponent.h>

int main()
{
    vemorRules::RuleObject rule;
    const bool isRaised =
        vemorRules::parseRule("expr=unsigned(value>1)", &rule) && vemorRules::checkSimpleValueRule(rule, 2u);

    OBcomponent component("node");
    IcscClientProxy::createInstance();
    OidTypeValueMap values;
    const bool isRead = IcscClientProxy::getInstance().getOidsSync(0, {7}, values) == 0;  // without a subscription
    IcscClientProxy::deleteInstance();
    return (isRaised && isRead) ? 0 : 1;
}
