#include "RuleDiagnosis.h"

#include <ostream>

#include <gtest/gtest.h>

#include "EventMgmtRulesParsing.h"

namespace vemorRules {
namespace {

struct RefusedRule {
    const char* rule;
    const char* marks;  ///< below the rule: "^" and "~" under what is wrong
    const char* reason;
    const char* remedy;
};

std::ostream& operator<<(std::ostream& stream, const RefusedRule& refused)
{
    return stream << refused.rule;
}

constexpr const char* SIGNED_OR_UNSIGNED = "write expr=signed(...) or expr=unsigned(...)";
constexpr const char* NO_SEPARATOR = "remove the ';', or write a rule on both sides";
constexpr const char* OPERATORS = "the operators are < <= > >= == !=";
constexpr const char* ONE_COMPARISON =
    "compare once, or join two comparisons with 'and' or 'or': value > 1 and value < 5";
constexpr const char* TWO_AT_THE_MOST = "join two comparisons at the most, with one 'and' or one 'or'";
constexpr const char* FIELD_ALONE = "one side is 'value' or 'delta' alone, the other a number";
constexpr const char* SIGNED_RANGE = "signed numbers are -2147483648 to 2147483647";
constexpr const char* SIGNED_DIGITS = "write decimal digits only, with '-' before them if negative";
constexpr const char* ONLY_SPACES = "remove the tab: only spaces are ignored";

class RuleDiagnosis : public testing::TestWithParam<RefusedRule> {};

std::string marksBelow(const RuleFault& fault)
{
    return std::string(fault.position, ' ') + "^" + std::string(fault.length - 1, '~');
}

TEST_P(RuleDiagnosis, NamesThePlaceTheReasonAndWhatWouldBeRight)
{
    EXPECT_FALSE(isValidRule(GetParam().rule));
    const std::optional<RuleFault> fault = findFault(GetParam().rule);

    ASSERT_TRUE(fault);
    EXPECT_EQ(
        GetParam().rule + ("\n" + marksBelow(*fault)) + "\n" + fault->reason + "\n" + fault->remedy,
        GetParam().rule + ("\n" + std::string(GetParam().marks)) + "\n" + GetParam().reason + "\n" + GetParam().remedy);
}

// clang-format off
const RefusedRule refusedRules[] = {
    {" /x",
     " ^~", "this is not a comment", "a comment starts with '/' as the very first character"},
    {"  ",
     "^~", "there are only blanks", "leave the rule empty, or write one"},
    {"value>5",
     "^~~~~~~", "there is no 'expr'", SIGNED_OR_UNSIGNED},
    {"expr=signed(value>5);",
     "                    ^", "there is an empty part next to this ';'", NO_SEPARATOR},
    {"expr=signed(value>5) ;  ",
     "                     ^", "there is an empty part next to this ';'", NO_SEPARATOR},
    {"expr=signed(value>5); ;expr=signed(value<9)",
     "                      ^", "there is an empty part next to this ';'", NO_SEPARATOR},
    {";expr=signed(value>5)",
     "^", "there is an empty part next to this ';'", NO_SEPARATOR},
    {"expr=signed(value>5); Signed(value<9)",
     "                      ^~~~~~~~~~~~~~~", "there is no 'expr'", SIGNED_OR_UNSIGNED},
    {"e x p r signed(value)",
     "^~~~~~~", "there is no '=' after 'expr'", SIGNED_OR_UNSIGNED},
    {"expr= value>5",
     "      ^~~~~~~", "there is neither 'signed(' nor 'unsigned('", SIGNED_OR_UNSIGNED},
    {"expr=",
     "     ^", "there is neither 'signed(' nor 'unsigned('", SIGNED_OR_UNSIGNED},
    {"expr=signed (value>5",
     "            ^", "the ')' of this bracket is missing", "close it with ')'"},
    {"expr=signed( )",
     "           ^", "there is nothing between this bracket and the last ')'",
     "write a condition between them: (value>5)"},
    {"expr=signed(())",
     "              ^", "a comparison is missing", OPERATORS},
    {"expr=signed(value 5)",
     "            ^~~~~~~", "there is no relational operator", OPERATORS},
    {"expr=signed(value = 5)",
     "                  ^", "'=' is not an operator", "write '==' to compare"},
    {"expr=signed(value =< 5)",
     "                  ^~", "'=<' is not an operator", "write '<='"},
    {"expr=signed(value = > 5)",
     "                  ^~~", "'=>' is not an operator", "write '>='"},
    {"expr=signed(value<>5)",
     "                  ^", "'>5' is not a whole number", OPERATORS},
    {"expr=signed(value===5)",
     "                   ^", "'=5' is not a whole number", OPERATORS},
    {"expr=signed(1<value<5)",
     "                   ^", "there is more than one operator", ONE_COMPARISON},
    {"expr=signed(1<=value<5)",
     "                    ^", "there is more than one operator", ONE_COMPARISON},
    {"expr=signed(temp>5)",
     "            ^~~~", "neither side is 'value' or 'delta'", FIELD_ALONE},
    {"expr=signed(5>value1)",
     "              ^~~~~~", "neither side is 'value' or 'delta'", FIELD_ALONE},
    {"expr=signed(value\t>5)",
     "                 ^", "there is a tab", ONLY_SPACES},
    {"expr=signed(value>\t5)",
     "                  ^", "'\t5' is not a whole number", ONLY_SPACES},
    {"expr=signed(value>)",
     "                  ^", "a number is missing", "write a whole number here"},
    {"expr=signed(value>1.5)",
     "                   ^", "'1.5' is not a whole number", "write a whole number, in a smaller unit if need be"},
    {"expr=signed(value>+5)",
     "                  ^", "'+5' is not a whole number", "write the number without '+'"},
    {"expr=signed(value>0x10)",
     "                   ^", "'0x10' is not a whole number", "write the number in decimal"},
    {"expr=signed(value>5%)",
     "                   ^", "'5%' is not a whole number", SIGNED_DIGITS},
    {"expr=unsigned(value>5%)",
     "                     ^", "'5%' is not a whole number", "write decimal digits only"},
    {"expr=signed(value>value)",
     "                  ^", "'value' is not a whole number", "compare with a number"},
    {"expr=unsigned(value > -1)",
     "                      ^~", "an unsigned rule takes no negative number", "write 'signed(' for a signed rule"},
    {"expr=unsigned(-1<delta)",
     "              ^~", "an unsigned rule takes no negative number", "write the size of the change: 0 or more"},
    {"expr=signed(value>-)",
     "                  ^", "'-' without a number", "write digits after the '-'"},
    {"expr=signed(value>2147483648)",
     "                  ^~~~~~~~~~", "'2147483648' is out of range", SIGNED_RANGE},
    {"expr=signed(-2147483649 < value)",
     "            ^~~~~~~~~~~", "'-2147483649' is out of range", SIGNED_RANGE},
    {"expr=unsigned(value>4294967296)",
     "                    ^~~~~~~~~~", "'4294967296' is out of range", "unsigned numbers are 0 to 4294967295"},
    {"expr=signed(delta>-1)",
     "                  ^~", "a delta is never negative", "write the size of the change: 0 or more"},
    {"expr=signed(value>5 or value<1 or value==3)",
     "                               ^~", "more than two comparisons are joined", TWO_AT_THE_MOST},
    {"expr=signed(value>5 and value<9 or value==3)",
     "                    ^~~", "more than two comparisons are joined", TWO_AT_THE_MOST},
    {"expr=signed(value>5 or delta<1)",
     "                       ^~~~~~~", "one comparison is about 'value' and the other about 'delta'",
     "use the same word on both sides of the 'or'"},
    {"expr=signed(value>5 and )",
     "                        ^", "a comparison is missing", OPERATORS},
    {"expr=signed(value>x and value<y)",
     "                  ^", "'x' is not a whole number", "write the number in decimal"},
    {"expr=signed(hys(1,2))",
     "            ^~~", "there is neither 'hyshigh(' nor 'hyslow('", "write hyshigh(80,90), hyslow(10,20) or both"},
    {"expr=signed(HysHigh(80,90)",
     "            ^~~~~~~~", "the ')' of 'hyshigh(' is missing", "close both brackets: hyshigh(80,90))"},
    {"expr=signed(hyslow(80,90,100))",
     "                   ^~~~~~~~~", "a hysteresis takes two thresholds",
     "write two numbers with one ',' between them: hyslow(80,90)"},
    {"expr=signed(hyslow())",
     "                   ^", "a hysteresis takes two thresholds",
     "write two numbers with one ',' between them: hyslow(80,90)"},
    {"expr=signed(hyslow(10,) hyshigh(x,90))",
     "                                ^", "'x' is not a whole number", "write the number in decimal"},
    {"expr=unsigned(hyshigh(80, -90))",
     "                          ^~~", "an unsigned rule takes no negative number",
     "write 'signed(' for a signed rule"},
};
// clang-format on

INSTANTIATE_TEST_SUITE_P(EveryFault, RuleDiagnosis, testing::ValuesIn(refusedRules));

TEST(FindFault, FindsNothingInARuleAnEmptyTextOrAComment)
{
    for (const char* const rule : {"expr=signed(value>1)", "EXPR = Unsigned( hyshigh(1, 2) )", "", "/ value>5"}) {
        EXPECT_TRUE(isValidRule(rule)) << rule;
        EXPECT_FALSE(findFault(rule)) << rule;
    }
}

TEST(FindFault, QuotesThePartsOfALongRuleByTheirFirst80Characters)
{
    const std::string word(81, 'x');
    EXPECT_EQ(findFault("expr=signed(value>" + word + ")")->reason,
              "'" + std::string(80, 'x') + "...' is not a whole number");
    EXPECT_EQ(findFault("expr=signed(value>" + word.substr(1) + ")")->reason,
              "'" + std::string(80, 'x') + "' is not a whole number");

    std::string umlauts;
    for (int i = 0; i < 81; ++i) {
        umlauts += "\u00FC";
    }
    EXPECT_EQ(findFault("expr=signed(value>" + umlauts + ")")->reason,
              "'" + umlauts.substr(0, 160) + "...' is not a whole number");
}

TEST(IsUnsignedRule, IsWhatTheTextDeclares)
{
    const std::pair<const char*, bool> rules[] = {
        {"expr=signed(value>1)", false},
        {"expr=unsigned(value>1)", true},
        {"EXPR = Un Signed ( value > 1 )", true},
        {"exprunsigned(value<=1)", false},  // "unsigned(" counts only after the first "="
        {"expr=signed(value>1);expr=unsigned(value>1)", true},
        {"expr=unsigned(value>1);expr=signed(value>1)", false},
        {"", false},
        {"/expr=unsigned(value>1)", false},
    };
    for (const auto& [rule, isUnsigned] : rules) {
        EXPECT_TRUE(isValidRule(rule)) << rule;
        EXPECT_EQ(isUnsignedRule(rule), isUnsigned) << rule;
    }
}

RuleObject parsed(const std::string& text)
{
    RuleObject rule;
    EXPECT_TRUE(parseRule(text, &rule)) << text;
    return rule;
}

RuleObject withOperand(ExpressionType type, const boost::any& operand)
{
    RuleObject rule = parsed((type == SINGLE_HYSTERESIS) ? "expr=signed(hyshigh(1,2))" : "expr=signed(value>1)");
    rule.m_expressions.back().m_rightOperand = operand;
    return rule;
}

const std::optional<std::string> NO_REASON;

TEST(ReasonAgainstEvaluation, IsNoneForRulesOfOnePart)
{
    EXPECT_EQ(reasonAgainstEvaluation(parsed("expr=signed(value>1)")), NO_REASON);
    EXPECT_EQ(reasonAgainstEvaluation(parsed("expr=signed(delta>1)")), NO_REASON);
    EXPECT_EQ(reasonAgainstEvaluation(parsed("expr=unsigned(value>1 and value<5)")), NO_REASON);
    EXPECT_EQ(reasonAgainstEvaluation(parsed("expr=signed(hyslow(1,2))")), NO_REASON);
    EXPECT_EQ(reasonAgainstEvaluation(parsed("expr=signed(hyslow(1,2)hyshigh(1,2))")), NO_REASON);
}

TEST(ReasonAgainstEvaluation, NamesRulesWithoutExpressionAndRulesOfSeveralParts)
{
    const std::optional<std::string> empty = "there is nothing to evaluate: the rule is empty or a comment";
    const std::optional<std::string> several =
        "a rule of several parts is never evaluated: make each part a rule of its own";

    EXPECT_EQ(reasonAgainstEvaluation(parsed("")), empty);
    EXPECT_EQ(reasonAgainstEvaluation(parsed("/comment")), empty);
    EXPECT_EQ(reasonAgainstEvaluation(parsed("expr=signed(value>1);expr=signed(value>1)")), several);

    RuleObject twice = parsed("expr=signed(value>1)");
    EXPECT_TRUE(parseRule("expr=signed(value>1)", &twice));
    EXPECT_EQ(reasonAgainstEvaluation(twice), several);
}

TEST(ReasonAgainstEvaluation, NamesWhatTheParserNeverMakes)
{
    RuleObject rule = parsed("expr=signed(hyshigh(1,2))");
    rule.m_expressions.pop_back();
    EXPECT_EQ(reasonAgainstEvaluation(rule), "the type of the rule takes 2 expressions, the rule has 1");
    for (const int type : {-1, 5}) {
        rule.m_expressionType = static_cast<ExpressionType>(type);
        EXPECT_EQ(reasonAgainstEvaluation(rule), "the rule type " + std::to_string(type) + " is unknown");
    }
    for (const int unknown : {-1, 8}) {
        rule = parsed("expr=signed(value>1)");
        rule.m_expressions[0].m_relationalOperator = static_cast<RelationalOperator>(unknown);
        EXPECT_EQ(reasonAgainstEvaluation(rule), "the operator " + std::to_string(unknown) + " is unknown");
    }
}

TEST(ReasonAgainstEvaluation, NamesOperandsThatNoCheckTakesHoweverDeep)
{
    const std::string foreign =
        "an operand is not an int, an unsigned int, a ParamField, a MemoryField or an Expression";
    const std::string memory = "an operand is a MemoryField: only a hysteresis has a state";
    for (const ExpressionType type : {SIMPLE_EXPRESSION_VALUE, SINGLE_HYSTERESIS}) {
        for (const boost::any& operand : {boost::any(), boost::any(1L), boost::any(std::string("1"))}) {
            EXPECT_EQ(reasonAgainstEvaluation(withOperand(type, operand)), foreign);
            EXPECT_EQ(reasonAgainstEvaluation(withOperand(type, Expression(LESS_THAN, 1, operand))), foreign);
            EXPECT_EQ(reasonAgainstEvaluation(withOperand(type, Expression(LESS_THAN, operand, 1))), foreign);
        }
        EXPECT_EQ(reasonAgainstEvaluation(withOperand(type, 1U)), NO_REASON);
    }
    EXPECT_EQ(reasonAgainstEvaluation(withOperand(SIMPLE_EXPRESSION_VALUE, MemoryField())), memory);
    EXPECT_EQ(reasonAgainstEvaluation(withOperand(SINGLE_HYSTERESIS, MemoryField())), NO_REASON);
}

}  // namespace

}  // namespace vemorRules
