// A component that uses the installed library: succeeds if a rule is decided as it should be.

#include <EventMgmtRulesParsing.h>
#include <trace/TraceObject.h>

int main()
{
    TraceObject trace(3);
    g_traceObject = &trace;

    vemorRules::RuleObject rule;
    const bool isRaised = vemorRules::parseRule("expr=signed(value>5)", &rule) &&
                          vemorRules::checkSimpleValueRule(rule, 6) && !vemorRules::checkSimpleValueRule(rule, 5);
    g_traceObject = nullptr;
    return isRaised ? 0 : 1;
}
