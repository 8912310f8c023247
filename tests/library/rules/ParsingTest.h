#ifndef TESTS_LIBRARY_RULES_PARSING_TEST_H
#define TESTS_LIBRARY_RULES_PARSING_TEST_H

// What the tests of the parser share: outcomes as texts ("true SIMPLE_EXPRESSION_VALUE: (ParamField > int 5)") and the
// lines of a parse.

#include <string>
#include <vector>

#include "EventMgmtRulesParsing.h"
#include "library/rules/RuleTexts.h"
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

    /// The lines of parseBasicExpression on `text` when it only checks: without its brackets it is `bare`, which the
    /// operator divides into `pieces`; there are none when no operator is found.
    static Diagnostics basicExpressionLines(const std::string& text, const std::string& bare,
                                            const std::vector<std::string>& pieces)
    {
        const char* const function = "parseBasicExpression";
        Diagnostics all = {
            lines.debug(function, "parseBasicExpression='%s'", text.c_str()),
            lines.debug(function, "basicExpression after 1st processing = '%s'", bare.c_str()),
        };
        if (!pieces.empty()) {
            all.push_back(lines.debug(function, "splitVec.size()=%d", static_cast<int>(pieces.size())));
        }
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            all.push_back(lines.debug(function, "- splitVec[%d]='%s'", static_cast<int>(i), pieces[i].c_str()));
        }
        return all;
    }

    /// The lines of a part that is a basic expression, down to its division into two pieces.
    static Diagnostics basicPartLines(int number, const std::string& part, const std::string& exprValue,
                                      const std::vector<std::string>& pieces)
    {
        return Diagnostics{lines.debug("parseRule", "part %d = '%s'", number, part.c_str()),
                           lines.debug("parseExpression", "parseExpression='%s'", part.c_str()),
                           lines.debug("parseExpression", "exprValue='%s'", exprValue.c_str()),
                           lines.debug("parseExpression", "basic expression")} +
               basicExpressionLines(exprValue, exprValue, pieces);
    }

    static const SourceLines lines;
};

inline const SourceLines ParsingTest::lines{"EventMgmtRulesParsing.cpp"};

inline const char* const LEXICAL_CAST_INFO = "bad lexical cast: source type value could not be interpreted as target";

}  // namespace vemorRules

#endif
