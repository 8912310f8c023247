#ifndef TESTS_LIBRARY_RULES_EVALUATION_TEST_H
#define TESTS_LIBRARY_RULES_EVALUATION_TEST_H

// What the tests of the evaluator share: its lines and reports, and expressions as the parser builds them.

#include <string>

#include "EventMgmtRulesCppObjects.h"
#include "library/rules/ReportedSignatures.h"
#include "library/rules/RuleTexts.h"
#include "support/Diagnostics.h"

namespace vemorRules {

constexpr unsigned int UINT_MAXIMUM = 4294967295u;

class EvaluationTest : public DiagnosticsTest {
protected:
    static std::string report(const std::string& condition, const std::string& function)
    {
        return assertReport(condition, "components/common/brantel/src/EventMgmtRulesCppObjects.cpp", function);
    }

    template <typename T>
    static Diagnostics unknownTypeToFillIn()
    {
        return {lines.error("fillInValue", "fillInValue(): unknown expression type"),
                report("false", fillInValueSignature<T>)};
    }

    /// The two diagnostics of check<T> on something that it cannot reduce.
    template <typename T>
    static Diagnostics notReducible(const std::string& errorLine)
    {
        return {errorLine, report("false", checkSignature<T>)};
    }

    static Expression comparison(RelationalOperator relationalOperator, const boost::any& right)
    {
        return {relationalOperator, ParamField(), right};
    }

    static const SourceLines lines;
};

inline const SourceLines EvaluationTest::lines{"EventMgmtRulesCppObjects.cpp"};

}  // namespace vemorRules

#endif
