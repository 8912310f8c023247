#ifndef TESTS_RULES_PARSING_TEST_H
#define TESTS_RULES_PARSING_TEST_H

// What the tests of the parser share: outcomes as texts ("true SIMPLE_EXPRESSION_VALUE: (ParamField > int 5)") and the
// lines of a parse.

#include <string>

#include "EventMgmtRulesParsing.h"
#include "rules/RuleTexts.h"
#include "support/Diagnostics.h"

namespace vemorRules {

class ParsingTest : public DiagnosticsTest {
protected:
    static std::string outcome(bool isAccepted, const std::string& stored)
    {
        return (isAccepted ? "true " : "false ") + stored;
    }

    /// The outcome of parseRule on `text`, starting from a fresh rule object.
    static std::string parsedRule(const std::string& text)
    {
        RuleObject rule;
        const bool isAccepted = parseRule(text, &rule);
        return outcome(isAccepted, described(rule));
    }

    /// The error lines that parseRule writes on `text`.
    Diagnostics errorsOf(const std::string& text)
    {
        m_diagnostics.take();
        parseRule(text, nullptr);
        return m_diagnostics.take();
    }

    static const SourceLines lines;
};

inline const SourceLines ParsingTest::lines{"EventMgmtRulesParsing.cpp"};

inline const char* const LEXICAL_CAST_INFO = "bad lexical cast: source type value could not be interpreted as target";

}  // namespace vemorRules

#endif
