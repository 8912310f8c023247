// The diagnosis against the library's parser, on rules that are right and on rules that are broken in every way: both
// must agree on whether a text is a rule, and the diagnosis must give the reason behind the library's error line.

#include <cctype>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "EventMgmtRulesParsing.h"
#include "RuleDiagnosis.h"
#include "support/Diagnostics.h"

namespace vemorRules {
namespace {

using Tokens = std::vector<std::string>;

// Every number is drawn in a statement of its own, so that all compilers draw the same rules.
class Random {
public:
    std::size_t below(std::size_t limit) { return static_cast<std::size_t>(m_engine()) % limit; }

    template <std::size_t N>
    std::string oneOf(const char* const (&choices)[N])
    {
        return choices[below(N)];
    }

private:
    std::mt19937 m_engine{20240501U};  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same rules every time
};

std::string number(Random& random)
{
    static constexpr const char* numbers[] = {"0",   "5",  "9",  "10",          "80",         "90",         "100",
                                              "007", "-0", "-5", "-2147483648", "2147483647", "4294967295", "1"};
    return random.oneOf(numbers);
}

std::string comparison(Random& random)
{
    static constexpr const char* operators[] = {"<", "<=", ">", ">=", "==", "!="};
    static constexpr const char* fields[] = {"value", "delta", "value"};
    const std::string field = random.oneOf(fields);
    const std::string relation = random.oneOf(operators);
    const std::string limit = number(random);
    return (random.below(2) == 0) ? field + relation + limit : limit + relation + field;
}

std::string hysteresis(Random& random)
{
    static constexpr const char* words[] = {"hyshigh(", "HysLow("};
    const std::string word = random.oneOf(words);
    const std::string first = number(random);
    const std::string second = number(random);
    return word + first + "," + second + ")";
}

// Mostly valid: a negative number may be drawn for an unsigned rule.
std::string rulePart(Random& random)
{
    static constexpr const char* starts[] = {"expr=signed(",   "expr=unsigned(",  "expr=signed(",
                                             "expr=unsigned(", "EXPR = Signed( ", "exprsigned("};
    const std::string start = random.oneOf(starts);
    const std::size_t kind = random.below(5);
    const std::string first = (kind < 3) ? comparison(random) : hysteresis(random);
    switch (kind) {
        case 1: return start + first + " or " + comparison(random) + ")";
        case 2: return start + first + " and " + comparison(random) + ")";
        case 4: return start + first + hysteresis(random) + ")";
        default: return start + first + ")";
    }
}

std::string ruleText(Random& random)
{
    const std::string first = rulePart(random);
    return (random.below(8) == 0) ? first + ";" + rulePart(random) : first;
}

// Words, numbers, operators, and single characters of any other kind.
Tokens tokensOf(const std::string& text)
{
    const auto classOf = [](char character) {
        if (std::isalpha(static_cast<unsigned char>(character)) != 0) {
            return 'a';
        }
        if ((std::isdigit(static_cast<unsigned char>(character)) != 0) || (character == '-')) {
            return '0';
        }
        return (std::string("<>=!").find(character) != std::string::npos) ? '=' : '\0';
    };
    Tokens tokens;
    char classBefore = '\0';
    for (const char character : text) {
        const char characterClass = classOf(character);
        if ((characterClass == '\0') || (characterClass != classBefore)) {
            tokens.emplace_back();
        }
        tokens.back() += character;
        classBefore = characterClass;
    }
    return tokens;
}

std::string& anyToken(Tokens& tokens, Random& random)
{
    return tokens[random.below(tokens.size())];
}

// Puts one of `choices` in place of a token that begins with one of `firstCharacters`, if there is one.
template <std::size_t N>
void replaceTokenWith(Tokens& tokens, Random& random, const std::string& firstCharacters,
                      const char* const (&choices)[N])
{
    std::vector<std::size_t> candidates;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        if (!tokens[i].empty() && (firstCharacters.find(tokens[i][0]) != std::string::npos)) {
            candidates.push_back(i);
        }
    }
    if (!candidates.empty()) {
        const std::size_t position = candidates[random.below(candidates.size())];
        tokens[position] = random.oneOf(choices);
    }
}

struct Mutation {
    const char* name;
    void (*apply)(Tokens& tokens, Random& random);
};

const Mutation MUTATIONS[] = {
    {"token dropped", [](Tokens& tokens, Random& random) { anyToken(tokens, random).clear(); }},
    {"token doubled",
     [](Tokens& tokens, Random& random) {
         std::string& token = anyToken(tokens, random);
         token += token;
     }},
    {"token replaced by another",
     [](Tokens& tokens, Random& random) {
         const std::string other = anyToken(tokens, random);
         anyToken(tokens, random) = other;
     }},
    {"tokens swapped",
     [](Tokens& tokens, Random& random) {
         std::string& one = anyToken(tokens, random);
         one.swap(anyToken(tokens, random));
     }},
    {"token cut short",
     [](Tokens& tokens, Random& random) {
         std::string& token = anyToken(tokens, random);
         token.resize(random.below(token.size() + 1));
     }},
    {"rest cut off", [](Tokens& tokens, Random& random) { tokens.resize(1 + random.below(tokens.size())); }},
    {"number out of range",
     [](Tokens& tokens, Random& random) {
         static constexpr const char* choices[] = {"2147483648",  "4294967296",           "-2147483649",
                                                   "99999999999", "18446744073709551616", "-1"};
         replaceTokenWith(tokens, random, "-0123456789", choices);
     }},
    {"not a number",
     [](Tokens& tokens, Random& random) {
         static constexpr const char* choices[] = {"", "-", "--5", "+5", "1.5", "0x10", "5%", "5 5", "1e3", "value"};
         replaceTokenWith(tokens, random, "-0123456789", choices);
     }},
    {"wrong word",
     [](Tokens& tokens, Random& random) {
         static constexpr const char* choices[] = {"expr",  "signed",  "unsigned", "value", "delta", "and", "or", "hys",
                                                   "hyshi", "hyshigh", "hyslow",   "temp",  "xor",   "not", ""};
         replaceTokenWith(tokens, random, "EHSadehosuv", choices);
     }},
    {"wrong operator",
     [](Tokens& tokens, Random& random) {
         static constexpr const char* choices[] = {"=<", "=>", "<>", "=", "===", "!", "~", "<<", "<=>", "is", ""};
         replaceTokenWith(tokens, random, "<>=!", choices);
     }},
    {"bracket too many",
     [](Tokens& tokens, Random& random) {
         static constexpr const char* choices[] = {"(", ")", "()", "[", "{"};
         anyToken(tokens, random) += random.oneOf(choices);
     }},
    {"bracket or separator replaced",
     [](Tokens& tokens, Random& random) {
         static constexpr const char* choices[] = {"(", ")", ",", ",,", ";", ";;", ".", "/", ""};
         replaceTokenWith(tokens, random, "(),;", choices);
     }},
    {"foreign character",
     [](Tokens& tokens, Random& random) {
         static constexpr const char* choices[] = {"\t", "/", "\xC3", "\n", ";", " ; ", "=", "-", "x"};
         std::string& token = anyToken(tokens, random);
         const std::size_t position = random.below(token.size() + 1);
         token.insert(position, random.oneOf(choices));
     }},
    {"zero byte", [](Tokens& tokens, Random& random) { anyToken(tokens, random).push_back('\0'); }},
    {"blanks only", [](Tokens& tokens, Random& random) { tokens = Tokens(1 + random.below(3), " "); }},
    {"comment not at the start", [](Tokens& tokens, Random&) { tokens.front().insert(0, " / "); }},
};

// An error line of the library, and the reasons with which the diagnosis explains it.
struct ReasonsOfLine {
    const char* line;
    std::vector<const char*> reasons;
};

const ReasonsOfLine REASONS_OF_LINES[] = {
    {"Failed to parse part", {"not a comment", "only blanks", "no 'expr'", "an empty part"}},
    {"No = sign", {"no '=' after 'expr'"}},
    {"Failed to find 'signed' or 'unsigned'", {"neither 'signed(' nor 'unsigned('"}},
    {"Failed to find ')'", {"the ')' of this bracket is missing"}},
    {"posCharAfterFirstLeftRoundBracket >=", {"nothing between this bracket"}},
    {"Failed to get 2 elements", {"more than two comparisons"}},
    {"Expression contains both", {"about 'value' and the other about 'delta'"}},
    {"Failed to find relational operator",
     {"'=' is not an operator", "a comparison is missing", "no relational operator"}},
    {"Failed to get 2 entities", {"more than one operator"}},
    {"does not contain 'value' or 'delta'",
     {"is not an operator", "a tab", "more than two comparisons", "more than one operator", "neither side"}},
    {"Can not extract integer", {"a number is missing"}},
    {"expression='%s' contains negative number", {"takes no negative number"}},
    {"Not all characters", {"is not a whole number"}},
    {"Expression with 'delta'", {"never negative"}},
    {"does not contain HysHigh or HysLow", {"neither 'hyshigh(' nor 'hyslow('"}},
    {"Failed to find right round bracket", {"the ')' of 'hys"}},
    {"Failed to find 2 arguments", {"takes two thresholds"}},
    {"threw bad_lexical_cast", {"out of range", "'-' without a number"}},
};

bool contains(const std::string& text, const std::string& words)
{
    return text.find(words) != std::string::npos;
}

// The row of the table that the line and the reason share; empty if there is none.
std::string sharedRow(const std::string& line, const std::string& reason)
{
    for (const ReasonsOfLine& row : REASONS_OF_LINES) {
        for (const char* const words : row.reasons) {
            if (contains(line, row.line) && contains(reason, words)) {
                return std::string(row.line) + " | " + words;
            }
        }
    }
    return {};
}

// Whether the numbers in an expression are unsigned.
bool holdsUnsigned(const boost::any& operand)
{
    const auto* const pExpression = boost::any_cast<Expression>(&operand);
    if (pExpression == nullptr) {
        return operand.type() == typeid(unsigned int);
    }
    return holdsUnsigned(pExpression->m_leftOperand) || holdsUnsigned(pExpression->m_rightOperand);
}

class RuleDiagnosisOnRandomRules : public testing::Test {
protected:
    // Takes note of the row of the table that the refused rule leads to.
    void compareVerdicts(const std::string& rule)
    {
        const bool isValid = isValidRule(rule);
        const Diagnostics lines = m_diagnostics.take();
        const std::optional<RuleFault> fault = findFault(rule);
        ASSERT_EQ(fault.has_value(), !isValid) << rule;
        if (!fault) {
            ++m_valid;
            compareEvaluation(rule);
            return;
        }
        ASSERT_GE(fault->length, 1U) << rule;
        ASSERT_LE(fault->position, rule.size()) << rule;
        ASSERT_LE(fault->position + fault->length, rule.size() + 1) << rule;
        ASSERT_FALSE(fault->remedy.empty()) << rule;
        const std::string row = sharedRow(lines.at(0), fault->reason);
        ASSERT_NE(row, "") << rule << '\n' << lines.at(0) << '\n' << fault->reason;
        ++m_refused[row];
    }

    // A valid rule is evaluated without a line exactly if nothing is said against that, and its numbers are of the type
    // that its text is said to declare.
    void compareEvaluation(const std::string& rule)
    {
        RuleObject parsed;
        parseRule(rule, &parsed);
        m_diagnostics.take();
        bool isUpperRaised = false;
        bool isLowerRaised = false;
        switch (parsed.m_expressionType) {
            case SIMPLE_EXPRESSION_VALUE: checkSimpleValueRule<int>(parsed, 1); break;
            case SIMPLE_EXPRESSION_DELTA: checkSimpleDeltaRule<int>(parsed, 1, 2); break;
            case SINGLE_HYSTERESIS: checkSingleHysteresisRule<int>(parsed, 1, false); break;
            case DOUBLE_HYSTERESIS: checkDoubleHysteresisRule<int>(parsed, 1, isUpperRaised, isLowerRaised); break;
            case NO_EXPRESSION: break;
        }
        const bool isEvaluated = m_diagnostics.take().empty() && (parsed.m_expressionType != NO_EXPRESSION);
        ASSERT_EQ(!reasonAgainstEvaluation(parsed), isEvaluated) << rule;
        if ((parsed.m_expressionType == SIMPLE_EXPRESSION_VALUE) ||
            (parsed.m_expressionType == SIMPLE_EXPRESSION_DELTA)) {
            ASSERT_EQ(isUnsignedRule(rule), holdsUnsigned(parsed.m_expressions.back())) << rule;
        }
    }

    DiagnosticsCapture m_diagnostics{3};
    Random m_random;
    int m_valid = 0;
    std::map<std::string, int> m_refused;
};

TEST_F(RuleDiagnosisOnRandomRules, AgreesWithTheLibraryOnRulesAsTheyAreMeant)
{
    constexpr int RULES = 50000;
    for (int i = 0; i < RULES; ++i) {
        ASSERT_NO_FATAL_FAILURE(compareVerdicts(ruleText(m_random)));
    }
    EXPECT_GT(m_valid, RULES / 2);
}

TEST_F(RuleDiagnosisOnRandomRules, GivesTheReasonThatTheLibraryLogsForEveryKindOfBrokenRule)
{
    constexpr int RULES_OF_A_KIND = 5000;
    for (const Mutation& mutation : MUTATIONS) {
        SCOPED_TRACE(mutation.name);
        m_valid = 0;
        for (int i = 0; i < RULES_OF_A_KIND; ++i) {
            Tokens tokens = tokensOf(ruleText(m_random));
            mutation.apply(tokens, m_random);
            for (std::size_t more = m_random.below(3); more > 0; --more) {
                const Mutation& other = MUTATIONS[m_random.below(std::size(MUTATIONS))];
                other.apply(tokens, m_random);
            }
            std::string rule;
            for (const std::string& token : tokens) {
                rule += token;
            }
            ASSERT_NO_FATAL_FAILURE(compareVerdicts(rule));
        }
        EXPECT_LT(m_valid, RULES_OF_A_KIND / 2);
    }
    for (const ReasonsOfLine& row : REASONS_OF_LINES) {
        for (const char* const words : row.reasons) {
            const std::string key = std::string(row.line) + " | " + words;
            EXPECT_GT(m_refused[key], 0) << key;
        }
    }
}

}  // namespace

}  // namespace vemorRules
