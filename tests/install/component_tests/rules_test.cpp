#include <EventMgmtRulesParsing.h>
#include <RuleDiagnosis.h>
#include <brantel/testing/Diagnostics.h>

using namespace brantelTesting;

int main()
{
    const std::string rule = "expr=signed(value>5";
    DiagnosticsCapture diagnostics(3);
    const bool isValid = vemorRules::isValidRule(rule);
    const Diagnostics expected{errorLine("EventMgmtRulesParsing.cpp", "parseExpression",
                                         "Failed to find ')' character in expression = '%s'",
                                         "Failed to find ')' character in expression = 'expr=signed(value>5'")};
    const auto fault = vemorRules::findFault(rule);
    const bool isExplained = fault && (fault->position == 11) && (fault->length == 1) &&
                             (fault->reason == "the ')' of this bracket is missing") &&
                             (fault->remedy == "close it with ')'");
    return (!isValid && isExplained && (diagnostics.take() == expected)) ? 0 : 1;
}
