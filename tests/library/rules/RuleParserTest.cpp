// The outer levels of the rule language: isEmptyRule, isValidRule, parseRule and parseExpression.

#include <utility>
#include <vector>

#include "library/rules/ParsingTest.h"

namespace vemorRules {
namespace {

TEST(IsEmptyRule, IsTrueForNoTextAndForComments)
{
    const std::vector<std::pair<std::string, bool>> cases = {
        {"", true},   {"/", true},   {"/ any comment", true},         {"//", true}, {"/expr=signed(value>5)", true},
        {" ", false}, {" /", false}, {"expr=signed(value>5)", false}, {";", false}, {"#", false},
    };
    for (const auto& [rule, isEmpty] : cases) {
        EXPECT_EQ(isEmptyRule(rule), isEmpty) << "'" << rule << "'";
    }
}

TEST(IsValidRule, IsTrueForEmptyRulesAndForRulesThatParse)
{
    const std::vector<std::pair<std::string, bool>> cases = {
        {"", true},
        {"/ comment", true},
        {"expr=signed(value>5)", true},
        {"expr=unsigned(hyshigh(1,2))", true},
        {" / no comment", false},
        {"expr=signed(value>)", false},
        {"expr=signed(value>99999999999)", false},
    };
    for (const auto& [rule, isValid] : cases) {
        EXPECT_EQ(isValidRule(rule), isValid) << "'" << rule << "'";
    }
}

class IsValidRuleLog : public ParsingTest {};

TEST_F(IsValidRuleLog, IsTheLogOfACheckingParse)
{
    expectAtEveryTraceLevel([] { return isValidRule("expr"); }, false,
                            {lines.debug("parseRule", "part %d = '%s'", 0, "expr"),
                             lines.debug("parseExpression", "parseExpression='%s'", "expr"),
                             lines.error("parseExpression", "No = sign in expression '%s'", "expr")});
    expectAtEveryTraceLevel([] { return isValidRule("/expr"); }, true, {});
}

class ParseRule : public ParsingTest {};

TEST_F(ParseRule, AcceptsEmptyRulesAndCommentsAndLeavesTheRuleObjectUnchanged)
{
    for (const char* text : {"", "/ any comment", "/expr=signed(value>5)"}) {
        SCOPED_TRACE(text);
        RuleObject rule{SINGLE_HYSTERESIS, {Expression(EQUAL, ParamField(), 1)}};
        expectAtEveryTraceLevel([&] { return parseRule(text, &rule); }, true, {});
        EXPECT_EQ(described(rule), "SINGLE_HYSTERESIS: (ParamField == int 1)");
    }
}

TEST_F(ParseRule, TakesACommentAfterABlankForAPartAndRefusesIt)
{
    expectAtEveryTraceLevel([] { return parsedRule(" /x"); }, "false NO_EXPRESSION",
                            {lines.debug("parseRule", "part %d = '%s'", 0, "/x"),
                             lines.error("parseRule", "Failed to parse part = '%s' of rule = '%s'", "/x", " /x")});
}

TEST_F(ParseRule, AcceptsEveryFormOfTheLanguage)
{
    const std::vector<std::pair<const char*, const char*>> cases = {
        {"expr=signed(value>100)", "SIMPLE_EXPRESSION_VALUE: (ParamField > int 100)"},
        {"expr=unsigned(delta>=5)", "SIMPLE_EXPRESSION_DELTA: (ParamField >= unsigned 5)"},
        {"expr=signed(value>5)", "SIMPLE_EXPRESSION_VALUE: (ParamField > int 5)"},
        {"expr=unsigned(5<delta)", "SIMPLE_EXPRESSION_DELTA: (unsigned 5 < ParamField)"},
        {"expr=signed(value<-10 or value>10)",
         "SIMPLE_EXPRESSION_VALUE: ((ParamField < int -10) or (ParamField > int 10))"},
        {"expr=unsigned(delta>=3 and delta!=7)",
         "SIMPLE_EXPRESSION_DELTA: ((ParamField >= unsigned 3) and (ParamField != unsigned 7))"},
        {"expr=unsigned(hyshigh(80,90))",
         "SINGLE_HYSTERESIS: (MemoryField and (ParamField > int 80)), (MemoryField or (ParamField > int 90))"},
        {"expr=signed(hyshigh(80,90) hyslow(10,20))",
         "DOUBLE_HYSTERESIS: (MemoryField and (ParamField > int 80)), (MemoryField or (ParamField > int 90)), "
         "(MemoryField and (ParamField < int 20)), (MemoryField or (ParamField < int 10))"},
        {"expr=signed((value)>(5))", "SIMPLE_EXPRESSION_VALUE: (ParamField > int 5)"},
        {"expr=signed(((value>5))or((3>value)))",
         "SIMPLE_EXPRESSION_VALUE: ((ParamField > int 5) or (int 3 > "
         "ParamField))"},
        {"myexpr=signed(value>5)", "SIMPLE_EXPRESSION_VALUE: (ParamField > int 5)"},
        {"= expr signed(value>5)", "SIMPLE_EXPRESSION_VALUE: (ParamField > int 5)"},
    };
    for (const auto& [text, rule] : cases) {
        EXPECT_EQ(parsedRule(text), std::string("true ") + rule) << text;
        EXPECT_TRUE(parseRule(text, nullptr)) << text;
    }
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(ParseRule, IgnoresCaseAndBlanks)
{
    for (const char* text :
         {"EXPR=SIGNED( VALUE >= 7 )", "Expr = Signed(value>=7)", "  e x p r=s i g n e d(v a l u e > = 0 0 7)  "}) {
        EXPECT_EQ(parsedRule(text), "true SIMPLE_EXPRESSION_VALUE: (ParamField >= int 7)") << text;
    }
    EXPECT_EQ(parsedRule("EXPR = UNSIGNED( HysHigh( 8 , 9 ) )"),
              "true SINGLE_HYSTERESIS: (MemoryField and (ParamField > int 8)), (MemoryField or (ParamField > int 9))");
    EXPECT_EQ(parsedRule("Expr = Signed( Value > 3 Or Delta < 4 )"), "false NO_EXPRESSION");
    EXPECT_EQ(m_diagnostics.take(),
              Diagnostics{lines.error("parseExpressionWithAndOrOr",
                                      "Expression contains both 'value' and 'delta' (expr=%s)", "value>3ordelta<4")});
}

TEST_F(ParseRule, LowersEachCapitalAlsoWhereItIsTheOnlyOne)
{
    for (char capital = 'A'; capital <= 'Z'; ++capital) {
        const std::string text(1, capital);
        const std::string lowered(1, static_cast<char>(capital - 'A' + 'a'));
        EXPECT_EQ(errorsOf(text), Diagnostics{lines.error("parseRule", "Failed to parse part = '%s' of rule = '%s'",
                                                          lowered.c_str(), text.c_str())});
    }
}

TEST_F(ParseRule, RemovesNoWhiteSpaceButBlanks)
{
    EXPECT_EQ(parsedRule("expr=signed(value>\t5)"), "false NO_EXPRESSION");
    EXPECT_EQ(m_diagnostics.take(),
              Diagnostics{lines.error("extractIntegerValue", "Not all characters of '%s' are digits", "\t5")});
}

TEST_F(ParseRule, RefusesAPartWithoutTheWordExprAndNamesTheRuleAsGiven)
{
    expectAtEveryTraceLevel(
        [] { return parsedRule("Value > 5"); }, "false NO_EXPRESSION",
        {lines.debug("parseRule", "part %d = '%s'", 0, "value>5"),
         lines.error("parseRule", "Failed to parse part = '%s' of rule = '%s'", "value>5", "Value > 5")});
}

TEST_F(ParseRule, TakesEveryPartAndTheTypeOfTheLast)
{
    EXPECT_EQ(parsedRule("expr=signed(value>5);expr=signed(value<9)"),
              "true SIMPLE_EXPRESSION_VALUE: (ParamField > int 5), (ParamField < int 9)");
    EXPECT_EQ(parsedRule("expr=signed(value>5);expr=unsigned(delta<9)"),
              "true SIMPLE_EXPRESSION_DELTA: (ParamField > int 5), (ParamField < unsigned 9)");
    EXPECT_EQ(parsedRule("expr=unsigned(delta<9);expr=signed(value>5 and value<7)"),
              "true SIMPLE_EXPRESSION_VALUE: (ParamField < unsigned 9), ((ParamField > int 5) and (ParamField < int "
              "7))");
}

TEST_F(ParseRule, RefusesEmptyPartsAndKeepsWhatComesBeforeThem)
{
    expectAtEveryTraceLevel(
        [] { return parsedRule("expr=signed(value>5);"); }, "false SIMPLE_EXPRESSION_VALUE: (ParamField > int 5)",
        basicPartLines(0, "expr=signed(value>5)", "value>5", {"value", "5"}) +
            Diagnostics{
                lines.debug("handleNumericValue", "numericValue=%d", 5),
                lines.debug("parseRule", "part %d = '%s'", 1, ""),
                lines.error("parseRule", "Failed to parse part = '%s' of rule = '%s'", "", "expr=signed(value>5);")});
    EXPECT_EQ(parsedRule(";expr=signed(value>5)"), "false NO_EXPRESSION");
    EXPECT_EQ(parsedRule("expr=signed(value>1);;expr=signed(value>5)"),
              "false SIMPLE_EXPRESSION_VALUE: (ParamField > int 1)");
    EXPECT_EQ(parsedRule(" "), "false NO_EXPRESSION");
    EXPECT_EQ(m_diagnostics.take(),
              (Diagnostics{
                  lines.error("parseRule", "Failed to parse part = '%s' of rule = '%s'", "", ";expr=signed(value>5)"),
                  lines.error("parseRule", "Failed to parse part = '%s' of rule = '%s'", "",
                              "expr=signed(value>1);;expr=signed(value>5)"),
                  lines.error("parseRule", "Failed to parse part = '%s' of rule = '%s'", "", " ")}));
}

TEST_F(ParseRule, LooksAtNoPartAfterAFailingOne)
{
    EXPECT_EQ(parsedRule("expr=signed(value>1);expr=signed();expr=signed(value>3);y"),
              "false SIMPLE_EXPRESSION_VALUE: (ParamField > int 1)");
    EXPECT_EQ(m_diagnostics.take(),
              Diagnostics{lines.error("parseExpression",
                                      "posCharAfterFirstLeftRoundBracket >= posLastRightRoundBracket in expression = "
                                      "'%s'",
                                      "expr=signed()")});
}

TEST_F(ParseRule, AppendsToWhatTheRuleObjectHolds)
{
    RuleObject rule{DOUBLE_HYSTERESIS, {Expression(EQUAL, 1, 2)}};
    EXPECT_TRUE(parseRule("expr=signed(value>5)", &rule));
    EXPECT_EQ(described(rule), "SIMPLE_EXPRESSION_VALUE: (int 1 == int 2), (ParamField > int 5)");
}

TEST_F(ParseRule, ReportsABadNumberInThreeLinesWithTheRuleAsGiven)
{
    const std::vector<const char*> texts = {
        "Expr = signed( value > 99999999999 )",
        "expr=signed(value>2147483648)",
        "expr=signed(value>-2147483649)",
        "expr=unsigned(value>4294967296)",
        "expr=signed(value>-)",
        "expr=signed(delta>-)",
        "expr=signed(hyshigh(1,2147483648))",
        "expr=unsigned(hyslow(4294967296,1))",
    };
    for (const char* text : texts) {
        SCOPED_TRACE(text);
        EXPECT_EQ(parsedRule(text), "false NO_EXPRESSION");
        EXPECT_EQ(m_diagnostics.take(), (Diagnostics{lines.error("parseRule", "parseRule() threw bad_lexical_cast:"),
                                                     lines.error("parseRule", "   - rule = '%s'", text),
                                                     lines.error("parseRule", "   - info = %s", LEXICAL_CAST_INFO)}));
    }
}

TEST_F(ParseRule, WritesTheThreeLinesOfABadNumberAtTheLevelOfErrors)
{
    const char* const text = "expr=signed(value>99999999999)";
    expectAtEveryTraceLevel([text] { return parsedRule(text); }, "false NO_EXPRESSION",
                            basicPartLines(0, text, "value>99999999999", {"value", "99999999999"}) +
                                Diagnostics{lines.error("parseRule", "parseRule() threw bad_lexical_cast:"),
                                            lines.error("parseRule", "   - rule = '%s'", text),
                                            lines.error("parseRule", "   - info = %s", LEXICAL_CAST_INFO)});
}

// All lines are spelled out here, as syslog shows them; other tests take them from ParsingTest.
TEST_F(ParseRule, LogsAWholeUnsignedRuleOfTwoParts)
{
    const char* const text = "Expr = unsigned( 3 < value );expr=unsigned(delta==4294967295)";
    const Diagnostics first = {
        lines.debug("parseRule", "part %d = '%s'", 0, "expr=unsigned(3<value)"),
        lines.debug("parseExpression", "parseExpression='%s'", "expr=unsigned(3<value)"),
        lines.debug("parseExpression", "exprValue='%s'", "3<value"),
        lines.debug("parseExpression", "basic expression"),
        lines.debug("parseBasicExpression", "parseBasicExpression='%s'", "3<value"),
        lines.debug("parseBasicExpression", "basicExpression after 1st processing = '%s'", "3<value"),
        lines.debug("parseBasicExpression", "splitVec.size()=%d", 2),
        lines.debug("parseBasicExpression", "- splitVec[%d]='%s'", 0, "3"),
        lines.debug("parseBasicExpression", "- splitVec[%d]='%s'", 1, "value"),
        lines.debug("handleNumericValue", "numericValue=%u", 3u),
    };
    const Diagnostics second =
        basicPartLines(1, "expr=unsigned(delta==4294967295)", "delta==4294967295", {"delta", "4294967295"}) +
        Diagnostics{lines.debug("handleNumericValue", "numericValue=%u", 4294967295u)};
    expectAtEveryTraceLevel(
        [text] { return parsedRule(text); },
        "true SIMPLE_EXPRESSION_DELTA: (unsigned 3 < ParamField), (ParamField == unsigned 4294967295)", first + second);
}

TEST_F(ParseRule, LogsNoStoredNumberWhenItOnlyChecks)
{
    expectAtEveryTraceLevel([] { return parseRule("expr=signed(value>5)", nullptr); }, true,
                            basicPartLines(0, "expr=signed(value>5)", "value>5", {"value", "5"}));
}

TEST_F(ParseRule, LogsAWholeDoubleHysteresisRule)
{
    const char* const part = "expr=signed(hyslow(-20,-10)hyshigh(90,80))";
    m_diagnostics.setTraceLevel(EVERYTHING);
    EXPECT_EQ(
        parsedRule(part),
        "true DOUBLE_HYSTERESIS: (MemoryField and (ParamField > int 80)), (MemoryField or (ParamField > int 90)), "
        "(MemoryField and (ParamField < int -10)), (MemoryField or (ParamField < int -20))");
    EXPECT_EQ(m_diagnostics.take(),
              (Diagnostics{
                  lines.debug("parseRule", "part %d = '%s'", 0, part),
                  lines.debug("parseExpression", "parseExpression='%s'", part),
                  lines.debug("parseExpression", "exprValue='%s'", "hyslow(-20,-10)hyshigh(90,80)"),
                  lines.debug("parseExpression", "hysteresis expression"),
                  lines.debug("parseSingleHysterisExpression", "hystValues = '%s'", "90,80"),
                  lines.debug("parseSingleHysterisExpressionAux", "highestValue=%d", 90),
                  lines.debug("parseSingleHysterisExpressionAux", "lowestValue=%d", 80),
                  lines.debug("parseSingleHysterisExpression", "hystValues = '%s'", "-20,-10"),
                  lines.debug("parseSingleHysterisExpressionAux", "highestValue=%d", -10),
                  lines.debug("parseSingleHysterisExpressionAux", "lowestValue=%d", -20),
              }));
}

class ParseExpression : public ParsingTest {
protected:
    static std::string parsedPart(const std::string& text)
    {
        RuleObject rule;
        const bool isAccepted = parseExpression(text, &rule);
        return outcome(isAccepted, described(rule));
    }

    // A part that is refused before its expression is looked at.
    void expectRefused(const char* part, const std::string& error)
    {
        SCOPED_TRACE(part);
        const Diagnostics all = {lines.debug("parseExpression", "parseExpression='%s'", part), error};
        expectAtEveryTraceLevel([part] { return parsedPart(part); }, "false NO_EXPRESSION", all);
        expectAtEveryTraceLevel([part] { return parseExpression(part, nullptr); }, false, all);
    }
};

TEST_F(ParseExpression, NeedsAnEqualSign)
{
    for (const char* part : {"expr", "", "exprsigned(value>5)"}) {
        expectRefused(part, lines.error("parseExpression", "No = sign in expression '%s'", part));
    }
}

TEST_F(ParseExpression, NeedsTheWordSignedOrUnsigned)
{
    for (const char* part :
         {"expr=", "expr=(value>5)", "expr=signed", "expr=SIGNED(value>5)", "expr=signed (value>5)"}) {
        expectRefused(
            part, lines.error("parseExpression", "Failed to find 'signed' or 'unsigned' in expression = '%s'", part));
    }
}

TEST_F(ParseExpression, NeedsARightBracket)
{
    for (const char* part : {"expr=signed(value>5", "expr=unsigned("}) {
        expectRefused(part, lines.error("parseExpression", "Failed to find ')' character in expression = '%s'", part));
    }
}

TEST_F(ParseExpression, NeedsTextBetweenTheBrackets)
{
    for (const char* part : {"expr=signed()", "expr=unsigned()", ")expr=signed(", "=a)signed(value>5"}) {
        expectRefused(part, lines.error("parseExpression",
                                        "posCharAfterFirstLeftRoundBracket >= posLastRightRoundBracket in expression "
                                        "= '%s'",
                                        part));
    }
}

TEST_F(ParseExpression, FindsUnsignedOnlyAfterTheFirstEqualSign)
{
    // Before the "=" it is only looked at for the "signed(" within it.
    EXPECT_EQ(parsedPart("unsigned(value>=4)"), "true SIMPLE_EXPRESSION_VALUE: (ParamField >= int 4)");
    EXPECT_EQ(parsedPart("=unsigned(value>4)"), "true SIMPLE_EXPRESSION_VALUE: (ParamField > unsigned 4)");
    EXPECT_EQ(parsedPart("signed(unsigned(value>=4)"), "false NO_EXPRESSION");
    EXPECT_EQ(parsedPart("expr=signed(value>4)unsigned("), "false NO_EXPRESSION");
}

TEST_F(ParseExpression, FindsSignedAlsoBeforeTheEqualSign)
{
    EXPECT_EQ(parsedPart("exprsigned(value<=5)"), "true SIMPLE_EXPRESSION_VALUE: (ParamField <= int 5)");
    EXPECT_EQ(parsedPart("signed(value>5)="), "true SIMPLE_EXPRESSION_VALUE: (ParamField > int 5)");
}

TEST_F(ParseExpression, PrefersUnsignedToAnEarlierSigned)
{
    EXPECT_EQ(parsedPart("expr=signed(1)unsigned(value>4)"), "true SIMPLE_EXPRESSION_VALUE: (ParamField > unsigned 4)");
}

TEST_F(ParseExpression, IgnoresTextBeforeTheWordAndAfterTheLastBracket)
{
    EXPECT_EQ(parsedPart("a(b=c)signed(value>4)hys or delta"), "true SIMPLE_EXPRESSION_VALUE: (ParamField > int 4)");
}

TEST_F(ParseExpression, TakesTheTextUpToTheLastBracket)
{
    m_diagnostics.setTraceLevel(EVERYTHING);
    EXPECT_EQ(parsedPart("=signed((value)>(4))x"), "true SIMPLE_EXPRESSION_VALUE: (ParamField > int 4)");
    EXPECT_EQ(m_diagnostics.take().at(1), lines.debug("parseExpression", "exprValue='%s'", "(value)>(4)"));
}

TEST_F(ParseExpression, RecognisesTheKindByTheFirstOfHysOrAnd)
{
    struct Case {
        const char* part;
        const char* exprValue;
        std::string kind;
        std::string next;
    };
    const std::vector<Case> cases = {
        {"=signed(hys or and)", "hys or and", lines.debug("parseExpression", "hysteresis expression"),
         lines.error("parseHysteresisExpression", "Expression does not contain HysHigh or HysLow (%s)", "hys or and")},
        {"=signed(and hys)", "and hys", lines.debug("parseExpression", "hysteresis expression"),
         lines.error("parseHysteresisExpression", "Expression does not contain HysHigh or HysLow (%s)", "and hys")},
        {"=signed(andoror)", "andoror", lines.debug("parseExpression", "or expression"),
         lines.error("parseExpressionWithAndOrOr", "Failed to get 2 elements of %s expression: %s", "or", "andoror")},
        {"=signed(andand)", "andand", lines.debug("parseExpression", "and expression"),
         lines.error("parseExpressionWithAndOrOr", "Failed to get 2 elements of %s expression: %s", "and", "andand")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.part);
        expectAtEveryTraceLevel([&c] { return parsedPart(c.part); }, "false NO_EXPRESSION",
                                {lines.debug("parseExpression", "parseExpression='%s'", c.part),
                                 lines.debug("parseExpression", "exprValue='%s'", c.exprValue), c.kind, c.next});
    }
}

TEST_F(ParseExpression, GivesTheSameResultWhenItOnlyChecks)
{
    const std::vector<std::pair<const char*, bool>> cases = {
        {"=signed(value>5)", true},
        {"=signed(value>5orvalue<3)", true},
        {"=unsigned(hyshigh(1,2)hyslow(3,4))", true},
        {"=signed(value>a)", false},
        {"=unsigned(value>5ordelta<3)", false},
        {"=unsigned(hyshigh(1,2)hyslow(3,b))", false},
    };
    for (const auto& [part, isAccepted] : cases) {
        RuleObject rule;
        EXPECT_EQ(parseExpression(part, &rule), isAccepted) << part;
        EXPECT_EQ(parseExpression(part, nullptr), isAccepted) << part;
    }
}

TEST_F(ParseExpression, LeavesABadNumberToItsCaller)
{
    RuleObject rule;
    EXPECT_THROW(parseExpression("=signed(value>2147483648)", &rule), boost::bad_lexical_cast);
    EXPECT_THROW(parseExpression("=signed(value>1orvalue>-)", &rule), boost::bad_lexical_cast);
    EXPECT_THROW(parseExpression("=signed(hyshigh(-,1))", nullptr), boost::bad_lexical_cast);
    EXPECT_EQ(described(rule), "NO_EXPRESSION");
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

}  // namespace
}  // namespace vemorRules
