// A component that watches one value: link libbrantel, parse the rule once, evaluate it on every sample.

#include <iostream>

#include <EventMgmtRulesParsing.h>
#include <trace/TraceObject.h>

int main()
{
    TraceObject trace(3);  // errors go to syslog
    g_traceObject = &trace;

    vemorRules::RuleObject rule;
    if (!vemorRules::parseRule("expr=unsigned(hyshigh(70,80))", &rule)) {
        return 1;
    }
    bool isRaised = false;
    unsigned int sample = 0;
    while (std::cin >> sample) {
        const bool wasRaised = isRaised;
        isRaised = vemorRules::checkSingleHysteresisRule(rule, sample, wasRaised);
        if (isRaised != wasRaised) {
            std::cout << sample << (isRaised ? " raised\n" : " cleared\n");
        }
    }
    return 0;
}
