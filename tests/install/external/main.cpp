// Decides a rule on the foreign platform: succeeds if the decision is right and the platform was asked for its level
// and told of a broken invariant.

#include "EventMgmtRulesParsing.h"
#include "foreign_platform.h"

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
    g_traceObject = nullptr;
    return (isRaised && isReported && (foreignPlatform::levelQuestions > 0)) ? 0 : 1;
}
