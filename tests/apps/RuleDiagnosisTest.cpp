#include "rules/RuleDiagnosis.h"

#include <algorithm>
#include <ostream>
#include <random>

#include <gtest/gtest.h>

#include "EventMgmtRulesParsing.h"
#include "support/Diagnostics.h"

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
    return std::string(fault.span.begin, ' ') + "^" + std::string(fault.span.length - 1, '~');
}

TEST_P(RuleDiagnosis, NamesThePlaceTheReasonAndWhatWouldBeRight)
{
    EXPECT_FALSE(vemorRules::isValidRule(GetParam().rule));
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
     "                    ^", "there is an empty part beside this ';'", NO_SEPARATOR},
    {"expr=signed(value>5) ;  ",
     "                     ^", "there is an empty part beside this ';'", NO_SEPARATOR},
    {"expr=signed(value>5); ;expr=signed(value<9)",
     "                      ^", "there is an empty part beside this ';'", NO_SEPARATOR},
    {";expr=signed(value>5)",
     "^", "there is an empty part beside this ';'", NO_SEPARATOR},
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

// Rule texts that are nearly right: pieces of the language strung together, with characters changed here and there.
class RandomRules {
public:
    std::string next()
    {
        std::string rule = below(4) == 0 ? strungTogether() : validRule();
        for (std::size_t changes = (below(2) == 0) ? 0 : below(4); changes > 0; --changes) {
            change(rule);
        }
        return rule;
    }

private:
    std::size_t below(std::size_t limit) { return m_engine() % limit; }

    template <std::size_t N>
    const char* oneOf(const char* const (&choices)[N])
    {
        return choices[below(N)];
    }

    std::string number()
    {
        static const char* const numbers[] = {"0",           "5",           "9",
                                              "10",          "80",          "90",
                                              "100",         "007",         "00000000000000000001",
                                              "2147483647",  "-0",          "-5",
                                              "2147483648",  "-2147483648", "4294967295",
                                              "-2147483649", "4294967296"};
        return oneOf(numbers);
    }

    std::string comparison()
    {
        static const char* const operators[] = {"<", "<=", ">", ">=", "==", "!="};
        static const char* const fields[] = {"value", "delta", "value"};
        return (below(2) == 0) ? oneOf(fields) + (oneOf(operators) + number())
                               : number() + oneOf(operators) + oneOf(fields);
    }

    std::string hysteresis()
    {
        static const char* const words[] = {"hyshigh(", "hyslow("};
        return oneOf(words) + number() + "," + number() + ")";
    }

    std::string validRule()
    {
        static const char* const starts[] = {"expr=signed(",   "expr=unsigned(",  "expr=signed(",
                                             "expr=unsigned(", "EXPR = Signed( ", "exprsigned("};
        const std::string start = oneOf(starts);
        switch (below(5)) {
            case 0: return start + comparison() + ")";
            case 1: return start + comparison() + " or " + comparison() + ")";
            case 2: return start + comparison() + " and " + comparison() + ")";
            case 3: return start + hysteresis() + ")";
            default: return start + hysteresis() + hysteresis() + ")";
        }
    }

    std::string strungTogether()
    {
        static const char* const pieces[] = {"expr", "=",        "signed(", "unsigned(", "value", "delta", "hys", ";",
                                             "or",   "hyshigh(", "hyslow(", ",",         ")",     "(",     "and"};
        std::string rule;
        for (std::size_t count = below(9); count > 0; --count) {
            rule += (below(3) == 0) ? comparison() : oneOf(pieces);
        }
        return rule;
    }

    void change(std::string& rule)
    {
        static const char characters[] = "<>=!()/;, -+.0159\t\0\xC3xExpRvaluednorhysig";
        static const std::string alphabet(characters, sizeof characters - 1);
        const std::size_t pos = below(rule.size() + 1);
        switch (below(3)) {
            case 0: rule.insert(pos, 1, alphabet[below(alphabet.size())]); break;
            case 1: rule.erase(pos, 1); break;
            default: rule.replace(pos, 1, 1, alphabet[below(alphabet.size())]); break;
        }
    }

    std::mt19937 m_engine{20240501U};  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same rules every time
};

TEST(RuleDiagnosisOnRandomRules, FindsAFaultExactlyWhenTheLibraryRefuses)
{
    constexpr int RULES = 200000;
    RandomRules rules;
    int refused = 0;
    for (int i = 0; i < RULES; ++i) {
        const std::string rule = rules.next();
        const bool isValid = vemorRules::isValidRule(rule);
        const std::optional<RuleFault> fault = findFault(rule);
        ASSERT_EQ(fault.has_value(), !isValid) << rule;
        if (fault) {
            ++refused;
            ASSERT_GE(fault->span.length, 1U) << rule;
            ASSERT_LE(fault->span.begin, rule.size()) << rule;
            ASSERT_LE(fault->span.begin + fault->span.length, rule.size() + 1) << rule;
            ASSERT_FALSE(fault->reason.empty() || fault->remedy.empty()) << rule;
        }
    }
    // Both verdicts are put to the test.
    EXPECT_GT(refused, RULES / 4);
    EXPECT_LT(refused, RULES * 4 / 5);
}

// What the library's error line says, and the reasons that go with it.
struct ReasonsOfLine {
    const char* line;
    std::vector<const char*> reasons;
};

const ReasonsOfLine reasonsOfLines[] = {
    {"Failed to parse part", {"not a comment", "only blanks", "no 'expr'", "an empty part"}},
    {"No = sign", {"no '=' after 'expr'"}},
    {"Failed to find 'signed' or 'unsigned'", {"neither 'signed(' nor 'unsigned('"}},
    {"Failed to find ')'", {"the ')' of this bracket is missing"}},
    {"posCharAfterFirstLeftRoundBracket >=", {"nothing between this bracket"}},
    {"Failed to get 2 elements", {"more than two comparisons"}},
    {"Expression contains both", {"about 'value' and the other about 'delta'"}},
    {"Failed to find relational operator", {"'=' is not an operator", "is missing", "no relational operator"}},
    {"Failed to get 2 entities", {"more than one operator"}},
    {"does not contain 'value' or 'delta'",
     {"is not an operator", "a tab", "more than two comparisons", "more than one operator", "neither side"}},
    {"Can not extract integer", {"a number is missing"}},
    {"expression='%s' contains negative number", {"takes no negative number"}},
    {"Not all characters", {"is not a whole number"}},
    {"Expression with 'delta'", {"never negative"}},
    {"does not contain HysHigh or HysLow", {"neither 'hyshigh(' nor 'hyslow('"}},
    {"Failed to find right round bracket", {"is missing"}},
    {"Failed to find 2 arguments", {"takes two thresholds"}},
    {"threw bad_lexical_cast", {"out of range", "'-' without a number"}},
};

bool goTogether(const std::string& line, const std::string& reason)
{
    const auto holds = [](const std::string& text, const char* words) { return text.find(words) != std::string::npos; };
    for (const ReasonsOfLine& candidate : reasonsOfLines) {
        if (holds(line, candidate.line)) {
            return std::any_of(candidate.reasons.begin(), candidate.reasons.end(),
                               [&](const char* words) { return holds(reason, words); });
        }
    }
    return false;
}

TEST(RuleDiagnosisOnRandomRules, NamesTheReasonThatTheLibraryLogs)
{
    DiagnosticsCapture diagnostics(3);
    RandomRules rules;
    for (int i = 0; i < 20000; ++i) {
        const std::string rule = rules.next();
        if (!vemorRules::isValidRule(rule)) {
            const std::string line = diagnostics.take().at(0);
            const std::string reason = findFault(rule)->reason;
            ASSERT_TRUE(goTogether(line, reason)) << rule << '\n' << line << '\n' << reason;
        }
    }
}

}  // namespace
