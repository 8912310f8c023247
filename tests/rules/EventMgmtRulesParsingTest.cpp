#include "EventMgmtRulesParsing.h"

#include "support/Diagnostics.h"

namespace vemorRules {
namespace {

class ParseExpression : public DiagnosticsTest {};

TEST_F(ParseExpression, NeedsAnEqualSign)
{
    EXPECT_FALSE(parseRule("expr", nullptr));
    EXPECT_EQ(m_diagnostics.take(),
              Diagnostics{errorLine("EventMgmtRulesParsing.cpp", "parseExpression", "No = sign in expression '%s'",
                                    "No = sign in expression 'expr'")});
}

}  // namespace
}  // namespace vemorRules
