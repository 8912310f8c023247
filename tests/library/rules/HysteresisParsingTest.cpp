// Hysteresis expressions from text: parseHysteresisExpression and the two functions below it.

#include <tuple>
#include <utility>
#include <vector>

#include "library/rules/ParsingTest.h"

namespace vemorRules {
namespace {

class ParseHysteresis : public ParsingTest {
protected:
    static std::string parsedHysteresis(const std::string& text, bool isUnsigned)
    {
        RuleObject rule;
        const bool isAccepted = parseHysteresisExpression(text, isUnsigned, &rule);
        return outcome(isAccepted, described(rule));
    }

    // Refused in signed and unsigned rules, stored or only checked, with one line of the error.
    void expectRefused(const char* text, const std::string& error)
    {
        SCOPED_TRACE(text);
        EXPECT_EQ(parsedHysteresis(text, false), "false NO_EXPRESSION");
        EXPECT_EQ(parsedHysteresis(text, true), "false NO_EXPRESSION");
        EXPECT_FALSE(parseHysteresisExpression(text, false, nullptr));
        EXPECT_FALSE(parseHysteresisExpression(text, true, nullptr));
        EXPECT_EQ(m_diagnostics.take(), Diagnostics(4, error));
    }
};

const std::string HIGH_80_90 = "(MemoryField and (ParamField > int 80)), (MemoryField or (ParamField > int 90))";
const std::string LOW_10_20 = "(MemoryField and (ParamField < int 20)), (MemoryField or (ParamField < int 10))";

TEST_F(ParseHysteresis, StoresAPairForAnUpperHysteresis)
{
    EXPECT_EQ(parsedHysteresis("hyshigh(80,90)", false), "true SINGLE_HYSTERESIS: " + HIGH_80_90);
    EXPECT_EQ(parsedHysteresis("hyshigh(80,90)", true), "true SINGLE_HYSTERESIS: " + HIGH_80_90);
}

TEST_F(ParseHysteresis, StoresAPairForALowerHysteresis)
{
    EXPECT_EQ(parsedHysteresis("hyslow(10,20)", false), "true SINGLE_HYSTERESIS: " + LOW_10_20);
    EXPECT_EQ(parsedHysteresis("hyslow(10,20)", true), "true SINGLE_HYSTERESIS: " + LOW_10_20);
}

TEST_F(ParseHysteresis, TakesTheArgumentsInEitherOrder)
{
    EXPECT_EQ(parsedHysteresis("hyshigh(90,80)", false), "true SINGLE_HYSTERESIS: " + HIGH_80_90);
    EXPECT_EQ(parsedHysteresis("hyslow(20,10)", true), "true SINGLE_HYSTERESIS: " + LOW_10_20);
    EXPECT_EQ(parsedHysteresis("hyshigh(5,5)", false),
              "true SINGLE_HYSTERESIS: (MemoryField and (ParamField > int 5)), (MemoryField or (ParamField > int 5))");
}

TEST_F(ParseHysteresis, StoresTheUpperPairBeforeTheLowerWhateverTheText)
{
    for (const char* text : {"hyshigh(80,90)hyslow(10,20)", "hyshigh(80,90)andhyslow(10,20)",
                             "hyslow(10,20)hyshigh(80,90)", "xhyslow(20,10)or,hyshigh(90,80))y"}) {
        EXPECT_EQ(parsedHysteresis(text, false), "true DOUBLE_HYSTERESIS: " + HIGH_80_90 + ", " + LOW_10_20) << text;
        EXPECT_EQ(parsedHysteresis(text, true), "true DOUBLE_HYSTERESIS: " + HIGH_80_90 + ", " + LOW_10_20) << text;
        EXPECT_TRUE(parseHysteresisExpression(text, true, nullptr)) << text;
    }
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(ParseHysteresis, TakesTheFirstCallOfAKind)
{
    EXPECT_EQ(parsedHysteresis("hyshigh(80,90)hyshigh(1,2)", false), "true SINGLE_HYSTERESIS: " + HIGH_80_90);
}

TEST_F(ParseHysteresis, AcceptsNegativeThresholdsInSignedRules)
{
    EXPECT_EQ(parsedHysteresis("hyslow(-1,-2147483648)", false),
              "true SINGLE_HYSTERESIS: (MemoryField and (ParamField < int -1)), (MemoryField or (ParamField < int "
              "-2147483648))");
    EXPECT_EQ(parsedHysteresis("hyslow(-1,5)", true), "false NO_EXPRESSION");
    EXPECT_EQ(m_diagnostics.take(),
              Diagnostics{lines.error("extractIntegerValue", "expression='%s' contains negative number", "-1")});
}

TEST_F(ParseHysteresis, TakesTheSignednessOfItsRuleForBothKindsAndBothArguments)
{
    for (const char* text : {"hyshigh(-1,2)", "hyshigh(2,-1)", "hyslow(-1,2)", "hyslow(2,-1)"}) {
        SCOPED_TRACE(text);
        EXPECT_TRUE(parseHysteresisExpression(text, false, nullptr));
        EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
        EXPECT_FALSE(parseHysteresisExpression(text, true, nullptr));
        EXPECT_EQ(m_diagnostics.take(),
                  Diagnostics{lines.error("extractIntegerValue", "expression='%s' contains negative number", "-1")});
    }
}

TEST_F(ParseHysteresis, FindsACallHoweverFarIntoTheText)
{
    // The brackets at the start are what a position that is cut off would lead to.
    for (const std::size_t position : {32768U, 65536U, 65537U, 200000U}) {
        const std::string before = "(1)" + std::string(position - 3, 'x');
        EXPECT_EQ(parsedHysteresis(before + "hyshigh(80,90)", false), "true SINGLE_HYSTERESIS: " + HIGH_80_90);
        EXPECT_EQ(parsedHysteresis(before + "hyslow(10,20)", true), "true SINGLE_HYSTERESIS: " + LOW_10_20);
    }
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

TEST_F(ParseHysteresis, StoresUnsignedThresholdsAsIntAfterAnUnsignedComparison)
{
    // 4000000000 has the bits of -294967296.
    EXPECT_EQ(parsedHysteresis("hyshigh(10,4000000000)", true),
              "true SINGLE_HYSTERESIS: (MemoryField and (ParamField > int 10)), (MemoryField or (ParamField > int "
              "-294967296))");
    EXPECT_EQ(parsedHysteresis("hyslow(4000000000,10)", true),
              "true SINGLE_HYSTERESIS: (MemoryField and (ParamField < int -294967296)), (MemoryField or (ParamField < "
              "int 10))");
}

TEST_F(ParseHysteresis, NeedsHysHighOrHysLow)
{
    for (const char* text : {"hys(1,2)", "", "hyshigh", "hyslow 1,2)", "HysHigh(1,2)"}) {
        SCOPED_TRACE(text);
        const Diagnostics all = {
            lines.error("parseHysteresisExpression", "Expression does not contain HysHigh or HysLow (%s)", text)};
        expectAtEveryTraceLevel([text] { return parsedHysteresis(text, false); }, "false NO_EXPRESSION", all);
        expectAtEveryTraceLevel([text] { return parseHysteresisExpression(text, true, nullptr); }, false, all);
    }
}

TEST_F(ParseHysteresis, NeedsARightBracket)
{
    for (const char* text : {"hyshigh(80,90", "hyslow(", ")hyslow(1,2"}) {
        const std::string error =
            lines.error("parseSingleHysterisExpression", "Failed to find right round bracket in expression '%s'", text);
        expectRefused(text, error);
        expectAtEveryTraceLevel([text] { return parsedHysteresis(text, false); }, "false NO_EXPRESSION", {error});
    }
}

TEST_F(ParseHysteresis, NeedsTwoArguments)
{
    // The first call fails when both are there; its text is shown up to the bracket, or beyond (see the next test).
    const std::vector<std::pair<const char*, const char*>> cases = {
        {"hyshigh(80,90,100)", "hyshigh(80,90,100"},
        {"hyshigh(80)", "hyshigh(80"},
        {"hyshigh(80,,90)", "hyshigh(80,,90"},
        {"hyslow()", "hyslow("},
        {"hyslow(,,)", "hyslow(,,"},
    };
    for (const auto& [text, shown] : cases) {
        expectRefused(text, lines.error("parseSingleHysterisExpression",
                                        "Failed to find 2 arguments of hysteresis function : %s)", shown));
    }
}

TEST_F(ParseHysteresis, LogsTheArgumentsBeforeItRefusesTheirNumber)
{
    expectAtEveryTraceLevel([] { return parsedHysteresis("hyshigh(80)", false); }, "false NO_EXPRESSION",
                            {lines.debug("parseSingleHysterisExpression", "hystValues = '%s'", "80"),
                             lines.error("parseSingleHysterisExpression",
                                         "Failed to find 2 arguments of hysteresis function : %s)", "hyshigh(80")});
}

TEST_F(ParseHysteresis, ShowsAsManyCharactersAsThePositionOfTheBracketSays)
{
    // The ")" of "hyslow(1)" is at position 13, so 13 characters are shown from "hyslow" on, or what there is.
    expectRefused("abcdehyslow(1)xyz0123456789",
                  lines.error("parseSingleHysterisExpression",
                              "Failed to find 2 arguments of hysteresis function : %s)", "hyslow(1)xyz0"));
    expectRefused("abcdehyslow(1)x",
                  lines.error("parseSingleHysterisExpression",
                              "Failed to find 2 arguments of hysteresis function : %s)", "hyslow(1)x"));
}

TEST_F(ParseHysteresis, LogsAPairAsItStoresIt)
{
    expectAtEveryTraceLevel(
        [] { return parsedHysteresis("hyslow(-5,7)", false); },
        "true SINGLE_HYSTERESIS: (MemoryField and (ParamField < int 7)), (MemoryField or (ParamField < int -5))",
        {lines.debug("parseSingleHysterisExpression", "hystValues = '%s'", "-5,7"),
         lines.debug("parseSingleHysterisExpressionAux", "highestValue=%d", 7),
         lines.debug("parseSingleHysterisExpressionAux", "lowestValue=%d", -5)});
    expectAtEveryTraceLevel(
        [] { return parsedHysteresis("hyshigh(4000000000,10)", true); },
        "true SINGLE_HYSTERESIS: (MemoryField and (ParamField > int 10)), (MemoryField or (ParamField > int "
        "-294967296))",
        {lines.debug("parseSingleHysterisExpression", "hystValues = '%s'", "4000000000,10"),
         lines.debug("parseSingleHysterisExpressionAux", "highestValue=%u", 4000000000u),
         lines.debug("parseSingleHysterisExpressionAux", "lowestValue=%u", 10u)});
}

TEST_F(ParseHysteresis, LogsNoThresholdsWhenItOnlyChecks)
{
    expectAtEveryTraceLevel([] { return parseHysteresisExpression("hyslow(1,2)hyshigh(3,4)", false, nullptr); }, true,
                            {lines.debug("parseSingleHysterisExpression", "hystValues = '%s'", "3,4"),
                             lines.debug("parseSingleHysterisExpression", "hystValues = '%s'", "1,2")});
}

TEST_F(ParseHysteresis, LeavesTheUpperPairWithoutTypeWhenTheLowerCallIsRefused)
{
    EXPECT_EQ(parsedHysteresis("hyshigh(80,90)hyslow(1,x)", false), "false NO_EXPRESSION: " + HIGH_80_90);
    EXPECT_EQ(m_diagnostics.take(),
              Diagnostics{lines.error("extractIntegerValue", "Not all characters of '%s' are digits", "x")});
}

TEST_F(ParseHysteresis, DoesNotLookAtTheLowerCallWhenTheUpperIsRefused)
{
    EXPECT_EQ(parsedHysteresis("hyslow(y,1)hyshigh(x,90)", false), "false NO_EXPRESSION");
    EXPECT_EQ(m_diagnostics.take(),
              Diagnostics{lines.error("extractIntegerValue", "Not all characters of '%s' are digits", "x")});
}

TEST_F(ParseHysteresis, RefusesTheSecondArgumentAfterTheFirst)
{
    EXPECT_EQ(parsedHysteresis("hyshigh(1,+2)", true), "false NO_EXPRESSION");
    EXPECT_EQ(parsedHysteresis("hyshigh(+1,+2)", true), "false NO_EXPRESSION");
    EXPECT_EQ(m_diagnostics.take(),
              (Diagnostics{lines.error("extractIntegerValue", "Not all characters of '%s' are digits", "+2"),
                           lines.error("extractIntegerValue", "Not all characters of '%s' are digits", "+1")}));
}

TEST_F(ParseHysteresis, LeavesABadNumberToItsCaller)
{
    RuleObject rule;
    EXPECT_THROW(parseHysteresisExpression("hyshigh(1,2)hyslow(1,2147483648)", false, &rule), boost::bad_lexical_cast);
    EXPECT_EQ(described(rule),
              "NO_EXPRESSION: (MemoryField and (ParamField > int 1)), (MemoryField or (ParamField > int 2))");
    EXPECT_THROW(parseHysteresisExpression("hyshigh(-,2)", false, nullptr), boost::bad_lexical_cast);
    EXPECT_THROW(parseHysteresisExpression("hyshigh(1,4294967296)", true, nullptr), boost::bad_lexical_cast);
    EXPECT_EQ(m_diagnostics.take(), Diagnostics{});
}

const std::string SOURCE_PATH = "components/common/brantel/src/EventMgmtRulesParsing.cpp";
const std::string SIGNATURE =
    "bool vemorRules::parseHysteresisExpression(const string&, bool, vemorRules::RuleObject*)";

TEST_F(ParseHysteresis, ReportsForeignExpressionsInTheRuleObjectAndSucceeds)
{
    for (const auto& [text, type, size] : std::vector<std::tuple<const char*, const char*, const char*>>{
             {"hyshigh(80,90)", "SINGLE_HYSTERESIS: (int 1 == int 2), ", "2"},
             {"hyslow(10,20)hyshigh(80,90)", "DOUBLE_HYSTERESIS: (int 1 == int 2), ", "4"}}) {
        SCOPED_TRACE(text);
        m_diagnostics.take();
        RuleObject rule{NO_EXPRESSION, {Expression(EQUAL, 1, 2)}};
        m_diagnostics.removeTraceObject();
        EXPECT_TRUE(parseHysteresisExpression(text, false, &rule));
        EXPECT_EQ(described(rule).rfind(type, 0), 0u) << described(rule);
        EXPECT_EQ(m_diagnostics.take(),
                  Diagnostics{assertReport(std::string("pRuleObject->m_expressions.size() == ") + size, SOURCE_PATH,
                                           SIGNATURE)});
    }
}

TEST_F(ParseHysteresis, ReportsExpressionsOfAnEarlierPart)
{
    EXPECT_EQ(parsedRule("expr=signed(value>1);expr=unsigned(hyshigh(80,90))"),
              "true SINGLE_HYSTERESIS: (ParamField > int 1), " + HIGH_80_90);
    EXPECT_EQ(m_diagnostics.take(),
              Diagnostics{assertReport("pRuleObject->m_expressions.size() == 2", SOURCE_PATH, SIGNATURE)});
}

class ParseSingleHysteris : public ParsingTest {};

TEST_F(ParseSingleHysteris, StartsAtThePositionGivenAndSetsNoType)
{
    RuleObject rule;
    EXPECT_TRUE(parseSingleHysterisExpression("hyshigh(1,2)hyslow(80,90)", false, 12, true, &rule));
    EXPECT_EQ(described(rule), "NO_EXPRESSION: " + HIGH_80_90);
}

TEST_F(ParseSingleHysteris, NeedsALeftBracket)
{
    for (const auto& [text, pos] : std::vector<std::pair<const char*, unsigned int>>{
             {"hyshigh", 0u}, {"(1,2)", 1u}, {"(1,2)", 5u}, {"(1,2)", 4000u}, {"", 0u}}) {
        SCOPED_TRACE(text);
        const Diagnostics all = {
            lines.error("parseSingleHysterisExpression", "Failed to find left round bracket in expression '%s'", text)};
        expectAtEveryTraceLevel(
            [text = text, pos = pos] { return parseSingleHysterisExpression(text, false, pos, true, nullptr); }, false,
            all);
    }
}

TEST_F(ParseSingleHysteris, ReportsTheMissingRightBracketWhenTheLeftEndsTheText)
{
    const Diagnostics all = {lines.error("parseSingleHysterisExpression",
                                         "Failed to find right round bracket in expression '%s'", "hyshigh(")};
    expectAtEveryTraceLevel([] { return parseSingleHysterisExpression("hyshigh(", true, 0, true, nullptr); }, false,
                            all);
}

TEST_F(ParseSingleHysteris, TakesTheInstanceOfTheSignedness)
{
    RuleObject rule;
    EXPECT_TRUE(parseSingleHysterisExpression("(4294967295,0)", true, 0, false, &rule));
    EXPECT_THROW(parseSingleHysterisExpression("(4294967295,0)", false, 0, false, &rule), boost::bad_lexical_cast);
    EXPECT_EQ(described(rule),
              "NO_EXPRESSION: (MemoryField and (ParamField < int -1)), (MemoryField or (ParamField < int 0))");
}

class ParseSingleHysterisAux : public ParsingTest {};

TEST_F(ParseSingleHysterisAux, UsesTheIncomingValuesOnlyToStartFrom)
{
    RuleObject rule;
    EXPECT_TRUE(parseSingleHysterisExpressionAux<int>(1000, -1000, false, {"80", "90"}, true, &rule));
    EXPECT_EQ(described(rule), "NO_EXPRESSION: " + HIGH_80_90);
}

TEST_F(ParseSingleHysterisAux, ComparesAsItsInstance)
{
    RuleObject rule;
    EXPECT_TRUE(parseSingleHysterisExpressionAux<int>(0, 0, false, {"-1", "1"}, true, &rule));
    EXPECT_TRUE(parseSingleHysterisExpressionAux<unsigned int>(0, 0, false, {"-1", "1"}, true, &rule));
    EXPECT_EQ(described(rule),
              "NO_EXPRESSION: (MemoryField and (ParamField > int -1)), (MemoryField or (ParamField > int 1)), "
              "(MemoryField and (ParamField > int 1)), (MemoryField or (ParamField > int -1))");
}

TEST_F(ParseSingleHysterisAux, LogsAsTheFlagSaysWhateverItsInstance)
{
    const auto parseAs = [](auto zero, bool isUnsigned) {
        RuleObject rule;
        return parseSingleHysterisExpressionAux<decltype(zero)>(zero, zero, isUnsigned, {"7", "9"}, true, &rule);
    };
    const Diagnostics asUnsigned = {lines.debug("parseSingleHysterisExpressionAux", "highestValue=%u", 9u),
                                    lines.debug("parseSingleHysterisExpressionAux", "lowestValue=%u", 7u)};
    const Diagnostics asSigned = {lines.debug("parseSingleHysterisExpressionAux", "highestValue=%d", 9),
                                  lines.debug("parseSingleHysterisExpressionAux", "lowestValue=%d", 7)};
    expectAtEveryTraceLevel([&] { return parseAs(0, true); }, true, asUnsigned);
    expectAtEveryTraceLevel([&] { return parseAs(0u, true); }, true, asUnsigned);
    expectAtEveryTraceLevel([&] { return parseAs(0, false); }, true, asSigned);
    expectAtEveryTraceLevel([&] { return parseAs(0u, false); }, true, asSigned);
}

TEST_F(ParseSingleHysterisAux, OnlyChecksWithoutARuleObject)
{
    expectAtEveryTraceLevel(
        [] {
            return parseSingleHysterisExpressionAux<unsigned int>(0, 0, true, {"1", "2"}, true, nullptr);
        },
        true, {});
    expectAtEveryTraceLevel(
        [] {
            return parseSingleHysterisExpressionAux<int>(0, 0, false, {"1", ""}, true, nullptr);
        },
        false, {lines.error("extractIntegerValue", "Can not extract integer from empty expression")});
}

}  // namespace
}  // namespace vemorRules
