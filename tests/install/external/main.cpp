// Decides a rule and takes a table's definition on the foreign platform: succeeds if both are right and the platform was
// asked for its level and told of a broken invariant.

#include "EventMgmtRulesParsing.h"
#include "EvmDatabase.h"
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
    const std::vector<sql::Field> columns = eventMgmt::EvmDatabase::getComponentConfigTableDefinition();
    const bool isDefined = (columns.size() == 3) && (columns[1].m_text == "EnableEvents") &&
                           (columns[1].m_type == sql::field_type::BOOLEAN) && columns[2].m_text.empty();
    g_traceObject = nullptr;
    return (isRaised && isReported && isDefined && (foreignPlatform::levelQuestions > 0)) ? 0 : 1;
}
