// Relational expressions and their combinations: parseBasicExpression and parseExpressionWithAndOrOr.

#include <utility>
#include <vector>

#include "library/rules/ParsingTest.h"

namespace vemorRules {
namespace {

class ParseBasicExpression : public ParsingTest {
protected:
    // Accepted or not, about delta or not, and the expression as it is left behind.
    static std::string parsedBasic(const std::string& text, bool isUnsigned)
    {
        bool isDelta = true;
        Expression expression(LOGICAL_OR, boost::any(), boost::any());
        const bool isAccepted = parseBasicExpression(text, isUnsigned, isDelta, &expression);
        return outcome(isAccepted, (isDelta ? "delta " : "value ") + described(expression));
    }

    static std::string checkedBasic(const std::string& text, bool isUnsigned)
    {
        bool isDelta = true;
        const bool isAccepted = parseBasicExpression(text, isUnsigned, isDelta, nullptr);
        return outcome(isAccepted, isDelta ? "delta" : "value");
    }
};

TEST_F(ParseBasicExpression, KeepsTheOrderOfTheText)
{
    struct Case {
        const char* text;
        bool isUnsigned;
        const char* outcome;
    };
    const std::vector<Case> cases = {
        {"value>5", false, "true value (ParamField > int 5)"},
        {"5<value", false, "true value (int 5 < ParamField)"},
        {"delta>5", true, "true delta (ParamField > unsigned 5)"},
        {"5<delta", true, "true delta (unsigned 5 < ParamField)"},
        {"value==-2147483648", false, "true value (ParamField == int -2147483648)"},
        {"-1!=value", false, "true value (int -1 != ParamField)"},
        {"value<4294967295", true, "true value (ParamField < unsigned 4294967295)"},
        {"delta>=0", false, "true delta (ParamField >= int 0)"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(parsedBasic(c.text, c.isUnsigned), c.outcome) << c.text;
    }
}

TEST_F(ParseBasicExpression, KnowsSixOperatorsOfWhichTheLongerWin)
{
    const std::vector<std::pair<const char*, const char*>> cases = {
        {"value<=5", "true value (ParamField <= int 5)"}, {"value>=5", "true value (ParamField >= int 5)"},
        {"value==5", "true value (ParamField == int 5)"}, {"value!=5", "true value (ParamField != int 5)"},
        {"value<5", "true value (ParamField < int 5)"},   {"value>5", "true value (ParamField > int 5)"},
    };
    for (const auto& [text, result] : cases) {
        EXPECT_EQ(parsedBasic(text, false), result) << text;
    }
}

TEST_F(ParseBasicExpression, SearchesTheOperatorsInAFixedOrderAnywhereInTheText)
{
    // The first of <= >= == != < > that occurs anywhere splits the text, wherever the others are.
    // No side is a field word then, which leaves the operator behind.
    const std::vector<std::pair<const char*, const char*>> cases = {
        {"value>=1<=2", "false value (empty <= empty)"}, {"value==1>=2", "false value (empty >= empty)"},
        {"value!=1==2", "false value (empty == empty)"}, {"value<1!=2", "false value (empty != empty)"},
        {"value>1<2", "false value (empty < empty)"},
    };
    for (const auto& [text, result] : cases) {
        EXPECT_EQ(parsedBasic(text, false), result) << text;
    }
}

TEST_F(ParseBasicExpression, RemovesAllRoundBracketsBeforeItLooks)
{
    const char* const text = "((va)lue)>(=5()";
    expectAtEveryTraceLevel([text] { return parsedBasic(text, false); }, "true value (ParamField >= int 5)",
                            basicExpressionLines(text, "value>=5", {"value", "5"}) +
                                Diagnostics{lines.debug("handleNumericValue", "numericValue=%d", 5)});
}

TEST_F(ParseBasicExpression, LogsTheNumberOnlyWhenItStoresIt)
{
    const Diagnostics all = basicExpressionLines("7<=delta", "7<=delta", {"7", "delta"});
    expectAtEveryTraceLevel([] { return parsedBasic("7<=delta", true); }, "true delta (unsigned 7 <= ParamField)",
                            all + Diagnostics{lines.debug("handleNumericValue", "numericValue=%u", 7u)});
    expectAtEveryTraceLevel([] { return checkedBasic("7<=delta", true); }, "true delta", all);
}

TEST_F(ParseBasicExpression, RefusesATextWithoutOperatorAndLeavesTheExpressionUnchanged)
{
    for (const auto& [text, withoutBrackets] : std::vector<std::pair<const char*, const char*>>{
             {"(value)", "value"}, {"", ""}, {"value=5", "value=5"}, {"value!5", "value!5"}}) {
        SCOPED_TRACE(text);
        const Diagnostics all = basicExpressionLines(text, withoutBrackets, {}) +
                                Diagnostics{lines.error("parseBasicExpression",
                                                        "Failed to find relational operator in expression '%s'", text)};
        expectAtEveryTraceLevel([text = text] { return parsedBasic(text, false); }, "false value (empty or empty)",
                                all);
        expectAtEveryTraceLevel([text = text] { return checkedBasic(text, false); }, "false value", all);
    }
}

TEST_F(ParseBasicExpression, RefusesMoreThanTwoPiecesAndLeavesTheOperator)
{
    const char* const text = "(1<value)<3";
    const Diagnostics all =
        basicExpressionLines(text, "1<value<3", {"1", "value", "3"}) +
        Diagnostics{lines.error("parseBasicExpression", "Failed to get 2 entities of relational expression %s", text)};
    expectAtEveryTraceLevel([text] { return parsedBasic(text, false); }, "false value (empty < empty)", all);
    expectAtEveryTraceLevel([text] { return checkedBasic(text, false); }, "false value", all);
}

TEST_F(ParseBasicExpression, NeedsAFieldWordThatIsAWholeSide)
{
    struct Case {
        const char* text;
        std::vector<std::string> pieces;
        const char* token;
    };
    const std::vector<Case> cases = {
        {"value=<5", {"value=", "5"}, "<"}, {"3<5", {"3", "5"}, "<"},           {"myvalue>5", {"myvalue", "5"}, ">"},
        {"VALUE>5", {"VALUE", "5"}, ">"},   {"value >5", {"value ", "5"}, ">"}, {">", {"", ""}, ">"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        const Diagnostics all =
            basicExpressionLines(c.text, c.text, c.pieces) +
            Diagnostics{
                lines.error("parseBasicExpression", "Expression = '%s' does not contain 'value' or 'delta'", c.text)};
        expectAtEveryTraceLevel([&c] { return parsedBasic(c.text, false); },
                                std::string("false value (empty ") + c.token + " empty)", all);
        expectAtEveryTraceLevel([&c] { return checkedBasic(c.text, false); }, "false value", all);
    }
}

TEST_F(ParseBasicExpression, LeavesTheFieldBehindWhenTheNumberIsRefused)
{
    struct Case {
        const char* text;
        const char* withoutBrackets;
        bool isUnsigned;
        std::vector<std::string> pieces;
        const char* field;
        const char* expression;
        std::string error;
    };
    const std::vector<Case> cases = {
        {"value<>5",
         "value<>5",
         false,
         {"value", ">5"},
         "value",
         "(ParamField < empty)",
         lines.error("extractIntegerValue", "Not all characters of '%s' are digits", ">5")},
        {"value>",
         "value>",
         false,
         {"value", ""},
         "value",
         "(ParamField > empty)",
         lines.error("extractIntegerValue", "Can not extract integer from empty expression")},
        {"(a)<delta",
         "a<delta",
         true,
         {"a", "delta"},
         "delta",
         "(empty < ParamField)",
         lines.error("extractIntegerValue", "Not all characters of '%s' are digits", "a")},
        {"value>delta",
         "value>delta",
         false,
         {"value", "delta"},
         "value",
         "(ParamField > empty)",
         lines.error("extractIntegerValue", "Not all characters of '%s' are digits", "delta")},
        {"value>-1",
         "value>-1",
         true,
         {"value", "-1"},
         "value",
         "(ParamField > empty)",
         lines.error("extractIntegerValue", "expression='%s' contains negative number", "-1")},
        {"delta>(-1)",
         "delta>-1",
         false,
         {"delta", "-1"},
         "delta",
         "(ParamField > empty)",
         lines.error("handleNumericValue", "Expression with 'delta' contains negative number (%s)", "delta>(-1)")},
        {"delta>-1",
         "delta>-1",
         true,
         {"delta", "-1"},
         "delta",
         "(ParamField > empty)",
         lines.error("extractIntegerValue", "expression='%s' contains negative number", "-1")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        const Diagnostics all = basicExpressionLines(c.text, c.withoutBrackets, c.pieces) + Diagnostics{c.error};
        expectAtEveryTraceLevel([&c] { return parsedBasic(c.text, c.isUnsigned); },
                                std::string("false ") + c.field + " " + c.expression, all);
        expectAtEveryTraceLevel([&c] { return checkedBasic(c.text, c.isUnsigned); }, std::string("false ") + c.field,
                                all);
    }
}

TEST_F(ParseBasicExpression, LeavesTheFieldBehindWhenTheConversionThrows)
{
    bool isDelta = false;
    Expression expression;
    EXPECT_THROW(parseBasicExpression("2147483648>=delta", false, isDelta, &expression), boost::bad_lexical_cast);
    EXPECT_EQ(described(expression), "(empty >= ParamField)");
    EXPECT_TRUE(isDelta);
    EXPECT_THROW(parseBasicExpression("value>-", false, isDelta, nullptr), boost::bad_lexical_cast);
    EXPECT_FALSE(isDelta);
}

class ParseExpressionWithAndOrOr : public ParsingTest {
protected:
    static std::string parsedJoined(const std::string& text, bool isUnsigned, bool isOr)
    {
        RuleObject rule;
        const bool isAccepted = parseExpressionWithAndOrOr(text, isUnsigned, isOr, &rule);
        return outcome(isAccepted, described(rule));
    }

    void expectRefused(const char* text, bool isOr, const std::string& error)
    {
        SCOPED_TRACE(text);
        for (const std::int32_t level : {2, 3}) {
            m_diagnostics.setTraceLevel(level);
            EXPECT_EQ(parsedJoined(text, false, isOr), "false NO_EXPRESSION");
            EXPECT_FALSE(parseExpressionWithAndOrOr(text, false, isOr, nullptr));
            EXPECT_EQ(m_diagnostics.take(), writtenAt(level, {error, error}));
        }
    }
};

TEST_F(ParseExpressionWithAndOrOr, StoresOneExpressionWithBothSides)
{
    EXPECT_EQ(parsedJoined("value>5orvalue<1", false, true),
              "true SIMPLE_EXPRESSION_VALUE: ((ParamField > int 5) or (ParamField < int 1))");
    EXPECT_EQ(parsedJoined("value>5andvalue<9", true, false),
              "true SIMPLE_EXPRESSION_VALUE: ((ParamField > unsigned 5) and (ParamField < unsigned 9))");
    EXPECT_EQ(parsedJoined("3<=deltaordelta==0", false, true),
              "true SIMPLE_EXPRESSION_DELTA: ((int 3 <= ParamField) or (ParamField == int 0))");
    EXPECT_EQ(parsedJoined("(delta>1)and(7!=delta)", true, false),
              "true SIMPLE_EXPRESSION_DELTA: ((ParamField > unsigned 1) and (unsigned 7 != ParamField))");
}

TEST_F(ParseExpressionWithAndOrOr, AppendsToTheRuleObject)
{
    RuleObject rule{DOUBLE_HYSTERESIS, {Expression(EQUAL, 1, 2)}};
    EXPECT_TRUE(parseExpressionWithAndOrOr("delta>1anddelta<3", false, false, &rule));
    EXPECT_EQ(described(rule),
              "SIMPLE_EXPRESSION_DELTA: (int 1 == int 2), ((ParamField > int 1) and (ParamField < int 3))");
}

TEST_F(ParseExpressionWithAndOrOr, LogsTheLeftSideBeforeTheRight)
{
    const Diagnostics left = {
        lines.debug("parseBasicExpression", "parseBasicExpression='%s'", "(value>5"),
        lines.debug("parseBasicExpression", "basicExpression after 1st processing = '%s'", "value>5"),
        lines.debug("parseBasicExpression", "splitVec.size()=%d", 2),
        lines.debug("parseBasicExpression", "- splitVec[%d]='%s'", 0, "value"),
        lines.debug("parseBasicExpression", "- splitVec[%d]='%s'", 1, "5"),
    };
    const Diagnostics right = {
        lines.debug("parseBasicExpression", "parseBasicExpression='%s'", "-1>=value)"),
        lines.debug("parseBasicExpression", "basicExpression after 1st processing = '%s'", "-1>=value"),
        lines.debug("parseBasicExpression", "splitVec.size()=%d", 2),
        lines.debug("parseBasicExpression", "- splitVec[%d]='%s'", 0, "-1"),
        lines.debug("parseBasicExpression", "- splitVec[%d]='%s'", 1, "value"),
    };
    Diagnostics checking = left;
    checking.insert(checking.end(), right.begin(), right.end());
    Diagnostics storing = left;
    storing.push_back(lines.debug("handleNumericValue", "numericValue=%d", 5));
    storing.insert(storing.end(), right.begin(), right.end());
    storing.push_back(lines.debug("handleNumericValue", "numericValue=%d", -1));

    const char* const text = "(value>5or-1>=value)";
    expectAtEveryTraceLevel([text] { return parsedJoined(text, false, true); },
                            "true SIMPLE_EXPRESSION_VALUE: ((ParamField > int 5) or (int -1 >= ParamField))", storing);
    expectAtEveryTraceLevel([text] { return parseExpressionWithAndOrOr(text, false, true, nullptr); }, true, checking);
}

TEST_F(ParseExpressionWithAndOrOr, RefusesAnythingButTwoPieces)
{
    for (const char* text : {"value>5orvalue<1orvalue==3", "value>5", "", "oror", "value>5andvalue<9"}) {
        SCOPED_TRACE(text);
        expectAtEveryTraceLevel(
            [text] { return parsedJoined(text, false, true); }, "false NO_EXPRESSION",
            {lines.error("parseExpressionWithAndOrOr", "Failed to get 2 elements of %s expression: %s", "or", text)});
    }
    expectRefused("value>5andvalue<1andvalue==3", false,
                  lines.error("parseExpressionWithAndOrOr", "Failed to get 2 elements of %s expression: %s", "and",
                              "value>5andvalue<1andvalue==3"));
}

TEST_F(ParseExpressionWithAndOrOr, StopsAtTheFirstSideThatIsRefused)
{
    expectRefused("xorvalue<y", true,
                  lines.error("parseBasicExpression", "Failed to find relational operator in expression '%s'", "x"));
    expectRefused("value<1orvalue<y", true,
                  lines.error("extractIntegerValue", "Not all characters of '%s' are digits", "y"));
    expectRefused("value>1and", false,
                  lines.error("parseBasicExpression", "Failed to find relational operator in expression '%s'", ""));
}

TEST_F(ParseExpressionWithAndOrOr, RefusesValueTogetherWithDeltaAndStoresNothing)
{
    for (const char* text : {"value>5ordelta<1", "delta>5orvalue<1"}) {
        expectRefused(
            text, true,
            lines.error("parseExpressionWithAndOrOr", "Expression contains both 'value' and 'delta' (expr=%s)", text));
    }
}

TEST_F(ParseExpressionWithAndOrOr, IsReachedFromAWholeRule)
{
    EXPECT_EQ(errorsOf("expr=signed(value>5 or value<1 or value==3)"),
              Diagnostics{lines.error("parseExpressionWithAndOrOr", "Failed to get 2 elements of %s expression: %s",
                                      "or", "value>5orvalue<1orvalue==3")});
    EXPECT_EQ(errorsOf("expr=signed(value>5 or delta<1)"),
              Diagnostics{lines.error("parseExpressionWithAndOrOr",
                                      "Expression contains both 'value' and 'delta' (expr=%s)", "value>5ordelta<1")});
}

class RuleOfOneComparison : public ParsingTest {};

TEST_F(RuleOfOneComparison, IsNeverLessThanIfItSaysLessOrEqual)
{
    EXPECT_EQ(parsedRule("expr=signed(value<=5)"), "true SIMPLE_EXPRESSION_VALUE: (ParamField <= int 5)");
    EXPECT_EQ(errorsOf("expr=signed(value<>5)"),
              Diagnostics{lines.error("extractIntegerValue", "Not all characters of '%s' are digits", ">5")});
}

TEST_F(RuleOfOneComparison, IsRefusedWithTheEqualSignBeforeTheLess)
{
    EXPECT_EQ(errorsOf("expr=signed(value=<5)"),
              Diagnostics{lines.error("parseBasicExpression", "Expression = '%s' does not contain 'value' or 'delta'",
                                      "value=<5")});
}

TEST_F(RuleOfOneComparison, MayBeNegativeOnlyInSignedValueRules)
{
    EXPECT_EQ(parsedRule("expr=signed(value>-1)"), "true SIMPLE_EXPRESSION_VALUE: (ParamField > int -1)");
    EXPECT_EQ(errorsOf("expr=unsigned(value>-1)"),
              Diagnostics{lines.error("extractIntegerValue", "expression='%s' contains negative number", "-1")});
    EXPECT_EQ(errorsOf("expr=signed(delta>-1)"),
              Diagnostics{lines.error("handleNumericValue", "Expression with 'delta' contains negative number (%s)",
                                      "delta>-1")});
}

}  // namespace
}  // namespace vemorRules
